/// @file
/// Pairs of values: statistics, correlations, curve fits.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "zel/base/Zel_zelbase.h"
#include "zel/base/enumset.h"
#include "zel/matrix/TMatrix.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

namespace detail {
class TPairSums;
}

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
  ///
  /// The running sums are kept exactly, so the order of the pairs leaves no trace in them, and
  /// statistics of data with a large offset keep their digits. What is rounded is each term before
  /// it is added (to extended precision; squares and products of x and y not even that), and a
  /// statistic when it is formed.
  /// @return number of pairs
  /// @throws EZELMath2Error  "TCurveFit.EnterStatValue: not enough memory"; "TCurveFit.
  ///   EnterStatValue: too many pairs" beyond 2^31 - 1; nothing changes then
  int EnterStatValue(double x, double y);
  /// Removes pair ix; the later ones move up. Nothing happens outside 1..NumData. The extremes are
  /// not narrowed. The sums are afterwards as if the pair had never been entered, exactly, also
  /// when its terms were larger than all others by any factor, infinite or not-a-number.
  /// O(NumData).
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

  /// Arithmetic means of x, y and x - y; 0 without pairs. O(1).
  [[nodiscard]] double GetMeanX() const;
  [[nodiscard]] double GetMeanY() const;
  [[nodiscard]] double GetMeanDiff() const;
  [[nodiscard]] double MeanX() const { return GetMeanX(); }
  [[nodiscard]] double MeanY() const { return GetMeanY(); }
  [[nodiscard]] double MeanDiff() const { return GetMeanDiff(); }
  /// Standard deviations of x, y and x - y, with the divisor n - 1; 0 for less than 3 pairs. O(1).
  [[nodiscard]] double GetStdDevX() const;
  [[nodiscard]] double GetStdDevY() const;
  [[nodiscard]] double GetStdDevDiff() const;
  [[nodiscard]] double StdDevX() const { return GetStdDevX(); }
  [[nodiscard]] double StdDevY() const { return GetStdDevY(); }
  [[nodiscard]] double StdDevDiff() const { return GetStdDevDiff(); }
  /// Pearson's correlation coefficient, within -1..1; 0 for less than 3 pairs and if x or y is
  /// constant. O(1).
  [[nodiscard]] double GetRxy() const;
  [[nodiscard]] double CorrCoeff() const { return GetRxy(); }
  /// The number of pairs, the means, the standard deviations and the correlation in one call; each
  /// is 0 where the function of its own is.
  void CalcStatistics(int& NumData, double& MeanX, double& MeanY, double& StdevX, double& StdevY,
                      double& MeanDiff, double& StdevDiff, double& rxy) const;
  /// Sample skewness and excess kurtosis, those of TMatrix.SkewKurtSample; 0 without pairs. O(n).
  [[nodiscard]] double GetSkewnessX() const;
  [[nodiscard]] double GetSkewnessY() const;
  [[nodiscard]] double GetKurtosisX() const;
  [[nodiscard]] double GetKurtosisY() const;
  [[nodiscard]] double SkewnessX() const { return GetSkewnessX(); }
  [[nodiscard]] double SkewnessY() const { return GetSkewnessY(); }
  [[nodiscard]] double KurtosisX() const { return GetKurtosisX(); }
  [[nodiscard]] double KurtosisY() const { return GetKurtosisY(); }
  /// Percentile by the rule of TMatrix.Percentile, prob in percent; 0 without pairs.
  [[nodiscard]] double PercentileX(double prob) const;
  [[nodiscard]] double PercentileY(double prob) const;
  /// Quartiles by the rule of TMatrix.Quartiles.
  /// @return that of TMatrix.Quartiles; false, with zeros, without pairs
  bool QuartilesX(double& q1, double& q2, double& q3) const;
  bool QuartilesY(double& q1, double& q2, double& q3) const;
  /// Circular mean of x (y) taken as angles in degrees: the direction of the sum of the unit
  /// vectors, in [0, 360). 0 without pairs and where the vectors cancel exactly; not-a-number if an
  /// angle is not finite. O(n).
  [[nodiscard]] double GetMeanXDegrees() const { return CalcMeanDegrees(1); }
  [[nodiscard]] double GetMeanYDegrees() const { return CalcMeanDegrees(2); }
  [[nodiscard]] double MeanAngleX() const { return GetMeanXDegrees(); }
  [[nodiscard]] double MeanAngleY() const { return GetMeanYDegrees(); }
  /// Kendall's tau-b: (concordant - discordant pairs of points) / sqrt(n1 n2), where n1 and n2
  /// count those without a tie in x and in y. 0 for less than 3 pairs and if x or y is constant.
  /// Infinities of one sign are equal; a pair with a not-a-number is left out. The counts are kept
  /// until the data change.
  /// @param p  two-sided significance by the normal approximation with the variance
  ///   (4 n + 10) / (9 n (n - 1)) of untied data, through ErfApprox; 0 where tau is 0 for want of
  ///   data
  /// @throws EZELMath2Error  "BasicRankCounts: not enough memory"
  /// O(n log n). Method: Knight, J. Am. Stat. Assoc. 61 (1966) 436.
  double KendallsTau(double& p);
  /// Gamma of Goodman and Kruskal: (concordant - discordant) / (concordant + discordant) pairs of
  /// points; 0 if there are none. Counts, errors and cost are those of KendallsTau.
  [[nodiscard]] double GetKruskalGamma();
  [[nodiscard]] double KruskalGamma() { return GetKruskalGamma(); }
  /// Spearman's rank correlation with mean ranks and, where values are equal, the correction for
  /// ties; 0 for less than 3 pairs and if x or y is constant. A not-a-number ranks above all
  /// numbers. O(n log n).
  /// @throws EZELMath2Error  "GetSpearman: not enough memory"
  [[nodiscard]] double GetSpearman() const;
  [[nodiscard]] double SpearmanRankCorr() const { return GetSpearman(); }
  /// Analysis of variance of a regression whose observed values were entered as x and whose
  /// estimates were entered as y. With m the mean of x, or 0 without IncludeConst:
  ///
  ///     SSE = sum (x - y)^2   SSR = sum (y - m)^2   SST = sum (x - m)^2
  ///     MSE = SSE / dfres     MSR = SSR / dfreg     F = MSR / MSE
  ///
  /// A mean square without degrees of freedom is 0. F is 1E10 for MSE = 0, and 0 for MSR = 0. O(1).
  /// @param NumVars       number of variables of the regression, without the constant: dfreg
  /// @param IncludeConst  the regression has a constant: dftotal is n - 1, otherwise n
  /// @param dfres         dftotal - dfreg
  void CalcAnovaReg(int NumVars, bool IncludeConst, int& dfreg, int& dfres, int& dftotal,
                    double& SSE, double& SSR, double& SST, double& MSE, double& MSR,
                    double& F) const;

  /// @name Fits of y as it is
  /// Least squares over the stored pairs. FitQual is the coefficient of determination. Values that
  /// are not finite make the results of the first three not-a-number, and let the polynomials fail.
  /// @{

  /// Straight line, y = k x + d. FitQual is 1 for a constant y.
  /// @throws EZELMath2Error  with zero results: "CalcLinFit: not enough data points" for less than
  ///   2 pairs; "CalcLinFit: slope is infinite" if all x are equal
  /// Sums about the means in double-double. O(n).
  void CalcLinFit(double& k, double& d, double& FitQual) const;
  /// Parabola, y = k0 + k1 x + k2 x^2. FitQual is 1 for a constant y. For only two different x it
  /// is the line (k2 = 0), for only one the mean of y.
  /// @throws EZELMath2Error  with zero results: "CalcParabolFit: not enough data points" for less
  ///   than 3 pairs
  /// Sums about the means and solution in double-double. O(n).
  void CalcParabolFit(double& k0, double& k1, double& k2, double& FitQual) const;
  /// Polynomial of any order, y = kArray[0] + kArray[1] x + ... + kArray[nOrder] x^nOrder.
  ///
  /// For orders above about 5, or x far from 0, take CalcCenteredPolyFit. Clears AbortMathProc.
  /// @param kArray   grows to nOrder + 1 elements if it is shorter
  /// @param Alpha    resized to nOrder + 1 elements: the two-sided significance of each coefficient
  ///   by the t distribution with n - nOrder - 1 degrees of freedom; 0 for an exact fit and without
  ///   degrees of freedom
  /// @param FitQual  squared correlation of y and its estimates; 0 if one of them is constant
  /// @param NearSingular  a singular value was below 1E-14 of the largest and was taken as 0
  /// @return false for n <= nOrder, a negative nOrder (both leave the arrays alone), or values that
  ///   are not finite
  /// @throws EZELMath2Error  "CalcPolyFit: not enough memory"
  /// Method: singular value decomposition, refined with residuals in double-double. O(n nOrder^2).
  bool CalcPolyFit(int nOrder, TDoubleArray& kArray, TDoubleArray& Alpha, double& FitQual,
                   bool& NearSingular) const;
  /// The same without the significances.
  bool CalcPolyFit(int nOrder, TDoubleArray& kArray, double& FitQual, bool& NearSingular) const;
  /// Polynomial about a shift, y = kArray[0] + kArray[1] (x - XShift) + ... The powers are those of
  /// (x - XShift) divided by the standard deviation of x, so that the order may be high.
  /// @param XShift  0 is replaced by the mean of x
  /// @param alpha   as in CalcPolyFit; that of the constant belongs to y less its mean
  /// @throws EZELMath2Error  "CalcCenteredPolyFit: not enough memory"
  /// Everything else is as in CalcPolyFit.
  bool CalcCenteredPolyFit(int nOrder, TDoubleArray& kArray, TDoubleArray& alpha, double& XShift,
                           double& FitQual, bool& NearSingular) const;
  /// The same without the significances.
  bool CalcCenteredPolyFit(int nOrder, TDoubleArray& kArray, double& XShift, double& FitQual,
                           bool& NearSingular) const;
  /// Circle of radius r about (dx, dy): minimises the sum of the squares of
  /// (x - dx)^2 + (y - dy)^2 - r^2, which is exact for points on a circle and gives too small radii
  /// for short noisy arcs.
  /// @throws EZELMath2Error  with zero results: "CalcCircleFit: not enough data points" for less
  ///   than 3 pairs; "CalcCircleFit: radius is infinite" if the points lie on a line
  /// Method: Kasa, IEEE Trans. Instrum. Meas. 25 (1976) 8. O(n).
  void CalcCircleFit(double& r, double& dx, double& dy) const;
  /// @}

  /// @name Fits of transformed variables
  /// Linear least squares after a transformation of x, y or both. The residuals that are minimised,
  /// and FitQual, the coefficient of determination (1 for a perfect fit and for a constant
  /// transformed y), are those of the transformed y. The fits work on the stored pairs in
  /// double-double arithmetic, so that a large offset of x or y costs no digits; pairs that were
  /// removed do not count. A value that is not finite makes all results not-a-number. A coefficient
  /// that exceeds the doubles is infinite or 0. Cost: a few passes over the pairs, with working
  /// memory for two of their columns.
  ///
  /// All of them set the results to 0 first and throw EZELMath2Error with the name of the routine
  /// and one of: "not enough data points" (fewer pairs than coefficients); where a logarithm is
  /// taken "all x values must be positive", "all y values must be positive"; where a reciprocal is
  /// taken "x values must not be zero", "y values must not be zero" (a magnitude of 1E-30 or below
  /// is zero); "all x values are equal". The text is, for example, "CalcLogFit: all x values must
  /// be positive".
  /// @{

  /// Reciprocal of a straight line, y = 1 / (k0 + k1 x): the line 1/y over x. No y may be zero.
  /// @param k0  in units of 1/y
  /// @param k1  in units of 1/(x y)
  void CalcReciLinFit(double& k0, double& k1, double& FitQual) const;
  /// Hyperbola, y = k0 + k1 / x: the line y over 1/x. No x may be zero.
  /// @param k0  in units of y; the value for large x
  /// @param k1  in units of x y
  void CalcHyperbolFit(double& k0, double& k1, double& FitQual) const;
  /// Reciprocal of a hyperbola, y = 1 / (k0 + k1 / x) = x / (k0 x + k1), the saturation curve of
  /// Michaelis and Menten with the limit 1 / k0 and half of it at x = k1 / k0: the line 1/y over
  /// 1/x (Lineweaver and Burk, J. Am. Chem. Soc. 56 (1934) 658). Neither x nor y may be zero.
  /// @param k0  in units of 1/y
  /// @param k1  in units of x/y
  void CalcReciHyperbolFit(double& k0, double& k1, double& FitQual) const;
  /// Logarithm, y = k0 + k1 ln x: the line y over ln x. All x must be positive.
  /// @param k0  in units of y; the value at x = 1
  /// @param k1  in units of y; the increase when x grows by the factor e
  void CalcLogFit(double& k0, double& k1, double& FitQual) const;
  /// Reciprocal of a logarithm, y = 1 / (k0 + k1 ln x): the line 1/y over ln x. All x must be
  /// positive, no y may be zero.
  /// @param k0, k1  in units of 1/y
  void CalcReciLogFit(double& k0, double& k1, double& FitQual) const;
  /// Power, y = k0 x^k1: the line ln y over ln x. All x and y must be positive.
  /// @param k0  the value at x = 1
  /// @param k1  exponent, without unit
  void CalcPowerFit(double& k0, double& k1, double& FitQual) const;
  /// Exponential, y = k0 exp(k1 x): the line ln y over x. All y must be positive.
  /// @param k0  in units of y; the value at x = 0
  /// @param k1  in units of 1/x; ln 2 / k1 is the doubling length
  void CalcExponentialFit(double& k0, double& k1, double& FitQual) const;
  /// Hoerl's function, y = k0 k1^x x^k2: ln y by linear regression on x and ln x. All x and y must
  /// be positive.
  /// @param k0  the factor
  /// @param k1  the base, positive; its logarithm is in units of 1/x
  /// @param k2  exponent, without unit
  /// @throws EZELMath2Error  also "CalcHoerlFit: fewer than three different x values" and
  ///   "CalcHoerlFit: singular system" (x and ln x differ by less than the arithmetic holds)
  void CalcHoerlFit(double& k0, double& k1, double& k2, double& FitQual) const;
  /// Gaussian peak, y = k0 exp(-(x - k1)^2 / (2 k2^2)): the parabola ln y over x (Caruana, Searle,
  /// Heller and Shupack, Anal. Chem. 58 (1986) 1162), in which small y weigh as much as large ones.
  /// All y must be positive.
  /// @param k0  height, in units of y
  /// @param k1  position of the maximum, in units of x
  /// @param k2  standard deviation, above 0, in units of x
  /// @throws EZELMath2Error  also "CalcGaussFit: fewer than three different x values",
  ///   "CalcGaussFit: singular system", and "CalcGaussFit: the data have no maximum" if the
  ///   parabola opens upwards or is a straight line to rounding
  void CalcGaussFit(double& k0, double& k1, double& k2, double& FitQual) const;
  /// @}

  /// @name Splines
  /// Pairs with the same x count as one whose y is their mean. The curve is calculated on the first
  /// call after a change of the pairs or of a setting, O(n log n), and kept; then a call costs
  /// O(log n). Beyond the first and the last x it goes on along its tangent there.
  /// @{

  /// Interpolating cubic spline through the pairs. Each end is natural (second derivative 0) unless
  /// SetNatural1 or SetNaturalN with false makes the first derivative there the one of SetY1Dash or
  /// SetYNDash.
  /// @return not-a-number for an x that is none, and for every x if a value of the pairs is not
  ///   finite
  /// @throws EZELMath2Error  "CubicSpline: not enough data points" for fewer than 3 different x
  /// Method: tridiagonal system of the second derivatives (Ahlberg, Nilson and Walsh, The Theory of
  /// Splines and Their Applications (1967) ch. 2).
  double CubicSpline(double x);
  /// Natural cubic smoothing spline g, the minimum of
  ///
  ///     (1 - s) sum of (y - g(x))^2 over all pairs + s h^3 integral of g''^2,
  ///
  /// s being SplineSmoothingFactor limited to 0..1 and h the mean distance of neighbouring
  /// different x, which makes s independent of the units of x. s = 0 interpolates like CubicSpline
  /// with natural ends, s = 1 is the regression line. It always has natural ends.
  /// @param FitQual  coefficient of determination over all pairs, 1 for a constant y
  /// @param valid    false, with the results 0, for fewer than 3 different x, if a value of the
  ///   pairs is not finite, if the factor is not-a-number, or if the coefficients exceed the
  ///   doubles
  /// @return not-a-number for an x that is none
  /// Method: see PenalizedCubicSpline.
  double SmoothedSpline(double x, double& FitQual, bool& valid);
  /// The end at the smallest (largest) x is natural; at first both are.
  [[nodiscard]] bool SplineNatural1() const { return FNatural1; }
  [[nodiscard]] bool SplineNaturalN() const { return FNaturalN; }
  /// First derivative at the smallest (largest) x, used where the end is not natural; at first 0.
  [[nodiscard]] double SplineDerivY1() const { return FY1Dash; }
  [[nodiscard]] double SplineDerivYN() const { return FYNDash; }
  /// Balance of SmoothedSpline, as it was set; at first 0.5.
  [[nodiscard]] double SplineSmoothingFactor() const { return FPSplineSmooth; }
  /// Stores the setting; the curve that it shapes is calculated anew by the next call.
  void SetNatural1(bool value);
  void SetNaturalN(bool value);
  void SetY1Dash(double value);
  void SetYNDash(double value);
  void SetSplineSmoothing(double value);
  /// @}

  // Files.

  /// Writes the pairs as an ASC file with the columns x and y.
  /// @param Comment    the first line, line feeds replaced by blanks; empty: "Exported by ZEL
  ///   TCurveFit component: " and the name of the file
  /// @param Precision  number of decimals
  /// @return empty on success; the system's message if the file cannot be created
  /// @throws EInOutError  if writing fails; an old file stays as it was then
  std::string ExportAsASC(std::string_view FName, std::string_view Comment, int Precision) const;
  /// Replaces the pairs by those of an ASC file of two columns. Names and row attributes are passed
  /// over; NAN and ### are not-a-number. A file that fails leaves the pairs alone.
  /// @return 0; -1 for a file that cannot be read; 1..4 for a bad line of the header; -5 for an
  ///   unreadable row attribute, -6 for an unreadable value, -7 for nominal variables
  /// @throws EZELMath2Error  "TCurveFit.ImportASC: number of columns must be 2 (is actually n).";
  ///   "TCurveFit.ImportASC: not enough memory"
  /// @throws EInOutError     if reading fails
  int ImportASC(std::string_view FName);

 private:
  [[nodiscard]] double CalcMeanDegrees(int col) const;
  void AdjustSums(double x, double y);
  void BasicRankCounts();
  void PrepareSpline();
  /// @return whether there is a smoothing spline
  bool PrepareSmoothedSpline();
  /// The polynomial fit about a shift: coefficients of ((x - shift) / spread)^j for y - offset.
  bool FitPolynomial(std::string_view routine, int nOrder, double shift, double spread,
                     double offset, TDoubleArray& kArray, TDoubleArray* Alpha, double& FitQual,
                     bool& NearSingular) const;
  void ClearCaches();
  /// Puts other pairs in place of those that are there.
  void Replace(std::span<const double> x, std::span<const double> y);
  /// No sums, no pairs, no extremes; the storage keeps its contents.
  void ResetSummary();
  /// The stored values of column 1 (x) or 2 (y), one for each pair.
  [[nodiscard]] std::span<const double> Values(int col) const {
    return FData.Column(col).first(static_cast<std::size_t>(FNumData));
  }

  static constexpr int kLeastRows = 1000;

  std::unique_ptr<detail::TPairSums> FSums;
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
  /// Pieces of the smoothing spline: a + b u + c u^2 + d u^3, u = t - x.
  struct TPieces {
    TDoubleArray x, a, b, c, d;
  };
  TPieces FPSplinePieces;
  bool FKendallValid = false;
  std::int64_t FKendallConcord = 0;
  std::int64_t FKendallDiscord = 0;
  std::int64_t FKendallTies1 = 0;
  std::int64_t FKendallTies2 = 0;
};

}  // namespace zel
