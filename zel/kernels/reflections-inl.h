// Householder reflections H = 1 - f v v^T of contiguous vectors. Included once per instruction set
// inside its namespace. Sums run over sixteen lanes and products are rounded before they are added,
// so every instruction set gives the same bits.

using Tag = hn::CappedTag<double, 8>;
using Vec = hn::Vec<Tag>;
constexpr std::size_t kLanes = hn::MaxLanes(Tag());
// Lanes of a sum, whatever the width of a vector.
constexpr std::size_t kSumLanes = 16;
constexpr std::size_t kSumVecs = kSumLanes / kLanes;

/// Adds the lanes of a sum.
template <std::size_t kSumVecs>
HWY_INLINE double addLanes(const Vec* s) {
  const Tag d;
  HWY_ALIGN double lanes[kSumVecs * kLanes];
  for (std::size_t v = 0; v < kSumVecs; ++v) hn::Store(s[v], d, lanes + v * kLanes);
  for (std::size_t width = kSumVecs * kLanes / 2; width > 0; width /= 2) {
    for (std::size_t lane = 0; lane < width; ++lane) lanes[lane] += lanes[lane + width];
  }
  return lanes[0];
}

/// Sums of x y for several y; lane i takes the elements with index i modulo kSumLanes.
template <std::size_t kSums, std::size_t kSumLanes>
HWY_INLINE void dots(const double* HWY_RESTRICT x, const double* const* y, std::size_t n,
                     double* result) {
  const Tag d;
  constexpr std::size_t kSumVecs = kSumLanes / kLanes;
  Vec s[kSums][kSumVecs];
  for (std::size_t k = 0; k < kSums; ++k) {
    for (std::size_t v = 0; v < kSumVecs; ++v) s[k][v] = hn::Zero(d);
  }
  std::size_t i = 0;
  for (; i + kSumLanes <= n; i += kSumLanes) {
    for (std::size_t v = 0; v < kSumVecs; ++v) {
      const Vec a = hn::LoadU(d, x + i + v * kLanes);
      for (std::size_t k = 0; k < kSums; ++k) {
        s[k][v] = hn::Add(s[k][v], hn::Mul(a, hn::LoadU(d, y[k] + i + v * kLanes)));
      }
    }
  }
  if (i < n) {
    HWY_ALIGN double rest[kSums + 1][kSumLanes] = {};
    std::copy(x + i, x + n, rest[kSums]);
    for (std::size_t k = 0; k < kSums; ++k) std::copy(y[k] + i, y[k] + n, rest[k]);
    for (std::size_t v = 0; v < kSumVecs; ++v) {
      const Vec a = hn::Load(d, rest[kSums] + v * kLanes);
      for (std::size_t k = 0; k < kSums; ++k) {
        s[k][v] = hn::Add(s[k][v], hn::Mul(a, hn::Load(d, rest[k] + v * kLanes)));
      }
    }
  }
  for (std::size_t k = 0; k < kSums; ++k) result[k] = addLanes<kSumVecs>(s[k]);
}

/// Sum of the squares of scale x.
HWY_INLINE double scaledSquares(const double* HWY_RESTRICT x, std::size_t n, double scale) {
  const Tag d;
  const Vec factor = hn::Set(d, scale);
  Vec s[kSumVecs];
  for (std::size_t v = 0; v < kSumVecs; ++v) s[v] = hn::Zero(d);
  const auto add = [&](const double* a) HWY_ATTR {
    for (std::size_t v = 0; v < kSumVecs; ++v) {
      const Vec p = hn::Mul(factor, hn::LoadU(d, a + v * kLanes));
      s[v] = hn::Add(s[v], hn::Mul(p, p));
    }
  };
  std::size_t i = 0;
  for (; i + kSumLanes <= n; i += kSumLanes) add(x + i);
  if (i < n) {
    HWY_ALIGN double rest[kSumLanes] = {};
    std::copy(x + i, x + n, rest);
    add(rest);
  }
  return addLanes<kSumVecs>(s);
}

/// x[k] -= f[k] v for one or several x, which share the reading of v.
template <std::size_t kCount>
HWY_INLINE void subtractFromEach(const double* f, const double* HWY_RESTRICT v, double* const* x,
                                 std::size_t n) {
  const Tag d;
  Vec factor[kCount];
  for (std::size_t k = 0; k < kCount; ++k) factor[k] = hn::Set(d, f[k]);
  std::size_t i = 0;
  for (; i + kLanes <= n; i += kLanes) {
    const Vec a = hn::LoadU(d, v + i);
    for (std::size_t k = 0; k < kCount; ++k) {
      hn::StoreU(hn::Sub(hn::LoadU(d, x[k] + i), hn::Mul(factor[k], a)), d, x[k] + i);
    }
  }
  for (; i < n; ++i) {
    for (std::size_t k = 0; k < kCount; ++k) x[k][i] -= f[k] * v[i];
  }
}

/// x -= f[0] v[0] + f[1] v[1] + ..., one after the other.
template <std::size_t kCount>
HWY_INLINE void subtractAll(const double* f, const double* const* v, double* HWY_RESTRICT x,
                            std::size_t n) {
  const Tag d;
  Vec factor[kCount];
  for (std::size_t k = 0; k < kCount; ++k) factor[k] = hn::Set(d, f[k]);
  std::size_t i = 0;
  for (; i + kLanes <= n; i += kLanes) {
    Vec s = hn::LoadU(d, x + i);
    for (std::size_t k = 0; k < kCount; ++k) {
      s = hn::Sub(s, hn::Mul(factor[k], hn::LoadU(d, v[k] + i)));
    }
    hn::StoreU(s, d, x + i);
  }
  for (; i < n; ++i) {
    for (std::size_t k = 0; k < kCount; ++k) x[i] -= f[k] * v[k][i];
  }
}

/// x -= f v
HWY_INLINE void subtract(double f, const double* v, double* x, std::size_t n) {
  subtractFromEach<1>(&f, v, &x, n);
}

/// x *= f
HWY_INLINE void multiply(double f, double* x, std::size_t n) {
  const Tag d;
  const Vec factor = hn::Set(d, f);
  std::size_t i = 0;
  for (; i + kLanes <= n; i += kLanes) hn::StoreU(hn::Mul(factor, hn::LoadU(d, x + i)), d, x + i);
  for (; i < n; ++i) x[i] *= f;
}

HWY_INLINE double largestMagnitude(const double* x, std::size_t n) {
  const Tag d;
  Vec big[kSumVecs];
  for (std::size_t v = 0; v < kSumVecs; ++v) big[v] = hn::Zero(d);
  std::size_t i = 0;
  for (; i + kSumLanes <= n; i += kSumLanes) {
    for (std::size_t v = 0; v < kSumVecs; ++v) {
      big[v] = hn::Max(big[v], hn::Abs(hn::LoadU(d, x + i + v * kLanes)));
    }
  }
  for (std::size_t v = 1; v < kSumVecs; ++v) big[0] = hn::Max(big[0], big[v]);
  HWY_ALIGN double lanes[kLanes];
  hn::Store(big[0], d, lanes);
  double result = 0;
  for (const double lane : lanes) result = std::max(result, lane);
  for (; i < n; ++i) result = std::max(result, std::abs(x[i]));
  return result;
}

/// x[k] -> (1 - f v v^T) x[k] for one or several x.
template <std::size_t kCount>
HWY_INLINE void reflectEach(double f, const double* HWY_RESTRICT v, double* const* x,
                            std::size_t n) {
  if (f == 0) return;
  double weights[kCount];
  dots<kCount, kSumLanes>(v, x, n, weights);
  for (double& weight : weights) weight *= f;
  subtractFromEach<kCount>(weights, v, x, n);
}

HWY_INLINE void reflect(double f, const double* v, double* x, std::size_t n) {
  reflectEach<1>(f, v, &x, n);
}

/// Makes the reflection that maps (head; x) on a multiple of the first unit vector. Its vector is
/// (1; x), where x is replaced.
/// @param image  takes that multiple; may be head
/// @return the factor f; 0 if x is 0
inline double makeReflection(double head, double* x, std::size_t n, double& image) {
  const double big = largestMagnitude(x, n);
  image = head;
  if (big == 0) return 0;
  // Exact scaling, so that no square is lost.
  const int exponent = std::max(std::ilogb(std::max(big, std::abs(head))), -1000);
  const double scale = std::ldexp(1.0, -exponent);
  const double alpha = head * scale;
  const double norm = std::sqrt(alpha * alpha + scaledSquares(x, n, scale));
  const double beta = alpha < 0 ? norm : -norm;
  const double shrink = scale / (alpha - beta);
  if (std::isfinite(shrink)) {
    multiply(shrink, x, n);
  } else {
    multiply(scale, x, n);
    multiply(1 / (alpha - beta), x, n);
  }
  image = std::ldexp(beta, exponent);
  return (beta - alpha) / beta;
}

/// The same of a contiguous vector, whose first element becomes 1.
inline double makeReflection(double* x, std::size_t n, double& image) {
  const double factor = makeReflection(x[0], x + 1, n - 1, image);
  x[0] = 1;
  return factor;
}
