/// @file
/// Binary files of matrices: from rows in the file to columns in the storage. Internal.
#pragma once

#include <algorithm>
#include <vector>

#include "zel/base/array.h"
#include "zel/base/wholefile.h"
#include "zel/kernels/dense.h"
#include "zel/kernels/integer_products.h"
#include "zel/kernels/products.h"
#include "zel/matrix/binary_form_impl.h"
#include "zel/matrix/number_form_impl.h"

namespace zel::detail {

/// Calls use(r, part, block) for runs of rows of a matrix: the part that begins at row r, and a
/// block of the same size where each row is contiguous.
/// @throws std::bad_alloc
template <class T, class Use>
void ForRowBlocks(kernels::MatrixSpan<T> cells, Use&& use) {
  if (cells.empty()) return;
  constexpr std::size_t kBlock = std::size_t{1} << 16;
  const std::size_t height = std::clamp<std::size_t>(kBlock / cells.columns, 1, cells.rows);
  std::vector<std::remove_const_t<T>> block(height * cells.columns);
  for (std::size_t r = 0; r < cells.rows; r += height) {
    const std::size_t n = std::min(height, cells.rows - r);
    use(cells.block(r, 0, n, cells.columns), std::span(block).first(n * cells.columns));
  }
}

/// @return false if the file cannot be written
/// @throws std::bad_alloc
template <class T>
[[nodiscard]] bool SaveBinaryMatrix(std::string_view fileName, kernels::MatrixSpan<const T> cells,
                                    std::string_view id) {
  WholeFileWriter file(fileName);
  if (!file.IsOpen()) return false;
  TBinaryWriter writer(file.Stream(), {static_cast<int>(cells.columns),
                                       static_cast<int>(cells.rows), 0, 0, id, kElementFormat<T>});
  ForRowBlocks(cells, [&](kernels::MatrixSpan<const T> part, std::span<T> block) {
    if (!file.Stream()) return;
    kernels::transpose(part, {block.data(), part.columns, part.rows, part.columns});
    writer.Write(block);
  });
  writer.Finish();
  return file.Commit();
}

/// @param cells  at least one column and row
/// @return false, with nothing changed, if the file is none of a matrix with such elements
/// @throws EInOutError, std::bad_alloc
template <class T>
[[nodiscard]] bool LoadBinaryMatrix(std::string_view fileName, TDynArray<T, 2>& cells,
                                    TBinaryHeader& header) {
  TBinaryReader reader(fileName);
  const TBinaryHeader& found = reader.Header();
  if (!found.IsMatrix(kElementFormat<T>) || std::min(found.Columns, found.Rows) < 0) return false;
  reader.Seek(0, found.LayerSize(), sizeof(T));
  const auto held = static_cast<std::size_t>(found.LayerSize());
  if (!IsBorneOut(found.Columns, found.Rows, held, 0)) return false;
  const auto columns = static_cast<std::size_t>(found.Columns);
  const auto rows = static_cast<std::size_t>(found.Rows);
  TDynArray<T, 2> read(std::max<std::size_t>(columns, 1), std::max<std::size_t>(rows, 1));
  ForRowBlocks(kernels::MatrixSpan<T>{read.data(), rows, columns, rows},
               [&](kernels::MatrixSpan<T> part, std::span<T> block) {
                 reader.Read(block);
                 kernels::transpose({block.data(), part.columns, part.rows, part.columns}, part);
               });
  cells.swap(read);
  header = found;
  return true;
}

}  // namespace zel::detail
