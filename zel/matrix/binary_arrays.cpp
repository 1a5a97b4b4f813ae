#include "zel/matrix/binary_arrays_impl.h"

#include <algorithm>
#include <array>
#include <vector>

#include "zel/base/wholefile.h"

namespace zel::detail {

namespace {

/// Calls use(z, n, planes) for groups of layers, z from 0: planes has room for n of them in the
/// order of the file. Neighbouring layers share cache lines of the storage.
/// @throws std::bad_alloc
template <class Use>
void forLayerGroups(std::size_t columns, std::size_t rows, std::size_t layers, Use&& use) {
  constexpr std::size_t kMost = std::size_t{1} << 20;
  const std::size_t plane = columns * rows;
  const std::size_t together = std::clamp<std::size_t>(kMost / plane, 1, 8);
  std::vector<double> planes(std::min(together, layers) * plane);
  for (std::size_t z = 0; z < layers; z += together) {
    const std::size_t n = std::min(together, layers - z);
    use(z, n, std::span(planes).first(n * plane));
  }
}

/// Calls move(cells, places) for the n layers from z on of each pixel: they lie together in the
/// storage and at places[k * plane] in the planes.
template <class Array, class Move>
void forPixels(Array& array, std::size_t z, double* planes, Move&& move) {
  const std::size_t columns = array.Length(0);
  const std::size_t rows = array.Length(1);
  for (std::size_t x = 0; x < columns; ++x) {
    for (std::size_t y = 0; y < rows; ++y) {
      move(&array(x, y, z), planes + y * columns + x);
    }
  }
}

}  // namespace

bool SaveBinaryArray(std::string_view fileName, const TDouble3DArray& array, std::string_view id) {
  WholeFileWriter file(fileName);
  if (!file.IsOpen()) return false;
  const auto extent = [&](int dim) { return static_cast<int>(array.Length(dim)); };
  const std::size_t plane = array.Length(0) * array.Length(1);
  TBinaryWriter writer(file.Stream(), {extent(0), extent(1), extent(2), 0, id, kDoubleElements});
  forLayerGroups(array.Length(0), array.Length(1), array.Length(2),
                 [&](std::size_t z, std::size_t n, std::span<double> planes) {
                   if (!file.Stream()) return;
                   forPixels(array, z, planes.data(), [&](const double* cells, double* places) {
                     for (std::size_t k = 0; k < n; ++k) places[k * plane] = cells[k];
                   });
                   writer.Write(planes);
                 });
  writer.Finish();
  return file.Commit();
}

bool LoadBinaryArray(std::string_view fileName, TDouble3DArray& array, std::string& id) {
  TBinaryReader reader(fileName);
  const TBinaryHeader& header = reader.Header();
  if (!header.Is3D() || header.TimeSlotSize() == 0) return false;
  reader.Seek(0, header.TimeSlotSize());
  TDouble3DArray read(header.Columns, header.Rows, header.Layers);
  const std::size_t plane = read.Length(0) * read.Length(1);
  forLayerGroups(read.Length(0), read.Length(1), read.Length(2),
                 [&](std::size_t z, std::size_t n, std::span<double> planes) {
                   reader.Read(planes);
                   forPixels(read, z, planes.data(), [&](double* cells, const double* places) {
                     for (std::size_t k = 0; k < n; ++k) cells[k] = places[k * plane];
                   });
                 });
  id = header.DataID.view();
  array.swap(read);
  return true;
}

TSlots::TSlots(const TBinaryHeader& header, int start, int end)
    : First(start < 1 || end < 1 ? 1 : start),
      Last(start < 1 || end < 1 ? header.TimeSlots : std::min(end, header.TimeSlots)) {}

std::uint64_t TSlots::Seek(TBinaryReader& reader) const {
  const std::uint64_t slot = reader.Header().TimeSlotSize();
  const std::uint64_t count = TBinaryHeader::Product(slot, Count());
  reader.Seek(TBinaryHeader::Product(slot, static_cast<std::uint64_t>(First - 1)), count);
  return count;
}

bool SaveBinaryArray(std::string_view fileName, const TDouble4DArray& array, int first, int last,
                     std::string_view id) {
  WholeFileWriter file(fileName);
  if (!file.IsOpen()) return false;
  const auto extent = [&](int dim) { return static_cast<int>(array.Length(dim)); };
  const int count = last - first + 1;
  const std::size_t slot = array.Length(1) * array.Length(2) * array.Length(3);
  TBinaryWriter writer(file.Stream(),
                       {extent(3), extent(2), extent(1), count, id, kDoubleElements});
  writer.Write(
      std::span<const double>(&array(first, 0, 0, 0), slot * static_cast<std::size_t>(count)));
  writer.Finish();
  return file.Commit();
}

int LoadBinaryArray(std::string_view fileName, int start, int end, bool checksFormat,
                    TDouble4DArray& array, std::string& id) {
  TBinaryReader reader(fileName);
  const TBinaryHeader& header = reader.Header();
  const bool isOwn = header.Layers >= 1 && header.TimeSlots >= 1 && header.TimeSlotSize() > 0;
  if (!isOwn || (checksFormat && !header.Is4D())) return -2;
  const TSlots slots(header, start, end);
  if (slots.Count() == 0) return -1;
  slots.Seek(reader);
  TDouble4DArray read(slots.Count(), static_cast<std::size_t>(header.Layers),
                      static_cast<std::size_t>(header.Rows),
                      static_cast<std::size_t>(header.Columns));
  reader.Read(std::span(read.data(), read.size()));
  id = header.DataID.view();
  array.swap(read);
  return 0;
}

bool SaveSparseCells(std::string_view fileName, const TBinaryHeader& header,
                     const TSparseCells& cells) {
  WholeFileWriter file(fileName);
  if (!file.IsOpen()) return false;
  TBinaryWriter writer(file.Stream(), header);
  for (int k = 0; k < header.Cells && file.Stream(); ++k) {
    const TSpMatElemInt& cell = cells.data()[k];
    writer.Write(std::array{cell.colidx, cell.rowidx, cell.value});
  }
  writer.Finish();
  return file.Commit();
}

bool LoadSparseCells(std::string_view fileName, TBinaryHeader& header, TSparseCells& cells) {
  TBinaryReader reader(fileName);
  const TBinaryHeader& found = reader.Header();
  if (!found.IsMatrix(kSparseCells)) return false;
  if (std::min({found.Columns, found.Rows, found.Cells}) < 0) return false;
  const auto count = static_cast<std::size_t>(found.Cells);
  reader.Seek(0, 3 * std::uint64_t{count}, sizeof(int));
  TSparseCells read(count);
  TSpMatElemInt last{0, 0, 0};
  for (TSpMatElemInt& next : read) {
    std::array<int, 3> cell;
    reader.Read(cell);
    next = {cell[0], cell[1], cell[2]};
    const bool ascends =
        next.colidx > last.colidx || (next.colidx == last.colidx && next.rowidx > last.rowidx);
    const bool lies = next.colidx >= 1 && next.colidx <= found.Columns && next.rowidx >= 1 &&
                      next.rowidx <= found.Rows;
    if (!ascends || !lies) return false;
    last = next;
  }
  header = found;
  cells.swap(read);
  return true;
}

}  // namespace zel::detail
