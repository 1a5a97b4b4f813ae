// TMat4D: object, size, filling, reshaping.
#include "zel/matrix/TMat4D.h"

#include <cmath>
#include <limits>
#include <vector>

#include "zel/foundation/randoms.h"
#include "zel/kernels/products.h"
#include "zel/kernels/sums.h"
#include "zel/matrix/mat4d_impl.h"

namespace zel {

using detail::TGridBlock;
using detail::TGridView;

TMat4D::TMat4D(TComponent* AOwner) : TComponent(AOwner) {
  Guarded([&] { Mat.SetLength(1, 1, 1, 1); });
}

TMat4D::~TMat4D() = default;

std::string_view TMat4D::ClassName() const { return "TMat4D"; }

void TMat4D::Assign(const TPersistent* Source) {
  const auto* source = dynamic_cast<const TMat4D*>(Source);
  if (!source) return TComponent::Assign(Source);
  if (source == this) return;
  // Whatever may throw comes before anything of this object changes.
  TDouble4DArray copy;
  Guarded([&] { copy = source->Mat; });
  std::string id = source->FDataID;
  TNotifyEvent change = source->OnChange;
  TOnPercentDoneEvent percent = source->OnPercentDone;
  TOnReadMat4DElementEvent element = source->OnReadElement;
  Mat.swap(copy);
  FNumX = source->FNumX;
  FNumY = source->FNumY;
  FNumZ = source->FNumZ;
  FNumT = source->FNumT;
  FDataID.swap(id);
  OnChange.swap(change);
  OnPercentDone.swap(percent);
  OnReadElement.swap(element);
}

void TMat4D::AssignTo(TPersistent* Dest) const {
  auto* dest = dynamic_cast<TMat4D*>(Dest);
  if (!dest) return TComponent::AssignTo(Dest);
  dest->Assign(this);
}

void TMat4D::Clone(const TMat4D* MatSource) {
  if (!MatSource) return;
  TDouble4DArray copy;
  Guarded([&] { copy = MatSource->Mat; });
  const bool resized = View().Sizes != MatSource->View().Sizes;
  TakeOver(copy);
  if (resized) Changed();
}

void TMat4D::Changed() { Fire(OnChange, this); }

void TMat4D::PercDone(TObject*, int Percent) { Fire(OnPercentDone, this, Percent); }

void TMat4D::TakeOver(TDouble4DArray& contents) {
  Mat.swap(contents);
  FNumX = static_cast<int>(Mat.Length(3));
  FNumY = static_cast<int>(Mat.Length(2));
  FNumZ = static_cast<int>(Mat.Length(1));
  FNumT = static_cast<int>(Mat.Length(0));
  Changed();
}

bool TMat4D::Resize(int Nc, int Nr, int Nl, int Nt) {
  if (Nc == FNumX && Nr == FNumY && Nl == FNumZ && Nt == FNumT) return true;
  if (Nc < 1 || Nr < 1 || Nl < 1 || Nt < 1) return true;
  Guarded([&] { Mat.SetLength(Nt, Nl, Nr, Nc); });
  FNumX = Nc;
  FNumY = Nr;
  FNumZ = Nl;
  FNumT = Nt;
  Changed();
  return true;
}

bool TMat4D::ResizeAndClear(int Nc, int Nr, int Nl, int Nt) {
  const bool done = Resize(Nc, Nr, Nl, Nt);
  if (done) Fill(0);
  return done;
}

double TMat4D::MemoryConsumed() const {
  return static_cast<double>(FNumX) / 1048576 * FNumY * FNumZ * FNumT * 8;
}

void TMat4D::MakeValidColRange(int& LowCol, int& HighCol) const {
  kernels::clampRange(LowCol, HighCol, FNumX);
}

void TMat4D::MakeValidRowRange(int& LowRow, int& HighRow) const {
  kernels::clampRange(LowRow, HighRow, FNumY);
}

void TMat4D::MakeValidLayerRange(int& LowLayer, int& HighLayer) const {
  kernels::clampRange(LowLayer, HighLayer, FNumZ);
}

void TMat4D::MakeValidTSlotRange(int& LowTimeSlot, int& HighTimeSlot) const {
  kernels::clampRange(LowTimeSlot, HighTimeSlot, FNumT);
}

TGridView<4> TMat4D::View() const { return {Mat.data(), {FNumX, FNumY, FNumZ, FNumT}}; }

TGridBlock<4> TMat4D::Clamped(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer,
                              int HighLayer, int LowTimeSlot, int HighTimeSlot) const {
  return detail::ClampedBlock<4>({FNumX, FNumY, FNumZ, FNumT}, LowCol, HighCol, LowRow, HighRow,
                                 LowLayer, HighLayer, LowTimeSlot, HighTimeSlot);
}

int TMat4D::Lin3DAddr(int ix, int iy, int il) const {
  constexpr std::size_t most = std::numeric_limits<int>::max();
  if (SliceSize() > most / static_cast<std::size_t>(FNumZ)) return -2;
  if (!Contains(ix, iy, il, 1)) return -1;
  return ((iy - 1) * FNumX + (ix - 1)) * FNumZ + (il - 1);
}

bool TMat4D::ConvertLinTo3DAddr(int LinAddr, int& ix, int& iy, int& il) const {
  if (LinAddr < 0) return false;
  const int pixel = LinAddr / FNumZ;
  if (static_cast<std::size_t>(pixel) >= SliceSize()) return false;
  il = LinAddr % FNumZ + 1;
  ix = pixel % FNumX + 1;
  iy = pixel / FNumX + 1;
  return true;
}

void TMat4D::Fill(double value) {
  std::fill(Mat.begin(), Mat.end(), value);
  Changed();
}

void TMat4D::FillDiag(double value) {
  for (int i = 1; i <= std::min({FNumX, FNumY, FNumZ, FNumT}); ++i) SetVal(i, i, i, i, value);
  Changed();
}

/// Stores what next() yields, in the order of visits.
template <class Next>
void TMat4D::FillBy(const TGridBlock<4>& block, Next&& next) {
  for (int x = block.Low[0]; x <= block.High[0]; ++x) {
    for (int y = block.Low[1]; y <= block.High[1]; ++y) {
      for (int z = block.Low[2]; z <= block.High[2]; ++z) {
        for (int t = block.Low[3]; t <= block.High[3]; ++t) Mat.data()[Offset(x, y, z, t)] = next();
      }
    }
  }
}

void TMat4D::FillRandomUniform(double RangeLow, double RangeHigh) {
  FillBy(Clamped(0, 0, 0, 0, 0, 0, 0, 0),
         [&] { return Random() * (RangeHigh - RangeLow) + RangeLow; });
  Changed();
}

void TMat4D::FillRandomGauss(double Mean, double StdDev) {
  FillBy(Clamped(0, 0, 0, 0, 0, 0, 0, 0), [&] { return GRandom() * StdDev + Mean; });
  Changed();
}

void TMat4D::FillLayer(int Layer, double value) {
  if (!HasLayer(Layer)) return;
  for (int t = 1; t <= FNumT; ++t) {
    std::fill_n(Mat.data() + Offset(1, 1, Layer, t), SliceSize(), value);
  }
}

int TMat4D::FillLayer(int Layer, int TimeSlot, int Mode, double par1, double par2) {
  if (Mode < 0 || Mode > 2) return -3;
  if (!HasTimeSlot(TimeSlot)) return -2;
  if (!HasLayer(Layer)) return -1;
  const auto slice = Clamped(0, 0, 0, 0, Layer, Layer, TimeSlot, TimeSlot);
  if (Mode == 0) {
    FillBy(slice, [&] { return par1; });
  } else if (Mode == 1) {
    FillBy(slice, [&] { return Random() * (par2 - par1) + par1; });
  } else {
    FillBy(slice, [&] { return GRandom() * par2 + par1; });
  }
  Changed();
  return 0;
}

int TMat4D::AccumulateLayer(int Layer, int TimeSlot, const TDouble2DArray& Src) {
  if (!HasTimeSlot(TimeSlot)) return -3;
  if (!HasLayer(Layer)) return -2;
  if (Src.Length(0) != static_cast<std::size_t>(FNumX) ||
      Src.Length(1) != static_cast<std::size_t>(FNumY)) {
    return -1;
  }
  double* cell = Mat.data() + Offset(1, 1, Layer, TimeSlot);
  for (int y = 0; y < FNumY; ++y) {
    for (int x = 0; x < FNumX; ++x) *cell++ += Src(x, y);
  }
  return 0;
}

void TMat4D::Cut(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
                 int LowTimeslot, int HighTimeslot) {
  const auto block =
      Clamped(LowCol, HighCol, LowRow, HighRow, LowLayer, HighLayer, LowTimeslot, HighTimeslot);
  TDouble4DArray cut;
  Guarded([&] { cut.SetLength(block.Size(3), block.Size(2), block.Size(1), block.Size(0)); });
  TPercent percent(*this, 2 * block.Size(2) * block.Size(3));
  double* next = cut.data();
  for (int t = block.Low[3]; t <= block.High[3]; ++t) {
    for (int z = block.Low[2]; z <= block.High[2]; ++z) {
      for (int y = block.Low[1]; y <= block.High[1]; ++y) {
        next = std::copy_n(Mat.data() + Offset(block.Low[0], y, z, t), block.Size(0), next);
      }
      percent.Step();
      percent.Step();
    }
  }
  TakeOver(cut);
}

namespace {

/// How Resample divides a dimension; indices from 0.
struct TDivision {
  std::size_t factor;
  std::size_t offset;
  std::size_t source;
  std::size_t count;
  TDivision(int size, int divisor, int shift)
      : factor(static_cast<std::size_t>(divisor)),
        offset(static_cast<std::size_t>(shift % divisor)),
        source(static_cast<std::size_t>(size)),
        count(source > offset ? (source - offset - 1) / factor + 1 : 1) {}
  [[nodiscard]] std::size_t first(std::size_t i) const {
    return std::min(i * factor + offset, source);
  }
  /// Behind the last index that the source has.
  [[nodiscard]] std::size_t end(std::size_t i) const { return std::min(first(i) + factor, source); }
};

}  // namespace

void TMat4D::Resample(int XDiv, int XOffset, int YDiv, int YOffset, int ZDiv, int ZOffset, int TDiv,
                      int TOffset, bool Average) {
  if (std::min({XDiv, YDiv, ZDiv, TDiv}) < 1 || std::min({XOffset, YOffset, ZOffset, TOffset}) < 0)
    return;
  const TDivision dx(FNumX, XDiv, XOffset);
  const TDivision dy(FNumY, YDiv, YOffset);
  const TDivision dz(FNumZ, ZDiv, ZOffset);
  const TDivision dt(FNumT, TDiv, TOffset);
  const double full = static_cast<double>(XDiv) * YDiv * ZDiv * TDiv;
  TDouble4DArray result;
  std::vector<double> cells;
  const auto element = [&](std::size_t x, std::size_t y, std::size_t z, std::size_t t) {
    if (!Average) {
      const bool exists = dx.first(x) < dx.source && dy.first(y) < dy.source &&
                          dz.first(z) < dz.source && dt.first(t) < dt.source;
      return exists ? Mat(dt.first(t), dz.first(z), dy.first(y), dx.first(x)) : 0;
    }
    cells.clear();
    for (std::size_t it = dt.first(t); it < dt.end(t); ++it) {
      for (std::size_t iz = dz.first(z); iz < dz.end(z); ++iz) {
        for (std::size_t iy = dy.first(y); iy < dy.end(y); ++iy) {
          const double* const row = &Mat(it, iz, iy, 0);
          cells.insert(cells.end(), row + dx.first(x), row + dx.end(x));
        }
      }
    }
    const auto sum = kernels::sum(std::span<const double>(cells));
    return std::isfinite(sum.hi) ? (sum / full).hi : sum.hi;
  };
  TPercent percent(*this, dt.count * dz.count);
  Guarded([&] {
    result.SetLength(dt.count, dz.count, dy.count, dx.count);
    double* next = result.data();
    for (std::size_t t = 0; t < dt.count; ++t) {
      for (std::size_t z = 0; z < dz.count; ++z) {
        for (std::size_t y = 0; y < dy.count; ++y) {
          for (std::size_t x = 0; x < dx.count; ++x) *next++ = element(x, y, z, t);
        }
        percent.Step();
      }
    }
  });
  TakeOver(result);
}

bool TMat4D::Transpose() {
  TDouble4DArray result;
  Guarded([&] { result.SetLength(FNumT, FNumZ, FNumX, FNumY); });
  const auto columns = static_cast<std::size_t>(FNumX);
  const auto rows = static_cast<std::size_t>(FNumY);
  TPercent percent(*this, Slices());
  for (std::size_t slice = 0; slice < Slices(); ++slice) {
    if (AbortMathProc) return false;
    const std::size_t first = slice * columns * rows;
    // The kernel's columns are the contiguous ones, here the rows.
    kernels::transpose(kernels::ConstMatrix{Mat.data() + first, columns, rows, columns},
                       kernels::Matrix{result.data() + first, rows, columns, rows});
    percent.Step();
  }
  TakeOver(result);
  return true;
}

void TMat4D::Mirror(std::size_t count, std::size_t length) {
  for (double* group = Mat.begin(); group != Mat.end(); group += count * length) {
    for (std::size_t i = 0; i < count / 2; ++i) {
      double* const low = group + i * length;
      std::swap_ranges(low, low + length, group + (count - 1 - i) * length);
    }
  }
  Changed();
}

void TMat4D::MirrorColumns() { Mirror(static_cast<std::size_t>(FNumX), 1); }

void TMat4D::MirrorRows() {
  Mirror(static_cast<std::size_t>(FNumY), static_cast<std::size_t>(FNumX));
}

void TMat4D::MirrorLayers() { Mirror(static_cast<std::size_t>(FNumZ), SliceSize()); }

void TMat4D::MirrorTimeSlots() {
  Mirror(static_cast<std::size_t>(FNumT), SliceSize() * static_cast<std::size_t>(FNumZ));
}

}  // namespace zel
