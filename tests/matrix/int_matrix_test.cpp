#include "tests/matrix/matrices.h"
#include "tests/support/testing.h"

namespace zel::test {
namespace {

using Values = std::vector<int>;
using Records = std::vector<TSpMatElemInt>;

Records records(const TIntMatrix& m) { return {m.StoredCells().begin(), m.StoredCells().end()}; }

/// Small integers, some of them 0.
void fillSmall(TIntMatrix& m, int columns, int rows, unsigned seed) {
  fillNormal(m, columns, rows, seed);
  for (int c = 1; c <= columns; ++c) {
    for (int r = 1; r <= rows; ++r) m.SetVal(c, r, m(c, r) % 5);
  }
}

/// What a sparse matrix is: the cells that were set, its size, and the bounds that rule it.
struct Model {
  std::map<std::pair<int, int>, int> cells;
  int columns = 0, rows = 0;
  int highCol = 1, highRow = 1;
  int events = 0;

  void set(int c, int r, int x) {
    if (c < 1 || r < 1) return;
    if (cells.insert_or_assign({c, r}, x).second) {
      columns = highCol = std::max(highCol, c);
      rows = highRow = std::max(highRow, r);
    }
    ++events;
  }
  void resize(int nc, int nr) {
    if (nc == columns && nr == rows) return;
    columns = std::max(nc, 0);
    rows = std::max(nr, 0);
    highCol = std::min(highCol, columns);
    highRow = std::min(highRow, rows);
    std::erase_if(cells, [&](const auto& cell) {
      return cell.first.first > columns || cell.first.second > rows;
    });
    ++events;
  }
  void fill(int x) {
    if (x == 0) {
      cells.clear();
      highCol = highRow = 1;
    }
    for (auto& cell : cells) cell.second = x;
    ++events;
  }
  /// SparseToArray and ArrayToSparse.
  void throughDense() {
    columns = cells.empty() ? 1 : highCol;
    rows = cells.empty() ? 1 : highRow;
    std::erase_if(cells, [](const auto& cell) { return cell.second == 0; });
    highCol = highRow = 1;
    for (const auto& cell : cells) {
      highCol = std::max(highCol, cell.first.first);
      highRow = std::max(highRow, cell.first.second);
    }
  }
};

TEST(SparseIntMatrix, BehavesAsAMapUnderRandomOperations) {
  for (const int step : {0, 1, 7, 1000}) {
    std::mt19937 random(static_cast<unsigned>(step) + 1);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    TIntMatrix m(CreateSparse, nullptr, step);
    Model model;
    Events events(m);
    for (int k = 0; k < 4000; ++k) {
      const int c = below(14) - 1, r = below(14) - 1, x = below(7) - 3;
      switch (below(40)) {
        case 0:
          EXPECT_TRUE(m.Resize(c, r));
          model.resize(c, r);
          break;
        case 1:
          m.Fill(x);
          model.fill(x);
          break;
        case 2:
          if (k % 2) break;
          m.ResizeAndClear(c, r);
          model.resize(c, r);
          model.fill(0);
          break;
        case 3:
          m.SparseToArray();
          m.ArrayToSparse(step);
          model.throughDense();
          break;
        default:
          m.SetVal(c, r, x);
          model.set(c, r, x);
      }
      Records expected;
      for (const auto& [at, value] : model.cells) expected.push_back({at.first, at.second, value});
      ASSERT_EQ(records(m), expected) << "operation " << k;
      ASSERT_EQ((Values{m.NrOfColumns(), m.NrOfRows(), events.count}),
                (Values{model.columns, model.rows, model.events}))
          << "operation " << k;
      const auto at = model.cells.find({c, r});
      ASSERT_EQ(m.GetVal(c, r), at == model.cells.end() ? 0 : at->second);
      int sum = 0, low = INT_MAX, high = -INT_MAX;
      int c1 = below(14), c2 = below(14), r1 = below(14), r2 = below(14);
      int minimum = 0, maximum = 0;
      m.MinMax(c1, r1, c2, r2, minimum, maximum);
      const Values found{m.Sum(c1, r1, c2, r2), minimum, maximum};
      m.MakeValidColRange(c1, c2);
      m.MakeValidRowRange(r1, r2);
      for (const auto& [cell, value] : model.cells) {
        if (cell.first < c1 || cell.first > c2 || cell.second < r1 || cell.second > r2) continue;
        sum += value;
        low = std::min(low, value);
        high = std::max(high, value);
      }
      ASSERT_EQ(found, (Values{sum, low, high}));
    }
  }
}

TEST(SparseIntMatrix, OperationsOnACopyGiveWhatTheDenseFormGives) {
  using Operation = std::function<void(TIntMatrix&, std::ostream&)>;
  TIntMatrix other, square, result;
  fillSmall(other, 4, 6, 2);
  fillSmall(square, 4, 4, 3);
  TIntVector v{1, -2, 3, 4}, w;
  TVector d;
  TInt2DArray array;
  TBool2DArray flags;
  const std::vector<Operation> operations{
      [](auto& m, auto&) { m.Fill(2, 3, 0, 0, 7); },
      [](auto& m, auto&) { m.FillDiag(9); },
      [](auto& m, auto& out) { out << m.RemoveColumn(2) << m.RemoveRow(6) << m.RemoveRow(9); },
      [](auto& m, auto&) { m.ExchangeColumns(1, 3), m.ExchangeRows(2, 5), m.ExchangeRows(0, 1); },
      [](auto& m, auto&) { m.MirrorColumns(), m.MirrorRows(); },
      [](auto& m, auto&) { m.SortRows(2, true, 0, 0, 0, 0), m.SortCols(3, false, 1, 2, 4, 5); },
      [](auto& m, auto& out) { out << m.Transpose(); },
      [&](auto& m, auto& out) { out << m.Add(&other) << m.Subtract(&square) << m.Add(&m); },
      [](auto& m, auto&) { m.SMult(1 << 30), m.SAdd(INT_MAX); },
      [&](auto& m, auto& out) { out << m.EMult(&other, &m) << m.Multiply(&square, &m); },
      [&](auto& m, auto& out) {
        out << m.MultiplyTransposed(&other, &result) << result << m.Multiply(&other, &result);
      },
      [&](auto& m, auto& out) { out << m.TransposeAndMultiply(&other, &result) << result; },
      [&](auto& m, auto& out) { out << m.Multiply(&v, &w) << w << m.Multiply(&w, &v); },
      [&](auto& m, auto& out) {
        int a = 0, b = 0, e = 0;
        TIntVector bins;
        double x = 0, y = 0, z = 0;
        m.Find(2, 4, 2, 6, 3, a, b);
        out << a << ' ' << b << m.FindInSortedColumn(2, true, 1) << m.CRCofData() << m.Trace();
        m.MeanVar(2, 3, 4, 6, x, y);
        out << x << ' ' << y << m.Quartiles(1, 1, 3, 3, x, y, z) << x << y << z;
        m.SkewKurt(1, 2, 3, 4, x, y);
        out << x << y << m.Percentile(60, 1, 1, 2, 6) << m.CountValues(1, 3, 2, 6, 0, 2);
        out << m.CountMaskedZeros(2, 4, 1, 5, 1) << m.CountMaskedZeros(0, 0, 0, 0, 0);
        out << m.Histogram(1, 1, 4, 5, 0, 3, 1, &bins, a, b, e) << bins << a << b << e;
        out << m.Dichotomize(1, flags) << flags;
        m.EdgeVector(orVertical, eoMax, &d);
        m.CopyToArray(array, 2, 3, 3, 6);
        out << d << array;
        m.CopyRowToVec(&v, 2, 0, 0);
        out << v;
        m.CopyColToVec(&v, 9, 3, 5);
        out << v << m;
      },
  };
  for (std::size_t k = 0; k < operations.size(); ++k) {
    TIntMatrix dense;
    fillSmall(dense, 4, 6, 1);
    TIntMatrix sparse(CreateSparse, nullptr, 3);
    sparse.Clone(&dense);
    EXPECT_EQ(contents(sparse), contents(dense));
    std::ostringstream events[2], outputs[2];
    int which = 0;
    for (TIntMatrix* m : {&dense, &sparse}) {
      auto& log = events[which];
      m->OnChange = [&log](TObject*) { log << "C "; };
      m->OnSortExchange = [&log, m](TObject* sender, std::uint8_t what, int i, int j, int f,
                                    int l) {
        log << (sender == m) << int{what} << i << j << f << l << ' ';
      };
      operations[k](*m, outputs[which++]);
      fillSmall(result, 2, 2, 5);
      const TIntVector start{1, -2, 3, 4};
      v.Clone(&start);
    }
    EXPECT_TRUE(sparse.IsSparse());
    EXPECT_EQ(contents(sparse), contents(dense)) << "operation " << k;
    EXPECT_EQ(outputs[1].str(), outputs[0].str()) << "operation " << k;
    EXPECT_EQ(events[1].str(), events[0].str()) << "operation " << k;
  }
}

TEST(SparseIntMatrix, CopiesKeepFormsAndLongIndices) {
  TIntMatrix source(CreateSparse, nullptr, 2);
  source.SetVal(2000000000, 3, 5);
  source.SetVal(2, 2000000000, 6);
  EXPECT_EQ(source.NrOfColumns(), 2000000000);
  TIntMatrix target(CreateSparse, nullptr, 0);
  target.SetVal(1, 1, 8);
  target.SetVal(11, 13, 9);
  target.CopyFrom(&source, 1, 1, INT_MAX, INT_MAX, 10, 11);
  EXPECT_EQ(records(target),
            (Records{{1, 1, 8}, {11, 13, 0}, {11, 2000000010, 6}, {2000000009, 13, 5}}));
  target.CopyFrom(&source, 1, 1, INT_MAX, INT_MAX, INT_MAX - 10, 1);
  EXPECT_EQ(target.GetVal(INT_MAX - 9, 2000000000), 6) << "what lies beyond is dropped";
  target.Clone(&source);
  EXPECT_EQ(records(target), records(source));
  source.SetName("S");
  EXPECT_THROW_MSG(source.SparseToArray(), EZELMatrixError,
                   "Component \"S\": not enough memory on heap");
  EXPECT_TRUE(source.IsSparse());
  const TNumMatrix<int>& base = source;
  EXPECT_EQ(base.GetVal(2000000000, 3), 0);
  EXPECT_EQ(base.CRCofData().size(), 32U);

  target.Resize(3, 3);
  TIntMatrix dense{{1, 0}, {0, 4}};
  target.CopyFrom(&dense, 0, 0, 2, 2, 2, 2);
  EXPECT_EQ(records(target), (Records{{2, 2, 1}, {2, 3, 0}, {3, 2, 0}, {3, 3, 4}}));
  target.CopyFromVec(dimColumns, nullptr, 0, 0, 1, 1);
  const TIntVector v{7, 8};
  target.CopyFromVec(&v, 0, 0, 3, 3);
  target.CopyFromArray(TInt2DArray{{5}, {6}}, 0, 1);
  EXPECT_EQ(contents(target), (Values{3, 4, 6, 0, 0, 0, 0, 1, 0, 0, 0, 0, 7, 8}));
  dense.CopyFrom(&target, 3, 3, 9, 9, 1, 1);
  EXPECT_EQ(contents(dense), (Values{2, 2, 7, 8, 0, 4}));
  dense.Clone(&target);
  EXPECT_FALSE(dense.IsSparse());
  EXPECT_EQ(contents(dense), contents(target));
  TMatrix real;
  real.Resize(2, 2);
  real.CopyFrom(&target, 2, 2, 3, 3, 1, 1);
  EXPECT_EQ(contents(real), (std::vector<double>{2, 2, 1, 0, 0, 7}));
}

TEST(SparseIntMatrix, AppendsInFewAllocationsAndFailsWithoutHarm) {
  static int allocations;
  allocations = 0;
  TIntMatrix m(CreateSparse, nullptr, 1);
  detail::AllocationAllowed = [](std::size_t) { return ++allocations > 0; };
  for (int k = 0; k < 200000; ++k) m.SetVal(k / 1000 + 1, k % 1000 + 1, k);
  detail::AllocationAllowed = nullptr;
  EXPECT_LT(allocations, 60);
  EXPECT_EQ(m.GetVal(157, 413), 156412);

  TIntMatrix small(CreateSparse, nullptr, 2);
  small.SetName("S");
  const auto reset = [&] {
    small.SparseToArray();
    small.Resize(2, 2);
    small.Fill(4);
    small.ArrayToSparse(2);
  };
  reset();
  const Records before = records(small);
  const auto unchanged = [&] {
    EXPECT_TRUE(small.IsSparse());
    EXPECT_EQ(records(small), before);
    EXPECT_EQ(contents(small), (Values{2, 2, 4, 4, 4, 4}));
  };
  TIntMatrix big;
  fillSmall(big, 20, 20, 1);
  TIntMatrix result{{1}};
  result.SetName("S");
  const std::string message = "Component \"S\": not enough memory on heap";
  for (const auto& operation : std::vector<std::function<void()>>{
           [&] { small.Clone(&big); },
           [&] { small.Fill(0); },
           [&] { small.Transpose(); },
           [&] { (void)small.Percentile(50, 1, 1, 2, 2); },
           [&] { small.Multiply(&small, &result); },
       }) {
    expectFailuresHarmless(operation, message, unchanged, reset);
  }
  result.Clone(&big);
  expectFailuresHarmless([&] { result.ArrayToSparse(1); }, message,
                         [&] { EXPECT_EQ(contents(result), contents(big)); });
  TIntMatrix full(CreateSparse, nullptr, 1);
  full.SetName("S");
  expectFailuresHarmless([&] { full.SetVal(full.NrOfColumns() + 1, 1, 1); }, message,
                         [&] { EXPECT_EQ(full.NrOfColumns(), 1); },
                         [&] { full.Fill(0), full.SetVal(1, 1, 1); });
}

TEST(IntMatrix, ExtremesSumsAndFingerprint) {
  TIntMatrix m{{INT_MIN, INT_MAX}, {INT_MAX, INT_MAX}};
  EXPECT_EQ(m.Sum(0, 0, 0, 0), -3);
  EXPECT_EQ(m.Trace(), -1);
  int low = 0, high = 0;
  m.MinMax(1, 1, 1, 1, low, high);
  EXPECT_EQ((Values{low, high}), (Values{INT_MIN, -INT_MAX}));
  TVector edge;
  m.EdgeVector(orHorizontal, eoSum, &edge);
  EXPECT_EQ(contents(edge), (std::vector<double>{-1, 2.0 * INT_MAX}));
  m.Resize(1, 1);
  m.EdgeVector(orVertical, eoMax, &edge);
  EXPECT_EQ(edge(1), INT_MIN);
  double mean = 0, variance = 0;
  m.Resize(2, 2);
  m.MeanVar(0, 0, 0, 0, mean, variance);
  EXPECT_EQ(mean, INT_MIN / 4.0);
  EXPECT_EQ(m.CRCofData(), TIntVector(m.Elements()).CRCofData());
  int c = 0, r = 0;
  m.Find(0, 0, 0, 0, INT_MIN, c, r);
  EXPECT_EQ((Values{c, r}), (Values{1, 1}));
}

}  // namespace
}  // namespace zel::test
