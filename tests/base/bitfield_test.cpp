#include "zel/base/Zel_dstruct.h"

#include "tests/support/testing.h"

namespace zel {
namespace {

/// The plain model: one bool per bit.
using Bits = std::vector<bool>;

void expectSame(const TBitFld& field, const Bits& bits) {
  const int n = static_cast<int>(bits.size());
  ASSERT_EQ(field.Size(), n - 1);
  std::int64_t count = 0;
  int next = -1;
  for (int i = n - 1; i >= 0; --i) {
    const bool bit = bits[static_cast<std::size_t>(i)];
    count += bit ? 1 : 0;
    if (bit) next = i;
    ASSERT_EQ(field.GetBit(i), bit) << i;
    ASSERT_EQ(field.NextTrueBit(i), next) << i;
  }
  ASSERT_EQ(field.CountTrueBits(), count);
  ASSERT_EQ(field.FirstTrueBit(), next);
  ASSERT_EQ(field.NextTrueBit(n), -1);
}

TEST(TBitFld, FollowsAPlainModelThroughRandomSteps) {
  std::mt19937 random(5);
  const auto draw = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  TBitFld field;
  TBitFld other;
  Bits bits;
  Bits otherBits;
  expectSame(field, bits);
  for (int step = 0; step < 3000; ++step) {
    switch (draw(6)) {
      case 0: {
        const int n = draw(4) == 0 ? 64 * draw(4) + draw(3) - 1 : draw(260) - 1;
        field.SetSize(n);
        bits.resize(static_cast<std::size_t>(std::max(n + 1, 0)));
        break;
      }
      case 1:
        field.Invert();
        bits.flip();
        break;
      case 2: {
        const auto op = static_cast<TBitCombination>(draw(4));
        field.CombineWith(&other, op);
        for (std::size_t i = 0; i < bits.size(); ++i) {
          const bool b = i < otherBits.size() && otherBits[i];
          bits[i] = op == bcAnd   ? bits[i] && b
                    : op == bcOr  ? bits[i] || b
                    : op == bcXor ? bits[i] != b
                                  : bits[i] && !b;
        }
        break;
      }
      case 3:
        other.Clone(&field);
        otherBits = bits;
        ASSERT_TRUE(other == field);
        break;
      default:
        for (int k = draw(20); k > 0; --k) {
          const int i = draw(300) - 20;
          const bool v = draw(2) == 0;
          field.SetBit(i, v);
          if (i >= 0 && i < static_cast<int>(bits.size())) bits[static_cast<std::size_t>(i)] = v;
        }
    }
    expectSame(field, bits);
  }
}

TEST(TBitFld, SizeIsTheLargestIndex) {
  TBitFld field;
  field.SetSize(127);
  field.SetBit(127, true);
  field.Clear();
  expectSame(field, Bits(128));
  TBitFld shorter;
  shorter.SetSize(126);
  EXPECT_FALSE(field == shorter);
  field.SetSize(INT_MIN);
  expectSame(field, {});
}

TEST(TBitFld, IsAComponent) {
  TComponent owner;
  auto* owned = new TBitFld(&owner);
  owned->SetSize(70);
  owned->SetBit(70, true);
  EXPECT_TRUE(*owned->Clone() == *owned);
  TBitFld copy;
  copy.Assign(owned);
  EXPECT_TRUE(copy == *owned);
  EXPECT_THROW(copy.Assign(&owner), EConvertError);
  copy.Clone(nullptr);
  copy.CombineWith(nullptr, bcAnd);
  EXPECT_TRUE(copy == *owned);
}

}  // namespace
}  // namespace zel
