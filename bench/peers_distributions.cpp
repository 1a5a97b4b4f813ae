#include "bench/peers_distributions.h"

#include <boost/math/distributions/binomial.hpp>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/fisher_f.hpp>
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

double boostChiSquareIntegral(double x, int df) {
  return boost::math::cdf(boost::math::chi_squared(df), x);
}

double boostChiSquareQuantile(double p, int df) {
  return boost::math::quantile(boost::math::chi_squared(df), p);
}

double boostFIntegral(double x, int df1, int df2) {
  return boost::math::cdf(boost::math::fisher_f(df1, df2), x);
}

double boostFQuantile(double p, int df1, int df2) {
  return boost::math::quantile(boost::math::fisher_f(df1, df2), p);
}

double boostBinomialIntegral(int n, double p, int k) {
  return boost::math::cdf(boost::math::binomial(n, p), k);
}

}  // namespace zel::bench
