#include <set>

#include "tests/matrix/matrices.h"
#include "tests/support/testing.h"
#include "zel/kernels/comb_sort.h"

namespace zel::test {
namespace {

using Values = std::vector<double>;

TEST(MatrixOrder, RemovalLeavesTheLastLine) {
  TMatrix m{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  Events events(m);
  EXPECT_FALSE(m.RemoveColumn(4));
  EXPECT_FALSE(m.RemoveRow(0));
  EXPECT_TRUE(m.RemoveColumn(3));
  EXPECT_TRUE(m.RemoveColumn(1));
  EXPECT_TRUE(m.RemoveRow(2));
  EXPECT_EQ(contents(m), (Values{1, 2, 2, 8}));
  EXPECT_FALSE(m.RemoveColumn(1));
  EXPECT_EQ(events.count, 3);
  m.Resize(2, 3);
  EXPECT_EQ(contents(m), (Values{2, 3, 2, 8, 0, 0, 0, 0}));
}

TEST(MatrixOrder, ExchangesAndMirrorsTellOnce) {
  TMatrix m{{1, 2, 3}, {4, 5, 6}};
  Events events(m);
  m.ExchangeColumns(1, 3);
  EXPECT_EQ(contents(m), (Values{3, 2, 3, 6, 2, 5, 1, 4}));
  m.ExchangeRows(1, 2);
  EXPECT_EQ(contents(m), (Values{3, 2, 6, 3, 5, 2, 4, 1}));
  m.MirrorColumns();
  m.MirrorRows();
  EXPECT_EQ(contents(m), (Values{3, 2, 1, 4, 2, 5, 3, 6}));
  EXPECT_EQ(events.count, 4);
}

/// The exchanges that the comb sort makes of the keys of some rows, made by columns 2, 3, and key.
std::vector<std::array<int, 2>> sortRowsPlainly(TMatrix& m, int key, bool ascending, int low,
                                                int high) {
  std::vector<std::array<int, 2>> exchanges;
  std::vector<double> keys(m.Column(key).begin() + low - 1, m.Column(key).begin() + high);
  auto report = [&](std::size_t i, std::size_t j) {
    exchanges.push_back({low + static_cast<int>(i), low + static_cast<int>(j)});
    const auto [r1, r2] = exchanges.back();
    for (const int c : std::set{2, 3, key}) {
      const double kept = m(c, r1);
      m.SetVal(c, r1, m(c, r2));
      m.SetVal(c, r2, kept);
    }
    return true;
  };
  kernels::combSort(std::span(keys), keys.size() - 1, ascending, report);
  return exchanges;
}

/// Ties and not-a-number keys make the places depend on each single exchange. With a handler, with
/// none, and along the other dimension the result is the same.
TEST(MatrixOrder, SortsByTheDescribedExchanges) {
  std::mt19937 random(3);
  for (int trial = 0; trial < 120; ++trial) {
    const int rows = trial < 60 ? 1 + trial % 20 : 100 + trial;
    TMatrix plain, fast, reported, turned;
    fillNormal(plain, 5, rows, static_cast<unsigned>(trial));
    const int key = 1 + trial % 5;
    for (int r = 1; r <= rows; ++r) {
      const auto draw = random() % 40;
      if (trial % 4 == 1) plain.SetVal(key, r, static_cast<double>(draw % 4));
      if (trial % 4 == 2) plain.SetVal(key, r, draw == 0 ? NAN : static_cast<double>(draw));
      if (trial % 4 == 3) plain.SetVal(key, r, r);
    }
    SCOPED_TRACE(testing::Message() << "trial " << trial);
    const bool ascending = trial % 3 != 0;
    const int low = rows > 6 ? 2 : 1;
    const int high = rows > 6 ? rows - 2 : rows;
    for (TMatrix* copy : {&fast, &reported, &turned}) copy->Clone(&plain);
    turned.Transpose();
    Events changes(fast);
    std::vector<std::array<int, 2>> exchanges;
    reported.OnSortExchange = [&](TObject*, std::uint8_t what, int i, int j, int first, int last) {
      EXPECT_EQ((std::array<int, 3>{what, first, last}), (std::array<int, 3>{2, 2, 3}));
      exchanges.push_back({i, j});
    };
    fast.SortRows(key, ascending, 2, low, 3, high);
    reported.SortRows(key, ascending, 3, high, 2, low);
    turned.SortCols(key, ascending, low, 2, high, 3);
    turned.Transpose();
    EXPECT_EQ(exchanges, sortRowsPlainly(plain, key, ascending, low, high));
    for (const TMatrix* m : {&fast, &reported, &turned})
      EXPECT_EQ(m->CRCofData(), plain.CRCofData());
    EXPECT_EQ(changes.count, high > low ? 1 : 0);
  }
}

TEST(MatrixOrder, SortsWithoutStorageAndUnderAHostileHandler) {
  TMatrix m{{3, 1}, {2, 2}, {1, 3}};
  {
    const FailingNew fail(1);
    m.SortRows(1, true, 0, 0, 0, 0);
  }
  EXPECT_EQ(contents(m), (Values{2, 3, 1, 2, 3, 3, 2, 1}));
  m.SortRows(3, true, 0, 0, 0, 0);
  m.SAdd(-10);  // so that the cells that are gone, which read 0, would still be out of order
  int exchanges = 0;
  m.OnSortExchange = [&](TObject*, std::uint8_t what, int, int, int first, int last) {
    ++exchanges;
    EXPECT_EQ((std::array<int, 3>{what, first, last}), (std::array<int, 3>{1, 1, 3}));
    m.Resize(1, 1);
  };
  m.SortCols(1, false, 0, 0, 0, 0);
  EXPECT_EQ(exchanges, 1);
}

TEST(MatrixSearch, FindsTheFirstNearest) {
  const TMatrix m{{9, 2}, {2, 3}, {3, NAN}};
  const auto found = [&](int lowCol, int highCol, int lowRow, int highRow, double x) {
    std::array<int, 2> at{7, 7};
    m.Find(lowCol, highCol, lowRow, highRow, x, at[0], at[1]);
    return at;
  };
  EXPECT_EQ(found(0, 0, 0, 0, 2.5), (std::array<int, 2>{1, 2}));
  EXPECT_EQ(found(2, 2, 0, 0, 100), (std::array<int, 2>{2, 2}));
  EXPECT_EQ(found(2, 2, 3, 3, 100), (std::array<int, 2>{0, 0}));
  const TMatrix sorted{{1, 7}, {3, 5}, {5, 3}, {7, 1}};
  EXPECT_EQ(sorted.FindInSortedColumn(1, true, 3.9), 2);
  EXPECT_EQ(sorted.FindInSortedColumn(2, false, 7), 1);
  EXPECT_EQ(sorted.FindInSortedColumn(3, true, 4), 0);
}

TEST(MatrixSearch, FingerprintFollowsTheColumns) {
  TMatrix m{{1, 3}, {2, 4}};
  EXPECT_EQ(m.CRCofData(), (TVector{1, 2, 3, 4}).CRCofData());
  m.Resize(3, 0);
  EXPECT_EQ(m.CRCofData(), std::string(64, '0'));
}

}  // namespace
}  // namespace zel::test
