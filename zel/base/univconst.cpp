#include "zel/base/Zel_univconst.h"

namespace zel {

const std::array<Extended, 1001> uc_LnFactorial = {
#include "zel/base/lnfactorial.inc"
};

}  // namespace zel
