#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "tests/matrix/matrices.h"
#include "tests/support/expect_message.h"
#include "tests/support/simd_targets.h"

namespace zel {
namespace {

using Values = std::vector<double>;
using Index = std::array<int, 4>;

/// The array as plain loops see it.
struct Plain {
  Index n{1, 1, 1, 1};
  Values cells{0};
  [[nodiscard]] bool has(Index i) const {
    for (int d = 0; d < 4; ++d) {
      if (i[d] < 1 || i[d] > n[d]) return false;
    }
    return true;
  }
  double& at(Index i) {
    int k = 0;
    for (int d = 0; d < 4; ++d) k = k * n[d] + i[d] - 1;
    return cells[static_cast<std::size_t>(k)];
  }
  double get(Index i) { return has(i) ? at(i) : 0; }
  /// Goes through all indices, the last fastest.
  void each(const std::function<void(Index)>& use) const {
    for (Index i{1, 1, 1, 1}; has(i);) {
      use(i);
      for (int d = 3; ++i[d] > n[d] && d > 0; --d) i[d] = 1;
    }
  }
  /// Becomes an array of another size.
  void become(Index size, const std::function<double(Plain&, Index)>& value) {
    Plain old = *this;
    n = size;
    cells.clear();
    each([&](Index i) { cells.push_back(value(old, i)); });
  }
};

Plain plainOf(const TMat4D& m) {
  Plain p;
  p.become({m.NrOfColumns(), m.NrOfRows(), m.NrOfLayers(), m.NrOfTimeSlots()},
           [&](Plain&, Index i) { return m(i[0], i[1], i[2], i[3]); });
  return p;
}

void expectSame(const TMat4D& m, const Plain& p) {
  const Plain got = plainOf(m);
  ASSERT_EQ(got.n, p.n);
  ASSERT_EQ(got.cells, p.cells);
}

/// Small integers, so that values repeat.
void fillSmall(TMat4D& m, Index n, std::mt19937::result_type seed) {
  std::mt19937 random(seed);
  m.Resize(n[0], n[1], n[2], n[3]);
  plainOf(m).each(
      [&](Index i) { m.SetVal(i[0], i[1], i[2], i[3], static_cast<int>(random() % 19) - 9); });
}

TEST(Mat4D, DoesWhatPlainLoopsDo) {
  std::mt19937 random(7);
  const auto draw = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  TMat4D m;
  Plain p;
  bool isFresh = false;
  for (int round = 0; round < 1500; ++round) {
    if (!isFresh || round % 8 == 0) {
      fillSmall(m, {draw(1, 6), draw(1, 5), draw(1, 4), draw(1, 3)}, random());
      p = plainOf(m);
      isFresh = true;
    }
    test::Events events(m);
    int fired = 1;
    Index low, high, size;
    for (int d = 0; d < 4; ++d) {
      low[d] = draw(-1, p.n[d] + 1);
      high[d] = draw(-1, p.n[d] + 1);
      size[d] = draw(0, 6);
    }
    Index from = low, to = high;
    for (int d = 0; d < 4; ++d) {
      if (low[d] == 0 && high[d] == 0) to[d] = p.n[d];
      from[d] = std::clamp(from[d], 1, p.n[d]);
      to[d] = std::clamp(to[d], 1, p.n[d]);
      if (from[d] > to[d]) std::swap(from[d], to[d]);
    }
    const int operation = draw(0, 10);
    SCOPED_TRACE(testing::Message() << "round " << round << ", operation " << operation);
    switch (operation) {
      case 0: {
        const bool changes = *std::min_element(size.begin(), size.end()) > 0 && size != p.n;
        m.Resize(size[0], size[1], size[2], size[3]);
        if (changes) p.become(size, [](Plain& old, Index i) { return old.get(i); });
        fired = changes;
        break;
      }
      case 1:
        m.Cut(low[0], high[0], low[1], high[1], low[2], high[2], low[3], high[3]);
        for (int d = 0; d < 4; ++d) size[d] = to[d] - from[d] + 1;
        p.become(size, [&](Plain& old, Index i) {
          for (int d = 0; d < 4; ++d) i[d] += from[d] - 1;
          return old.at(i);
        });
        break;
      case 2: {
        Index f, o;
        for (int d = 0; d < 4; ++d) {
          f[d] = draw(1, 4);
          o[d] = draw(0, 5);
          size[d] = (p.n[d] - o[d] % f[d] - 1) / f[d] + 1;
        }
        const bool average = draw(0, 1) == 1;
        m.Resample(f[0], o[0], f[1], o[1], f[2], o[2], f[3], o[3], average);
        p.become(size, [&](Plain& old, Index i) {
          Plain block;
          double sum = 0;
          for (int d = 0; d < 4; ++d) i[d] = (i[d] - 1) * f[d] + o[d] % f[d] + 1;
          if (!average) return old.get(i);
          block.n = f;
          block.each([&](Index k) {
            for (int d = 0; d < 4; ++d) k[d] += i[d] - 1;
            sum += old.get(k);
          });
          return sum / (f[0] * f[1] * f[2] * f[3]);
        });
        isFresh = !average;  // averages of averages would differ by rounding
        break;
      }
      case 3:
        EXPECT_TRUE(m.Transpose());
        p.become({p.n[1], p.n[0], p.n[2], p.n[3]}, [](Plain& old, Index i) {
          return old.at({i[1], i[0], i[2], i[3]});
        });
        break;
      case 4: {
        const int d = draw(0, 3);
        d == 0   ? m.MirrorColumns()
        : d == 1 ? m.MirrorRows()
        : d == 2 ? m.MirrorLayers()
                 : m.MirrorTimeSlots();
        p.become(p.n, [&](Plain& old, Index i) {
          i[d] = old.n[d] + 1 - i[d];
          return old.at(i);
        });
        break;
      }
      case 5:
        m.FillDiag(-3);
        p.each([&](Index i) {
          if (std::count(i.begin(), i.end(), i[0]) == 4) p.at(i) = -3;
        });
        break;
      case 6:
        m.FillLayer(low[2], 7);
        p.each([&](Index i) {
          if (i[2] == low[2]) p.at(i) = 7;
        });
        fired = 0;
        break;
      case 7: {
        TMatrix matrix;
        test::fillNormal(matrix, 3, 2);
        m.CopyMatrixToLayer(&matrix, 1, 2, 2, 0, from[2], from[3], low[0], low[1]);
        p.each([&](Index i) {
          const int c = i[0] - low[0] + 1, r = i[1] - low[1] + 1;
          if (i[2] == from[2] && i[3] == from[3] && c >= 1 && c <= 2 && r >= 1 && r <= 2) {
            p.at(i) = matrix(c, r);
          }
        });
        fired = 0;
        break;
      }
      case 8: {
        TDouble3DArray array(2, 3, 2);
        for (double& x : array) x = draw(0, 99);
        const int code =
            m.CopyArrayToTimeSlot(array, 0, 1, 1, 2, 0, 0, from[3], from[0], from[1], from[2]);
        EXPECT_EQ(code, 0);
        p.each([&](Index i) {
          const int c = i[0] - from[0], r = i[1] - from[1], l = i[2] - from[2];
          if (i[3] == from[3] && c >= 0 && c < 2 && r >= 0 && r < 2 && l >= 0 && l < 2) {
            p.at(i) = array(c, r + 1, l);
          }
        });
        fired = 0;
        break;
      }
      default: {
        TMat4D other;
        if (operation == 9) fillSmall(other, p.n, random());
        const TMat4D& source = operation == 9 ? other : m;
        Plain q = plainOf(source);
        Index place;
        for (int d = 0; d < 4; ++d) place[d] = draw(-1, 3);
        m.CopyFrom(&source, low[0], high[0], low[1], high[1], low[2], high[2], low[3], high[3],
                   place[0], place[1], place[2], place[3]);
        p.each([&](Index i) {
          Index k;
          bool isCopied = true;
          for (int d = 0; d < 4; ++d) {
            k[d] = i[d] - place[d] + from[d];
            isCopied = isCopied && k[d] >= from[d] && k[d] <= to[d];
          }
          if (isCopied) p.at(i) = q.at(k);
        });
      }
    }
    expectSame(m, p);
    EXPECT_EQ(events.count, fired);
    if (testing::Test::HasFailure()) return;
  }
}

TEST(Mat4D, StatisticsOfBlocksAreThoseOfPlainLoops) {
  TMat4D m;
  fillSmall(m, {5, 4, 3, 3}, 1);
  Plain p = plainOf(m);
  std::mt19937 random(3);
  for (int k = 0; k < 400; ++k) {
    Index low, high, found, nearest{};
    for (int d = 0; d < 4; ++d) {
      low[d] = k % 5 > d ? 0 : static_cast<int>(random() % 7);
      high[d] = k % 5 > d ? 0 : static_cast<int>(random() % 7);
    }
    const auto with = [&](auto&& call) {
      return call(low[0], high[0], low[1], high[1], low[2], high[2], low[3], high[3]);
    };
    const double prob = static_cast<double>(random() % 101);
    double least = 0, most = 0, mean = 0, variance = 0;
    with([&](auto... r) { m.MinMax(r..., least, most); });
    with([&](auto... r) { m.MeanVar(r..., mean, variance); });
    with([&](auto... r) { m.Find(r..., 0.5, found[0], found[1], found[2], found[3]); });
    const double sum = with([&](auto... r) { return m.Sum(r...); });
    const double squares = with([&](auto... r) { return m.SquaredSum(r...); });
    const int count = with([&](auto... r) { return m.CountValues(r..., -3, 2); });
    SetRandSeed(static_cast<unsigned>(k));
    const double percentile = with([&](auto... r) { return m.Percentile(prob, r..., 180); });
    m.MakeValidColRange(low[0], high[0]);
    m.MakeValidRowRange(low[1], high[1]);
    m.MakeValidLayerRange(low[2], high[2]);
    m.MakeValidTSlotRange(low[3], high[3]);
    Values cells;
    double best = 1e300;
    p.each([&](Index i) {
      for (int d = 0; d < 4; ++d)
        if (i[d] < low[d] || i[d] > high[d]) return;
      cells.push_back(p.at(i));
      if (std::fabs(p.at(i) - 0.5) >= best) return;
      best = std::fabs(p.at(i) - 0.5);
      nearest = i;
    });
    EXPECT_EQ(found, nearest);
    const TVector all(cells);
    double expected[2];
    all.MeanVar(0, 0, expected[0], expected[1]);
    EXPECT_DOUBLE_EQ(mean, expected[0]);
    EXPECT_DOUBLE_EQ(variance, expected[1]);
    double exact = 0, exactSquares = 0;
    for (const double x : cells) exact += x, exactSquares += x * x;
    EXPECT_EQ((Values{sum, squares}), (Values{exact, exactSquares}));
    EXPECT_EQ(count, std::count_if(cells.begin(), cells.end(),
                                   [](double x) { return -3 <= x && x <= 2; }));
    // The sample is drawn with columns first, time slots last.
    SetRandSeed(static_cast<unsigned>(k));
    Values sample;
    for (int j = 0; j < 15; ++j) {
      Index i;
      for (int d = 0; d < 4; ++d) i[d] = low[d] + Random(high[d] - low[d] + 1);
      sample.push_back(p.at(i));
    }
    double candidate = *std::min_element(sample.begin(), sample.end());
    for (const double x : sample) {
      if (std::count(sample.begin(), sample.end(), x) >= 7) {
        candidate = x;
        break;
      }
    }
    const auto n = static_cast<double>(cells.size());
    const double rank = std::nearbyint(n * prob / 100);
    const bool isCandidate =
        rank < static_cast<double>(std::count(cells.begin(), cells.end(), candidate));
    std::sort(cells.begin(), cells.end());
    EXPECT_EQ((Values{least, most}), (Values{cells.front(), cells.back()}));
    EXPECT_EQ(percentile,
              isCandidate ? candidate : cells[static_cast<std::size_t>(std::min(n - 1, rank))]);
  }
  for (const Index n : {Index{5, 4, 3, 3}, Index{19, 7, 2, 1}, Index{1, 3, 700, 600}}) {
    m.Resize(n[0], n[1], n[2], n[3]);
    m.FillRandomGauss(0, 1);
    Plain q = plainOf(m);
    for (const int sample : {-1, 2, 99}) {
      Values layers;
      const int every = std::clamp(sample, 1, n[2]);
      q.each([&](Index i) {
        if (i[2] % every == 0) layers.push_back(q.at(i));
      });
      EXPECT_EQ(m.CRCofData(sample), TVector(layers).CRCofData());
    }
  }
  m.Resize(1, 1, 3, 1);
  m.SetVal(1, 1, 1, 1, 1.7e308);
  m.SetVal(1, 1, 2, 1, 1.7e308);
  m.SetVal(1, 1, 3, 1, -1.7e308);
  EXPECT_EQ(m.Sum(0, 0, 0, 0, 0, 0, 0, 0), 1.7e308) << "no sum on the way leaves the range";
}

class Layers : public test::WithProgress {};

TEST_F(Layers, SameBitsForEveryNumberOfThreadsAndInstructionSet) {
  TMat4D m;
  m.Resize(600, 3, 7, 5);
  SetRandSeed(1);
  m.FillRandomGauss(1e9, 1);
  for (int z = 1; z <= 7; ++z) {
    for (int t = 1; t <= 5; ++t) {
      m.SetVal(10, 2, z, t, 0.1);
      m.SetVal(11, 2, z, t, z == 3 ? double{INFINITY} : t);
      m.SetVal(12, 2, z, t, 1.5e308);
      m.SetVal(13, 2, z, t, t % 2 ? 1e-200 : 3e-200);
    }
  }
  using Form = void (TMat4D::*)(TMatrix*, int, int, int, int, int, int, int, int, int) const;
  const Form forms[] = {&TMat4D::MeanOfLayersToMatrix, &TMat4D::StdDevOfLayersToMatrix,
                        &TMat4D::MaximumOfLayersToMatrix, &TMat4D::MinimumOfLayersToMatrix};
  for (int f = 0; f < 4; ++f) {
    TMatrix serial;
    (m.*forms[f])(&serial, 2, 599, 0, 0, 2, 7, 1, 4, -1);
    ASSERT_EQ(serial.NrOfColumns(), 598);
    EXPECT_EQ(ProcStat, 1794 / (1794 / 100 + 1));
    test::forEachTarget([&] {
      for (const int threads : {1, 2, 8}) {
        reset();
        TMatrix other;
        (m.*forms[f])(&other, 599, 2, 0, 0, 7, 2, 4, 1, threads);
        EXPECT_EQ(other.CRCofData(), serial.CRCofData());
        if (threads > 1) {
          EXPECT_NEAR(ProcStat, 100, 1e-9);
        }
      }
    });
    reset();
    for (int c = 2; c <= 599; ++c) {
      for (int r = 1; r <= 3; ++r) {
        TVector pixel;
        for (int z = 2; z <= 7; ++z) {
          for (int t = 1; t <= 4; ++t)
            pixel.Resize(pixel.NrOfElem() + (z + t > 3)),
                pixel.SetVal(pixel.NrOfElem(), m(c, r, z, t));
        }
        double mean = 0, variance = 0, least = 0, most = 0;
        pixel.MeanVar(0, 0, mean, variance);
        pixel.MinMax(0, 0, least, most);
        const double expected[] = {mean, std::sqrt(variance * 23 / 24), std::max(most, -1.7e308),
                                   least};
        const double got = serial(c - 1, r);
        const double want = f == 2 && c == 11 && r == 2 ? double{INFINITY} : expected[f];
        const bool same = std::isnan(want)   ? std::isnan(got)
                          : std::isinf(want) ? got == want
                                             : std::fabs(got - want) <= 4e-16 * std::fabs(want);
        EXPECT_TRUE(same) << f << ' ' << c << ' ' << r << ": " << got << ", not " << want;
      }
    }
  }
  TMatrix result;
  m.StdDevOfLayersToMatrix(&result, 10, 10, 2, 2, 0, 0, 0, 0);
  EXPECT_EQ(result(1, 1), 0) << "a constant pixel";
  m.MeanOfLayersToMatrix(nullptr, 0, 0, 0, 0, 0, 0, 0, 0);
  result.OnChange = [](TObject*) { throw EMathError("enough"); };
  EXPECT_THROW(m.MeanOfLayersToMatrix(&result, 0, 0, 0, 0, 0, 0, 0, 0, 2), EMathError);
  result.OnChange = nullptr;
  result.ResizeAndClear(2, 3);
  TMat3D stack;
  m.CopyTimeSlotToMat3D(&stack, 0, 0, 0, 0, 0, 0, 1);
  TDouble4DArray array(1, 2, 3, 4);
  for (std::size_t i = 0; i < array.size(); ++i) array.data()[i] = static_cast<double>(i);
  reset();
  for (const int column : {3, 4, 5}) {
    TMeanOfLayersThread worker;
    worker.Column = column;
    worker.DestMat = &result;
    worker.Mat = &array;
    worker.LowCol = 3;
    worker.HighCol = 4;
    worker.HighRow = 3;
    worker.HighLayer = 2;
    worker.NTotal = 2;
    worker.Start();
  }
  EXPECT_EQ(test::contents(result), (Values{2, 3, 8, 12, 16, 9, 13, 17}));
  EXPECT_EQ(ProcStat, 150);
}

TEST(Mat4D, CodesMessagesAndReports) {
  TMat4D m;
  m.SetName("M");
  fillSmall(m, {3, 4, 2, 5}, 1);
  const Plain before = plainOf(m);
  TMatrix matrix;
  TMat3D stack;
  TDouble2DArray flat(3, 4);
  TDouble3DArray cube(2, 2, 2);
  TDoubleArray line;
  TVector vector;
  const std::string noLayer = "Component \"M\": specified layer beyond data range";
  const std::string noSlot = "Component \"M\": specified time slot beyond data range";
  EXPECT_THROW_MSG(m.CopyLayerToMatrix(&matrix, 0, 0, 0, 0, 3, 6), EZELMatrixError, noLayer);
  EXPECT_THROW_MSG(m.CopyLayerToMatrix(&matrix, 0, 0, 0, 0, 2, 6), EZELMatrixError, noSlot);
  EXPECT_THROW_MSG(m.CopyMatrixToLayer(&matrix, 0, 0, 0, 0, 0, 1, 1, 1), EZELMatrixError, noLayer);
  EXPECT_THROW_MSG(m.CopyTimeSlotToMat3D(&stack, 0, 0, 0, 0, 0, 0, 0), EZELMatrixError, noSlot);
  EXPECT_THROW_MSG(m.CopyMat3DToTimeSlot(&stack, 0, 0, 0, 0, 0, 0, 6, 1, 1, 1), EZELMatrixError,
                   noSlot);
  const std::vector<int> codes{m.CopyLayerToArray(flat, 0, 0, 0, 0, 3, 1),
                               m.CopyLayerToArray(flat, 0, 0, 0, 0, 3, 6),
                               m.CopyArrayToLayer(flat, 1, 1, 0, 1),
                               m.CopyArrayToLayer(flat, 1, 1, 0, 0),
                               m.CopyTimeSlotToArray(cube, 0, 0, 0, 0, 0, 0, 6),
                               m.CopyArrayToTimeSlot(cube, 0, 2, 0, 0, 0, 0, 1, 1, 1, 1),
                               m.CopyArrayToTimeSlot(cube, 0, 0, -1, 0, 0, 0, 1, 1, 1, 1),
                               m.CopyArrayToTimeSlot(cube, 0, 0, 0, 0, 2, 1, 1, 1, 1, 1),
                               m.CopyArrayToTimeSlot(cube, 0, 2, 0, 0, 0, 0, 6, 1, 1, 1),
                               m.CopyArrayToTimeSlot(cube, 0, 0, 0, 0, 0, 0, 1, 4, 1, 1),
                               m.CopyArrayToTimeSlot(cube, 0, 0, 0, 0, 0, 0, 1, 4, 5, 1),
                               m.CopyArrayToTimeSlot(cube, 0, 0, 0, 0, 0, 0, 1, 1, 1, 3),
                               m.CopyArrayToTimeSlot(cube, 1, 0, 0, 0, 0, 0, 1, 1, 1, 1),
                               m.CopyPixelTo1DArray(line, 4, 1, 1),
                               m.CopyPixelTo1DArray(line, 4, 0, 1),
                               m.CopyPixelToVector(&vector, 4, 0, 6),
                               m.Copy1DArrayToPixel(line, 0, 1, 1, 1),
                               m.Copy1DArrayToPixel(line, 0, 5, 1, 1),
                               m.CopyVectorToPixel(&vector, 1, 5, 3, 1),
                               m.CopyVectorToPixel(&vector, 1, 1, 3, 6),
                               m.FillLayer(0, 1, 0, 1, 0),
                               m.FillLayer(0, 6, 0, 1, 0),
                               m.FillLayer(0, 6, 3, 1, 0),
                               m.AccumulateLayer(1, 1, TDouble2DArray(4, 3)),
                               m.AccumulateLayer(3, 1, flat),
                               m.AccumulateLayer(3, 0, flat),
                               m.Lin3DAddr(2, 1, 1),
                               m.Lin3DAddr(3, 4, 2),
                               m.Lin3DAddr(1, 1, 3)};
  EXPECT_EQ(codes, (std::vector<int>{-1, -2, -1, -2, -1, -1, -2, -3, -4, -5, -6, -7, 0,  -1, -2,
                                     -3, -1, -2, -3, -4, -1, -2, -3, -1, -2, -3, 2,  23, -1}));
  expectSame(m, before);
  for (int k = -1; k <= 24; ++k) {
    int x = 0, y = 0, z = 0;
    ASSERT_EQ(m.ConvertLinTo3DAddr(k, x, y, z), k >= 0 && k < 24);
    if (k >= 0 && k < 24) {
      EXPECT_EQ(m.Lin3DAddr(x, y, z), k);
    }
  }
  // There and back.
  EXPECT_EQ(m.CopyTimeSlotToArray(cube, 0, 0, 0, 0, 0, 0, 2), 0);
  EXPECT_EQ(m.CopyArrayToTimeSlot(cube, 0, 0, 0, 0, 0, 0, 3, 1, 1, 1), 0);
  m.CopyTimeSlotToMat3D(&stack, 2, 3, 0, 0, 0, 0, 2);
  m.CopyMat3DToTimeSlot(&stack, 0, 0, 0, 0, 2, 2, 1, 1, 1, 1);
  EXPECT_EQ(m.CopyPixelToVector(&vector, 3, 4, 2), 0);
  EXPECT_EQ(m.CopyPixelTo1DArray(line, 3, 4, 3), 0);
  EXPECT_EQ(m.CopyVectorToPixel(&vector, 1, 1, 2, 5), 0);
  m.CopyLayerToMatrix(&matrix, 0, 0, 2, 4, 2, 2);
  CopyArr3DLayerToArr2D(cube, flat, -1, 2, 1, 3, 1);
  EXPECT_EQ(line, (Values{m(3, 4, 1, 2), m(3, 4, 2, 2)}));
  EXPECT_EQ(m(1, 1, 2, 5), m(3, 4, 1, 2));
  EXPECT_EQ(m(2, 3, 1, 1), m(3, 3, 2, 2));
  for (int c = 1; c <= 3; ++c) {
    for (int r = 2; r <= 4; ++r) {
      EXPECT_EQ(m(c, r, 2, 3), m(c, r, 2, 2));
      EXPECT_EQ(matrix(c, r - 1), m(c, r, 2, 2));
      EXPECT_EQ(flat(c, r - 2), m(c, r, 2, 2));
      EXPECT_EQ(flat(0, r - 2), 0);
    }
  }
  std::vector<int> reports;
  TMat4D other;
  m.OnPercentDone = [&](TObject* sender, int percent) {
    EXPECT_EQ(sender, &m);
    reports.push_back(percent);
  };
  other.PercDone(&m, 5);
  other.Assign(&m);
  EXPECT_THROW(other.Assign(&matrix), EConvertError);
  expectSame(other, plainOf(m));
  m.Cut(0, 0, 0, 0, 2, 2, 1, 2);
  m.Resample(1, 0, 1, 0, 1, 0, 1, 0, true);
  EXPECT_EQ(reports, (std::vector<int>{25, 50, 75, 100, 50, 100}));
  AbortMathProc = true;
  EXPECT_FALSE(m.Transpose());
  AbortMathProc = false;
  m.Resample(0, 0, 1, 0, 1, 0, 1, 0, true);
  EXPECT_EQ(m.NrOfColumns(), 3);
  m.OnPercentDone = nullptr;
  other.Assign(&m);
  test::expectFailuresHarmless([&] { m.Resample(2, 0, 2, 0, 1, 0, 1, 0, true); },
                               "Component \"M\": not enough memory on heap",
                               [&] { expectSame(m, plainOf(other)); }, [&] { m.Assign(&other); });
  EXPECT_EQ(m.MemoryConsumed(), 2.0 * 2 * 1 * 2 * 8 / 1048576);
}

}  // namespace
}  // namespace zel
