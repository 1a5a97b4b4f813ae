/// @file
/// Wavelet transforms of another library.
#pragma once

#include <memory>
#include <span>

namespace zel::bench {

/// Periodic Daubechies transforms over all levels, with the working memory kept from one to the
/// next.
class GslWavelet {
 public:
  /// @param taps  2, 4 or 6
  GslWavelet(std::size_t taps, std::size_t n);
  ~GslWavelet();
  void forward(std::span<double> x) const;
  void inverse(std::span<double> x) const;

 private:
  struct State;
  std::unique_ptr<State> FState;
};

}  // namespace zel::bench
