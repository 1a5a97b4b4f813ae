#include "tests/support/testing.h"
#include "zel/base/Zel_univconst.h"
#include "zel/foundation/Zel_complex.h"

namespace zel {
namespace {

constexpr Extended kLargest = std::numeric_limits<Extended>::max();

TEST(Complex, Arithmetic) {
  const TComplex a = Cpx(1, 2), b = Cpx(3, 4);
  EXPECT_EQ(CpxAdd(a, b), Cpx(4, 6));
  EXPECT_EQ(CpxSub(a, b), Cpx(-2, -2));
  EXPECT_EQ(CpxMult(a, b), Cpx(-5, 10));
  EXPECT_EQ(CpxConj(a), Cpx(1, -2));
  EXPECT_EQ(CpxNeg(a), Cpx(-1, -2));
  EXPECT_EQ(CpxAbsSqr(b), 25);
  EXPECT_TRUE(CpxIsEqual(a, a) && !CpxIsEqual(a, b));
}

/// The quotient times the divisor is the dividend, at the ends of the range, too.
TEST(Complex, Quotients) {
  for (const Extended size : {1.0L, kLargest / 8, 1 / kLargest}) {
    const TComplex b = Cpx(-3 * size, 4 * size), a = CpxMult(b, Cpx(0.25L, 0.5L));
    EXPECT_LT(CpxAbs(CpxSub(CpxDiv(a, b), Cpx(0.25L, 0.5L))), 2e-19L);
  }
  EXPECT_EQ(CpxAbs(Cpx(kLargest / 2, 0)), kLargest / 2);
  EXPECT_EQ(CpxAbs(Cpx(NAN, -HUGE_VALL)), HUGE_VALL);
  EXPECT_LT(std::abs(CpxAbs(Cpx(3e-4930L, 4e-4930L)) / 5e-4930L - 1), 2e-19L);
  for (const auto& [a, b] :
       {std::pair(Cpx(1, 0), COMPLEX_0), std::pair(COMPLEX_0, COMPLEX_0),
        std::pair(Cpx(kLargest, 0), Cpx(0, 0.5L)), std::pair(Cpx(HUGE_VALL, 0), COMPLEX_1)}) {
    EXPECT_THROW_MSG((void)CpxDiv(a, b), EZELComplexError, "CpxDiv: division by zero");
  }
  EXPECT_TRUE(std::isnan(CpxDiv(Cpx(NAN, 0), COMPLEX_1).re));
}

TEST(Complex, Tolerance) {
  EXPECT_TRUE(CpxIsZero(Cpx(1e-16L, -1e-16L)));
  EXPECT_FALSE(CpxIsZero(Cpx(1e-15L, 0))) << "strictly below";
  EXPECT_FALSE(CpxIsNearEqual(COMPLEX_1, Cpx(1, 0.1L)));
  CpxNearZero = 0.2L;
  EXPECT_TRUE(CpxIsNearEqual(COMPLEX_1, Cpx(1, 0.1L)));
  CpxNearZero = 1e-15L;
}

TEST(Complex, PolarForm) {
  EXPECT_EQ(ConvertRectToPolar(Cpx(0, -1)), (TComplexPolar{1, -uc_pi / 2}));
  EXPECT_EQ(ConvertRectToPolar(Cpx(-2, -0.0L)), (TComplexPolar{2, uc_pi}));
  EXPECT_EQ(ConvertRectToPolar(Cpx(-0.0L, 0)).phi, 0);
  EXPECT_TRUE(CpxIsNearEqual(ConvertPolarToRect(ConvertRectToPolar(Cpx(-3, 4))), Cpx(-3, 4)));
}

}  // namespace
}  // namespace zel
