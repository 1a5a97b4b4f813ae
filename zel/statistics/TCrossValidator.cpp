#include "zel/statistics/TCrossValidator.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include "zel/base/bitfield.h"
#include "zel/base/random.h"
#include "zel/base/rounding.h"
#include "zel/kernels/double_double.h"
#include "zel/statistics/memory_impl.h"

namespace zel {
namespace {

constexpr int kMostFailures = 1000;

}  // namespace

template <class Operation>
decltype(auto) TCrossValidator::Guard(Operation&& operation) const {
  return detail::GuardStatis(operation, [&] { return ComponentMessage(detail::kNoMemory); });
}

/// One execution: which objects are still to be tested, which are just being tested.
class TCrossValidator::TRun {
 public:
  explicit TRun(TCrossValidator& owner)
      : FOwner(owner),
        FCount(owner.FXMat->NrOfRows()),
        FErrors(static_cast<std::size_t>(owner.FYMat->NrOfColumns())) {
    FUntested.SetSize(FCount);
    FTest.SetSize(FCount);
    for (int i = 1; i <= FCount; ++i) FUntested.SetBit(i, true);
    FTraining.reserve(static_cast<std::size_t>(FCount));
  }

  /// @return false if aborted
  bool Run() {
    int failures = 0;
    for (int untested = FCount; untested > 0 && !FAbort;) {
      const int size = std::min(FOwner.FTestSize, untested);
      DrawTestSet(size, untested);
      if (CreateModel()) {
        failures = 0;
        untested -= size;
        for (int o = FTest.NextTrueBit(1); o > 0 && !FAbort; o = FTest.NextTrueBit(o + 1)) {
          Apply(o);
          CheckAbort();
        }
      } else {
        FUntested.CombineWith(&FTest, bcOr);
        CheckAbort();
        if (++failures == kMostFailures) FAbort = true;
      }
    }
    return !FAbort;
  }

 private:
  [[nodiscard]] int Percent() const { return RoundToInt<int>(100.0 * FApplied / FCount); }

  /// Moves objects from the untested ones to the test set.
  void DrawTestSet(int size, int untested) {
    FTest.Clear();
    if (untested == size) {
      FTest.CombineWith(&FUntested, bcOr);
      FUntested.Clear();
      return;
    }
    for (int k = 0; k < size; ++k) {
      int drawn = FUntested.NextTrueBit(Random(FCount) + 1);
      if (drawn < 0) drawn = FUntested.NextTrueBit(1);
      FUntested.SetBit(drawn, false);
      FTest.SetBit(drawn, true);
    }
  }

  bool CreateModel() {
    FTraining.clear();
    for (int i = 1; i <= FCount; ++i) {
      if (!FTest.GetBit(i)) FTraining.push_back(i);
    }
    bool success = false;
    Fire(FOwner.OnModelCreateRequest, &FOwner, Percent(), FTraining, success);
    return success;
  }

  /// Ends the run if a handler has destroyed a matrix.
  void Apply(int object) {
    ++FApplied;
    const TMatrix* const x = FOwner.XMat();
    if (!x) {
      FAbort = true;
      return;
    }
    FOwner.Guard([&] {
      FPredictors.assign(static_cast<std::size_t>(x->NrOfColumns()), 0.0);
      FResponse.assign(FErrors.size(), 0.0);
    });
    for (int c = 1; c <= x->NrOfColumns(); ++c) {
      FPredictors[static_cast<std::size_t>(c) - 1] = (*x)(c, object);
    }
    Fire(FOwner.OnModelApplyRequest, &FOwner, Percent(), FPredictors, FResponse);
    const TMatrix* const y = FOwner.YMat();
    if (!y) {
      FAbort = true;
      return;
    }
    for (std::size_t j = 0; j < FErrors.size(); ++j) {
      const double response =
          j < FResponse.size() ? FResponse[j] : std::numeric_limits<double>::quiet_NaN();
      Count(j, response, (*y)(static_cast<int>(j) + 1, object));
    }
  }

  void Count(std::size_t j, double response, double y) {
    const int column = static_cast<int>(j) + 1;
    const double error = response - y;
    FErrors[j] = FErrors[j] + kernels::twoProduct(error, error);
    FOwner.FPress.SetVal(column, FErrors[j].hi);
    const bool isPositive = y == 1;
    const bool isWrong = isPositive ? !(std::abs(error) < 0.5) : std::abs(error) >= 0.5;
    TVector& count = isPositive ? (isWrong ? FOwner.FFNCnt : FOwner.FTPCnt)
                                : (isWrong ? FOwner.FFPCnt : FOwner.FTNCnt);
    count.SetVal(column, count(column) + 1);
  }

  void CheckAbort() { Fire(FOwner.OnCheckAbort, &FOwner, FAbort); }

  TCrossValidator& FOwner;
  const int FCount;
  int FApplied = 0;
  bool FAbort = false;
  TBitFld FUntested;
  TBitFld FTest;
  std::vector<kernels::DoubleDouble> FErrors;
  TIntArray FTraining;
  TDoubleArray FPredictors;
  TDoubleArray FResponse;
};

TCrossValidator::TCrossValidator(TComponent* AOwner) : TComponent(AOwner) {}
TCrossValidator::~TCrossValidator() = default;

std::string_view TCrossValidator::ClassName() const { return "TCrossValidator"; }

TMatrix* TCrossValidator::Living(TMatrix* matrix) const {
  return Owns(matrix) || IsOwnedBy(matrix) ? matrix : nullptr;
}

void TCrossValidator::SetMatrix(TMatrix*& matrix, TMatrix* value) {
  if (FIsRunning || matrix == value) return;
  Guard([&] { TakeOwnership(value); });
  TMatrix* const former = matrix;
  matrix = value;
  if (former != FXMat && former != FYMat) ReleaseOwnership(former);
}

void TCrossValidator::FillResults(double value) {
  for (TVector* v : {&FPress, &FTPCnt, &FFPCnt, &FTNCnt, &FFNCnt}) v->Fill(value);
}

void TCrossValidator::SetTestSize(int n) {
  FTestSize = std::max(n, 1);
  FillResults(-1);
}

bool TCrossValidator::Execute() {
  if (FIsRunning) return false;
  if (!XMat() || !YMat()) {
    throw EZELStatisError("TCrossValidator.Execute: data matrix not assigned");
  }
  if (FXMat->NrOfRows() != FYMat->NrOfRows()) {
    throw EZELStatisError("TCrossValidator.Execute: number of rows of XMat and YMat not equal");
  }
  if (!OnModelApplyRequest) {
    throw EZELStatisError("TCrossValidator: OnModelApplyRequest event is not assigned");
  }
  if (!OnModelCreateRequest) {
    throw EZELStatisError("TCrossValidator: OnModelCreateRequest event is not assigned");
  }
  FNumObjects = FXMat->NrOfRows();
  FTestSize = std::min(FTestSize, FNumObjects / 2 + 1);
  bool complete = false;
  struct Running {
    explicit Running(TCrossValidator& v, const bool& done) : validator(v), complete(done) {
      validator.FIsRunning = true;
    }
    ~Running() {
      validator.FIsRunning = false;
      if (!complete) validator.FillResults(-1);
    }
    TCrossValidator& validator;
    const bool& complete;
  } const running(*this, complete);
  for (TVector* v : {&FPress, &FTPCnt, &FFPCnt, &FTNCnt, &FFNCnt}) {
    Guard([&] { v->Resize(std::max(1, FYMat->NrOfColumns())); });
  }
  FillResults(0);
  const auto run = Guard([&] { return std::make_unique<TRun>(*this); });
  complete = run->Run();
  return complete;
}

double TCrossValidator::GetRMSEP(int ix) const {
  const double press = FPress(ix);
  if (press < 0) return -1;
  return FNumObjects == 0 ? 0 : std::sqrt(press / FNumObjects);
}

double TCrossValidator::GetTPRate(int ix) const {
  const double positives = FTPCnt(ix) + FFNCnt(ix);
  if (positives < 0) return -1;
  return positives == 0 ? 0 : FTPCnt(ix) / positives;
}

double TCrossValidator::GetFPRate(int ix) const {
  const double negatives = FFPCnt(ix) + FTNCnt(ix);
  if (negatives < 0) return -1;
  return negatives == 0 ? 1 : FFPCnt(ix) / negatives;
}

}  // namespace zel
