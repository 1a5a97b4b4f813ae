#include "csv_table.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "number_text.h"
#include "zel/base/numbertext.h"
#include "zel/base/stringhelpers.h"

namespace tool {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::size_t kLongestCell = std::size_t{1} << 20;

struct Cell {
  std::string text;
  bool quoted = false;
};

/// The separator that the line has most of outside quotation marks.
char separatorOf(std::string_view line) {
  constexpr std::string_view kSeparators = ",;\t";
  std::ptrdiff_t counts[kSeparators.size()] = {};
  bool quoted = false;
  for (const char c : line) {
    if (c == '"') quoted = !quoted;
    const std::size_t which = kSeparators.find(c);
    if (!quoted && which != std::string_view::npos) ++counts[which];
  }
  return kSeparators[static_cast<std::size_t>(
      std::max_element(std::begin(counts), std::end(counts)) - std::begin(counts))];
}

/// The records of a CSV file.
class Records {
 public:
  explicit Records(LineReader& file) : file_(file) {}

  /// The cells of the next record that is not blank.
  bool next(std::vector<Cell>& cells) {
    std::string_view rest;
    do {
      if (!file_.next(rest)) return false;
    } while (rest.find_first_not_of(kBlanks) == std::string_view::npos);
    line_ = file_.lineNumber();
    if (!separator_) separator_ = separatorOf(rest);
    cells.clear();
    for (bool more = true; more;) {
      takeCell(rest, cells.emplace_back());
      more = !rest.empty();
      if (more) rest.remove_prefix(1);
    }
    return true;
  }
  /// The line in which the record starts.
  [[nodiscard]] std::int64_t line() const { return line_; }
  [[noreturn]] void fail(std::string_view reason) const { file_.failInLine(line_, reason); }

 private:
  void skipBlanks(std::string_view& rest) const {
    while (!rest.empty() && rest[0] != separator_ &&
           kBlanks.find(rest[0]) != std::string_view::npos) {
      rest.remove_prefix(1);
    }
  }

  /// Takes a cell and leaves the separator behind it.
  void takeCell(std::string_view& rest, Cell& cell) {
    skipBlanks(rest);
    cell.quoted = rest.starts_with('"');
    if (cell.quoted) {
      takeQuoted(rest, cell.text);
      skipBlanks(rest);
      if (!rest.empty() && rest[0] != separator_) {
        file_.failInLine(file_.lineNumber(), "there is more after a closing quotation mark");
      }
      return;
    }
    const std::string_view text = rest.substr(0, rest.find(*separator_));
    cell.text = text.substr(0, text.find_last_not_of(kBlanks) + 1);
    rest.remove_prefix(text.size());
  }

  /// Takes a text in quotation marks, which may go on over several lines.
  void takeQuoted(std::string_view& rest, std::string& text) {
    const std::int64_t opened = file_.lineNumber();
    rest.remove_prefix(1);
    for (;;) {
      const std::size_t mark = rest.find('"');
      text += rest.substr(0, mark);
      if (mark == std::string_view::npos) {
        text += '\n';
        if (text.size() > kLongestCell || !file_.next(rest)) {
          file_.failInLine(opened, "a quotation mark is never closed");
        }
        continue;
      }
      rest.remove_prefix(mark + 1);
      if (!rest.starts_with('"')) return;
      text += '"';
      rest.remove_prefix(1);
    }
  }

  LineReader& file_;
  std::optional<char> separator_;
  std::int64_t line_ = 0;
};

/// A column as it is read, before it turns out what it holds.
struct Draft {
  Column column;
  std::vector<double> values;
  int numbers = 0;
  int words = 0;
  OtherColumn firstWord;
};

bool isMissing(std::string_view text) {
  return text.empty() || text == "NA" || text == "###" || zel::EqualIgnoringCase(text, "NAN");
}

void add(Draft& draft, std::string_view text, int row, std::int64_t line) {
  const auto number = zel::ParseNumber(text);
  draft.values.push_back(number.value_or(0));
  if (number) {
    ++draft.numbers;
  } else if (isMissing(text)) {
    draft.column.missingRows.push_back(row);
  } else if (++draft.words == 1) {
    draft.firstWord.line = line;
    draft.firstWord.word = text;
  }
}

std::vector<Draft> readHeader(LineReader& file, Records& records) {
  std::vector<Cell> cells;
  if (!records.next(cells)) file.fail("holds nothing but blanks");
  if (std::all_of(cells.begin(), cells.end(),
                  [](const Cell& c) { return !c.quoted && zel::ParseNumber(c.text); })) {
    records.fail("the names of the columns should be here, not numbers");
  }
  std::vector<Draft> drafts(cells.size());
  int number = 0;
  for (Draft& draft : drafts) {
    draft.column.name = std::move(cells[static_cast<std::size_t>(number)].text);
    draft.column.number = ++number;
  }
  return drafts;
}

/// 0 if there is no column with this name or number.
int numberOfColumn(const std::vector<Draft>& drafts, const std::string& wanted) {
  if (wanted.empty()) return 0;
  for (const Draft& draft : drafts) {
    if (draft.column.name == wanted) return draft.column.number;
  }
  for (const Draft& draft : drafts) {
    if (std::to_string(draft.column.number) == wanted) return draft.column.number;
  }
  return 0;
}

bool allDiffer(const std::vector<std::string>& texts) {
  return std::unordered_set<std::string_view>(texts.begin(), texts.end()).size() == texts.size();
}

bool namesRows(const Draft& first, const std::vector<std::string>& texts) {
  return (first.column.name.empty() || first.words > first.numbers) && allDiffer(texts);
}

}  // namespace

ColumnValues readCsvTable(LineReader& file, Table& table, const std::string& labelColumn) {
  Records records(file);
  std::vector<Draft> drafts = readHeader(file, records);
  table.labelColumn = numberOfColumn(drafts, labelColumn);
  std::vector<std::string> firstTexts;
  for (std::vector<Cell> cells; records.next(cells);) {
    if (cells.size() != drafts.size()) {
      records.fail("the row has " + counted(static_cast<long long>(cells.size()), "cell") +
                   ", and the header line has " + std::to_string(drafts.size()));
    }
    if (table.rows == std::numeric_limits<int>::max()) records.fail("there are too many rows");
    ++table.rows;
    for (std::size_t c = 0; c < cells.size(); ++c) {
      add(drafts[c], cells[c].text, table.rows, records.line());
    }
    if (table.labelColumn > 0) {
      const std::string& text = cells[static_cast<std::size_t>(table.labelColumn) - 1].text;
      table.labels.push_back(isMissing(text) ? "" : text);
    }
    firstTexts.push_back(std::move(cells[0].text));
  }
  if (table.rows == 0) records.fail("there are no rows after the header line");

  auto draft = drafts.begin();
  if (drafts.size() > 1 && namesRows(drafts[0], firstTexts)) {
    table.rowNames = std::move(firstTexts);
    ++draft;
  }
  ColumnValues values;
  for (; draft != drafts.end(); ++draft) {
    if (draft->words > 0) {
      OtherColumn& other = table.others.emplace_back(std::move(draft->firstWord));
      other.name = std::move(draft->column.name);
      other.number = draft->column.number;
      other.isText = draft->words > draft->numbers;
    } else if (draft->numbers > 0 || !draft->column.name.empty()) {
      table.columns.push_back(std::move(draft->column));
      values.push_back(std::move(draft->values));
    }
  }
  return values;
}

}  // namespace tool
