#include "zel/statistics/weibulldistribution.h"

#include <cmath>

namespace zel {

double WeibullDensity(double x, double beta, double eta) {
  if (x <= 0 || eta <= 0) return 0;
  // beta x^(beta-1) / eta^beta, with powers of the ratio only, which do not leave the range.
  const double ratio = x / eta;
  return beta / eta * std::pow(ratio, beta - 1) * std::exp(-std::pow(ratio, beta));
}

}  // namespace zel
