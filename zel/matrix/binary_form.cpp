#include "zel/matrix/binary_form_impl.h"

#include <algorithm>
#include <array>
#include <limits>
#include <ostream>
#include <type_traits>

#include "zel/base/errors.h"
#include "zel/base/littleendian_impl.h"
#include "zel/base/wholefile.h"

namespace zel::detail {

namespace {

constexpr std::size_t kIdAt = 16;
constexpr std::size_t kFormatAt = 272;
constexpr std::size_t kCellsAt = 276;

int takeInt(const char* bytes) { return static_cast<std::int32_t>(getLittle<4>(bytes)); }

void putInt(char* bytes, int value) { putLittle<4>(bytes, static_cast<std::uint32_t>(value)); }

/// Changes the byte order between that of the file and that of the machine.
template <class T>
void reorder(T* elements, std::size_t count) {
  if constexpr (std::endian::native == std::endian::little) return;
  for (std::size_t i = 0; i < count; ++i) {
    char* const bytes = reinterpret_cast<char*>(elements + i);
    std::reverse(bytes, bytes + sizeof(T));
  }
}

template <class T>
void writeElements(std::ostream& out, std::span<const T> elements) {
  const auto write = [&](const T* first, std::size_t count) {
    out.write(reinterpret_cast<const char*>(first),
              static_cast<std::streamsize>(count * sizeof(T)));
  };
  if constexpr (std::endian::native == std::endian::little) {
    write(elements.data(), elements.size());
  } else {
    std::array<T, 512> block;
    for (std::size_t first = 0; first < elements.size(); first += block.size()) {
      const std::size_t n = std::min(block.size(), elements.size() - first);
      std::copy_n(elements.begin() + static_cast<std::ptrdiff_t>(first), n, block.begin());
      reorder(block.data(), n);
      write(block.data(), n);
    }
  }
}

}  // namespace

std::string HeaderRecord(const TBinaryHeader& header) {
  std::string record(kBinaryRecord, '\0');
  putInt(&record[0], header.Columns);
  putInt(&record[4], header.Rows);
  putInt(&record[8], header.Layers);
  putInt(&record[12], header.TimeSlots);
  record[kIdAt] = static_cast<char>(header.DataID.size());
  std::ranges::copy(header.DataID.view(), &record[kIdAt + 1]);
  putInt(&record[kFormatAt], header.Format);
  putInt(&record[kCellsAt], header.Cells);
  return record;
}

TBinaryWriter::TBinaryWriter(std::ostream& out, const TBinaryHeader& header) : FOut(out) {
  FOut << HeaderRecord(header);
}

void TBinaryWriter::Write(std::span<const double> elements) {
  writeElements(FOut, elements);
  FWritten += elements.size_bytes();
}

void TBinaryWriter::Write(std::span<const int> elements) {
  writeElements(FOut, elements);
  FWritten += elements.size_bytes();
}

void TBinaryWriter::Finish() {
  const std::size_t rest = FWritten % kBinaryRecord;
  if (rest > 0) FOut << std::string(kBinaryRecord - rest, '\0');
  FWritten = 0;
}

TBinaryReader::TBinaryReader(std::string_view fileName) : FFileName(fileName) {
  if (!OpenForReading(FFile, fileName)) Fail("cannot be opened");
  std::array<char, kBinaryRecord> record;
  ReadBytes(record.data(), record.size());
  FHeader.Columns = takeInt(&record[0]);
  FHeader.Rows = takeInt(&record[4]);
  FHeader.Layers = takeInt(&record[8]);
  FHeader.TimeSlots = takeInt(&record[12]);
  const auto length = static_cast<unsigned char>(record[kIdAt]);
  FHeader.DataID = std::string_view(&record[kIdAt + 1], length);
  FHeader.Format = takeInt(&record[kFormatAt]);
  FHeader.Cells = FHeader.Format == kSparseCells ? takeInt(&record[kCellsAt]) : 0;
  const auto size = FFile.seekg(0, std::ios::end).tellg();
  if (!FFile || size < 0) Fail("cannot be read from any place");
  FSize = static_cast<std::uint64_t>(size);
  if (FSize < kBinaryRecord) Fail("has no size");  // not an ordinary file
  Seek(0, 0);
}

void TBinaryReader::Fail(const char* problem) const {
  throw EInOutError("binary file " + FFileName + " " + problem);
}

void TBinaryReader::Seek(std::uint64_t element, std::uint64_t count, std::size_t elementSize) {
  // Whole records of the file behind the header.
  const std::uint64_t records = FSize / kBinaryRecord - 1;
  const std::uint64_t held = records * (kBinaryRecord / elementSize);
  if (count > held || element > held - count) Fail("is cut off");
  FFile.seekg(static_cast<std::streamoff>(kBinaryRecord + element * elementSize));
  if (!FFile) Fail("cannot be read from any place");
}

void TBinaryReader::ReadBytes(char* bytes, std::size_t count) {
  FFile.read(bytes, static_cast<std::streamsize>(count));
  if (FFile.bad()) Fail("cannot be read");
  if (static_cast<std::size_t>(FFile.gcount()) != count) Fail("is cut off");
}

void TBinaryReader::Read(std::span<double> elements) {
  ReadBytes(reinterpret_cast<char*>(elements.data()), elements.size_bytes());
  reorder(elements.data(), elements.size());
}

void TBinaryReader::Read(std::span<int> elements) {
  ReadBytes(reinterpret_cast<char*>(elements.data()), elements.size_bytes());
  reorder(elements.data(), elements.size());
}

}  // namespace zel::detail
