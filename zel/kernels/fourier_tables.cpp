#include "zel/kernels/fourier_tables.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

#include "zel/kernels/fourier.h"
#include "zel/kernels/roots_of_unity.h"

namespace zel::kernels {

namespace {

void append(Factors& factors, const RootsOfUnity::Root& root) {
  factors.push_back(root.re);
  factors.push_back(root.im);
}

/// Roots 0, step, 2 step, ... of the given order.
Factors rootsInTurn(const RootsOfUnity& roots, std::uint64_t step, std::size_t count) {
  Factors factors;
  factors.reserve(2 * count);
  for (std::size_t k = 0; k < count; ++k) append(factors, roots(k * step));
  return factors;
}

void fillColumn(ColumnTables& column, int bits, const Factors* codelets) {
  column.bits = bits;
  for (int b = 0; b <= kMostCodeletBits; ++b) column.codelet[b] = codelets[b].data();
  if (bits <= kMostCodeletBits) return;
  column.split = splitOf(bits);
  const RootsOfUnity roots(bits);
  column.twiddles.reserve(std::size_t{2} << bits);
  for (std::uint64_t j = 0; j < std::uint64_t{1} << column.split.lowBits; ++j) {
    for (std::uint64_t k = 0; k < std::uint64_t{1} << column.split.highBits; ++k) {
      append(column.twiddles, roots(j * k));
    }
  }
}

}  // namespace

FourierTables::FourierTables(int bitsOfLength) : bits(bitsOfLength) {
  for (int b = 0; b <= kMostCodeletBits; ++b) {
    codelets[b] = rootsInTurn(RootsOfUnity(b), 1, std::size_t{1} << b);
  }
  if (bits < kMostCodeletBits) {
    fillColumn(first, bits, codelets);
    return;
  }
  split = splitOf(bits);
  fillColumn(first, split.highBits, codelets);
  fillColumn(second, split.lowBits, codelets);
  const RootsOfUnity roots(bits);
  const std::size_t rows = std::size_t{1} << split.highBits;
  const std::size_t columns = std::size_t{1} << split.lowBits;
  if (first.twiddles.empty()) {
    const std::size_t n = rows * columns;
    between.resize(2 * n);
    for (std::size_t k = 0; k < rows; ++k) {
      for (std::size_t j = 0; j < columns; ++j) {
        const auto root = roots(j * k);
        between[k * columns + j] = root.re;
        between[n + k * columns + j] = root.im;
      }
    }
    return;
  }
  fineBits = split.lowBits;
  fine = rootsInTurn(roots, 1, columns);
  coarse = rootsInTurn(roots, columns, rows);
  offsets.reserve(2 * kFourierGroup * rows);
  for (std::size_t k = 0; k < rows; ++k) {
    for (std::size_t l = 0; l < kFourierGroup; ++l) offsets.push_back(roots(k * l).re);
    for (std::size_t l = 0; l < kFourierGroup; ++l) offsets.push_back(roots(k * l).im);
  }
}

const FourierTables& fourierTables(int bits) {
  static std::array<std::atomic<const FourierTables*>, kMostFourierBits + 1> known{};
  static std::array<std::unique_ptr<const FourierTables>, kMostFourierBits + 1> owned;
  static std::mutex making;
  const auto at = static_cast<std::size_t>(bits);
  if (const FourierTables* tables = known[at].load(std::memory_order_acquire)) return *tables;
  const std::lock_guard lock(making);
  if (owned[at] == nullptr) {
    owned[at] = std::make_unique<const FourierTables>(bits);
    known[at].store(owned[at].get(), std::memory_order_release);
  }
  return *owned[at];
}

}  // namespace zel::kernels
