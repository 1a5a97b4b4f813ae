// Evaluation of classifiers and cross-validation beside plain code with std::sort, and Eigen.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include "bench/peers_classifier.h"
#include "bench/rivals.h"
#include "zel/statistics/Zel_statis.h"

namespace zel::bench {
namespace {

using Data = std::vector<double>;

/// Two classes whose estimates overlap.
struct Classified {
  Classified(std::size_t n, std::size_t number) : truth(n), estimates(n) {
    const Data& all = normalData(std::max<std::size_t>(n, 100000));
    for (std::size_t i = 0; i < n; ++i) {
      estimates[i] = all[number * n + i];
      truth[i] = (i * 2654435761u >> 9) % 3 == 0 ? 1 : 0;
      estimates[i] += 2.5 * truth[i];
    }
    matrix.Resize(2, static_cast<int>(n));
    std::ranges::copy(truth, matrix.data());
    std::ranges::copy(estimates, matrix.data() + n);
  }
  void fill(TCFEvaluator& evaluator) const {
    evaluator.CopyTrueFromMatrix(1, &matrix);
    evaluator.CopyEstFromMatrix(2, &matrix);
  }
  Data truth, estimates;
  TMatrix matrix;
};

/// Gives one of several sets of data after the other, so that nothing learns the order of one.
std::function<const Classified&()> classified(std::size_t n) {
  const std::size_t most = std::max<std::size_t>(1, 50000 / n);
  const auto made = std::make_shared<std::vector<std::unique_ptr<Classified>>>();
  const auto next = std::make_shared<std::size_t>(0);
  return [=]() -> const Classified& {
    if (made->empty()) {
      for (std::size_t k = 0; k < most; ++k) made->push_back(std::make_unique<Classified>(n, k));
    }
    return *(*made)[++*next % most];
  };
}

/// With the filling of the evaluator, as the sort stays in it.
void addRoc(std::size_t n) {
  const auto data = classified(n);
  struct Ours {
    TCFEvaluator evaluator;
    TDouble2DArray curve;
    int best = 0;
    double area = 0, matthews = 0, accuracy = 0, informedness = 0;
  };
  const auto o = std::make_shared<Ours>();
  const auto ours = [=] {
    data().fill(o->evaluator);
    keep(o->evaluator.OptimizeThresholds(o->curve, o->best, o->area, o->matthews, o->accuracy,
                                         o->informedness));
  };
  const auto theirs = [=] {
    const Classified& one = data();
    return plainRoc(one.truth, one.estimates);
  };
  compete("ROC curve and thresholds", n,
          [=] {
            const Classified& one = data();
            one.fill(o->evaluator);
            keep(o->evaluator.OptimizeThresholds(o->curve, o->best, o->area, o->matthews,
                                                 o->accuracy, o->informedness));
            const Roc roc = plainRoc(one.truth, one.estimates);
            const auto isNear = [](double a, double b) { return std::abs(a - b) < 1e-9; };
            bool same = isNear(o->area, roc.area) && isNear(o->matthews, roc.matthews) &&
                        isNear(o->accuracy, roc.accuracy) &&
                        isNear(o->informedness, roc.informedness) &&
                        o->curve.Length(0) == roc.thresholds.size();
            for (std::size_t i = 0; same && i < roc.thresholds.size(); ++i) {
              same = isNear(o->curve(i, 0), roc.falseRates[i]) &&
                     isNear(o->curve(i, 1), roc.trueRates[i]) &&
                     o->curve(i, 2) == roc.thresholds[i];
            }
            return same;
          },
          {{"Zel", ours}, {"std::sort", [=] { keep(theirs().area); }}});
}

/// Of sorted objects, as for every threshold but the first.
void addConfusion(std::size_t n) {
  const auto data = std::make_shared<std::unique_ptr<Classified>>();
  const auto evaluator = std::make_shared<TCFEvaluator>();
  const auto ours = [=] { keep(evaluator->CalcConfusionMatrix(6)); };
  const auto theirs = [=](long counts[4]) {
    eigenConfusion((*data)->truth, (*data)->estimates, 6, counts);
  };
  compete("confusion matrix", n,
          [=] {
            *data = std::make_unique<Classified>(n, 0);
            (*data)->fill(*evaluator);
            ours();
            int tp = 0, fp = 0, tn = 0, fn = 0;
            double threshold = 0;
            keep(evaluator->GetConfMatValues(tp, fp, tn, fn, threshold));
            long counts[4];
            theirs(counts);
            return tp == counts[0] && fp == counts[1] && tn == counts[2] && fn == counts[3];
          },
          {{"Zel", ours}, {"Eigen", [=] {
                             long counts[4];
                             theirs(counts);
                             keep(static_cast<double>(counts[0]));
                           }}});
}

/// Ten test sets with a model that costs nothing: what the validation itself takes.
void addValidation(std::size_t n) {
  constexpr int kVariables = 5;
  struct Run {
    TCrossValidator validator;
    std::size_t trained = 0;
    double error = 0;
  };
  const auto run = std::make_shared<Run>();
  const int objects = static_cast<int>(n);
  const auto prepare = [=] {
    auto* const x = new TMatrix;
    auto* const y = new TMatrix;
    run->validator.SetXMat(x);  // which then owns it
    run->validator.SetYMat(y);
    x->Resize(kVariables, objects);
    y->Resize(1, objects);
    std::ranges::copy(normalData(n * kVariables), x->data());
    std::ranges::copy(normalData(n), y->data());
    run->validator.SetTestSize(objects / 10);
    run->validator.OnModelCreateRequest = [=](TObject*, int, const TIntArray& list, bool& ok) {
      run->trained += list.size();
      ok = true;
    };
    run->validator.OnModelApplyRequest = [](TObject*, int, const TDoubleArray& predictors,
                                            TDoubleArray& response) {
      response[0] = predictors[0];
    };
  };
  const auto ours = [=] {
    run->trained = 0;
    keep(run->validator.Execute());
  };
  const auto theirs = [=] {
    run->trained = 0;
    run->error = 0;
    const TMatrix& x = *run->validator.XMat();
    const TMatrix& y = *run->validator.YMat();
    Data predictors(kVariables);
    plainHoldOut(
        objects, objects / 10, [&](const std::vector<int>& list) { run->trained += list.size(); },
        [&](int object) {
          for (int c = 1; c <= kVariables; ++c) {
            predictors[static_cast<std::size_t>(c - 1)] = x(c, object);
          }
          const double e = predictors[0] - y(1, object);
          run->error += e * e;
        });
    keep(run->error);
  };
  compete("cross-validation in ten sets", n,
          [=] {
            prepare();
            ours();
            const std::size_t trained = run->trained;
            theirs();
            return trained == run->trained &&
                   std::abs(run->validator.GetRMSEP(1) -
                            std::sqrt(run->error / static_cast<double>(n))) < 1e-9;
          },
          {{"Zel", ours}, {"plain loop", theirs}});
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const std::size_t n : {1000u, 100000u, 1000000u}) {
    addRoc(n);
    addConfusion(n);
  }
  for (const std::size_t n : {1000u, 100000u}) addValidation(n);
  return true;
}();

}  // namespace
}  // namespace zel::bench
