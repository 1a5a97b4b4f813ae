#include "bins.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "number_text.h"

namespace tool {
namespace {

double powerOfTen(int e) { return std::pow(10.0, e); }

/// k 10^e, correctly rounded as long as the power is exact, so that an edge is the double nearest
/// to its decimal text.
double scaled(double k, int e) {
  return e < 0 && e > -300 ? k / powerOfTen(-e) : k * powerOfTen(e);
}

struct Width {
  int mantissa;
  int exponent;
  [[nodiscard]] double value() const { return scaled(mantissa, exponent); }
};

/// 1, 2, 5, 10, 20 ...
Width nextWider(Width w) {
  if (w.mantissa == 5) return {1, w.exponent + 1};
  return {w.mantissa == 1 ? 2 : 5, w.exponent};
}

/// The widest of 1, 2, 5 times a power of ten that is not above a positive limit.
Width widestUpTo(double limit) {
  const int start = static_cast<int>(std::floor(std::log10(limit))) - 1;
  Width w{1, std::max(start, -323)};
  for (Width next = nextWider(w); next.value() <= limit; next = nextWider(w)) w = next;
  return w;
}

/// v times a power of ten, exactly if v is the double nearest to a decimal fraction that this makes
/// a whole number: 0.29 * 100 is below 29 in binary, but 29 / 100 is 0.29.
double timesPower(double v, double power) {
  const double whole = std::nearbyint(v * power);
  return whole / power == v ? whole : v * power;
}

/// The largest power of ten, 10^-6 to 1, of which all values are whole multiples; 0 if there is
/// none.
double resolution(const zel::TVector& x) {
  for (int decimals = 0; decimals <= 6; ++decimals) {
    const double power = powerOfTen(decimals);
    const bool whole = std::all_of(x.begin(), x.end(), [&](double v) {
      return std::abs(v * power) < 0x1p53 && std::nearbyint(v * power) / power == v;
    });
    if (whole) return 1 / power;
  }
  return 0;
}

struct Range {
  double low;
  double high;
  [[nodiscard]] double extent() const { return high - low; }
  /// Edges closer than this could coincide.
  [[nodiscard]] double finest() const {
    const double size = std::max(std::abs(low), std::abs(high));
    return size - std::nextafter(size, 0);
  }
};

std::optional<Range> rangeOf(const zel::TVector& x) {
  Range range{};
  x.MinMax(0, 0, range.low, range.high);
  // Beyond this, edges and differences of values would overflow.
  constexpr double kLargest = 1e307;
  if (range.high < range.low || range.high > kLargest || range.low < -kLargest) return std::nullopt;
  return range;
}

double binsIn(const Range& range, double width) {
  return std::floor(range.high / width) - std::floor(range.low / width) + 1;
}

/// For a width that the data can't be finer than; also that of the only bin of constant data.
double narrowest(const zel::TVector& x, const Range& range) {
  return std::max(resolution(x), 2 * range.finest());
}

std::optional<Histogram> count(const zel::TVector& x, const Range& range, Width width) {
  Histogram histogram;
  histogram.mantissa = width.mantissa;
  histogram.exponent = width.exponent;
  const bool fraction = width.exponent < 0 && width.exponent > -300;
  const double power = fraction ? powerOfTen(-width.exponent) : 1;
  const double step = fraction ? width.mantissa : width.value();
  const auto multiple = [&](double v) { return std::floor(timesPower(v, power) / step); };
  histogram.firstMultiple = multiple(range.low);
  const double last = multiple(range.high) - histogram.firstMultiple;
  const double upperEdge = (histogram.firstMultiple + last + 1) * step;
  if (!std::isfinite(histogram.firstMultiple * step) || !std::isfinite(upperEdge))
    return std::nullopt;

  // Counted as whole numbers of widths: x - first could round up to an edge that x is below.
  std::vector<int> multiples;
  multiples.reserve(x.size());
  for (const double v : x) {
    multiples.push_back(static_cast<int>(multiple(v) - histogram.firstMultiple));
  }
  zel::TIntVector counts;
  int below = 0;
  int above = 0;
  int most = 0;
  zel::TIntVector(multiples).Histogram(1, x.NrOfElem(), 0, static_cast<int>(last), 1, &counts,
                                       below, above, most);
  histogram.counts.assign(counts.begin(), counts.end());
  return histogram;
}

}  // namespace

double Histogram::width() const { return scaled(mantissa, exponent); }

double Histogram::edge(std::size_t i) const {
  return scaled((firstMultiple + static_cast<double>(i)) * mantissa, exponent);
}

std::string Histogram::edgeText(std::size_t i) const {
  const double x = edge(i) + 0.0;  // no negative zero
  return exponent > -10 && std::abs(x) < 1e9 ? fixedPoint(x, std::max(-exponent, 0)) : shortest(x);
}

std::size_t Histogram::binOf(double x) const {
  std::size_t i = 0;
  while (i + 1 < counts.size() && x >= edge(i + 1)) ++i;
  return i;
}

std::optional<Histogram> countInBins(const zel::TVector& x, int mostBins) {
  const auto range = rangeOf(x);
  if (!range) return std::nullopt;
  const double n = x.NrOfElem();
  double q1 = 0;
  double median = 0;
  double q3 = 0;
  x.Quartiles(0, 0, q1, median, q3);
  double wish = 2 * (q3 - q1) / std::cbrt(n);
  // No spread in the middle half: as many bins as the binary digits of n.
  if (!(wish > 0)) wish = range->extent() / (std::floor(std::log2(n)) + 1);
  const double least = narrowest(x, *range);
  if (range->extent() == 0) wish = range->low == 0 ? 1 : std::abs(range->low) / 10;
  Width width = widestUpTo(std::max({wish, least, std::numeric_limits<double>::denorm_min()}));
  while (width.value() < least || binsIn(*range, width.value()) > mostBins)
    width = nextWider(width);
  return count(x, *range, width);
}

std::optional<Histogram> countInAbout(const zel::TVector& x, int bins) {
  const auto range = rangeOf(x);
  if (!range) return std::nullopt;
  const double least = narrowest(x, *range);
  if (!(range->extent() > 0)) return countInBins(x, bins);
  const int magnitude = static_cast<int>(std::floor(std::log10(range->extent() / bins)));
  std::optional<Width> best;
  double bestMiss = std::numeric_limits<double>::infinity();
  for (int e = magnitude - 2; e <= magnitude + 1; ++e) {
    for (const int mantissa : {10, 12, 15, 20, 25, 30, 40, 50, 60, 80}) {
      Width width = mantissa % 10 == 0 ? Width{mantissa / 10, e + 1} : Width{mantissa, e};
      const double w = width.value();
      // A width between two multiples of the resolution would favour some bins.
      const double multiple = least > 0 ? w / least : 1;
      if (w < least || (multiple < 1000 && std::abs(multiple - std::round(multiple)) > 1e-9))
        continue;
      const double miss = std::abs(binsIn(*range, w) - bins);
      if (miss < bestMiss) {
        best = width;
        bestMiss = miss;
      }
    }
  }
  if (!best) return countInBins(x, bins);
  return count(x, *range, *best);
}

}  // namespace tool
