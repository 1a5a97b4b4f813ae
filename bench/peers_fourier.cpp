#include "bench/peers_fourier.h"

#include <fftw3.h>
#include <gsl/gsl_fft_complex.h>

#include <algorithm>

namespace zel::bench {

struct FftwTransform::Plan {
  fftw_complex* data;
  fftw_plan plan;
};

FftwTransform::FftwTransform(std::size_t n) : FPlan(std::make_unique<Plan>()) {
  FPlan->data = fftw_alloc_complex(n);
  std::fill_n(data(), 2 * n, 0.0);
  FPlan->plan =
      fftw_plan_dft_1d(static_cast<int>(n), FPlan->data, FPlan->data, FFTW_BACKWARD, FFTW_ESTIMATE);
}

FftwTransform::~FftwTransform() {
  fftw_destroy_plan(FPlan->plan);
  fftw_free(FPlan->data);
}

double* FftwTransform::data() { return FPlan->data[0]; }

void FftwTransform::run() { fftw_execute(FPlan->plan); }

void gslFourier(double* data, std::size_t n) { gsl_fft_complex_radix2_backward(data, 1, n); }

}  // namespace zel::bench
