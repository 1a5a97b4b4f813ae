/// @file
/// Table of observations with names, attributes, scales of measurement and cell states.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <tuple>

#include "zel/base/Zel_zelbase.h"
#include "zel/base/clipboard.h"
#include "zel/datatable/tabletypes.h"
#include "zel/matrix/TMatrix.h"

namespace zel {

class TVector;

/// Table of observations: one column per variable, one row per object, at least one of each.
///
/// A column has a name, an integer attribute, a scale of measurement and, for categories, up to 150
/// identifiers; a row has a name and an attribute. The value of a categorical cell (nominal or
/// ordinal scale) is the number 1..150 of its category.
///
/// Each cell has a state byte. Bit 0 (1): not usable as a number; bit 1 (2): empty; bit 5 (32):
/// imputed; bits 6 and 7 (64, 128): markings A and B; the others belong to the caller. A cell is a
/// number if bits 0 and 1 are clear. A mask selects a cell if (state & mask) is not 0.
///
/// Columns and rows are numbered from 1, and the column comes first. An index outside the table
/// makes a getter return 0, an empty string or stUnknown, and a setter do nothing. A range (low,
/// high) is clamped: (0, 0) is the whole dimension, otherwise each bound is limited to 1..N and a
/// reversed pair is exchanged. Names and identifiers are bytes; longer ones are cut.
///
/// Events fire when the operation is complete, so that a handler finds a consistent table.
/// Operations on many cells write the storage and fire once; the description of each says which
/// events. Allocations that fail raise EZELDataTableError, `: not enough memory on heap`, and leave
/// the table as it was.
class ZEL_API TDataTable : public TComponent, private detail::TTableArrays {
 public:
  /// Values have changed.
  TNotifyEvent OnChange;
  /// Structure, scales, identifiers or comment have changed.
  TNotifyEvent OnChangeSetup;
  /// Names of rows or columns have changed.
  TNotifyEvent OnChangeNames;
  /// Cell states have changed.
  TNotifyEvent OnChangeCellState;
  /// Attributes of rows or columns have changed.
  TNotifyEvent OnChangeAttrib;
  /// Progress, for callers; no operation of the table fires it.
  TOnPercentDoneEvent OnPercentDone;
  /// The dimensions have changed.
  TDataTableResizeEvent OnResize;
  /// A sort has exchanged two columns (1) or rows (2).
  TSortExchgEvent OnSortExchange;

  /// The values, NrOfColumns by NrOfRows; owned by the table or borrowed. Its OnChange and
  /// OnSortExchange belong to the table: a change made here directly raises the table's OnChange,
  /// and a sort takes the cell states along. Only the table sets its size; a matrix that was
  /// resized by others gets the size of the table back.
  TMatrix* NumericData = nullptr;

  /// One cell, 0, named C-1 and R-1, on the interval scale.
  /// @throws EZELDataTableError  `: failed to initialize (out of memory)`
  explicit TDataTable(TComponent* AOwner = nullptr);
  /// A borrowed matrix is detached and left alive; it must still exist.
  ~TDataTable() override;
  [[nodiscard]] std::string_view ClassName() const override;

  // Cells.

  /// Value of a cell; of a categorical one rounded to the nearest integer, ties to even.
  [[nodiscard]] double GetElem(int ACol, int ARow) const {
    if (!HasCell(ACol, ARow)) return 0;
    const double value = NumericData->GetVal(ACol, ARow);
    return IsCategorical(ACol) ? RoundEven(value) : value;
  }
  /// Stores a value and fires OnChange; the state stays.
  void SetElem(int ACol, int ARow, double Value) {
    if (!HasCell(ACol, ARow)) return;
    StoreValue(ACol, ARow, Value);
    if (OnChange) ChangedData();
  }
  [[nodiscard]] double operator()(int ACol, int ARow) const { return GetElem(ACol, ARow); }
  /// Identifier of the category k of a cell; k in decimal, cut to 10 characters, if it is not in
  /// 1..150. Empty for other scales.
  [[nodiscard]] TNominalIDStr GetElemNominal(int ACol, int ARow) const;
  /// Stores the number of the category with this identifier (letter case ignored) and fires
  /// OnChange. An identifier that is not found, which it never is in a column of another scale,
  /// takes the first empty slot.
  /// @throws EZELDataTableError  `: number of available nominal values exceeded`
  void SetElemNominal(int ACol, int ARow, std::string_view Value);
  /// State byte of a cell.
  [[nodiscard]] std::uint8_t GetCellState(int ACol, int ARow) const {
    return HasCell(ACol, ARow) ? States(ACol)[ARow - 1] : std::uint8_t{0};
  }
  /// Sets the state byte. Fires OnChangeCellState if it differs.
  void SetCellState(int ACol, int ARow, std::uint8_t Value);
  /// True if the bits 0 and 1 of the state are clear; false outside the table.
  [[nodiscard]] bool GetIsNumber(int ACol, int ARow) const {
    return HasCell(ACol, ARow) && (States(ACol)[ARow - 1] & 3) == 0;
  }
  [[nodiscard]] bool GetIsEmpty(int ACol, int ARow) const {
    return (GetCellState(ACol, ARow) & 2) != 0;
  }
  /// Sets or clears the bit. If the state changes, OnChangeCellState and then OnChange fire.
  void SetIsEmpty(int ACol, int ARow, bool Value) { SetStateBit(ACol, ARow, 2, Value); }
  [[nodiscard]] bool GetIsImputed(int ACol, int ARow) const {
    return (GetCellState(ACol, ARow) & 32) != 0;
  }
  void SetIsImputed(int ACol, int ARow, bool Value) { SetStateBit(ACol, ARow, 32, Value); }

  // Names, attributes, comment.

  [[nodiscard]] TDTNameStr GetColName(int ColNr) const;
  /// Fires OnChangeNames.
  void SetColName(int ColNr, std::string_view HLine);
  [[nodiscard]] TDTNameStr GetRowName(int RowNr) const;
  void SetRowName(int RowNr, std::string_view HLine);
  [[nodiscard]] int GetColAttrib(int ColNr) const;
  /// Fires OnChangeAttrib, like the other setters of attributes.
  void SetColAttrib(int ColNr, int Attrib);
  [[nodiscard]] int GetRowAttrib(int RowNr) const;
  void SetRowAttrib(int RowNr, int Attrib);
  /// Sets all attributes, or those of their bits that are set in Mask.
  void SetColAttributes(int Attrib);
  void SetColAttributes(int Attrib, std::uint32_t Mask);
  void SetRowAttributes(int Attrib);
  void SetRowAttributes(int Attrib, std::uint32_t Mask);
  /// Free text.
  [[nodiscard]] const std::string& Comment() const { return FComment; }
  /// Stores the text without its control characters and fires OnChangeSetup.
  void SetFComment(std::string_view value);
  /// Longest name in bytes.
  [[nodiscard]] int MaxColNameLength() const;
  [[nodiscard]] int MaxRowNameLength() const;
  /// First column (row) of this name, where blanks on both ends and the case of letters do not
  /// count; 0 if there is none.
  [[nodiscard]] int FindColIndex(std::string_view ColID) const;
  [[nodiscard]] int FindRowIndex(std::string_view RowID) const;

  // Scales and categories.

  [[nodiscard]] TMScaleType GetMScaleType(int ColNr) const {
    return HasColumn(ColNr) ? Type(ColNr).MScaleType : stUnknown;
  }
  /// Sets the scale, keeps the identifiers, and fires OnChangeSetup.
  void SetMScaleType(int ColNr, TMScaleType MScaleType);
  /// Adds a category unless the column is categorical and has it (letter case ignored): the first
  /// empty slot takes the identifier, the scale becomes nominal and OnChangeSetup fires.
  /// @return number of the category; 0 outside the table and when all 150 slots are taken
  int AddNominalID(int Col, std::string_view MScaleID);
  /// Sets the identifier of category OrdVal = 1..150; in columns of other scales it can only be
  /// made empty. Fires OnChangeSetup in any case.
  void SetNominalID(int ColIx, int OrdVal, std::string_view MScaleID);
  /// Identifier of category OrdVal = 1..150 of a categorical column.
  [[nodiscard]] TNominalIDStr GetNominalID(int ColIx, int OrdVal) const;
  /// Number of the first category with this identifier; 0 for none, an empty identifier or a column
  /// that is not categorical. IgnoreCase concerns the letters A to Z.
  [[nodiscard]] int OrdinalOfNominalID(int Col, std::string_view ID, bool IgnoreCase) const;
  /// Number of identifiers that are not empty, whatever the scale.
  [[nodiscard]] int CountNominalIDs(int Col) const;
  /// Makes all identifiers empty, keeps the scale, and fires OnChangeSetup.
  void ClearNominalIDs(int Col);
  /// Categorical columns in ascending order.
  [[nodiscard]] TIntArray ListOfCategorialVars() const;
  /// Counts the cells of each category, whatever their states.
  /// @param OrdList  150 counts, the one of category k at k - 1
  /// @return number of values outside 1..150; -1, with OrdList untouched, unless the column is
  ///   categorical
  int ScanForCatValues(int ACol, int LowRow, int HighRow, TIntArray& OrdList) const;
  /// Contingency table of two categorical variables. Rows with a cell that is not a number do not
  /// count.
  /// @param ContTab  [category of Col1 - 1][category of Col2 - 1], up to the highest that occur;
  ///   the last row and column hold the sums over the other variable, the last cell the total
  /// @return 0; -3 if some row had a value outside 1..150 (it is left out); -1 for a column outside
  ///   the table, -2 for one that is not categorical, ContTab being untouched then
  int CreateContingencyTable(int Col1, int Col2, int LowRow, int HighRow,
                             TInt2DArray& ContTab) const;

  // Size and order. Insertion and removal fire OnResize and then OnChangeSetup.

  [[nodiscard]] int NrOfColumns() const { return FNrOfCols; }
  [[nodiscard]] int NrOfRows() const { return FNrOfRows; }
  void SetNrCols(int value) { Resize(value, FNrOfRows); }
  void SetNrRows(int value) { Resize(FNrOfCols, value); }
  /// Sets the size and fires OnResize only. New cells are 0 with state 0; new columns, on the
  /// interval scale, and new rows are named C-9, R-9 and so on by their number and have attribute
  /// 0. The present size and sizes below 1: nothing happens.
  void Resize(int NrCols, int NrRows);
  void MakeValidColRange(int& LowCol, int& HighCol) const;
  void MakeValidRowRange(int& LowRow, int& HighRow) const;
  /// Inserts a row without name before row ix = 1..NrOfRows + 1. Categorical values of the rows
  /// that move are rounded to integers.
  void InsertRow(int ix);
  /// The same for a column, on the interval scale.
  void InsertColumn(int ix);
  /// Removes a row; the last one stays.
  void RemoveRow(int ix);
  /// Removes a column; the last one stays. The columns behind it move with their scales, but
  /// identifiers move only with categorical columns: where another column moves to, the identifiers
  /// of the place stay.
  void RemoveColumn(int ix);
  /// Removes the rows FirstRow..LastRow ((0, 0): all) that have a cell selected by the mask CState.
  /// If none is left, the table keeps one empty row without name.
  /// @return number of rows selected; -1 for a bound outside the table
  int RemoveMarkedRows(int FirstRow, int LastRow, std::uint8_t CState);
  /// Exchanges all that belongs to two columns (rows). Fires OnChange, OnChangeCellState,
  /// OnChangeAttrib, OnChangeNames, OnChangeSetup. Outside the table: nothing happens.
  void ExchangeColumns(int c1, int c2);
  void ExchangeRows(int r1, int r2);
  /// Reverses the order of the columns (rows). Events as ExchangeColumns.
  void MirrorColumns();
  void MirrorRows();
  /// Everything as in a new table, but for the size. Fires OnChangeNames, OnChangeAttrib,
  /// OnChangeCellState, OnChangeSetup.
  void Clear();

  // Copies.

  /// Makes this a copy of a TDataTable, handlers included; nothing fires. The matrix stays, with
  /// the table's handlers, and takes the values.
  /// @throws EConvertError  for a source of another class, or null
  void Assign(const TPersistent* Source) override;
  void AssignTo(TPersistent* Dest) const override;
  /// Copies all but the handlers; categorical values are rounded to integers. Fires OnResize if the
  /// size differs, then OnChange, OnChangeCellState, OnChangeSetup, OnChangeNames, OnChangeAttrib,
  /// and OnResize in any case. Null: nothing happens.
  void CopyContentsFrom(const TDataTable* ExtTab);
  /// Copies values and states of a rectangle, each bound limited to the source and a reversed pair
  /// exchanged ((0, 0) is index 1 here), so that its first cell goes to (DestCol, DestRow); what
  /// falls outside is dropped. Source and target may overlap. Fires OnChange, OnChangeCellState.
  /// Null: nothing happens.
  void CopyFrom(const TDataTable* ExtTab, int SourceColLo, int SourceRowLo, int SourceColHi,
                int SourceRowHi, int DestCol, int DestRow);
  /// Copies all states from a table of the same size and fires OnChangeCellState.
  /// @return false, with nothing changed, for another size or null
  bool CopyCellStatesFrom(const TDataTable* ExtTab);
  /// Borrows a matrix, which must outlive the table or its next matrix: the table takes its size
  /// and values, all scales become interval, identifiers stay. The matrix used before is freed if
  /// the table owned it, otherwise detached, its contents untouched. Fires OnResize if the size
  /// differs, OnResize in any case, then OnChange, OnChangeSetup, OnChangeNames, OnChangeAttrib,
  /// OnChangeCellState. Null and an empty matrix: nothing happens. The table's own matrix stays its
  /// own.
  void AssignAnotherDataMatrix(TMatrix* NewDMat);
  /// Makes one long column of all cells, column by column. The last column, "(data)", holds the
  /// values and states; it gets the highest of all scales. Categorical values are rounded. Row
  /// names and attributes repeat. Other columns keep scale, identifiers and states where the old
  /// table had cells. Fires OnResize if the size changes, and OnChange.
  /// @param ColHeadsAsVar        column 1, "(column)", is nominal with the old column's number as
  ///   category; the identifiers are `number:name`, of the first 150 columns
  /// @param IncludeColRowNumbers  the two columns before the last, "(col. index)" and "(row
  ///   index)", hold the old place
  void Serialize(bool ColHeadsAsVar, bool IncludeColRowNumbers);

  // Values as arrays; states are not touched. The values of categorical cells are not rounded.

  /// Copies a column (row); the array gets its length.
  /// @return 0; -1, with the array untouched, outside the table
  int CopyDataColumnToArray(int Col, TDoubleArray& DstArray) const;
  int CopyDataRowToArray(int Row, TDoubleArray& DstArray) const;
  /// Stores the array in a column (row) from index 1 on, as far as both go, and fires OnChange.
  /// @return 0; -1 outside the table
  int CopyDataColumnFromArray(int Col, std::span<const double> SrcArray);
  int CopyDataRowFromArray(int Row, std::span<const double> SrcArray);
  /// Copies all values; the array, indexed [column - 1][row - 1], gets the size of the table.
  void CopyDataToArray(TDouble2DArray& DstArray) const;
  /// Stores the array, as far as both go, and fires OnChange.
  /// @return 0; -1 if the sizes differ
  int CopyDataFromArray(const TDouble2DArray& SrcArray);
  int CopyDataFromArray(const TInt2DArray& SrcArray);

  // States of many cells. The setters fire OnChangeCellState once.

  void SetAllCellStates(std::uint8_t CellState);
  /// Clears both markings.
  void UnmarkAllCells();
  /// state := state xor mask.
  void InvertCellStates(std::uint8_t StateMask);
  /// Exchanges the markings A and B.
  void ExchangeMarkings();
  /// True if the mask selects a cell of the row (column, rectangle).
  [[nodiscard]] bool IfRowHasCellState(int row, std::uint8_t CellState) const;
  [[nodiscard]] bool IfColHasCellState(int col, std::uint8_t CellState) const;
  [[nodiscard]] bool IfAnyCellHasCellState(int LowCol, int LowRow, int HighCol, int HighRow,
                                           std::uint8_t CellState) const;
  /// Number of cells of the row (column) that the mask selects.
  [[nodiscard]] int CountMarkedCellsInRow(int Row, std::uint8_t StateMask) const;
  [[nodiscard]] int CountMarkedCellsInColumn(int Col, std::uint8_t StateMask) const;

  // Fingerprints: eight CRC-32 registers (reflected polynomial 0xEDB88320), where the byte at place
  // p = 1, 2, ... of an item goes to register p mod 8; each register as eight upper-case
  // hexadecimal digits.

  /// Items: the comment; each column name; the lowest bytes of the column attributes; each row
  /// name; those of the row attributes; the scales; each identifier, column by column.
  [[nodiscard]] std::string CRCofNamesAndAttributes() const;
  /// Items: the states of each column.
  [[nodiscard]] std::string CRCofCellStates() const;

  // Statistics of a rectangle of cells; its bounds are ranges. The values are those of NumericData.
  // A number cell has bits 0 and 1 of its state clear; a marked cell is a number cell that the mask
  // CellState selects, whose own bits 0 and 1 do not count. A numeric column is on the interval or
  // the ratio scale. The routines named after number cells and marked cells leave all other columns
  // out; NumData is the number of cells that have entered. Working memory for the cells:
  // EZELDataTableError, `: not enough memory on heap`, if there is none.

  [[nodiscard]] int CountNumCells(int LowCol, int LowRow, int HighCol, int HighRow) const;
  /// Number cells of all columns.
  [[nodiscard]] int CountValidCells(int LowCol, int LowRow, int HighCol, int HighRow) const;
  /// Cells of all columns with bit 1 of the state.
  [[nodiscard]] int CountEmptyCells(int LowCol, int LowRow, int HighCol, int HighRow) const;
  /// Cells of all columns with bit 5 of the state.
  [[nodiscard]] int CountImputedCells(int LowCol, int LowRow, int HighCol, int HighRow) const;
  /// Sums of the values and of their squares, correctly rounded to an ulp or two.
  double SumOfNumCells(int LowCol, int LowRow, int HighCol, int HighRow, int& NumData) const;
  double SumOfMarkedCells(int LowCol, int LowRow, int HighCol, int HighRow, std::uint8_t CellState,
                          int& NumData) const;
  double SumOfSquaredNumCells(int LowCol, int LowRow, int HighCol, int HighRow, int& NumData) const;
  double SumOfSquaredMarkedCells(int LowCol, int LowRow, int HighCol, int HighRow,
                                 std::uint8_t CellState, int& NumData) const;
  /// Mean (0 for no cells) and variance with the divisor n - 1 (1 for fewer than three cells).
  /// @return number of cells
  int MeanVarOfNumCells(int LowCol, int LowRow, int HighCol, int HighRow, double& Mean,
                        double& Variance) const;
  int MeanVarOfMarkedCells(int LowCol, int LowRow, int HighCol, int HighRow, std::uint8_t CellState,
                           double& Mean, double& Variance) const;
  /// Extremes; the largest double and its negative for no cells. Not-a-numbers count, but win
  /// nothing.
  /// @return number of cells
  int MinMaxOfNumCells(int LowCol, int LowRow, int HighCol, int HighRow, double& Minimum,
                       double& Maximum) const;
  int MinMaxOfMarkedCells(int LowCol, int LowRow, int HighCol, int HighRow, std::uint8_t CellState,
                          double& Minimum, double& Maximum) const;
  /// The same of the number cells of all columns; categorical values are rounded.
  int MinMaxOfValidCells(int LowCol, int LowRow, int HighCol, int HighRow, double& Minimum,
                         double& Maximum) const;
  /// Geometric mean of the positive values, whose number is NumData; 0 if some value is 0 or none
  /// is positive.
  /// @throws EZELDataTableError  `: negative argument passed to GeometricMean`
  double GeometricMeanOfNumCells(int LowCol, int LowRow, int HighCol, int HighRow,
                                 int& NumData) const;
  /// 0 for no cells.
  /// @throws EZELDataTableError  `: negative or zero argument passed to HarmonicMean`
  double HarmonicMeanOfNumCells(int LowCol, int LowRow, int HighCol, int HighRow,
                                int& NumData) const;
  /// Quartiles at the places (n + 1) p of the sorted values x_1..x_n, interpolated; x_1 or x_n
  /// beyond them, 0 for no cells (Hyndman and Fan 1996, definition 6). O(n).
  /// @return true
  bool QuartilesOfNumCells(int LowCol, int LowRow, int HighCol, int HighRow, double& Q1, double& Q2,
                           double& Q3, int& NumData) const;
  bool QuartilesOfMarkedCells(int LowCol, int LowRow, int HighCol, int HighRow, double& Q1,
                              double& Q2, double& Q3, std::uint8_t CellState, int& NumData) const;
  /// Percentile at the place (n - 1) prob / 100 of the sorted values y_0..y_(n-1), interpolated; 0
  /// for no cells (definition 7). O(n).
  /// @param prob  in percent, limited to 0..100
  double PercentileOfNumCells(double prob, int LowCol, int LowRow, int HighCol, int HighRow,
                              int& NumData) const;
  double PercentileOfMarkedCells(double prob, int LowCol, int LowRow, int HighCol, int HighRow,
                                 std::uint8_t CellState, int& NumData) const;
  /// Puts the number cells of all columns that CellState selects, or all of them for 0xFF, into a
  /// vector, column by column. The vector gets their number as its length; for none it stays as it
  /// is. Null: they are only counted.
  /// @return their number
  int CopyCellsToVector(int LowCol, int LowRow, int HighCol, int HighRow, std::uint8_t CellState,
                        TVector* DestVect) const;
  /// Covariances of the columns LoC..HiC over the rows LoR..HiR, pair by pair over the n rows in
  /// which both cells are numbers; on any scale, bounds as they are. Mode 0: sum of x y / (n - 1);
  /// 1: about the means of the columns, each over all its number cells (0 for columns that are not
  /// numeric); 2: Pearson's correlation, 0 for n < 3 and for constants; 3: its square; 4: sum of
  /// (x - y)^2 / (n - 1). 0 where n < 2. The diagonal of the modes 2 and 3 is 1.
  ///
  /// ProcStat grows by 1 for each mean (mode 1) and for each row of the result, and is polled with
  /// AbortMathProc, which is cleared first.
  /// @param CovarMat  at least as many columns and rows as there are columns; only its upper left
  ///   corner is written. Its OnChange fires once.
  /// @return false if it is null or too small, for another mode, or if aborted
  bool CalcCovar(TMatrix* CovarMat, int LoC, int HiC, int LoR, int HiR, int Mode) const;

  // Columns, attributes and scales.

  /// Column col has exactly two values, whatever the states: v1 < v2. Otherwise false, with the
  /// first values found in v1 and v2 or 0.
  bool CheckDichotomousColumn(int col, double& v1, double& v2) const;
  /// All values of a column are equal, whatever the states.
  [[nodiscard]] bool IsConstantColumn(int ColIx) const;
  /// Number of different attributes of all rows (columns).
  [[nodiscard]] int RowAttribLevels() const;
  [[nodiscard]] int ColAttribLevels() const;
  /// Largest and smallest attribute of a range of rows (columns), and the first index that has it.
  int MaxRowAttrib(int FirstRow, int LastRow, int& Row) const;
  int MinRowAttrib(int FirstRow, int LastRow, int& Row) const;
  int MaxColAttrib(int FirstCol, int LastCol, int& Col) const;
  int MinColAttrib(int FirstCol, int LastCol, int& Col) const;
  /// Highest scale of a range of columns, at least stNominal; the lowest, at most stRatio.
  [[nodiscard]] TMScaleType FindHighestMLevel(int FirstCol, int LastCol) const;
  [[nodiscard]] TMScaleType FindLowestMLevel(int FirstCol, int LastCol) const;

  // Transformations of the values.

  /// Sets all cells of the table that StateMask selects, all its bits counting, and fires OnChange
  /// if there are any.
  /// @return their number
  int FillMarkedCells(double Value, std::uint8_t StateMask);
  /// Standardizes the number cells of each numeric column to mean 0 and variance 1; a column of
  /// variance 0 stays. Fires OnChange if a column has changed.
  /// @param Means, StdDevs  element c receives mean and standard deviation of numeric column c,
  ///   if it exists; null: not wanted
  void StandardizeNumCellColumns(TVector* Means, TVector* StdDevs);
  /// The same by rows: the number cells of a row by mean and variance of those in numeric columns.
  /// Fires OnChange.
  /// @throws EZELDataTableError  "standardization of rows is not possible with nominal or ordinal
  ///   variables", before anything has changed
  void StandardizeNumCellRows(TVector* Means, TVector* StdDevs);
  /// Subtracts the mean only. Fires OnChange.
  void MeanCenterNumCellColumns(TVector* Means);
  /// @throws EZELDataTableError  "mean centering of rows is not possible with nominal or ordinal
  ///   variables", before anything has changed
  void MeanCenterNumCellRows(TVector* Means);

  // Sorts of a rectangle, whose bounds are ranges: comb sorts, which leave no particular order of
  // equal keys; not-a-numbers stay where the comparisons leave them. OnSortExchange reports every
  // exchange as it is made; without a handler the cells move once. A sort of a single row or column
  // does nothing. A handler that makes the table smaller ends the sort.

  /// Sorts rows by the values of a column; values and states of the rectangle move, the values of
  /// the key column also from outside it, and with IncludeHeaders names and attributes of the rows.
  /// Fires OnChange, and with IncludeHeaders OnChangeNames and OnChangeAttrib. A column outside the
  /// table: nothing happens.
  void SortRows(int SortColIx, bool Ascending, int LowCol, int LowRow, int HighCol, int HighRow,
                bool IncludeHeaders);
  /// The same for columns by the values of a row; scales with their identifiers are headers, too.
  void SortCols(int SortRowIx, bool Ascending, int LowCol, int LowRow, int HighCol, int HighRow,
                bool IncludeHeaders);
  /// Sort rows (columns) by attribute or name; names, attributes, values and states of the
  /// rectangle move, and the scales with identifiers of columns. Fire OnChange, then OnChangeAttrib
  /// or OnChangeNames. Names compare byte by byte, with IgnoreCase letters A to Z as lower case.
  void SortRowAttributes(bool Ascending, int LowCol, int LowRow, int HighCol, int HighRow);
  void SortRowNames(bool Ascending, int LowCol, int LowRow, int HighCol, int HighRow) {
    SortRowNames(Ascending, false, LowCol, LowRow, HighCol, HighRow);
  }
  void SortRowNames(bool Ascending, bool IgnoreCase, int LowCol, int LowRow, int HighCol,
                    int HighRow);
  void SortColAttributes(bool Ascending, int LowCol, int LowRow, int HighCol, int HighRow);
  void SortColNames(bool Ascending, int LowCol, int LowRow, int HighCol, int HighRow) {
    SortColNames(Ascending, false, LowCol, LowRow, HighCol, HighRow);
  }
  void SortColNames(bool Ascending, bool IgnoreCase, int LowCol, int LowRow, int HighCol,
                    int HighRow);

  // Text files of delimited cells: RFC 4180 and what is found beside it (LF, CRLF or CR, a
  // byte-order mark, blanks around cells).

  /// Reads a text file. A column of numbers is on the interval scale. An empty cell and the words
  /// NA, NAN (in any case) and ### make an empty cell (state 2) of value 0; INF and -INF are
  /// numbers; in quotation marks the words are texts. A column in which anything else occurs is
  /// nominal: its texts, cut to the UTF-8 characters that 10 bytes hold, are the categories in the
  /// order in which they turn up; texts that would be the same when cut end in ~2, ~3 and so on. A
  /// first line that begins with "# " is the comment; a first column of data headed (attribute),
  /// not in quotation marks, holds the row attributes. All else is as in a new table. Fires what
  /// CopyContentsFrom fires.
  /// @param IncludeColHeaders  the first line holds the names of the columns; with row names it may
  ///   lack the first cell
  /// @param IncludeRowHeaders  the first column holds the names of the rows
  /// @param DecSep  the decimal separator
  /// @param Message  receives, for a negative result, what is wrong, with the line or the column
  /// @return 0; otherwise the table is as it was: -1 the file cannot be read, -2 there are no rows
  /// or
  ///   no columns, -3 a row has another number of cells than the first line, -4 a quotation mark is
  ///   not closed or followed by more than blanks, -5 a column has more than 150 different texts,
  ///   -6 a row attribute is not an integer
  int ImportFromCSV(std::string_view FName, TCSVDelimiters Delimiter, bool IncludeColHeaders,
                    bool IncludeRowHeaders, TDecPSep DecSep, std::string& Message);
  int ImportFromCSV(std::string_view FName, TCSVDelimiters Delimiter, bool IncludeColHeaders,
                    bool IncludeRowHeaders, TDecPSep DecSep = dpsPoint);
  /// The same from a stream, with options and a report.
  int ImportFromCSV(std::istream& InStream, TCSVImport& Import);
  /// Writes a text file that ImportFromCSV reads: empty cells as NA, categories by their
  /// identifiers. States but for emptiness, column attributes and scales are not part of it, nor
  /// are unused identifiers.
  /// @param Precision  decimals; negative: the shortest text that gives the same number again
  /// @param IncludeRowAttributes  as a column "(attribute)" before the others
  /// @param IncludeComment  as a first line behind "# "
  /// @return false if the file could not be written; an old file is untouched then
  bool ExportAsCSV(std::string_view FName, int Precision, TCSVDelimiters Delimiter,
                   bool IncludeColHeaders, bool IncludeRowHeaders,
                   bool IncludeRowAttributes = false, bool IncludeComment = false,
                   TDecPSep DecSep = dpsPoint) const;

  // Text files in the ASC form that all containers share. What that form has no place for (column
  // attributes, scales, categories, states, the value of a cell that is no number, names with
  // control characters) stands behind the rows, where the other readers of the form do not look.
  // Names and row attributes that are those of a new table are left out.

  /// Writes the table. Categories are written as their numbers, cells that are no numbers as NAN.
  /// @param Precision  decimals; negative: the shortest text that gives the same number again, so
  ///   that a table is read back as it was
  /// @return 0; -1 if the file could not be written, and an old file is untouched then
  int ExportAsASC(std::string_view FName, int Precision) const;
  /// The same with data of the caller's: further columns, which stand behind the rows, each in a
  /// line, so that the header and the rows are those of the table alone.
  /// @param CustData  [column][row], as text; rows that it does not have are written as empty text,
  ///   those that the table does not have are left out
  int ExportAsASC(std::string_view FName, int Precision, const TStr2DArray& CustData) const;
  /// The same to a stream or an open text file, whose state tells whether that worked.
  void ExportAsASC(std::ostream& OutStream, int Precision) const;
  /// Reads a table, or what another container has written: NAN (in any case) and ### make an empty
  /// cell (state 2) of value 0, INF and -INF are numbers, line ends in a row do not count. A first
  /// line that is the default of the writer is no comment; control characters in another one are
  /// left out. What follows the rows in a file of others is ignored. Fires what CopyContentsFrom
  /// fires.
  /// @return 0; otherwise the table is as it was: -8 there is no such file, -1 it cannot be read,
  ///   1..4 this line of the header is bad, -2 there are no rows or no columns, -3 rows or values
  ///   are missing, -5 a row attribute is not an integer, -6 a value is not a number, -9 a part
  ///   behind the rows is bad
  int ImportASC(std::string_view FName);
  /// The same with data of the caller's, [column][row]; empty if the file has none.
  int ImportASC(std::string_view FName, TStr2DArray& CustData);
  int ImportASC(std::istream& InStream);
  int ImportASC(const TClipboard& ClipBd);
  /// @param Message  receives, for a result other than 0, what is wrong, with the line
  int ImportASC(std::istream& InStream, TStr2DArray& CustData, std::string& Message);
  /// Reads values and states into the table from cell (PosX, PosY) on, the first column and row
  /// being 1; the table grows where they do not fit. Fires OnResize if it does, then OnChange and
  /// OnChangeCellState; with ReplaceIDs also OnChangeSetup, OnChangeNames, OnChangeAttrib. A failed
  /// read leaves the table as it was.
  /// @param ReplaceIDs  the names (if the file has them), attributes, scales and categories of the
  ///   columns and rows that are read replace those of the table. Without it the values of a
  ///   categorical column that come to a categorical one get the numbers that their categories
  ///   have there, found by the identifiers (letter case ignored); new ones take the first empty
  ///   slots, and OnChangeSetup fires. All other values go as they are.
  /// @return as ImportASC; also -4: PosX or PosY is below 1 or the table would be too large; -10: a
  ///   column would have more than 150 categories
  int ReadFromASC(std::string_view FName, int PosX, int PosY, bool ReplaceIDs);
  int ReadFromASC(std::istream& InStream, int PosX, int PosY, bool ReplaceIDs);
  int ReadFromASC(const TClipboard& ClipBd, int PosX, int PosY, bool ReplaceIDs);

  // XML: an element `datatable` with all that belongs to a table; the guide describes it. Names,
  // identifiers and comments may be of any bytes.

  /// Writes a file with the XML declaration and the table.
  /// @param Precision  decimals, of values below 1 significant digits; negative: the shortest text
  ///   that gives the same number again, so that a table is read back as it was
  /// @param DataID  an identifier by which the readers find the table among others
  /// @return false if the file could not be written; an old file is untouched then
  bool SaveAsXMLFile(std::string_view FName, int Precision, std::string_view DataID) const;
  /// Writes the element, behind the XML declaration if that is wanted.
  void WriteToXMLStream(std::ostream& OutStream, bool CreateHeader, int Precision,
                        std::string_view DataID) const;
  void WriteToOpenXMLFile(std::ostream& TextFile, bool CreateHeader, int Precision,
                          std::string_view DataID) const;
  /// Reads the first table with the given identifier, or the first one if that is empty, whatever
  /// elements it stands in. Elements in it that are none of a table's are passed over. Fires what
  /// CopyContentsFrom fires.
  /// @return false, with the table as it was, if there is none or it is damaged
  bool LoadFromXMLFile(std::string_view FName, std::string_view DataID);
  /// The same from a stream, which is left behind the element; after a failure behind the tag that
  /// showed the damage, or at the end.
  bool ReadFromXMLStream(std::istream& InStream, std::string_view DataID);
  bool ReadFromOpenXMLFile(std::istream& TextFile, std::string_view DataID);
  /// @param Message  receives, for a false result, what is wrong
  bool ReadFromXMLStream(std::istream& InStream, std::string_view DataID, std::string& Message);
  /// The same from a text.
  /// @param StartAt  0-based position at which to start; moved behind the element, or unchanged
  ///   after a failure
  bool ReadFromXMLString(std::string_view InString, std::size_t& StartAt, std::string_view DataID);

  // Notification.

  void ChangedData();
  void ChangedSetup();
  void ChangedNames();
  void ChangedAttrib();
  void ChangedCellStates();
  /// Handler of NumericData->OnChange: fires OnChange.
  void DataHasChanged(TObject* Sender);
  /// Fires OnPercentDone.
  void PercDone(TObject* Sender, int Percent);

 protected:
  /// Takes the tags of a table as the readers of tags give them for the list DTxmlTagNames:
  /// xmlDataTableId begins a table, the last tag replaces the contents of this one, with the events
  /// of CopyContentsFrom. The tags in a container may come with it, as its content, or after it.
  /// @return 0 to go on; 1 if the table is complete; -1 for what is not understood: xmlInvalid,
  ///   which may be passed over, or damage that ends the table
  int ProcessXmlTag(TDTxmlTags xmlTag, std::string_view Attr, std::string_view Content);

 private:
  class TDetached;

  [[nodiscard]] bool HasColumn(int c) const {
    return static_cast<unsigned>(c) - 1U < static_cast<unsigned>(FNrOfCols);
  }
  [[nodiscard]] bool HasRow(int r) const {
    return static_cast<unsigned>(r) - 1U < static_cast<unsigned>(FNrOfRows);
  }
  [[nodiscard]] bool HasCell(int c, int r) const { return HasColumn(c) && HasRow(r); }
  [[nodiscard]] std::size_t Columns() const { return static_cast<std::size_t>(FNrOfCols); }
  [[nodiscard]] std::size_t Rows() const { return static_cast<std::size_t>(FNrOfRows); }
  [[nodiscard]] std::uint8_t* States(int c) {
    return FCState.data() + static_cast<std::size_t>(c - 1) * Rows();
  }
  [[nodiscard]] const std::uint8_t* States(int c) const {
    return FCState.data() + static_cast<std::size_t>(c - 1) * Rows();
  }
  /// Values of a column, once FitMatrix has been called.
  [[nodiscard]] double* Values(int c) {
    return NumericData->data() + static_cast<std::size_t>(c - 1) * Rows();
  }
  [[nodiscard]] detail::TColumnType& Type(int c) { return FVType[static_cast<std::size_t>(c - 1)]; }
  [[nodiscard]] const detail::TColumnType& Type(int c) const {
    return FVType[static_cast<std::size_t>(c - 1)];
  }
  [[nodiscard]] bool IsCategorical(int c) const {
    return detail::IsCategoricalScale(Type(c).MScaleType);
  }
  void StoreValue(int c, int r, double value) {
    const int rows = NumericData->NrOfRows();
    if (c > NumericData->NrOfColumns() || r > rows) return;
    NumericData->data()[static_cast<std::size_t>(c - 1) * static_cast<std::size_t>(rows) +
                        static_cast<std::size_t>(r - 1)] = value;
  }
  void SetStateBit(int ACol, int ARow, std::uint8_t bit, bool value);
  /// Copies n values of a column from row r on; 0 for what the matrix does not have.
  void ReadValues(int c, int r, std::size_t n, double* out) const;
  /// Category of a cell, whose column is categorical; outside 1..150 if it has none.
  [[nodiscard]] int Category(int c, int r) const {
    return RoundToInt<int>(NumericData->GetVal(c, r));
  }

  /// Runs an operation whose allocations may fail.
  /// @throws EZELDataTableError
  template <class Operation>
  decltype(auto) Guarded(Operation&& operation) const;
  /// Sets the handlers of the matrix.
  void AttachMatrix();
  /// Gives the matrix the size of the table, should somebody have changed it.
  void FitMatrix();
  /// Resizes all but the matrix, which resizeMatrix() does when everything else is sure to succeed.
  /// The matrix must fit the table unless it is to be replaced.
  template <class ResizeMatrix>
  void ResizeArrays(std::int64_t nCols, std::int64_t nRows, ResizeMatrix&& resizeMatrix);
  /// Sets the number of names, attributes and scales.
  void ResizeLines(std::size_t columns, std::size_t rows);
  /// Resizes without events.
  void ResizeTo(std::int64_t nCols, std::int64_t nRows);
  /// Takes over all of a table and fires what CopyContentsFrom fires.
  void TakeContents(detail::TTableContents&& contents);
  /// ImportFromCSV of a text.
  int ReadText(std::string_view text, TCSVImport& import);
  /// Hands the whole text of a file or a stream to a reader of ASC text.
  /// @return what that returns; -8 and -1 as ImportASC
  template <class Source, class Read>
  int WithText(Source&& source, Read read) const;
  /// ImportASC and ReadFromASC of a text.
  int TakeASC(std::string_view text, TStr2DArray& custData, std::string& message);
  int PasteASC(std::string_view text, int PosX, int PosY, bool ReplaceIDs);
  /// Gives columns that go to column PosX and those behind it the scales and categories of these,
  /// new ones added, and their values the numbers of the categories there.
  /// @return false if a column would have too many
  bool MergeCategories(detail::TTableContents& contents, int PosX) const;
  bool ReadXml(detail::XmlReader reader, std::string_view DataID, std::string& Message);
  /// Calls write(view) with all of this table.
  template <class Write>
  void WithView(Write&& write) const;
  void FireResize(int oldCols, int oldRows);
  /// Events of an exchange.
  void ChangedOrder();
  /// Exchange names, attributes and scales.
  void SwapColumnHeads(int c1, int c2);
  void SwapRowHeads(int r1, int r2);
  /// Exchanges all that belongs to two columns, without events.
  void SwapColumns(int c1, int c2);
  /// Handler of NumericData->OnSortExchange: what belongs to the exchanged lines follows them.
  void ExchangeDuringSort(TObject* Sender, std::uint8_t ExchgWhat, int Index1, int Index2,
                          int First, int Last);
  template <class Array>
  int StoreArray(const Array& source);
  /// All handlers.
  [[nodiscard]] auto Events() {
    return std::tie(OnChange, OnChangeSetup, OnChangeNames, OnChangeCellState, OnChangeAttrib,
                    OnPercentDone, OnResize, OnSortExchange);
  }
  [[nodiscard]] auto Events() const {
    return std::tie(OnChange, OnChangeSetup, OnChangeNames, OnChangeCellState, OnChangeAttrib,
                    OnPercentDone, OnResize, OnSortExchange);
  }

  /// A rectangle, after its bounds have been made valid.
  struct TCellRange {
    int LowCol, LowRow, HighCol, HighRow;
  };
  [[nodiscard]] TCellRange ValidRange(int LowCol, int LowRow, int HighCol, int HighRow) const {
    MakeValidColRange(LowCol, HighCol);
    MakeValidRowRange(LowRow, HighRow);
    return {LowCol, LowRow, HighCol, HighRow};
  }
  [[nodiscard]] bool IsNumeric(int c) const {
    const TMScaleType scale = Type(c).MScaleType;
    return scale == stInterval || scale == stRatio;
  }
  /// The number cells that a mask selects, column by column.
  /// @param mask  kAnyState: all of them
  [[nodiscard]] std::vector<double> NumberCells(const TCellRange& range, bool isNumericOnly,
                                                int mask) const;
  static constexpr int kAnyState = -1;
  /// Number of cells with (state & mask) == wanted.
  [[nodiscard]] int CountCells(const TCellRange& range, bool isNumericOnly, std::uint8_t mask,
                               std::uint8_t wanted) const;
  /// Subtracts the mean from the number cells of each numeric column and divides by the standard
  /// deviation, if that is wanted and not 0.
  /// @return whether cells have changed
  bool StandardizeColumns(TVector* Means, TVector* StdDevs, bool isDivided);
  void StandardizeRows(TVector* Means, TVector* StdDevs, bool isDivided);
  void RefuseCategorical(const char* message) const;
  /// Puts row order[k] (from 0, of the rectangle) to place k.
  void ReorderRows(const TCellRange& range, int keyColumn, std::span<const std::uint64_t> order);
  /// The same for columns.
  void ReorderColumns(const TCellRange& range, int keyRow, std::span<const std::uint64_t> order);
  /// Without a handler for exchanges: sorts by the keys of the indices, and moves all once.
  /// @param keyLine  column or row whose values are the keys, which then move, too; 0: other keys
  /// @return false, with nothing done, if there is a handler or no memory
  template <class Key>
  bool SortAtOnce(const TCellRange& range, bool isRows, int keyLine, bool ascending, Key key);
  /// SortRows, SortCols.
  void SortByValues(int keyLine, bool isRows, bool ascending, const TCellRange& range,
                    bool includeHeaders);
  /// Comb sort of the rows or columns of a rectangle, with all that belongs to them, by the key of
  /// an index. Fires OnChange.
  /// @return false, with nothing done, for a single row or column
  template <class Key>
  bool SortLines(const TCellRange& range, bool isRows, bool ascending, Key key);
  bool SortByNames(const TCellRange& range, bool isRows, bool ascending, bool ignoreCase);
  void ExchangeLines(bool isRows, int i, int j, int first, int last);

  int FNrOfCols = 1;
  int FNrOfRows = 1;
  bool FSortIncludeHd = false;                   // a sort moves names and attributes, too
  std::unique_ptr<TMatrix> FOwned;               // empty while the matrix is borrowed
  std::unique_ptr<detail::TXmlTable> FXmlTable;  // whose tags ProcessXmlTag takes
};

}  // namespace zel
