/// @file
/// Text and binary files of plain arrays.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "zel/base/Zel_zelbase.h"

namespace zel {

/// Writes an array as a text file: the lines of the comment, each behind "//", then a line with the
/// bounds 1 1 columns rows (for a vector 1 1 1 elements), then a line for each row. Three
/// dimensions: before the bounds a line with "layers" and their number, and the rows layer by
/// layer. Numbers are the shortest texts that read as the same number. Without a comment, the file
/// of one or two dimensions is one that TMatrix::LoadFromFile reads.
/// @param OverWrite  false: an existing file is left alone
/// @return 0; -1 if the array is empty; -2 if it has more than 2147483647 columns or rows, those of
///   all layers counted; -3 if the file cannot be written (an old one is untouched then), -4 if it
///   exists and OverWrite is false
/// @throws EZELError  "StoreArray: not enough memory"
ZEL_API int StoreArray(std::string_view FName, std::span<const double> Arr,
                       std::string_view Comment, bool OverWrite = true);
ZEL_API int StoreArray(std::string_view FName, const TDouble2DArray& Arr, std::string_view Comment,
                       bool OverWrite = true);
ZEL_API int StoreArray(std::string_view FName, const TDouble3DArray& Arr, std::string_view Comment,
                       bool OverWrite = true);
ZEL_API int StoreArray(std::string_view FName, std::span<const int> Arr, std::string_view Comment,
                       bool OverWrite = true);
ZEL_API int StoreArray(std::string_view FName, const TInt2DArray& Arr, std::string_view Comment,
                       bool OverWrite = true);
ZEL_API int StoreArray(std::string_view FName, const TInt3DArray& Arr, std::string_view Comment,
                       bool OverWrite = true);

/// Reads a text file of StoreArray, or a number file of a matrix, of which a vector needs one with
/// a single column. Integers are rounded, ties to even, and limited. Arr gets the extents of the
/// file.
/// @param Comment  receives the comment, its lines separated by line feeds, without carriage
///   returns at their ends
/// @return 0; -3 if the file cannot be read, -4 if it is not one of an array of this rank, or is
///   cut off; Arr and Comment are unchanged then
/// @throws EZELError  "LoadArray: not enough memory"; nothing changes then
ZEL_API int LoadArray(std::string_view FName, TDoubleArray& Arr, std::string& Comment);
ZEL_API int LoadArray(std::string_view FName, TDouble2DArray& Arr, std::string& Comment);
ZEL_API int LoadArray(std::string_view FName, TDouble3DArray& Arr, std::string& Comment);
ZEL_API int LoadArray(std::string_view FName, TIntArray& Arr, std::string& Comment);
ZEL_API int LoadArray(std::string_view FName, TInt2DArray& Arr, std::string& Comment);
ZEL_API int LoadArray(std::string_view FName, TInt3DArray& Arr, std::string& Comment);

/// Writes an array as a binary file, in the layout of the matrices' SaveBinary: a header of 4096
/// bytes with the extents, DataID (its first 255 bytes) and the element type, then the elements,
/// time slot by time slot, layer by layer, row by row, in little-endian order, filled up to a
/// multiple of 4096 bytes.
/// @return 0; -1 if the array is empty, -2 if an extent exceeds 2147483647, -3 if the file cannot
///   be written; an old one is untouched then
/// @throws EZELError  "SaveBinaryArray: not enough memory"
ZEL_API int SaveBinaryArray(std::string_view FName, const TDouble2DArray& Arr,
                            std::string_view DataID);
ZEL_API int SaveBinaryArray(std::string_view FName, const TDouble3DArray& Arr,
                            std::string_view DataID);
ZEL_API int SaveBinaryArray(std::string_view FName, const TDouble4DArray& Arr,
                            std::string_view DataID);
ZEL_API int SaveBinaryArray(std::string_view FName, const TInt2DArray& Arr,
                            std::string_view DataID);

/// Reads a binary file of an array, or of a matrix, of the same rank and element type. Arr gets the
/// extents of the file.
/// @return 0; -3 if the file cannot be read or is cut off, -4 if it holds something else; Arr and
///   DataID are unchanged then
/// @throws EZELError  "LoadBinaryArray: not enough memory"; nothing changes then
ZEL_API int LoadBinaryArray(std::string_view FName, TDouble2DArray& Arr, std::string& DataID);
ZEL_API int LoadBinaryArray(std::string_view FName, TDouble3DArray& Arr, std::string& DataID);
ZEL_API int LoadBinaryArray(std::string_view FName, TDouble4DArray& Arr, std::string& DataID);
ZEL_API int LoadBinaryArray(std::string_view FName, TInt2DArray& Arr, std::string& DataID);

/// Reads the header of a binary file as it is.
/// @param NrLayers     0 for two dimensions
/// @param NrTimeSlots  0 for less than four dimensions
/// @param Format       1: doubles, 2: 32-bit integers
/// @return 0; -3 if the file cannot be read or is shorter than a header; nothing changes then
ZEL_API int ReadBinaryArrayHeader(std::string_view FName, int& NrColumns, int& NrRows,
                                  int& NrLayers, int& NrTimeSlots, std::string& DataID,
                                  int& Format);

}  // namespace zel
