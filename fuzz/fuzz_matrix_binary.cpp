// Binary files of all classes. What is read takes no more memory than the file holds, and what is
// written again has the same elements, byte for byte.
#include <algorithm>
#include <string>

#include "fuzz/scratch_file.h"
#include "fuzz/target.h"
#include "zel/base/errors.h"
#include "zel/matrix/binary_arrays_impl.h"
#include "zel/matrix/binary_matrix_impl.h"

namespace zel_fuzz {
namespace {

namespace form = zel::detail;

/// Lets one reader take the file; a file that is cut off, or for want of memory, ends it.
template <class Read>
bool accepts(Read&& read) {
  try {
    return read();
  } catch (const zel::EInOutError&) {
    return false;
  }
}

/// The file that a reader has accepted and that is there again.
void requireSame(std::string_view bytes, std::size_t offset, std::size_t length) {
  require(scratchFile().read().compare(offset, length, bytes, offset, length) == 0,
          "what is written is what was read");
}

template <class T>
void readMatrix(std::string_view bytes) {
  zel::TDynArray<T, 2> cells;
  form::TBinaryHeader header;
  const std::string& name = scratchFile().name();
  scratchFile().write(bytes);
  if (!accepts([&] { return form::LoadBinaryMatrix(name, cells, header); })) return;
  const auto columns = static_cast<std::size_t>(header.Columns);
  const auto rows = static_cast<std::size_t>(header.Rows);
  require(columns * rows * sizeof(T) <= bytes.size(), "the size is borne out by the file");
  const zel::kernels::MatrixSpan<const T> view{cells.data(), rows, columns, rows};
  require(form::SaveBinaryMatrix(name, view, header.DataID), "a scratch file can be written");
  requireSame(bytes, 4096, columns * rows * sizeof(T));
}

}  // namespace

int FuzzMatrixBinary(const std::uint8_t* data, std::size_t size) {
  // Most of the header is empty, so that a search would seldom get behind it: 24 bytes stand for
  // counts, format and number of cells, and the elements follow at once.
  std::string bytes(4096, '\0');
  const std::string_view text = textOf(data, size);
  const auto copy = [&](std::size_t from, std::size_t count, std::size_t to) {
    if (from < size) text.copy(&bytes[to], count, from);
  };
  copy(0, 16, 0);
  copy(16, 8, 272);
  copy(24, 1, 16);
  if (size > 25) bytes += text.substr(25);
  if (size % 2 == 0) bytes.resize((bytes.size() + 4095) / 4096 * 4096);

  readMatrix<double>(bytes);
  readMatrix<int>(bytes);
  const std::string& name = scratchFile().name();
  std::string id;

  zel::TDouble3DArray stack;
  scratchFile().write(bytes);
  if (accepts([&] { return form::LoadBinaryArray(name, stack, id); })) {
    require(stack.size() * 8 <= bytes.size(), "the size is borne out by the file");
    require(form::SaveBinaryArray(name, stack, id), "a scratch file can be written");
    requireSame(bytes, 4096, stack.size() * 8);
  }
  zel::TDouble4DArray series;
  const int start = size == 0 ? 0 : data[size - 1] % 4;
  scratchFile().write(bytes);
  if (accepts([&] { return form::LoadBinaryArray(name, start, 9, false, series, id) == 0; })) {
    require(series.size() * 8 <= bytes.size(), "the size is borne out by the file");
    const auto slots = static_cast<int>(series.Length(0));
    require(form::SaveBinaryArray(name, series, 0, slots - 1, id), "a scratch file can be written");
    if (start < 2) requireSame(bytes, 4096, series.size() * 8);
  }
  form::TBinaryHeader header;
  form::TSparseCells cells;
  scratchFile().write(bytes);
  if (accepts([&] { return form::LoadSparseCells(name, header, cells); })) {
    require(cells.size() * 12 <= bytes.size(), "the size is borne out by the file");
    require(form::SaveSparseCells(name, header, cells), "a scratch file can be written");
    requireSame(bytes, 4096, cells.size() * 12);
  }
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(matrix_binary, zel_fuzz::FuzzMatrixBinary)
