/// @file
/// Dense matrix of doubles.
#pragma once

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <vector>

#include "zel/matrix/matrixbase.h"

namespace zel {

class TIntMatrix;
class TMat3D;

/// Distance of two rows by the caller's own measure; the handler stores it in Distance.
using TOnCalcDistanceEvent =
    std::function<void(TObject* Sender, int Row1, int Row2, double& Distance)>;

/// Matrix norms: largest column sum, largest row sum, largest singular value, root of the sum of
/// squares.
enum TNormType : std::uint8_t { ntColwise, ntRowwise, ntSpectral, ntFrobenius };

/// Dense matrix of doubles. See TNumMatrix for the conventions and the members shared with other
/// element types.
///
/// Element (c, r) is column c, row r: A(i, j) of a text book is GetVal(j, i). Products sum over the
/// inner index upwards, by fused multiply-add: one rounding per term, the same bits on every
/// machine and for every number of threads.
class ZEL_API TMatrix : public TNumMatrix<double> {
 public:
  using TNumMatrix::CopyFrom;
  using TNumMatrix::CopyFromArray;
  using TNumMatrix::CopyToArray;

  /// Supplies the distances of mode dmUser.
  TOnCalcDistanceEvent OnCalcDistance;

  explicit TMatrix(TComponent* AOwner = nullptr);
  /// Rows in braces: TMatrix{{1, 2, 3}, {4, 5, 6}} has three columns and two rows.
  /// @throws EZELMatrixError  `: matrices do not match` if the rows differ in length
  TMatrix(std::initializer_list<std::initializer_list<double>> rows);
  ~TMatrix() override;
  [[nodiscard]] std::string_view ClassName() const override;

  /// Copies size, DataID, elements, both precisions and the handlers OnChange, OnSortExchange and
  /// OnCalcDistance of a TMatrix; OnChange is not fired.
  /// @throws EConvertError    for a source of another class, or null
  /// @throws EZELMatrixError  `: not enough memory on heap`; the matrix is unchanged then
  void Assign(const TPersistent* Source) override;
  void AssignTo(TPersistent* Dest) const override;

  /// Settings of the text and file writers, -1..25: slot 1 (any ix below 2) and slot 2; 15 and -1
  /// at first. Values are limited.
  [[nodiscard]] int GetFPrecis(int ix) const { return FPrecis[ix > 1 ? 1 : 0]; }
  void SetFPrecis(int ix, int value);
  [[nodiscard]] int Precision(int ix) const { return GetFPrecis(ix); }
  void SetPrecision(int ix, int value) { SetFPrecis(ix, value); }

  /// CopyFrom with a source of integers.
  void CopyFrom(const TIntMatrix* MatSource, int SourceColLo, int SourceRowLo, int SourceColHi,
                int SourceRowHi, int DestCol, int DestRow);
  /// The same from a layer, whose number is limited to 1..number of layers.
  void CopyFrom(const TMat3D* MatSource, int SourceColLo, int SourceRowLo, int SourceColHi,
                int SourceRowHi, int SourceLayer, int DestCol, int DestRow);
  /// A literal null, which fits every overload: nothing happens.
  void CopyFrom(std::nullptr_t, int, int, int, int, int, int) {}

  /// Copies a rectangle, each value rounded to the nearest integer, ties to even, and limited to
  /// the range of int (not-a-number: 0).
  void CopyToArray(TInt2DArray& DestArray, int LowCol, int HighCol, int LowRow, int HighRow) const;
  void CopyFromArray(const TInt2DArray& SrcArray, int Col, int Row);

  /// Uniform values in [RangeLow, RangeHigh) from the process-wide generator.
  void FillRandomUniform(double RangeLow, double RangeHigh);
  void FillRandomUniform(int LowCol, int HighCol, int LowRow, int HighRow, double RangeLow,
                         double RangeHigh);
  /// Normal deviates.
  void FillRandomGauss(double Mean, double StdDev);
  void FillRandomGauss(int LowCol, int HighCol, int LowRow, int HighRow, double Mean,
                       double StdDev);

  // Linear algebra; see TNumMatrix for the arithmetic and the products.

  /// MatRes = A^T A / Norm, with the upper triangle computed once. The result's OnChange fires once
  /// when it is complete (and once for a resize); this matrix fires nothing.
  ///
  /// AbortMathProc stops the work; the result is false then, and MatRes holds what was computed. A
  /// progress step is made for each column. With more than one thread at most NThreads workers
  /// compute, each column adds 1 to ProcStat, and the caller's thread calls MathFeedBackProc while
  /// it waits; no worker outlives the call. The bits do not depend on the number of threads.
  /// NThreads below 1 is taken as 1; without it, it is the number of logical processors.
  bool Square(TMatrix* MatRes, double Norm);
  bool Square(TMatrix* MatRes, double Norm, int NThreads);

  /// Replaces a square matrix by its inverse. Two progress steps per column; AbortMathProc stops.
  /// OnChange fires once, whatever the outcome.
  /// @return false for a matrix that is not square or has no elements (nothing happens), with a row
  ///   of zeros (unchanged), with a pivot below 1E-100 in magnitude (it then holds the factors of
  ///   its LU decomposition), or when stopped (unchanged or partly decomposed)
  /// @throws EZELMatrixError  `: not enough memory on heap`; the matrix is unchanged then
  /// Method: LU decomposition (Crout) with implicit row scaling and partial pivoting, then one
  /// forward and one back substitution per column. O(n^3).
  bool Invert();
  /// Unit lower triangular L and upper triangular U with L U = A, its rows permuted by the
  /// pivoting; the permutation is not returned. OnChange of both fires when they are complete.
  /// @param NumPerm  +1 for an even, -1 for an odd number of row exchanges
  /// @return false if the matrix is not square or an argument is null or doubles (nothing else
  ///   changes); for a row of zeros, MatL being 0 and MatU a copy then; for a pivot below 1E-100,
  ///   which is replaced by it, MatL being 0 and MatU holding both factors then
  /// @throws EZELMatrixError  `: not enough memory on heap`
  /// Method: as Invert.
  bool LUdecomposition(TMatrix* MatL, TMatrix* MatU, int& NumPerm) const;
  /// Lower triangular L with A = L L^T, for a symmetric positive definite matrix. Reads the
  /// diagonal and the lower triangle; the strict upper triangle of this matrix takes L^T, without
  /// notification.
  /// @return false if the matrix is not square, or MatL is null or this matrix (nothing changes);
  ///   false if it is not positive definite: elements of L from the first bad pivot on may be
  ///   not-a-number then
  /// @throws EZELMatrixError  `: not enough memory on heap`
  bool CholeskyDecomp(TMatrix* MatL);
  /// Determinant by LU decomposition; 0 if the matrix is not square or a pivot is below 1E-100 in
  /// magnitude; 1 for 0 x 0. The product of the pivots does not over- or underflow on the way.
  /// @throws EZELMatrixError  `: not enough memory on heap`
  [[nodiscard]] double Determinant() const;
  /// Norm of the matrix; 0 for an empty one and for other values of nt. ntSpectral makes four
  /// progress steps per column and polls AbortMathProc.
  /// @throws EZELMatrixError  "near singular covariance matrix" if the singular value decomposition
  ///   does not converge or is stopped; `: not enough memory on heap`
  [[nodiscard]] double Norm(TNormType nt) const;
  /// Scales rows and columns by a diagonal similarity transformation until the off-diagonal
  /// absolute row and column sums are nearly equal: passes over i = 1..n divide row i and multiply
  /// column i by f = sqrt(row sum / column sum), until no f exceeds 1.05. Rows or columns whose sum
  /// is 0 are passed over. At most 1000 passes. Fires no event.
  /// @return false if the matrix is not square
  /// Method: Osborne, J. ACM 7 (1960) 338.
  bool Balance();
  /// Sum of the diagonal; 0 if the matrix is not square.
  [[nodiscard]] double Trace() const;
  /// Replaces every column by its forward differences of the given order; the matrix loses as many
  /// rows. Nothing happens unless 1 <= Order <= 10 and Order < NrOfRows.
  void Diff(int Order);
  /// HatMat = X (X^T X)^-1 X^T, the hat matrix of the regression on the columns of X.
  /// @return false if X^T X cannot be inverted or HatMat is null; HatMat is unchanged then
  /// @throws EZELMatrixError  `: not enough memory on heap`
  bool CalcHatMatrix(TMatrix* HatMat);

  // Statistics. See TNumMatrix for the others.

  /// Sum of a rectangle, in double-double, rounded once.
  /// @throws EZELMatrixError  as MeanVar
  [[nodiscard]] double Sum(int LoC, int LoR, int HiC, int HiR) const;
  /// Product-moment correlation of all elements of two matrices of the same size; 0 for fewer than
  /// three elements or if one is constant, or for null.
  /// @throws EZELMatrixError  `: matrices do not match`
  [[nodiscard]] double Correlate(const TMatrix* OtherMat) const;

  // Normalisations. Vectors may be null; where they are not resized, what exceeds their size is
  // dropped. OnChange of the matrix fires once at the end, that of the vectors for each element.
  // `: not enough memory on heap` (EZELMatrixError) leaves the matrix unchanged.

  /// (x - mean) / standard deviation for each column (row), with MeanVar's rules; without spread a
  /// column (row) stays.
  void StandardizeColumns(TVector* Means, TVector* StdDevs);
  void StandardizeRows(TVector* Means, TVector* StdDevs);
  /// (x - median) / |median - q| for each column (row), q the percentile RefQuant (in percent),
  /// both by Percentile; without difference a column (row) stays.
  void QNormalizeColumns(double RefQuant, TVector* Medians, TVector* QuantDiffs);
  void QNormalizeRows(double RefQuant, TVector* Medians, TVector* QuantDiffs);
  /// Subtracts the mean of each column (row). Means is resized to their number.
  void MeanCenterColumns(TVector* Means);
  void MeanCenterRows(TVector* Means);

  // Distances between objects, which are the rows.

  /// Distance of two rows a, b; a row outside the matrix counts as zeros. dmTanimoto
  /// sab / (saa + sbb - sab) and dmDice 2 sab / (saa + sbb) are similarities (0 for two zero rows);
  /// dmManhattan sum |a - b|; dmEuclid and dmSqrEuclid sum (a - b)^2 with and without root; dmUser
  /// what OnCalcDistance stores, 0 without handler. Other modes: 0. Plain sums over the columns,
  /// upwards.
  [[nodiscard]] double DistanceOfObjects(TDistMode Mode, int obj1, int obj2) const;
  /// Fills a distance matrix of all rows, with a zero diagonal; its OnChange fires once. The
  /// values are those of DistanceOfObjects.
  /// @return 0; -1 if DMat is not square, -2 if it does not have as many columns as this matrix has
  ///   rows (whether square or not), -3 if it is null: nothing is written then
  /// @throws EZELMatrixError  `: not enough memory on heap`
  int CalcDistMat(TDistMode Mode, TMatrix* DMat) const;

  /// Writes a number file of a rectangle: a line with the bounds LowCol, LowRow, HighCol, HighRow,
  /// then a line for each row.
  ///
  /// Precision(1) is the least width of a value, Precision(2) the number of decimals; negative, as
  /// at first: the shortest text that gives exactly the same value again, infinities included. A
  /// file written with decimals has lost the rest of the digits.
  /// @return false if the file cannot be written
  bool StoreOnFile(int LoC, int LoR, int HiC, int HiR, std::string_view FileName) const;
  using TNumMatrix::LoadFromFile;
  /// With AutoDetect: reads a table of numbers without bounds, each line a row. What follows "//"
  /// in a line does not count; if some lines carry the mark "//dig", only these are rows. OnChange
  /// fires once at the end, and for a resize.
  /// @param AdjustMatrixSize  the matrix gets the size of the table; otherwise the table must fit
  /// @return false, with nothing changed, if the file cannot be read, has no rows or rows of
  ///   different length, a word is no number, or the table does not fit
  /// @throws EZELMatrixError  `: not enough memory on heap`
  bool LoadFromFile(std::string_view FileName, bool AdjustMatrixSize, bool AutoDetect);

  /// Writes an ASC file, values in fixed-point with Precision decimals, at least 12 characters
  /// wide; a negative Precision: as the shortest text that gives exactly the same value again.
  /// Not-a-number is written as `NAN`, which readers take for a missing value.
  /// @param Comment   first line, line feeds as blanks; empty: a default that names the file
  /// @return 0; -1 if it cannot be written, an old file is left as it was then
  int ExportAsASC(std::string_view FName, int Precision, std::string_view Comment) const;
  /// The same with further columns of texts, CustData[column][row], behind the rows; what they lack
  /// is empty.
  int ExportAsASC(std::string_view FName, int Precision, std::string_view Comment,
                  const TStr2DArray& CustData) const;

  /// Inserts a row of zeros before the given one, or behind the last, in one pass. Fires OnChange.
  /// @return false, with nothing changed, unless 1 <= row <= NrOfRows() + 1
  /// @throws EZELMatrixError  `: not enough memory on heap`
  bool InsertRow(int row);
  /// Takes over an array, [column][row], with its size; nothing is copied. Fires OnChange.
  /// @throws EZELMatrixError  `: not enough memory on heap` if there are more columns or rows than
  ///   2147483647; the matrix is unchanged then
  void Adopt(TDouble2DArray&& Contents);

 private:
  /// Fills a rectangle with successive values of next().
  template <class Next>
  void FillBy(const TCells& cells, Next&& next);
  /// Replaces each element by (x - centre) / scale, where measure(elements) gives the pair for its
  /// column or row, and leaves it where the scale is not positive. The vectors take the pairs.
  template <class Measure>
  void NormalizeAlong(TDims dim, Measure&& measure, TVector* Centres, TVector* Scales);
  void Standardize(TDims dim, TVector* Means, TVector* StdDevs);
  void QNormalize(TDims dim, double RefQuant, TVector* Medians, TVector* QuantDiffs);
  void MeanCenter(TDims dim, TVector* Means);
  friend class TMatSq1ColThread;
  void SquareColumn(int column, double Norm, TMatrix& result) const;

  int FPrecis[2] = {15, -1};
};

}  // namespace zel
