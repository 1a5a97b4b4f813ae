#include "zel/kernels/split_sums.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "zel/kernels/targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "zel/kernels/split_sums.cpp"
#include "hwy/cache_control.h"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace zel::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#include "zel/kernels/double_double-inl.h"
#include "zel/kernels/lanes-inl.h"

// Magnitudes 2^e that the units are made for. The squares of the units stay in the double range.
constexpr int kLowestExponent = -400;
constexpr int kHighestExponent = 450;

/// 2^exponent, in the normal range. By its bits: the library function costs as much as a part of a
/// run.
double powerOfTwo(int exponent) {
  return std::bit_cast<double>(static_cast<std::uint64_t>(exponent + 1023) << 52);
}

/// e with 2^e <= m < 2^(e + 1), for positive normal m.
int binaryExponent(double m) {
  return static_cast<int>(std::bit_cast<std::uint64_t>(m) >> 52) - 1023;
}

/// e with 2^e <= m < 2^(e + 1), not below kLowestExponent; above kHighestExponent for anything that
/// is too large or not a number.
int exponentOf(double m) {
  if (!(m < 0x1p450)) return kHighestExponent + 1;
  return m < 0x1p-400 ? kLowestExponent : binaryExponent(m);
}

/// Largest |x - centre|; infinite if one is not a number.
template <class T>
double magnitude(const T* x, std::size_t n, double centre) {
  double largest = 0;
  bool isNumber = true;
  for (std::size_t i = 0; i < n; ++i) {
    const double m = std::abs(static_cast<double>(x[i]) - centre);
    largest = m > largest ? m : largest;
    isNumber = isNumber && m == m;
  }
  return isNumber ? largest : std::numeric_limits<double>::infinity();
}

/// x. The unit is 2^-41 of the largest magnitude allowed: 513 elements then move the accumulator by
/// less than 2^51 units. A run is as long as that, since ending one costs as much as many elements.
/// The running check is a sum of squares, one operation where a maximum takes two. Fused or not it
/// is rounded differently, so it only says that the magnitudes are certainly right; otherwise they
/// are looked at, and the decision is the same on every machine.
struct SplitSumTerms {
  static constexpr std::size_t kSums = 1;
  static constexpr std::size_t kWidth = HWY_MIN(kVecsPerStep, std::size_t{4});
  static constexpr std::size_t kRun = 4 * kRunElements;

  struct State {
    LaneVec s, e, check;
  };
  static HWY_INLINE State begin(LaneVec start) {
    return {start, hn::Zero(LaneTag()), hn::Zero(LaneTag())};
  }
  static HWY_INLINE void add(LaneVec x, LaneVec, State& r, const OnMultiplier& unit) {
    const LaneVec sum = hn::Add(r.s, x);
    const LaneVec cut = hn::Sub(sum, r.s);
    r.e = unit.add(r.e, hn::Sub(x, cut));
    r.check = hn::MulAdd(x, x, r.check);
    r.s = sum;
  }
  static HWY_INLINE void fold(const State& r, LaneVec start, bool isFirst, LaneSums<kSums>& total,
                              std::size_t at) {
    foldInto(hn::Sub(r.s, start), r.e, isFirst, total.hi[0] + at, total.lo[0] + at);
  }

  /// For magnitudes below 2^(exponent + 1); the sum of squares of a run usually stays within the
  /// check.
  static double unitFor(int exponent) { return powerOfTwo(exponent + 6 - 41); }
  static double largestFor(double u) { return u * 0x1p41; }
  static double limitOf(double u) { return largestFor(u) * largestFor(u) * (1 - 0x1p-20); }
  template <class T>
  static bool hasPassed(const T* x, std::size_t n, double, double u) {
    return magnitude(x, n, 0) <= largestFor(u);
  }
  /// Follows magnitudes that became 2^6 times smaller; a larger check rules that out.
  template <class T>
  static int nextExponent(const T* x, std::size_t n, double check, int exponent) {
    if (check > powerOfTwo(2 * exponent - 2)) return exponent;
    const double m = magnitude(x, n, 0);
    return m > 0 && m < powerOfTwo(exponent - 6) ? exponentOf(m) : exponent;
  }
  /// Of sixteen lanes: e grows by half a unit in each of 513 additions, which are rounded.
  static void addErrors(double u, double, double* errors) { errors[0] += 0x1p-31 * u; }
};

/// d = x - centre and d^2. The unit leaves 22 bits for d, so that the squares of the cut values are
/// summed without error as well while they stay below 2^53 squared units; since squares only grow,
/// their sum is the check. The rest of the square is (d + cut)(d - cut).
struct SplitMomentTerms {
  static constexpr std::size_t kSums = 2;
  static constexpr std::size_t kWidth = HWY_MIN(kVecsPerStep, std::size_t{2});
  static constexpr std::size_t kRun = kRunElements;

  struct State {
    LaneVec s, e, check, rest;
  };
  static HWY_INLINE State begin(LaneVec start) {
    const LaneVec zero = hn::Zero(LaneTag());
    return {start, zero, zero, zero};
  }
  static HWY_INLINE void add(LaneVec x, LaneVec centre, State& r, const OnMultiplier& unit) {
    const LaneVec deviation = hn::Sub(x, centre);
    const LaneVec sum = hn::Add(r.s, deviation);
    const LaneVec cut = unit.sub(sum, r.s);
    const LaneVec left = hn::Sub(deviation, cut);
    r.e = unit.add(r.e, left);
    r.check = hn::MulAdd(cut, cut, r.check);  // no rounding, fused or not
    r.rest = hn::Add(r.rest, hn::Mul(hn::Add(deviation, cut), left));
    r.s = sum;
  }
  static HWY_INLINE void fold(const State& r, LaneVec start, bool isFirst, LaneSums<kSums>& total,
                              std::size_t at) {
    foldInto(hn::Sub(r.s, start), r.e, isFirst, total.hi[0] + at, total.lo[0] + at);
    foldInto(r.check, r.rest, isFirst, total.hi[1] + at, total.lo[1] + at);
  }

  static double unitFor(int exponent) { return powerOfTwo(exponent + 1 - 22); }
  static double limitOf(double u) { return 0x1p52 * u * u; }
  template <class T>
  static bool hasPassed(const T*, std::size_t, double, double) {
    return false;
  }
  template <class T>
  static int nextExponent(const T*, std::size_t, double check, int exponent) {
    // The check holds up to 2^7 squares of 2^(2 exponent), usually a few times less.
    if (!(check > 0 && check < powerOfTwo(2 * exponent - 3))) return exponent;
    return std::max(kLowestExponent, (binaryExponent(check) - 4) / 2);
  }
  /// e grows by half a unit in each of 129 additions, and the rests grow to u * sqrt(129 check) in
  /// 129 rounded additions.
  static void addErrors(double u, double check, double* errors) {
    errors[0] += 0x1p-35 * u;
    errors[1] += 0x1p-38 * u * (std::sqrt(check) + 8 * u);
  }
};

/// Sums one run of n elements. If it passes the check, it is added to the total and `largest` is
/// the largest check of a lane; if not, the total stays.
template <class Terms, class T>
HWY_INLINE bool splitRun(const T* HWY_RESTRICT x, std::size_t n, double centre, double u,
                         double one, bool isFirst, LaneSums<Terms::kSums>& total, double& largest) {
  const LaneTag d;
  const std::size_t whole = n - n % kSumLanes;
  // The elements after the last whole step, filled up with the centre, which contributes exactly 0.
  alignas(64) double tail[kSumLanes];
  for (std::size_t i = 0; whole < n && i < kSumLanes; ++i) {
    tail[i] = whole + i < n ? static_cast<double>(x[whole + i]) : centre;
  }
  const OnMultiplier unit{hn::Set(d, one)};
  const LaneVec c = hn::Set(d, centre);
  const LaneVec start = hn::Set(d, 0x1.8p52 * u);
  const LaneVec limit = hn::Set(d, Terms::limitOf(u));
  constexpr std::size_t kWalks = kVecsPerStep / Terms::kWidth;
  typename Terms::State run[kVecsPerStep];
  for (std::size_t walk = 0; walk < kWalks; ++walk) {
    typename Terms::State state[Terms::kWidth];
    for (auto& s : state) s = Terms::begin(start);
    const T* HWY_RESTRICT from = x + walk * Terms::kWidth * kVecLanes;
    for (std::size_t i = 0; i < whole; i += kSumLanes) {
      hwy::Prefetch(from + i + kPrefetchElements);
      if (Terms::kWidth * kVecLanes * sizeof(T) > 64)
        hwy::Prefetch(from + i + kPrefetchElements + kSumLanes / 2);
      for (std::size_t j = 0; j < Terms::kWidth; ++j) {
        Terms::add(loadLanes(d, from + i + j * kVecLanes), c, state[j], unit);
      }
    }
    for (std::size_t j = 0; j < Terms::kWidth; ++j) {
      const std::size_t vec = walk * Terms::kWidth + j;
      if (whole < n) Terms::add(hn::Load(d, tail + vec * kVecLanes), c, state[j], unit);
      run[vec] = state[j];
    }
  }
  auto fits = hn::Le(run[0].check, limit);
  LaneVec most = run[0].check;
  for (std::size_t vec = 1; vec < kVecsPerStep; ++vec) {
    fits = hn::And(fits, hn::Le(run[vec].check, limit));
    most = hn::Max(most, run[vec].check);
  }
  if (!hn::AllTrue(d, fits) && !Terms::hasPassed(x, n, centre, u)) return false;
  for (std::size_t vec = 0; vec < kVecsPerStep; ++vec)
    Terms::fold(run[vec], start, isFirst, total, vec * kVecLanes);
  largest = hn::GetLane(hn::MaxOfLanes(d, most));
  return true;
}

/// Writes the sums as pairs and the bounds of their errors, infinite if the method failed.
template <class Terms, class T>
void splitSums(const T* HWY_RESTRICT x, std::size_t n, double centre, double one, double* out,
               double* errors) {
  LaneSums<Terms::kSums> total{};
  int exponent = exponentOf(magnitude(x, HWY_MIN(n, kSumLanes), centre));
  for (std::size_t begin = 0; begin < n; begin += Terms::kRun) {
    const std::size_t count = HWY_MIN(n - begin, Terms::kRun);
    bool isDone = false;
    double largest = 0;
    for (int attempt = 0; attempt < 2 && !isDone; ++attempt) {
      if (attempt > 0) exponent = exponentOf(magnitude(x + begin, count, centre));
      if (exponent > kHighestExponent) break;
      isDone = splitRun<Terms>(x + begin, count, centre, Terms::unitFor(exponent), one, begin == 0,
                               total, largest);
    }
    if (!isDone) {
      std::fill_n(errors, Terms::kSums, std::numeric_limits<double>::infinity());
      return;
    }
    Terms::addErrors(Terms::unitFor(exponent), largest, errors);
    exponent = Terms::nextExponent(x + begin, count, largest, exponent);
  }
  addLanes(total, out);
}

void splitSumOfDoubles(const double* x, std::size_t n, double one, double* out, double* errors) {
  splitSums<SplitSumTerms>(x, n, 0, one, out, errors);
}
void splitSumOfIntegers(const std::int32_t* x, std::size_t n, double one, double* out,
                        double* errors) {
  splitSums<SplitSumTerms>(x, n, 0, one, out, errors);
}
void splitMomentsOfDoubles(const double* x, std::size_t n, double centre, double one, double* out,
                           double* errors) {
  splitSums<SplitMomentTerms>(x, n, centre, one, out, errors);
}
void splitMomentsOfIntegers(const std::int32_t* x, std::size_t n, double centre, double one,
                            double* out, double* errors) {
  splitSums<SplitMomentTerms>(x, n, centre, one, out, errors);
}

}  // namespace
}  // namespace zel::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zel::kernels {

HWY_EXPORT(splitSumOfDoubles);
HWY_EXPORT(splitSumOfIntegers);
HWY_EXPORT(splitMomentsOfDoubles);
HWY_EXPORT(splitMomentsOfIntegers);

namespace {

// Read at run time on purpose, see OnMultiplier.
volatile double gOne = 1;

/// A pair that is not finite has no bound: an element was not a number.
BoundedSum bounded(const double* pair, double error) {
  const DoubleDouble value{pair[0], pair[1]};
  return {value, isFinite(value) ? error : std::numeric_limits<double>::infinity()};
}

}  // namespace

BoundedSum splitSum(const double* x, std::size_t n) {
  double pair[2] = {};
  double error = 0;
  HWY_DYNAMIC_DISPATCH(splitSumOfDoubles)(x, n, gOne, pair, &error);
  return bounded(pair, error);
}

BoundedSum splitSum(const std::int32_t* x, std::size_t n) {
  double pair[2] = {};
  double error = 0;
  HWY_DYNAMIC_DISPATCH(splitSumOfIntegers)(x, n, gOne, pair, &error);
  return bounded(pair, error);
}

SplitMoments splitMoments(const double* x, std::size_t n, double centre) {
  double pairs[4] = {};
  double errors[2] = {};
  HWY_DYNAMIC_DISPATCH(splitMomentsOfDoubles)(x, n, centre, gOne, pairs, errors);
  return {bounded(pairs, errors[0]), bounded(pairs + 2, errors[1])};
}

SplitMoments splitMoments(const std::int32_t* x, std::size_t n, double centre) {
  double pairs[4] = {};
  double errors[2] = {};
  HWY_DYNAMIC_DISPATCH(splitMomentsOfIntegers)(x, n, centre, gOne, pairs, errors);
  return {bounded(pairs, errors[0]), bounded(pairs + 2, errors[1])};
}

}  // namespace zel::kernels
#endif
