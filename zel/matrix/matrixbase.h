/// @file
/// What dense matrices of doubles and of integers share.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <istream>
#include <memory>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "zel/base/Zel_zelbase.h"
#include "zel/base/streams.h"
#include "zel/matrix/xmlvocabulary.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

namespace detail {
class TResults;
struct TASCSource;
template <class T>
struct TStoredRectangle;
}  // namespace detail

namespace kernels {
template <class T>
struct MatrixSpan;
}

/// Two-dimensional container of numbers, stored column by column; TMatrix (double) and TIntMatrix
/// (int) derive from it.
///
/// Columns and rows are numbered from 1, and every pair of indices names the column first. Either
/// number may be 0 (an empty matrix). A read outside the matrix gives 0 and a write there is
/// ignored. A range argument pair (low, high) is clamped: (0, 0) is the whole dimension, otherwise
/// each bound is limited to 1..N and a reversed pair is exchanged; a range of an empty dimension is
/// empty. Operations that visit many elements go through the columns one after the other, each from
/// the first row on; that order decides which of equal elements is found first.
///
/// OnChange fires after operations that change elements or size: once for those that write in bulk,
/// for each element stored where the description says so.
///
/// Not-a-number elements: sums and moments become not-a-number, minimum, maximum and the searches
/// never pick one, a sort leaves the rows in the order that its comparisons, which a not-a-number
/// always fails, happen to produce; percentiles and quartiles read that order.
template <class T>
class TNumMatrix : public TComponent {
 public:
  using value_type = T;
  /// A tag that is none of a matrix.
  static constexpr TMatXmlTag xmlInvalid = xmlMatInvalid;
  using TVectorType = std::conditional_t<std::is_same_v<T, double>, TVector, TIntVector>;

  /// Fired by Changed.
  TNotifyEvent OnChange;
  /// Fired by the sorts for each exchange: ExchgWhat 1 for columns, 2 for rows; the two exchanged
  /// indices; first and last index of the cells that moved along the other dimension.
  TSortExchgEvent OnSortExchange;
  /// Progress of long operations.
  TOnPercentDoneEvent OnPercentDone;

  /// One column, one row, 0.
  /// @throws EZELMatrixError  `: not enough memory on heap`
  explicit TNumMatrix(TComponent* AOwner = nullptr);
  ~TNumMatrix() override;

  /// Fires OnChange.
  void Changed();
  /// Fires OnPercentDone, with this matrix as the sender whoever calls.
  void PercDone(TObject* Sender, int Percent);

  [[nodiscard]] int NrOfColumns() const { return FNCol; }
  [[nodiscard]] int NrOfRows() const { return FNRow; }
  /// Resizes; a negative value is taken as 0.
  void SetNrOfColumns(int value) { Resize(value, FNRow); }
  void SetNrOfRows(int value) { Resize(FNCol, value); }
  /// Text that identifies the data set; files carry it.
  [[nodiscard]] const std::string& DataID() const { return FDataID; }
  void SetDataID(std::string_view value) { FDataID = value; }

  /// Sets the size; cells that both shapes have keep their values, new ones are 0. Negative numbers
  /// are taken as 0. Adding columns one at a time costs amortised constant time per cell.
  /// @return true; without notification if the size is that already
  /// @throws EZELMatrixError  `: not enough memory on heap`; the matrix is unchanged then
  bool Resize(int Nc, int Nr);
  /// Resizes and sets every element to 0.
  bool ResizeAndClear(int Nc, int Nr);

  /// Element, 0 outside the matrix.
  [[nodiscard]] T GetVal(int Nc, int Nr) const {
    return Contains(Nc, Nr) ? Mat.data()[Offset(Nc, Nr)] : T{0};
  }
  /// Writes an element and fires OnChange; outside the matrix nothing happens.
  void SetVal(int Nc, int Nr, T Value) {
    if (!Contains(Nc, Nr)) return;
    Mat.data()[Offset(Nc, Nr)] = Value;
    if (OnChange) Changed();
  }
  [[nodiscard]] T Elem(int Nc, int Nr) const { return GetVal(Nc, Nr); }
  [[nodiscard]] T operator()(int Nc, int Nr) const { return GetVal(Nc, Nr); }

  void MakeValidColRange(int& LowCol, int& HighCol) const;
  void MakeValidRowRange(int& LowRow, int& HighRow) const;

  /// Makes this matrix an element-by-element copy; null: nothing happens. OnChange fires for a
  /// resize, for each element and once more at the end.
  void Clone(const TNumMatrix* MatSource);
  /// Copies the source rectangle, each bound limited to the source and a reversed pair exchanged
  /// ((0, 0) is index 1 here), so that its first cell goes to (DestCol, DestRow); what falls
  /// outside this matrix is dropped. OnChange fires for each element stored and once more at the
  /// end. Null: nothing happens. Copying within one matrix proceeds column by column, downwards.
  void CopyFrom(const TNumMatrix* MatSource, int SourceColLo, int SourceRowLo, int SourceColHi,
                int SourceRowHi, int DestCol, int DestRow);
  /// Copies elements of a vector (range clamped by the vector's rule) along Dim, from (DestCol,
  /// DestRow) on: dimColumns across one row, dimRows down one column. What falls outside is
  /// dropped. OnChange fires for each element stored and once more at the end. Nothing happens for
  /// a null vector.
  void CopyFromVec(TDims Dim, const TVectorType* VecSource, int Source1stElem, int SourceLastElem,
                   int DestCol, int DestRow);
  /// The same down one column.
  void CopyFromVec(const TVectorType* VecSource, int Source1stElem, int SourceLastElem, int DestCol,
                   int DestRow) {
    CopyFromVec(dimRows, VecSource, Source1stElem, SourceLastElem, DestCol, DestRow);
  }
  /// Copies the elements FirstCol..LastCol of a row to the front of a vector, which keeps its size;
  /// its other elements become 0. What does not fit is dropped. The vector's OnChange fires once
  /// for the filling and for each element stored. Null: nothing happens.
  /// @param Row  limited to 1..NrOfRows
  void CopyRowToVec(TVectorType* DestVec, int Row, int FirstCol, int LastCol) const;
  /// The same along a column.
  void CopyColToVec(TVectorType* DestVec, int Col, int FirstRow, int LastRow) const;
  /// Copies a rectangle to an array indexed [column][row] from 0, which gets its size.
  void CopyToArray(TDynArray<T, 2>& DestArray, int LowCol, int HighCol, int LowRow,
                   int HighRow) const;
  /// Stores SrcArray[i][j] at (Col + i, Row + j); what falls outside is dropped. OnChange fires for
  /// each element stored.
  void CopyFromArray(const TDynArray<T, 2>& SrcArray, int Col, int Row);

  /// Sets every element, or those of a rectangle; OnChange fires once, for an empty one too.
  void Fill(T value);
  void Fill(int LowCol, int HighCol, int LowRow, int HighRow, T value);
  /// Sets the elements (i, i).
  void FillDiag(T value);

  /// Removes a column (a row); those behind it move up. Fires OnChange once.
  /// @return false, with nothing changed, for an index outside the matrix and for the last
  ///   column (row)
  bool RemoveColumn(int col);
  bool RemoveRow(int row);
  /// Exchanges two columns (rows) and fires OnChange. Outside the matrix: nothing happens.
  void ExchangeColumns(int c1, int c2);
  void ExchangeRows(int r1, int r2);
  /// Reverses the order of the columns (rows).
  void MirrorColumns();
  void MirrorRows();
  /// Sorts rows LowRow..HighRow by the values in column SortColIx; the cells of columns
  /// LowCol..HighCol and of the key column move. Comb sort with shrink factor 1.3: not stable,
  /// equal keys are never exchanged. OnSortExchange fires after each exchange, OnChange at the end;
  /// fewer than two rows or a key column outside the matrix: nothing happens. With no
  /// OnSortExchange handler only the keys are sorted, and each column is moved once, to the same
  /// result. A handler that resizes the matrix ends the sort.
  void SortRows(int SortColIx, bool Ascending, int LowCol, int LowRow, int HighCol, int HighRow);
  /// The same for columns LowCol..HighCol by the values in row SortRowIx.
  void SortCols(int SortRowIx, bool Ascending, int LowCol, int LowRow, int HighCol, int HighRow);

  /// Position of the element nearest to Value, the first on ties; (0, 0) if every distance is
  /// not-a-number or not below the largest double.
  void Find(int LowCol, int HighCol, int LowRow, int HighRow, T Value, int& ColIx,
            int& RowIx) const;
  /// Binary search in a column, which must be sorted in the given direction.
  /// @return row of an element equal to Value, else of the nearer of the two that enclose it, the
  ///   higher row on ties; 0 for a column outside the matrix or without rows
  [[nodiscard]] int FindInSortedColumn(int Col, bool ColIsAscending, T Value) const;

  /// Fingerprint of the elements, column by column: one CRC-32 register (reflected polynomial
  /// 0xEDB88320) for each byte place of the element type, each as eight upper-case hexadecimal
  /// digits. The size does not enter; the bits count, so 0.0 and -0.0 differ.
  [[nodiscard]] std::string CRCofData() const;

  /// Smallest and largest element of a rectangle. They stay at the largest value of T and its
  /// negative if no element lies strictly below (above).
  void MinMax(int LowCol, int LowRow, int HighCol, int HighRow, T& Minimum, T& Maximum) const;
  /// Mean and sample variance (divisor n - 1). The variance of one or two values is 1.0, that of
  /// equal values exactly 0; both are 0 for an empty rectangle. Double-double sums, rounded once.
  /// @throws EZELMatrixError  `: not enough memory on heap`; here and below only possible for a
  ///   rectangle of several columns that leaves out rows
  void MeanVar(int LowCol, int LowRow, int HighCol, int HighRow, double& Mean,
               double& Variance) const;
  /// exp(mean of ln x); 0 if an element is 0; 1 for an empty rectangle.
  /// @throws EZELMatrixError  `: negative argument passed to GeometricMean`
  [[nodiscard]] double GeometricMean(int LowCol, int LowRow, int HighCol, int HighRow) const;
  /// n / sum of 1/x; 0 for an empty rectangle.
  /// @throws EZELMatrixError  `: negative or zero argument passed to HarmonicMean`
  [[nodiscard]] double HarmonicMean(int LowCol, int LowRow, int HighCol, int HighRow) const;
  /// Skewness m3 / s^3 and excess kurtosis m4 / s^4 - 3 from population moments m3, m4 and the
  /// sample standard deviation s. Both 0 for fewer than two values or no spread.
  void SkewKurt(int LowCol, int LowRow, int HighCol, int HighRow, double& Skewness,
                double& Kurtosis) const;
  /// The same with corrections for the sample size: skewness times n^2 / ((n-1)(n-2)); kurtosis
  /// (K + 3) n^2 (n+1) / ((n-1)(n-2)(n-3)) - 3 (n-1)^2 / ((n-2)(n-3)). Both 0 for fewer than four
  /// values.
  void SkewKurtSample(int LowCol, int LowRow, int HighCol, int HighRow, double& Skewness,
                      double& Kurtosis) const;
  /// Quartiles at positions (n + 1) q of the sorted values, interpolated linearly, limited to the
  /// first and last value. While MathFeedBackProc is set the values are sorted with a progress step
  /// for each pass, otherwise selected with one step.
  /// @return true; false, with three zeros, for an empty rectangle
  /// @throws EZELMatrixError  `: not enough memory on heap`
  bool Quartiles(int LowCol, int LowRow, int HighCol, int HighRow, double& Q1, double& Q2,
                 double& Q3) const;
  /// Percentile without interpolation: the value of rank n prob / 100 counted from 0, rounded to
  /// nearest, ties to even, at most n - 1; so the 50th percentile of (1, 2, 3, 4) is 3. 0 for an
  /// empty rectangle. Linear time. (Not the rule of the vectors.)
  /// @param prob  percent, limited to 0..100; not-a-number counts as 0
  /// @throws EZELMatrixError  `: not enough memory on heap`
  [[nodiscard]] double Percentile(double prob, int LowCol, int LowRow, int HighCol,
                                  int HighRow) const;
  /// The same estimated from SampleSize elements drawn with replacement, after the process-wide
  /// generator was seeded from the clock. If prob falls into the block of zeros of the sample, the
  /// result is 0. Exact for SampleSize 0 or below and for rectangles of at most SampleSize
  /// elements.
  [[nodiscard]] double Percentile(double prob, int LowCol, int LowRow, int HighCol, int HighRow,
                                  int SampleSize) const;
  /// Counts the elements of a rectangle in bins of equal width: bin k holds FirstBin + (k-1)
  /// BinWidth <= x < FirstBin + k BinWidth; there are round(|LastBin - FirstBin| / BinWidth) + 1
  /// bins. Values below FirstBin go to Underflow, those at or above LastBin + BinWidth to Overflow;
  /// a bin beyond the last is dropped, a not-a-number is counted nowhere.
  /// @param Histo   resized to the number of bins; OnChange fires for each value counted
  /// @param MaxCnt  largest count of a bin
  /// @return false, with nothing changed, for more than 500 bins, a bin width of 0 or below, bounds
  ///   that are not finite, or Histo null
  bool Histogram(int LoX, int LoY, int HiX, int HiY, T FirstBin, T LastBin, T BinWidth,
                 TIntVector* Histo, int& Underflow, int& Overflow, int& MaxCnt) const;
  /// Number of values with RangeLow <= x <= RangeHigh. Both column bounds come first.
  [[nodiscard]] int CountValues(int LowCol, int HighCol, int LowRow, int HighRow, T RangeLow,
                                T RangeHigh) const;
  /// Image of the whole matrix, indexed [column][row] from 0: true where the element is above the
  /// threshold.
  /// @return number of true cells
  int Dichotomize(T Threshold, TBool2DArray& ResultArray) const;
  /// Mean of each column (dimColumns) or row (dimRows); the vector gets their number of elements,
  /// but at least one. Null: nothing happens.
  /// @throws EZELMatrixError, EZELVectorError (the vector)  `: not enough memory`...
  void MeanVec(TDims Dim, TVector* Means) const;
  /// Aggregates each row (orVertical) or column (orHorizontal) to its minimum, maximum, sum or
  /// mean; the vector gets their number of elements, but at least one. The extremes of nothing are
  /// the largest double and its negative, the mean of nothing is 0. Null: nothing happens.
  /// @throws EZELMatrixError, EZELVectorError (the vector)  `: not enough memory`...
  void EdgeVector(TOrientation Orient, TEdgeOp EdgeOp, TVector* DestVec) const;

  // Arithmetic. The Boolean operations return false, with nothing changed, if an operand is null or
  // the sizes do not fit. A result may be one of the operands.
  // Integers wrap modulo 2^32.

  /// Adds (subtracts) element by element; the sizes must agree.
  bool Add(const TNumMatrix* MatB);
  bool Subtract(const TNumMatrix* MatB);
  /// Multiplies every element by the scalar, or adds it.
  void SMult(T Scalar);
  void SAdd(T Scalar);
  /// MatRes = element-wise (Hadamard) product; the sizes must agree. This and the products resize
  /// the result, fire its OnChange once when it is complete (and once for a resize), and then
  /// OnChange of this matrix.
  /// @throws EZELMatrixError  `: not enough memory on heap`; nothing is changed then
  bool EMult(const TNumMatrix* MatB, TNumMatrix* MatRes);
  /// MatRes = A B; A has as many columns as B rows.
  /// @throws EZELMatrixError  as EMult
  bool Multiply(const TNumMatrix* MatB, TNumMatrix* MatRes);
  /// MatRes = A B^T; A and B have as many columns.
  bool MultiplyTransposed(const TNumMatrix* MatB, TNumMatrix* MatRes);
  /// MatRes = A^T B; A and B have as many rows.
  bool TransposeAndMultiply(const TNumMatrix* MatB, TNumMatrix* MatRes);
  /// VecRes = A b; b has as many elements as A columns. The result has NrOfRows elements (at least
  /// one, as any vector).
  bool Multiply(const TVectorType* VecB, TVectorType* VecRes);
  /// VecRes = A^T b; b has as many elements as A rows.
  bool TransposeAndMultiply(const TVectorType* VecB, TVectorType* VecRes);
  /// Replaces the matrix by its transpose.
  /// @return true
  /// @throws EZELMatrixError  `: not enough memory on heap`; the matrix is unchanged then
  bool Transpose();

  // Files and streams. What fails leaves the matrix as it was; a file that cannot be completed
  // leaves an old one as it was.

  /// Appends a binary record of a rectangle: its bounds LowCol, LowRow, HighCol, HighRow, then the
  /// elements column by column. Doubles and their bounds are stored as extended values, integers
  /// and theirs as 32-bit values. A missing memory stream is created. The stream's state tells of
  /// errors.
  void SaveToStream(std::unique_ptr<TMemoryStream>& OutStream, int LoC, int LoR, int HiC,
                    int HiR) const;
  void SaveToStream(std::ostream& OutStream, int LoC, int LoR, int HiC, int HiR) const;
  /// Reads a record of SaveToStream into the cells that it was written from. OnChange fires once at
  /// the end, and for a resize.
  /// @param AdjustMatrixSize  resize to HighCol x HighRow first; cells outside the record keep
  ///   their values
  /// @return false, with nothing changed, if the stream is null, the record is cut off or has no
  ///   proper bounds, it does not fit into the matrix, or, with AdjustMatrixSize, HighCol x HighRow
  ///   exceeds what it holds by more than 2^24 cells
  /// @throws EZELMatrixError  `: not enough memory on heap`
  bool LoadFromStream(std::istream* InStream, bool AdjustMatrixSize);
  bool LoadFromStream(std::istream& InStream, bool AdjustMatrixSize) {
    return LoadFromStream(&InStream, AdjustMatrixSize);
  }
  /// Reads a number file of StoreOnFile: the bounds of a rectangle, then its values row by row,
  /// separated by blanks or line ends. Integers are rounded, ties to even. OnChange fires once at
  /// the end, and for a resize.
  /// @param AdjustMatrixSize  as in LoadFromStream
  /// @return false, with nothing changed, if the file cannot be read, a value is missing or is no
  ///   number, or as in LoadFromStream
  /// @throws EZELMatrixError  `: not enough memory on heap`
  bool LoadFromFile(std::string_view FileName, bool AdjustMatrixSize);

  // Binary files. What fails leaves the matrix as it was. A file that is missing, cut off or cannot
  // be read throws EInOutError.

  /// Reads the header of a binary file, whatever file it is.
  /// @return true if it is one of a matrix with elements of this kind
  /// @throws EInOutError
  static bool ReadBinaryHeader(std::string_view FName, int& NrColumns, int& NrRows,
                               std::string& DataID, int& Format);
  /// Writes a binary file with DataID (its first 255 bytes) and elements; the guide describes it.
  /// @return 0; -1 if it cannot be written, an old file is left as it was then
  int SaveBinary(std::string_view FName) const;
  /// Reads a file of SaveBinary: size, DataID and elements. OnChange fires for a resize and at the
  /// end.
  /// @return 0; -1 if the header is not that of a matrix with elements of this kind
  /// @throws EInOutError, EZELMatrixError  `: not enough memory on heap`
  int LoadBinary(std::string_view FName);

  /// Reads an ASC file; the guide describes the form. `NAN` and `###` stand for missing values,
  /// which become 0. Row attributes and all names are passed over. OnChange fires for a resize and
  /// at the end.
  /// @param Comment  receives line 1, unless the result is -1 or -8
  /// @return 0; 1..4: the first bad line of the header; -1: the file cannot be read; -5: a bad row
  ///   attribute; -6: a value is missing or no number; -8: no such file; -9: bad lines behind the
  ///   rows. Unless it is 0, the matrix is unchanged.
  /// @throws EZELMatrixError  `: not enough memory on heap`
  int ImportASC(std::string_view FName, std::string& Comment);
  /// The same; CustData receives the further columns of texts, [column][row], none if there are
  /// none.
  int ImportASC(std::string_view FName, std::string& Comment, TStr2DArray& CustData);

  // XML: an element `matrix` with the counts and a `cell` for each stored value; the guide
  // describes it. Values are written as the shortest text that gives the same number again,
  // infinities and not-a-number included.

  /// Writes a file with the XML declaration and the matrix.
  /// @param DataID  an identifier by which the readers find the matrix among others; empty: DataID
  ///   of this object
  /// @return false if the file could not be written; an old file is untouched then
  bool SaveAsXMLFile(std::string_view FName, std::string_view DataID) const;
  /// Writes the element, behind the XML declaration if that is wanted.
  void WriteToXMLStream(std::ostream& OutStream, bool CreateHeader, std::string_view DataID) const;
  void WriteToOpenXMLFile(std::ostream& TextFile, bool CreateHeader, std::string_view DataID) const;
  /// Reads the first matrix with an identifier, or the first one if that is empty: size, elements
  /// (what has no cell is 0) and DataID. OnChange fires for a resize and at the end.
  /// @return false, with nothing changed, if the source cannot be read, there is no such matrix, it
  ///   is damaged (an unknown tag, a cell without a number, no closing tag), or its size exceeds
  ///   what this object has and the cells it holds by more than 2^24
  /// @throws EZELMatrixError  `: not enough memory on heap`
  bool LoadFromXMLFile(std::string_view FName, std::string_view DataID);
  /// The same from a stream, which is left behind the matrix.
  bool ReadFromXMLStream(std::istream& InStream, std::string_view DataID);
  bool ReadFromOpenXMLFile(std::istream& TextFile, std::string_view DataID);

  // What C++ callers expect beside the operations above.
  /// Elements of a column (numbered from 1); none outside the matrix.
  [[nodiscard]] std::span<const T> Column(int c) const;
  /// All elements, column by column.
  [[nodiscard]] std::span<const T> Elements() const { return {Mat.data(), NrOfElements()}; }
  /// The storage, column by column. Writing through it fires no event.
  [[nodiscard]] T* data() { return Mat.data(); }
  [[nodiscard]] const T* data() const { return Mat.data(); }
  [[nodiscard]] const T* begin() const { return Mat.data(); }
  [[nodiscard]] const T* end() const { return Mat.data() + NrOfElements(); }

 protected:
  /// 1-based rectangle, clamped.
  struct TCells {
    int LowCol = 1;
    int LowRow = 1;
    int HighCol = 0;
    int HighRow = 0;
    [[nodiscard]] std::size_t Columns() const {
      return static_cast<std::size_t>(HighCol - LowCol + 1);
    }
    [[nodiscard]] std::size_t Rows() const {
      return static_cast<std::size_t>(HighRow - LowRow + 1);
    }
    [[nodiscard]] std::size_t Count() const { return Columns() * Rows(); }
  };
  [[nodiscard]] TCells Clamped(int LowCol, int LowRow, int HighCol, int HighRow) const;

  [[nodiscard]] bool HasSizeOf(const TNumMatrix& other) const {
    return NrOfColumns() == other.NrOfColumns() && NrOfRows() == other.NrOfRows();
  }
  /// Fires OnSortExchange.
  void SortExchange(std::uint8_t ExchgWhat, int Index1, int Index2, int First, int Last);

  [[nodiscard]] bool Contains(int Nc, int Nr) const {
    // Indices below 1 become huge.
    return static_cast<unsigned>(Nc) - 1U < static_cast<unsigned>(FNCol) &&
           static_cast<unsigned>(Nr) - 1U < static_cast<unsigned>(FNRow);
  }
  /// Place of a cell of the matrix; a column with rows takes exactly them.
  [[nodiscard]] std::size_t Offset(int Nc, int Nr) const {
    return static_cast<std::size_t>(Nc - 1) * static_cast<std::size_t>(FNRow) +
           static_cast<std::size_t>(Nr - 1);
  }
  [[nodiscard]] std::size_t NrOfElements() const {
    return static_cast<std::size_t>(FNCol) * static_cast<std::size_t>(FNRow);
  }
  [[nodiscard]] std::span<T> Cells() { return {Mat.data(), NrOfElements()}; }
  /// Views for the kernels.
  [[nodiscard]] kernels::MatrixSpan<T> View();
  [[nodiscard]] kernels::MatrixSpan<const T> View() const;
  [[nodiscard]] kernels::MatrixSpan<const T> View(const TCells& cells) const;

  /// Raises the out-of-memory message of the class.
  [[noreturn]] void RaiseNoMemory() const;
  /// Runs an operation whose allocations may fail: then the out-of-memory message.
  template <class Operation>
  decltype(auto) Guarded(Operation&& operation) const;
  /// Calls use(span) with the elements of a rectangle in order: the storage itself where they are
  /// contiguous, a copy otherwise.
  template <class Use>
  decltype(auto) WithCells(const TCells& cells, Use&& use) const;
  /// Stores value(i, j), i and j from 0, at (col + i, row + j), firing OnChange for each.
  template <class Value>
  void StoreEach(std::int64_t col, std::int64_t row, std::int64_t nCols, std::int64_t nRows,
                 Value&& value);
  /// CopyFrom of a source with nCols columns and nRows rows whose elements get(c, r) yields.
  template <class Get>
  void CopyRectangle(int nCols, int nRows, int SourceColLo, int SourceRowLo, int SourceColHi,
                     int SourceRowHi, int DestCol, int DestRow, Get&& get);
  /// Resizes to and stores rows of equal length.
  /// @throws EZELMatrixError  `: matrices do not match` if they differ in length
  void SetRows(std::initializer_list<std::initializer_list<T>> rows);
  /// Takes over contents of the given size; OnChange does not fire.
  void TakeOver(TDynArray<T, 2>& contents, int Nc, int Nr) noexcept;
  /// Takes one tag of a matrix that is read: a count is kept; the first cell gives the object the
  /// announced size, and each cell is stored by SetVal; a count and xmlMatBegin set FirstCell.
  /// @param Attr  attribute text; an index that is missing there is 0
  /// @return 0 to go on; 1 for xmlMatEnd; -1 for xmlInvalid and for a cell without a value
  int ProcessXmlTag(TMatXmlTag Tag, std::string_view Attr, std::string_view Content);
  bool FirstCell = false;  ///< no cell has been processed in the current read
  /// Writes an ASC file with these cells.
  ZEL_LOCAL int ExportASC(const detail::TASCSource& source,
                          kernels::MatrixSpan<const T> cells) const;
  /// Takes over contents of the given size with their DataID; OnChange fires for a resize and at
  /// the end.
  void TakeAll(TDynArray<T, 2>& contents, int Nc, int Nr, std::string_view id);
  /// Inserts a row of zeros, of a valid number; OnChange does not fire.
  void OpenRow(int row);
  /// Stores what has been read, if it fits.
  bool TakeRectangle(const detail::TStoredRectangle<T>& read, bool AdjustMatrixSize);

 private:
  friend class detail::TResults;

  /// Zeroes what an empty matrix still stores, so that it is 0 when it grows again.
  void ClearHidden();
  /// Gives the target a result of the given size that compute(view) writes, then fires the events
  /// of a product. The target may be an operand.
  template <class Compute>
  bool Produce(TNumMatrix* MatRes, int Nc, int Nr, Compute&& compute);
  template <class Compute>
  bool Produce(TVectorType* VecRes, int size, Compute&& compute);

  int FNCol = 1;
  int FNRow = 1;
  std::string FDataID;
  detail::TXmlState FXmlState;
  TDynArray<T, 2> Mat;
};

namespace detail {

template <class Matrix>
std::ostream& PrintMatrix(std::ostream& out, const Matrix& matrix) {
  out << '{';
  for (int r = 1; r <= matrix.NrOfRows(); ++r) {
    out << (r == 1 ? "{" : ", {");
    for (int c = 1; c <= matrix.NrOfColumns(); ++c) {
      if (c > 1) out << ", ";
      out << matrix(c, r);
    }
    out << '}';
  }
  return out << '}';
}

}  // namespace detail

/// Rows in braces.
template <class T>
std::ostream& operator<<(std::ostream& out, const TNumMatrix<T>& matrix) {
  return detail::PrintMatrix(out, matrix);
}

extern template class ZEL_API TNumMatrix<double>;
extern template class ZEL_API TNumMatrix<int>;

}  // namespace zel
