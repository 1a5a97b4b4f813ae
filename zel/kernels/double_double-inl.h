// Error-free transformations and double-double arithmetic, written once for a number (double, long
// double) and for a vector of numbers. No guard and no namespace on purpose: double_double.h
// includes this text for numbers; a SIMD source includes it once per instruction set, inside that
// set's namespace, because a template from outside cannot inline code of the instruction set.

template <class V>
inline constexpr bool kIsNumber = std::is_floating_point_v<V>;

/// The value hi + lo, not evaluated; lo is at most half a unit in the last place of hi once
/// normalised.
template <class V>
struct Twofold {
  V hi;
  V lo;
};

template <class V>
[[gnu::always_inline]] inline V plus(V a, V b) {
  if constexpr (kIsNumber<V>) {
    return a + b;
  } else {
    return Add(a, b);
  }
}

template <class V>
[[gnu::always_inline]] inline V minus(V a, V b) {
  if constexpr (kIsNumber<V>) {
    return a - b;
  } else {
    return Sub(a, b);
  }
}

template <class V>
[[gnu::always_inline]] inline V times(V a, V b) {
  if constexpr (kIsNumber<V>) {
    return a * b;
  } else {
    return Mul(a, b);
  }
}

template <class V>
[[gnu::always_inline]] inline V over(V a, V b) {
  if constexpr (kIsNumber<V>) {
    return a / b;
  } else {
    return Div(a, b);
  }
}

/// The instructions that plain additions compile to.
struct OnAdder {
  template <class V>
  [[gnu::always_inline]] V add(V a, V b) const {
    return plus(a, b);
  }
  template <class V>
  [[gnu::always_inline]] V sub(V a, V b) const {
    return minus(a, b);
  }
};

/// hi + lo = a + b exactly (Knuth). `Unit` may move part of the six operations to other execution
/// units; every choice gives the same bits.
template <class V, class Unit = OnAdder>
[[gnu::always_inline]] inline Twofold<V> twoSum(V a, V b, const Unit& unit = {}) {
  const V s = plus(a, b);
  const V bRounded = unit.sub(s, a);
  const V aRounded = unit.sub(s, bRounded);
  const V bError = unit.sub(b, bRounded);
  const V aError = minus(a, aRounded);
  return {s, plus(aError, bError)};
}

/// hi + lo = a - b exactly.
template <class V>
[[gnu::always_inline]] inline Twofold<V> twoDiff(V a, V b) {
  const V s = minus(a, b);
  const V bRounded = minus(a, s);
  const V aRounded = plus(s, bRounded);
  return {s, plus(minus(a, aRounded), minus(bRounded, b))};
}

/// hi + lo = a + b exactly if a is 0 or not smaller than b in magnitude (Dekker).
template <class V>
[[gnu::always_inline]] inline Twofold<V> fastTwoSum(V a, V b) {
  const V s = plus(a, b);
  return {s, minus(b, minus(s, a))};
}

/// a * b - product by splitting the factors (Veltkamp, Dekker); exact if nothing over- or
/// underflows.
template <class V>
[[gnu::always_inline]] inline V splitProductError(V a, V b, V product, V splitter) {
  const V aScaled = times(splitter, a);
  const V aHigh = minus(aScaled, minus(aScaled, a));
  const V aLow = minus(a, aHigh);
  const V bScaled = times(splitter, b);
  const V bHigh = minus(bScaled, minus(bScaled, b));
  const V bLow = minus(b, bHigh);
  const V e1 = minus(times(aHigh, bHigh), product);
  const V e2 = plus(e1, times(aHigh, bLow));
  const V e3 = plus(e2, times(aLow, bHigh));
  return plus(e3, times(aLow, bLow));
}

// Factors below kSplitLimit do not overflow when split; products of at least kSplitProduct have an
// error term that is not rounded.
inline constexpr double kSplitLimit = 0x1p990;
inline constexpr double kSplitProduct = 0x1p-900;

/// hi = the rounded product, lo = the rounding error, which is exact unless it underflows (then
/// rounded). The bits are those of a fused multiply-add whether or not the machine has one.
template <class V>
[[gnu::always_inline]] inline Twofold<V> twoProduct(V a, V b) {
  const V p = times(a, b);
  if constexpr (kIsNumber<V>) {
    constexpr V kSplitter = V(1) + V(1ULL << ((std::numeric_limits<V>::digits + 1) / 2));
    if constexpr (std::numeric_limits<V>::max_exponent <= 1024) {
      const bool splits =
          std::abs(p) >= kSplitProduct && std::abs(a) < kSplitLimit && std::abs(b) < kSplitLimit;
      if (!splits) return {p, std::fma(a, b, -p)};
    }
    return {p, splitProductError(a, b, p, kSplitter)};
  } else {
#if defined(HWY_NATIVE_FMA) && HWY_NATIVE_FMA
    return {p, MulSub(a, b, p)};
#elif defined(HWY_NATIVE_FMA)
    const hn::DFromV<V> d;
    const auto zero = Zero(d);
    const auto limit = Set(d, kSplitLimit);
    const auto splits =
        And(Ge(Abs(p), Set(d, kSplitProduct)), And(Lt(Abs(a), limit), Lt(Abs(b), limit)));
    const auto isZero = Or(Eq(a, zero), Eq(b, zero));
    V error = splitProductError(a, b, p, Set(d, 134217729.0));
    if (!AllTrue(d, Or(splits, isZero))) {
      alignas(64) double factorA[hn::MaxLanes(hn::DFromV<V>())];
      alignas(64) double factorB[hn::MaxLanes(hn::DFromV<V>())];
      alignas(64) double product[hn::MaxLanes(hn::DFromV<V>())];
      Store(a, d, factorA);
      Store(b, d, factorB);
      Store(p, d, product);
      for (std::size_t i = 0; i < Lanes(d); ++i)
        product[i] = std::fma(factorA[i], factorB[i], -product[i]);
      error = Load(d, product);
    }
    return {p, error};
#endif
  }
}

/// Sum, within 3 * 2^-106 of the exact one (Joldes, Muller and Popescu, ACM TOMS 44 (2017) 15).
template <class V>
[[gnu::always_inline]] inline Twofold<V> add(Twofold<V> a, Twofold<V> b) {
  const Twofold<V> high = twoSum(a.hi, b.hi);
  const Twofold<V> low = twoSum(a.lo, b.lo);
  const Twofold<V> v = fastTwoSum(high.hi, plus(high.lo, low.hi));
  return fastTwoSum(v.hi, plus(low.lo, v.lo));
}

/// Product, within 5 * 2^-106 of the exact one.
template <class V>
[[gnu::always_inline]] inline Twofold<V> multiply(Twofold<V> a, Twofold<V> b) {
  const Twofold<V> p = twoProduct(a.hi, b.hi);
  const V crossed = plus(times(a.hi, b.lo), times(a.lo, b.hi));
  return fastTwoSum(p.hi, plus(p.lo, crossed));
}

/// Product with a single number.
template <class V>
[[gnu::always_inline]] inline Twofold<V> multiply(Twofold<V> a, V b) {
  const Twofold<V> p = twoProduct(a.hi, b);
  return fastTwoSum(p.hi, plus(p.lo, times(a.lo, b)));
}
