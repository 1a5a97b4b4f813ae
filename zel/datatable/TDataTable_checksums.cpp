#include <algorithm>
#include <cstring>
#include <iterator>
#include <vector>

#include "zel/datatable/guards_impl.h"
#include "zel/kernels/fingerprint.h"

namespace zel {

namespace {

/// Eight CRC-32 registers: byte p = 1, 2, ... of an item goes to register p mod 8.
class LaneRegisters {
 public:
  LaneRegisters() { FLanes.fill(kernels::kCrc32Start); }

  void feed(const void* item, std::size_t n) {
    const auto* bytes = static_cast<const std::uint8_t*>(item);
    // Eight bytes of the item are one element of the kernel, whose byte k goes to lane k.
    double block[256];
    while (n >= sizeof(double)) {
      const std::size_t elements = std::min(n / sizeof(double), std::size(block));
      std::memcpy(block, bytes, elements * sizeof(double));
      kernels::fingerprint(std::span<const double>(block, elements), FLanes);
      bytes += elements * sizeof(double);
      n -= elements * sizeof(double);
    }
    for (std::size_t k = 0; k < n; ++k) FLanes[k] = CalcNextCRC32(bytes[k], FLanes[k]);
  }
  void feed(std::string_view item) { feed(item.data(), item.size()); }
  /// The lowest byte of each value.
  void feed(std::span<const int> values) {
    std::vector<std::uint8_t> bytes(values.size());
    std::transform(values.begin(), values.end(), bytes.begin(),
                   [](int value) { return static_cast<std::uint8_t>(value); });
    feed(bytes.data(), bytes.size());
  }

  [[nodiscard]] std::string text() const {
    // Lane k took the bytes p = k + 1, ...
    std::array<std::uint32_t, 8> registers = FLanes;
    std::rotate(registers.begin(), registers.end() - 1, registers.end());
    return kernels::fingerprintText(std::span<const std::uint32_t>(registers));
  }

 private:
  std::array<std::uint32_t, 8> FLanes;
};

}  // namespace

std::string TDataTable::CRCofNamesAndAttributes() const {
  return Guarded([&] {
    LaneRegisters registers;
    registers.feed(FComment);
    for (const TDTNameStr& name : FColName) registers.feed(name);
    registers.feed(FColAtt);
    for (const TDTNameStr& name : FRowName) registers.feed(name);
    registers.feed(FRowAtt);
    std::vector<int> scales(Columns());
    std::transform(FVType.begin(), FVType.end(), scales.begin(),
                   [](const detail::TColumnType& type) { return type.MScaleType; });
    registers.feed(scales);
    for (const detail::TColumnType& type : FVType) {
      for (const TNominalIDStr& id : type.IDs) registers.feed(id);
    }
    return registers.text();
  });
}

std::string TDataTable::CRCofCellStates() const {
  return Guarded([&] {
    LaneRegisters registers;
    for (int c = 1; c <= FNrOfCols; ++c) registers.feed(States(c), Rows());
    return registers.text();
  });
}

}  // namespace zel
