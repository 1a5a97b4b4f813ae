/// @file
/// Pairs of values: statistics, correlations, curve fits.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "zel/base/Zel_zelbase.h"
#include "zel/base/enumset.h"
#include "zel/matrix/TMatrix.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// Which values a set of pairs holds that some transformed sums cannot take: x <= 0, y <= 0, x near
/// zero, y near zero.
enum TCurveFitError : std::uint8_t { cfeXLE0, cfeYLE0, cfeXEQ0, cfeYEQ0 };

/// Collects pairs of values (x, y) and answers bivariate questions about them: statistics of each
/// variable and of the differences, correlations, analysis of variance, curve fits.
///
/// Pairs are numbered from 1. They are kept, and 33 running sums of powers, reciprocals and
/// logarithms of them in extended precision follow every insertion and removal, so that the basic
/// statistics take no pass over the data. Statistics of too few pairs are 0.
class ZEL_API TCurveFit : public TComponent {
 public:
  explicit TCurveFit(TComponent* AOwner = nullptr);
  ~TCurveFit() override;
  [[nodiscard]] std::string_view ClassName() const override;

  // Data.

  /// Removes all pairs. The storage stays.
  void Init();
  /// Appends a pair. Amortised constant time.
  /// @return number of pairs
  int EnterStatValue(double x, double y);
  /// Removes pair ix; nothing happens outside 1..NumData. The extremes are not narrowed.
  void RemoveStatValue(int ix);
  /// The values of pair ix; 0 outside 1..NumData.
  [[nodiscard]] double GetDataX(int ix) const;
  [[nodiscard]] double GetDataY(int ix) const;
  /// Exchanges the roles of x and y.
  void FlipXY();
  [[nodiscard]] int NumData() const { return FNumData; }
  /// Extremes of all values entered since the last Init, also of pairs removed since; the largest
  /// double and its negative if there are none.
  [[nodiscard]] double MinX() const { return FMinX; }
  [[nodiscard]] double MaxX() const { return FMaxX; }
  [[nodiscard]] double MinY() const { return FMinY; }
  [[nodiscard]] double MaxY() const { return FMaxY; }

  // Statistics.

  [[nodiscard]] double GetMeanX() const;
  [[nodiscard]] double GetMeanY() const;
  [[nodiscard]] double GetMeanDiff() const;
  [[nodiscard]] double MeanX() const { return GetMeanX(); }
  [[nodiscard]] double MeanY() const { return GetMeanY(); }
  [[nodiscard]] double MeanDiff() const { return GetMeanDiff(); }
  [[nodiscard]] double GetStdDevX() const;
  [[nodiscard]] double GetStdDevY() const;
  [[nodiscard]] double GetStdDevDiff() const;
  [[nodiscard]] double StdDevX() const { return GetStdDevX(); }
  [[nodiscard]] double StdDevY() const { return GetStdDevY(); }
  [[nodiscard]] double StdDevDiff() const { return GetStdDevDiff(); }
  [[nodiscard]] double GetRxy() const;
  [[nodiscard]] double CorrCoeff() const { return GetRxy(); }
  void CalcStatistics(int& NumData, double& MeanX, double& MeanY, double& StdevX, double& StdevY,
                      double& MeanDiff, double& StdevDiff, double& rxy) const;
  [[nodiscard]] double GetSkewnessX() const;
  [[nodiscard]] double GetSkewnessY() const;
  [[nodiscard]] double GetKurtosisX() const;
  [[nodiscard]] double GetKurtosisY() const;
  [[nodiscard]] double SkewnessX() const { return GetSkewnessX(); }
  [[nodiscard]] double SkewnessY() const { return GetSkewnessY(); }
  [[nodiscard]] double KurtosisX() const { return GetKurtosisX(); }
  [[nodiscard]] double KurtosisY() const { return GetKurtosisY(); }
  [[nodiscard]] double PercentileX(double prob) const;
  [[nodiscard]] double PercentileY(double prob) const;
  bool QuartilesX(double& q1, double& q2, double& q3) const;
  bool QuartilesY(double& q1, double& q2, double& q3) const;
  [[nodiscard]] double GetMeanXDegrees() const { return CalcMeanDegrees(1); }
  [[nodiscard]] double GetMeanYDegrees() const { return CalcMeanDegrees(2); }
  [[nodiscard]] double MeanAngleX() const { return GetMeanXDegrees(); }
  [[nodiscard]] double MeanAngleY() const { return GetMeanYDegrees(); }
  double KendallsTau(double& p);
  [[nodiscard]] double GetKruskalGamma();
  [[nodiscard]] double KruskalGamma() { return GetKruskalGamma(); }
  [[nodiscard]] double GetSpearman() const;
  [[nodiscard]] double SpearmanRankCorr() const { return GetSpearman(); }
  void CalcAnovaReg(int NumVars, bool IncludeConst, int& dfreg, int& dfres, int& dftotal,
                    double& SSE, double& SSR, double& SST, double& MSE, double& MSR,
                    double& F) const;

  // Fits.

  void CalcLinFit(double& k, double& d, double& FitQual) const;
  void CalcParabolFit(double& k0, double& k1, double& k2, double& FitQual) const;
  bool CalcPolyFit(int nOrder, TDoubleArray& kArray, double& FitQual, bool& NearSingular) const;
  bool CalcPolyFit(int nOrder, TDoubleArray& kArray, TDoubleArray& Alpha, double& FitQual,
                   bool& NearSingular) const;
  bool CalcCenteredPolyFit(int nOrder, TDoubleArray& kArray, double& XShift, double& FitQual,
                           bool& NearSingular) const;
  bool CalcCenteredPolyFit(int nOrder, TDoubleArray& kArray, TDoubleArray& alpha, double& XShift,
                           double& FitQual, bool& NearSingular) const;
  void CalcCircleFit(double& r, double& dx, double& dy) const;
  void CalcReciLinFit(double& k0, double& k1, double& FitQual) const;
  void CalcHyperbolFit(double& k0, double& k1, double& FitQual) const;
  void CalcReciHyperbolFit(double& k0, double& k1, double& FitQual) const;
  void CalcLogFit(double& k0, double& k1, double& FitQual) const;
  void CalcReciLogFit(double& k0, double& k1, double& FitQual) const;
  void CalcPowerFit(double& k0, double& k1, double& FitQual) const;
  void CalcExponentialFit(double& k0, double& k1, double& FitQual) const;
  void CalcHoerlFit(double& k0, double& k1, double& k2, double& FitQual) const;
  void CalcGaussFit(double& k0, double& k1, double& k2, double& FitQual) const;

  // Splines.

  double CubicSpline(double x);
  double SmoothedSpline(double x, double& FitQual, bool& valid);
  [[nodiscard]] bool SplineNatural1() const { return FNatural1; }
  [[nodiscard]] bool SplineNaturalN() const { return FNaturalN; }
  [[nodiscard]] double SplineDerivY1() const { return FY1Dash; }
  [[nodiscard]] double SplineDerivYN() const { return FYNDash; }
  [[nodiscard]] double SplineSmoothingFactor() const { return FPSplineSmooth; }
  void SetNatural1(bool value);
  void SetNaturalN(bool value);
  void SetY1Dash(double value);
  void SetYNDash(double value);
  void SetSplineSmoothing(double value);

  // Files.

  std::string ExportAsASC(std::string_view FName, std::string_view Comment, int Precision) const;
  int ImportASC(std::string_view FName);

 private:
  [[nodiscard]] double CalcMeanDegrees(int col) const;
  void AdjustSums(double x, double y);
  void BasicRankCounts();
  /// The stored values of column 1 (x) or 2 (y), one for each pair.
  [[nodiscard]] std::span<const double> Values(int col) const {
    return FData.Column(col).first(static_cast<std::size_t>(FNumData));
  }

  int FNumData = 0;
  double FMinX = 0;
  double FMaxX = 0;
  double FMinY = 0;
  double FMaxY = 0;
  bool FNatural1 = true;
  bool FNaturalN = true;
  double FY1Dash = 0;
  double FYNDash = 0;
  TEnumSet<TCurveFitError> FErrIndic;
  TVector Spl2Deriv;
  TVector SplSortedX;
  TVector SplSortedY;
  TMatrix FData;
  bool FSplineValid = false;
  double FPSplineSmooth = 0.5;
  double FPSplineFQ = 0;
  bool FPenSplineValid = false;
  bool FKendallValid = false;
  std::int64_t FKendallConcord = 0;
  std::int64_t FKendallDiscord = 0;
  std::int64_t FKendallTies1 = 0;
  std::int64_t FKendallTies2 = 0;
};

}  // namespace zel
