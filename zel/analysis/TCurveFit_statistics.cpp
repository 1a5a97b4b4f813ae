#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "zel/analysis/TCurveFit.h"
#include "zel/analysis/pair_sums_impl.h"
#include "zel/kernels/circular_mean.h"

namespace zel {

namespace {

using detail::TPairSum;
using detail::TPairSums;
using Wide = kernels::Twofold<Extended>;

constexpr int kLeastForSpread = 3;

Wide countOf(int n) { return {static_cast<Extended>(n), 0}; }

double meanFrom(const TPairSums& sums, TPairSum sum, int n) {
  return n < 1 ? 0 : static_cast<double>(sums.Value(sum).hi / static_cast<Extended>(n));
}

/// Sum of the products of deviations; 0 if no more than the rounding errors are left of it.
Wide centred(Wide products, Wide a, Wide b, int n) {
  constexpr Extended kRounding = 0x1p-115L;
  const Wide difference = products - a * b / countOf(n);
  return std::abs(difference.hi) <= kRounding * std::abs(products.hi) ? Wide{0, 0} : difference;
}

double standardDeviation(const TPairSums& sums, TPairSum squares, TPairSum sum, int n) {
  if (n < kLeastForSpread) return 0;
  const Wide total = sums.Value(sum);
  const Extended spread = centred(sums.Value(squares), total, total, n).hi;
  return static_cast<double>(std::sqrt(std::abs(spread) / static_cast<Extended>(n - 1)));
}

/// Sum of (v - m)^2 over n values.
double squaresAbout(Wide m, Wide sum, Wide squares, int n) {
  return static_cast<double>((countOf(n) * (m * m) + squares - m * sum * Extended{2}).hi);
}

}  // namespace

double TCurveFit::GetMeanX() const { return meanFrom(*FSums, detail::sumx, FNumData); }
double TCurveFit::GetMeanY() const { return meanFrom(*FSums, detail::sumy, FNumData); }
double TCurveFit::GetMeanDiff() const { return meanFrom(*FSums, detail::sumDiff, FNumData); }

double TCurveFit::GetStdDevX() const {
  return standardDeviation(*FSums, detail::sumxq, detail::sumx, FNumData);
}
double TCurveFit::GetStdDevY() const {
  return standardDeviation(*FSums, detail::sumyq, detail::sumy, FNumData);
}
double TCurveFit::GetStdDevDiff() const {
  return standardDeviation(*FSums, detail::SumDiffq, detail::sumDiff, FNumData);
}

double TCurveFit::GetRxy() const {
  if (FNumData < kLeastForSpread) return 0;
  const Wide x = FSums->Value(detail::sumx);
  const Wide y = FSums->Value(detail::sumy);
  const Extended xx = centred(FSums->Value(detail::sumxq), x, x, FNumData).hi;
  const Extended yy = centred(FSums->Value(detail::sumyq), y, y, FNumData).hi;
  if (xx == 0 || yy == 0) return 0;
  const Extended xy = (FSums->Value(detail::sumxy) - x * y / countOf(FNumData)).hi;
  const auto r = static_cast<double>(xy / (std::sqrt(std::abs(xx)) * std::sqrt(std::abs(yy))));
  return std::isnan(r) ? r : std::clamp(r, -1.0, 1.0);
}

void TCurveFit::CalcStatistics(int& NumData, double& MeanX, double& MeanY, double& StdevX,
                               double& StdevY, double& MeanDiff, double& StdevDiff,
                               double& rxy) const {
  NumData = FNumData;
  MeanX = GetMeanX();
  MeanY = GetMeanY();
  StdevX = GetStdDevX();
  StdevY = GetStdDevY();
  MeanDiff = GetMeanDiff();
  StdevDiff = GetStdDevDiff();
  rxy = GetRxy();
}

namespace {

/// Runs use(first row, last row) for a column of pairs; without pairs, a whole column is not meant.
template <class Use>
void withRows(int n, Use&& use) {
  if (n > 0) use(1, n);
}

struct TShape {
  double skewness = 0;
  double kurtosis = 0;
};

TShape shapeOf(const TMatrix& data, int column, int n) {
  TShape shape;
  withRows(n, [&](int low, int high) {
    data.SkewKurtSample(column, low, column, high, shape.skewness, shape.kurtosis);
  });
  return shape;
}

double percentileOf(const TMatrix& data, int column, int n, double prob) {
  double value = 0;
  withRows(n, [&](int low, int high) { value = data.Percentile(prob, column, low, column, high); });
  return value;
}

bool quartilesOf(const TMatrix& data, int column, int n, double& q1, double& q2, double& q3) {
  q1 = q2 = q3 = 0;
  bool done = false;
  withRows(
      n, [&](int low, int high) { done = data.Quartiles(column, low, column, high, q1, q2, q3); });
  return done;
}

}  // namespace

double TCurveFit::GetSkewnessX() const { return shapeOf(FData, 1, FNumData).skewness; }
double TCurveFit::GetSkewnessY() const { return shapeOf(FData, 2, FNumData).skewness; }
double TCurveFit::GetKurtosisX() const { return shapeOf(FData, 1, FNumData).kurtosis; }
double TCurveFit::GetKurtosisY() const { return shapeOf(FData, 2, FNumData).kurtosis; }

double TCurveFit::PercentileX(double prob) const { return percentileOf(FData, 1, FNumData, prob); }
double TCurveFit::PercentileY(double prob) const { return percentileOf(FData, 2, FNumData, prob); }

bool TCurveFit::QuartilesX(double& q1, double& q2, double& q3) const {
  return quartilesOf(FData, 1, FNumData, q1, q2, q3);
}
bool TCurveFit::QuartilesY(double& q1, double& q2, double& q3) const {
  return quartilesOf(FData, 2, FNumData, q1, q2, q3);
}

double TCurveFit::CalcMeanDegrees(int col) const {
  return kernels::circularMeanDegrees(Values(col));
}

void TCurveFit::CalcAnovaReg(int NumVars, bool IncludeConst, int& dfreg, int& dfres, int& dftotal,
                             double& SSE, double& SSR, double& SST, double& MSE, double& MSR,
                             double& F) const {
  const Wide x = FSums->Value(detail::sumx);
  const bool hasMean = IncludeConst && FNumData > 0;
  const Wide m = hasMean ? x / countOf(FNumData) : Wide{0, 0};
  dfreg = NumVars;
  dftotal = IncludeConst ? FNumData - 1 : FNumData;
  // No number of variables makes this overflow.
  dfres = static_cast<int>(std::clamp<std::int64_t>(std::int64_t{dftotal} - dfreg,
                                                    std::numeric_limits<int>::min(),
                                                    std::numeric_limits<int>::max()));
  SSE = static_cast<double>(FSums->Value(detail::SumDiffq).hi);
  SSR = squaresAbout(m, FSums->Value(detail::sumy), FSums->Value(detail::sumyq), FNumData);
  SST = squaresAbout(m, x, FSums->Value(detail::sumxq), FNumData);
  const auto meanSquare = [](double squares, int df) { return df == 0 ? 0 : squares / df; };
  MSE = meanSquare(SSE, dfres);
  MSR = meanSquare(SSR, dfreg);
  constexpr double kExactFit = 1e10;
  F = MSR == 0 ? 0 : MSE == 0 ? kExactFit : MSR / MSE;
}

}  // namespace zel
