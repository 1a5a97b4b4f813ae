/// @file
/// Random numbers of any distribution.
#pragma once

#include <string_view>

#include "zel/base/api.h"
#include "zel/base/array.h"
#include "zel/base/component.h"

namespace zel {

/// Random numbers that follow a density given as a table of relative probabilities at the lower
/// ends of equal bins, a straight line between them, down to 0 at the upper end of the last.
///
/// Rejection method with the process-wide generator, which is not seeded here. A draw takes on
/// average as many attempts as the inverse of the mean entry, so a table is best scaled to a
/// largest entry of 1 (Standardize); entries above 1 act like 1.
class ZEL_API TRandGen : public TComponent {
 public:
  explicit TRandGen(TComponent* AOwner = nullptr);
  ~TRandGen() override;
  [[nodiscard]] std::string_view ClassName() const override;

  /// Ends of the interval; both 0 at first.
  [[nodiscard]] double LowBorder() const { return FLowBorder; }
  void SetLowBorder(double value) { FLowBorder = value; }
  [[nodiscard]] double HighBorder() const { return FHighBorder; }
  void SetHighBorder(double value) { FHighBorder = value; }

  /// Number of bins; 500 at first.
  [[nodiscard]] int Resolution() const { return FResolution; }
  /// Sets the number of bins, limited to 10..4000, and every entry to 1.
  void SetResolution(int n);

  // Bins are numbered from 1 to Resolution.

  /// Entry Idx; 0 outside.
  [[nodiscard]] double GetProbability(int Idx) const;
  [[nodiscard]] double Probability(int Idx) const { return GetProbability(Idx); }
  /// Limits Value to 0..1 (not-a-number becomes 0) and stores it; outside it is ignored.
  void SetProbability(int Idx, double Value);
  /// Lower end of bin ix; LowBorder below, HighBorder above the bins.
  [[nodiscard]] double GetLambda(int ix) const;
  [[nodiscard]] double Lambda(int ix) const { return GetLambda(ix); }
  /// Bin that Lambda is in; 0 below LowBorder, Resolution + 1 at HighBorder and above, and for an
  /// empty interval.
  [[nodiscard]] int IndexOfLambda(double Lambda) const;

  /// One draw, at least LowBorder and at most HighBorder; the last of 100001 attempts if none was
  /// accepted. O(attempts).
  [[nodiscard]] double Random() const { return GetRandNum(); }
  [[nodiscard]] double GetRandNum() const;

  /// Maps the entries linearly, the smallest to 0 and the largest to 1; nothing if all are equal.
  void Normalize();
  /// Divides every entry by the largest.
  /// @return false, with nothing changed, if the largest is 0
  bool Standardize();

  // Presets: the density at the lower end of each bin, not scaled.

  /// exp(-((x - m)^2 / 2) / s^2).
  void NormalDistri(double m, double s);
  /// Student's t with df degrees of freedom.
  void tDistri(int df);
  /// Chi-square; 0 for x < 0. Where the density is infinite (one degree of freedom, a bin that
  /// starts at 0), the value that gives the bin its probability.
  void Chi2Distri(int df);
  /// Fisher's F; 0 for x <= 0.
  void FDistri(int df1, int df2);
  /// Weibull, shape beta and scale eta; 0 for x <= 0.
  void WeibullDistri(double beta, double eta);
  /// 1 everywhere.
  void UniformDistri();

 private:
  template <class Density>
  void Fill(Density&& density);

  double FLowBorder = 0;
  double FHighBorder = 0;
  int FResolution = 500;
  TDoubleArray FDistVec;
};

}  // namespace zel
