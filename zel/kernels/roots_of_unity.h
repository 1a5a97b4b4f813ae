/// @file
/// Powers of the complex roots of unity whose order is a power of two, with the same bits on every
/// machine. A part of at least 1/4 is within 0.51 ulp, a smaller one within 1.
///
/// The first eighth of the circle is reached from a coarse angle, whose root is known to twice the
/// precision, and a fine one, whose contribution is small; reflections give the other seven, so
/// that 0, 1 and the symmetries are exact. (Tang, ACM TOMS 17 (1991) 26, for the scheme.)
#pragma once

#include <cstdint>
#include <vector>

#include "zel/kernels/double_double.h"

namespace zel::kernels {

/// e^(2 pi i m / 2^bits) for whole numbers m.
class RootsOfUnity {
 public:
  struct Root {
    double re;
    double im;
  };

  /// @param bits  0..30
  /// @throws std::bad_alloc
  explicit RootsOfUnity(int bits);

  /// Multiples of 2^bits do not count.
  [[nodiscard]] Root operator()(std::uint64_t m) const;

 private:
  struct Coarse {
    DoubleDouble cosine;
    DoubleDouble sine;
  };
  struct Fine {
    double cosineMinus1;
    double sine;
  };

  int FBits;      ///< at least 3
  int FShift;     ///< what an index of the order 2^bits is shifted by to one of 2^FBits
  int FFineBits;  ///< bits of the fine angle
  std::vector<Coarse> FCoarse;
  std::vector<Fine> FFine;
};

}  // namespace zel::kernels
