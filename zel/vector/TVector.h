/// @file
/// Vector of doubles.
#pragma once

#include "zel/vector/vectorbase.h"

namespace zel {

class TIntVector;

/// Numerical integration of equidistant samples.
enum TIntegMethod : std::uint8_t { imSimple, imTrapezoidal, imSimpson };

/// Vector of doubles. See TNumVector for the conventions and the members shared with TIntVector.
class ZEL_API TVector : public TNumVector<double> {
 public:
  using TNumVector::LoadFromFile;

  explicit TVector(TComponent* AOwner = nullptr);
  /// The values of a list or a span; an empty one gives one element, 0.
  TVector(std::initializer_list<double> values);
  explicit TVector(std::span<const double> values);
  ~TVector() override;
  [[nodiscard]] std::string_view ClassName() const override;

  /// Uniform values in [RangeLow, RangeHigh) from the process-wide generator.
  void FillRandomUniform(double RangeLow, double RangeHigh);
  /// Normal deviates.
  void FillRandomGauss(double Mean, double StdDev);
  /// Scales the vector to the given length; a zero vector is left alone, without notification.
  void SetVecLeng(double value);
  void SetLeng(double value) { SetVecLeng(value); }

  /// Counts the elements of FirstElem..LastElem (not clamped; positions outside the vector count as
  /// 0) in bins of equal width. Bin k holds FirstBin + (k-1) BinWidth <= x < FirstBin + k BinWidth;
  /// there are round(|LastBin - FirstBin| / BinWidth) + 1 bins. Values below FirstBin go to
  /// Underflow, those at or above LastBin + BinWidth to Overflow; a bin beyond the last is dropped,
  /// a not-a-number is counted nowhere.
  /// @param Histo   resized to the number of bins; OnChange fires for each value counted
  /// @param MaxCnt  largest count of a bin
  /// @return false, with nothing changed, for more than 500 bins, a bin width of 0 or below, bounds
  /// that
  ///   are not finite, or Histo null
  bool Histogram(int FirstElem, int LastElem, double FirstBin, double LastBin, double BinWidth,
                 TIntVector* Histo, int& Underflow, int& Overflow, int& MaxCnt) const;
  /// Integral over [BoundLow, BoundHigh], both limited to 1..NrOfElem, of the function whose value
  /// at i is element i, a straight line between samples. imSimple: mean of the samples inside times
  /// the width; imTrapezoidal; imSimpson: Newton-Cotes rules for 3 to 5 samples, the extended
  /// formula with end weights 3/8, 7/6, 23/24 for more, straight lines at the two ends beyond the
  /// samples. Method: Press et al., Numerical Recipes (1992) ch. 4.1.
  [[nodiscard]] double Integrate(double BoundLow, double BoundHigh, TIntegMethod Method) const;
  /// Sum of element i times OtherVec element i - ElemShift over the overlap; 0 if fewer than two
  /// positions overlap.
  [[nodiscard]] double Correlate(const TVector* OtherVec, int ElemShift) const;

  /// (x - mean) / stddev for every element, with MeanVar's rules; no spread: unchanged. Fires no
  /// event.
  void Standardize(double& mean, double& stddev);
  /// Subtracts the mean from every element and returns it. Fires no event.
  double MeanCenter();
  /// (x - median) / |median - q| for every element, q the percentile RefQuant (in percent); no
  /// difference: unchanged. Fires no event.
  void QNormalize(double RefQuant, double& Median, double& QuantDiff);

  /// Writes a number file: the range, then a value per line. The range is ordered, then clamped.
  /// @param Precision  0..20: decimals in fixed-point notation; -1: exponential notation in 13
  ///   characters; -2: in 26 characters (17 or more significant digits, read back exactly); below
  ///   -2: 2; above 20: 20
  /// @return false if the file cannot be created; after a write error an old file is left as it was
  bool StoreOnFile(int FirstElem, int LastElem, int Precision, std::string_view FileName) const;
  /// With AutoDetect: reads the values of a file whose lines carry the mark "//dig". There are as
  /// many values as marked lines; words that begin with "//" are passed over, another word that is
  /// not a number leaves its element unchanged. OnChange fires once at the end (and for a resize).
  /// @return false if the file cannot be read
  bool LoadFromFile(std::string_view FileName, bool AdjustVectorSize, bool AutoDetect);
  /// Writes an ASC file of one column, fixed-point, Precision decimals, at least 12 characters
  /// wide.
  /// @param Comment  first line, line feeds as blanks; empty: a default that names the file
  /// @return 0, or -1 if the file cannot be written; an old file is left as it was then
  int ExportAsASC(std::string_view FName, int Precision, std::string_view Comment) const;
};

}  // namespace zel
