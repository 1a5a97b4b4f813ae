/// @file
/// Three-dimensional array of doubles.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "zel/base/Zel_zelbase.h"
#include "zel/matrix/TMatrix.h"

namespace zel {

namespace detail {
template <int Rank>
struct TGridBlock;
template <int Rank>
struct TGridView;
}  // namespace detail

/// Three-dimensional container of doubles: columns, rows and layers, each numbered from 1 and at
/// least one, with indices and ranges always in that order. An image stack, for example.
///
/// A read outside gives 0 and a write there is ignored. A range (low, high) is clamped: (0, 0) is
/// the whole dimension, otherwise each bound is limited to 1..N and a reversed pair is exchanged.
/// Elements are visited with the columns outermost and the layers innermost, which is the order of
/// the storage.
///
/// OnChange fires where a member says so. Not-a-number elements: as in TNumMatrix.
class ZEL_API TMat3D : public TComponent {
 public:
  /// A tag that is none of a matrix.
  static constexpr TMatXmlTag xmlInvalid = xmlMatInvalid;
  /// Fired by Changed.
  TNotifyEvent OnChange;
  /// Progress of long operations.
  TOnPercentDoneEvent OnPercentDone;

  /// One column, one row, one layer, 0.
  /// @throws EZELMatrixError  `: not enough memory on heap`
  explicit TMat3D(TComponent* AOwner = nullptr);
  ~TMat3D() override;
  [[nodiscard]] std::string_view ClassName() const override;

  /// Fires OnChange.
  void Changed();
  /// Fires OnPercentDone, with this array as the sender whoever calls.
  void PercDone(TObject* Sender, int Percent);

  [[nodiscard]] int NrOfColumns() const { return FNumX; }
  [[nodiscard]] int NrOfRows() const { return FNumY; }
  [[nodiscard]] int NrOfLayers() const { return FNumZ; }
  /// Resizes, see there.
  void SetNrOfColumns(int value) { Resize(value, FNumY, FNumZ); }
  void SetNrOfRows(int value) { Resize(FNumX, value, FNumZ); }
  void SetNrOfLayers(int value) { Resize(FNumX, FNumY, value); }
  /// Text that identifies the data set; files carry it.
  [[nodiscard]] const std::string& DataID() const { return FDataID; }
  void SetDataID(std::string_view value) { FDataID = value; }

  /// Sets the size and fires OnChange; elements that both shapes have keep their values, new ones
  /// are 0. Nothing happens for the size it has and if a number is below 1.
  /// @return true, always
  /// @throws EZELMatrixError  `: not enough memory on heap`; the array is unchanged then
  bool Resize(int Nc, int Nr, int Nl);
  /// Resizes and sets every element to 0; OnChange fires for the resize only.
  bool ResizeAndClear(int Nc, int Nr, int Nl);

  /// Element, 0 outside the array.
  [[nodiscard]] double GetVal(int Nx, int Ny, int Nz) const {
    return Contains(Nx, Ny, Nz) ? Mat.data()[Offset(Nx, Ny, Nz)] : 0.0;
  }
  /// Writes an element; outside the array nothing happens. OnChange does not fire.
  void SetVal(int Nx, int Ny, int Nz, double Value) {
    if (Contains(Nx, Ny, Nz)) Mat.data()[Offset(Nx, Ny, Nz)] = Value;
  }
  [[nodiscard]] double Elem(int Nx, int Ny, int Nz) const { return GetVal(Nx, Ny, Nz); }
  [[nodiscard]] double operator()(int Nx, int Ny, int Nz) const { return GetVal(Nx, Ny, Nz); }
  /// All elements in their order.
  [[nodiscard]] std::span<const double> Elements() const { return {Mat.data(), Mat.size()}; }
  [[nodiscard]] const double* begin() const { return Mat.begin(); }
  [[nodiscard]] const double* end() const { return Mat.end(); }

  void MakeValidColRange(int& LowCol, int& HighCol) const;
  void MakeValidRowRange(int& LowRow, int& HighRow) const;
  void MakeValidLayerRange(int& LowLayer, int& HighLayer) const;

  /// Sets every element; OnChange does not fire. For 0 the storage is exchanged for fresh one where
  /// memory allows, which costs no pass over a large array.
  void Fill(double value);
  /// Sets the elements (i, i, i) and fires OnChange.
  void FillDiag(double value);
  /// Uniform values in [RangeLow, RangeHigh) from the process-wide generator. Fires OnChange.
  void FillRandomUniform(double RangeLow, double RangeHigh);
  /// Normal deviates. Fires OnChange.
  void FillRandomGauss(double Mean, double StdDev);

  /// Makes this array an element-by-element copy. OnChange fires for a resize and once more. Null:
  /// nothing happens.
  /// @throws EZELMatrixError  `: not enough memory on heap`; the array is unchanged then
  void Clone(const TMat3D* MatSource);
  /// Resizes the matrix to a rectangle of a layer and copies it there; the events of the matrix
  /// are those of TMatrix::Resize and CopyFrom. Null: nothing happens.
  /// @throws EZELMatrixError  `: specified layer beyond data range`
  void CopyLayerToMatrix(TMatrix* DestMat, int LowCol, int HighCol, int LowRow, int HighRow,
                         int Layer) const;
  /// Copies a rectangle, which is not clamped, so that its first cell goes to (LayLowCol,
  /// LayLowRow) of a layer. Cells outside the matrix count as 0, what falls outside the layer is
  /// dropped, a reversed range copies nothing. OnChange does not fire. Null: nothing happens.
  /// @throws EZELMatrixError  `: specified layer beyond data range`
  void CopyMatrixToLayer(const TMatrix* SrcMat, int SrcLowCol, int SrcHighCol, int SrcLowRow,
                         int SrcHighRow, int Layer, int LayLowCol, int LayLowRow);

  /// Position of the element nearest to Value, the first on ties; zeros if every distance is
  /// not-a-number or not below the largest double.
  void Find(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
            double Value, int& ColIx, int& RowIx, int& LayerIx) const;
  /// Smallest and largest element. They stay at the largest double and its negative if no element
  /// lies strictly below (above).
  void MinMax(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
              double& Minimum, double& Maximum) const;
  /// Mean and sample variance (divisor n - 1). The variance of one or two values is 1.0, that of
  /// equal values exactly 0. Double-double sums, rounded once.
  /// @throws EZELMatrixError  `: not enough memory on heap`; here and in Percentile only possible
  ///   for a block that is not contiguous
  void MeanVar(int LowCol, int HighCol, int LowRow, int HighRow, int LowLayer, int HighLayer,
               double& Mean, double& Variance) const;
  /// Percentile without interpolation: the value of rank n prob / 100 counted from 0, rounded to
  /// nearest, ties to even, at most n - 1. Linear time.
  /// @param prob  percent, limited to 0..100; not-a-number counts as 0
  /// @throws EZELMatrixError  `: not enough memory on heap`
  [[nodiscard]] double Percentile(double prob, int LowCol, int HighCol, int LowRow, int HighRow,
                                  int LowLayer, int HighLayer) const;
  /// The same estimated from SampleSize elements drawn with replacement, after the process-wide
  /// generator was seeded from the clock. Exact for SampleSize 0 or below and for blocks of at most
  /// SampleSize elements.
  [[nodiscard]] double Percentile(double prob, int LowCol, int HighCol, int LowRow, int HighRow,
                                  int LowLayer, int HighLayer, int SampleSize) const;

  /// Fingerprint of the elements in their order; see TNumMatrix::CRCofData.
  [[nodiscard]] std::string CRCofData() const;

  /// Reads the header of a binary file, whatever file it is.
  /// @return true if it is one of a three-dimensional array
  /// @throws EInOutError  if the file is missing, cut off or cannot be read
  static bool ReadBinaryHeader(std::string_view FName, int& NrColumns, int& NrRows, int& NrLayers,
                               int& NrTimeSlots, std::string& DataID, int& Format);
  /// Writes a binary file with DataID (its first 255 bytes) and elements; the guide describes it.
  /// @return 0; -1 if it cannot be written, an old file is left as it was then
  int SaveBinary(std::string_view FName) const;
  /// Reads a file of SaveBinary: size, DataID and elements. OnChange fires for a resize and at the
  /// end.
  /// @return 0; -1, with nothing changed, if the header is not that of such a file
  /// @throws EInOutError      as ReadBinaryHeader; the array is unchanged then
  /// @throws EZELMatrixError  `: not enough memory on heap`; the array is unchanged then
  int LoadBinary(std::string_view FName);

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

 protected:
  /// Takes one tag of a matrix that is read: a count is kept; the first cell gives the object the
  /// announced size, and each cell is stored by SetVal; a count and xmlMatBegin set FirstCell.
  /// @param Attr  attribute text; an index that is missing there is 0
  /// @return 0 to go on; 1 for xmlMatEnd; -1 for xmlInvalid and for a cell without a value
  int ProcessXmlTag(TMatXmlTag Tag, std::string_view Attr, std::string_view Content);
  bool FirstCell = false;  ///< no cell has been processed in the current read

 private:
  [[nodiscard]] bool Contains(int Nx, int Ny, int Nz) const {
    // Indices below 1 become huge.
    return static_cast<unsigned>(Nx) - 1U < static_cast<unsigned>(FNumX) &&
           static_cast<unsigned>(Ny) - 1U < static_cast<unsigned>(FNumY) &&
           static_cast<unsigned>(Nz) - 1U < static_cast<unsigned>(FNumZ);
  }
  [[nodiscard]] std::size_t Offset(int Nx, int Ny, int Nz) const {
    return (static_cast<std::size_t>(Nx - 1) * static_cast<std::size_t>(FNumY) +
            static_cast<std::size_t>(Ny - 1)) *
               static_cast<std::size_t>(FNumZ) +
           static_cast<std::size_t>(Nz - 1);
  }
  [[nodiscard]] detail::TGridView<3> View() const;
  [[nodiscard]] detail::TGridBlock<3> Clamped(int LowCol, int HighCol, int LowRow, int HighRow,
                                              int LowLayer, int HighLayer) const;
  void RequireLayer(int Layer) const;
  /// Takes over contents with their size and DataID; OnChange fires for a resize and at the end.
  void TakeAll(TDouble3DArray& contents, std::string_view id);
  template <class Operation>
  decltype(auto) Guarded(Operation&& operation) const;
  template <class Next>
  void FillBy(Next&& next);

  int FNumX = 1;
  int FNumY = 1;
  int FNumZ = 1;
  std::string FDataID;
  detail::TXmlState FXmlState;
  TDouble3DArray Mat;
};

}  // namespace zel
