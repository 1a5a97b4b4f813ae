// Transforms of 2 to 64 complex vectors in straight code; the sign of the exponent is plus.
// Included once per instruction set inside its namespace, after `namespace hn`.

template <class D>
struct Complex {
  hn::Vec<D> re;
  hn::Vec<D> im;
};

template <class D>
HWY_INLINE Complex<D> plus(const Complex<D>& a, const Complex<D>& b) {
  return {hn::Add(a.re, b.re), hn::Add(a.im, b.im)};
}
template <class D>
HWY_INLINE Complex<D> minus(const Complex<D>& a, const Complex<D>& b) {
  return {hn::Sub(a.re, b.re), hn::Sub(a.im, b.im)};
}
/// a + i b, a - i b
template <class D>
HWY_INLINE Complex<D> plusI(const Complex<D>& a, const Complex<D>& b) {
  return {hn::Sub(a.re, b.im), hn::Add(a.im, b.re)};
}
template <class D>
HWY_INLINE Complex<D> minusI(const Complex<D>& a, const Complex<D>& b) {
  return {hn::Add(a.re, b.im), hn::Sub(a.im, b.re)};
}
template <class D>
HWY_INLINE Complex<D> times(const Complex<D>& a, const Complex<D>& b) {
  return {hn::Sub(hn::Mul(a.re, b.re), hn::Mul(a.im, b.im)),
          hn::Add(hn::Mul(a.re, b.im), hn::Mul(a.im, b.re))};
}
/// One factor, real and imaginary part in turn, in all lanes.
template <class D>
HWY_INLINE Complex<D> factor(D d, const double* root) {
  return {hn::Set(d, root[0]), hn::Set(d, root[1])};
}

/// Transforms x in place.
template <class D>
HWY_INLINE void butterfly(D, Complex<D> (&)[1]) {}

template <class D>
HWY_INLINE void butterfly(D, Complex<D> (&x)[2]) {
  const Complex<D> a = x[0];
  x[0] = plus(a, x[1]);
  x[1] = minus(a, x[1]);
}

template <class D>
HWY_INLINE void butterfly(D, Complex<D> (&x)[4]) {
  const Complex<D> even = plus(x[0], x[2]);
  const Complex<D> evenTurned = minus(x[0], x[2]);
  const Complex<D> odd = plus(x[1], x[3]);
  const Complex<D> oddTurned = minus(x[1], x[3]);
  x[0] = plus(even, odd);
  x[1] = plusI(evenTurned, oddTurned);
  x[2] = minus(even, odd);
  x[3] = minusI(evenTurned, oddTurned);
}

template <class D>
HWY_INLINE void butterfly(D d, Complex<D> (&x)[8]) {
  Complex<D> even[4] = {x[0], x[2], x[4], x[6]};
  Complex<D> odd[4] = {x[1], x[3], x[5], x[7]};
  butterfly(d, even);
  butterfly(d, odd);
  const auto diagonal = hn::Set(d, 0.70710678118654752440);
  // times (1 + i) / sqrt 2; the third factor is i times that
  const auto turn = [&](const Complex<D>& a) HWY_ATTR {
    return Complex<D>{hn::Mul(hn::Sub(a.re, a.im), diagonal),
                      hn::Mul(hn::Add(a.im, a.re), diagonal)};
  };
  const Complex<D> once = turn(odd[1]);
  const Complex<D> thrice = turn(odd[3]);
  x[0] = plus(even[0], odd[0]);
  x[4] = minus(even[0], odd[0]);
  x[1] = plus(even[1], once);
  x[5] = minus(even[1], once);
  x[2] = plusI(even[2], odd[2]);
  x[6] = minusI(even[2], odd[2]);
  x[3] = plusI(even[3], thrice);
  x[7] = minusI(even[3], thrice);
}

/// A transform of kSize vectors: load(j) gives the input, store(k, value) takes the result. All is
/// loaded before the first result is stored.
/// @param roots  the roots of unity of order kSize
template <std::size_t kSize, class D, class Load, class Store>
HWY_INLINE void codelet(D d, const double* HWY_RESTRICT roots, Load load, Store store) {
  if constexpr (kSize <= 8) {
    Complex<D> x[kSize];
    for (std::size_t j = 0; j < kSize; ++j) x[j] = load(j);
    butterfly(d, x);
    for (std::size_t k = 0; k < kSize; ++k) store(k, x[k]);
  } else {
    constexpr std::size_t kFirst = kSize == 64 ? 8 : 4;
    constexpr std::size_t kSecond = kSize / kFirst;
    Complex<D> y[kSize];
    for (std::size_t j = 0; j < kSecond; ++j) {
      Complex<D> x[kFirst];
      for (std::size_t i = 0; i < kFirst; ++i) x[i] = load(j + kSecond * i);
      butterfly(d, x);
      y[j] = x[0];
      for (std::size_t k = 1; k < kFirst; ++k) {
        y[k * kSecond + j] = j == 0 ? x[k] : times(x[k], factor(d, roots + 2 * j * k));
      }
    }
    for (std::size_t k = 0; k < kFirst; ++k) {
      Complex<D> x[kSecond];
      for (std::size_t j = 0; j < kSecond; ++j) x[j] = y[k * kSecond + j];
      butterfly(d, x);
      for (std::size_t i = 0; i < kSecond; ++i) store(k + kFirst * i, x[i]);
    }
  }
}
