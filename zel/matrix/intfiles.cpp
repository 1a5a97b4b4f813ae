// TIntMatrix: files and streams of either form.
#include "zel/matrix/files_impl.h"
#include "zel/matrix/intmatrix_impl.h"

namespace zel {

/// Calls use(bounds, view) with a rectangle, or with a dense copy of it.
template <class Use>
decltype(auto) TIntMatrix::WithRectangle(int LoC, int LoR, int HiC, int HiR, Use&& use) const {
  const TCells cells = Clamped(LoC, LoR, HiC, HiR);
  const detail::TBounds bounds{cells.LowCol, cells.LowRow, cells.HighCol, cells.HighRow};
  if (!FIsSparse) return use(bounds, View(cells));
  const TInt2DArray copy = CellsOf(cells);
  const kernels::MatrixSpan<const int> view{copy.data(), cells.Rows(), cells.Columns(),
                                            cells.Rows()};
  return use(bounds, view);
}

void TIntMatrix::SaveToStream(std::unique_ptr<TMemoryStream>& OutStream, int LoC, int LoR, int HiC,
                              int HiR) const {
  if (!OutStream) Guarded([&] { OutStream = std::make_unique<TMemoryStream>(); });
  SaveToStream(static_cast<std::ostream&>(*OutStream), LoC, LoR, HiC, HiR);
}

void TIntMatrix::SaveToStream(std::ostream& OutStream, int LoC, int LoR, int HiC, int HiR) const {
  WithRectangle(LoC, LoR, HiC, HiR, [&](const detail::TBounds& bounds, auto cells) {
    detail::WriteRecord(OutStream, bounds, cells);
  });
}

bool TIntMatrix::StoreOnFile(int LoC, int LoR, int HiC, int HiR, std::string_view FileName) const {
  return WithRectangle(LoC, LoR, HiC, HiR, [&](const detail::TBounds& bounds, auto cells) {
    return Guarded([&] { return detail::StoreNumberFile(FileName, bounds, cells, {}); });
  });
}

bool TIntMatrix::LoadFromStream(std::istream* InStream, bool AdjustMatrixSize) {
  return Edit([&](TNumMatrix& m) { return m.LoadFromStream(InStream, AdjustMatrixSize); });
}

bool TIntMatrix::LoadFromFile(std::string_view FileName, bool AdjustMatrixSize) {
  return Edit([&](TNumMatrix& m) { return m.LoadFromFile(FileName, AdjustMatrixSize); });
}

}  // namespace zel
