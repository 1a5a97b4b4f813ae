#include "zel/analysis/chebyshevfilter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>

#include "zel/analysis/memory_impl.h"
#include "zel/analysis/results_impl.h"
#include "zel/kernels/recursive_filter.h"

namespace zel {

namespace {

constexpr int kMostPoles = 20;
/// Coefficients of z^0, z^-1, ..., z^-20 behind two zeros.
using Polynomial = std::array<double, kMostPoles + 3>;

struct Section {
  double a0, a1, a2, b1, b2;
};

/// Section of pole pair p = 0, 1, ... of `poles`.
Section section(int p, int poles, bool highPass, double cutoff, double ripple) {
  constexpr double kPi = std::numbers::pi;
  const double angle = kPi / (2.0 * poles) + p * kPi / poles;
  double re = -std::cos(angle);
  double im = std::sin(angle);
  if (ripple > 0) {
    // From the circle to an ellipse. sqrt((100 / (100 - r))^2 - 1), without cancellation
    const double es = std::sqrt(ripple * (200 - ripple)) / (100 - ripple);
    const double v = std::asinh(1 / es) / poles;
    const double k = std::cosh(std::acosh(1 / es) / poles);
    re *= std::sinh(v) / k;
    im *= std::cosh(v) / k;
  }
  // From s to z.
  const double t = 2 * std::tan(0.5);
  const double w = 2 * kPi * cutoff;
  const double m = re * re + im * im;
  const double ds = 4 - 4 * re * t + m * t * t;
  const double x0 = t * t / ds;
  const double x1 = 2 * x0;
  const double x2 = x0;
  const double y1 = (8 - 2 * m * t * t) / ds;
  const double y2 = (-4 - 4 * re * t - m * t * t) / ds;
  // To the cut-off, and from low-pass to high-pass.
  const double k = highPass ? -std::cos(w / 2 + 0.5) / std::cos(w / 2 - 0.5)
                            : std::sin(0.5 - w / 2) / std::sin(0.5 + w / 2);
  const double d = 1 + y1 * k - y2 * k * k;
  const double sign = highPass ? -1 : 1;
  return {(x0 - x1 * k + x2 * k * k) / d, sign * (-2 * x0 * k + x1 + x1 * k * k - 2 * x2 * k) / d,
          (x0 * k * k - x1 * k + x2) / d, sign * (2 * k + y1 + y1 * k * k - 2 * y2 * k) / d,
          (-k * k - y1 * k + y2) / d};
}

/// The filter's polynomials: y A(z) / (1 - B(z)).
struct Cascade {
  Polynomial a{}, b{};
};

Cascade design(int poles, bool highPass, double cutoff, double ripple) {
  Cascade c;
  c.a[2] = c.b[2] = 1;
  for (int p = 0; p < poles / 2; ++p) {
    const Section s = section(p, poles, highPass, cutoff, ripple);
    for (std::size_t i = c.a.size(); i-- > 2;) {
      c.a[i] = s.a0 * c.a[i] + s.a1 * c.a[i - 1] + s.a2 * c.a[i - 2];
      c.b[i] = c.b[i] - s.b1 * c.b[i - 1] - s.b2 * c.b[i - 2];
    }
  }
  c.b[2] = 0;
  std::shift_left(c.a.begin(), c.a.end(), 2);
  std::shift_left(c.b.begin(), c.b.end(), 2);
  double sumA = 0;
  double sumB = 0;
  for (std::size_t i = 0; i <= kMostPoles; ++i) {
    c.b[i] = -c.b[i];
    const double sign = highPass && i % 2 == 1 ? -1 : 1;
    sumA += sign * c.a[i];
    sumB += sign * c.b[i];
  }
  for (double& a : c.a) a /= sumA / (1 - sumB);
  return c;
}

}  // namespace

void CalcChebFilterCoeffs(int NPoles, bool HighPass, double Cutoff, double Ripple, double& A0,
                          TMatrix* Coeffs) {
  if (NPoles % 2 != 0) throw EZELMath2Error("CalcChebFilterCoeffs: NPoles must be even");
  if (!(Ripple >= 0 && Ripple <= 29)) {
    throw EZELMath2Error("CalcChebFilterCoeffs: invalid Ripple value");
  }
  if (!(Cutoff >= 0 && Cutoff <= 0.5)) {
    throw EZELMath2Error("CalcChebFilterCoeffs: invalid cutoff frequency");
  }
  if (NPoles > kMostPoles) {
    throw EZELMath2Error("CalcChebFilterCoeffs: NPoles must not exceed 20");
  }
  const bool passesNothing = NPoles > 0 && Cutoff == (HighPass ? 0.5 : 0);
  const Cascade filter = passesNothing ? Cascade() : design(NPoles, HighPass, Cutoff, Ripple);
  detail::TResults results;
  detail::GuardFit("CalcChebFilterCoeffs", [&] {
    const auto rows = static_cast<std::size_t>(std::max(NPoles, 1));
    const kernels::Matrix cells = results.Add(Coeffs, rows, 2);
    if (!Coeffs) return;
    std::copy_n(filter.a.begin() + 1, rows, cells.column(0));
    std::copy_n(filter.b.begin() + 1, rows, cells.column(1));
  });
  A0 = filter.a[0];
  results.Commit();
}

void ChebychevFilter(const TVector* SourceVec, int LowElem, int HighElem, TVector* DestVec,
                     double A0, const TMatrix* Coeffs) {
  if (!SourceVec || !DestVec || !Coeffs) return;
  const int first = std::max(LowElem, 1);
  const int last = std::min(HighElem, DestVec->NrOfElem());
  if (first > last) return;
  detail::GuardFit("ChebychevFilter", [&] {
    const auto poles = static_cast<std::size_t>(Coeffs->NrOfRows());
    const detail::Numbers none(Coeffs->NrOfColumns() < 2 ? poles : 0);
    const std::span<const double> b = none.empty() ? Coeffs->Column(2) : none;
    const std::span<double> out = detail::TResults::ElementsOf(*DestVec);
    kernels::filterBothWays({A0, Coeffs->Column(1), b}, SourceVec->Elements(),
                            std::int64_t{HighElem} + Coeffs->NrOfRows() + 1, first - 1,
                            out.subspan(static_cast<std::size_t>(first - 1),
                                        static_cast<std::size_t>(last - first + 1)));
  });
}

}  // namespace zel
