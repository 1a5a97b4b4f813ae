#include "bench/peers_distributions.h"

#include <boost/math/distributions/students_t.hpp>
#include <boost/math/special_functions/beta.hpp>

namespace zel::bench {

double boostStudentIntegral(double t, int df) {
  return boost::math::cdf(boost::math::students_t(df), t);
}

double boostStudentQuantile(double p, int df) {
  return boost::math::quantile(boost::math::students_t(df), p);
}

double boostIncompleteBeta(double a, double b, double x) { return boost::math::ibeta(a, b, x); }

}  // namespace zel::bench
