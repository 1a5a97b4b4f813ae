#include <algorithm>
#include <cmath>
#include <random>

#include "tests/matrix/matrices.h"
#include "tests/support/expect_message.h"
#include "tests/support/simd_targets.h"

namespace zel {
namespace {

using Values = std::vector<double>;
using Index = std::array<int, 4>;

/// Indices from 1 to n, the last fastest.
template <class Use>
void each(Index n, Use use) {
  for (Index i{1, 1, 1, 1}; i[0] <= n[0];) {
    use(i);
    for (std::size_t d = 3; ++i[d] > n[d] && d > 0; --d) i[d] = 1;
  }
}

Index plus(Index a, Index b, int sign = 1) {
  for (std::size_t d = 0; d < 4; ++d) a[d] += sign * (b[d] - 1);
  return a;
}

/// The array as plain loops see it.
struct Plain {
  Index n{};
  Values cells{};
  double* find(Index i) {
    int k = 0;
    for (std::size_t d = 0; d < 4; ++d) {
      if (i[d] < 1 || i[d] > n[d]) return nullptr;
      k = k * n[d] + i[d] - 1;
    }
    return &cells[static_cast<std::size_t>(k)];
  }
  double get(Index i) { return find(i) ? *find(i) : 0; }
  template <class Value>
  void paste(Index place, Index size, Value value) {
    each(size, [&](Index i) {
      if (double* x = find(plus(place, i))) *x = value(i);
    });
  }
};

template <class Value>
Plain make(Index n, Value value) {
  Plain p{n};
  each(n, [&](Index i) { p.cells.push_back(value(i)); });
  return p;
}

Plain plainOf(const TMat4D& m) {
  return make({m.NrOfColumns(), m.NrOfRows(), m.NrOfLayers(), m.NrOfTimeSlots()},
              [&](Index i) { return m(i[0], i[1], i[2], i[3]); });
}

void expectSame(const TMat4D& m, const Plain& p) {
  EXPECT_EQ(plainOf(m).n, p.n);
  EXPECT_EQ(plainOf(m).cells, p.cells);
}

/// Small integers, so that values repeat.
void fillSmall(TMat4D& m, Index n, std::mt19937& random) {
  m.Resize(n[0], n[1], n[2], n[3]);
  each(n, [&](Index i) { m.SetVal(i[0], i[1], i[2], i[3], static_cast<int>(random() % 19) - 9); });
}

/// Calls with the bounds in pairs.
template <class Call>
auto with(Index low, Index high, Call call) {
  return call(low[0], high[0], low[1], high[1], low[2], high[2], low[3], high[3]);
}

TEST(Mat4D, DoesWhatPlainLoopsDo) {
  std::mt19937 random(7);
  const auto draw = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  const auto drawAll = [&](int low, int high) {
    return Index{draw(low, high), draw(low, high), draw(low, high), draw(low, high)};
  };
  static constexpr void (TMat4D::*kMirrors[])() = {&TMat4D::MirrorColumns, &TMat4D::MirrorRows,
                                                   &TMat4D::MirrorLayers, &TMat4D::MirrorTimeSlots};
  TMat4D m;
  test::Events events(m);
  Plain p;
  bool isFresh = false;
  for (int round = 0; round < 1500 && !HasFailure(); ++round) {
    if (!isFresh || round % 8 == 0)
      fillSmall(m, {draw(1, 6), draw(1, 5), draw(1, 4), draw(1, 3)}, random);
    p = plainOf(m);
    isFresh = true;
    events.count = 0;
    int fired = 1;
    const Index low = drawAll(-1, 5), high = drawAll(-1, 5), size = drawAll(0, 6),
                place = drawAll(-1, 3);
    Index from, to, length;
    for (std::size_t d = 0; d < 4; ++d) {
      const bool isAll = low[d] == 0 && high[d] == 0;
      std::tie(from[d], to[d]) = std::minmax(
          {std::clamp(low[d], 1, p.n[d]), std::clamp(isAll ? p.n[d] : high[d], 1, p.n[d])});
      length[d] = to[d] - from[d] + 1;
    }
    const int operation = draw(0, 8);
    SCOPED_TRACE(testing::Message() << "round " << round << ", operation " << operation);
    if (operation == 0) {
      m.Resize(size[0], size[1], size[2], size[3]);
      fired = *std::min_element(size.begin(), size.end()) > 0 && size != p.n;
      if (fired) p = make(size, [&](Index i) { return p.get(i); });
    } else if (operation == 1) {
      with(low, high, [&](auto... r) { m.Cut(r...); });
      p = make(length, [&](Index i) { return p.get(plus(i, from)); });
    } else if (operation == 2) {
      const Index f = drawAll(1, 4), o = drawAll(0, 5);
      Index n;
      for (std::size_t d = 0; d < 4; ++d) n[d] = (p.n[d] - o[d] % f[d] - 1) / f[d] + 1;
      isFresh = draw(0, 1) == 0;  // averages of averages would differ by rounding
      with(f, o, [&](auto... r) { m.Resample(r..., !isFresh); });
      p = make(n, [&](Index i) {
        double sum = 0;
        for (std::size_t d = 0; d < 4; ++d) i[d] = (i[d] - 1) * f[d] + o[d] % f[d] + 1;
        each(f, [&](Index k) { sum += p.get(plus(i, k)); });
        return isFresh ? p.get(i) : sum / (f[0] * f[1] * f[2] * f[3]);
      });
    } else if (operation == 3) {
      EXPECT_TRUE(m.Transpose());
      p = make({p.n[1], p.n[0], p.n[2], p.n[3]}, [&](Index i) {
        return p.get({i[1], i[0], i[2], i[3]});
      });
    } else if (operation == 4) {
      const auto d = static_cast<std::size_t>(draw(0, 3));
      (m.*kMirrors[d])();
      p = make(p.n, [&](Index i) { return i[d] = p.n[d] + 1 - i[d], p.get(i); });
    } else if (operation == 5) {
      m.FillDiag(-3);
      m.FillLayer(low[2], 7);
      p.paste({1, 1, 1, 1}, p.n, [&](Index i) {
        return i[2] == low[2] ? 7 : std::count(i.begin(), i.end(), i[0]) == 4 ? -3 : p.get(i);
      });
    } else if (operation == 6) {
      const TMatrix matrix{{1, 2, 3}, {4, 5, 6}};
      m.CopyMatrixToLayer(&matrix, 1, 2, 2, 0, from[2], from[3], place[0], place[1]);
      p.paste({place[0], place[1], from[2], from[3]}, {2, 2, 1, 1},
              [&](Index i) { return matrix(i[0], i[1]); });
      fired = 0;
    } else if (operation == 7) {
      TDouble3DArray array(2, 3, 2);
      for (double& x : array) x = draw(0, 99);
      EXPECT_EQ(m.CopyArrayToTimeSlot(array, 0, 1, 1, 2, 0, 0, from[3], from[0], from[1], from[2]),
                0);
      p.paste(from, {2, 2, 2, 1}, [&](Index i) { return array(i[0] - 1, i[1], i[2] - 1); });
      fired = 0;
    } else {
      TMat4D other;
      if (draw(0, 1)) fillSmall(other, p.n, random);
      const bool isOther =
          other.NrOfColumns() == p.n[0] && other.NrOfRows() == p.n[1] && plainOf(other).n == p.n;
      Plain q = isOther ? plainOf(other) : p;
      with(low, high, [&](auto... r) {
        m.CopyFrom(isOther ? &other : &m, r..., place[0], place[1], place[2], place[3]);
      });
      p.paste(place, length, [&](Index i) { return q.get(plus(i, from)); });
    }
    expectSame(m, p);
    EXPECT_EQ(events.count, fired);
  }
}

TEST(Mat4D, StatisticsOfBlocksAreThoseOfPlainLoops) {
  TMat4D m;
  std::mt19937 random(3);
  fillSmall(m, {5, 4, 3, 3}, random);
  Plain p = plainOf(m);
  for (unsigned k = 0; k < 400; ++k) {
    Index low{}, high{}, found, nearest{};
    for (unsigned d = k % 5; d < 4; ++d)
      low[d] = static_cast<int>(random() % 7), high[d] = static_cast<int>(random() % 7);
    const double prob = static_cast<double>(random() % 101);
    double least = 0, most = 0, mean = 0, variance = 0, expected[2];
    with(low, high, [&](auto... r) {
      m.MinMax(r..., least, most);
      m.MeanVar(r..., mean, variance);
      m.Find(r..., 0.5, found[0], found[1], found[2], found[3]);
    });
    SetRandSeed(k);
    const Values got = with(low, high, [&](auto... r) {
      return Values{least,
                    most,
                    m.Sum(r...),
                    m.SquaredSum(r...),
                    1.0 * m.CountValues(r..., -3, 2),
                    m.Percentile(prob, r..., 180)};
    });
    m.MakeValidColRange(low[0], high[0]);
    m.MakeValidRowRange(low[1], high[1]);
    m.MakeValidLayerRange(low[2], high[2]);
    m.MakeValidTSlotRange(low[3], high[3]);
    Values cells, sample;
    double best = 1e300, sum = 0, squares = 0, count = 0;
    each(plus(high, low, -1), [&](Index i) {
      const double x = p.get(plus(i, low));
      cells.push_back(x);
      sum += x, squares += x * x, count += -3 <= x && x <= 2;
      if (std::fabs(x - 0.5) < best) best = std::fabs(x - 0.5), nearest = plus(i, low);
    });
    EXPECT_EQ(found, nearest);
    TVector(cells).MeanVar(0, 0, expected[0], expected[1]);
    EXPECT_DOUBLE_EQ(mean, expected[0]);
    EXPECT_DOUBLE_EQ(variance, expected[1]);
    // The sample is drawn with columns first, time slots last.
    SetRandSeed(k);
    for (int j = 0; j < 15; ++j) {
      Index i;
      for (std::size_t d = 0; d < 4; ++d) i[d] = low[d] + Random(high[d] - low[d] + 1);
      sample.push_back(p.get(i));
    }
    const auto often = std::find_if(sample.begin(), sample.end(), [&](double x) {
      return std::count(sample.begin(), sample.end(), x) >= 7;
    });
    const double candidate =
        often == sample.end() ? *std::min_element(sample.begin(), sample.end()) : *often;
    const auto n = static_cast<double>(cells.size());
    const double rank = std::nearbyint(n * prob / 100);
    const bool dominates =
        rank < static_cast<double>(std::count(cells.begin(), cells.end(), candidate));
    std::sort(cells.begin(), cells.end());
    const double ranked = cells[static_cast<std::size_t>(std::min(n - 1, rank))];
    EXPECT_EQ(got, (Values{cells.front(), cells.back(), sum, squares, count,
                           dominates ? candidate : ranked}));
  }
  for (const Index n : {Index{5, 4, 3, 3}, Index{19, 7, 2, 1}, Index{1, 3, 700, 600}}) {
    m.Resize(n[0], n[1], n[2], n[3]);
    m.FillRandomGauss(0, 1);
    Plain q = plainOf(m);
    for (const int every : {1, 2}) {
      Values layers;
      each(n, [&](Index i) {
        if (i[2] % every == 0) layers.push_back(q.get(i));
      });
      EXPECT_EQ(m.CRCofData(every == 1 ? -1 : 2), TVector(layers).CRCofData());
    }
  }
  m.Resize(1, 1, 3, 1);
  for (int z = 1; z <= 3; ++z) m.SetVal(1, 1, z, 1, z < 3 ? 1.7e308 : -1.7e308);
  EXPECT_EQ(m.Sum(0, 0, 0, 0, 0, 0, 0, 0), 1.7e308) << "no sum on the way leaves the range";
}

class Layers : public test::WithProgress {};

TEST_F(Layers, SameBitsForEveryNumberOfThreadsAndInstructionSet) {
  TMat4D m;
  m.Resize(600, 3, 7, 5);
  SetRandSeed(1);
  m.FillRandomGauss(1e9, 1);
  each({1, 1, 7, 5}, [&](Index i) {
    const double hostile[] = {0.1, i[2] == 3 ? double{INFINITY} : i[3], 1.5e308,
                              i[3] % 2 ? 1e-200 : 3e-200};
    for (int k = 0; k < 4; ++k) m.SetVal(10 + k, 2, i[2], i[3], hostile[k]);
  });
  using Form = void (TMat4D::*)(TMatrix*, int, int, int, int, int, int, int, int, int) const;
  const Form forms[] = {&TMat4D::MeanOfLayersToMatrix, &TMat4D::StdDevOfLayersToMatrix,
                        &TMat4D::MaximumOfLayersToMatrix, &TMat4D::MinimumOfLayersToMatrix};
  for (int f = 0; f < 4; ++f) {
    TMatrix serial, other;
    (m.*forms[f])(&serial, 2, 599, 0, 0, 2, 7, 1, 4, -1);
    EXPECT_EQ(ProcStat, 1794 / (1794 / 100 + 1));
    test::forEachTarget([&] {
      for (const int threads : {1, 2, 8}) {
        reset();
        (m.*forms[f])(&other, 599, 2, 0, 0, 7, 2, 4, 1, threads);
        EXPECT_EQ(test::contents(other).size(), 1796U);
        EXPECT_EQ(other.CRCofData(), serial.CRCofData());
        EXPECT_NEAR(ProcStat, threads == 1 ? 99 : 100, 1e-9);
      }
    });
    reset();
    each({598, 3, 1, 1}, [&](Index i) {
      Values pixel;
      each({1, 1, 6, 4}, [&](Index k) { pixel.push_back(m(i[0] + 1, i[1], k[2] + 1, k[3])); });
      const TVector values(pixel);
      double mean = 0, variance = 0;
      values.MeanVar(0, 0, mean, variance);
      const auto [least, most] = std::minmax_element(pixel.begin(), pixel.end());
      const double want = f == 0   ? mean
                          : f == 1 ? std::sqrt(variance * 23 / 24)
                          : f == 2 ? *most
                                   : *least;
      const double got = serial(i[0], i[1]);
      EXPECT_TRUE(std::isnan(want)
                      ? std::isnan(got)
                      : got == want || std::fabs(got - want) <= 4e-16 * std::fabs(want))
          << f << ' ' << i[0] << ' ' << i[1] << ": " << got << ", not " << want;
    });
  }
  TMatrix result;
  m.StdDevOfLayersToMatrix(&result, 10, 10, 2, 2, 0, 0, 0, 0);
  EXPECT_EQ(result(1, 1), 0) << "a constant pixel";
  m.MeanOfLayersToMatrix(nullptr, 0, 0, 0, 0, 0, 0, 0, 0);
  result.OnChange = [](TObject*) { throw EMathError("enough"); };
  EXPECT_THROW(m.MeanOfLayersToMatrix(&result, 0, 0, 0, 0, 0, 0, 0, 0, 2), EMathError);
  result.OnChange = nullptr;
  result.ResizeAndClear(2, 3);
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
  TMat4D m, other;
  m.SetName("M");
  std::mt19937 random(1);
  fillSmall(m, {3, 4, 2, 5}, random);
  const Plain before = plainOf(m);
  TMatrix matrix;
  TMat3D stack;
  TDouble2DArray flat(3, 4), wrong(4, 3);
  TDouble3DArray cube(2, 2, 2);
  TDoubleArray line;
  TVector vector;
  const std::string noLayer = "Component \"M\": specified layer beyond data range";
  const std::string noSlot = "Component \"M\": specified time slot beyond data range";
  EXPECT_THROW_MSG(m.CopyLayerToMatrix(&matrix, 0, 0, 0, 0, 3, 6), EZELMatrixError, noLayer);
  EXPECT_THROW_MSG(m.CopyMatrixToLayer(&matrix, 0, 0, 0, 0, 2, 0, 1, 1), EZELMatrixError, noSlot);
  EXPECT_THROW_MSG(m.CopyTimeSlotToMat3D(&stack, 0, 0, 0, 0, 0, 0, 0), EZELMatrixError, noSlot);
  EXPECT_THROW_MSG(m.CopyMat3DToTimeSlot(&stack, 0, 0, 0, 0, 0, 0, 6, 1, 1, 1), EZELMatrixError,
                   noSlot);
  const auto paste = [&](int c, int r, int l, int slot, Index to) {
    return m.CopyArrayToTimeSlot(cube, 0, c, r, 0, l, 1, slot, to[0], to[1], to[2]);
  };
  const std::vector<int> codes{m.CopyLayerToArray(flat, 0, 0, 0, 0, 3, 1),
                               m.CopyLayerToArray(flat, 0, 0, 0, 0, 3, 6),
                               m.CopyArrayToLayer(flat, 1, 1, 0, 1),
                               m.CopyArrayToLayer(flat, 1, 1, 0, 0),
                               m.CopyTimeSlotToArray(cube, 0, 0, 0, 0, 0, 0, 6),
                               paste(2, 0, 0, 1, {1, 1, 1}),
                               paste(2, -1, 0, 1, {1, 1, 1}),
                               paste(0, 0, 2, 1, {1, 1, 1}),
                               paste(2, 0, 0, 6, {1, 1, 1}),
                               paste(0, 0, 0, 1, {4, 1, 1}),
                               paste(0, 0, 0, 1, {4, 5, 1}),
                               paste(0, 0, 0, 1, {1, 1, 3}),
                               paste(0, 1, 0, 1, {1, 1, 1}),
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
                               m.AccumulateLayer(1, 1, wrong),
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
    const bool exists = m.ConvertLinTo3DAddr(k, x, y, z);
    EXPECT_EQ(exists ? m.Lin3DAddr(x, y, z) : 99, k >= 0 && k < 24 ? k : 99);
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
  EXPECT_EQ((Values{m(1, 1, 2, 5), m(2, 3, 1, 1), flat(0, 2)}),
            (Values{m(3, 4, 1, 2), m(3, 3, 2, 2), 0}));
  each({3, 3, 1, 1}, [&](Index i) {
    const double x = m(i[0], i[1] + 1, 2, 2);
    EXPECT_EQ((Values{m(i[0], i[1] + 1, 2, 3), matrix(i[0], i[1]), flat(i[0], i[1] - 1)}),
              (Values{x, x, x}));
  });
  std::vector<int> reports;
  m.OnPercentDone = [&](TObject* sender, int percent) {
    EXPECT_EQ(sender, &m);
    reports.push_back(percent);
  };
  m.PercDone(&stack, 5);
  other.Assign(&m);
  EXPECT_THROW(other.Assign(&matrix), EConvertError);
  expectSame(other, plainOf(m));
  m.Cut(0, 0, 0, 0, 2, 2, 1, 2);
  m.Resample(1, 0, 1, 0, 1, 0, 1, 0, true);
  EXPECT_EQ(reports, (std::vector<int>{5, 25, 50, 75, 100, 50, 100}));
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
