/// @file
/// Dense or sparse matrix of integers.
#pragma once

#include <initializer_list>
#include <span>

#include "zel/matrix/matrixbase.h"

namespace zel {

/// A stored cell of a sparse matrix.
struct TSpMatElemInt {
  int colidx;
  int rowidx;
  int value;
  bool operator==(const TSpMatElemInt&) const = default;
};

namespace detail {
template <>
inline constexpr bool kPlainCell<TSpMatElemInt> = true;
}  // namespace detail

/// Selects the constructor of a sparse matrix: TIntMatrix M(CreateSparse, AOwner, AllocBy).
struct TCreateSparse {};
inline constexpr TCreateSparse CreateSparse{};

/// Matrix of 32-bit signed integers, dense or sparse. See TNumMatrix for the conventions and for
/// what a member does that is described only briefly here. Arithmetic wraps modulo 2^32.
///
/// The sparse form keeps the cells that were set in a list, sorted by column, then row; a cell
/// without a record is 0, a record may hold 0. Reading and overwriting a cell takes a binary
/// search, a new cell in addition moves all records behind it, so storing cells column by column is
/// the cheap order. Only the constructor, ArrayToSparse and SparseToArray choose the form.
///
/// What a sparse matrix does with an operation:
/// - GetVal, SetVal, the sizes, Fill(value), Sum, Trace, MinMax, CountMaskedZeros, Clone,
///   the copies to and from vectors, CopyFrom and CopyFromArray work on the records.
/// - The other statistics of a rectangle and CopyToArray expand that rectangle to an array, the
///   remaining reading operations the whole matrix.
/// - Operations that change elements in place (Fill of a rectangle, FillDiag, removals, exchanges,
///   mirrors, sorts, arithmetic, Transpose) and products do their work on such a copy; then the
///   cells that are not 0 become the records, and the size is kept as the operation left it.
///   OnChange fires as for a dense matrix; a handler of OnSortExchange still sees the old contents,
///   and its changes are lost. Products may mix forms and keep that of the result.
///
/// All of these raise `: not enough memory on heap` (EZELMatrixError), with nothing changed, if the
/// copy cannot be had. Column, Elements, begin and end show the dense storage, and so does a
/// reference to the base class: a matrix without elements as long as it is sparse.
class ZEL_API TIntMatrix : public TNumMatrix<int> {
 public:
  /// Dense, one column, one row, 0.
  /// @throws EZELMatrixError  `: not enough memory on heap`
  explicit TIntMatrix(TComponent* AOwner = nullptr);
  /// Rows in braces: TIntMatrix{{1, 2, 3}, {4, 5, 6}} has three columns and two rows.
  /// @throws EZELMatrixError  `: matrices do not match` if the rows differ in length
  TIntMatrix(std::initializer_list<std::initializer_list<int>> rows);
  /// Sparse, without cells, 0 columns and rows.
  /// @param AllocBy  number of records by which the list grows, at least 1
  /// @throws EZELMatrixError  `: not enough memory on heap`
  TIntMatrix(TCreateSparse, TComponent* AOwner, int AllocBy);
  ~TIntMatrix() override;
  [[nodiscard]] std::string_view ClassName() const override;

  [[nodiscard]] bool IsSparse() const { return FIsSparse; }
  /// The records of a sparse matrix in order, none of a dense one. Valid until the matrix changes.
  [[nodiscard]] std::span<const TSpMatElemInt> StoredCells() const {
    return {SpMat.data(), static_cast<std::size_t>(FSparseNumElem)};
  }

  /// Makes a dense matrix sparse: records of the cells that are not 0. The size stays, no event
  /// fires. Nothing happens if it is sparse.
  /// @throws EZELMatrixError  `: not enough memory on heap`; the matrix is unchanged then
  void ArrayToSparse(int AllocBy);
  /// Makes a sparse matrix dense. The size becomes that of the stored cells (see Resize for when
  /// it is more), 1 x 1 if there are none; no event fires. Nothing happens if it is dense.
  /// @throws EZELMatrixError  `: not enough memory on heap`; the matrix is unchanged then
  void SparseToArray();

  [[nodiscard]] int NrOfColumns() const { return FIsSparse ? FNCol : TNumMatrix::NrOfColumns(); }
  [[nodiscard]] int NrOfRows() const { return FIsSparse ? FNRow : TNumMatrix::NrOfRows(); }
  void SetNrOfColumns(int value) { Resize(value, NrOfRows()); }
  void SetNrOfRows(int value) { Resize(NrOfColumns(), value); }
  /// Sparse: sets the size and drops the records outside. A size above the stored cells lasts until
  /// SetVal stores a new cell; a size that cut cells off stays the least size after that.
  bool Resize(int Nc, int Nr);
  bool ResizeAndClear(int Nc, int Nr);
  void MakeValidColRange(int& LowCol, int& HighCol) const;
  void MakeValidRowRange(int& LowRow, int& HighRow) const;

  /// Element, 0 outside the matrix.
  [[nodiscard]] int GetVal(int Nc, int Nr) const {
    return FIsSparse ? SparseVal(Nc, Nr) : TNumMatrix::GetVal(Nc, Nr);
  }
  /// Writes an element and fires OnChange. Dense: nothing happens outside the matrix. Sparse: any
  /// index from 1 on is accepted; for a cell without a record one is made, for 0 too, and the
  /// size becomes that of the stored cells. Records are appended in amortised constant time.
  /// @throws EZELMatrixError  `: not enough memory on heap`; the matrix is unchanged then
  void SetVal(int Nc, int Nr, int Value) {
    FIsSparse ? SetSparseVal(Nc, Nr, Value) : TNumMatrix::SetVal(Nc, Nr, Value);
  }
  [[nodiscard]] int Elem(int Nc, int Nr) const { return GetVal(Nc, Nr); }
  [[nodiscard]] int operator()(int Nc, int Nr) const { return GetVal(Nc, Nr); }

  /// Size and elements; the form of this matrix stays. A sparse one takes the records (of a dense
  /// source the cells that are not 0), and OnChange fires for a resize and once at the end.
  /// @throws EZELMatrixError  `: not enough memory on heap`
  void Clone(const TIntMatrix* MatSource);
  /// Into a sparse matrix, cells of a dense source go one by one through SetVal, zeros too; of a
  /// sparse source the stored cells, and records here that have no counterpart there become 0.
  void CopyFrom(const TIntMatrix* MatSource, int SourceColLo, int SourceRowLo, int SourceColHi,
                int SourceRowHi, int DestCol, int DestRow);
  /// Into a sparse matrix every element goes through SetVal, here and in CopyFromArray.
  void CopyFromVec(TDims Dim, const TIntVector* VecSource, int Source1stElem, int SourceLastElem,
                   int DestCol, int DestRow);
  void CopyFromVec(const TIntVector* VecSource, int Source1stElem, int SourceLastElem, int DestCol,
                   int DestRow) {
    CopyFromVec(dimRows, VecSource, Source1stElem, SourceLastElem, DestCol, DestRow);
  }
  void CopyRowToVec(TIntVector* DestVec, int Row, int FirstCol, int LastCol) const;
  void CopyColToVec(TIntVector* DestVec, int Col, int FirstRow, int LastRow) const;
  void CopyToArray(TInt2DArray& DestArray, int LowCol, int HighCol, int LowRow, int HighRow) const;
  void CopyFromArray(const TInt2DArray& SrcArray, int Col, int Row);

  /// Sparse: 0 removes all records and keeps the size, another value is written to every record;
  /// cells without a record stay 0.
  /// @throws EZELMatrixError  `: not enough memory on heap`; the matrix is unchanged then
  void Fill(int value);
  void Fill(int LowCol, int HighCol, int LowRow, int HighRow, int value);
  void FillDiag(int value);

  bool RemoveColumn(int col);
  bool RemoveRow(int row);
  void ExchangeColumns(int c1, int c2);
  void ExchangeRows(int r1, int r2);
  void MirrorColumns();
  void MirrorRows();
  void SortRows(int SortColIx, bool Ascending, int LowCol, int LowRow, int HighCol, int HighRow);
  void SortCols(int SortRowIx, bool Ascending, int LowCol, int LowRow, int HighCol, int HighRow);

  void Find(int LowCol, int HighCol, int LowRow, int HighRow, int Value, int& ColIx,
            int& RowIx) const;
  [[nodiscard]] int FindInSortedColumn(int Col, bool ColIsAscending, int Value) const;
  /// 32 digits; see TNumMatrix. The form does not enter.
  [[nodiscard]] std::string CRCofData() const;

  /// Sum of a rectangle, modulo 2^32.
  [[nodiscard]] int Sum(int LoC, int LoR, int HiC, int HiR) const;
  /// Sum of the diagonal, modulo 2^32; 0 if the matrix is not square.
  [[nodiscard]] int Trace() const;
  /// Smallest and largest element; 2147483647 and -2147483647 if no element lies strictly below
  /// (above). Sparse: of the stored cells alone.
  void MinMax(int LowCol, int LowRow, int HighCol, int HighRow, int& Minimum, int& Maximum) const;
  void MeanVar(int LowCol, int LowRow, int HighCol, int HighRow, double& Mean,
               double& Variance) const;
  [[nodiscard]] double GeometricMean(int LowCol, int LowRow, int HighCol, int HighRow) const;
  [[nodiscard]] double HarmonicMean(int LowCol, int LowRow, int HighCol, int HighRow) const;
  void SkewKurt(int LowCol, int LowRow, int HighCol, int HighRow, double& Skewness,
                double& Kurtosis) const;
  void SkewKurtSample(int LowCol, int LowRow, int HighCol, int HighRow, double& Skewness,
                      double& Kurtosis) const;
  bool Quartiles(int LowCol, int LowRow, int HighCol, int HighRow, double& Q1, double& Q2,
                 double& Q3) const;
  [[nodiscard]] double Percentile(double prob, int LowCol, int LowRow, int HighCol,
                                  int HighRow) const;
  [[nodiscard]] double Percentile(double prob, int LowCol, int LowRow, int HighCol, int HighRow,
                                  int SampleSize) const;
  bool Histogram(int LoX, int LoY, int HiX, int HiY, int FirstBin, int LastBin, int BinWidth,
                 TIntVector* Histo, int& Underflow, int& Overflow, int& MaxCnt) const;
  [[nodiscard]] int CountValues(int LowCol, int HighCol, int LowRow, int HighRow, int RangeLow,
                                int RangeHigh) const;
  /// Number of cells of a rectangle with (value AND Bitmask) = 0.
  [[nodiscard]] int CountMaskedZeros(int LowCol, int HighCol, int LowRow, int HighRow,
                                     std::uint32_t Bitmask) const;
  int Dichotomize(int Threshold, TBool2DArray& ResultArray) const;
  void MeanVec(TDims Dim, TVector* Means) const;
  void EdgeVector(TOrientation Orient, TEdgeOp EdgeOp, TVector* DestVec) const;

  bool Add(const TIntMatrix* MatB);
  bool Subtract(const TIntMatrix* MatB);
  void SMult(int Scalar);
  void SAdd(int Scalar);
  bool EMult(const TIntMatrix* MatB, TIntMatrix* MatRes);
  bool Multiply(const TIntMatrix* MatB, TIntMatrix* MatRes);
  bool MultiplyTransposed(const TIntMatrix* MatB, TIntMatrix* MatRes);
  bool TransposeAndMultiply(const TIntMatrix* MatB, TIntMatrix* MatRes);
  bool Multiply(const TIntVector* VecB, TIntVector* VecRes);
  bool TransposeAndMultiply(const TIntVector* VecB, TIntVector* VecRes);
  bool Transpose();

  /// Stream record and number file; a sparse matrix takes part as in the operations above.
  void SaveToStream(std::unique_ptr<TMemoryStream>& OutStream, int LoC, int LoR, int HiC,
                    int HiR) const;
  void SaveToStream(std::ostream& OutStream, int LoC, int LoR, int HiC, int HiR) const;
  bool LoadFromStream(std::istream* InStream, bool AdjustMatrixSize);
  bool LoadFromStream(std::istream& InStream, bool AdjustMatrixSize) {
    return LoadFromStream(&InStream, AdjustMatrixSize);
  }
  /// Writes a number file of a rectangle: a line with the bounds LowCol, LowRow, HighCol, HighRow,
  /// then a line for each row.
  /// @return false if the file cannot be written
  bool StoreOnFile(int LoC, int LoR, int HiC, int HiR, std::string_view FileName) const;
  bool LoadFromFile(std::string_view FileName, bool AdjustMatrixSize);

  int SaveBinary(std::string_view FName) const;
  int LoadBinary(std::string_view FName);
  /// Writes a binary file of the records of a sparse matrix, or of the cells of a dense one that
  /// are not 0, with size and DataID.
  /// @return false if it cannot be written, an old file is left as it was then
  /// @throws EZELMatrixError  `: not enough memory on heap`
  bool StoreSparseMat(std::string_view FileName) const;
  /// Reads a file of StoreSparseMat: size, DataID and cells; a sparse matrix takes the records, a
  /// dense one keeps its form. OnChange fires for a resize and at the end.
  /// @return false, with nothing changed, if the file cannot be read, is damaged or not of this
  ///   kind, or for a dense matrix if the size exceeds what it has and the file holds by more than
  ///   2^24 cells
  /// @throws EZELMatrixError  `: not enough memory on heap`
  bool LoadSparseMat(std::string_view FileName);
  /// Writes an ASC file, values as plain integers.
  /// @param Comment   first line, line feeds as blanks; empty: a default that names the file
  /// @return 0; -1 if it cannot be written, an old file is left as it was then
  int ExportAsASC(std::string_view FName, std::string_view Comment) const;
  /// The same with further columns of texts, CustData[column][row], behind the rows; what they lack
  /// is empty.
  int ExportAsASC(std::string_view FName, std::string_view Comment,
                  const TStr2DArray& CustData) const;
  int ImportASC(std::string_view FName, std::string& Comment);
  int ImportASC(std::string_view FName, std::string& Comment, TStr2DArray& CustData);
  /// A sparse matrix writes its records, and takes the cells that it reads as records, whatever the
  /// size.
  bool SaveAsXMLFile(std::string_view FName, std::string_view DataID) const;
  void WriteToXMLStream(std::ostream& OutStream, bool CreateHeader, std::string_view DataID) const;
  void WriteToOpenXMLFile(std::ostream& TextFile, bool CreateHeader, std::string_view DataID) const;
  bool LoadFromXMLFile(std::string_view FName, std::string_view DataID);
  bool ReadFromXMLStream(std::istream& InStream, std::string_view DataID);
  bool ReadFromOpenXMLFile(std::istream& TextFile, std::string_view DataID);

 protected:
  int ProcessXmlTag(TMatXmlTag Tag, std::string_view Attr, std::string_view Content);

 private:
  using TRecords = TDynArray<TSpMatElemInt, 1>;
  class TDenseCopy;

  [[nodiscard]] TCells Clamped(int LowCol, int LowRow, int HighCol, int HighRow) const;
  /// Place of the first record not before a cell.
  [[nodiscard]] int RecordOf(int Nc, int Nr) const;
  [[nodiscard]] bool HasRecord(int place, int Nc, int Nr) const;
  [[nodiscard]] int SparseVal(int Nc, int Nr) const;
  void SetSparseVal(int Nc, int Nr, int Value);
  /// SetVal, where a place beyond the range of int is outside.
  void StoreSparse(std::int64_t Nc, std::int64_t Nr, int Value);
  /// Records of a rectangle in order.
  template <class Use>
  void ForEachStored(const TCells& cells, Use&& use) const;
  /// Room for a number of records, in steps of allocBy.
  [[nodiscard]] TRecords NewRecords(std::size_t count, int allocBy) const;
  [[nodiscard]] TRecords RecordsOf(std::span<const int> cells, int nRows, int allocBy,
                                   int& count) const;
  /// Makes the first `count` records the contents.
  void SetRecords(TRecords& records, int count);
  /// Takes the size and the elements of a dense matrix, in the form of this one. No event.
  void TakeContents(TDenseCopy& contents);
  /// Cells of a rectangle of a matrix of either form.
  [[nodiscard]] TInt2DArray CellsOf(const TCells& cells) const;
  void CopySparse(const TIntMatrix& source, int SourceColLo, int SourceRowLo, int SourceColHi,
                  int SourceRowHi, int DestCol, int DestRow);
  template <class Use>
  decltype(auto) WithRectangle(int LoC, int LoR, int HiC, int HiR, Use&& use) const;
  template <class Load>
  int Replace(Load&& load);
  /// Takes over a list of cells with size and DataID, in the form of this matrix; OnChange fires.
  /// @return false, with nothing changed, for a size that they do not bear out
  bool TakeCells(TRecords& cells, int count, int Nc, int Nr, std::string_view id);
  template <class Operation>
  decltype(auto) Read(Operation&& operation) const;
  template <class Operation>
  decltype(auto) ReadCells(int LowCol, int LowRow, int HighCol, int HighRow,
                           Operation&& operation) const;
  template <class Operation>
  bool Edit(Operation&& operation);
  template <class Operation>
  bool EditWith(const TIntMatrix* MatB, Operation&& operation);
  template <class Operation>
  bool Produce(const TIntMatrix* MatB, TIntMatrix* MatRes, Operation&& operation);
  template <class Operation>
  bool Produce(Operation&& operation);

  bool FIsSparse = false;
  // Of the sparse form.
  int FNCol = 0;
  int FNRow = 0;
  int FNumAllocated = 0;
  int FAllocBy = 0;
  int FSparseNumElem = 0;
  int FSparseLowCol = 0;
  int FSparseHighCol = 0;
  int FSparseLowRow = 0;
  int FSparseHighRow = 0;
  TRecords SpMat;
  detail::TXmlState FXmlState;
};

/// Rows in braces.
inline std::ostream& operator<<(std::ostream& out, const TIntMatrix& matrix) {
  return detail::PrintMatrix(out, matrix);
}

}  // namespace zel
