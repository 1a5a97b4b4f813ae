/// @file
/// Plain arrays of two dimensions as images: filling of regions, picture files.
#pragma once

#include <string_view>

#include "zel/base/Zel_zelbase.h"

namespace zel {

/// Fills a region: the cells equal to the seed cell that can be reached from it by steps to a
/// neighbouring column or row over such cells. Arr[x][y] is the pixel in column x and row y.
/// @param x, y     the seed
/// @param HighRow  receives, like the others, a bound of the region
/// @return number of cells filled, at most 2147483647; -1 if the seed lies outside, -2 if it equals
///   FillValue; nothing changes then
/// @throws EZELError  "FloodFillArray: not enough memory"; part of the region may be filled then
/// Fills runs of cells at a time, with a list of runs in place of recursion. O(cells of the region
/// and their neighbours).
ZEL_API int FloodFillArray(int x, int y, int FillValue, TInt2DArray& Arr, int& HighRow, int& LowRow,
                           int& LowCol, int& HighCol);
/// The same over the cells with |Arr[x][y] - seed| <= |Tolerance|, up to rounding of the two
/// bounds. FillValue may be among them: every cell of the region is still filled and counted once.
/// A seed that is not-a-number belongs to no region: 0.
/// @return as above, without -2
ZEL_API int FloodFillArray(int x, int y, double Tolerance, double FillValue, TDouble2DArray& Arr,
                           int& HighRow, int& LowRow, int& LowCol, int& HighCol);

/// Sets the cells whose mask cell is false; an empty mask: all cells.
/// @return 0; -2 if the array is empty, -1 if the shape of a mask differs; nothing changes then
ZEL_API int FillArrayMasked(TDouble2DArray& Arr, double Value, const TBool2DArray& Mask);
ZEL_API int FillArrayMasked(TInt2DArray& Arr, int Value, const TBool2DArray& Mask);

/// Writes an array as a picture, in which each cell is a square of Zoom x Zoom pixels: Arr[x][y] is
/// the colour (red in bits 0-7, green in bits 8-15, blue in bits 16-23) in column x from the left
/// and row y from the top. An old file is replaced only by a complete new one.
/// @param FName  ends in .bmp (24 bits), .png or .jpg, in any case; an empty name means the
///   clipboard, which the library has none of
/// @return 0; -2 if Zoom is not in 1..10; -1 for another ending, or if the array is empty; -3 for
///   an empty name
/// @throws EInOutError  if the file cannot be written or the picture is too large for the format
/// @throws EZELError  if there is not enough memory
ZEL_API int SaveArrayAsImg(std::string_view FName, const TInt2DArray& Arr, int Zoom);

}  // namespace zel
