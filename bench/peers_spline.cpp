#include "bench/peers_spline.h"

#include <gsl/gsl_spline.h>

#include <algorithm>

namespace zel::bench {

void gslSpline(std::span<const double> x, std::span<const double> y, std::span<const double> places,
               std::span<double> values) {
  gsl_spline* spline = gsl_spline_alloc(gsl_interp_cspline, x.size());
  gsl_interp_accel* accelerator = gsl_interp_accel_alloc();
  gsl_spline_init(spline, x.data(), y.data(), x.size());
  std::transform(places.begin(), places.end(), values.begin(),
                 [=](double at) { return gsl_spline_eval(spline, at, accelerator); });
  gsl_interp_accel_free(accelerator);
  gsl_spline_free(spline);
}

}  // namespace zel::bench
