// TIntMatrix: operations that a sparse matrix does on its records or on a dense copy.
#include "zel/kernels/minmax.h"
#include "zel/kernels/rows.h"
#include "zel/kernels/sums.h"
#include "zel/matrix/intmatrix_impl.h"
#include "zel/matrix/rules_impl.h"

namespace zel {

/// Calls operation(matrix) with this matrix or a dense copy.
template <class Operation>
decltype(auto) TIntMatrix::Read(Operation&& operation) const {
  if (!FIsSparse) return operation(static_cast<const TNumMatrix&>(*this));
  TDenseCopy copy(*this, *this);
  return operation(static_cast<const TNumMatrix&>(*copy));
}

/// Calls operation(matrix, rectangle...) with this matrix or a dense copy of the rectangle.
template <class Operation>
decltype(auto) TIntMatrix::ReadCells(int LowCol, int LowRow, int HighCol, int HighRow,
                                     Operation&& operation) const {
  if (!FIsSparse) {
    return operation(static_cast<const TNumMatrix&>(*this), LowCol, LowRow, HighCol, HighRow);
  }
  TDenseCopy copy(*this, Clamped(LowCol, LowRow, HighCol, HighRow), *this);
  return operation(static_cast<const TNumMatrix&>(*copy), 0, 0, 0, 0);
}

void TIntMatrix::TakeContents(TDenseCopy& contents) {
  TIntMatrix& dense = contents.Matrix();
  const int columns = dense.NrOfColumns();
  const int rows = dense.NrOfRows();
  if (FIsSparse) {
    int count = 0;
    TRecords records = RecordsOf(dense.Elements(), rows, FAllocBy, count);
    SetRecords(records, count);
    FNCol = columns;
    FNRow = rows;
  } else {
    TInt2DArray cells;
    Guarded([&] {
      cells.SetLength(std::max(columns, 1), std::max(rows, 1));
      std::copy(dense.begin(), dense.end(), cells.begin());
    });
    TakeOver(cells, columns, rows);
  }
}

/// Edit with a second operand.
template <class Operation>
bool TIntMatrix::EditWith(const TIntMatrix* MatB, Operation&& operation) {
  if (!MatB) return false;
  if (!MatB->FIsSparse) {
    return Edit([&](TNumMatrix& m) { return operation(m, static_cast<const TNumMatrix*>(MatB)); });
  }
  TDenseCopy b(*MatB, *this);
  return Edit([&](TNumMatrix& m) { return operation(m, static_cast<const TNumMatrix*>(&*b)); });
}

/// Runs a product of matrices, operation(a, b, result), on dense copies if one of them is sparse.
template <class Operation>
bool TIntMatrix::Produce(const TIntMatrix* MatB, TIntMatrix* MatRes, Operation&& operation) {
  if (!MatB || !MatRes) return false;
  if (!FIsSparse && !MatB->FIsSparse && !MatRes->FIsSparse) {
    return operation(static_cast<TNumMatrix&>(*this), MatB, MatRes);
  }
  TDenseCopy a(*this, *this);
  TDenseCopy b(*MatB, *this);
  TDenseCopy result(*this);
  if (!operation(*a, &b.Matrix(), &result.Matrix())) return false;
  const bool resized = MatRes->NrOfColumns() != result.Matrix().NrOfColumns() ||
                       MatRes->NrOfRows() != result.Matrix().NrOfRows();
  MatRes->TakeContents(result);
  if (resized) MatRes->Changed();
  MatRes->Changed();
  Changed();
  return true;
}

/// Runs a product with a vector, operation(a).
template <class Operation>
bool TIntMatrix::Produce(Operation&& operation) {
  if (!FIsSparse) return operation(static_cast<TNumMatrix&>(*this));
  TDenseCopy a(*this, *this);
  if (!operation(*a)) return false;
  Changed();
  return true;
}

void TIntMatrix::Fill(int LowCol, int HighCol, int LowRow, int HighRow, int value) {
  Edit([&](TNumMatrix& m) { return m.Fill(LowCol, HighCol, LowRow, HighRow, value), true; });
}

void TIntMatrix::FillDiag(int value) {
  Edit([&](TNumMatrix& m) { return m.FillDiag(value), true; });
}

bool TIntMatrix::RemoveColumn(int col) {
  return Edit([&](TNumMatrix& m) { return m.RemoveColumn(col); });
}

bool TIntMatrix::RemoveRow(int row) {
  return Edit([&](TNumMatrix& m) { return m.RemoveRow(row); });
}

void TIntMatrix::ExchangeColumns(int c1, int c2) {
  Edit([&](TNumMatrix& m) { return m.ExchangeColumns(c1, c2), true; });
}

void TIntMatrix::ExchangeRows(int r1, int r2) {
  Edit([&](TNumMatrix& m) { return m.ExchangeRows(r1, r2), true; });
}

void TIntMatrix::MirrorColumns() {
  Edit([](TNumMatrix& m) { return m.MirrorColumns(), true; });
}

void TIntMatrix::MirrorRows() {
  Edit([](TNumMatrix& m) { return m.MirrorRows(), true; });
}

void TIntMatrix::SortRows(int SortColIx, bool Ascending, int LowCol, int LowRow, int HighCol,
                          int HighRow) {
  Edit([&](TNumMatrix& m) {
    return m.SortRows(SortColIx, Ascending, LowCol, LowRow, HighCol, HighRow), true;
  });
}

void TIntMatrix::SortCols(int SortRowIx, bool Ascending, int LowCol, int LowRow, int HighCol,
                          int HighRow) {
  Edit([&](TNumMatrix& m) {
    return m.SortCols(SortRowIx, Ascending, LowCol, LowRow, HighCol, HighRow), true;
  });
}

bool TIntMatrix::Transpose() {
  return Edit([](TNumMatrix& m) { return m.Transpose(); });
}

bool TIntMatrix::Add(const TIntMatrix* MatB) {
  return EditWith(MatB, [](TNumMatrix& m, const TNumMatrix* b) { return m.Add(b); });
}

bool TIntMatrix::Subtract(const TIntMatrix* MatB) {
  return EditWith(MatB, [](TNumMatrix& m, const TNumMatrix* b) { return m.Subtract(b); });
}

void TIntMatrix::SMult(int Scalar) {
  Edit([&](TNumMatrix& m) { return m.SMult(Scalar), true; });
}

void TIntMatrix::SAdd(int Scalar) {
  Edit([&](TNumMatrix& m) { return m.SAdd(Scalar), true; });
}

bool TIntMatrix::EMult(const TIntMatrix* MatB, TIntMatrix* MatRes) {
  return Produce(MatB, MatRes, [](TNumMatrix& a, const TNumMatrix* b, TNumMatrix* result) {
    return a.EMult(b, result);
  });
}

bool TIntMatrix::Multiply(const TIntMatrix* MatB, TIntMatrix* MatRes) {
  return Produce(MatB, MatRes, [](TNumMatrix& a, const TNumMatrix* b, TNumMatrix* result) {
    return a.Multiply(b, result);
  });
}

bool TIntMatrix::MultiplyTransposed(const TIntMatrix* MatB, TIntMatrix* MatRes) {
  return Produce(MatB, MatRes, [](TNumMatrix& a, const TNumMatrix* b, TNumMatrix* result) {
    return a.MultiplyTransposed(b, result);
  });
}

bool TIntMatrix::TransposeAndMultiply(const TIntMatrix* MatB, TIntMatrix* MatRes) {
  return Produce(MatB, MatRes, [](TNumMatrix& a, const TNumMatrix* b, TNumMatrix* result) {
    return a.TransposeAndMultiply(b, result);
  });
}

bool TIntMatrix::Multiply(const TIntVector* VecB, TIntVector* VecRes) {
  return Produce([&](TNumMatrix& a) { return a.Multiply(VecB, VecRes); });
}

bool TIntMatrix::TransposeAndMultiply(const TIntVector* VecB, TIntVector* VecRes) {
  return Produce([&](TNumMatrix& a) { return a.TransposeAndMultiply(VecB, VecRes); });
}

void TIntMatrix::Find(int LowCol, int HighCol, int LowRow, int HighRow, int Value, int& ColIx,
                      int& RowIx) const {
  Read([&](const TNumMatrix& m) { m.Find(LowCol, HighCol, LowRow, HighRow, Value, ColIx, RowIx); });
}

int TIntMatrix::FindInSortedColumn(int Col, bool ColIsAscending, int Value) const {
  return Read(
      [&](const TNumMatrix& m) { return m.FindInSortedColumn(Col, ColIsAscending, Value); });
}

std::string TIntMatrix::CRCofData() const {
  return Read([](const TNumMatrix& m) { return m.CRCofData(); });
}

int TIntMatrix::Sum(int LoC, int LoR, int HiC, int HiR) const {
  const TCells cells = Clamped(LoC, LoR, HiC, HiR);
  std::uint32_t sum = 0;
  if (FIsSparse) {
    ForEachStored(cells,
                  [&](const TSpMatElemInt& x) { sum += static_cast<std::uint32_t>(x.value); });
  } else {
    kernels::forEachColumn(View(cells), [&](std::size_t, std::span<const int> x) {
      sum += static_cast<std::uint32_t>(kernels::integerSum(x));
    });
  }
  return static_cast<int>(sum);
}

int TIntMatrix::Trace() const {
  if (NrOfColumns() != NrOfRows()) return 0;
  std::uint32_t sum = 0;
  if (FIsSparse) {
    for (const TSpMatElemInt& x : StoredCells()) {
      if (x.colidx == x.rowidx) sum += static_cast<std::uint32_t>(x.value);
    }
  } else {
    for (int i = 1; i <= NrOfRows(); ++i) sum += static_cast<std::uint32_t>(GetVal(i, i));
  }
  return static_cast<int>(sum);
}

void TIntMatrix::MinMax(int LowCol, int LowRow, int HighCol, int HighRow, int& Minimum,
                        int& Maximum) const {
  if (!FIsSparse) return TNumMatrix::MinMax(LowCol, LowRow, HighCol, HighRow, Minimum, Maximum);
  kernels::MinMaxStart<int> range = detail::kExtremesStart<int>;
  ForEachStored(Clamped(LowCol, LowRow, HighCol, HighRow), [&](const TSpMatElemInt& x) {
    const auto found = kernels::minMax(std::span(&x.value, 1), range);
    range = {found.minimum, found.maximum};
  });
  Minimum = range.minimum;
  Maximum = range.maximum;
}

void TIntMatrix::MeanVar(int LowCol, int LowRow, int HighCol, int HighRow, double& Mean,
                         double& Variance) const {
  ReadCells(LowCol, LowRow, HighCol, HighRow,
            [&](const TNumMatrix& m, auto... cells) { m.MeanVar(cells..., Mean, Variance); });
}

double TIntMatrix::GeometricMean(int LowCol, int LowRow, int HighCol, int HighRow) const {
  return ReadCells(LowCol, LowRow, HighCol, HighRow,
                   [](const TNumMatrix& m, auto... cells) { return m.GeometricMean(cells...); });
}

double TIntMatrix::HarmonicMean(int LowCol, int LowRow, int HighCol, int HighRow) const {
  return ReadCells(LowCol, LowRow, HighCol, HighRow,
                   [](const TNumMatrix& m, auto... cells) { return m.HarmonicMean(cells...); });
}

void TIntMatrix::SkewKurt(int LowCol, int LowRow, int HighCol, int HighRow, double& Skewness,
                          double& Kurtosis) const {
  ReadCells(LowCol, LowRow, HighCol, HighRow,
            [&](const TNumMatrix& m, auto... cells) { m.SkewKurt(cells..., Skewness, Kurtosis); });
}

void TIntMatrix::SkewKurtSample(int LowCol, int LowRow, int HighCol, int HighRow, double& Skewness,
                                double& Kurtosis) const {
  ReadCells(LowCol, LowRow, HighCol, HighRow, [&](const TNumMatrix& m, auto... cells) {
    m.SkewKurtSample(cells..., Skewness, Kurtosis);
  });
}

bool TIntMatrix::Quartiles(int LowCol, int LowRow, int HighCol, int HighRow, double& Q1, double& Q2,
                           double& Q3) const {
  return ReadCells(LowCol, LowRow, HighCol, HighRow, [&](const TNumMatrix& m, auto... cells) {
    return m.Quartiles(cells..., Q1, Q2, Q3);
  });
}

double TIntMatrix::Percentile(double prob, int LowCol, int LowRow, int HighCol, int HighRow) const {
  return ReadCells(LowCol, LowRow, HighCol, HighRow, [&](const TNumMatrix& m, auto... cells) {
    return m.Percentile(prob, cells...);
  });
}

double TIntMatrix::Percentile(double prob, int LowCol, int LowRow, int HighCol, int HighRow,
                              int SampleSize) const {
  return ReadCells(LowCol, LowRow, HighCol, HighRow, [&](const TNumMatrix& m, auto... cells) {
    return m.Percentile(prob, cells..., SampleSize);
  });
}

bool TIntMatrix::Histogram(int LoX, int LoY, int HiX, int HiY, int FirstBin, int LastBin,
                           int BinWidth, TIntVector* Histo, int& Underflow, int& Overflow,
                           int& MaxCnt) const {
  return ReadCells(LoX, LoY, HiX, HiY, [&](const TNumMatrix& m, auto... cells) {
    return m.Histogram(cells..., FirstBin, LastBin, BinWidth, Histo, Underflow, Overflow, MaxCnt);
  });
}

int TIntMatrix::CountValues(int LowCol, int HighCol, int LowRow, int HighRow, int RangeLow,
                            int RangeHigh) const {
  return ReadCells(LowCol, LowRow, HighCol, HighRow,
                   [&](const TNumMatrix& m, int loC, int loR, int hiC, int hiR) {
                     return m.CountValues(loC, hiC, loR, hiR, RangeLow, RangeHigh);
                   });
}

int TIntMatrix::CountMaskedZeros(int LowCol, int HighCol, int LowRow, int HighRow,
                                 std::uint32_t Bitmask) const {
  const TCells cells = Clamped(LowCol, LowRow, HighCol, HighRow);
  std::size_t zeros = 0;
  const auto count = [&](int x) { zeros += (static_cast<std::uint32_t>(x) & Bitmask) == 0; };
  if (FIsSparse) {
    zeros = cells.Count();
    ForEachStored(cells, [&](const TSpMatElemInt& x) {
      --zeros;
      count(x.value);
    });
  } else {
    kernels::forEachColumn(View(cells), [&](std::size_t, std::span<const int> column) {
      for (const int x : column) count(x);
    });
  }
  return static_cast<int>(zeros);
}

int TIntMatrix::Dichotomize(int Threshold, TBool2DArray& ResultArray) const {
  return Read([&](const TNumMatrix& m) { return m.Dichotomize(Threshold, ResultArray); });
}

void TIntMatrix::MeanVec(TDims Dim, TVector* Means) const {
  Read([&](const TNumMatrix& m) { m.MeanVec(Dim, Means); });
}

void TIntMatrix::EdgeVector(TOrientation Orient, TEdgeOp EdgeOp, TVector* DestVec) const {
  Read([&](const TNumMatrix& m) { m.EdgeVector(Orient, EdgeOp, DestVec); });
}

}  // namespace zel
