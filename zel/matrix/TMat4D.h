/// @file
/// Four-dimensional array of doubles.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "zel/base/Zel_zelbase.h"
#include "zel/base/thread.h"
#include "zel/matrix/TMat3D.h"
#include "zel/matrix/TMatrix.h"

namespace zel {

/// Receives an element of a file that ReadBinary goes through: its column, row, layer, and its time
/// slot counted from 1 for the first one read.
using TOnReadMat4DElementEvent =
    std::function<void(TObject* Sender, int ix, int iy, int il, int it, double Value)>;

namespace kernels {
enum class LayerOp : std::uint8_t;
}

/// Four-dimensional container of doubles: columns, rows, layers and time slots, each numbered from
/// 1 and at least one, with indices and ranges always in that order. A time series of image stacks,
/// for example.
///
/// A read outside gives 0 and a write there is ignored. A range (low, high) is clamped: (0, 0) is
/// the whole dimension, otherwise each bound is limited to 1..N and a reversed pair is exchanged.
/// Elements are visited with the columns outermost and the time slots innermost; the storage runs
/// the other way, so that each row of an image is contiguous, as in the files.
///
/// OnChange fires where a member says so. Long operations say where they report by OnPercentDone
/// (percent of the work done) and by progress steps. Not-a-number elements: as in TNumMatrix. What
/// needs memory raises EZELMatrixError, `: not enough memory on heap`, and leaves the array as it
/// was.
class ZEL_API TMat4D : public TComponent {
 public:
  /// A tag that is none of a matrix.
  static constexpr TMatXmlTag xmlInvalid = xmlMatInvalid;
  /// Fired by Changed.
  TNotifyEvent OnChange;
  /// Progress of long operations.
  TOnPercentDoneEvent OnPercentDone;
  /// Receives what ReadBinary reads.
  TOnReadMat4DElementEvent OnReadElement;

  /// One column, row, layer and time slot, 0.
  explicit TMat4D(TComponent* AOwner = nullptr);
  ~TMat4D() override;
  [[nodiscard]] std::string_view ClassName() const override;

  /// Copies sizes, DataID, elements and the handlers OnChange, OnPercentDone and OnReadElement of a
  /// TMat4D; OnChange is not fired.
  /// @throws EConvertError  for a source of another class, or null
  void Assign(const TPersistent* Source) override;
  void AssignTo(TPersistent* Dest) const override;
  /// Makes this array an element-by-element copy. OnChange fires for a resize and once more. Null:
  /// nothing happens.
  void Clone(const TMat4D* MatSource);
  /// Fires OnChange.
  void Changed();
  /// Fires OnPercentDone, with this array as the sender whoever calls.
  void PercDone(TObject* Sender, int Percent);

  [[nodiscard]] int NrOfColumns() const { return FNumX; }
  [[nodiscard]] int NrOfRows() const { return FNumY; }
  [[nodiscard]] int NrOfLayers() const { return FNumZ; }
  [[nodiscard]] int NrOfTimeSlots() const { return FNumT; }
  /// Resizes, see there.
  void SetNrOfColumns(int value) { Resize(value, FNumY, FNumZ, FNumT); }
  void SetNrOfRows(int value) { Resize(FNumX, value, FNumZ, FNumT); }
  void SetNrOfLayers(int value) { Resize(FNumX, FNumY, value, FNumT); }
  void SetNrOfTimeSlots(int value) { Resize(FNumX, FNumY, FNumZ, value); }
  /// Text that identifies the data set; files carry it.
  [[nodiscard]] const std::string& DataID() const { return FDataID; }
  void SetDataID(std::string_view value) { FDataID = value; }

  /// Sets the size and fires OnChange; elements that both shapes have keep their values, new ones
  /// are 0. Nothing happens for the size it has and if a number is below 1.
  /// @return true, always
  bool Resize(int Nc, int Nr, int Nl, int Nt);
  /// Resizes and sets every element to 0; OnChange fires for both.
  bool ResizeAndClear(int Nc, int Nr, int Nl, int Nt);
  /// Size of the elements in MiB.
  [[nodiscard]] double MemoryConsumed() const;

  /// Element, 0 outside the array.
  [[nodiscard]] double GetVal(int Nx, int Ny, int Nz, int Nt) const {
    return Contains(Nx, Ny, Nz, Nt) ? Mat.data()[Offset(Nx, Ny, Nz, Nt)] : 0.0;
  }
  /// Writes an element; outside the array nothing happens. OnChange does not fire.
  void SetVal(int Nx, int Ny, int Nz, int Nt, double Value) {
    if (Contains(Nx, Ny, Nz, Nt)) Mat.data()[Offset(Nx, Ny, Nz, Nt)] = Value;
  }
  [[nodiscard]] double Elem(int Nx, int Ny, int Nz, int Nt) const { return GetVal(Nx, Ny, Nz, Nt); }
  [[nodiscard]] double operator()(int Nx, int Ny, int Nz, int Nt) const {
    return GetVal(Nx, Ny, Nz, Nt);
  }
  /// All elements in the order of the storage: time slot by time slot, layer by layer, row by row.
  [[nodiscard]] std::span<const double> Elements() const { return {Mat.data(), Mat.size()}; }
  [[nodiscard]] const double* begin() const { return Mat.begin(); }
  [[nodiscard]] const double* end() const { return Mat.end(); }

  void MakeValidColRange(int& LowCol, int& HighCol) const;
  void MakeValidRowRange(int& LowRow, int& HighRow) const;
  void MakeValidLayerRange(int& LowLayer, int& HighLayer) const;
  void MakeValidTSlotRange(int& LowTimeSlot, int& HighTimeSlot) const;

  /// Position from 0 in the order layer, column, row (the layer fastest).
  /// @return -2 if a time slot has more than 2147483647 elements, -1 outside the array
  [[nodiscard]] int Lin3DAddr(int ix, int iy, int il) const;
  /// The inverse.
  /// @return false, with the indices unchanged, for no such position
  bool ConvertLinTo3DAddr(int LinAddr, int& ix, int& iy, int& il) const;

  /// Sets every element and fires OnChange.
  void Fill(double value);
  /// Sets the elements whose indices are all equal and fires OnChange.
  void FillDiag(double value);
  /// Uniform values in [RangeLow, RangeHigh) from the process-wide generator, in the order of
  /// visits. Fires OnChange.
  void FillRandomUniform(double RangeLow, double RangeHigh);
  /// Normal deviates. Fires OnChange.
  void FillRandomGauss(double Mean, double StdDev);
  /// Sets a layer in every time slot; OnChange does not fire. No such layer: nothing happens.
  void FillLayer(int Layer, double value);
  /// Fills a layer of one time slot, column by column: Mode 0 with the constant par1, 1 with
  /// uniform values in [par1, par2), 2 with normal deviates of mean par1 and standard deviation
  /// par2. Fires OnChange.
  /// @return 0; -1: no such layer, -2: time slot, -3: mode; the last of them, nothing happens then
  int FillLayer(int Layer, int TimeSlot, int Mode, double par1, double par2);
  /// Adds an array, indexed [column][row] from 0, to a layer of one time slot; OnChange does not
  /// fire.
  /// @return 0; -1: the array has not the size of a layer, -2: no such layer, -3: no such time
  ///   slot; the last of them, nothing happens then
  int AccumulateLayer(int Layer, int TimeSlot, const TDouble2DArray& Src);

  /// Replaces the array by a block of it and fires OnChange. Reports each percent, where a slice
  /// (layer of a time slot) counts once when it is copied and once when it is taken over.
  void Cut(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
           int LowTimeslot, int HighTimeslot);
  /// Reduces each dimension by an integer factor D: the first O modulo D indices are dropped, then
  /// each D of the rest become one; what is left at the end is one too. Fires OnChange. Reports
  /// each percent of the slices.
  ///
  /// Without Average an element is the first one of its block. With Average it is the sum of the
  /// elements that the block has in the array, divided by the full number XDiv YDiv ZDiv TDiv even
  /// where the array ends before the block. A dimension that loses everything keeps one index, of
  /// zeros. A divisor below 1 or a negative offset: nothing happens.
  void Resample(int XDiv, int XOffset, int YDiv, int YOffset, int ZDiv, int ZOffset, int TDiv,
                int TOffset, bool Average);
  /// Exchanges columns and rows in every layer and time slot; fires OnChange. Reports each percent
  /// of the slices. AbortMathProc is polled before each.
  /// @return true; false, with the array unchanged and no OnChange, when stopped
  bool Transpose();
  /// Reverses the order along a dimension and fires OnChange.
  void MirrorColumns();
  void MirrorRows();
  void MirrorLayers();
  void MirrorTimeSlots();

  // Copies. Arrays are indexed [column][row] or [column][row][layer] from 0. A routine with error
  // codes makes all its checks and returns the code of the last one that fails; nothing is copied
  // then. What would fall outside the target is dropped. OnChange of this array fires only in
  // CopyFrom. A null component: nothing happens.

  /// Resizes the matrix to a rectangle of a slice and copies it there; OnChange of the matrix fires
  /// for a resize, for each element and at the end.
  /// @throws EZELMatrixError  `: specified layer beyond data range`, `: specified time slot beyond
  ///   data range`
  void CopyLayerToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                         int Layer, int TimeSlot) const;
  /// The same to an array.
  /// @return 0; -1: no such layer, -2: no such time slot
  int CopyLayerToArray(TDouble2DArray& DestArray, int LowCol, int HighCol, int LowRow, int HighRow,
                       int Layer, int TimeSlot) const;
  /// Copies an array so that its first cell goes to (Col, Row) of a slice.
  /// @return 0; -1: no such layer, -2: no such time slot
  int CopyArrayToLayer(const TDouble2DArray& SrcArray, int Col, int Row, int Layer, int TimeSlot);
  /// Resizes a three-dimensional array to a block of a time slot and copies it there; its OnChange
  /// fires for the resize.
  /// @throws EZELMatrixError  `: specified time slot beyond data range`
  void CopyTimeSlotToMat3D(TMat3D* DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                           int LowLay, int HighLay, int TimeSlot) const;
  /// The same to a plain array.
  /// @return 0; -1: no such time slot
  int CopyTimeSlotToArray(TDouble3DArray& DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                          int LowLay, int HighLay, int TimeSlot) const;
  /// Copies a rectangle of a matrix, clamped there, so that its first cell goes to (LayLowCol,
  /// LayLowRow) of a slice.
  /// @throws EZELMatrixError  as CopyLayerToMatrix
  void CopyMatrixToLayer(const TMatrix* SrcMat, int SrcLowCol, int SrcHighCol, int SrcLowRow,
                         int SrcHighRow, int Layer, int TimeSlot, int LayLowCol, int LayLowRow);
  /// Copies a block, clamped in its source, so that its first cell goes to (DestCol, DestRow,
  /// DestLayer) of a time slot.
  /// @throws EZELMatrixError  `: specified time slot beyond data range`
  void CopyMat3DToTimeSlot(const TMat3D* SrcMat, int SrcLowCol, int SrcHighCol, int SrcLowRow,
                           int SrcHighRow, int SrcLowLay, int SrcHighLay, int TimeSlot, int DestCol,
                           int DestRow, int DestLayer);
  /// The same from a plain array with its own indices, from 0; a range (0, 0) is the whole
  /// dimension, a reversed one copies nothing.
  /// @return 0; -1, -2, -3: a bound of the column, row or layer range lies outside the source; -4:
  ///   no such time slot; -5, -6, -7: DestCol, DestRow or DestLayer lies outside this array
  int CopyArrayToTimeSlot(const TDouble3DArray& SrcMat, int SrcLowCol, int SrcHighCol,
                          int SrcLowRow, int SrcHighRow, int SrcLowLay, int SrcHighLay,
                          int TimeSlot, int DestCol, int DestRow, int DestLayer);
  /// The values of all layers at a pixel of a time slot; the target gets their number.
  /// @return 0; -1: no such column, -2: row, -3: time slot
  int CopyPixelTo1DArray(TDoubleArray& Dest, int Col, int Row, int TimeSlot) const;
  int CopyPixelToVector(TVector* Dest, int Col, int Row, int TimeSlot) const;
  /// Stores values in the layers FirstLayer, FirstLayer + 1, ... of a pixel.
  /// @return 0; -1: no such column, -2: row, -3: first layer, -4: time slot
  int Copy1DArrayToPixel(std::span<const double> Src, int Col, int Row, int FirstLayer,
                         int TimeSlot);
  int CopyVectorToPixel(const TVector* Src, int Col, int Row, int FirstLayer, int TimeSlot);
  /// Copies a block, clamped in its source, so that its first cell goes to the given place. The
  /// source may be this array; the block is then copied as it was before. Fires OnChange.
  void CopyFrom(const TMat4D* MatSource, int SrcLowCol, int SrcHighCol, int SrcLowRow,
                int SrcHighRow, int SrcLowLayer, int SrcHighLayer, int SrcLowTSlot,
                int SrcHighTSlot, int DestCol, int DestRow, int DestLayer, int DestTSlot);

  // Statistics of a block.

  /// Position of the element nearest to Value, of equally near ones the first one visited; zeros if
  /// every distance is not-a-number or not below the largest double.
  void Find(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
            int LowTimeSlot, int HighTimeSlot, double Value, int& ColIx, int& RowIx, int& LayerIx,
            int& TimeSlotIx) const;
  /// Smallest and largest element. They stay at the largest double and its negative if no element
  /// lies strictly below (above).
  ///
  /// Here and in MeanVar, Sum and SquaredSum a progress step is made for every trunc(P / 100) + 1
  /// pixels, P being the number of pixels (columns times rows of the block); the steps are spread
  /// over the slices as they are worked through, those of MeanVar follow at the end.
  void MinMax(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
              int LowTimeSlot, int HighTimeSlot, double& Minimum, double& Maximum) const;
  /// Mean and sample variance (divisor n - 1). The variance of one or two values is 1.0, that of
  /// equal values exactly 0. Double-double sums, rounded once. A block that is not contiguous is
  /// copied.
  void MeanVar(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
               int LowTimeSlot, int HighTimeSlot, double& Mean, double& Variance) const;
  /// Sums of the elements and of their squares, in double-double, rounded once.
  [[nodiscard]] double Sum(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer,
                           int HighLayer, int LowTimeSlot, int HighTimeSlot) const;
  [[nodiscard]] double SquaredSum(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer,
                                  int HighLayer, int LowTimeSlot, int HighTimeSlot) const;
  /// Number of values with RangeLow <= x <= RangeHigh, at most 2147483647.
  [[nodiscard]] int CountValues(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer,
                                int HighLayer, int LowTimeSlot, int HighTimeSlot, double RangeLow,
                                double RangeHigh) const;
  /// Percentile without interpolation: the value of rank r = n prob / 100 counted from 0, rounded
  /// to nearest, ties to even, at most n - 1. Linear time.
  ///
  /// A value that dominates is not selected but recognised: of 15 elements drawn from the
  /// process-wide generator, the first one that at least 7 are equal to, else the smallest, is the
  /// result if more than r elements of the block are equal to it. So with a background value above
  /// other ones the result may be that value in place of a smaller one.
  /// @param prob  percent, limited to 0..100; not-a-number counts as 0
  [[nodiscard]] double Percentile(double prob, int LowCol, int HighCol, int LowRow, int HighRow,
                                  int LowLayer, int HighLayer, int LowTimeSlot,
                                  int HighTimeSlot) const;
  /// Estimated from SampleSize elements drawn with replacement, after the process-wide generator
  /// was seeded from the clock. The form above for SampleSize 0 or below and for blocks of at most
  /// SampleSize elements.
  [[nodiscard]] double Percentile(double prob, int LowCol, int HighCol, int LowRow, int HighRow,
                                  int LowLayer, int HighLayer, int LowTimeSlot, int HighTimeSlot,
                                  int SampleSize) const;

  /// Fingerprint of the elements in the order of visits; see TNumMatrix::CRCofData. Reports each
  /// percent of the pixels.
  [[nodiscard]] std::string CRCofData() const { return CRCofData(1); }
  /// The same of the layers whose number is a multiple of Sample, which is limited to 1..number of
  /// layers.
  [[nodiscard]] std::string CRCofData(int Sample) const;

  // Aggregation of layers: each cell of the matrix, which gets the size of the rectangle, becomes
  // an aggregate of a pixel over ranges of layers and time slots. Null: nothing happens.
  //
  // Mean and standard deviation (divisor n, 0 for equal values) come from double-double sums and
  // are rounded once; the extremes stay at the negative of the largest double (the largest double)
  // if no value lies strictly above (below). The bits do not depend on the number of threads.
  //
  // NThreads is limited to 1..number of logical processors; without it, it is that number. One
  // thread: a progress step is made after every trunc(cells / 100) + 1 cells. More: at most
  // NThreads workers compute, each column adds 100 / number of columns to ProcStat, and the
  // caller's thread calls MathFeedBackProc while it waits; no worker outlives the call. Results go
  // through SetVal of the matrix, so that a handler of its OnChange is called by the workers; what
  // it throws ends the work and is passed on. AbortMathProc is not polled.

  void MeanOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                            int LowLayer, int HighLayer, int LowTimeSlot, int HighTimeSlot) const;
  void MeanOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                            int LowLayer, int HighLayer, int LowTimeSlot, int HighTimeSlot,
                            int NThreads) const;
  void MaximumOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                               int LowLayer, int HighLayer, int LowTimeSlot,
                               int HighTimeSlot) const;
  void MaximumOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                               int LowLayer, int HighLayer, int LowTimeSlot, int HighTimeSlot,
                               int NThreads) const;
  void MinimumOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                               int LowLayer, int HighLayer, int LowTimeSlot,
                               int HighTimeSlot) const;
  void MinimumOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                               int LowLayer, int HighLayer, int LowTimeSlot, int HighTimeSlot,
                               int NThreads) const;
  void StdDevOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                              int LowLayer, int HighLayer, int LowTimeSlot, int HighTimeSlot) const;
  void StdDevOfLayersToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                              int LowLayer, int HighLayer, int LowTimeSlot, int HighTimeSlot,
                              int NThreads) const;

  // Binary files, read and written by ranges of time slots; the guide describes them. A file that
  // is missing, lacks what is to be read or cannot be read throws EInOutError. What fails leaves
  // the array as it was. Where a routine makes several checks, the last one that fails sets the
  // code.
  //
  // Time slots of a file are TSlotStart..TSlotEnd, TSlotEnd lowered to their number; with a bound
  // below 1, all of them.

  /// Reads the header of a binary file, whatever file it is.
  /// @return true if it is one of a four-dimensional array
  /// @throws EInOutError
  static bool ReadBinaryHeader(std::string_view FName, int& NrColumns, int& NrRows, int& NrLayers,
                               int& NrTimeSlots, std::string& DataID, int& Format);
  /// Passes the elements of time slots to OnReadElement, one after the other, holding no more than
  /// a record of the file; the array does not take part. The format code is not checked. Reports
  /// each percent.
  /// @return 0; -1 if TSlotStart exceeds the number of time slots
  int ReadBinary(std::string_view FName, int TSlotStart, int TSlotEnd);
  /// Fires OnReadElement.
  void ReadElement(TObject* Sender, int ix, int iy, int il, int it, double Value);
  /// Reads a layer of a time slot into the same slice of the array. Reports each percent; OnChange
  /// does not fire.
  /// @return 0; -1: no such time slot in the file, or in the array; -2: no such layer in either;
  ///   -3: columns or rows differ
  int ReadLayer(std::string_view FName, int Layer, int TSlot);
  /// Writes a file with DataID (its first 255 bytes) and the time slots of a range, clamped.
  /// @return 0; -1 if it cannot be written, an old file is left as it was then
  int SaveBinary(std::string_view FName, int TSlotStart, int TSlotEnd) const;
  /// Makes this array that of the time slots of a file, with its DataID. OnChange fires for a
  /// resize and at the end.
  /// @return 0; -1: no time slot of the range is in the file; -2: it is not one of a
  ///   four-dimensional array
  int LoadBinary(std::string_view FName, int TSlotStart, int TSlotEnd);
  /// The same, whatever the format code is.
  int LoadBinaryNoFmtCheck(std::string_view FName, int TSlotStart, int TSlotEnd);
  /// Appends the time slots of a range, clamped, to a file with the same numbers of columns, rows
  /// and layers. A missing file is written as by SaveBinary. The header, written last, gets their
  /// number; until then, and if anything fails, the file holds what it held.
  /// @return 0; -1: it cannot be written; -2: the file is not one of a four-dimensional array; -3:
  ///   its columns, rows or layers differ; -4: there would be more than 2147483647 time slots
  int AppendToBinaryFile(std::string_view FName, int TSlotStart, int TSlotEnd) const;

  // XML: an element `matrix` with the counts and a `cell` for each stored value; the guide
  // describes it. Values are written as the shortest text that gives the same number again,
  // infinities and not-a-number included.

  /// Writes a file with the XML declaration and the matrix.
  /// @param DataID  an identifier by which the readers find the matrix among others; empty: DataID
  ///   of this object
  /// @return false if the file could not be written; an old file is untouched then
  bool SaveAsXMLFile(std::string_view FName, std::string_view DataID) const;
  /// Writes the element to a stream, behind the XML declaration if that is wanted.
  void WriteToOpenXMLFile(std::ostream& TextFile, bool CreateHeader, std::string_view DataID) const;
  /// Reads the first matrix with an identifier, or the first one if that is empty: size, elements
  /// (what has no cell is 0) and DataID. OnChange fires for a resize and at the end.
  /// @return false, with nothing changed, if the source cannot be read, there is no such matrix, it
  ///   is damaged (an unknown tag, a cell without a number, no closing tag), or its size exceeds
  ///   what this object has and the cells it holds by more than 2^24
  /// @throws EZELMatrixError  `: not enough memory on heap`
  bool LoadFromXMLFile(std::string_view FName, std::string_view DataID);
  /// The same from a stream, which is left behind the matrix.
  bool ReadFromOpenXMLFile(std::istream& TextFile, std::string_view DataID);

 protected:
  /// Takes one tag of a matrix that is read: a count is kept; the first cell gives the object the
  /// announced size, and each cell is stored by SetVal; a count and xmlMatBegin set FirstCell.
  /// @param Attr  attribute text; an index that is missing there is 0
  /// @return 0 to go on; 1 for xmlMatEnd; -1 for xmlInvalid and for a cell without a value
  int ProcessXmlTag(TMatXmlTag Tag, std::string_view Attr, std::string_view Content);
  bool FirstCell = false;  ///< no cell has been processed in the current read

 private:
  class TPercent;

  [[nodiscard]] bool Contains(int Nx, int Ny, int Nz, int Nt) const {
    // Indices below 1 become huge.
    return static_cast<unsigned>(Nx) - 1U < static_cast<unsigned>(FNumX) &&
           static_cast<unsigned>(Ny) - 1U < static_cast<unsigned>(FNumY) && HasLayer(Nz) &&
           HasTimeSlot(Nt);
  }
  [[nodiscard]] bool HasLayer(int Nz) const {
    return static_cast<unsigned>(Nz) - 1U < static_cast<unsigned>(FNumZ);
  }
  [[nodiscard]] bool HasTimeSlot(int Nt) const {
    return static_cast<unsigned>(Nt) - 1U < static_cast<unsigned>(FNumT);
  }
  [[nodiscard]] std::size_t Offset(int Nx, int Ny, int Nz, int Nt) const {
    const auto at = [](int i) { return static_cast<std::size_t>(i - 1); };
    const auto extent = [](int n) { return static_cast<std::size_t>(n); };
    return ((at(Nt) * extent(FNumZ) + at(Nz)) * extent(FNumY) + at(Ny)) * extent(FNumX) + at(Nx);
  }
  /// Elements of a slice; that of (layer 1, time slot 1) is the first.
  [[nodiscard]] std::size_t SliceSize() const {
    return static_cast<std::size_t>(FNumX) * static_cast<std::size_t>(FNumY);
  }
  [[nodiscard]] std::size_t Slices() const {
    return static_cast<std::size_t>(FNumZ) * static_cast<std::size_t>(FNumT);
  }
  [[nodiscard]] detail::TGridView<4> View() const;
  [[nodiscard]] detail::TGridBlock<4> Clamped(int LowCol, int HighCol, int LowRow, int HighRow,
                                              int LowLayer, int HighLayer, int LowTimeSlot,
                                              int HighTimeSlot) const;
  void RequireLayer(int Layer) const;
  void RequireTimeSlot(int TimeSlot) const;
  [[nodiscard]] int CodeOfSlice(int Layer, int TimeSlot) const;
  template <class Operation>
  decltype(auto) Guarded(Operation&& operation) const;
  /// Takes over contents with their size; OnChange fires.
  void TakeOver(TDouble4DArray& contents);
  /// The same with a DataID; OnChange fires for a resize in addition.
  void TakeAll(TDouble4DArray& contents, std::string_view id);
  int LoadSlots(std::string_view FName, int TSlotStart, int TSlotEnd, bool ChecksFormat);
  template <class Next>
  void FillBy(const detail::TGridBlock<4>& block, Next&& next);
  /// Reverses the order of `count` pieces of `length` cells, everywhere in the storage.
  void Mirror(std::size_t count, std::size_t length);
  template <class Get>
  void StoreBlock(const detail::TGridBlock<4>& from, int DestCol, int DestRow, int DestLayer,
                  int DestTSlot, Get&& get);
  template <class Reduce>
  [[nodiscard]] double SumBy(const detail::TGridBlock<4>& block, Reduce&& reduce) const;
  template <class Thread>
  void Aggregate(kernels::LayerOp op, TMatrix* DestMat, const detail::TGridBlock<4>& block,
                 int NThreads) const;

  int FNumX = 1;
  int FNumY = 1;
  int FNumZ = 1;
  int FNumT = 1;
  std::string FDataID;
  detail::TXmlState FXmlState;
  TDouble4DArray Mat;
};

/// Copies a rectangle of a layer of an array to a matrix, which gets its size, or to another array.
/// Indices of the source count from 0 and are not clamped: what lies outside it is 0, a reversed
/// range is empty. OnChange of the matrix fires for a resize, for each element and at the end.
ZEL_API void CopyArr3DLayerToMatrix(const TDouble3DArray& Arr, TMatrix* DestMat, int LowCol,
                                    int HighCol, int LowRow, int HighRow, int Layer);
ZEL_API void CopyArr3DLayerToArr2D(const TDouble3DArray& Arr, TDouble2DArray& Dest, int LowCol,
                                   int HighCol, int LowRow, int HighRow, int Layer);
/// Copies a rectangle of a matrix, which is not clamped, to an array, which gets its size. Cells
/// outside the matrix count as 0, a reversed range is empty. A null matrix counts as an empty one.
ZEL_API void CopyMatrixToArray(const TMatrix* Mat, TDouble2DArray& Dest, int LowCol, int HighCol,
                               int LowRow, int HighRow);

/// Reads a layer of a time slot of a binary file to an array, indexed [column][row], which gets its
/// size, or adds it to the array.
/// @return 0; -1: no such time slot in the file; -2: no such layer; -3: the array to add to has not
///   the size of the layer; the last of them, nothing happens then
/// @throws EInOutError      if the file is missing, cut off or cannot be read
/// @throws EZELMatrixError  for want of memory; Data is unchanged then
ZEL_API int Read4DLayer(std::string_view FName, int Layer, int TSlot, TDouble2DArray& Data);
ZEL_API int Read4DLayerAndAccumulate(std::string_view FName, int Layer, int TSlot,
                                     TDouble2DArray& Data);

/// Worker that aggregates the pixels of one column of a four-dimensional array: the cells of the
/// rows LowRow..HighRow of column Column, over the layers and time slots of the given ranges, go
/// to column Column - LowCol + 1 of DestMat, from row 1 on, through SetVal. Then it adds 100 /
/// (HighCol - LowCol + 1) to ProcStat. The ranges must lie within the array; a missing array or
/// matrix, or a column outside, only counts.
///
/// TMat4D creates such workers; each takes further columns until none is left. Nobody may change or
/// destroy array and matrix while a worker runs.
class ZEL_API TOfLayersThread : public TThread {
 public:
  TOfLayersThread() = default;
  ~TOfLayersThread() override;

  int Column = 1;
  TMatrix* DestMat = nullptr;
  const TDouble4DArray* Mat = nullptr;  ///< [time slot][layer][row][column]
  int LowCol = 1;
  int HighCol = 1;
  int LowRow = 1;
  int HighRow = 1;
  int LowLayer = 1;
  int HighLayer = 1;
  int LowTimeSlot = 1;
  int HighTimeSlot = 1;

 protected:
  ZEL_LOCAL void Aggregate(kernels::LayerOp op, int divisor);
};

class ZEL_API TMeanOfLayersThread : public TOfLayersThread {
 public:
  ~TMeanOfLayersThread() override;
  [[nodiscard]] std::string_view ClassName() const override;
  int NTotal = 1;  ///< divisor: the number of values of a cell

 protected:
  void Execute() override;
};

class ZEL_API TStdDevOfLayersThread : public TOfLayersThread {
 public:
  ~TStdDevOfLayersThread() override;
  [[nodiscard]] std::string_view ClassName() const override;
  int NTotal = 1;  ///< divisor: the number of values of a cell

 protected:
  void Execute() override;
};

class ZEL_API TMaximumOfLayersThread : public TOfLayersThread {
 public:
  ~TMaximumOfLayersThread() override;
  [[nodiscard]] std::string_view ClassName() const override;

 protected:
  void Execute() override;
};

class ZEL_API TMinimumOfLayersThread : public TOfLayersThread {
 public:
  ~TMinimumOfLayersThread() override;
  [[nodiscard]] std::string_view ClassName() const override;

 protected:
  void Execute() override;
};

}  // namespace zel
