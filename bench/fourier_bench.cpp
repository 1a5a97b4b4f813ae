// The Fourier transform in place beside FFTW and GSL. Every run starts from the same data: repeated
// transforms of their own results would leave the range of double.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <memory>
#include <vector>

#include "bench/peers_fourier.h"
#include "bench/rivals.h"
#include "zel/transforms/Zel_fourier.h"

namespace zel::bench {
namespace {

struct Contest {
  explicit Contest(std::size_t n) : fftw(n), gsl(2 * n) {
    zel.SetNumData(static_cast<int>(n));
    start = normalData(2 * n);
  }
  void load(double* to) const { std::copy(start.begin(), start.end(), to); }

  std::vector<double> start;
  TFastFourier zel;
  FftwTransform fftw;
  std::vector<double> gsl;
};

Contest& contestOf(std::size_t n) {
  static std::map<std::size_t, std::unique_ptr<Contest>> all;
  auto& contest = all[n];
  if (contest == nullptr) contest = std::make_unique<Contest>(n);
  return *contest;
}

void runZel(std::size_t n) {
  Contest& c = contestOf(n);
  c.load(c.zel.FData.data());
  c.zel.Transform();
}
void runFftw(std::size_t n) {
  Contest& c = contestOf(n);
  c.load(c.fftw.data());
  c.fftw.run();
}
void runGsl(std::size_t n) {
  Contest& c = contestOf(n);
  c.load(c.gsl.data());
  gslFourier(c.gsl.data(), n);
}

bool agree(std::size_t n) {
  runZel(n);
  runFftw(n);
  runGsl(n);
  Contest& c = contestOf(n);
  const double bound = 1e-14 * static_cast<double>(n);
  const auto isNear = [bound](double a, double b) { return std::abs(a - b) <= bound; };
  return std::equal(c.gsl.begin(), c.gsl.end(), c.zel.FData.begin(), isNear) &&
         std::equal(c.gsl.begin(), c.gsl.end(), c.fftw.data(), isNear);
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const std::size_t n : {1U << 10, 1U << 16, 1U << 20}) {
    compete(
        "Fourier transform", n, [n] { return agree(n); },
        {{"Zel", [n] { runZel(n); }}, {"FFTW", [n] { runFftw(n); }}, {"GSL", [n] { runGsl(n); }}});
  }
  return true;
}();

}  // namespace
}  // namespace zel::bench
