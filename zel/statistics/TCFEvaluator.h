/// @file
/// Evaluation of a two-class classifier.
#pragma once

#include <cstdint>
#include <string_view>

#include "zel/base/api.h"
#include "zel/base/array.h"
#include "zel/base/component.h"
#include "zel/base/errors.h"
#include "zel/base/types.h"
#include "zel/matrix/TMatrix.h"

namespace zel {

/// Holds the true class of each object, one of two distinct numbers, and the estimate that a
/// classifier gives for it; yields the confusion matrix for a decision threshold, scores, the ROC
/// curve and the thresholds that maximise three of the scores.
///
/// Positive is the larger of the two classes. An object is predicted positive if its estimate is at
/// least the threshold; a not-a-number counts as predicted positive. A true value that is
/// not-a-number leaves no two classes. At first there is one object, 0 and 0.
class ZEL_API TCFEvaluator : public TComponent {
 public:
  explicit TCFEvaluator(TComponent* AOwner = nullptr);
  ~TCFEvaluator() override;
  [[nodiscard]] std::string_view ClassName() const override;

  // Data. Objects are numbered from 1; a read outside gives 0, a write there is ignored.

  /// Number of objects; -1 while there are not as many true values as estimates.
  [[nodiscard]] int NData() const { return GetNData(); }
  [[nodiscard]] int GetNData() const;
  /// Sets both numbers; values that remain stay, new ones are 0. n below 1 is ignored.
  /// @throws EZELStatisError  `Component "N": not enough memory on heap`; nothing changes then
  void SetNData(int n);
  [[nodiscard]] double GetTrueData(int ix) const { return At(FTrueVec, ix); }
  /// The confusion matrix stays the one that was computed before.
  void SetTrueData(int ix, double value);
  [[nodiscard]] double GetEstimData(int ix) const { return At(FEstVec, ix); }
  void SetEstimData(int ix, double value);
  [[nodiscard]] double TrueData(int ix) const { return GetTrueData(ix); }
  [[nodiscard]] double EstimData(int ix) const { return GetEstimData(ix); }

  /// Takes a column, with its length.
  /// @return 0; -1, with nothing changed, if there is no matrix or no such column; -2 if its values
  ///   are not exactly two distinct ones (they are taken all the same)
  /// @throws EZELStatisError  as SetNData
  int CopyTrueFromMatrix(int Col, const TMatrix* SrcMat);
  int CopyEstFromMatrix(int Col, const TMatrix* SrcMat);

  /// The two classes, v1 < v2.
  /// @return false, with v1 = v2 = 0, unless the true values are exactly two distinct ones
  bool GetActualDichoValues(double& v1, double& v2) const;
  /// The smaller and the larger class; 0 unless there are exactly two.
  [[nodiscard]] double DichoV1() const;
  [[nodiscard]] double DichoV2() const;

  /// Sorts the objects by their estimates, the largest first, if they are not sorted yet. Comb sort
  /// with shrink factor 1.3 and first gap n - 1, not stable. A not-a-number is never exchanged, and
  /// the estimates around it need not be in order.
  /// @return 0; -1 if the numbers of values differ
  int SortEstimated();

  // The confusion matrix. Computing it sorts the objects.

  /// @return 0; -1 if the numbers of values differ, else -2 unless there are exactly two classes
  int CalcConfusionMatrix(double CFThresh);
  /// Threshold of the last confusion matrix; 0 at first.
  [[nodiscard]] double Threshold() const { return FCFThresh; }
  /// The last confusion matrix and its threshold.
  /// @return 0; with the arguments untouched -1 if none was computed since estimates or numbers of
  ///   values changed, else -2 unless there are exactly two classes
  int GetConfMatValues(int& tp, int& fp, int& tn, int& fn, double& Thresh) const;

  // Scores of the last confusion matrix. -2 unless there are exactly two classes, else -1 if none
  // was computed since estimates or numbers of values changed (Informedness: -3 and -2,
  // MatthewsCorr: -2 and -3). A score whose denominator is 0 is 0. Counts of any size are exact.

  /// Sensitivity, tp / (tp + fn).
  [[nodiscard]] double TpRate() const;
  /// Specificity, tn / (tn + fp).
  [[nodiscard]] double TnRate() const;
  /// fp / (tn + fp).
  [[nodiscard]] double FpRate() const;
  /// fn / (tp + fn).
  [[nodiscard]] double FnRate() const;
  /// Positive predictive value, tp / (tp + fp).
  [[nodiscard]] double Precision() const;
  /// tn / (tn + fn).
  [[nodiscard]] double NegPredVal() const;
  /// Critical success index, tp / (tp + fn + fp).
  [[nodiscard]] double ThreatScore() const;
  /// 2 tp / (2 tp + fn + fp).
  [[nodiscard]] double F1Score() const;
  /// (tp + tn) / n.
  [[nodiscard]] double Accuracy() const;
  /// Youden's index, sensitivity + specificity - 1.
  [[nodiscard]] double Informedness() const;
  /// Matthews' correlation coefficient, the phi of the table.
  [[nodiscard]] double MatthewsCorr() const;
  /// Theil's symmetric uncertainty coefficient of the actual and the predicted class.
  [[nodiscard]] double UncertCoeff() const;

  /// ROC curve and best thresholds.
  ///
  /// The thresholds come from a scan from min - 5 s up to below max + 5 s in steps of s = (max -
  /// min) / 100, where min and max are the extremes of the finite estimates; where s is below the
  /// distance of neighbouring doubles, in steps of that. The first best threshold counts, or the
  /// mean of the run of equally good ones that it is in; a later run of equally good ones replaces
  /// it. Without two different finite estimates nothing is scanned, and the thresholds are 0. The
  /// confusion matrix of the last threshold of the scan is left behind.
  ///
  /// @param ROCCoords  [point][0: false-positive rate, 1: true-positive rate, 2: threshold]; a
  ///   point for each different estimate from the largest down, after the first object that has
  ///   it, and one for the end
  /// @param BestROC  0-based point at or after which the two rates first differ most
  /// @param AUC  area under the curve through every single object. Objects with equal estimates
  ///   count in the order that the sort leaves.
  /// @param ThreshMMC, ThreshAccuracy, ThreshInformedness  thresholds of the largest MatthewsCorr,
  ///   Accuracy and Informedness, as far as these reach 0
  /// @return 0; with the arguments untouched -3 if the numbers of values differ, else -1 unless
  ///   there are exactly two classes
  /// @throws EZELStatisError  as SetNData, the arguments are untouched then
  /// O(n log n) for the sort, then O(n).
  int OptimizeThresholds(TDouble2DArray& ROCCoords, int& BestROC, double& AUC, double& ThreshMMC,
                         double& ThreshAccuracy, double& ThreshInformedness);

 private:
  [[nodiscard]] static double At(const TDoubleArray& values, int ix);
  int CopyColumn(int Col, const TMatrix* SrcMat, TDoubleArray& values);
  /// Looks for the two classes, unless they are known.
  bool IsDicho() const;
  /// The score, or a code if there is no confusion matrix.
  template <class Score>
  double ScoreOf(Score&& score, int noMatrix = -1, int noClasses = -2) const;
  void ScanThresholds(double& ThreshMMC, double& ThreshAccuracy, double& ThreshInformedness);

  TDoubleArray FTrueVec;
  TDoubleArray FEstVec;
  bool FIsSorted = false;
  bool FHasMatrix = false;
  std::int64_t Ftp = 0;
  std::int64_t Ffp = 0;
  std::int64_t Ftn = 0;
  std::int64_t Ffn = 0;
  double FCFThresh = 0;
  mutable bool FDichoKnown = false;  // the three below are up to date
  mutable bool FIsDicho = false;
  mutable double FDichoV1 = 0;
  mutable double FDichoV2 = 0;
};

}  // namespace zel
