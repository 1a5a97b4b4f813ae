#include "zel/matrix/number_form_impl.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>

#include "zel/base/ascii_impl.h"
#include "zel/base/numbertext_impl.h"
#include "zel/base/rounding.h"
#include "zel/base/textreading.h"
#include "zel/base/textwriter_impl.h"
#include "zel/vector/files_impl.h"

namespace zel::detail {

namespace {

// Writing.

class TNumberWriter : public TextWriter {
 public:
  TNumberWriter(std::ostream& out, TNumberFormat format) : TextWriter(out), FFormat(format) {}

  template <class T>
  void value(T x) {
    const std::size_t start = FText.size();
    if constexpr (std::is_integral_v<T>) {
      char digits[24];
      FText.append(digits, std::to_chars(digits, digits + sizeof digits, x).ptr);
    } else {
      appendNumber(FText, x, FFormat.Decimals);
    }
    const std::size_t length = FText.size() - start;
    const auto width = static_cast<std::size_t>(FFormat.Width);
    if (length < width) FText.insert(start, width - length, ' ');
  }
  /// @return false if no more can be written
  bool separator(char c) {
    FText += c;
    return flushIfLong();
  }

 private:
  TNumberFormat FFormat;
};

template <class T>
void writeNumbers(std::ostream& out, const TBounds& bounds, kernels::MatrixSpan<const T> cells,
                  TNumberFormat format) {
  out << bounds.LowCol << ' ' << bounds.LowRow << ' ' << bounds.HighCol << ' ' << bounds.HighRow
      << '\n';
  if (cells.empty()) return;
  TNumberWriter writer(out, format);
  for (std::size_t r = 0; r < cells.rows; ++r) {
    for (std::size_t c = 0; c < cells.columns; ++c) {
      writer.value(cells(r, c));
      if (!writer.separator(c + 1 < cells.columns ? ' ' : '\n')) return;
    }
  }
  writer.flush();
}

template <class T>
void writeRecord(std::ostream& out, const TBounds& bounds, kernels::MatrixSpan<const T> cells) {
  for (const int bound : {bounds.LowCol, bounds.LowRow, bounds.HighCol, bounds.HighRow}) {
    WriteItem<T>(out, static_cast<T>(bound));
  }
  if (cells.empty()) return;  // even of very many columns
  for (std::size_t c = 0; c < cells.columns && out; ++c) {
    for (const T x : cells[c]) WriteItem<T>(out, x);
  }
}

// Reading.

/// Takes four bounds by next(); nothing if one is missing or they are not those of a rectangle.
template <class Next>
std::optional<TBounds> takeBounds(Next&& next) {
  int bounds[4] = {};
  for (int& bound : bounds) {
    const std::optional<double> x = next();
    if (!x) return std::nullopt;
    bound = RoundToInt<int>(*x);
    if (bound != *x) return std::nullopt;
  }
  const TBounds b{bounds[0], bounds[1], bounds[2], bounds[3]};
  const bool isRectangle =
      b.LowCol >= 1 && b.LowRow >= 1 && b.HighCol >= b.LowCol - 1 && b.HighRow >= b.LowRow - 1;
  return isRectangle ? std::optional(b) : std::nullopt;
}

std::size_t columnsOf(const TBounds& b) {
  return static_cast<std::size_t>(b.HighCol - b.LowCol + 1);
}
std::size_t rowsOf(const TBounds& b) { return static_cast<std::size_t>(b.HighRow - b.LowRow + 1); }

/// Makes the array of values that are there row by row.
template <class T>
void takeRows(const std::vector<T>& values, std::size_t columns, std::size_t rows,
              TDynArray<T, 2>& array) {
  array.SetLength(columns, rows);
  if (array.empty()) return;  // even of very many rows
  for (std::size_t r = 0; r < rows; ++r) {
    for (std::size_t c = 0; c < columns; ++c) array(c, r) = values[r * columns + c];
  }
}

template <class T>
bool readNumbers(std::string_view text, TStoredRectangle<T>& read) {
  const auto bounds = takeBounds([&] { return TakeNumber(text); });
  if (!bounds) return false;
  const std::size_t columns = columnsOf(*bounds);
  const std::size_t rows = rowsOf(*bounds);
  const std::size_t count = columns * rows;
  // A value takes two bytes but for the last one.
  if (count > text.size() / 2 + 1) return false;
  std::vector<T> values(count);
  for (T& value : values) {
    const auto x = TakeNumber(text);
    if (!x) return false;
    value = ElementFrom<T>(*x);
  }
  read.Bounds = *bounds;
  takeRows(values, columns, rows, read.Values);
  return true;
}

template <class T>
std::optional<T> readItem(std::istream& in) {
  bool fail = false;
  const T x = ReadItem<T>(in, fail);
  return fail ? std::nullopt : std::optional(x);
}

template <class T>
bool readRecord(std::istream& in, TStoredRectangle<T>& read) {
  const auto bounds = takeBounds([&] { return readItem<T>(in); });
  if (!bounds) return false;
  const std::size_t columns = columnsOf(*bounds);
  const std::size_t rows = rowsOf(*bounds);
  const std::size_t count = columns * rows;
  // What the stream holds, not what it announces, decides how much is allocated.
  TDynArray<T, 1> values;
  for (std::size_t k = 0; k < count; ++k) {
    const auto x = readItem<T>(in);
    if (!x) return false;
    values.push_back(*x);
  }
  read.Bounds = *bounds;
  read.Values.SetLength(columns, rows);
  std::copy(values.begin(), values.end(), read.Values.begin());
  return true;
}

}  // namespace

std::optional<double> TakeNumber(std::string_view& text) {
  std::size_t blanks = 0;
  while (blanks < text.size() && isBlank(text[blanks])) ++blanks;
  text.remove_prefix(blanks);
  // Most words are finite numbers, whose end need not be searched for.
  double x = 0;
  const std::size_t length = scanNumber(text, std::chars_format::general, x);
  if (length > 0 && std::isfinite(x) && (length == text.size() || isBlank(text[length]))) {
    text.remove_prefix(length);
    return x;
  }
  return numberOf(ReadNextWord(text));
}

void WriteNumberFile(std::ostream& out, const TBounds& bounds,
                     kernels::MatrixSpan<const double> cells, TNumberFormat format) {
  writeNumbers(out, bounds, cells, format);
}

void WriteNumberFile(std::ostream& out, const TBounds& bounds, kernels::MatrixSpan<const int> cells,
                     TNumberFormat format) {
  writeNumbers(out, bounds, cells, format);
}

void WriteRecord(std::ostream& out, const TBounds& bounds,
                 kernels::MatrixSpan<const double> cells) {
  writeRecord(out, bounds, cells);
}

void WriteRecord(std::ostream& out, const TBounds& bounds, kernels::MatrixSpan<const int> cells) {
  writeRecord(out, bounds, cells);
}

bool ReadNumberFile(std::string_view text, TStoredRectangle<double>& read) {
  return readNumbers(text, read);
}

bool ReadNumberFile(std::string_view text, TStoredRectangle<int>& read) {
  return readNumbers(text, read);
}

bool ReadRecord(std::istream& in, TStoredRectangle<double>& read) { return readRecord(in, read); }

bool ReadRecord(std::istream& in, TStoredRectangle<int>& read) { return readRecord(in, read); }

bool ReadNumberTable(std::string_view text, TStoredRectangle<double>& read) {
  constexpr std::string_view kMark = "//dig";
  const bool isMarked = text.find(kMark) != text.npos;
  std::vector<double> values;
  std::size_t columns = 0;
  std::size_t rows = 0;
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (isMarked && line.find(kMark) == line.npos) continue;
    line = line.substr(0, line.find("//"));
    const std::size_t before = values.size();
    while (line.find_first_not_of(" \t\r") != line.npos) {
      const auto x = TakeNumber(line);
      if (!x) return false;
      values.push_back(*x);
    }
    const std::size_t found = values.size() - before;
    if (found == 0) continue;
    if (rows++ == 0) columns = found;
    if (found != columns) return false;
  }
  constexpr std::size_t kMost = std::numeric_limits<int>::max();
  if (rows == 0 || rows > kMost || columns > kMost) return false;
  read.Bounds = {1, 1, static_cast<int>(columns), static_cast<int>(rows)};
  takeRows(values, columns, rows, read.Values);
  return true;
}

}  // namespace zel::detail
