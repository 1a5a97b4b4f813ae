#include "zel/openarrays/arrayfiles.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "zel/base/wholefile.h"
#include "zel/kernels/rows.h"
#include "zel/matrix/binary_form_impl.h"
#include "zel/openarrays/array_form_impl.h"
#include "zel/openarrays/cells_impl.h"

namespace zel {

namespace {

using detail::kDone;
using detail::kEmpty;
using detail::kInvalid;
using detail::TBlock;
using detail::TExtents;

constexpr int kFileFault = -3;
constexpr int kExists = -4;
constexpr int kOtherContents = -4;

constexpr std::size_t kMostIndices = std::numeric_limits<int>::max();

// Text.

/// The cells as a matrix, a layer below the other, in storage that is used where they must move.
template <class T>
kernels::MatrixSpan<const T> asMatrix(const TBlock<const T, 1>& a, TDynArray<T, 2>&) {
  return {a.data, a.extents[0], 1, a.extents[0]};
}
template <class T>
kernels::MatrixSpan<const T> asMatrix(const TBlock<const T, 2>& a, TDynArray<T, 2>&) {
  return detail::MatrixOf(a);
}
template <class T>
kernels::MatrixSpan<const T> asMatrix(const TBlock<const T, 3>& a, TDynArray<T, 2>& room) {
  const auto [columns, rows, layers] = a.extents;
  room.SetLength(columns, rows * layers);
  const T* next = a.data;
  for (std::size_t c = 0; c < columns; ++c) {
    for (std::size_t r = 0; r < rows; ++r) {
      for (std::size_t l = 0; l < layers; ++l) room(c, l * rows + r) = *next++;
    }
  }
  return detail::MatrixOf(std::as_const(room));
}

/// Columns and rows that the file of a block announces.
template <class T, int Rank>
bool areExtentsAllowed(const TBlock<T, Rank>& a) {
  if constexpr (Rank == 3) {
    if (a.extents[1] > kMostIndices / a.extents[2]) return false;
  }
  return std::ranges::all_of(a.extents, [](std::size_t n) { return n <= kMostIndices; });
}

template <class T, int Rank>
int storeText(std::string_view name, const TBlock<const T, Rank>& a, std::string_view comment,
              bool overWrite) {
  if (a.empty()) return kEmpty;
  if (!areExtentsAllowed(a)) return kInvalid;
  if (!overWrite && FileExists(name)) return kExists;
  return detail::GuardArrays("StoreArray", [&] {
    TDynArray<T, 2> room;
    const auto cells = asMatrix(a, room);
    WholeFileWriter file(name);
    if (file.IsOpen()) {
      detail::WriteArrayText(file.Stream(), comment, Rank == 3 ? a.extents[2] : 0, cells);
    }
    return file.Commit() ? kDone : kFileFault;
  });
}

/// Moves the cells that were read to an array, if they are those of one of its rank.
template <class T>
bool takeCells(detail::TStoredArray<T>& read, std::vector<T>& a) {
  if (read.Layers != 0 || read.Cells.Values.Length(0) != 1) return false;
  a.assign(read.Cells.Values.begin(), read.Cells.Values.end());
  return true;
}
template <class T>
bool takeCells(detail::TStoredArray<T>& read, TDynArray<T, 2>& a) {
  if (read.Layers != 0) return false;
  a.swap(read.Cells.Values);
  return true;
}
template <class T>
bool takeCells(detail::TStoredArray<T>& read, TDynArray<T, 3>& a) {
  if (read.Layers == 0) return false;
  const auto& cells = read.Cells.Values;
  const std::size_t rows = cells.Length(1) / read.Layers;
  TDynArray<T, 3> taken(cells.Length(0), rows, read.Layers);
  T* next = taken.data();
  for (std::size_t c = 0; c < cells.Length(0); ++c) {
    for (std::size_t r = 0; r < rows; ++r) {
      for (std::size_t l = 0; l < read.Layers; ++l) *next++ = cells(c, l * rows + r);
    }
  }
  a.swap(taken);
  return true;
}

template <class Result>
int loadText(std::string_view name, Result& a, std::string& comment) {
  return detail::GuardArrays("LoadArray", [&] {
    const auto text = ReadWholeFile(name);
    if (!text) return kFileFault;
    detail::TStoredArray<typename Result::value_type> read;
    if (!detail::ReadArrayText(*text, read) || !takeCells(read, a)) return kOtherContents;
    comment.swap(read.Comment);
    return kDone;
  });
}

// Binary.

/// Columns, rows, layers and time slots; 1 where an array has less dimensions.
template <int Rank>
TExtents<4> fourExtents(const TExtents<Rank>& extents) {
  TExtents<4> four{1, 1, 1, 1};
  std::ranges::copy(extents, four.begin());
  return four;
}

/// Calls use(place) for the first cell of each row, in the order of the file. The cells of a row
/// are as far from each other as a column is long.
template <class Use>
void forEachRowStart(const TExtents<4>& n, Use&& use) {
  for (std::size_t t = 0; t < n[3]; ++t) {
    for (std::size_t l = 0; l < n[2]; ++l) {
      for (std::size_t r = 0; r < n[1]; ++r) use((r * n[2] + l) * n[3] + t);
    }
  }
}

template <class T, int Rank>
void writeCells(detail::TBinaryWriter& writer, const TBlock<const T, Rank>& a) {
  const auto n = fourExtents<Rank>(a.extents);
  const std::size_t step = a.size() / n[0];
  std::vector<T> row(n[0]);
  forEachRowStart(n, [&](std::size_t start) {
    for (std::size_t c = 0; c < row.size(); ++c) row[c] = a.data[start + c * step];
    writer.Write(std::span<const T>(row));
  });
}

template <class T>
void writeCells(detail::TBinaryWriter& writer, const TBlock<const T, 2>& a) {
  kernels::forEachRow(detail::MatrixOf(a),
                      [&](std::size_t, std::span<const T> row) { writer.Write(row); });
}

template <class T, int Rank>
int saveBinary(std::string_view name, const TBlock<const T, Rank>& a, std::string_view id) {
  if (a.empty()) return kEmpty;
  if (!std::ranges::all_of(a.extents, [](std::size_t n) { return n <= kMostIndices; })) {
    return kInvalid;
  }
  const auto extent = [&](std::size_t d) { return d < Rank ? static_cast<int>(a.extents[d]) : 0; };
  detail::TBinaryHeader header;
  header.Columns = extent(0);
  header.Rows = extent(1);
  header.Layers = extent(2);
  header.TimeSlots = extent(3);
  header.DataID = id;
  header.Format = detail::kElementFormat<T>;
  return detail::GuardArrays("SaveBinaryArray", [&] {
    WholeFileWriter file(name);
    if (file.IsOpen()) {
      detail::TBinaryWriter writer(file.Stream(), header);
      writeCells(writer, a);
      writer.Finish();
    }
    return file.Commit() ? kDone : kFileFault;
  });
}

template <class T, int Rank>
int loadBinary(std::string_view name, TDynArray<T, Rank>& a, std::string& id) {
  return detail::GuardArrays("LoadBinaryArray", [&] {
    try {
      detail::TBinaryReader reader(name);
      const detail::TBinaryHeader& header = reader.Header();
      if (header.Format != detail::kElementFormat<T>) return kOtherContents;
      const std::array<int, 4> sizes{header.Columns, header.Rows, header.Layers, header.TimeSlots};
      TExtents<Rank> extents;
      std::uint64_t count = 1;
      for (std::size_t d = 0; d < sizes.size(); ++d) {
        if (d < Rank ? sizes[d] < 1 : sizes[d] != 0) return kOtherContents;
        if (d >= Rank) continue;
        extents[d] = static_cast<std::size_t>(sizes[d]);
        count = detail::TBinaryHeader::Product(count, extents[d]);
      }
      // The file must hold the cells before there is room for them.
      reader.Seek(0, count, sizeof(T));
      TDynArray<T, Rank> read;
      detail::SetExtents(read, extents);
      std::vector<T> row(extents[0]);
      const std::size_t step = read.size() / row.size();
      forEachRowStart(fourExtents<Rank>(extents), [&](std::size_t start) {
        reader.Read(std::span(row));
        for (std::size_t c = 0; c < row.size(); ++c) read.data()[start + c * step] = row[c];
      });
      id = std::string(header.DataID.view());
      a.swap(read);
      return kDone;
    } catch (const EInOutError&) {
      return kFileFault;
    }
  });
}

}  // namespace

int StoreArray(std::string_view FName, std::span<const double> Arr, std::string_view Comment,
               bool OverWrite) {
  return storeText(FName, detail::BlockOf(Arr), Comment, OverWrite);
}
int StoreArray(std::string_view FName, const TDouble2DArray& Arr, std::string_view Comment,
               bool OverWrite) {
  return storeText(FName, detail::BlockOf(Arr), Comment, OverWrite);
}
int StoreArray(std::string_view FName, const TDouble3DArray& Arr, std::string_view Comment,
               bool OverWrite) {
  return storeText(FName, detail::BlockOf(Arr), Comment, OverWrite);
}
int StoreArray(std::string_view FName, std::span<const int> Arr, std::string_view Comment,
               bool OverWrite) {
  return storeText(FName, detail::BlockOf(Arr), Comment, OverWrite);
}
int StoreArray(std::string_view FName, const TInt2DArray& Arr, std::string_view Comment,
               bool OverWrite) {
  return storeText(FName, detail::BlockOf(Arr), Comment, OverWrite);
}
int StoreArray(std::string_view FName, const TInt3DArray& Arr, std::string_view Comment,
               bool OverWrite) {
  return storeText(FName, detail::BlockOf(Arr), Comment, OverWrite);
}

int LoadArray(std::string_view FName, TDoubleArray& Arr, std::string& Comment) {
  return loadText(FName, Arr, Comment);
}
int LoadArray(std::string_view FName, TDouble2DArray& Arr, std::string& Comment) {
  return loadText(FName, Arr, Comment);
}
int LoadArray(std::string_view FName, TDouble3DArray& Arr, std::string& Comment) {
  return loadText(FName, Arr, Comment);
}
int LoadArray(std::string_view FName, TIntArray& Arr, std::string& Comment) {
  return loadText(FName, Arr, Comment);
}
int LoadArray(std::string_view FName, TInt2DArray& Arr, std::string& Comment) {
  return loadText(FName, Arr, Comment);
}
int LoadArray(std::string_view FName, TInt3DArray& Arr, std::string& Comment) {
  return loadText(FName, Arr, Comment);
}

int SaveBinaryArray(std::string_view FName, const TDouble2DArray& Arr, std::string_view DataID) {
  return saveBinary(FName, detail::BlockOf(Arr), DataID);
}
int SaveBinaryArray(std::string_view FName, const TDouble3DArray& Arr, std::string_view DataID) {
  return saveBinary(FName, detail::BlockOf(Arr), DataID);
}
int SaveBinaryArray(std::string_view FName, const TDouble4DArray& Arr, std::string_view DataID) {
  return saveBinary(FName, detail::BlockOf(Arr), DataID);
}
int SaveBinaryArray(std::string_view FName, const TInt2DArray& Arr, std::string_view DataID) {
  return saveBinary(FName, detail::BlockOf(Arr), DataID);
}

int LoadBinaryArray(std::string_view FName, TDouble2DArray& Arr, std::string& DataID) {
  return loadBinary(FName, Arr, DataID);
}
int LoadBinaryArray(std::string_view FName, TDouble3DArray& Arr, std::string& DataID) {
  return loadBinary(FName, Arr, DataID);
}
int LoadBinaryArray(std::string_view FName, TDouble4DArray& Arr, std::string& DataID) {
  return loadBinary(FName, Arr, DataID);
}
int LoadBinaryArray(std::string_view FName, TInt2DArray& Arr, std::string& DataID) {
  return loadBinary(FName, Arr, DataID);
}

int ReadBinaryArrayHeader(std::string_view FName, int& NrColumns, int& NrRows, int& NrLayers,
                          int& NrTimeSlots, std::string& DataID, int& Format) {
  try {
    const detail::TBinaryReader reader(FName);
    const detail::TBinaryHeader& header = reader.Header();
    DataID = header.DataID.view();
    NrColumns = header.Columns;
    NrRows = header.Rows;
    NrLayers = header.Layers;
    NrTimeSlots = header.TimeSlots;
    Format = header.Format;
  } catch (const EInOutError&) {
    return kFileFault;
  }
  return kDone;
}

}  // namespace zel
