#include "zel/statistics/errorfunction.h"

#include "zel/kernels/error_function.h"

namespace zel {

double ErfApprox(double x) { return kernels::errorFunctionApproximation(x); }

}  // namespace zel
