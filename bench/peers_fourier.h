/// @file
/// Fourier transforms by other libraries, in place, sign plus, not divided. n is a power of two.
#pragma once

#include <cstddef>
#include <memory>

namespace zel::bench {

/// A plan that FFTW makes with its estimate, and its aligned memory.
class FftwTransform {
 public:
  explicit FftwTransform(std::size_t n);
  ~FftwTransform();
  FftwTransform(const FftwTransform&) = delete;
  FftwTransform& operator=(const FftwTransform&) = delete;
  /// 2 n numbers, real and imaginary parts in turn.
  [[nodiscard]] double* data();
  void run();

 private:
  struct Plan;
  std::unique_ptr<Plan> FPlan;
};

/// GSL's transform of radix 2.
void gslFourier(double* data, std::size_t n);

}  // namespace zel::bench
