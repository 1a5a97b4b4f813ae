#include "variable.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <numeric>
#include <system_error>
#include <utility>

#include "failure.h"
#include "number_text.h"
#include "utf8.h"

namespace tool {
namespace {

/// @param taken  number of a column that is used for something else; 0: none
std::string noteOfText(const Table& table, int taken) {
  std::vector<std::string> names;
  for (const Column& column : table.columns) {
    if (column.kind != Column::texts || column.number == taken) continue;
    names.push_back(column.name.empty() ? std::to_string(column.number) : inQuotes(column.name));
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

/// The first of the columns, with their numbers.
std::string columnsOf(const Table& table, bool isNumericOnly) {
  constexpr int kMost = 12;
  std::string names;
  int n = 0;
  for (const Column& column : table.columns) {
    if (column.kind == Column::nothing || (isNumericOnly && !column.isNumeric())) continue;
    if (++n > kMost) return names + ", ...";
    names += (n > 1 ? ", " : "") + std::to_string(column.number);
    if (!column.name.empty()) names += ' ' + inQuotes(column.name);
  }
  return names;
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

  /// The column that a word means.
  /// @return position in table.columns, or their number
  [[nodiscard]] std::size_t find(const std::string& word) const {
    const auto& columns = table_.columns;
    // The table has cut a long name.
    const zel::TDTNameStr name(word);
    const auto isNamed = [&](const Column& column) { return !word.empty() && column.name == name; };
    const auto number = numberIn(word);
    const auto isNumbered = [&](const Column& column) { return column.number == number; };
    const auto named = std::count_if(columns.begin(), columns.end(), isNamed);
    if (named > 1) {
      throw Failure(option_ + ": " + table_.source + " has " + std::to_string(named) +
                    " columns with the name " + inQuotes(word) + "; choose by number");
    }
    const auto at = named == 1 ? std::find_if(columns.begin(), columns.end(), isNamed)
                               : std::find_if(columns.begin(), columns.end(), isNumbered);
    return static_cast<std::size_t>(at - columns.begin());
  }

  /// Adds the column of numbers that a word means.
  /// @return false if there is no such column
  bool add(const std::string& word, std::vector<std::size_t>& chosen) const {
    const std::size_t c = find(word);
    if (c == table_.columns.size() || table_.columns[c].kind == Column::nothing) return false;
    if (!table_.columns[c].isNumeric()) throw Failure(whyNotNumbers(table_, table_.columns[c]));
    if (std::find(chosen.begin(), chosen.end(), c) == chosen.end()) chosen.push_back(c);
    return true;
  }

  [[noreturn]] void fail(const std::string& word, bool isNumericOnly) const {
    throw Failure(option_ + ": " + table_.source + " has no column " + inQuotes(word) +
                  ", but these: " + columnsOf(table_, isNumericOnly));
  }

 private:
  const Table& table_;
  std::string option_;
};

}  // namespace

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
  std::vector<int> rows(static_cast<std::size_t>(table.rows()));
  std::iota(rows.begin(), rows.end(), 1);
  return variableOf(table, c, rows);
}

Variable variableOf(const Table& table, std::size_t c, std::span<const int> rows) {
  const Column& column = table.columns[c];
  Variable variable{&table, column.name, column.title(), column.number, {}, {}, 0};
  const auto values = table.values(c);
  auto missing = column.missingRows.begin();
  for (const int row : rows) {
    while (missing != column.missingRows.end() && *missing < row) ++missing;
    if (missing != column.missingRows.end() && *missing == row) {
      ++variable.missing;
    } else {
      variable.values.push_back(values[static_cast<std::size_t>(row - 1)]);
      variable.rows.push_back(row);
    }
  }
  return variable;
}

std::size_t findColumn(const Table& table, const std::string& wanted, const std::string& option) {
  const Finder finder(table, option);
  const std::size_t c = finder.find(wanted);
  if (c == table.columns.size()) finder.fail(wanted, false);
  return c;
}

std::size_t chooseColumn(const Table& table, const std::string& wanted, const std::string& option) {
  requireNumbers(table);
  const Finder finder(table, option);
  std::vector<std::size_t> columns;
  if (!finder.add(wanted, columns)) finder.fail(wanted, true);
  return columns[0];
}

ColumnChoice chooseColumns(const Table& table, const std::vector<std::string>& wanted, int taken) {
  requireNumbers(table);
  ColumnChoice choice;
  if (wanted.empty()) {
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
      const Column& column = table.columns[c];
      if (column.number == taken) continue;
      if (column.kind == Column::mixed) throw Failure(whyNotNumbers(table, column));
      if (column.isNumeric()) choice.columns.push_back(c);
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
      if (!finder.add(word, choice.columns)) finder.fail(word, true);
      begin = end + 1;
    }
  }
  return choice;
}

}  // namespace tool
