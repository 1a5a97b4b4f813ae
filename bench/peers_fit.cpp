#include "bench/peers_fit.h"

#include <gsl/gsl_fit.h>

#include <cmath>

namespace zel::bench {

double gslFitLine(const double* x, const double* y, std::size_t n) {
  double constant, slope, cov00, cov01, cov11, squares;
  gsl_fit_linear(x, 1, y, 1, n, &constant, &slope, &cov00, &cov01, &cov11, &squares);
  return slope;
}

double plainKendall(const double* x, const double* y, std::size_t n) {
  long concordant = 0;
  long discordant = 0;
  long tiesInY = 0;
  long tiesInX = 0;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i + 1; j < n; ++j) {
      const double dx = x[i] - x[j];
      const double dy = y[i] - y[j];
      const double p = dx * dy;
      concordant += p > 0;
      discordant += p < 0;
      tiesInY += p == 0 && dx != 0;
      tiesInX += p == 0 && dy != 0;
    }
  }
  const auto untied = static_cast<double>(concordant + discordant);
  return static_cast<double>(concordant - discordant) /
         std::sqrt((untied + static_cast<double>(tiesInY)) *
                   (untied + static_cast<double>(tiesInX)));
}

}  // namespace zel::bench
