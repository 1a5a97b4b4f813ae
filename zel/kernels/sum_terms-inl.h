// What one element, or one pair of elements, contributes to the sums of a kernel. Like
// double_double-inl.h, which must come first, this is included for numbers and once per instruction
// set: the same text feeds sixteen lanes of doubles and the slow path in long double.
//
// Each kernel keeps kSums running sums s[k] with plain running sums e[k] of everything that
// rounding split off. s[k] alone is what a plain loop computes.

/// Adds term + correction to the sum (s, e); the correction is small beside the term.
template <class V, class Unit>
[[gnu::always_inline]] inline void accumulate(V& s, V& e, Twofold<V> term, const Unit& unit) {
  const Twofold<V> t = twoSum(s, term.hi, unit);
  s = t.hi;
  e = plus(e, plus(t.lo, term.lo));
}

template <class V, class Unit>
[[gnu::always_inline]] inline void accumulate(V& s, V& e, V term, const Unit& unit) {
  const Twofold<V> t = twoSum(s, term, unit);
  s = t.hi;
  e = unit.add(e, t.lo);
}

/// Arguments that are the same for every element.
template <class V>
struct Centre {
  V x;
  V y;
};

/// x
struct SumTerms {
  static constexpr SumKind kKind = SumKind::sum;
  static constexpr std::size_t kSums = 1;
  template <class V, class Unit>
  [[gnu::always_inline]] static void add(V x, V, const Centre<V>&, V* s, V* e, const Unit& unit) {
    accumulate(s[0], e[0], x, unit);
  }
};

/// x^2
struct SquareTerms {
  static constexpr SumKind kKind = SumKind::squares;
  static constexpr std::size_t kSums = 1;
  template <class V, class Unit>
  [[gnu::always_inline]] static void add(V x, V, const Centre<V>&, V* s, V* e, const Unit& unit) {
    accumulate(s[0], e[0], twoProduct(x, x), unit);
  }
};

/// x y
struct ProductTerms {
  static constexpr SumKind kKind = SumKind::products;
  static constexpr std::size_t kSums = 1;
  template <class V, class Unit>
  [[gnu::always_inline]] static void add(V x, V y, const Centre<V>&, V* s, V* e, const Unit& unit) {
    accumulate(s[0], e[0], twoProduct(x, y), unit);
  }
};

/// (d + delta)^2 where d + delta is an exact difference; delta^2 is below the last bit kept.
template <class V>
[[gnu::always_inline]] inline Twofold<V> square(Twofold<V> d) {
  const Twofold<V> p = twoProduct(d.hi, d.hi);
  return {p.hi, plus(p.lo, times(plus(d.hi, d.hi), d.lo))};
}

/// (x - y)^2
struct SquaredDifferenceTerms {
  static constexpr SumKind kKind = SumKind::squaredDifferences;
  static constexpr std::size_t kSums = 1;
  template <class V, class Unit>
  [[gnu::always_inline]] static void add(V x, V y, const Centre<V>&, V* s, V* e, const Unit& unit) {
    accumulate(s[0], e[0], square(twoDiff(x, y)), unit);
  }
};

/// x, x^2
struct RawMomentTerms {
  static constexpr SumKind kKind = SumKind::rawMoments;
  static constexpr std::size_t kSums = 2;
  template <class V, class Unit>
  [[gnu::always_inline]] static void add(V x, V, const Centre<V>&, V* s, V* e, const Unit& unit) {
    accumulate(s[0], e[0], x, unit);
    accumulate(s[1], e[1], twoProduct(x, x), unit);
  }
};

/// d, d^2 with d = x - c
struct CentredMomentTerms {
  static constexpr SumKind kKind = SumKind::centredMoments;
  static constexpr std::size_t kSums = 2;
  template <class V, class Unit>
  [[gnu::always_inline]] static void add(V x, V, const Centre<V>& c, V* s, V* e, const Unit& unit) {
    const Twofold<V> d = twoDiff(x, c.x);
    accumulate(s[0], e[0], d, unit);
    accumulate(s[1], e[1], square(d), unit);
  }
};

/// d, d^2, d^3, d^4 with d = x - c
struct CentredPowerTerms {
  static constexpr SumKind kKind = SumKind::centredPowers;
  static constexpr std::size_t kSums = 4;
  template <class V, class Unit>
  [[gnu::always_inline]] static void add(V x, V, const Centre<V>& c, V* s, V* e, const Unit& unit) {
    const Twofold<V> d = twoDiff(x, c.x);
    const Twofold<V> p2 = square(d);
    const Twofold<V> p3 = twoProduct(p2.hi, d.hi);
    const Twofold<V> p4 = twoProduct(p2.hi, p2.hi);
    const V correction3 = plus(times(p2.hi, d.lo), times(p2.lo, d.hi));
    const V correction4 = times(plus(p2.hi, p2.hi), p2.lo);
    accumulate(s[0], e[0], d, unit);
    accumulate(s[1], e[1], p2, unit);
    accumulate(s[2], e[2], Twofold<V>{p3.hi, plus(p3.lo, correction3)}, unit);
    accumulate(s[3], e[3], Twofold<V>{p4.hi, plus(p4.lo, correction4)}, unit);
  }
};

/// dx, dy, dx^2, dy^2, dx dy with dx = x - cx, dy = y - cy
struct CentredProductTerms {
  static constexpr SumKind kKind = SumKind::centredProducts;
  static constexpr std::size_t kSums = 5;
  template <class V, class Unit>
  [[gnu::always_inline]] static void add(V x, V y, const Centre<V>& c, V* s, V* e,
                                         const Unit& unit) {
    const Twofold<V> dx = twoDiff(x, c.x);
    const Twofold<V> dy = twoDiff(y, c.y);
    const Twofold<V> p = twoProduct(dx.hi, dy.hi);
    const V crossed = plus(times(dx.hi, dy.lo), times(dx.lo, dy.hi));
    accumulate(s[0], e[0], dx, unit);
    accumulate(s[1], e[1], dy, unit);
    accumulate(s[2], e[2], square(dx), unit);
    accumulate(s[3], e[3], square(dy), unit);
    accumulate(s[4], e[4], Twofold<V>{p.hi, plus(p.lo, crossed)}, unit);
  }
};

/// dy, dy^2, dx dy, dx^2 dy with dx = x - cx, dy = y - cy
struct CentredCrossTerms {
  static constexpr SumKind kKind = SumKind::centredCross;
  static constexpr std::size_t kSums = 4;
  template <class V, class Unit>
  [[gnu::always_inline]] static void add(V x, V y, const Centre<V>& c, V* s, V* e,
                                         const Unit& unit) {
    const Twofold<V> dx = twoDiff(x, c.x);
    const Twofold<V> dy = twoDiff(y, c.y);
    const Twofold<V> dx2 = square(dx);
    const Twofold<V> p = twoProduct(dx.hi, dy.hi);
    const Twofold<V> p2 = twoProduct(dx2.hi, dy.hi);
    const V crossed = plus(times(dx.hi, dy.lo), times(dx.lo, dy.hi));
    const V crossed2 = plus(times(dx2.hi, dy.lo), times(dx2.lo, dy.hi));
    accumulate(s[0], e[0], dy, unit);
    accumulate(s[1], e[1], square(dy), unit);
    accumulate(s[2], e[2], Twofold<V>{p.hi, plus(p.lo, crossed)}, unit);
    accumulate(s[3], e[3], Twofold<V>{p2.hi, plus(p2.lo, crossed2)}, unit);
  }
};
