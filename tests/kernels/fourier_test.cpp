// The Fourier transform and its roots of unity against sums and functions in extended precision.
#include "zel/kernels/fourier.h"

#include "tests/support/testing.h"
#include "zel/kernels/roots_of_unity.h"

namespace zel::kernels {
namespace {

using Numbers = std::vector<double>;

constexpr double kEpsilon = 0x1p-53;

Numbers randomNumbers(int bits) {
  std::mt19937 random(7);
  Numbers x(std::size_t{2} << bits);
  for (double& part : x) part = static_cast<double>(random()) / 4294967296.0 - 0.5;
  return x;
}

template <class Function>
Numbers transformed(Function run, Numbers x, int bits) {
  Numbers work(fourierWorkSize(bits));
  run(x.data(), bits, work.data());
  return x;
}

double norm(const Numbers& x) {
  Extended sum = 0;
  for (const double part : x) sum += Extended{part} * part;
  return static_cast<double>(std::sqrt(sum));
}

TEST(RootsOfUnity, RightlyRoundedOrNearly) {
  std::mt19937_64 random(1);
  const auto near = [&](double root, Extended exact) {
    const int exponent = exact == 0 ? -1100 : std::ilogb(exact);
    return std::abs(root - exact) <= std::ldexp(exponent >= -2 ? 0.51L : 1, exponent - 52);
  };
  for (int bits = 0; bits <= 30; ++bits) {
    const RootsOfUnity roots(bits);
    const std::uint64_t n = std::uint64_t{1} << bits;
    for (int trial = 0; trial < 2000; ++trial) {
      // An eighth turn at most, where the rounding of pi does not show; the rest is mirrored.
      const std::uint64_t m = random() % (n / 8 + 1);
      const Extended angle = 2 * std::numbers::pi_v<Extended> * m / n;
      const auto root = roots(m);
      ASSERT_TRUE(near(root.re, std::cos(angle)) && near(root.im, std::sin(angle))) << bits << m;
      for (std::uint64_t k = 0; k < 8 && n >= 8; ++k) {
        const auto mirrored = roots(k % 2 ? (k + 1) * n / 8 - m : k * n / 8 + m);
        const double x = k % 4 == 1 || k % 4 == 2 ? root.im : root.re;
        const double y = k % 4 == 1 || k % 4 == 2 ? root.re : root.im;
        ASSERT_EQ(mirrored.re, k >= 2 && k < 6 ? -x : x) << bits << ' ' << m << ' ' << k;
        ASSERT_EQ(mirrored.im, k >= 4 ? -y : y) << bits << ' ' << m << ' ' << k;
      }
    }
  }
  EXPECT_EQ(RootsOfUnity(2)(7).im, -1) << "exact, and counted modulo 4";
}

TEST(Fourier, IsTheSumAndItsInverse) {
  for (int bits = 0; bits <= 16; ++bits) {
    const Numbers x = randomNumbers(bits);
    const Numbers result = transformed(fourier, x, bits);
    const std::size_t n = x.size() / 2;
    const RootsOfUnity roots(bits);
    const double bound = kEpsilon * (bits + 2) * norm(x);
    const std::size_t step = n <= 256 ? 1 : n / 31;
    for (std::size_t k = 0; k < n; k += step) {
      Extended re = 0;
      Extended im = 0;
      for (std::size_t j = 0; j < n; ++j) {
        const auto w = roots(j * k);
        re += Extended{x[2 * j]} * w.re - Extended{x[2 * j + 1]} * w.im;
        im += Extended{x[2 * j]} * w.im + Extended{x[2 * j + 1]} * w.re;
      }
      ASSERT_NEAR(result[2 * k], static_cast<double>(re), bound) << bits << " " << k;
      ASSERT_NEAR(result[2 * k + 1], static_cast<double>(im), bound) << bits << " " << k;
    }
    const double size = norm(x);
    EXPECT_NEAR(norm(result), size * std::sqrt(std::ldexp(1, bits)), 1e-14 * norm(result)) << bits;
    Numbers back = transformed(inverseFourier, result, bits);
    for (std::size_t i = 0; i < x.size(); ++i) back[i] -= x[i];
    EXPECT_LE(norm(back), 2e-16 * (bits + 2) * size) << bits;
  }
}

TEST(Fourier, EveryLengthTransformsAnImpulse) {
  for (int bits = 0; bits <= kMostFourierBits; ++bits) {
    const std::size_t n = std::size_t{1} << bits;
    const RootsOfUnity roots(bits);
    const std::size_t at = (n * 5 / 7) | (n > 1 ? 1 : 0);
    Numbers x(2 * n);
    x[2 * at] = 1;
    const Numbers result = transformed(fourier, std::move(x), bits);
    double worst = 0;
    for (std::size_t k = 0; k < n; ++k) {
      const auto w = roots(at * k);
      worst = std::max({worst, std::abs(result[2 * k] - w.re), std::abs(result[2 * k + 1] - w.im)});
    }
    EXPECT_LE(worst, 12 * kEpsilon) << bits;
  }
}

TEST(Fourier, SameBitsOnEveryInstructionSet) {
  for (const int bits : {4, 6, 9, 12, 13, 14}) {
    const Numbers x = randomNumbers(bits);
    test::expectSameBits([&] { return transformed(fourier, x, bits); });
    test::expectSameBits([&] { return transformed(inverseFourier, x, bits); });
  }
}

}  // namespace
}  // namespace zel::kernels
