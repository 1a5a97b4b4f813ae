#include "zel/statistics/TRandGen.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "zel/base/random.h"
#include "zel/foundation/bounds.h"
#include "zel/statistics/chisquaredistribution.h"
#include "zel/statistics/fdistribution.h"
#include "zel/statistics/memory_impl.h"
#include "zel/statistics/tdistribution.h"
#include "zel/statistics/weibulldistribution.h"

namespace zel {

TRandGen::TRandGen(TComponent* AOwner) : TComponent(AOwner), FDistVec(500, 1.0) {}

TRandGen::~TRandGen() = default;

std::string_view TRandGen::ClassName() const { return "TRandGen"; }

void TRandGen::SetResolution(int n) {
  n = std::clamp(n, 10, 4000);
  detail::GuardStatis([&] { FDistVec = TDoubleArray(static_cast<std::size_t>(n), 1.0); },
                      [&] { return "Component \"" + Name() + detail::kNoMemory; });
  FResolution = n;
}

double TRandGen::GetProbability(int Idx) const {
  return Idx < 1 || Idx > FResolution ? 0 : FDistVec[static_cast<std::size_t>(Idx) - 1];
}

void TRandGen::SetProbability(int Idx, double Value) {
  if (Idx < 1 || Idx > FResolution) return;
  FDistVec[static_cast<std::size_t>(Idx) - 1] = Value > 0 ? std::min(Value, 1.0) : 0;
}

double TRandGen::GetLambda(int ix) const {
  if (ix < 1) return FLowBorder;
  if (ix > FResolution) return FHighBorder;
  return FLowBorder + (ix - 1) * (FHighBorder - FLowBorder) / FResolution;
}

int TRandGen::IndexOfLambda(double Lambda) const {
  if (Lambda < FLowBorder) return 0;
  if (Lambda > FHighBorder || !(FHighBorder > FLowBorder)) return FResolution + 1;
  return IntNeg(FResolution * (Lambda - FLowBorder) / (FHighBorder - FLowBorder)) + 1;
}

double TRandGen::GetRandNum() const {
  constexpr int kMostAttempts = 100001;
  double position = 0;
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    const int k = zel::Random(FResolution);
    const double u = zel::Random();
    const double left = FDistVec[static_cast<std::size_t>(k)];
    const double right = k + 1 < FResolution ? FDistVec[static_cast<std::size_t>(k) + 1] : 0;
    const double p = left + u * (right - left);
    position = k + u;
    if (p >= 1 || zel::Random() < p) break;
  }
  return FLowBorder + (FHighBorder - FLowBorder) * position / FResolution;
}

void TRandGen::Normalize() {
  const auto [smallest, largest] = std::ranges::minmax(FDistVec);
  const double range = largest - smallest;
  if (!(range > 0)) return;
  for (double& p : FDistVec) p = (p - smallest) / range;
}

bool TRandGen::Standardize() {
  const double largest = std::ranges::max(FDistVec);
  if (largest == 0) return false;
  for (double& p : FDistVec) p /= largest;
  return true;
}

template <class Density>
void TRandGen::Fill(Density&& density) {
  for (int i = 1; i <= FResolution; ++i)
    FDistVec[static_cast<std::size_t>(i) - 1] = density(GetLambda(i));
}

void TRandGen::NormalDistri(double m, double s) {
  Fill([m, s](double x) { return std::exp(-((x - m) * (x - m) / 2) / (s * s)); });
}

void TRandGen::tDistri(int df) {
  Fill([df](double x) { return tDistriDensity(x, df); });
}

void TRandGen::Chi2Distri(int df) {
  const double width = (FHighBorder - FLowBorder) / FResolution;
  Fill([df, width](double x) {
    const double density = x >= 0 ? Chi2DistriDensity(x, df) : 0;
    if (!std::isinf(density)) return density;
    if (!(width > 0)) return 1.0;
    return 2 * chi2DistriIntegral(width, df) / width - Chi2DistriDensity(width, df);
  });
}

void TRandGen::FDistri(int df1, int df2) {
  Fill([df1, df2](double x) { return x > 0 ? FDistriDensity(x, df1, df2) : 0; });
}

void TRandGen::WeibullDistri(double beta, double eta) {
  Fill([beta, eta](double x) { return WeibullDensity(x, beta, eta); });
}

void TRandGen::UniformDistri() {
  Fill([](double) { return 1.0; });
}

}  // namespace zel
