/// @file
/// Matrices for tests.
#pragma once

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/support/failing_new.h"
#include "tests/support/failing_storage.h"
#include "zel/base/progress.h"
#include "zel/matrix/Zel_matrix.h"

namespace zel::test {

/// Normal deviates, the same for the same arguments.
inline void fillNormal(TMatrix& m, int columns, int rows, unsigned seed = 1) {
  std::mt19937_64 random(seed);
  std::normal_distribution<double> normal;
  m.Resize(columns, rows);
  for (int c = 1; c <= columns; ++c) {
    for (int r = 1; r <= rows; ++r) m.SetVal(c, r, normal(random));
  }
}

/// Size and elements of a matrix, in the order of its columns.
inline std::vector<double> contents(const TMatrix& m) {
  std::vector<double> all{static_cast<double>(m.NrOfColumns()), static_cast<double>(m.NrOfRows())};
  all.insert(all.end(), m.begin(), m.end());
  return all;
}

inline std::vector<double> contents(const TVector& v) { return {v.begin(), v.end()}; }

/// Resets the progress globals on both ends.
class WithProgress : public testing::Test {
 protected:
  WithProgress() { reset(); }
  ~WithProgress() override { reset(); }
  static void reset() {
    ProcStat = 0;
    MathFeedBackProc = nullptr;
    AbortMathProc = false;
  }
};

/// Lets the 1st, 2nd, ... allocation of an operation fail until it succeeds, for array storage and
/// for operator new: each failure must raise the message, and `check` must find everything as it
/// was. At least one allocation must fail.
/// @param prepare  runs before each attempt
template <class Error = EZELMatrixError, class Operation, class Check, class Prepare = void (*)()>
void expectFailuresHarmless(
    Operation&& operation, const std::string& message, Check&& check, Prepare&& prepare = [] {}) {
  int failures = 0;
  const auto attempt = [&](auto&& fail) {
    for (int k = 0; k < 50; ++k) {
      char caught[200] = "";
      prepare();
      try {
        const auto failing = fail(k);
        operation();
        return;
      } catch (const Error& error) {
        std::snprintf(caught, sizeof caught, "%s", error.what());
      }
      ++failures;
      EXPECT_EQ(caught, message) << "allocation " << k;
      check();
    }
    ADD_FAILURE() << "too many allocations";
  };
  attempt([](int k) { return FailingStorage(k); });
  attempt([](int k) { return FailingNew(k); });
  EXPECT_GT(failures, 0);
}

}  // namespace zel::test
