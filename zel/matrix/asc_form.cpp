#include "zel/matrix/asc_form_impl.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <sstream>
#include <type_traits>
#include <utility>
#include <vector>

#include "zel/base/ascheader.h"
#include "zel/base/ascheader_impl.h"
#include "zel/base/ascii_impl.h"
#include "zel/base/numbertext_impl.h"
#include "zel/base/textreading.h"
#include "zel/base/textwriter_impl.h"
#include "zel/matrix/number_form_impl.h"
#include "zel/vector/files_impl.h"

namespace zel::detail {

namespace {

constexpr int kBadAttribute = -5;
constexpr int kBadValue = -6;
constexpr int kBadMore = -9;

constexpr std::string_view kCustom = ";custom";
constexpr std::string_view kEnd = ";end";
/// Of values with a fixed number of decimals, as the vectors write them.
constexpr std::size_t kWidth = 12;

// Writing.

template <class T>
void appendValue(std::string& text, T x, int precision) {
  if constexpr (std::is_integral_v<T>) {
    char digits[24];
    text.append(digits, std::to_chars(digits, std::end(digits), x).ptr);
  } else {
    const std::size_t start = text.size();
    appendNumber(text, x, precision);
    const std::size_t length = text.size() - start;
    if (precision >= 0 && length < kWidth) text.insert(start, kWidth - length, ' ');
  }
}

void writeCustom(std::ostream& out, const TStr2DArray& texts, std::size_t rows) {
  std::string text = std::string(kASCMore).append("\t;what the rows do not tell\n");
  for (std::size_t k = 0; k < texts.Length(0) && out; ++k) {
    text.append(kCustom).append("\t");
    appendValue(text, static_cast<int>(k + 1), 0);
    for (std::size_t r = 0; r < rows; ++r) {
      text += '\t';
      AppendASCText(text, r < texts.Length(1) ? texts(k, r) : std::string_view());
    }
    text += '\n';
    out << text;
    text.clear();
  }
  out << kEnd << '\n';
}

template <class T>
class TMatrixWriter : TextWriter {
 public:
  using TextWriter::TextWriter;

  void write(const TASCSource& source, kernels::MatrixSpan<const T> cells) {
    WriteASCHeader(FOut, source.ClassName, source.FileName, source.Comment,
                   static_cast<int>(cells.columns), static_cast<int>(cells.rows),
                   std::string("FALSE FALSE FALSE FALSE").append(kASCLegend));
    for (std::size_t r = 0; r < cells.rows && cells.columns > 0; ++r) {
      for (std::size_t c = 0; c < cells.columns; ++c) {
        appendValue(FText, cells(r, c), source.Precision);
        FText += c + 1 < cells.columns ? '\t' : '\n';
      }
      if (!flushIfLong()) return;
    }
    flush();
    if (source.CustData && source.CustData->Length(0) > 0) {
      writeCustom(FOut, *source.CustData, cells.rows);
    }
  }
};

// Reading.

/// Takes the value of a cell; a missing one is 0.
bool takeValue(std::string_view& text, double& x) {
  std::size_t blanks = 0;
  while (blanks < text.size() && isBlank(text[blanks])) ++blanks;
  text.remove_prefix(blanks);
  if (text.starts_with('#')) {
    x = 0;
    return ReadNextWord(text) == "###";
  }
  const auto number = TakeNumber(text);
  x = number && !std::isnan(*number) ? *number : 0;
  return number.has_value();
}

/// Reads the texts of the further columns, if the lines behind the rows are there.
int readMore(std::string_view text, std::size_t rows, TStr2DArray& texts) {
  std::vector<std::vector<std::string>> columns;
  std::string_view line;
  do {
    if (text.empty()) {
      texts.clear();
      return 0;
    }
    line = ReadNextLine(text);
  } while (ReadNextWord(line) != kASCMore);
  for (;;) {
    if (text.empty()) return kBadMore;
    line = ReadNextLine(text);
    const std::string_view word = ReadNextWord(line);
    if (word == kEnd) break;
    if (word != kCustom) continue;
    if (TakeNumber(line) != static_cast<double>(columns.size() + 1)) return kBadMore;
    std::vector<std::string>& column = columns.emplace_back();
    for (;;) {
      line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
      if (line.empty()) break;
      auto entry = TakeASCText(line);
      if (!entry || column.size() == rows) return kBadMore;
      column.push_back(*std::move(entry));
    }
    if (column.size() != rows) return kBadMore;
  }
  TStr2DArray read(columns.size(), columns.empty() ? 0 : rows);
  for (std::size_t k = 0; k < columns.size(); ++k) std::ranges::move(columns[k], read[k].begin());
  texts.swap(read);
  return 0;
}

template <class T>
int readMatrix(std::string_view text, TASCMatrix<T>& read) {
  std::string_view rest = text;
  for (int line = 0; line < 4; ++line) ReadNextLine(rest);
  std::istringstream head{std::string(text.substr(0, text.size() - rest.size()))};
  TASCHeader header;
  const int result = ReadHeaderOfASC(head, header);
  read.Comment = header.Comment;
  if (result != 0) return result;
  const auto columns = static_cast<std::size_t>(header.NCols);
  const auto rows = static_cast<std::size_t>(header.NRows);
  std::string name;
  // Each name takes bytes, so that the text ends the loop long before a forged count.
  for (std::size_t c = 0; header.ColNames && c < columns && !rest.empty(); ++c) {
    ReadQuotedName(rest, '"', name);
  }
  // A value takes two bytes but for the last one.
  if (columns * rows > rest.size() / 2 + 1 ||
      !IsBorneOut(header.NCols, header.NRows, 0, rest.size()))
    return kBadValue;
  TDynArray<T, 2> values(std::max<std::size_t>(columns, 1), std::max<std::size_t>(rows, 1));
  for (std::size_t r = 0; r < rows && columns > 0; ++r) {
    if (header.RowAttr && !TakeNumber(rest)) return kBadAttribute;
    if (header.RowNames) ReadQuotedName(rest, '"', name);
    for (std::size_t c = 0; c < columns; ++c) {
      double x = 0;
      if (!takeValue(rest, x)) return kBadValue;
      values(c, r) = ElementFrom<T>(x);
    }
  }
  if (const int more = readMore(rest, rows, read.CustData); more != 0) return more;
  read.Columns = header.NCols;
  read.Rows = header.NRows;
  read.Values.swap(values);
  return 0;
}

}  // namespace

void WriteMatrixASC(std::ostream& out, const TASCSource& source,
                    kernels::MatrixSpan<const double> cells) {
  TMatrixWriter<double>(out).write(source, cells);
}

void WriteMatrixASC(std::ostream& out, const TASCSource& source,
                    kernels::MatrixSpan<const int> cells) {
  TMatrixWriter<int>(out).write(source, cells);
}

int ReadMatrixASC(std::string_view text, TASCMatrix<double>& read) {
  return readMatrix(text, read);
}

int ReadMatrixASC(std::string_view text, TASCMatrix<int>& read) { return readMatrix(text, read); }

}  // namespace zel::detail
