#include "variable.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <system_error>
#include <utility>

#include "failure.h"
#include "number_text.h"
#include "utf8.h"

namespace tool {
namespace {

/// "a", "b" and "c".
std::string inSentence(const std::vector<std::string>& words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() ? " and " : ", ";
    text += words[i];
  }
  return text;
}

/// @param taken  number of a column that is used for something else; 0: none
std::string noteOfText(const Table& table, int taken) {
  std::vector<std::string> names;
  for (const OtherColumn& other : table.others) {
    if (other.number == taken) continue;
    names.push_back(other.name.empty() ? std::to_string(other.number) : inQuotes(other.name));
  }
  if (names.empty()) return {};
  const bool one = names.size() == 1;
  constexpr std::size_t kMost = 12;
  if (names.size() > kMost + 1) {
    const std::string more = std::to_string(names.size() - kMost) + " more";
    names.resize(kMost);
    names.push_back(more);
  }
  return table.source + ": " + (one ? "column " : "columns ") + inSentence(names) +
         (one ? " is left out: it holds" : " are left out: they hold") + " text";
}

std::string columnsOf(const Table& table) {
  constexpr std::size_t kMost = 12;
  std::string names;
  for (std::size_t c = 0; c < std::min(table.columns.size(), kMost); ++c) {
    const Column& column = table.columns[c];
    names += (c > 0 ? ", " : "") + std::to_string(column.number);
    if (!column.name.empty()) names += ' ' + inQuotes(column.name);
  }
  return names + (table.columns.size() > kMost ? ", ..." : "");
}

int numberIn(const std::string& word) {
  int number = 0;
  const char* last = word.data() + word.size();
  const auto [end, error] = std::from_chars(word.data(), last, number);
  return error == std::errc() && end == last ? number : 0;
}

/// Finds columns by their names and numbers.
class Finder {
 public:
  /// @param option  the one that names the columns, for messages
  Finder(const Table& table, std::string option) : table_(table), option_(std::move(option)) {}

  /// Adds the column that a word means.
  /// @return false if there is none
  bool add(const std::string& word, std::vector<std::size_t>& chosen) const {
    const auto isNamed = [&](const auto& column) { return !word.empty() && column.name == word; };
    const auto number = numberIn(word);
    const auto isNumbered = [&](const auto& column) { return column.number == number; };
    const auto named = std::count_if(table_.columns.begin(), table_.columns.end(), isNamed) +
                       std::count_if(table_.others.begin(), table_.others.end(), isNamed);
    if (named > 1) {
      throw Failure(option_ + ": " + table_.source + " has " + std::to_string(named) +
                    " columns with the name " + inQuotes(word) + "; choose by number");
    }
    return named == 1 ? addFirst(isNamed, chosen) : addFirst(isNumbered, chosen);
  }

  [[noreturn]] void fail(const std::string& word) const {
    throw Failure(option_ + ": " + table_.source + " has no column " + inQuotes(word) +
                  ", but these: " + columnsOf(table_));
  }

 private:
  template <class Condition>
  bool addFirst(Condition condition, std::vector<std::size_t>& chosen) const {
    const auto& others = table_.others;
    if (const auto at = std::find_if(others.begin(), others.end(), condition); at != others.end()) {
      throw Failure(whyNotNumbers(table_, *at));
    }
    const auto& columns = table_.columns;
    const auto at = std::find_if(columns.begin(), columns.end(), condition);
    if (at == columns.end()) return false;
    const auto c = static_cast<std::size_t>(at - columns.begin());
    if (std::find(chosen.begin(), chosen.end(), c) == chosen.end()) chosen.push_back(c);
    return true;
  }

  const Table& table_;
  std::string option_;
};

}  // namespace

int Variable::rowOf(int position) const {
  // The j-th missing row (from 0) has missingRows[j] - 1 - j values before it.
  std::size_t low = 0;
  std::size_t high = missingRows.size();
  while (low < high) {
    const std::size_t middle = (low + high) / 2;
    if (missingRows[middle] - 1 - static_cast<int>(middle) < position) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return position + static_cast<int>(low);
}

std::vector<double> withoutRows(std::span<const double> values, const std::vector<int>& rows) {
  std::vector<double> kept;
  kept.reserve(values.size() - rows.size());
  auto leftOut = rows.begin();
  int row = 0;
  for (const double value : values) {
    ++row;
    if (leftOut != rows.end() && *leftOut == row) {
      ++leftOut;
    } else {
      kept.push_back(value);
    }
  }
  return kept;
}

std::vector<int> rowsWithout(const Table& table, const std::vector<std::size_t>& columns) {
  std::vector<int> rows;
  for (const std::size_t c : columns) {
    const std::vector<int>& missing = table.columns[c].missingRows;
    std::vector<int> both;
    std::set_union(rows.begin(), rows.end(), missing.begin(), missing.end(),
                   std::back_inserter(both));
    rows.swap(both);
  }
  return rows;
}

Variable variableOf(const Table& table, std::size_t c) {
  const Column& column = table.columns[c];
  return {column.name,
          column.title(),
          column.number,
          withoutRows(table.values->Column(static_cast<int>(c) + 1), column.missingRows),
          column.missingRows,
          table.rowNames};
}

std::size_t chooseColumn(const Table& table, const std::string& wanted, const std::string& option) {
  const Finder finder(table, option);
  std::vector<std::size_t> columns;
  if (!finder.add(wanted, columns)) finder.fail(wanted);
  return columns[0];
}

ColumnChoice chooseColumns(const Table& table, const std::vector<std::string>& wanted, int taken) {
  ColumnChoice choice;
  if (wanted.empty()) {
    for (const OtherColumn& other : table.others) {
      if (!other.isText && other.number != taken) throw Failure(whyNotNumbers(table, other));
    }
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
      if (table.columns[c].number != taken) choice.columns.push_back(c);
    }
    choice.note = noteOfText(table, taken);
    return choice;
  }
  const Finder finder(table, "--column");
  for (const std::string& list : wanted) {
    if (finder.add(list, choice.columns)) continue;  // a name may have commas in it
    for (std::size_t begin = 0; begin <= list.size();) {
      const std::size_t end = std::min(list.find(',', begin), list.size());
      const std::string word = list.substr(begin, end - begin);
      if (!finder.add(word, choice.columns)) finder.fail(word);
      begin = end + 1;
    }
  }
  return choice;
}

}  // namespace tool
