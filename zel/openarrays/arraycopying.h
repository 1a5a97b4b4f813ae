/// @file
/// Copies of plain arrays and of parts of them, conversion between element types.
/// Indices count from 0 and are not clamped. An array of two dimensions is indexed [column][row].
#pragma once

#include <span>

#include "zel/base/Zel_zelbase.h"

namespace zel {

/// Copies an array, also to another element type. Dest gets the extents of Source. Doubles become
/// integers by rounding, ties to even, after they have been limited to the range of the integers
/// (not-a-number becomes 0).
/// @return 0; -1 for an empty source of two or more dimensions, where Dest stays. A one-dimensional
///   Dest becomes empty
/// @throws EZELError  "CloneArray: not enough memory"; Dest is unchanged then, here and below
ZEL_API int CloneArray(std::span<const bool> Source, TBoolArray& Dest);
ZEL_API int CloneArray(const TBool2DArray& Source, TBool2DArray& Dest);
ZEL_API int CloneArray(std::span<const double> Source, TDoubleArray& Dest);
ZEL_API int CloneArray(const TDouble2DArray& Source, TDouble2DArray& Dest);
ZEL_API int CloneArray(const TDouble3DArray& Source, TDouble3DArray& Dest);
ZEL_API int CloneArray(const TDouble4DArray& Source, TDouble4DArray& Dest);
ZEL_API int CloneArray(std::span<const int> Source, TIntArray& Dest);
ZEL_API int CloneArray(const TInt2DArray& Source, TInt2DArray& Dest);
ZEL_API int CloneArray(const TInt3DArray& Source, TInt3DArray& Dest);
ZEL_API int CloneArray(const TInt4DArray& Source, TInt4DArray& Dest);
ZEL_API int CloneArray(std::span<const float> Source, TDoubleArray& Dest);
ZEL_API int CloneArray(std::span<const double> Source, TSingleArray& Dest);
ZEL_API int CloneArray(std::span<const double> Source, TIntArray& Dest);
ZEL_API int CloneArray(const TDouble2DArray& Source, TInt2DArray& Dest);
ZEL_API int CloneArray(const TDouble3DArray& Source, TInt3DArray& Dest);
ZEL_API int CloneArray(const TDouble4DArray& Source, TInt4DArray& Dest);
ZEL_API int CloneArray(std::span<const int> Source, TDoubleArray& Dest);
ZEL_API int CloneArray(const TInt2DArray& Source, TDouble2DArray& Dest);
ZEL_API int CloneArray(const TInt3DArray& Source, TDouble3DArray& Dest);
ZEL_API int CloneArray(const TInt4DArray& Source, TDouble4DArray& Dest);

/// The same with the elements in reverse order. Source may be Dest.
/// @return 0; -1 if Source is empty
ZEL_API int CloneAndReverseArray(std::span<const bool> Source, TBoolArray& Dest);
ZEL_API int CloneAndReverseArray(std::span<const int> Source, TIntArray& Dest);
ZEL_API int CloneAndReverseArray(std::span<const double> Source, TDoubleArray& Dest);
ZEL_API int CloneAndReverseArray(std::span<const float> Source, TDoubleArray& Dest);
ZEL_API int CloneAndReverseArray(std::span<const double> Source, TSingleArray& Dest);
ZEL_API int CloneAndReverseArray(std::span<const double> Source, TIntArray& Dest);
ZEL_API int CloneAndReverseArray(std::span<const int> Source, TDoubleArray& Dest);

/// Copies a whole array into another one, so that its first cell goes to the given place. Dest is
/// not resized; it may be Source.
/// @return 0; -1 if Source or Dest is empty; -2 if an index is negative or the cells do not fit
///   into Dest, and nothing changes
ZEL_API int CopyArray(std::span<const bool> Source, int DestIx, std::span<bool> Dest);
ZEL_API int CopyArray(const TBool2DArray& Source, int DestCol, int DestRow, TBool2DArray& Dest);
ZEL_API int CopyArray(std::span<const double> Source, int DestIx, std::span<double> Dest);
ZEL_API int CopyArray(const TDouble2DArray& Source, int DestCol, int DestRow, TDouble2DArray& Dest);
ZEL_API int CopyArray(const TDouble3DArray& Source, int DestCol, int DestRow, int DestLayer,
                      TDouble3DArray& Dest);
ZEL_API int CopyArray(const TDouble4DArray& Source, int DestCol, int DestRow, int DestLayer,
                      int DestTSlot, TDouble4DArray& Dest);
ZEL_API int CopyArray(std::span<const int> Source, int DestIx, std::span<int> Dest);
ZEL_API int CopyArray(const TInt2DArray& Source, int DestCol, int DestRow, TInt2DArray& Dest);
ZEL_API int CopyArray(const TInt3DArray& Source, int DestCol, int DestRow, int DestLayer,
                      TInt3DArray& Dest);
ZEL_API int CopyArray(const TInt4DArray& Source, int DestCol, int DestRow, int DestLayer,
                      int DestTSlot, TInt4DArray& Dest);

/// The same with a range of Source.
/// @return as above; -2 also if an index of the range lies outside Source or a low one is above its
///   high one
ZEL_API int CopyArray(std::span<const bool> Source, int LowIx, int HighIx, int DestIx,
                      std::span<bool> Dest);
ZEL_API int CopyArray(const TBool2DArray& Source, int LowCol, int LowRow, int HighCol, int HighRow,
                      int DestCol, int DestRow, TBool2DArray& Dest);
ZEL_API int CopyArray(std::span<const double> Source, int LowIx, int HighIx, int DestIx,
                      std::span<double> Dest);
ZEL_API int CopyArray(const TDouble2DArray& Source, int LowCol, int LowRow, int HighCol,
                      int HighRow, int DestCol, int DestRow, TDouble2DArray& Dest);
ZEL_API int CopyArray(const TDouble3DArray& Source, int LowCol, int LowRow, int LowLayer,
                      int HighCol, int HighRow, int HighLayer, int DestCol, int DestRow,
                      int DestLayer, TDouble3DArray& Dest);
ZEL_API int CopyArray(const TDouble4DArray& Source, int LowCol, int LowRow, int LowLayer,
                      int LowTSlot, int HighCol, int HighRow, int HighLayer, int HighTSlot,
                      int DestCol, int DestRow, int DestLayer, int DestTSlot, TDouble4DArray& Dest);
ZEL_API int CopyArray(std::span<const int> Source, int LowIx, int HighIx, int DestIx,
                      std::span<int> Dest);
ZEL_API int CopyArray(const TInt2DArray& Source, int LowCol, int LowRow, int HighCol, int HighRow,
                      int DestCol, int DestRow, TInt2DArray& Dest);
ZEL_API int CopyArray(const TInt3DArray& Source, int LowCol, int LowRow, int LowLayer, int HighCol,
                      int HighRow, int HighLayer, int DestCol, int DestRow, int DestLayer,
                      TInt3DArray& Dest);
ZEL_API int CopyArray(const TInt4DArray& Source, int LowCol, int LowRow, int LowLayer, int LowTSlot,
                      int HighCol, int HighRow, int HighLayer, int HighTSlot, int DestCol,
                      int DestRow, int DestLayer, int DestTSlot, TInt4DArray& Dest);

/// Copies rows FirstRow..LastRow of a column; Dest gets that length.
/// @return 0; -1 if Source is empty, -2 if the rows are not a range of it, -3 if the column lies
///   outside
ZEL_API int CopyArrayColumn(const TDouble2DArray& Source, int Col, int FirstRow, int LastRow,
                            TDoubleArray& Dest);
ZEL_API int CopyArrayColumn(const TInt2DArray& Source, int Col, int FirstRow, int LastRow,
                            TIntArray& Dest);
ZEL_API int CopyArrayColumn(const TBool2DArray& Source, int Col, int FirstRow, int LastRow,
                            TBoolArray& Dest);

/// Copies columns FirstCol..LastCol of a row; Dest gets that length.
/// @return 0; -1 if Source is empty, -2 if the columns are not a range of it, -3 if the row lies
///   outside
ZEL_API int CopyArrayRow(const TDouble2DArray& Source, int Row, int FirstCol, int LastCol,
                         TDoubleArray& Dest);
ZEL_API int CopyArrayRow(const TInt2DArray& Source, int Row, int FirstCol, int LastCol,
                         TIntArray& Dest);
ZEL_API int CopyArrayRow(const TBool2DArray& Source, int Row, int FirstCol, int LastCol,
                         TBoolArray& Dest);

/// Copies elements FirstElem..LastElem of a vector, or all if both are 0, down a column from
/// FirstRow on; what the column has no room for is dropped. Dest is not resized.
/// @return 0; -1 if Vector is empty or the elements are not a range of it, -2 if the first cell
///   lies outside Dest
ZEL_API int CopyVectorToArrayColumn(std::span<const double> Vector, int FirstElem, int LastElem,
                                    int Col, int FirstRow, TDouble2DArray& Dest);
ZEL_API int CopyVectorToArrayColumn(std::span<const int> Vector, int FirstElem, int LastElem,
                                    int Col, int FirstRow, TInt2DArray& Dest);
ZEL_API int CopyVectorToArrayColumn(std::span<const bool> Vector, int FirstElem, int LastElem,
                                    int Col, int FirstRow, TBool2DArray& Dest);

/// The same along a row, from FirstCol on.
ZEL_API int CopyVectorToArrayRow(std::span<const double> Vector, int FirstElem, int LastElem,
                                 int Row, int FirstCol, TDouble2DArray& Dest);
ZEL_API int CopyVectorToArrayRow(std::span<const int> Vector, int FirstElem, int LastElem, int Row,
                                 int FirstCol, TInt2DArray& Dest);
ZEL_API int CopyVectorToArrayRow(std::span<const bool> Vector, int FirstElem, int LastElem, int Row,
                                 int FirstCol, TBool2DArray& Dest);

/// Numbers that stand for true and false. Dest gets the extents of Source.
/// @return 0; -1 if Source is empty
ZEL_API int BoolToNumArray(std::span<const bool> Source, int TrueValue, int FalseValue,
                           TIntArray& Dest);
ZEL_API int BoolToNumArray(const TBool2DArray& Source, int TrueValue, int FalseValue,
                           TInt2DArray& Dest);
ZEL_API int BoolToNumArray(std::span<const bool> Source, double TrueValue, double FalseValue,
                           TDoubleArray& Dest);
ZEL_API int BoolToNumArray(const TBool2DArray& Source, double TrueValue, double FalseValue,
                           TDouble2DArray& Dest);

}  // namespace zel
