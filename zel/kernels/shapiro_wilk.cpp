#include "zel/kernels/shapiro_wilk.h"

#include <cmath>
#include <vector>

#include "zel/kernels/horner.h"
#include "zel/kernels/moments.h"

namespace zel::kernels {

namespace {

/// The z beyond which the standard normal distribution has q, 1e-11 < q <= 1/2. Full double
/// precision without an iteration (Wichura, Appl. Statist. 37 (1988) 477, algorithm AS 241).
double upperQuantile(double q) {
  constexpr double kCentral = 0.425;
  const double distance = 0.5 - q;
  if (distance <= kCentral) {
    const double r = kCentral * kCentral - distance * distance;
    return distance *
           horner({3.3871328727963666080, 133.14166789178437745, 1971.5909503065514427,
                   13731.693765509461125, 45921.953931549871457, 67265.770927008700853,
                   33430.575583588128105, 2509.0809287301226727},
                  r) /
           horner({1, 42.313330701600911252, 687.18700749205790830, 5394.1960214247511077,
                   21213.794301586595867, 39307.895800092710610, 28729.085735721942674,
                   5226.4952788528545610},
                  r);
  }
  const double r = std::sqrt(-std::log(q)) - 1.6;
  return horner({1.42343711074968357734, 4.63033784615654529590, 5.76949722146069140550,
                 3.64784832476320460504, 1.27045825245236838258, 0.241780725177450611770,
                 0.0227238449892691845833, 7.74545014278341407640e-4},
                r) /
         horner({1, 2.05319162663775882187, 1.67638483018380384940, 0.689767334985100004550,
                 0.148103976427480074590, 0.0151986665636164571966, 5.47593808499534494600e-4,
                 1.05075007164441684324e-9},
                r);
}

/// Weights of the n / 2 largest values, the largest first.
std::vector<double> weights(std::size_t n) {
  const auto size = static_cast<double>(n);
  std::vector<double> a(n / 2);
  if (n == 3) {
    a[0] = std::sqrt(0.5);
    return a;
  }
  double squares = 0;  // of the expected order statistics
  for (std::size_t i = 0; i < a.size(); ++i) {
    a[i] = upperQuantile((static_cast<double>(i) + 0.625) / (size + 0.25));
    squares += 2 * a[i] * a[i];
  }
  const double root = 1 / std::sqrt(size);
  const double norm = std::sqrt(squares);
  const double first =
      horner({0, 0.221157, -0.147981, -2.07119, 4.434685, -2.706056}, root) + a[0] / norm;
  double rest = squares - 2 * a[0] * a[0];
  double share = 1 - 2 * first * first;
  std::size_t own = 1;
  if (n > 5) {
    const double second =
        horner({0, 0.042981, -0.293762, -1.752461, 5.682633, -3.582633}, root) + a[1] / norm;
    rest -= 2 * a[1] * a[1];
    share -= 2 * second * second;
    a[1] = second;
    own = 2;
  }
  a[0] = first;
  const double factor = std::sqrt(rest / share);
  for (std::size_t i = own; i < a.size(); ++i) a[i] /= factor;
  return a;
}

}  // namespace

double shapiroWilk(std::span<const double> sorted, std::size_t n) {
  const std::vector<double> upper = weights(n);
  std::vector<double> all(n);  // 0 in the middle of an odd number
  for (std::size_t i = 0; i < upper.size(); ++i) {
    all[i] = -upper[i];
    all[n - 1 - i] = upper[i];
  }
  const double r = pearsonCorrelation(std::span<const double>(all).first(sorted.size()), sorted);
  return r * r;
}

}  // namespace zel::kernels
