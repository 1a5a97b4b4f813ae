/// @file
/// Factors of the Fourier transform for each length.
#pragma once

#include <cstddef>
#include <vector>

namespace zel::kernels {

/// The longest transform that is one codelet, and the longest column that is one.
constexpr int kMostCodeletBits = 6;
/// Columns that share the factors of one row.
constexpr std::size_t kFourierGroup = 8;

/// Complex factors, real and imaginary parts in turn.
using Factors = std::vector<double>;

/// A transform of 2^bits numbers as 2^lowBits transforms over every 2^lowBits-th number and as
/// many as 2^highBits of those over neighbours.
struct Split {
  int highBits;  ///< first pass
  int lowBits;   ///< second pass
};
[[nodiscard]] constexpr Split splitOf(int bits) { return {bits - bits / 2, bits / 2}; }

/// A column: one codelet, or two passes of codelets with factors between them.
struct ColumnTables {
  int bits = 0;
  Split split{};
  const double* codelet[kMostCodeletBits + 1] = {};  ///< roots of the codelets, by bits
  Factors twiddles;  ///< [j << highBits | k]: root j k of the order 2^bits; none for one codelet
};

struct FourierTables {
  explicit FourierTables(int bits);
  FourierTables(const FourierTables&) = delete;
  FourierTables& operator=(const FourierTables&) = delete;

  int bits;
  Split split{};  ///< into rows and columns; both 0 for one codelet
  Factors codelets[kMostCodeletBits + 1];
  ColumnTables first;
  ColumnTables second;
  /// Columns of one codelet: real parts of root j k at [k << lowBits | j], then the imaginary ones.
  std::vector<double> between;
  /// Longer columns: root j k, for j = 8 g + l, is step(8 g k) times offsets[k][l]. A step is the
  /// product of a coarse and a fine root.
  Factors coarse;
  Factors fine;
  int fineBits = 0;
  std::vector<double> offsets;  ///< [k]: eight real, eight imaginary parts
};

/// The tables of a length, made on first use and kept.
/// @throws std::bad_alloc
[[nodiscard]] const FourierTables& fourierTables(int bits);

}  // namespace zel::kernels
