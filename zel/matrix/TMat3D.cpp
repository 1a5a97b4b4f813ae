#include "zel/matrix/TMat3D.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>

#include "zel/foundation/randoms.h"
#include "zel/kernels/fingerprint.h"
#include "zel/kernels/hooks.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/range.h"
#include "zel/matrix/grid_impl.h"
#include "zel/matrix/mat3d_impl.h"

namespace zel {

using detail::TGridBlock;
using detail::TGridView;

TMat3D::TMat3D(TComponent* AOwner) : TComponent(AOwner) {
  Guarded([&] { Mat.SetLength(1, 1, 1); });
}

TMat3D::~TMat3D() = default;

std::string_view TMat3D::ClassName() const { return "TMat3D"; }

void TMat3D::Changed() { Fire(OnChange, this); }

void TMat3D::PercDone(TObject*, int Percent) { Fire(OnPercentDone, this, Percent); }

bool TMat3D::Resize(int Nc, int Nr, int Nl) {
  if (Nc == FNumX && Nr == FNumY && Nl == FNumZ) return true;
  if (Nc < 1 || Nr < 1 || Nl < 1) return true;
  Guarded([&] { Mat.SetLength(Nc, Nr, Nl); });
  FNumX = Nc;
  FNumY = Nr;
  FNumZ = Nl;
  Changed();
  return true;
}

bool TMat3D::ResizeAndClear(int Nc, int Nr, int Nl) {
  const bool done = Resize(Nc, Nr, Nl);
  if (done) Fill(0);
  return done;
}

void TMat3D::MakeValidColRange(int& LowCol, int& HighCol) const {
  kernels::clampRange(LowCol, HighCol, FNumX);
}

void TMat3D::MakeValidRowRange(int& LowRow, int& HighRow) const {
  kernels::clampRange(LowRow, HighRow, FNumY);
}

void TMat3D::MakeValidLayerRange(int& LowLayer, int& HighLayer) const {
  kernels::clampRange(LowLayer, HighLayer, FNumZ);
}

TGridView<3> TMat3D::View() const { return {Mat.data(), {FNumX, FNumY, FNumZ}}; }

TGridBlock<3> TMat3D::Clamped(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer,
                              int HighLayer) const {
  return detail::ClampedBlock<3>({FNumX, FNumY, FNumZ}, LowCol, HighCol, LowRow, HighRow, LowLayer,
                                 HighLayer);
}

void TMat3D::Fill(double value) {
  if (value == 0 && !std::signbit(value)) {
    try {
      TDouble3DArray fresh(FNumX, FNumY, FNumZ);
      Mat.swap(fresh);
      return;
    } catch (const std::bad_alloc&) {
      // The old storage serves as well.
    }
  }
  std::fill(Mat.begin(), Mat.end(), value);
}

void TMat3D::FillDiag(double value) {
  for (int i = 1; i <= std::min({FNumX, FNumY, FNumZ}); ++i) SetVal(i, i, i, value);
  Changed();
}

template <class Next>
void TMat3D::FillBy(Next&& next) {
  std::generate(Mat.begin(), Mat.end(), next);
  Changed();
}

void TMat3D::FillRandomUniform(double RangeLow, double RangeHigh) {
  FillBy([&] { return Random() * (RangeHigh - RangeLow) + RangeLow; });
}

void TMat3D::FillRandomGauss(double Mean, double StdDev) {
  FillBy([&] { return GRandom() * StdDev + Mean; });
}

void TMat3D::Clone(const TMat3D* MatSource) {
  if (!MatSource) return;
  TDouble3DArray copy;
  Guarded([&] { copy = MatSource->Mat; });
  const bool resized =
      FNumX != MatSource->FNumX || FNumY != MatSource->FNumY || FNumZ != MatSource->FNumZ;
  Mat.swap(copy);
  FNumX = MatSource->FNumX;
  FNumY = MatSource->FNumY;
  FNumZ = MatSource->FNumZ;
  if (resized) Changed();
  Changed();
}

void TMat3D::RequireLayer(int Layer) const {
  if (Layer < 1 || Layer > FNumZ) {
    Raise<EZELMatrixError>("\": specified layer beyond data range");
  }
}

void TMat3D::CopyLayerToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                               int Layer) const {
  if (!DestMat) return;
  RequireLayer(Layer);
  const auto block = Clamped(LowCol, HighCol, LowRow, HighRow, Layer, Layer);
  DestMat->Resize(static_cast<int>(block.Size(0)), static_cast<int>(block.Size(1)));
  DestMat->CopyFrom(this, block.Low[0], block.Low[1], block.High[0], block.High[1], Layer, 1, 1);
}

void TMat3D::CopyMatrixToLayer(const TMatrix* SrcMat, int SrcLowCol, int SrcHighCol, int SrcLowRow,
                               int SrcHighRow, int Layer, int LayLowCol, int LayLowRow) {
  if (!SrcMat) return;
  RequireLayer(Layer);
  const detail::TShiftedRange columns(SrcLowCol, SrcHighCol, LayLowCol, FNumX);
  const detail::TShiftedRange rows(SrcLowRow, SrcHighRow, LayLowRow, FNumY);
  for (std::int64_t c = columns.First; c <= columns.Last; ++c) {
    for (std::int64_t r = rows.First; r <= rows.Last; ++r) {
      SetVal(static_cast<int>(c + columns.Shift), static_cast<int>(r + rows.Shift), Layer,
             SrcMat->GetVal(static_cast<int>(c), static_cast<int>(r)));
    }
  }
}

void TMat3D::Find(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
                  double Value, int& ColIx, int& RowIx, int& LayerIx) const {
  const auto found = detail::NearestIn(
      View(), Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer), Value);
  ColIx = found[0];
  RowIx = found[1];
  LayerIx = found[2];
}

void TMat3D::MinMax(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
                    double& Minimum, double& Maximum) const {
  const auto range = detail::ExtremesIn(
      View(), Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer), kernels::NoHook{});
  Minimum = range.minimum;
  Maximum = range.maximum;
}

void TMat3D::MeanVar(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
                     double& Mean, double& Variance) const {
  const auto block = Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer);
  const auto m = Guarded([&] {
    return detail::WithCells(View(), block,
                             [](std::span<const double> x) { return kernels::meanVariance(x); });
  });
  Mean = m.mean;
  Variance = m.variance;
}

double TMat3D::Percentile(double prob, int LowCol, int HighCol, int LowRow, int HighRow,
                          int LowLayer, int HighLayer) const {
  const auto block = Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer);
  return Guarded([&] {
    return detail::WithCells(
        View(), block, [&](std::span<const double> x) { return detail::RankedValue(x, prob); });
  });
}

double TMat3D::Percentile(double prob, int LowCol, int HighCol, int LowRow, int HighRow,
                          int LowLayer, int HighLayer, int SampleSize) const {
  const auto block = Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer);
  if (!detail::IsSampled(block, SampleSize)) {
    return Percentile(prob, LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer);
  }
  return Guarded([&] { return detail::SampledPercentile(View(), block, prob, SampleSize); });
}

std::string TMat3D::CRCofData() const { return kernels::fingerprintText(Elements()); }

}  // namespace zel
