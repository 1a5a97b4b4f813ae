#include "zel/matrix/TMat3D.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>

#include "zel/base/guard_impl.h"
#include "zel/foundation/randoms.h"
#include "zel/kernels/fingerprint.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/range.h"
#include "zel/kernels/search.h"
#include "zel/matrix/rules_impl.h"

namespace zel {

/// 1-based block, clamped; never empty.
struct TMat3D::TBlock {
  int LowCol;
  int HighCol;
  int LowRow;
  int HighRow;
  int LowLayer;
  int HighLayer;
  [[nodiscard]] std::size_t Columns() const {
    return static_cast<std::size_t>(HighCol - LowCol + 1);
  }
  [[nodiscard]] std::size_t Rows() const { return static_cast<std::size_t>(HighRow - LowRow + 1); }
  [[nodiscard]] std::size_t Layers() const {
    return static_cast<std::size_t>(HighLayer - LowLayer + 1);
  }
  [[nodiscard]] std::size_t Count() const { return Columns() * Rows() * Layers(); }
};

template <class Operation>
decltype(auto) TMat3D::Guarded(Operation&& operation) const {
  return detail::GuardMemory(operation,
                             [&] { return EZELMatrixError(ComponentMessage(detail::kNoMemory)); });
}

TMat3D::TMat3D(TComponent* AOwner) : TComponent(AOwner) {
  Guarded([&] { Mat.SetLength(1, 1, 1); });
}

TMat3D::~TMat3D() = default;

std::string_view TMat3D::ClassName() const { return "TMat3D"; }

void TMat3D::Changed() { Fire(OnChange, this); }

void TMat3D::PercDone(TObject* Sender, int Percent) { Fire(OnPercentDone, Sender, Percent); }

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

TMat3D::TBlock TMat3D::Clamped(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer,
                               int HighLayer) const {
  MakeValidColRange(LowCol, HighCol);
  MakeValidRowRange(LowRow, HighRow);
  MakeValidLayerRange(LowLayer, HighLayer);
  return {LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer};
}

/// Calls use(c, r, cells) for the contiguous parts of a block in order: all rows of a column from
/// row r on where they are one, each row otherwise.
template <class Use>
void TMat3D::ForEachRun(const TBlock& block, Use&& use) const {
  const bool wholeLayers = block.Layers() == static_cast<std::size_t>(FNumZ);
  const std::size_t length = wholeLayers ? block.Rows() * block.Layers() : block.Layers();
  for (int c = block.LowCol; c <= block.HighCol; ++c) {
    for (int r = block.LowRow; r <= (wholeLayers ? block.LowRow : block.HighRow); ++r) {
      use(c, r, std::span<const double>(Mat.data() + Offset(c, r, block.LowLayer), length));
    }
  }
}

/// Calls use(cells) with the elements of a block in order: the storage itself where they are
/// contiguous, a copy otherwise.
template <class Use>
decltype(auto) TMat3D::WithCells(const TBlock& block, Use&& use) const {
  const bool wholeLayers = block.Layers() == static_cast<std::size_t>(FNumZ);
  const bool wholeRows = wholeLayers && block.Rows() == static_cast<std::size_t>(FNumY);
  if (wholeRows || (block.Columns() == 1 && (wholeLayers || block.Rows() == 1))) {
    const double* const first = Mat.data() + Offset(block.LowCol, block.LowRow, block.LowLayer);
    return use(std::span<const double>(first, block.Count()));
  }
  TDynArray<double, 1> copy;
  Guarded([&] { copy.SetLength(block.Count()); });
  double* next = copy.data();
  ForEachRun(block, [&](int, int, std::span<const double> cells) {
    next = std::copy(cells.begin(), cells.end(), next);
  });
  return use(std::span<const double>(copy));
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
  const TBlock block = Clamped(LowCol, HighCol, LowRow, HighRow, Layer, Layer);
  DestMat->Resize(static_cast<int>(block.Columns()), static_cast<int>(block.Rows()));
  DestMat->CopyFrom(this, block.LowCol, block.LowRow, block.HighCol, block.HighRow, Layer, 1, 1);
}

void TMat3D::CopyMatrixToLayer(const TMatrix* SrcMat, int SrcLowCol, int SrcHighCol, int SrcLowRow,
                               int SrcHighRow, int Layer, int LayLowCol, int LayLowRow) {
  if (!SrcMat) return;
  RequireLayer(Layer);
  // Source and layer coordinates differ by these.
  const std::int64_t right = std::int64_t{LayLowCol} - SrcLowCol;
  const std::int64_t down = std::int64_t{LayLowRow} - SrcLowRow;
  const std::int64_t lastCol = std::min<std::int64_t>(SrcHighCol + right, FNumX);
  const std::int64_t lastRow = std::min<std::int64_t>(SrcHighRow + down, FNumY);
  for (std::int64_t c = std::max(LayLowCol, 1); c <= lastCol; ++c) {
    for (std::int64_t r = std::max(LayLowRow, 1); r <= lastRow; ++r) {
      SetVal(static_cast<int>(c), static_cast<int>(r), Layer,
             SrcMat->GetVal(static_cast<int>(c - right), static_cast<int>(r - down)));
    }
  }
}

void TMat3D::Find(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
                  double Value, int& ColIx, int& RowIx, int& LayerIx) const {
  ColIx = 0;
  RowIx = 0;
  LayerIx = 0;
  const TBlock block = Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer);
  auto best = kernels::kFarthest<double>;
  ForEachRun(block, [&](int c, int r, std::span<const double> cells) {
    const std::size_t at = kernels::findNearer(cells, Value, best);
    if (at == kernels::npos) return;
    ColIx = c;
    RowIx = r + static_cast<int>(at / block.Layers());
    LayerIx = block.LowLayer + static_cast<int>(at % block.Layers());
  });
}

void TMat3D::MinMax(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
                    double& Minimum, double& Maximum) const {
  kernels::MinMaxStart<double> range = detail::kExtremesStart<double>;
  ForEachRun(Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer),
             [&](int, int, std::span<const double> cells) {
               const auto found = kernels::minMax(cells, range);
               range = {found.minimum, found.maximum};
             });
  Minimum = range.minimum;
  Maximum = range.maximum;
}

void TMat3D::MeanVar(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
                     double& Mean, double& Variance) const {
  const auto m = WithCells(Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer),
                           [](std::span<const double> x) { return kernels::meanVariance(x); });
  Mean = m.mean;
  Variance = m.variance;
}

double TMat3D::Percentile(double prob, int LowCol, int HighCol, int LowRow, int HighRow,
                          int LowLayer, int HighLayer) const {
  const TBlock block = Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer);
  return Guarded([&] {
    return WithCells(block,
                     [&](std::span<const double> x) { return detail::RankedValue(x, prob); });
  });
}

double TMat3D::Percentile(double prob, int LowCol, int HighCol, int LowRow, int HighRow,
                          int LowLayer, int HighLayer, int SampleSize) const {
  const TBlock block = Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer);
  if (SampleSize <= 0 || block.Count() <= static_cast<std::size_t>(SampleSize)) {
    return Percentile(prob, LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer);
  }
  return Guarded([&] {
    const auto sample = detail::RandomSample<double>(SampleSize, [&] {
      const int c = detail::RandomBetween(block.LowCol, block.HighCol);
      const int r = detail::RandomBetween(block.LowRow, block.HighRow);
      return GetVal(c, r, detail::RandomBetween(block.LowLayer, block.HighLayer));
    });
    return detail::RankedValue(std::span<const double>(sample), prob);
  });
}

std::string TMat3D::CRCofData() const { return kernels::fingerprintText(Elements()); }

}  // namespace zel
