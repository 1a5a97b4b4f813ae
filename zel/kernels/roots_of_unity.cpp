#include "zel/kernels/roots_of_unity.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zel::kernels {

namespace {

constexpr int kCoarseBits = 10;

struct ComplexPair {
  DoubleDouble re;
  DoubleDouble im;
};

ComplexPair operator*(const ComplexPair& a, const ComplexPair& b) {
  return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

/// e^(i x / 2), from that of x in the first quadrant.
ComplexPair halfAngle(const ComplexPair& root) {
  const DoubleDouble cosine = sqrt((root.re + DoubleDouble{1, 0}) * 0.5);
  return {cosine, root.im * 0.5 / cosine};
}

/// The powers 0, 1, ... 2^(bases.size()) - 1 of bases[0], where each base is the square of the one
/// before it.
std::vector<ComplexPair> powers(const std::vector<ComplexPair>& bases) {
  std::vector<ComplexPair> all{{{1, 0}, {0, 0}}};
  all.reserve(std::size_t{1} << bases.size());
  for (const ComplexPair& base : bases) {
    for (std::size_t i = 0, known = all.size(); i < known; ++i) all.push_back(all[i] * base);
  }
  return all;
}

}  // namespace

RootsOfUnity::RootsOfUnity(int bits)
    : FBits(std::max(bits, 3)),
      FShift(FBits - bits),
      FFineBits(std::max(FBits - 3 - kCoarseBits, 0)) {
  // The generators of the orders 2^FBits, ... 16, 8: 45 degrees halved again and again.
  const DoubleDouble diagonal = sqrt(DoubleDouble{0.5, 0});
  std::vector<ComplexPair> generators{{diagonal, diagonal}};
  for (int order = 3; order < FBits; ++order) generators.push_back(halfAngle(generators.back()));
  std::reverse(generators.begin(), generators.end());

  const auto split = generators.begin() + FFineBits;
  for (const ComplexPair& root : powers({generators.begin(), split})) {
    // cos - 1 = -sin^2 / (1 + cos)
    const DoubleDouble versine = root.im * root.im / (root.re + DoubleDouble{1, 0});
    FFine.push_back({-versine.hi, root.im.hi});
  }
  // The end of the eighth is one of the coarse angles.
  for (const ComplexPair& root : powers({split, generators.end()})) {
    if (FCoarse.size() << FFineBits > std::size_t{1} << (FBits - 3)) break;
    FCoarse.push_back({root.re, root.im});
  }
}

RootsOfUnity::Root RootsOfUnity::operator()(std::uint64_t m) const {
  const std::uint64_t order = std::uint64_t{1} << FBits;
  m = m << FShift & (order - 1);
  const bool isLower = m > order / 2;
  if (isLower) m = order - m;
  const bool isLeft = m > order / 4;
  if (isLeft) m = order / 2 - m;
  const bool isSteep = m > order / 8;
  if (isSteep) m = order / 4 - m;

  const Coarse& a = FCoarse[m >> FFineBits];
  const Fine& b = FFine[m & ((std::uint64_t{1} << FFineBits) - 1)];
  Root root{a.cosine.hi + (a.cosine.lo + (a.cosine.hi * b.cosineMinus1 - a.sine.hi * b.sine)),
            a.sine.hi + (a.sine.lo + (a.sine.hi * b.cosineMinus1 + a.cosine.hi * b.sine))};
  if (isSteep) std::swap(root.re, root.im);
  if (isLeft) root.re = -root.re;
  if (isLower) root.im = -root.im;
  return root;
}

}  // namespace zel::kernels
