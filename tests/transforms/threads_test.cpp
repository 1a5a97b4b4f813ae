// Objects on several threads share the factors of the Fourier transform.
#include <thread>

#include "tests/support/testing.h"
#include "zel/transforms/Zel_fourier.h"

namespace zel {
namespace {

TEST(FastFourier, ThreadsShareFactors) {
  std::array<TDoubleArray, 4> results;
  {
    std::array<std::jthread, 4> threads;
    for (std::size_t t = 0; t < threads.size(); ++t) {
      threads[t] = std::jthread([&results, t] {
        TFastFourier F;
        for (int n = 1; n <= 1 << 13; n *= 2) {
          F.SetNumData(n);
          F.SetRealVal(n, 1);
          F.Transform();
        }
        results[t] = F.FData;
      });
    }
  }
  for (const TDoubleArray& result : results) EXPECT_EQ(result, results[0]);
}

}  // namespace
}  // namespace zel
