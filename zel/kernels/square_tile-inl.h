// Transposition of a square tile in registers: as many vectors as a vector has lanes. Included once
// per instruction set inside its namespace, after `namespace hn`.

using TileTag = hn::CappedTag<double, 8>;
using TileVec = hn::Vec<TileTag>;
constexpr std::size_t kTile = hn::MaxLanes(TileTag());

#if HWY_TARGET == HWY_SCALAR

HWY_INLINE void transposeTile(TileVec (&)[kTile]) {}

#else

/// Vector i takes lane i of every vector.
HWY_INLINE void transposeTile(TileVec (&v)[kTile]) {
  const TileTag d;
  TileVec pairs[kTile];
  for (std::size_t i = 0; i < kTile; i += 2) {
    pairs[i] = hn::InterleaveLower(d, v[i], v[i + 1]);
    pairs[i + 1] = hn::InterleaveUpper(d, v[i], v[i + 1]);
  }
  if constexpr (kTile == 2) {
    for (std::size_t i = 0; i < kTile; ++i) v[i] = pairs[i];
  } else if constexpr (kTile == 4) {
    for (std::size_t i = 0; i < 2; ++i) {
      v[i] = hn::ConcatLowerLower(d, pairs[i + 2], pairs[i]);
      v[i + 2] = hn::ConcatUpperUpper(d, pairs[i + 2], pairs[i]);
    }
  } else {
    // Four blocks of two lanes per vector: halves first, then neighbouring blocks.
    for (std::size_t i = 0; i < 2; ++i) {
      const TileVec lower02 = hn::ConcatLowerLower(d, pairs[i + 4], pairs[i]);
      const TileVec lower13 = hn::ConcatLowerLower(d, pairs[i + 6], pairs[i + 2]);
      const TileVec upper02 = hn::ConcatUpperUpper(d, pairs[i + 4], pairs[i]);
      const TileVec upper13 = hn::ConcatUpperUpper(d, pairs[i + 6], pairs[i + 2]);
      v[i] = hn::OddEvenBlocks(hn::SwapAdjacentBlocks(lower13), lower02);
      v[i + 2] = hn::OddEvenBlocks(lower13, hn::SwapAdjacentBlocks(lower02));
      v[i + 4] = hn::OddEvenBlocks(hn::SwapAdjacentBlocks(upper13), upper02);
      v[i + 6] = hn::OddEvenBlocks(upper13, hn::SwapAdjacentBlocks(upper02));
    }
  }
}

#endif
