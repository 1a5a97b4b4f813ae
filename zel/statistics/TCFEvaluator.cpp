#include "zel/statistics/TCFEvaluator.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <new>
#include <span>
#include <utility>
#include <vector>

#include "zel/kernels/comb_order.h"
#include "zel/kernels/confusion.h"
#include "zel/kernels/dichotomy.h"
#include "zel/statistics/memory_impl.h"

namespace zel {
namespace {

/// The best threshold of a scan: the mean of the last run of thresholds with the highest score.
class BestThreshold {
 public:
  void offer(double score, double threshold) {
    if (score > FBest) {
      FBest = score;
      FSum = 0;
      FTies = 0;
    } else if (score < FBest) {
      FSum = 0;
      FTies = 0;
      return;
    }
    FSum += threshold;
    ++FTies;
    FThreshold = static_cast<double>(FSum / FTies);
  }
  [[nodiscard]] double threshold() const { return FThreshold; }

 private:
  double FBest = 0;
  double FThreshold = 0;
  Extended FSum = 0;  // of a hundred thresholds of any size
  int FTies = 0;
};

/// Thresholds from a little below the smallest finite estimate to a little above the largest.
struct Scan {
  explicit Scan(std::span<const double> estimates) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kLargest = std::numeric_limits<double>::max();
    double low = kInfinity;
    double high = -kInfinity;
    for (const double e : estimates) {
      hasNaN |= std::isnan(e);
      if (!std::isfinite(e)) continue;
      low = std::min(low, e);
      high = std::max(high, e);
    }
    if (!(low < high)) return;
    step = 0.01 * (high - low);
    if (std::isinf(step)) step = 0.01 * high - 0.01 * low;
    begin = std::max(low - 5 * step, -kLargest);
    end = std::min(high + 5 * step, kLargest);
  }
  /// The threshold after t, which is larger even where the step is lost in rounding.
  [[nodiscard]] double next(double t) const {
    return std::max(t + step, std::nextafter(t, std::numeric_limits<double>::infinity()));
  }

  double step = 0;
  double begin = 0;
  double end = 0;  // not reached
  bool hasNaN = false;
};

}  // namespace

TCFEvaluator::TCFEvaluator(TComponent* AOwner) : TComponent(AOwner) {
  detail::GuardStatis(
      [&] {
        FTrueVec.resize(1);
        FEstVec.resize(1);
      },
      [&] { return ComponentMessage(detail::kNoMemory); });
}

TCFEvaluator::~TCFEvaluator() = default;

std::string_view TCFEvaluator::ClassName() const { return "TCFEvaluator"; }

double TCFEvaluator::At(const TDoubleArray& values, int ix) {
  const auto index = static_cast<std::size_t>(ix) - 1;
  return ix > 0 && index < values.size() ? values[index] : 0;
}

int TCFEvaluator::GetNData() const {
  return FTrueVec.size() == FEstVec.size() ? static_cast<int>(FTrueVec.size()) : -1;
}

void TCFEvaluator::SetNData(int n) {
  const auto length = static_cast<std::size_t>(n);
  if (n < 1 || (FTrueVec.size() == length && FEstVec.size() == length)) return;
  detail::GuardStatis(
      [&] {
        FTrueVec.reserve(length);
        FEstVec.reserve(length);
      },
      [&] { return ComponentMessage(detail::kNoMemory); });
  FTrueVec.resize(length);
  FEstVec.resize(length);
  FDichoKnown = FIsSorted = FHasMatrix = false;
}

void TCFEvaluator::SetTrueData(int ix, double value) {
  const auto index = static_cast<std::size_t>(ix) - 1;
  if (ix < 1 || index >= FTrueVec.size()) return;
  FTrueVec[index] = value;
  FDichoKnown = false;
}

void TCFEvaluator::SetEstimData(int ix, double value) {
  const auto index = static_cast<std::size_t>(ix) - 1;
  if (ix < 1 || index >= FEstVec.size()) return;
  FEstVec[index] = value;
  FIsSorted = FHasMatrix = false;
}

int TCFEvaluator::CopyColumn(int Col, const TMatrix* SrcMat, TDoubleArray& values) {
  if (!SrcMat || Col < 1 || Col > SrcMat->NrOfColumns()) return -1;
  const auto rows = static_cast<std::size_t>(SrcMat->NrOfRows());
  detail::GuardStatis(
      [&] {
        const double* column = SrcMat->data() + (static_cast<std::size_t>(Col) - 1) * rows;
        TDoubleArray(column, column + rows).swap(values);
      },
      [&] { return ComponentMessage(detail::kNoMemory); });
  FIsSorted = FHasMatrix = false;
  return 0;
}

int TCFEvaluator::CopyTrueFromMatrix(int Col, const TMatrix* SrcMat) {
  if (CopyColumn(Col, SrcMat, FTrueVec) != 0) return -1;
  FDichoKnown = false;
  return IsDicho() ? 0 : -2;
}

int TCFEvaluator::CopyEstFromMatrix(int Col, const TMatrix* SrcMat) {
  return CopyColumn(Col, SrcMat, FEstVec);
}

// Looking only when asked keeps the filling of n objects one by one linear.
bool TCFEvaluator::IsDicho() const {
  if (!FDichoKnown) {
    FIsDicho = kernels::dichotomous(std::span<const double>(FTrueVec), FDichoV1, FDichoV2);
    FDichoKnown = true;
  }
  return FIsDicho;
}

double TCFEvaluator::DichoV1() const { return IsDicho() ? FDichoV1 : 0; }
double TCFEvaluator::DichoV2() const { return IsDicho() ? FDichoV2 : 0; }

bool TCFEvaluator::GetActualDichoValues(double& v1, double& v2) const {
  v1 = DichoV1();
  v2 = DichoV2();
  return FIsDicho;
}

int TCFEvaluator::SortEstimated() {
  const std::size_t n = FEstVec.size();
  if (FTrueVec.size() != n) return -1;
  if (FIsSorted) return 0;
  const std::span<double> estimates(FEstVec);
  if (n > 1) {
    try {
      std::vector<std::uint64_t> order(n);
      TDoubleArray moved(n);
      kernels::combOrderFast(estimates, order, n - 1, false);
      std::transform(order.begin(), order.end(), moved.begin(),
                     [&](std::uint64_t i) { return FTrueVec[i]; });
      moved.swap(FTrueVec);
    } catch (const std::bad_alloc&) {
      kernels::combSortPairs(estimates, std::span<double>(FTrueVec), n - 1, false);
    }
  }
  FIsSorted = true;
  return 0;
}

int TCFEvaluator::CalcConfusionMatrix(double CFThresh) {
  if (FTrueVec.size() != FEstVec.size()) return -1;
  if (!IsDicho()) return -2;
  SortEstimated();
  const auto c = kernels::confusionAt(FTrueVec, FEstVec, FDichoV2, CFThresh);
  Ftp = c.tp;
  Ffp = c.fp;
  Ftn = c.tn;
  Ffn = c.fn;
  FCFThresh = CFThresh;
  FHasMatrix = true;
  return 0;
}

int TCFEvaluator::GetConfMatValues(int& tp, int& fp, int& tn, int& fn, double& Thresh) const {
  if (!FHasMatrix) return -1;
  if (!IsDicho()) return -2;
  tp = static_cast<int>(Ftp);
  fp = static_cast<int>(Ffp);
  tn = static_cast<int>(Ftn);
  fn = static_cast<int>(Ffn);
  Thresh = FCFThresh;
  return 0;
}

template <class Score>
double TCFEvaluator::ScoreOf(Score&& score, int noMatrix, int noClasses) const {
  if (!IsDicho()) return noClasses;
  if (!FHasMatrix) return noMatrix;
  return score(kernels::Confusion{Ftp, Ffp, Ftn, Ffn});
}

using kernels::Confusion;

double TCFEvaluator::TpRate() const { return ScoreOf(std::mem_fn(&Confusion::tpRate)); }
double TCFEvaluator::TnRate() const { return ScoreOf(std::mem_fn(&Confusion::tnRate)); }
double TCFEvaluator::FpRate() const { return ScoreOf(std::mem_fn(&Confusion::fpRate)); }
double TCFEvaluator::FnRate() const { return ScoreOf(std::mem_fn(&Confusion::fnRate)); }
double TCFEvaluator::Precision() const { return ScoreOf(std::mem_fn(&Confusion::precision)); }
double TCFEvaluator::NegPredVal() const {
  return ScoreOf(std::mem_fn(&Confusion::negativePredictiveValue));
}
double TCFEvaluator::ThreatScore() const { return ScoreOf(std::mem_fn(&Confusion::threatScore)); }
double TCFEvaluator::F1Score() const { return ScoreOf(std::mem_fn(&Confusion::f1)); }
double TCFEvaluator::Accuracy() const { return ScoreOf(std::mem_fn(&Confusion::accuracy)); }
double TCFEvaluator::Informedness() const {
  return ScoreOf(std::mem_fn(&Confusion::informedness), -2, -3);
}
double TCFEvaluator::MatthewsCorr() const {
  return ScoreOf(std::mem_fn(&Confusion::matthews), -3, -2);
}
double TCFEvaluator::UncertCoeff() const { return ScoreOf(std::mem_fn(&Confusion::uncertainty)); }

int TCFEvaluator::OptimizeThresholds(TDouble2DArray& ROCCoords, int& BestROC, double& AUC,
                                     double& ThreshMMC, double& ThreshAccuracy,
                                     double& ThreshInformedness) {
  if (SortEstimated() != 0) return -3;
  if (!IsDicho()) return -1;
  const std::size_t n = FEstVec.size();
  const auto startsPoint = [&](std::size_t i) { return i == 0 || FEstVec[i] != FEstVec[i - 1]; };
  std::size_t points = 1;
  std::int64_t P = 0;
  for (std::size_t i = 0; i < n; ++i) {
    points += startsPoint(i);
    P += FTrueVec[i] == FDichoV2;
  }
  const std::int64_t N = static_cast<std::int64_t>(n) - P;

  TDouble2DArray roc;
  detail::GuardStatis([&] { roc.SetLength(points, 3); },
                      [&] { return ComponentMessage(detail::kNoMemory); });
  std::int64_t p = 0;
  std::int64_t q = 0;
  std::int64_t area = 0;  // in units of 1 / (N P)
  double largest = 0;
  std::size_t best = 0;
  std::size_t point = 0;
  const auto append = [&](std::size_t i) {
    roc(point, 0) = Confusion::ratio(q, N);
    roc(point, 1) = Confusion::ratio(p, P);
    roc(point, 2) = FEstVec[i];
    ++point;
  };
  for (std::size_t i = 0; i < n; ++i) {
    if (FTrueVec[i] == FDichoV2) {
      ++p;
    } else {
      ++q;
      area += p;
    }
    if (startsPoint(i)) append(i);
    const double difference = std::abs(Confusion::ratio(q, N) - Confusion::ratio(p, P));
    if (difference > largest) {
      largest = difference;
      best = point - 1;
    }
  }
  append(n - 1);

  ROCCoords = std::move(roc);
  BestROC = static_cast<int>(best);
  AUC = Confusion::ratio(area, N * P);
  ScanThresholds(ThreshMMC, ThreshAccuracy, ThreshInformedness);
  return 0;
}

void TCFEvaluator::ScanThresholds(double& ThreshMMC, double& ThreshAccuracy,
                                  double& ThreshInformedness) {
  BestThreshold matthews;
  BestThreshold accuracy;
  BestThreshold informedness;
  const Scan scan(FEstVec);
  // The estimates fall from front to back unless one of them is not-a-number, so the objects below
  // a rising threshold are always more of the same end.
  Confusion c = kernels::confusionAt(FTrueVec, FEstVec, FDichoV2, scan.begin);
  std::size_t notBelow = FEstVec.size() - static_cast<std::size_t>(c.tn + c.fn);
  double last = 0;
  bool isScanned = false;
  for (double t = scan.begin; t < scan.end; t = scan.next(t)) {
    if (scan.hasNaN) {
      c = kernels::confusionAt(FTrueVec, FEstVec, FDichoV2, t);
    } else {
      for (; notBelow > 0 && FEstVec[notBelow - 1] < t; --notBelow) {
        const bool isPositive = FTrueVec[notBelow - 1] == FDichoV2;
        --(isPositive ? c.tp : c.fp);
        ++(isPositive ? c.fn : c.tn);
      }
    }
    matthews.offer(c.matthews(), t);
    accuracy.offer(c.accuracy(), t);
    informedness.offer(c.informedness(), t);
    last = t;
    isScanned = true;
  }
  if (isScanned) CalcConfusionMatrix(last);
  ThreshMMC = matthews.threshold();
  ThreshAccuracy = accuracy.threshold();
  ThreshInformedness = informedness.threshold();
}

}  // namespace zel
