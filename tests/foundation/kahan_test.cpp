#include "zel/foundation/kahan.h"

#include <gtest/gtest.h>

using namespace zel;

TEST(KahanSum, KeepsTermsFarBelowTheUnitOfTheSum) {
  TComponent owner;
  auto* sum = new TKahanSum(&owner);  // destroyed by its owner
  EXPECT_EQ(sum->Sum, 0);
  double plain = 1;
  sum->Add(1);
  for (int i = 0; i < 10'000'000; ++i) {
    sum->Add(1e-16);
    plain += 1e-16;
  }
  EXPECT_EQ(plain, 1);
  EXPECT_DOUBLE_EQ(sum->Sum, 1.000000001);

  sum->Reset();
  sum->Add(0.25);  // a compensation left behind would show here
  EXPECT_EQ(sum->Sum, 0.25);
}
