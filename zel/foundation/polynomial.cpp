#include "zel/foundation/polynomial.h"

#include <cmath>

#include "zel/base/errors.h"
#include "zel/base/types.h"

namespace zel {

double Polynomial(std::span<const double> Coeffs, int Order, double x) {
  if (Order < 0 || static_cast<std::size_t>(Order) >= Coeffs.size()) {
    throw EZELMath1Error("Polynomial: invalid order of polynomial");
  }
  Extended power = 1;
  Extended sum = 0;
  for (const double c : Coeffs.first(static_cast<std::size_t>(Order) + 1)) {
    if (c != 0 || !std::isinf(power)) sum += c * power;
    power *= x;
  }
  return static_cast<double>(sum);
}

double CenteredPolynomial(std::span<const double> Coeffs, int Order, double Center, double x) {
  return Polynomial(Coeffs, Order, x - Center);
}

}  // namespace zel
