/// @file
/// Binary files of matrices and of arrays with more dimensions. Internal.
///
/// A file consists of records of 4096 bytes. The first one is the header: numbers of columns, rows,
/// layers and time slots (layers 0 for a matrix, time slots 0 for less than four dimensions), at
/// offset 16 the DataID as a length byte and up to 255 bytes, at offset 272 the format of the
/// elements. The elements follow without gaps, time slot by time slot, layer by layer, row by row,
/// the columns of a row one after the other; the last record is filled up with zeros. Integers are
/// 32-bit two's complement, doubles IEEE 754, both little-endian.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>

#include "zel/base/shortstring.h"

namespace zel::detail {

inline constexpr std::size_t kBinaryRecord = 4096;

/// Formats of the elements.
inline constexpr int kDoubleElements = 1;
inline constexpr int kIntElements = 2;
inline constexpr int kSparseCells = 3;  ///< of a sparse matrix: column, row and value as integers

template <class T>
inline constexpr int kElementFormat = kDoubleElements;
template <>
inline constexpr int kElementFormat<int> = kIntElements;

struct TBinaryHeader {
  int Columns = 0;
  int Rows = 0;
  int Layers = 0;
  int TimeSlots = 0;
  TShortString<255> DataID;
  int Format = 0;
  int Cells = 0;  ///< of the format of sparse matrices, behind it; otherwise 0

  [[nodiscard]] bool IsMatrix(int format) const {
    return Layers == 0 && TimeSlots == 0 && Format == format;
  }
  [[nodiscard]] bool Is3D() const { return Layers >= 1 && TimeSlots == 0 && Format == 1; }
  [[nodiscard]] bool Is4D() const { return Layers >= 1 && TimeSlots >= 1 && Format == 1; }
  /// Elements of a layer and of a time slot; numbers below 1 count as 0, products beyond the range
  /// as its end.
  [[nodiscard]] std::uint64_t LayerSize() const { return Product(Size(Columns), Size(Rows)); }
  [[nodiscard]] std::uint64_t TimeSlotSize() const { return Product(LayerSize(), Size(Layers)); }

  /// Copies the fields of arrays.
  const TBinaryHeader& Give(int& columns, int& rows, int& layers, int& timeSlots, std::string& id,
                            int& format) const {
    columns = Columns;
    rows = Rows;
    layers = Layers;
    timeSlots = TimeSlots;
    id = DataID.view();
    format = Format;
    return *this;
  }

  static std::uint64_t Size(int n) { return n < 0 ? 0 : static_cast<std::uint64_t>(n); }
  static std::uint64_t Product(std::uint64_t a, std::uint64_t b) {
    return b != 0 && a > UINT64_MAX / b ? UINT64_MAX : a * b;
  }
};

/// Writes a file from its start: header, elements, filling.
class TBinaryWriter {
 public:
  /// Writes the header.
  TBinaryWriter(std::ostream& out, const TBinaryHeader& header);
  /// Goes on writing elements of a file whose end lies so many bytes in its last record.
  TBinaryWriter(std::ostream& out, std::size_t used) : FOut(out), FWritten(used) {}
  void Write(std::span<const double> elements);
  void Write(std::span<const int> elements);
  /// Fills up the last record.
  void Finish();

 private:
  std::ostream& FOut;
  std::size_t FWritten = 0;  ///< bytes, modulo the record where that matters
};

/// The bytes of a header.
[[nodiscard]] std::string HeaderRecord(const TBinaryHeader& header);

/// Reads a file. All that fails throws EInOutError.
class TBinaryReader {
 public:
  /// Opens the file and reads its header.
  explicit TBinaryReader(std::string_view fileName);
  [[nodiscard]] const TBinaryHeader& Header() const { return FHeader; }
  /// Goes to an element and makes sure that it and count - 1 behind it are there, with the whole of
  /// the records that hold them.
  void Seek(std::uint64_t element, std::uint64_t count, std::size_t elementSize = sizeof(double));
  /// Reads the next elements.
  void Read(std::span<double> elements);
  void Read(std::span<int> elements);

 private:
  [[noreturn]] void Fail(const char* problem) const;
  void ReadBytes(char* bytes, std::size_t count);

  std::string FFileName;
  std::ifstream FFile;
  std::uint64_t FSize = 0;
  TBinaryHeader FHeader;
};

}  // namespace zel::detail
