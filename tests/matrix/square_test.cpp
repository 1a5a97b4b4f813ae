#include <thread>

#include "tests/matrix/matrices.h"
#include "tests/support/testing.h"

namespace zel::test {
namespace {

class SquareProduct : public WithProgress {};

TEST_F(SquareProduct, SameBitsForEveryNumberOfThreads) {
  for (const int columns : {0, 1, 2, 5, 70, 150}) {
    TMatrix a;
    fillNormal(a, columns, 67);
    std::vector<double> expected{static_cast<double>(columns), static_cast<double>(columns)};
    for (int i = 1; i <= columns; ++i) {
      for (int j = 1; j <= columns; ++j) {
        double sum = 0;
        for (int k = 1; k <= 67; ++k)
          sum = std::fma(a(std::min(i, j), k), a(std::max(i, j), k), sum);
        expected.push_back(sum / 3);
      }
    }
    for (const int threads : {-1, 1, 2, 3, 1000}) {
      SCOPED_TRACE(testing::Message() << columns << " columns, " << threads << " threads");
      TMatrix result;
      result.Resize(columns, columns);
      Events events(result), sourceEvents(a);
      ProcStat = 0;
      EXPECT_TRUE(a.Square(&result, 3, threads));
      EXPECT_EQ(contents(result), expected);
      EXPECT_EQ(ProcStat, columns);
      EXPECT_EQ(events.count, 1);
      EXPECT_EQ(sourceEvents.count, 0);
    }
  }
  TMatrix a{{1, 2}, {3, 4}};
  EXPECT_FALSE(a.Square(nullptr, 1));
  EXPECT_TRUE(a.Square(&a, 1));
  EXPECT_EQ(contents(a), (std::vector<double>{2, 2, 10, 14, 14, 20}))
      << "the source may take the result";
}

TEST_F(SquareProduct, StopsBeforeTheFirstStepAndInBetween) {
  TMatrix a;
  fillNormal(a, 100, 20);
  TMatrix result;
  result.Resize(100, 100);
  AbortMathProc = true;
  EXPECT_FALSE(a.Square(&result, 1, 1));
  EXPECT_FALSE(a.Square(&result, 1, 2));
  EXPECT_EQ(ProcStat, 0);
  AbortMathProc = false;
  MathFeedBackProc = [](double done) { AbortMathProc = done >= 10; };
  EXPECT_FALSE(a.Square(&result, 1, 1));
  EXPECT_EQ(ProcStat, 10);
  TMatrix whole;
  reset();
  a.Square(&whole, 1, 1);
  for (int i = 1; i <= 100; ++i) {
    EXPECT_EQ(result(10, i), whole(10, i)) << "the columns of the steps made are there";
    EXPECT_EQ(result(i, 11), i <= 10 ? whole(i, 11) : 0) << "and no other";
  }
}

/// The abort flag or an exception comes at any time, from the caller's thread; afterwards nobody
/// works any more.
TEST_F(SquareProduct, NoWorkerOutlivesTheCall) {
  TMatrix a, result;
  fillNormal(a, 120, 400);
  static int calls, last;
  static bool foreign, throws;
  static std::thread::id caller;
  caller = std::this_thread::get_id();
  foreign = false;
  for (int round = 0; round < 20; ++round) {
    calls = 0;
    last = round % 5;
    throws = round % 2 == 0;
    MathFeedBackProc = [](double) {
      if (std::this_thread::get_id() != caller) foreign = true;
      if (++calls <= last) return;
      if (throws) throw EMathError("enough");
      AbortMathProc = true;
    };
    result.Resize(1, 1);
    // Only the first call is sure to come before the work is done.
    try {
      EXPECT_TRUE(!a.Square(&result, 1, 3) || last > 0);
      EXPECT_TRUE(!throws || last > 0);
    } catch (const EMathError&) {
      EXPECT_TRUE(throws);
    }
    EXPECT_GE(calls, 1);
    const double done = ProcStat;
    const auto seen = contents(result);
    std::this_thread::yield();
    EXPECT_EQ(ProcStat, done);
    EXPECT_EQ(contents(result), seen);
    reset();
  }
  EXPECT_FALSE(foreign);
}

TEST_F(SquareProduct, WorkersCanBeUsedOneByOne) {
  TMatrix a;
  fillNormal(a, 3, 10);
  TMatrix expected;
  a.Square(&expected, 2, 1);
  ProcStat = 0;
  TMatrix result;
  result.Resize(3, 3);
  for (const int column : {1, 2, 3, 4}) {
    TMatSq1ColThread worker;
    worker.Column = column;
    worker.Norm = 2;
    worker.SrcMat = &a;
    worker.ResMat = &result;
    EXPECT_FALSE(worker.Finished());
    worker.Start();
    worker.WaitFor();
    EXPECT_TRUE(worker.Finished());
  }
  EXPECT_EQ(ProcStat, 4);
  EXPECT_EQ(contents(result), contents(expected));
}

}  // namespace
}  // namespace zel::test
