#include "zel/statistics/significance.h"

namespace zel {

const std::array<double, 9> NumericSigLevel = {0.001, 0.002, 0.005, 0.01, 0.02,
                                               0.05,  0.1,   0.2,   0.5};

}  // namespace zel
