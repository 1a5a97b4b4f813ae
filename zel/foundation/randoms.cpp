#include "zel/foundation/randoms.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <numbers>

namespace zel {
namespace {

bool keptDeviate = false;
double deviate = 0;

int longSeed1 = 0;
int longSeed2 = 0;
int longSeed3 = 0;

// (r shl places) xor r in 32 bits, made non-negative and reduced.
int scrambled(int r, int places) {
  const auto bits = static_cast<std::uint32_t>(r);
  return std::abs(static_cast<int>(bits << places ^ bits)) % 990923;
}

}  // namespace

bool BRandom(double p) { return p >= 1 || Random() < p; }

double CRandom(double Location, double Scale) {
  return std::tan((Random() - 0.5) * std::numbers::pi) * Scale + Location;
}

double GRandom() {
  if (keptDeviate) {
    keptDeviate = false;
    return deviate;
  }
  double u = 0;
  double v = 0;
  double s = 0;
  do {
    u = 2 * Random() - 1;
    v = 2 * Random() - 1;
    s = u * u + v * v;
  } while (s >= 1 || s == 0);
  const double f = std::sqrt(-2 * std::log(s) / s);
  deviate = u * f;
  keptDeviate = true;
  return v * f;
}

double LongRand(int Seed) {
  if (Seed != 0) {
    const int r = Seed % 990923;
    longSeed1 = std::abs(r);
    longSeed2 = scrambled(r, 8);
    longSeed3 = scrambled(r, 16);
  }
  longSeed1 = longSeed1 * 1187 % 1001003;
  longSeed2 = longSeed2 * 983 % 990923;
  longSeed3 = longSeed3 * 1283 % 1400423;
  const double sum = longSeed1 / 1001003.0 + longSeed2 / 990923.0 + longSeed3 / 1400423.0;
  return sum - std::floor(sum);
}

}  // namespace zel
