#include "zel/matrix/TMatrix.h"

#include <algorithm>
#include <limits>

#include "zel/base/rounding.h"
#include "zel/foundation/randoms.h"
#include "zel/matrix/TIntMatrix.h"
#include "zel/matrix/TMat3D.h"
#include "zel/matrix/container_impl.h"
#include "zel/matrix/copies_impl.h"

namespace zel {

TMatrix::TMatrix(TComponent* AOwner) : TNumMatrix(AOwner) {}

TMatrix::TMatrix(std::initializer_list<std::initializer_list<double>> rows) { SetRows(rows); }

TMatrix::~TMatrix() = default;

std::string_view TMatrix::ClassName() const { return "TMatrix"; }

void TMatrix::Assign(const TPersistent* Source) {
  const auto* source = dynamic_cast<const TMatrix*>(Source);
  if (!source) return TComponent::Assign(Source);
  if (source == this) return;
  // Whatever may throw comes before anything of this object changes.
  TDouble2DArray copy;
  Guarded([&] { source->CopyToArray(copy, 0, 0, 0, 0); });
  Guarded(
      [&] { copy.SetLength(std::max(source->NrOfColumns(), 1), std::max(source->NrOfRows(), 1)); });
  std::string id = source->DataID();
  TNotifyEvent change = source->OnChange;
  TSortExchgEvent exchange = source->OnSortExchange;
  TOnCalcDistanceEvent distance = source->OnCalcDistance;
  TakeOver(copy, source->NrOfColumns(), source->NrOfRows());
  SetDataID(std::move(id));
  std::copy(std::begin(source->FPrecis), std::end(source->FPrecis), std::begin(FPrecis));
  OnChange.swap(change);
  OnSortExchange.swap(exchange);
  OnCalcDistance.swap(distance);
}

void TMatrix::AssignTo(TPersistent* Dest) const {
  auto* dest = dynamic_cast<TMatrix*>(Dest);
  if (!dest) return TComponent::AssignTo(Dest);
  dest->Assign(this);
}

bool TMatrix::InsertRow(int row) {
  if (row < 1 || row - 1 > NrOfRows()) return false;
  Guarded([&] { OpenRow(row); });
  Changed();
  return true;
}

void TMatrix::Adopt(TDouble2DArray&& Contents) {
  constexpr auto most = static_cast<std::size_t>(std::numeric_limits<int>::max());
  const std::size_t columns = Contents.Length(0);
  const std::size_t rows = Contents.Length(1);
  if (std::max(columns, rows) > most) RaiseNoMemory();
  // Also an empty matrix has a cell.
  Guarded([&] {
    Contents.SetLength(std::max<std::size_t>(columns, 1), std::max<std::size_t>(rows, 1));
  });
  TakeOver(Contents, static_cast<int>(columns), static_cast<int>(rows));
  Changed();
}

void TMatrix::SetFPrecis(int ix, int value) { FPrecis[ix > 1 ? 1 : 0] = std::clamp(value, -1, 25); }

void TMatrix::CopyFrom(const TIntMatrix* MatSource, int SourceColLo, int SourceRowLo,
                       int SourceColHi, int SourceRowHi, int DestCol, int DestRow) {
  if (!MatSource) return;
  CopyRectangle(MatSource->NrOfColumns(), MatSource->NrOfRows(), SourceColLo, SourceRowLo,
                SourceColHi, SourceRowHi, DestCol, DestRow,
                [&](int c, int r) { return MatSource->GetVal(c, r); });
}

void TMatrix::CopyFrom(const TMat3D* MatSource, int SourceColLo, int SourceRowLo, int SourceColHi,
                       int SourceRowHi, int SourceLayer, int DestCol, int DestRow) {
  if (!MatSource) return;
  SourceLayer = std::clamp(SourceLayer, 1, MatSource->NrOfLayers());
  CopyRectangle(MatSource->NrOfColumns(), MatSource->NrOfRows(), SourceColLo, SourceRowLo,
                SourceColHi, SourceRowHi, DestCol, DestRow,
                [&](int c, int r) { return MatSource->GetVal(c, r, SourceLayer); });
}

void TMatrix::CopyToArray(TInt2DArray& DestArray, int LowCol, int HighCol, int LowRow,
                          int HighRow) const {
  const TCells cells = Clamped(LowCol, LowRow, HighCol, HighRow);
  Guarded([&] { DestArray.SetLength(cells.Columns(), cells.Rows()); });
  int* next = DestArray.data();
  for (int c = cells.LowCol; c <= cells.HighCol; ++c) {
    for (int r = cells.LowRow; r <= cells.HighRow; ++r) *next++ = RoundToInt<int>(GetVal(c, r));
  }
}

void TMatrix::CopyFromArray(const TInt2DArray& SrcArray, int Col, int Row) {
  StoreEach(Col, Row, static_cast<std::int64_t>(SrcArray.Length(0)),
            static_cast<std::int64_t>(SrcArray.Length(1)),
            [&](std::int64_t i, std::int64_t j) { return static_cast<double>(SrcArray(i, j)); });
}

template <class Next>
void TMatrix::FillBy(const TCells& cells, Next&& next) {
  const auto view = View();
  for (int c = cells.LowCol; c <= cells.HighCol; ++c) {
    for (int r = cells.LowRow; r <= cells.HighRow; ++r) {
      view(static_cast<std::size_t>(r - 1), static_cast<std::size_t>(c - 1)) = next();
    }
  }
  Changed();
}

void TMatrix::FillRandomUniform(double RangeLow, double RangeHigh) {
  FillRandomUniform(0, 0, 0, 0, RangeLow, RangeHigh);
}

void TMatrix::FillRandomUniform(int LowCol, int HighCol, int LowRow, int HighRow, double RangeLow,
                                double RangeHigh) {
  FillBy(Clamped(LowCol, LowRow, HighCol, HighRow),
         [&] { return Random() * (RangeHigh - RangeLow) + RangeLow; });
}

void TMatrix::FillRandomGauss(double Mean, double StdDev) {
  FillRandomGauss(0, 0, 0, 0, Mean, StdDev);
}

void TMatrix::FillRandomGauss(int LowCol, int HighCol, int LowRow, int HighRow, double Mean,
                              double StdDev) {
  FillBy(Clamped(LowCol, LowRow, HighCol, HighRow), [&] { return GRandom() * StdDev + Mean; });
}

}  // namespace zel
