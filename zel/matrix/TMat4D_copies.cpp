// TMat4D: copies from and to matrices, vectors and arrays of fewer dimensions.
#include <cstdint>
#include <limits>
#include <utility>

#include "zel/matrix/mat4d_impl.h"

namespace zel {

using detail::TGridBlock;
using detail::TShiftedRange;

namespace {

/// The code of the last check that fails; its place in the list counted from 1, negative.
int LastFailing(std::initializer_list<bool> checks) {
  int code = 0;
  int number = 0;
  for (const bool holds : checks) {
    --number;
    if (!holds) code = number;
  }
  return code;
}

bool IsIndex(int i, int n) { return i >= 1 && i <= n; }

}  // namespace

void TMat4D::RequireLayer(int Layer) const {
  if (!HasLayer(Layer)) Raise<EZELMatrixError>("\": specified layer beyond data range");
}

void TMat4D::RequireTimeSlot(int TimeSlot) const {
  if (!HasTimeSlot(TimeSlot)) Raise<EZELMatrixError>("\": specified time slot beyond data range");
}

int TMat4D::CodeOfSlice(int Layer, int TimeSlot) const {
  return LastFailing({HasLayer(Layer), HasTimeSlot(TimeSlot)});
}

/// Stores get(x, y, z, t) for the indices of a source block, so that the first goes to the given
/// place.
template <class Get>
void TMat4D::StoreBlock(const TGridBlock<4>& from, int DestCol, int DestRow, int DestLayer,
                        int DestTSlot, Get&& get) {
  const TShiftedRange columns(from.Low[0], from.High[0], DestCol, FNumX);
  const TShiftedRange rows(from.Low[1], from.High[1], DestRow, FNumY);
  const TShiftedRange layers(from.Low[2], from.High[2], DestLayer, FNumZ);
  const TShiftedRange slots(from.Low[3], from.High[3], DestTSlot, FNumT);
  const auto to = [](std::int64_t i, const TShiftedRange& range) {
    return static_cast<int>(i + range.Shift);
  };
  if (columns.First > columns.Last) return;
  for (std::int64_t t = slots.First; t <= slots.Last; ++t) {
    for (std::int64_t z = layers.First; z <= layers.Last; ++z) {
      for (std::int64_t y = rows.First; y <= rows.Last; ++y) {
        double* cell = Mat.data() +
                       Offset(to(columns.First, columns), to(y, rows), to(z, layers), to(t, slots));
        for (std::int64_t x = columns.First; x <= columns.Last; ++x) {
          *cell++ = get(static_cast<int>(x), static_cast<int>(y), static_cast<int>(z),
                        static_cast<int>(t));
        }
      }
    }
  }
}

void TMat4D::CopyFrom(const TMat4D* MatSource, int SrcLowCol, int SrcHighCol, int SrcLowRow,
                      int SrcHighRow, int SrcLowLayer, int SrcHighLayer, int SrcLowTSlot,
                      int SrcHighTSlot, int DestCol, int DestRow, int DestLayer, int DestTSlot) {
  if (!MatSource) return;
  const auto block = MatSource->Clamped(SrcLowCol, SrcHighCol, SrcLowRow, SrcHighRow, SrcLowLayer,
                                        SrcHighLayer, SrcLowTSlot, SrcHighTSlot);
  TDouble4DArray copy;
  if (MatSource == this) Guarded([&] { copy = Mat; });
  const double* const source = MatSource == this ? copy.data() : MatSource->Mat.data();
  StoreBlock(block, DestCol, DestRow, DestLayer, DestTSlot,
             [&](int x, int y, int z, int t) { return source[MatSource->Offset(x, y, z, t)]; });
  Changed();
}

void TMat4D::CopyLayerToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                               int Layer, int TimeSlot) const {
  if (!DestMat) return;
  RequireLayer(Layer);
  RequireTimeSlot(TimeSlot);
  MakeValidColRange(LowCol, HighCol);
  MakeValidRowRange(LowRow, HighRow);
  DestMat->Resize(HighCol - LowCol + 1, HighRow - LowRow + 1);
  for (int c = LowCol; c <= HighCol; ++c) {
    for (int r = LowRow; r <= HighRow; ++r) {
      DestMat->SetVal(c - LowCol + 1, r - LowRow + 1, GetVal(c, r, Layer, TimeSlot));
    }
  }
  DestMat->Changed();
}

int TMat4D::CopyLayerToArray(TDouble2DArray& DestArray, int LowCol, int HighCol, int LowRow,
                             int HighRow, int Layer, int TimeSlot) const {
  if (const int code = CodeOfSlice(Layer, TimeSlot); code != 0) return code;
  MakeValidColRange(LowCol, HighCol);
  MakeValidRowRange(LowRow, HighRow);
  Guarded([&] { DestArray.SetLength(HighCol - LowCol + 1, HighRow - LowRow + 1); });
  double* next = DestArray.data();
  for (int c = LowCol; c <= HighCol; ++c) {
    for (int r = LowRow; r <= HighRow; ++r) *next++ = GetVal(c, r, Layer, TimeSlot);
  }
  return 0;
}

namespace {

/// The last index of an array, counted from 0; a dimension may be longer than indices reach.
int LastIndex(std::size_t length) {
  constexpr std::size_t most = std::numeric_limits<int>::max();
  return static_cast<int>(std::min(length, most)) - 1;
}

}  // namespace

int TMat4D::CopyArrayToLayer(const TDouble2DArray& SrcArray, int Col, int Row, int Layer,
                             int TimeSlot) {
  if (const int code = CodeOfSlice(Layer, TimeSlot); code != 0) return code;
  const TGridBlock<4> all{{0, 0, 0, 0},
                          {LastIndex(SrcArray.Length(0)), LastIndex(SrcArray.Length(1)), 0, 0}};
  StoreBlock(all, Col, Row, Layer, TimeSlot,
             [&](int c, int r, int, int) { return SrcArray(c, r); });
  return 0;
}

void TMat4D::CopyTimeSlotToMat3D(TMat3D* DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                                 int LowLay, int HighLay, int TimeSlot) const {
  if (!DestMat) return;
  RequireTimeSlot(TimeSlot);
  const auto block = Clamped(LowCol, HighCol, LowRow, HighRow, LowLay, HighLay, TimeSlot, TimeSlot);
  const auto size = [&](std::size_t d) { return static_cast<int>(block.Size(d)); };
  DestMat->Resize(size(0), size(1), size(2));
  for (int z = 1; z <= size(2); ++z) {
    for (int y = 1; y <= size(1); ++y) {
      for (int x = 1; x <= size(0); ++x) {
        DestMat->SetVal(
            x, y, z,
            GetVal(x + block.Low[0] - 1, y + block.Low[1] - 1, z + block.Low[2] - 1, TimeSlot));
      }
    }
  }
}

int TMat4D::CopyTimeSlotToArray(TDouble3DArray& DestMat, int LowCol, int HighCol, int LowRow,
                                int HighRow, int LowLay, int HighLay, int TimeSlot) const {
  if (!HasTimeSlot(TimeSlot)) return -1;
  const auto block = Clamped(LowCol, HighCol, LowRow, HighRow, LowLay, HighLay, TimeSlot, TimeSlot);
  Guarded([&] { DestMat.SetLength(block.Size(0), block.Size(1), block.Size(2)); });
  for (int z = block.Low[2]; z <= block.High[2]; ++z) {
    for (int y = block.Low[1]; y <= block.High[1]; ++y) {
      for (int x = block.Low[0]; x <= block.High[0]; ++x) {
        DestMat(x - block.Low[0], y - block.Low[1], z - block.Low[2]) = GetVal(x, y, z, TimeSlot);
      }
    }
  }
  return 0;
}

void TMat4D::CopyMatrixToLayer(const TMatrix* SrcMat, int SrcLowCol, int SrcHighCol, int SrcLowRow,
                               int SrcHighRow, int Layer, int TimeSlot, int LayLowCol,
                               int LayLowRow) {
  if (!SrcMat) return;
  RequireLayer(Layer);
  RequireTimeSlot(TimeSlot);
  SrcMat->MakeValidColRange(SrcLowCol, SrcHighCol);
  SrcMat->MakeValidRowRange(SrcLowRow, SrcHighRow);
  StoreBlock({{SrcLowCol, SrcLowRow, 0, 0}, {SrcHighCol, SrcHighRow, 0, 0}}, LayLowCol, LayLowRow,
             Layer, TimeSlot, [&](int c, int r, int, int) { return SrcMat->GetVal(c, r); });
}

void TMat4D::CopyMat3DToTimeSlot(const TMat3D* SrcMat, int SrcLowCol, int SrcHighCol, int SrcLowRow,
                                 int SrcHighRow, int SrcLowLay, int SrcHighLay, int TimeSlot,
                                 int DestCol, int DestRow, int DestLayer) {
  if (!SrcMat) return;
  RequireTimeSlot(TimeSlot);
  SrcMat->MakeValidColRange(SrcLowCol, SrcHighCol);
  SrcMat->MakeValidRowRange(SrcLowRow, SrcHighRow);
  SrcMat->MakeValidLayerRange(SrcLowLay, SrcHighLay);
  StoreBlock({{SrcLowCol, SrcLowRow, SrcLowLay, 0}, {SrcHighCol, SrcHighRow, SrcHighLay, 0}},
             DestCol, DestRow, DestLayer, TimeSlot,
             [&](int c, int r, int l, int) { return SrcMat->GetVal(c, r, l); });
}

int TMat4D::CopyArrayToTimeSlot(const TDouble3DArray& SrcMat, int SrcLowCol, int SrcHighCol,
                                int SrcLowRow, int SrcHighRow, int SrcLowLay, int SrcHighLay,
                                int TimeSlot, int DestCol, int DestRow, int DestLayer) {
  TGridBlock<4> from{{SrcLowCol, SrcLowRow, SrcLowLay, 0}, {SrcHighCol, SrcHighRow, SrcHighLay, 0}};
  bool lies[3] = {};
  for (std::size_t d = 0; d < 3; ++d) {
    const int last = LastIndex(SrcMat.Length(static_cast<int>(d)));
    if (from.Low[d] == 0 && from.High[d] == 0) from.High[d] = last;
    lies[d] =
        std::min(from.Low[d], from.High[d]) >= 0 && std::max(from.Low[d], from.High[d]) <= last;
  }
  const int code =
      LastFailing({lies[0], lies[1], lies[2], HasTimeSlot(TimeSlot), IsIndex(DestCol, FNumX),
                   IsIndex(DestRow, FNumY), HasLayer(DestLayer)});
  if (code != 0) return code;
  StoreBlock(from, DestCol, DestRow, DestLayer, TimeSlot,
             [&](int c, int r, int l, int) { return SrcMat(c, r, l); });
  return 0;
}

int TMat4D::CopyPixelTo1DArray(TDoubleArray& Dest, int Col, int Row, int TimeSlot) const {
  const int code = LastFailing({IsIndex(Col, FNumX), IsIndex(Row, FNumY), HasTimeSlot(TimeSlot)});
  if (code != 0) return code;
  Guarded([&] { Dest.resize(static_cast<std::size_t>(FNumZ)); });
  for (int z = 1; z <= FNumZ; ++z) {
    Dest[static_cast<std::size_t>(z - 1)] = GetVal(Col, Row, z, TimeSlot);
  }
  return 0;
}

int TMat4D::CopyPixelToVector(TVector* Dest, int Col, int Row, int TimeSlot) const {
  const int code = LastFailing({IsIndex(Col, FNumX), IsIndex(Row, FNumY), HasTimeSlot(TimeSlot)});
  if (code != 0 || !Dest) return code;
  Dest->Resize(FNumZ);
  for (int z = 1; z <= FNumZ; ++z) Dest->SetVal(z, GetVal(Col, Row, z, TimeSlot));
  return 0;
}

int TMat4D::Copy1DArrayToPixel(std::span<const double> Src, int Col, int Row, int FirstLayer,
                               int TimeSlot) {
  const int code = LastFailing(
      {IsIndex(Col, FNumX), IsIndex(Row, FNumY), HasLayer(FirstLayer), HasTimeSlot(TimeSlot)});
  if (code != 0) return code;
  int z = FirstLayer;
  for (const double x : Src) {
    if (z > FNumZ) break;
    SetVal(Col, Row, z++, TimeSlot, x);
  }
  return 0;
}

int TMat4D::CopyVectorToPixel(const TVector* Src, int Col, int Row, int FirstLayer, int TimeSlot) {
  const auto values =
      Src ? std::span<const double>(Src->begin(), Src->end()) : std::span<const double>();
  return Copy1DArrayToPixel(values, Col, Row, FirstLayer, TimeSlot);
}

// Free routines.

namespace {

/// Number of indices of a range, 0 for a reversed one.
std::int64_t Extent(int low, int high) {
  return std::max<std::int64_t>(0, std::int64_t{high} - low + 1);
}

/// Element of an array, 0 outside.
double ElementOf(const TDouble3DArray& array, int c, int r, int l) {
  const bool exists = c >= 0 && r >= 0 && l >= 0 && static_cast<std::size_t>(c) < array.Length(0) &&
                      static_cast<std::size_t>(r) < array.Length(1) &&
                      static_cast<std::size_t>(l) < array.Length(2);
  return exists ? array(c, r, l) : 0;
}

/// Sizes an array for a rectangle and stores get(c, r).
template <class Get>
void FillRectangle(TDouble2DArray& dest, int LowCol, int HighCol, int LowRow, int HighRow,
                   Get&& get) {
  TDouble2DArray filled(Extent(LowCol, HighCol), Extent(LowRow, HighRow));
  double* next = filled.data();
  for (std::size_t i = 0; i < filled.Length(0); ++i) {
    for (std::size_t j = 0; j < filled.Length(1); ++j) {
      *next++ = get(LowCol + static_cast<int>(i), LowRow + static_cast<int>(j));
    }
  }
  dest.swap(filled);
}

}  // namespace

void CopyArr3DLayerToArr2D(const TDouble3DArray& Arr, TDouble2DArray& Dest, int LowCol, int HighCol,
                           int LowRow, int HighRow, int Layer) {
  FillRectangle(Dest, LowCol, HighCol, LowRow, HighRow,
                [&](int c, int r) { return ElementOf(Arr, c, r, Layer); });
}

void CopyArr3DLayerToMatrix(const TDouble3DArray& Arr, TMatrix* DestMat, int LowCol, int HighCol,
                            int LowRow, int HighRow, int Layer) {
  if (!DestMat) return;
  constexpr std::int64_t most = std::numeric_limits<int>::max();
  const auto columns = static_cast<int>(std::min(most, Extent(LowCol, HighCol)));
  const auto rows = static_cast<int>(std::min(most, Extent(LowRow, HighRow)));
  DestMat->Resize(columns, rows);
  for (int c = 0; c < columns; ++c) {
    for (int r = 0; r < rows; ++r) {
      DestMat->SetVal(c + 1, r + 1, ElementOf(Arr, LowCol + c, LowRow + r, Layer));
    }
  }
  DestMat->Changed();
}

void CopyMatrixToArray(const TMatrix* Mat, TDouble2DArray& Dest, int LowCol, int HighCol,
                       int LowRow, int HighRow) {
  FillRectangle(Dest, LowCol, HighCol, LowRow, HighRow,
                [&](int c, int r) { return Mat ? Mat->GetVal(c, r) : 0; });
}

}  // namespace zel
