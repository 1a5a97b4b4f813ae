#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>
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
    x = new TMatrix;
    y = new TMatrix;
    v = std::make_unique<TCrossValidator>();
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
      ++applied[object];
      percents.push_back(percent);
      response = rule(object);
    };
  }
  void fill(int n, int responses) {
    x->Resize(1, n);
    y->Resize(responses, n);
    for (int i = 1; i <= n; ++i) x->SetVal(1, i, i);
  }

  TMatrix* x;
  TMatrix* y;
  std::unique_ptr<TCrossValidator> v;
  std::function<TDoubleArray(int)> rule = [](int) { return TDoubleArray{0}; };
  int failures = 0;
  std::set<int> training;
  std::map<int, int> applied;
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
  EXPECT_EQ(applied.size(), 10u);
  for (const auto& [object, count] : applied) EXPECT_EQ(count, 1) << object;
  EXPECT_EQ(percents,
            (std::vector<int>{0, 0, 0, 10, 20, 30, 30, 40, 50, 60, 60, 70, 80, 90, 90, 100}));
  v->SetTestSize(20);
  ASSERT_TRUE(v->Execute());
  EXPECT_EQ(v->SizeTestSet(), 6);
  v->SetTestSize(0);
  EXPECT_EQ(v->SizeTestSet(), 1);
  EXPECT_EQ(v->GetRMSEP(1), -1);
  fill(0, 1);
  percents.clear();
  EXPECT_TRUE(v->Execute());
  EXPECT_TRUE(percents.empty());
  EXPECT_EQ(v->GetRMSEP(1), 0);
}

/// A draw that finds its object used takes the next free one, round the end.
TEST_F(Validation, DrawsComeFromTheSharedGenerator) {
  fill(7, 1);
  std::vector<int> order;
  v->SetTestSize(1);
  v->OnModelApplyRequest = [&](TObject*, int, const TDoubleArray& predictors, TDoubleArray&) {
    order.push_back(static_cast<int>(predictors[0]));
  };
  SetRandSeed(5);
  ASSERT_TRUE(v->Execute());
  SetRandSeed(5);
  std::set<int> used;
  std::vector<int> expected;
  while (used.size() < 6) {
    int r = Random(7) + 1;
    while (used.contains(r)) r = r % 7 + 1;
    used.insert(r);
    expected.push_back(r);
  }
  for (int i = 1; i <= 7; ++i) {
    if (!used.contains(i)) expected.push_back(i);
  }
  EXPECT_EQ(order, expected);
}

TEST_F(Validation, CountsErrorsAndClasses) {
  fill(6, 3);
  const double truth[] = {1, 1, 1, 0, 0, 0};
  const double first[] = {0.6, 0.5, 1.4, 0.4, 0.5, -0.6};
  for (int i = 1; i <= 6; ++i) {
    y->SetVal(1, i, truth[i - 1]);
    y->SetVal(2, i, 1);
  }
  rule = [&](int i) { return TDoubleArray{first[i - 1], i == 1 ? NAN : 1}; };
  ASSERT_TRUE(v->Execute());
  EXPECT_EQ(v->GetTPRate(1), 2.0 / 3) << "0.5 away is wrong";
  EXPECT_EQ(v->GetFPRate(1), 2.0 / 3);
  EXPECT_NEAR(v->GetRMSEP(1), std::sqrt((0.16 + 0.25 + 0.16 + 0.16 + 0.25 + 0.36) / 6), 1e-15);
  EXPECT_EQ(v->GetTPRate(2), 5.0 / 6) << "not a number is no hit";
  EXPECT_EQ(v->GetFPRate(2), 1) << "no negatives";
  EXPECT_TRUE(std::isnan(v->GetRMSEP(2)));
  EXPECT_TRUE(std::isnan(v->GetRMSEP(3))) << "the handler gave two responses of three";
  EXPECT_EQ(v->GetTPRate(3), 0) << "no positives";
  EXPECT_EQ(v->GetTPRate(4), 0);
}

TEST_F(Validation, Ends) {
  fill(5, 1);
  int asked = 0;
  v->OnCheckAbort = [&](TObject*, bool& abort) {
    EXPECT_FALSE(abort);
    abort = ++asked == 3;
  };
  EXPECT_FALSE(v->Execute());
  EXPECT_EQ(applied.size(), 3u);
  EXPECT_EQ(v->GetRMSEP(1), -1);
  EXPECT_EQ(v->GetTPRate(1), -1);
  EXPECT_EQ(v->GetFPRate(1), -1);
  v->OnCheckAbort = nullptr;
  failures = 1000000;
  trainingSizes.clear();
  EXPECT_FALSE(v->Execute()) << "no model can be made";
  EXPECT_EQ(trainingSizes.size(), 1000u);
  failures = 0;
  v->OnModelApplyRequest = [&](TObject*, int, const TDoubleArray&, TDoubleArray&) {
    EXPECT_FALSE(v->Execute()) << "runs already";
    v->SetXMat(nullptr);
    throw EZELMatrixError("own");
  };
  EXPECT_THROW_MSG(v->Execute(), EZELMatrixError, "own");
  EXPECT_FALSE(v->IsExecuting());
  EXPECT_EQ(v->XMat(), x) << "kept while it ran";
  v->OnModelApplyRequest = [&](TObject*, int, const TDoubleArray&, TDoubleArray&) {
    delete v->YMat();
  };
  EXPECT_FALSE(v->Execute());
  EXPECT_EQ(v->YMat(), nullptr);
}

TEST_F(Validation, RefusesInOrder) {
  fill(5, 1);
  v->OnModelCreateRequest = nullptr;
  EXPECT_THROW_MSG(v->Execute(), EZELStatisError,
                   "TCrossValidator: OnModelCreateRequest event is not assigned");
  v->OnModelApplyRequest = nullptr;
  EXPECT_THROW_MSG(v->Execute(), EZELStatisError,
                   "TCrossValidator: OnModelApplyRequest event is not assigned");
  y->Resize(1, 4);
  EXPECT_THROW_MSG(v->Execute(), EZELStatisError,
                   "TCrossValidator.Execute: number of rows of XMat and YMat not equal");
  delete y;
  EXPECT_THROW_MSG(v->Execute(), EZELStatisError,
                   "TCrossValidator.Execute: data matrix not assigned");
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
  auto owner = std::make_unique<TMatrix>();
  auto* const inner = new TCrossValidator(owner.get());
  inner->SetXMat(owner.get());
  EXPECT_EQ(inner->XMat(), owner.get());
  owner.reset();
}

}  // namespace
}  // namespace zel
