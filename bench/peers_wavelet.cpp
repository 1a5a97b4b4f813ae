#include "bench/peers_wavelet.h"

#include <gsl/gsl_wavelet.h>

namespace zel::bench {

struct GslWavelet::State {
  gsl_wavelet* wavelet;
  gsl_wavelet_workspace* workspace;
};

GslWavelet::GslWavelet(std::size_t taps, std::size_t n)
    : FState(
          new State{gsl_wavelet_alloc(taps == 2 ? gsl_wavelet_haar : gsl_wavelet_daubechies, taps),
                    gsl_wavelet_workspace_alloc(n)}) {}

GslWavelet::~GslWavelet() {
  gsl_wavelet_free(FState->wavelet);
  gsl_wavelet_workspace_free(FState->workspace);
}

void GslWavelet::forward(std::span<double> x) const {
  gsl_wavelet_transform_forward(FState->wavelet, x.data(), 1, x.size(), FState->workspace);
}

void GslWavelet::inverse(std::span<double> x) const {
  gsl_wavelet_transform_inverse(FState->wavelet, x.data(), 1, x.size(), FState->workspace);
}

}  // namespace zel::bench
