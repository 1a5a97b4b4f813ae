#include "zel/analysis/TCurveFit.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include "zel/analysis/memory_impl.h"
#include "zel/analysis/pair_sums_impl.h"
#include "zel/base/Zel_univconst.h"

namespace zel {

TCurveFit::TCurveFit(TComponent* AOwner) : TComponent(AOwner) {
  detail::GuardFit("TCurveFit", [&] {
    FSums = std::make_unique<detail::TPairSums>();
    FData.Resize(2, kLeastRows);
  });
  ResetSummary();
}

TCurveFit::~TCurveFit() = default;

std::string_view TCurveFit::ClassName() const { return "TCurveFit"; }

void TCurveFit::ClearCaches() {
  FSplineValid = false;
  FPenSplineValid = false;
  FKendallValid = false;
}

void TCurveFit::ResetSummary() {
  FSums->Clear();
  FNumData = 0;
  FPSplineFQ = 0;
  FMinX = FMinY = uc_MaxReal;
  FMaxX = FMaxY = -uc_MaxReal;
  FErrIndic = {};
  ClearCaches();
}

void TCurveFit::Init() {
  ResetSummary();
  FData.Fill(0);
}

void TCurveFit::AdjustSums(double x, double y) {
  FSums->Add(x, y);
  // A not-a-number replaces nothing.
  if (x < FMinX) FMinX = x;
  if (x > FMaxX) FMaxX = x;
  if (y < FMinY) FMinY = y;
  if (y > FMaxY) FMaxY = y;
  const auto faults = detail::TPairSums::Faults(x, y);
  for (const TCurveFitError fault : {cfeXLE0, cfeYLE0, cfeXEQ0, cfeYEQ0}) {
    if (faults.contains(fault)) FErrIndic.include(fault);
  }
}

int TCurveFit::EnterStatValue(double x, double y) {
  const int rows = FData.NrOfRows();
  if (FNumData >= rows) {
    constexpr int most = std::numeric_limits<int>::max();
    if (rows == most) throw EZELMath2Error("TCurveFit.EnterStatValue: too many pairs");
    const int step = std::max(kLeastRows, rows / 2);
    detail::GuardFit("TCurveFit.EnterStatValue",
                     [&] { FData.Resize(2, rows + std::min(step, most - rows)); });
  }
  AdjustSums(x, y);
  ++FNumData;
  FData.SetVal(1, FNumData, x);
  FData.SetVal(2, FNumData, y);
  ClearCaches();
  return FNumData;
}

void TCurveFit::RemoveStatValue(int ix) {
  ClearCaches();
  if (ix < 1 || ix > FNumData) return;
  FSums->Remove(FData.GetVal(1, ix), FData.GetVal(2, ix));
  for (double* column : {FData.data(), FData.data() + FData.NrOfRows()}) {
    std::copy(column + ix, column + FNumData, column + ix - 1);
  }
  --FNumData;
}

double TCurveFit::GetDataX(int ix) const { return ix <= FNumData ? FData.GetVal(1, ix) : 0; }

double TCurveFit::GetDataY(int ix) const { return ix <= FNumData ? FData.GetVal(2, ix) : 0; }

void TCurveFit::FlipXY() {
  FSums->Flip();
  std::swap(FMinX, FMinY);
  std::swap(FMaxX, FMaxY);
  // What stands for y now stood for x.
  const auto before = FErrIndic;
  FErrIndic = {};
  const auto carry = [&](TCurveFitError from, TCurveFitError to) {
    if (before.contains(from)) FErrIndic.include(to);
  };
  carry(cfeXLE0, cfeYLE0);
  carry(cfeYLE0, cfeXLE0);
  carry(cfeXEQ0, cfeYEQ0);
  carry(cfeYEQ0, cfeXEQ0);
  FData.ExchangeColumns(1, 2);
  ClearCaches();
}

}  // namespace zel
