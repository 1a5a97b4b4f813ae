/// @file
/// Cross-validation by repeated hold-out.
#pragma once

#include <functional>
#include <string_view>

#include "zel/base/api.h"
#include "zel/base/array.h"
#include "zel/base/component.h"
#include "zel/base/errors.h"
#include "zel/base/types.h"
#include "zel/matrix/TMatrix.h"
#include "zel/vector/TVector.h"

namespace zel {

/// Asks for a model of the objects in ObjectList, numbers of rows in ascending order; the handler
/// sets Success, which is false before.
using TOnModelCreateRequestEvent = std::function<void(TObject* Sender, int PercentDone,
                                                      const TIntArray& ObjectList, bool& Success)>;
/// Asks the last model for the responses of one object. Response comes with a zero for each
/// response; one that is missing afterwards counts as not-a-number.
using TOnModelApplyRequestEvent = std::function<void(
    TObject* Sender, int PercentDone, const TDoubleArray& Predictors, TDoubleArray& Response)>;

/// Validates a model that the caller builds and applies in two event handlers: random disjoint test
/// sets are drawn until every object was in one, each is predicted by a model of all other objects.
/// Sums the squared errors for each response, and the confusion matrix of a response of two
/// classes, where 1 is the positive class and an error of 0.5 or more is the wrong class.
class ZEL_API TCrossValidator : public TComponent {
 public:
  TOnModelApplyRequestEvent OnModelApplyRequest;
  TOnModelCreateRequestEvent OnModelCreateRequest;
  /// Asked after each object and after each failed model; once it has set Abort, the run ends.
  TOnCheckAbortEvent OnCheckAbort;

  explicit TCrossValidator(TComponent* AOwner = nullptr);
  ~TCrossValidator() override;
  [[nodiscard]] std::string_view ClassName() const override;

  /// Predictors: one column per variable, one row per object; null at first, and again if the
  /// matrix is destroyed by somebody else.
  [[nodiscard]] TMatrix* XMat() const { return Living(FXMat); }
  /// Takes the matrix over: this object becomes its owner and destroys it, unless the matrix itself
  /// owns this object. The former matrix, if there was one, is the caller's again, without an
  /// owner. A run that is going on keeps its matrices: nothing happens.
  void SetXMat(TMatrix* value) { SetMatrix(FXMat, value); }
  /// Responses: one column per response, one row per object. May be the matrix of the predictors.
  [[nodiscard]] TMatrix* YMat() const { return Living(FYMat); }
  void SetYMat(TMatrix* value) { SetMatrix(FYMat, value); }

  /// Objects per test set; 2 at first.
  [[nodiscard]] int SizeTestSet() const { return FTestSize; }
  /// Discards the results. n below 1 is taken as 1.
  void SetTestSize(int n);
  void SetSizeTestSet(int n) { SetTestSize(n); }

  /// Runs the validation. SizeTestSet is lowered to n div 2 + 1 for n objects, and stays so. The
  /// test sets come from the process-wide generator, which is not seeded here. A test set for which
  /// no model could be made is drawn anew, but after 1000 failures in succession the run is
  /// aborted. No objects: the results are 0, and no event is fired. PercentDone is the part of the
  /// objects that have been applied.
  /// @return false if it was aborted, or is running already; the results are lost in the first case
  /// @throws EZELStatisError  in this order: "TCrossValidator.Execute: data matrix not assigned",
  ///   "TCrossValidator.Execute: number of rows of XMat and YMat not equal",
  ///   "TCrossValidator: OnModelApplyRequest event is not assigned",
  ///   "TCrossValidator: OnModelCreateRequest event is not assigned";
  ///   `Component "N": not enough memory on heap`. What a handler throws goes through. The results
  ///   are lost in the last two cases.
  bool Execute();
  /// Execute is running.
  [[nodiscard]] bool IsExecuting() const { return FIsRunning; }

  // Results for response ix, numbered from 1; -1 while there are none after an aborted run or a
  // change of SizeTestSet.

  /// Root mean square error of prediction; 0 before the first run and for ix outside.
  [[nodiscard]] double GetRMSEP(int ix) const;
  /// Sensitivity, TP / (TP + FN); 0 without positives.
  [[nodiscard]] double GetTPRate(int ix) const;
  /// 1 - specificity, FP / (FP + TN); 1 without negatives.
  [[nodiscard]] double GetFPRate(int ix) const;

 private:
  class TRun;

  [[nodiscard]] TMatrix* Living(TMatrix* matrix) const;
  void SetMatrix(TMatrix*& matrix, TMatrix* value);
  /// Runs an operation; a lack of memory raises the exception of this class.
  template <class Operation>
  decltype(auto) Guard(Operation&& operation) const;
  void FillResults(double value);

  int FTestSize = 2;
  TVector FPress;
  bool FIsRunning = false;
  TVector FTPCnt;
  TVector FFPCnt;
  TVector FTNCnt;
  TVector FFNCnt;
  TMatrix* FXMat = nullptr;
  TMatrix* FYMat = nullptr;
  int FNumObjects = 0;  // of the last run
};

}  // namespace zel
