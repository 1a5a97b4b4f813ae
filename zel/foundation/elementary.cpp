#include "zel/foundation/elementary.h"

#include "zel/base/errors.h"

namespace zel {
namespace {

double logArgument(double x) {
  if (x <= 0) throw EMathError("logarithm: invalid argument");
  return x;
}

}  // namespace

double lg(double x) { return std::log10(logArgument(x)); }

double ld(double x) { return std::log2(logArgument(x)); }

double tgh(double x) { return std::tanh(x); }

double tg(double x) {
  if (std::cos(x) == 0) throw EMathError("tangens overflow");
  return std::tan(x);
}

double cot(double x) {
  const double sine = std::sin(x);
  if (sine == 0) throw EMathError("cotangens overflow");
  return std::cos(x) / sine;
}

}  // namespace zel
