// ASC files, number files and stream records of matrices: no more elements than the source has, and
// what is written is read again.
#include <bit>
#include <sstream>
#include <string>

#include "fuzz/target.h"
#include "zel/matrix/asc_form_impl.h"
#include "zel/matrix/number_form_impl.h"

namespace zel_fuzz {
namespace {

namespace form = zel::detail;

template <class T>
using View = zel::kernels::MatrixSpan<const T>;

template <class T>
void requireSame(const zel::TDynArray<T, 2>& a, const zel::TDynArray<T, 2>& b, const char* what) {
  require(a.Length(0) == b.Length(0) && a.Length(1) == b.Length(1), what);
  for (std::size_t k = 0; k < a.size(); ++k) {
    require(a.data()[k] == b.data()[k] || a.data()[k] != a.data()[k], what);
  }
}

template <class T>
void readAsc(std::string_view text) {
  form::TASCMatrix<T> read;
  const int result = form::ReadMatrixASC(text, read);
  require(result <= 4 && result >= -9, "a described result");
  if (result != 0) return;
  const auto columns = static_cast<std::size_t>(read.Columns);
  const auto rows = static_cast<std::size_t>(read.Rows);
  require(columns * rows <= text.size(), "a value for each element");
  if (read.Values.size() > 10000) return;
  std::ostringstream out;
  form::WriteMatrixASC(out, {"C", "f", read.Comment, -1, &read.CustData},
                       View<T>{read.Values.data(), rows, columns, read.Values.Length(1)});
  form::TASCMatrix<T> again;
  require(form::ReadMatrixASC(out.str(), again) == 0, "a written file reads");
  requireSame(read.Values, again.Values, "the same values");
  require(read.CustData == again.CustData, "the same texts");
}

template <class T>
void readNumbers(std::string_view text) {
  form::TStoredRectangle<T> read;
  if (form::ReadNumberFile(text, read)) {
    require(read.Values.size() <= text.size(), "a word for each element");
    std::ostringstream out;
    form::WriteNumberFile(out, read.Bounds,
                          View<T>{read.Values.data(), read.Values.Length(1), read.Values.Length(0),
                                  read.Values.Length(1)},
                          form::TNumberFormat{});
    form::TStoredRectangle<T> again;
    require(form::ReadNumberFile(out.str(), again), "a written file reads");
    requireSame(read.Values, again.Values, "the same numbers");
  }
  std::istringstream in{std::string(text)};
  form::TStoredRectangle<T> record;
  if (!form::ReadRecord(in, record)) return;
  require(record.Values.size() * 4 <= text.size(), "an item for each element");
  std::stringstream copy;
  form::WriteRecord(copy, record.Bounds,
                    View<T>{record.Values.data(), record.Values.Length(1), record.Values.Length(0),
                            record.Values.Length(1)});
  form::TStoredRectangle<T> again;
  require(form::ReadRecord(copy, again), "a written record reads");
  requireSame(record.Values, again.Values, "the same items");
}

}  // namespace

int FuzzMatrixText(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = textOf(data, size);
  readAsc<double>(text);
  readAsc<int>(text);
  readNumbers<double>(text);
  readNumbers<int>(text);
  form::TStoredRectangle<double> table;
  if (form::ReadNumberTable(text, table)) {
    require(table.Values.size() <= size, "a word for each element");
  }
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(matrix_text, zel_fuzz::FuzzMatrixText)
