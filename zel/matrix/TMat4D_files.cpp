// TMat4D: binary files.
#include <array>
#include <filesystem>
#include <fstream>
#include <limits>
#include <vector>

#include "zel/base/wholefile.h"
#include "zel/kernels/products.h"
#include "zel/matrix/binary_arrays_impl.h"
#include "zel/matrix/mat4d_impl.h"

namespace zel {

using detail::TBinaryHeader;
using detail::TBinaryReader;
using detail::TSlots;

namespace {

constexpr std::size_t kRecordElements = detail::kBinaryRecord / sizeof(double);

bool isIndex(int i, int n) { return i >= 1 && i <= n; }

/// Reads a layer of a time slot that the file has, row by row; step(count) is called as elements
/// come.
/// @throws EInOutError, std::bad_alloc
template <class Step>
std::vector<double> readSlice(TBinaryReader& reader, int layer, int slot, Step&& step) {
  const TBinaryHeader& header = reader.Header();
  const std::uint64_t size = header.LayerSize();
  const std::uint64_t before =
      static_cast<std::uint64_t>(slot - 1) * static_cast<std::uint64_t>(header.Layers) +
      static_cast<std::uint64_t>(layer - 1);
  reader.Seek(TBinaryHeader::Product(size, before), size);
  std::vector<double> slice(static_cast<std::size_t>(size));
  for (std::size_t first = 0; first < slice.size(); first += kRecordElements) {
    const std::size_t n = std::min(kRecordElements, slice.size() - first);
    reader.Read(std::span(slice).subspan(first, n));
    step(n);
  }
  return slice;
}

}  // namespace

bool TMat4D::ReadBinaryHeader(std::string_view FName, int& NrColumns, int& NrRows, int& NrLayers,
                              int& NrTimeSlots, std::string& DataID, int& Format) {
  const TBinaryReader reader(FName);
  return reader.Header().Give(NrColumns, NrRows, NrLayers, NrTimeSlots, DataID, Format).Is4D();
}

void TMat4D::ReadElement(TObject*, int ix, int iy, int il, int it, double Value) {
  Fire(OnReadElement, this, ix, iy, il, it, Value);
}

int TMat4D::ReadBinary(std::string_view FName, int TSlotStart, int TSlotEnd) {
  TBinaryReader reader(FName);
  const TBinaryHeader& header = reader.Header();
  if (TSlotStart > header.TimeSlots) return -1;
  const TSlots slots(header, TSlotStart, TSlotEnd);
  const std::uint64_t total = slots.Seek(reader);
  if (total == 0) return 0;
  TPercent percent(*this, static_cast<std::size_t>(total));
  std::array<double, kRecordElements> record;
  std::uint64_t read = 0;
  std::size_t held = 0;
  std::size_t next = 0;
  const auto nextElement = [&] {
    if (next == held) {
      held = static_cast<std::size_t>(std::min<std::uint64_t>(record.size(), total - read));
      reader.Read(std::span(record).first(held));
      read += held;
      next = 0;
    }
    return record[next++];
  };
  for (int it = 1; it <= slots.Last - slots.First + 1; ++it) {
    for (int il = 1; il <= header.Layers; ++il) {
      for (int iy = 1; iy <= header.Rows; ++iy) {
        for (int ix = 1; ix <= header.Columns; ++ix) {
          ReadElement(this, ix, iy, il, it, nextElement());
          percent.Step();
        }
      }
    }
  }
  return 0;
}

int TMat4D::ReadLayer(std::string_view FName, int Layer, int TSlot) {
  TBinaryReader reader(FName);
  const TBinaryHeader& header = reader.Header();
  if (header.Columns != FNumX || header.Rows != FNumY) return -3;
  if (!isIndex(Layer, header.Layers) || !HasLayer(Layer)) return -2;
  if (!isIndex(TSlot, header.TimeSlots) || !HasTimeSlot(TSlot)) return -1;
  TPercent percent(*this, SliceSize());
  const auto slice = Guarded([&] {
    return readSlice(reader, Layer, TSlot, [&](std::size_t n) {
      for (; n > 0; --n) percent.Step();
    });
  });
  std::copy(slice.begin(), slice.end(), Mat.data() + Offset(1, 1, Layer, TSlot));
  return 0;
}

int TMat4D::SaveBinary(std::string_view FName, int TSlotStart, int TSlotEnd) const {
  MakeValidTSlotRange(TSlotStart, TSlotEnd);
  return Guarded([&] {
    return detail::SaveBinaryArray(FName, Mat, TSlotStart - 1, TSlotEnd - 1, FDataID) ? 0 : -1;
  });
}

void TMat4D::TakeAll(TDouble4DArray& contents, std::string_view id) {
  std::string newId = Guarded([&] { return std::string(id); });
  const auto before = View().Sizes;
  FDataID.swap(newId);
  TakeOver(contents);
  if (View().Sizes != before) Changed();
}

int TMat4D::LoadSlots(std::string_view FName, int TSlotStart, int TSlotEnd, bool ChecksFormat) {
  TDouble4DArray read;
  std::string id;
  const int result = Guarded(
      [&] { return detail::LoadBinaryArray(FName, TSlotStart, TSlotEnd, ChecksFormat, read, id); });
  if (result == 0) TakeAll(read, id);
  return result;
}

int TMat4D::LoadBinary(std::string_view FName, int TSlotStart, int TSlotEnd) {
  return LoadSlots(FName, TSlotStart, TSlotEnd, true);
}

int TMat4D::LoadBinaryNoFmtCheck(std::string_view FName, int TSlotStart, int TSlotEnd) {
  return LoadSlots(FName, TSlotStart, TSlotEnd, false);
}

namespace {

/// Writes elements behind the last one of a file, then the new number of time slots; if either
/// fails, the file gets its old length.
bool append(const std::string& fileName, const TBinaryHeader& newHeader, std::uint64_t oldElements,
            std::span<const double> elements) {
  std::error_code error;
  const auto size = std::filesystem::file_size(fileName, error);
  std::fstream file(fileName, std::ios::in | std::ios::out | std::ios::binary);
  if (error || !file) return false;
  file.seekp(static_cast<std::streamoff>(detail::kBinaryRecord + oldElements * sizeof(double)));
  detail::TBinaryWriter writer(file, oldElements * sizeof(double) % detail::kBinaryRecord);
  writer.Write(elements);
  writer.Finish();
  file.flush();
  const bool isWritten = file.good();
  // Only the number of time slots is new.
  if (isWritten) file.seekp(12) << detail::HeaderRecord(newHeader).substr(12, 4) << std::flush;
  if (file.good()) return true;
  file.close();
  std::filesystem::resize_file(fileName, size, error);
  return false;
}

}  // namespace

int TMat4D::AppendToBinaryFile(std::string_view FName, int TSlotStart, int TSlotEnd) const {
  if (!FileExists(FName)) return SaveBinary(FName, TSlotStart, TSlotEnd);
  MakeValidTSlotRange(TSlotStart, TSlotEnd);
  const int count = TSlotEnd - TSlotStart + 1;
  TBinaryHeader header;
  std::uint64_t held = 0;
  {
    TBinaryReader reader(FName);
    header = reader.Header();
    if (header.TimeSlots > std::numeric_limits<int>::max() - count) return -4;
    if (header.Columns != FNumX || header.Rows != FNumY || header.Layers != FNumZ) return -3;
    if (!header.Is4D()) return -2;
    held = TSlots(header, 0, 0).Seek(reader);
  }
  header.TimeSlots += count;
  const std::size_t slot = SliceSize() * static_cast<std::size_t>(FNumZ);
  const std::span<const double> added(&Mat(TSlotStart - 1, 0, 0, 0),
                                      slot * static_cast<std::size_t>(count));
  return Guarded([&] { return append(std::string(FName), header, held, added) ? 0 : -1; });
}

namespace {

/// Opens a file for take(columns, rows, code, read): the size of its layers, the code of what is
/// missing, and a callable that yields the layer.
/// @return what take returns
template <class Take>
int readLayer(std::string_view routine, std::string_view fileName, int layer, int slot,
              Take&& take) {
  return detail::GuardMemory(
      [&] {
        TBinaryReader reader(fileName);
        const TBinaryHeader& header = reader.Header();
        const auto columns = static_cast<std::size_t>(TBinaryHeader::Size(header.Columns));
        const auto rows = static_cast<std::size_t>(TBinaryHeader::Size(header.Rows));
        const bool hasLayer = isIndex(layer, header.Layers);
        const bool hasSlot = isIndex(slot, header.TimeSlots);
        return take(columns, rows,
                    !hasLayer  ? -2
                    : !hasSlot ? -1
                               : 0,
                    [&] { return readSlice(reader, layer, slot, [](std::size_t) {}); });
      },
      [&] { return EZELMatrixError(std::string(routine).append(": not enough memory on heap")); });
}

}  // namespace

int Read4DLayer(std::string_view FName, int Layer, int TSlot, TDouble2DArray& Data) {
  return readLayer("Read4DLayer", FName, Layer, TSlot,
                   [&](std::size_t columns, std::size_t rows, int code, auto&& read) {
                     if (code != 0) return code;
                     const std::vector<double> slice = read();
                     TDouble2DArray result(columns, rows);
                     kernels::transpose({slice.data(), columns, rows, columns},
                                        {result.data(), rows, columns, rows});
                     Data.swap(result);
                     return 0;
                   });
}

int Read4DLayerAndAccumulate(std::string_view FName, int Layer, int TSlot, TDouble2DArray& Data) {
  return readLayer("Read4DLayerAndAccumulate", FName, Layer, TSlot,
                   [&](std::size_t columns, std::size_t rows, int code, auto&& read) {
                     if (Data.Length(0) != columns || Data.Length(1) != rows) return -3;
                     if (code != 0) return code;
                     const std::vector<double> slice = read();
                     const double* next = slice.data();
                     for (std::size_t y = 0; y < rows; ++y) {
                       for (std::size_t x = 0; x < columns; ++x) Data(x, y) += *next++;
                     }
                     return 0;
                   });
}

}  // namespace zel
