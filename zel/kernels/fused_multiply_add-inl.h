// Fused multiply-add of vectors, the same bits on every instruction set. Included once per
// instruction set inside its namespace, after `namespace hn` and double_double-inl.h.

#if HWY_NATIVE_FMA

/// a * b + c with one rounding.
template <class V>
HWY_INLINE V fusedMultiplyAdd(V a, V b, V c) {
  return hn::MulAdd(a, b, c);
}

#else

// With checks in it the emulation is too long to stand in every loop.
#ifdef __SANITIZE_ADDRESS__
#define ZEL_INLINE_EMULATION HWY_NOINLINE
#else
#define ZEL_INLINE_EMULATION HWY_INLINE
#endif

/// a * b + c of lanes that the emulation below does not cover; the library function is exact for
/// every value.
template <class V>
HWY_NOINLINE V fusedByNumber(V a, V b, V c) {
  const hn::DFromV<V> d;
  constexpr std::size_t kLanes = hn::MaxLanes(hn::DFromV<V>());
  alignas(64) double x[kLanes];
  alignas(64) double y[kLanes];
  alignas(64) double z[kLanes];
  hn::Store(a, d, x);
  hn::Store(b, d, y);
  hn::Store(c, d, z);
  for (std::size_t i = 0; i < kLanes; ++i) z[i] = std::fma(x[i], y[i], z[i]);
  return hn::Load(d, z);
}

/// a * b + c with one rounding: the exact product and the exact sum leave three parts, of which the
/// two smaller are added with rounding to odd, so that the last addition rounds like one of all
/// three (Boldo and Melquiond, IEEE Trans. Comput. 57 (2008) 462). Holds while no part leaves the
/// range of doubles; a NaN fails the test of that or ends up in the sum.
template <class V>
ZEL_INLINE_EMULATION V fusedMultiplyAdd(V a, V b, V c) {
  const hn::DFromV<V> d;
  const hn::RebindToUnsigned<hn::DFromV<V> > du;
  const auto zero = hn::Zero(d);
  const auto factorLimit = hn::Set(d, kSplitLimit);
  const auto sumLimit = hn::Set(d, 0x1p1000);
  const V p = hn::Mul(a, b);
  const V size = hn::Abs(p);
  const auto isZero = hn::Or(hn::Eq(a, zero), hn::Eq(b, zero));
  const auto isInRange = hn::And(hn::And(hn::Lt(hn::Max(hn::Abs(a), hn::Abs(b)), factorLimit),
                                         hn::Lt(hn::Max(size, hn::Abs(c)), sumLimit)),
                                 hn::Or(hn::Ge(size, hn::Set(d, kSplitProduct)), isZero));
  if (HWY_UNLIKELY(!hn::AllTrue(d, isInRange))) return fusedByNumber(a, b, c);

  const V error = splitProductError(a, b, p, hn::Set(d, 134217729.0));
  const Twofold<V> low = twoSum(c, error);
  const Twofold<V> high = twoSum(p, low.hi);
  const Twofold<V> rest = twoSum(low.lo, high.lo);
  // Rounding to odd: an inexact sum with an even last digit moves one unit towards its error, that
  // is away from 0 if both have the same sign.
  const auto bits = hn::BitCast(du, rest.hi);
  const auto one = hn::Set(du, 1);
  const auto isInexact = hn::RebindMask(du, hn::Ne(rest.lo, zero));
  const auto isEven = hn::Eq(hn::And(bits, one), hn::Zero(du));
  const auto isInward = hn::ShiftRight<63>(hn::Xor(bits, hn::BitCast(du, rest.lo)));
  const auto step = hn::Sub(one, hn::Add(isInward, isInward));
  const auto odd = hn::Add(bits, hn::IfThenElseZero(hn::And(isInexact, isEven), step));
  const V sum = hn::Add(high.hi, hn::BitCast(d, odd));
  // An exact zero takes its sign from the plain sum.
  return hn::IfThenElse(isZero, hn::Add(p, c), sum);
}
#undef ZEL_INLINE_EMULATION

#endif
