#include "zel/statistics/tdistribution.h"

#include "zel/kernels/student_t.h"

namespace zel {

double tDistriIntegral(double t, int df) { return df < 1 ? 0.5 : kernels::studentIntegral(t, df); }

double tDistriDensity(double t, int df) { return df < 1 ? 0 : kernels::studentDensity(t, df); }

double tDistriQuantile(double p, int df) {
  return df < 1 || !(p > 0 && p < 1) ? 0 : kernels::studentQuantile(p, df);
}

}  // namespace zel
