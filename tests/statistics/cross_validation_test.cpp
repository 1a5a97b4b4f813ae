#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <set>

#include "tests/support/expect_message.h"
#include "zel/statistics/Zel_statis.h"

namespace zel {
namespace {

/// Objects whose one predictor is their number; predictions by a rule.
struct Validation : testing::Test {
  void SetUp() override {
    SetRandSeed(11);
    v->SetXMat(x);
    v->SetYMat(y);
    v->OnModelCreateRequest = [this](TObject* sender, int percent, const TIntArray& list,
                                     bool& ok) {
      EXPECT_EQ(sender, v.get());
      EXPECT_TRUE(v->IsExecuting());
      EXPECT_FALSE(ok);
      training = {list.begin(), list.end()};
      percents.push_back(percent);
      trainingSizes.push_back(list.size());
      ok = failures-- <= 0;
    };
    v->OnModelApplyRequest = [this](TObject*, int percent, const TDoubleArray& predictors,
                                    TDoubleArray& response) {
      ASSERT_EQ(response.size(), static_cast<std::size_t>(y->NrOfColumns()));
      const int object = static_cast<int>(predictors[0]);
      EXPECT_FALSE(training.contains(object)) << "tested on what it has learnt";
      order.push_back(object);
      percents.push_back(percent);
      response = rule(object);
    };
  }
  void fill(int n, int responses) {
    x->Resize(1, n);
    y->Resize(responses, n);
    for (int i = 1; i <= n; ++i) x->SetVal(1, i, i);
  }

  TMatrix* const x = new TMatrix;  // the validator takes them over
  TMatrix* const y = new TMatrix;
  const std::unique_ptr<TCrossValidator> v = std::make_unique<TCrossValidator>();
  std::function<TDoubleArray(int)> rule = [](int) { return TDoubleArray{0}; };
  int failures = 0;
  std::set<int> training;
  std::vector<int> order;
  std::vector<std::size_t> trainingSizes;
  std::vector<int> percents;
};

TEST_F(Validation, EveryObjectIsTestedOnce) {
  fill(10, 1);
  EXPECT_EQ(v->SizeTestSet(), 2);
  v->SetTestSize(3);
  failures = 2;  // these test sets are drawn anew
  ASSERT_TRUE(v->Execute());
  EXPECT_FALSE(v->IsExecuting());
  EXPECT_EQ(trainingSizes, (std::vector<std::size_t>{7, 7, 7, 7, 7, 9}));
  EXPECT_EQ(std::set(order.begin(), order.end()).size(), 10u);
  EXPECT_EQ(order.size(), 10u);
  EXPECT_EQ(percents,
            (std::vector<int>{0, 0, 0, 10, 20, 30, 30, 40, 50, 60, 60, 70, 80, 90, 90, 100}));
  v->SetTestSize(20);
  ASSERT_TRUE(v->Execute());
  EXPECT_EQ(v->SizeTestSet(), 6);
  v->SetTestSize(0);
  EXPECT_EQ(v->SizeTestSet(), 1);
  EXPECT_EQ(v->GetRMSEP(1), -1);
  fill(0, 1);
  order.clear();
  EXPECT_TRUE(v->Execute());
  EXPECT_TRUE(order.empty());
  EXPECT_EQ(v->GetRMSEP(1), 0);
}

/// A draw that finds its object used takes the next free one, round the end.
TEST_F(Validation, DrawsComeFromTheSharedGenerator) {
  fill(7, 1);
  v->SetTestSize(1);
  for (unsigned seed = 1; seed < 20; ++seed) {
    order.clear();
    SetRandSeed(seed);
    ASSERT_TRUE(v->Execute());
    SetRandSeed(seed);
    std::vector<int> expected;
    while (expected.size() < 7) {
      int r = Random(7) + 1;
      while (std::ranges::count(expected, r) > 0) r = r % 7 + 1;
      expected.push_back(r);  // the last one is the only one left, whatever is drawn
    }
    EXPECT_EQ(order, expected);
  }
}

TEST_F(Validation, CountsErrorsAndClasses) {
  fill(6, 3);
  const double first[] = {0.6, 0.5, 1.4, 0.4, 0.5, -0.6};
  for (int i = 1; i <= 6; ++i) {
    y->SetVal(1, i, i <= 3 ? 1 : 0);
    y->SetVal(2, i, 1);
  }
  rule = [&](int i) { return TDoubleArray{first[i - 1], i == 1 ? NAN : 1}; };
  ASSERT_TRUE(v->Execute());
  EXPECT_NEAR(v->GetRMSEP(1), std::sqrt((0.16 + 0.25 + 0.16 + 0.16 + 0.25 + 0.36) / 6), 1e-15);
  EXPECT_TRUE(std::isnan(v->GetRMSEP(2)));
  EXPECT_TRUE(std::isnan(v->GetRMSEP(3))) << "the handler gave two responses of three";
  // 0.5 away is wrong, not a number is no hit, no positives, no such column.
  const double hits[] = {2.0 / 3, 5.0 / 6, 0, 0};
  for (int c = 1; c <= 4; ++c) EXPECT_EQ(v->GetTPRate(c), hits[c - 1]) << c;
  EXPECT_EQ(v->GetFPRate(1), 2.0 / 3);
  EXPECT_EQ(v->GetFPRate(2), 1) << "no negatives";
}

TEST_F(Validation, Ends) {
  fill(5, 1);
  v->OnCheckAbort = [&](TObject*, bool& abort) {
    EXPECT_FALSE(abort);
    abort = order.size() == 3;
  };
  EXPECT_FALSE(v->Execute());
  EXPECT_EQ(order.size(), 3u);
  EXPECT_EQ(v->GetRMSEP(1) + v->GetTPRate(1) + v->GetFPRate(1), -3);
  v->OnCheckAbort = nullptr;
  failures = 1000000;
  trainingSizes.clear();
  EXPECT_FALSE(v->Execute()) << "no model can be made";
  EXPECT_EQ(trainingSizes.size(), 1000u);
  failures = 0;
  rule = [&](int) -> TDoubleArray {
    EXPECT_FALSE(v->Execute()) << "runs already";
    v->SetXMat(nullptr);
    throw EZELMatrixError("own");
  };
  EXPECT_THROW_MSG(v->Execute(), EZELMatrixError, "own");
  EXPECT_FALSE(v->IsExecuting());
  EXPECT_EQ(v->XMat(), x) << "kept while it ran";
  rule = [&](int) {
    delete v->YMat();
    return TDoubleArray{0};
  };
  EXPECT_FALSE(v->Execute());
  EXPECT_EQ(v->YMat(), nullptr);
}

TEST_F(Validation, RefusesInOrder) {
  fill(5, 1);
  const std::pair<const char*, std::function<void()>> cases[] = {
      {": OnModelCreateRequest event is not assigned", [&] { v->OnModelCreateRequest = nullptr; }},
      {": OnModelApplyRequest event is not assigned", [&] { v->OnModelApplyRequest = nullptr; }},
      {".Execute: number of rows of XMat and YMat not equal", [&] { y->Resize(1, 4); }},
      {".Execute: data matrix not assigned", [&] { delete y; }}};
  for (const auto& [message, spoil] : cases) {
    spoil();
    EXPECT_THROW_MSG(v->Execute(), EZELStatisError, std::string("TCrossValidator") + message);
  }
}

/// Each matrix is destroyed once, by whoever comes first.
TEST_F(Validation, TakesMatricesOver) {
  TComponent shelf;
  auto* const first = new TMatrix(&shelf);
  v->SetXMat(first);
  EXPECT_EQ(first->Owner(), v.get());
  EXPECT_EQ(shelf.ComponentCount(), 0);
  const std::unique_ptr<TMatrix> back(x);
  EXPECT_EQ(x->Owner(), nullptr) << "given back";
  v->SetYMat(first);
  v->SetXMat(nullptr);
  EXPECT_EQ(first->Owner(), v.get()) << "still the responses";
  delete y;
  TMatrix owner;
  auto* const inner = new TCrossValidator(&owner);
  inner->SetXMat(&owner);
  EXPECT_EQ(inner->XMat(), &owner);
}

}  // namespace
}  // namespace zel
