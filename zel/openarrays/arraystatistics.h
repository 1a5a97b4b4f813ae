/// @file
/// Statistics of plain arrays. Indices count from 0; arrays of two and more dimensions are indexed
/// [column][row][layer][time slot]. Ranges are given by their low and their high corner.
#pragma once

#include <span>

#include "zel/base/Zel_zelbase.h"

namespace zel {

/// Arithmetic mean of the cells of a range, first 0.
/// @return 0; -1 if the array is empty, -2 if an index lies outside it or a low index is above its
///   high one
/// @throws EZELError  "<routine>: not enough memory", here and below, for a range that is not
///   contiguous
/// Sums in double-double arithmetic, rounded once.
ZEL_API int MeanArray(std::span<const double> Arr, int LowIx, int HighIx, double& Mean);
ZEL_API int MeanArray(const TDouble2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                      double& Mean);
ZEL_API int MeanArray(const TDouble3DArray& Arr, int LowCol, int LowRow, int LowLayer, int HighCol,
                      int HighRow, int HighLayer, double& Mean);
ZEL_API int MeanArray(const TDouble4DArray& Arr, int LowCol, int LowRow, int LowLayer, int LowTSlot,
                      int HighCol, int HighRow, int HighLayer, int HighTSlot, double& Mean);
ZEL_API int MeanArray(std::span<const int> Arr, int LowIx, int HighIx, double& Mean);
ZEL_API int MeanArray(const TInt2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                      double& Mean);
ZEL_API int MeanArray(const TInt3DArray& Arr, int LowCol, int LowRow, int LowLayer, int HighCol,
                      int HighRow, int HighLayer, double& Mean);
ZEL_API int MeanArray(const TInt4DArray& Arr, int LowCol, int LowRow, int LowLayer, int LowTSlot,
                      int HighCol, int HighRow, int HighLayer, int HighTSlot, double& Mean);

/// Sample standard deviation (divisor n - 1) of the cells of a range, first 0; 0 of a single cell.
/// Exact to an ulp or two whatever the offset and the magnitude of the data.
/// @return as MeanArray
ZEL_API int StdDevArray(std::span<const double> Arr, int LowIx, int HighIx, double& StdDev);
ZEL_API int StdDevArray(const TDouble2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                        double& StdDev);
ZEL_API int StdDevArray(const TDouble3DArray& Arr, int LowCol, int LowRow, int LowLayer,
                        int HighCol, int HighRow, int HighLayer, double& StdDev);
ZEL_API int StdDevArray(const TDouble4DArray& Arr, int LowCol, int LowRow, int LowLayer,
                        int LowTSlot, int HighCol, int HighRow, int HighLayer, int HighTSlot,
                        double& StdDev);
ZEL_API int StdDevArray(std::span<const int> Arr, int LowIx, int HighIx, double& StdDev);
ZEL_API int StdDevArray(const TInt2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                        double& StdDev);
ZEL_API int StdDevArray(const TInt3DArray& Arr, int LowCol, int LowRow, int LowLayer, int HighCol,
                        int HighRow, int HighLayer, double& StdDev);
ZEL_API int StdDevArray(const TInt4DArray& Arr, int LowCol, int LowRow, int LowLayer, int LowTSlot,
                        int HighCol, int HighRow, int HighLayer, int HighTSlot, double& StdDev);

/// Mean and sample variance (divisor n - 1) of the cells of a range, first 0; the variance of a
/// single cell is 0.
/// @return as MeanArray
ZEL_API int MeanVarArray(std::span<const double> Arr, int LowIx, int HighIx, double& Mean,
                         double& Variance);
ZEL_API int MeanVarArray(const TDouble2DArray& Arr, int LowCol, int LowRow, int HighCol,
                         int HighRow, double& Mean, double& Variance);
ZEL_API int MeanVarArray(std::span<const int> Arr, int LowIx, int HighIx, double& Mean,
                         double& Variance);
ZEL_API int MeanVarArray(const TInt2DArray& Arr, int LowCol, int LowRow, int HighCol, int HighRow,
                         double& Mean, double& Variance);

/// Number of cells of a range with IntervalLow <= x <= IntervalHigh.
/// @return -1 if the array is empty, -2 if an index lies outside it or a low index is above its
///   high one
[[nodiscard]] ZEL_API int CountValues(std::span<const double> Arr, int LowIx, int HighIx,
                                      double IntervalLow, double IntervalHigh);
[[nodiscard]] ZEL_API int CountValues(const TDouble2DArray& Arr, int LowCol, int LowRow,
                                      int HighCol, int HighRow, double IntervalLow,
                                      double IntervalHigh);
[[nodiscard]] ZEL_API int CountValues(const TDouble3DArray& Arr, int LowCol, int LowRow,
                                      int LowLayer, int HighCol, int HighRow, int HighLayer,
                                      double IntervalLow, double IntervalHigh);
[[nodiscard]] ZEL_API int CountValues(const TDouble4DArray& Arr, int LowCol, int LowRow,
                                      int LowLayer, int LowTSlot, int HighCol, int HighRow,
                                      int HighLayer, int HighTSlot, double IntervalLow,
                                      double IntervalHigh);
[[nodiscard]] ZEL_API int CountValues(std::span<const int> Arr, int LowIx, int HighIx,
                                      int IntervalLow, int IntervalHigh);
[[nodiscard]] ZEL_API int CountValues(const TInt2DArray& Arr, int LowCol, int LowRow, int HighCol,
                                      int HighRow, int IntervalLow, int IntervalHigh);
[[nodiscard]] ZEL_API int CountValues(const TInt3DArray& Arr, int LowCol, int LowRow, int LowLayer,
                                      int HighCol, int HighRow, int HighLayer, int IntervalLow,
                                      int IntervalHigh);
[[nodiscard]] ZEL_API int CountValues(const TInt4DArray& Arr, int LowCol, int LowRow, int LowLayer,
                                      int LowTSlot, int HighCol, int HighRow, int HighLayer,
                                      int HighTSlot, int IntervalLow, int IntervalHigh);

/// Number of true cells; -1 if the array is empty.
[[nodiscard]] ZEL_API int CountTrueCellsOfArray(std::span<const bool> Arr);
[[nodiscard]] ZEL_API int CountTrueCellsOfArray(const TBool2DArray& Arr);

/// Percentile without interpolation: the value of rank n prob / 100 counted from 0, rounded to the
/// nearest with ties to even, at most n - 1. So the 50th percentile of (1, 2, 3, 4) is 3.
/// @param prob  in percent, limited to 0..100; not-a-number counts as 0
/// @return 0 of an empty array. With not-a-number among the values: what SortArray would put there
/// @throws EZELError  "PercentileArray: not enough memory"
/// O(n).
[[nodiscard]] ZEL_API double PercentileArray(double prob, std::span<const double> Arr);
/// The same of a range, whose indices are limited to the array; a reversed pair is exchanged.
[[nodiscard]] ZEL_API double PercentileArray(double prob, const TDouble2DArray& Arr, int LowCol,
                                             int LowRow, int HighCol, int HighRow);

/// Frequencies of the cells of a range in bins of equal width, of which bin k, from 0, takes
/// FirstBin + k BinWidth <= x < FirstBin + (k + 1) BinWidth. All indices 0: the whole array.
/// @param Distri     gets a count for each of the |LastBin - FirstBin| / BinWidth, rounded, + 1
///   bins
/// @param Underflow  number of cells below FirstBin
/// @param Overflow   number of cells at or above LastBin + BinWidth. Where this lies beyond the
///   last bin, the cells between are not counted, nor is not-a-number anywhere
/// @param MaxCnt     the largest count of a bin
/// @return 0; -1 if the array is empty or an index lies outside it, -2 if a high index is below its
///   low one, -3 unless FirstBin < LastBin, -4 unless BinWidth > 0, -5 for more than 1000 bins;
///   nothing changes then
/// @throws EZELError  "FrequDistOfArray: not enough memory"; nothing changes then
ZEL_API int FrequDistOfArray(const TDouble2DArray& Arr, int LowCol, int LowRow, int HighCol,
                             int HighRow, double FirstBin, double LastBin, double BinWidth,
                             TIntArray& Distri, int& Underflow, int& Overflow, int& MaxCnt);
/// The same of the cells whose mask cell is false.
/// @return -6 if the shape of Mask differs, checked last
ZEL_API int FrequDistOfArray(const TDouble2DArray& Arr, const TBool2DArray& Mask, int LowCol,
                             int LowRow, int HighCol, int HighRow, double FirstBin, double LastBin,
                             double BinWidth, TIntArray& Distri, int& Underflow, int& Overflow,
                             int& MaxCnt);
/// The same in one dimension.
ZEL_API int FrequDistOfArray(std::span<const double> Arr, int LowIx, int HighIx, double FirstBin,
                             double LastBin, double BinWidth, TIntArray& Distri, int& Underflow,
                             int& Overflow, int& MaxCnt);

/// The cells of an array [column][row] aggregated along one dimension: a value for each row
/// (orVertical) or each column (orHorizontal). Not-a-number is never an extreme.
/// @return 0; -1 if the array is empty; Dest is unchanged then
/// @throws EZELError  "EdgeVector: not enough memory"; Dest is unchanged then
ZEL_API int EdgeVector(const TInt2DArray& Arr, TOrientation Orient, TEdgeOp EdgeOp,
                       TDoubleArray& Dest);
ZEL_API int EdgeVector(const TDouble2DArray& Arr, TOrientation Orient, TEdgeOp EdgeOp,
                       TDoubleArray& Dest);

}  // namespace zel
