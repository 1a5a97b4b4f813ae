/// @file
/// Vector of 32-bit integers.
#pragma once

#include "zel/vector/vectorbase.h"

namespace zel {

/// Vector of 32-bit signed integers. See TNumVector for the conventions and the members shared with
/// TVector.
class ZEL_API TIntVector : public TNumVector<int> {
 public:
  explicit TIntVector(TComponent* AOwner = nullptr);
  /// The values of a list or a span; an empty one gives one element, 0.
  TIntVector(std::initializer_list<int> values);
  explicit TIntVector(std::span<const int> values);
  ~TIntVector() override;
  [[nodiscard]] std::string_view ClassName() const override;

  /// First position in the range whose element equals value; 0 if none.
  [[nodiscard]] int FindExact(int LowElem, int HighElem, int value) const;

  /// Counts the elements of FirstElem..LastElem (not clamped; positions outside the vector count as
  /// 0) in bins of equal width w = max(BinWidth, 1); there are |LastBin - FirstBin| div w + 1 bins.
  /// See TVector::Histogram for the rest.
  /// @return true; false if Histo is null
  /// @throws EZELVectorError  `.Histogram": invalid number of bins` for more than 500 bins
  bool Histogram(int FirstElem, int LastElem, int FirstBin, int LastBin, int BinWidth,
                 TIntVector* Histo, int& Underflow, int& Overflow, int& MaxCnt) const;
  /// Sum of element i times OtherVec element i + ElemShift over all elements; positions outside the
  /// other vector count as 0. (The sign of the shift is opposite to TVector::Correlate.)
  [[nodiscard]] int Correlate(const TIntVector* OtherVec, int ElemShift) const;

  /// Writes a number file: the range, then a value per line. The range is ordered; then FirstElem
  /// is raised to 1 and LastElem lowered to NrOfElem, so that (0, 0) writes no value.
  /// @return false if the file cannot be created; after a write error an old file is left as it was
  bool StoreOnFile(int FirstElem, int LastElem, std::string_view FileName) const;
  /// Writes an ASC file of one column.
  /// @param Comment  first line, line feeds as blanks; empty: a default that names the file
  /// @return 0, or -1 if the file cannot be written; an old file is left as it was then
  int ExportAsASC(std::string_view FName, std::string_view Comment) const;
};

}  // namespace zel
