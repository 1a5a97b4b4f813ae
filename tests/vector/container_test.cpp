#include "tests/support/testing.h"
#include "zel/foundation/randoms.h"
#include "zel/vector/Zel_vector.h"

namespace zel::test {
namespace {

template <class V>
class Vectors : public ::testing::Test {};
using Both = ::testing::Types<TVector, TIntVector>;
TYPED_TEST_SUITE(Vectors, Both);

template <class V>
using Values = std::vector<typename V::value_type>;

TYPED_TEST(Vectors, NewVectorIsOneZero) {
  TypeParam v;
  EXPECT_EQ(contents(v), Values<TypeParam>{0});
  EXPECT_TRUE(v.IsEmpty());
  EXPECT_EQ(contents(TypeParam(std::span<const typename TypeParam::value_type>())),
            Values<TypeParam>{0});
}

TYPED_TEST(Vectors, AccessOutsideIsHarmlessAndSilent) {
  TypeParam v{7, 8};
  Events events(v);
  for (const int outside : {0, 3, -1, INT_MIN, INT_MAX}) {
    EXPECT_EQ(v.GetVal(outside), 0);
    v.SetVal(outside, 5);
  }
  EXPECT_EQ(events.count, 0);
  v.SetVal(2, 5);
  EXPECT_EQ(events.count, 1);
  EXPECT_EQ(contents(v), (Values<TypeParam>{7, 5}));
}

TYPED_TEST(Vectors, ResizeKeepsAndZeroes) {
  TypeParam v{1, 2, 3};
  Events events(v);
  EXPECT_TRUE(v.Resize(5));
  EXPECT_EQ(contents(v), (Values<TypeParam>{1, 2, 3, 0, 0}));
  EXPECT_TRUE(v.Resize(5));
  EXPECT_FALSE(v.Resize(0));
  EXPECT_FALSE(v.Resize(INT_MIN));
  v.SetNrOfElem(-3);
  EXPECT_EQ(v.NrOfElem(), 5);
  EXPECT_EQ(events.count, 1);
  v.Resize(2);
  v.Resize(3);
  EXPECT_EQ(contents(v), (Values<TypeParam>{1, 2, 0})) << "cut elements do not come back";
}

/// Order statistics work on a copy of their own, by sorting it while somebody listens, else by
/// selection.
TYPED_TEST(Vectors, FailedAllocationsNameTheVectorAndChangeNothing) {
  TypeParam v, start{1, 2}, other{1, 2, 3};
  v.SetName("V1");
  int events = 0;
  std::stringstream record;
  other.SaveToStream(record, 0, 0);
  double q = 0;
  const auto expectHarmless = [&](const std::string& message, auto operation) {
    expectFailuresHarmless<EZELVectorError>(
        operation, "Component \"V1\": not enough memory" + message,
        [&] {
          EXPECT_EQ(contents(v), (Values<TypeParam>{1, 2}));
          EXPECT_EQ(events, 0);
        },
        [&] {
          v.Assign(&start);  // gives back all storage, and takes the handler
          v.OnChange = [&](TObject*) { ++events; };
          record.clear();
          record.seekg(0);
          events = 0;
        });
  };
  expectHarmless("", [&] { v.Resize(100); });
  expectHarmless("", [&] { v.Clone(&other); });
  expectHarmless("", [&] { v.Assign(&other); });
  expectHarmless("", [&] { v.LoadFromStream(record, true); });
  expectHarmless(" on heap", [&] { static_cast<void>(v.Mode(0, 0)); });
  for (const TMathFeedBackProc listener : {TMathFeedBackProc{}, +[](double) {}}) {
    MathFeedBackProc = listener;
    expectHarmless(" on heap", [&] { static_cast<void>(v.Percentile(50, 0, 0)); });
    expectHarmless(" on heap", [&] { v.Quartiles(0, 0, q, q, q); });
  }
  MathFeedBackProc = nullptr;
  TComponent owner;
  const FailingStorage fail(0);
  EXPECT_THROW_MSG(TypeParam w(&owner), EZELVectorError,
                   "Component \"\": not enough memory on heap");
  EXPECT_EQ(owner.ComponentCount(), 0) << "a half-made object leaves its owner";
}

TEST(VectorTypes, RangesAreClamped) {
  TVector v;
  v.Resize(10);
  const std::pair<int, int> cases[][2] = {
      {{0, 0}, {1, 10}},   {{0, 5}, {1, 5}},     {{5, 0}, {1, 5}},   {{7, 3}, {3, 7}},
      {{-4, 99}, {1, 10}}, {{12, 15}, {10, 10}}, {{-9, -3}, {1, 1}}, {{INT_MAX, INT_MIN}, {1, 10}}};
  for (const auto& [given, valid] : cases) {
    auto [low, high] = given;
    v.MakeValidElemRange(low, high);
    EXPECT_EQ(std::pair(low, high), valid) << given.first << ' ' << given.second;
  }
}

TYPED_TEST(Vectors, AssignTakesHandlersAndStateCloneDoesNot) {
  TypeParam source{1, 2, 3}, assigned, cleared, clone;
  Events sourceEvents(source), events(clone);
  assigned.Assign(&source);
  EXPECT_EQ(sourceEvents.count, 0) << "Assign does not notify";
  EXPECT_EQ(contents(assigned), contents(source));
  EXPECT_FALSE(assigned.IsEmpty());
  assigned.SetVal(1, 9);
  EXPECT_EQ(sourceEvents.count, 1) << "the handler was copied";
  source.AssignTo(&assigned);
  EXPECT_EQ(assigned.GetVal(1), 1);
  cleared.Clear();
  assigned.Assign(&cleared);
  EXPECT_TRUE(assigned.IsEmpty());
  EXPECT_FALSE(assigned.OnChange);

  clone.Clone(nullptr);
  EXPECT_EQ(events.count, 0);
  clone.Clone(&source);
  EXPECT_EQ(events.count, 1 + 3 + 1) << "the resize, each element, the end";
  EXPECT_EQ(contents(clone), contents(source));
  clone.Clone(&clone);
  EXPECT_EQ(events.count, 5 + 3 + 1);
}

TEST(VectorTypes, DoNotAssignToEachOther) {
  TVector v;
  TIntVector w;
  EXPECT_THROW_MSG(v.Assign(&w), EConvertError, "Cannot assign a TIntVector to a TVector");
  EXPECT_THROW_MSG(v.AssignTo(&w), EConvertError, "Cannot assign a TVector to a TIntVector");
}

TYPED_TEST(Vectors, BulkOperationsNotifyOnce) {
  TypeParam v{-3, 1, 2};
  Events events(v);
  v.AbsVal();
  EXPECT_EQ(contents(v), (Values<TypeParam>{3, 1, 2}));
  v.Mirror();
  EXPECT_EQ(contents(v), (Values<TypeParam>{2, 1, 3}));
  v.SMult(2);
  EXPECT_EQ(contents(v), (Values<TypeParam>{4, 2, 6}));
  TypeParam one{1, 1, 1};
  v.Add(&one);
  v.Subtract(&v);
  EXPECT_EQ(contents(v), (Values<TypeParam>{0, 0, 0}));
  v.Add(nullptr);
  v.Fill(4);
  v.SortElems(true, 2, 2);
  EXPECT_EQ(events.count, 6);
  EXPECT_FALSE(v.IsEmpty());
  v.Clear();
  EXPECT_TRUE(v.IsEmpty());
  EXPECT_EQ(contents(v), (Values<TypeParam>{0, 0, 0}));
  EXPECT_EQ(events.count, 7);
  EXPECT_THROW_MSG(v.Add(std::make_unique<TypeParam>().get()), EZELVectorError,
                   "Component \"\": vectors have different dimensions");
}

TYPED_TEST(Vectors, ShufflePermutesSilently) {
  TypeParam v;
  v.Resize(200);
  for (int i = 1; i <= 200; ++i) v.SetVal(i, static_cast<typename TypeParam::value_type>(i));
  const auto before = contents(v);
  v.OnChange = [](TObject*) { FAIL(); };
  v.OnSortExchange = [](TObject*, std::uint8_t, int, int, int, int) { FAIL(); };
  v.ShuffleElems();
  auto after = contents(v);
  EXPECT_NE(after, before);
  std::sort(after.begin(), after.end());
  EXPECT_EQ(after, before);
}

/// A twin that only follows the reports must end up equal; so must a sort that nobody follows.
TYPED_TEST(Vectors, SortReportsEveryExchange) {
  std::mt19937 random(5);
  for (const bool ascending : {true, false}) {
    TypeParam v, silent;
    v.Resize(100);
    for (int i = 1; i <= 100; ++i) {
      v.SetVal(i, static_cast<typename TypeParam::value_type>(random() % 40));
    }
    silent.Clone(&v);
    auto twin = contents(v);
    Events events(v);
    v.OnSortExchange = [&](TObject* sender, std::uint8_t what, int i, int j, int first, int last) {
      EXPECT_EQ(sender, &v);
      EXPECT_TRUE(what == 0 && first == 0 && last == 0 && i < j && i >= 11 && j <= 90);
      std::swap(twin[static_cast<std::size_t>(i - 1)], twin[static_cast<std::size_t>(j - 1)]);
      EXPECT_EQ(v.GetVal(i), twin[static_cast<std::size_t>(i - 1)]) << "reported after it is made";
    };
    v.SortElems(ascending, 90, 11);
    EXPECT_EQ(contents(v), twin);
    EXPECT_EQ(events.count, 1);
    silent.SortElems(ascending, 11, 90);
    EXPECT_EQ(contents(silent), twin);
    const auto first = twin.begin() + 10;
    if (!ascending) std::reverse(first, first + 80);
    EXPECT_TRUE(std::is_sorted(first, first + 80));
  }
}

TYPED_TEST(Vectors, HandlersMayResizeThrowAndClearThemselves) {
  TypeParam v{5, 4, 3, 2, 1};
  int exchanges = 0;
  v.OnSortExchange = [&](TObject*, std::uint8_t, int, int, int, int) { v.Resize(2 - exchanges++); };
  v.SortElems(true, 0, 0);
  EXPECT_EQ(v.NrOfElem(), 2) << "a resize ends the sort";

  TypeParam w{3, 2, 1};
  w.OnSortExchange = [&](TObject*, std::uint8_t, int, int, int, int) {
    w.OnSortExchange = nullptr;
    throw std::runtime_error("stop");
  };
  EXPECT_THROW(w.SortElems(true, 0, 0), std::runtime_error);
  auto left = contents(w);
  std::sort(left.begin(), left.end());
  EXPECT_EQ(left, (Values<TypeParam>{1, 2, 3})) << "nothing is lost";

  TypeParam source{1, 2, 3, 4};
  w.OnChange = [&](TObject*) { source.Resize(1); };
  w.Clone(&source);
  EXPECT_EQ(contents(w), (Values<TypeParam>{1, 0, 0, 0}))
      << "the resize already shrinks the source";
}

TYPED_TEST(Vectors, CopiesDropWhatFallsOutside) {
  const TypeParam source{1, 2, 3, 4};
  const std::tuple<int, int, int, int, Values<TypeParam>> cases[] = {
      // low, high, place of the first; how many are stored, and what comes out
      {2, 3, 1, 2, {2, 3, 0}},       {3, 2, 2, 2, {0, 2, 3}},
      {1, 4, 0, 3, {2, 3, 4}},       {-5, 99, 3, 1, {0, 0, 1}},
      {9, 9, 1, 1, {4, 0, 0}},       {0, 0, 2, 1, {0, 1, 0}},  // not the whole range here
      {1, 4, 4, 0, {0, 0, 0}},       {1, 4, -9, 0, {0, 0, 0}},
      {1, 4, INT_MAX, 0, {0, 0, 0}}, {1, 4, INT_MIN, 0, {0, 0, 0}}};
  for (const auto& [low, high, first, stored, copied] : cases) {
    for (const bool isHeard : {false, true}) {
      TypeParam v;
      v.Resize(3);
      Events events(v);
      if (!isHeard) v.OnChange = nullptr;
      v.CopyFrom(&source, low, high, first);
      EXPECT_EQ(contents(v), copied) << low << ' ' << high << ' ' << first;
      EXPECT_EQ(events.count, isHeard ? stored + 1 : 0);
      v.CopyFromArray(contents(source), -1);
      EXPECT_EQ(v(2), 4) << "the array begins outside";
      EXPECT_EQ(events.count, isHeard ? stored + 1 + 2 : 0);
    }
  }
  Values<TypeParam> array{9, 9, 9, 9};
  source.CopyToArray(array, 4, 3);
  EXPECT_EQ(array, (Values<TypeParam>{3, 4}));
  for (const bool isHeard : {false, true}) {
    TypeParam self{1, 2, 3, 4, 5};
    self.CopyFrom(nullptr, 1, 5, 1);
    if (isHeard) self.OnChange = [](TObject*) {};
    self.CopyFrom(&self, 1, 4, 2);
    EXPECT_EQ(contents(self), (Values<TypeParam>{1, 1, 1, 1, 1})) << "proceeds upwards";
  }
}

TYPED_TEST(Vectors, SearchGivesPositionsInTheVector) {
  TypeParam v{4, 10, 6, 10, -20};
  EXPECT_EQ(v.Find(0, 0, 5), 1) << "the first on ties";
  EXPECT_EQ(v.Find(4, 3, 9), 4);
  TypeParam sorted{1, 3, 5, 7, 9};
  EXPECT_EQ(sorted.FindInSortedVector(true, 4), 3) << "the upper on ties";
  sorted.Mirror();
  EXPECT_EQ(sorted.FindInSortedVector(false, 2), 5);
  EXPECT_EQ((TVector{1, 2}.Find(0, 0, std::nan(""))), 0);
  const TIntVector w{INT_MIN, 7, INT_MIN, INT_MAX};
  EXPECT_EQ(w.FindExact(4, 2, INT_MIN), 3);
  EXPECT_EQ(w.FindExact(0, 0, INT_MIN), 1) << "the first of equals";
  EXPECT_EQ(w.FindExact(2, 2, INT_MIN), 0);
}

TEST(IntVector, SumWrapsAndLengthDoesNot) {
  TIntVector v{2000000000, 2000000000};
  EXPECT_EQ(v.Sum(0, 0), -294967296);
  EXPECT_EQ((TIntVector{2000000000, 1500000000}.Leng()), 2.5e9);
}

TEST(Vector, LengthCanBeSet) {
  TVector v{3, 4};
  Events events(v);
  v.SetVecLeng(2);
  EXPECT_DOUBLE_EQ(v.GetVal(1), 1.2);
  EXPECT_DOUBLE_EQ(v.GetVal(2), 1.6);
  EXPECT_DOUBLE_EQ(v.Leng(), 2);
  EXPECT_EQ(events.count, 1);
  v.Fill(0);
  v.SetLeng(5);
  EXPECT_EQ(events.count, 2) << "a zero vector is left alone";
}

TEST(Vector, RandomFills) {
  TVector v;
  v.Resize(20);
  Events events(v);
  SetRandSeed(3);
  v.FillRandomUniform(-2, 6);
  SetRandSeed(3);
  for (const double x : v) EXPECT_EQ(x, Random() * 8 - 2);
  v.Clear();
  SetRandSeed(3);
  v.FillRandomGauss(10, 3);
  SetRandSeed(3);
  EXPECT_NE(GRandom(), 0) << "the first deviate may be left from an earlier pair";
  for (int i = 2; i <= 20; ++i) EXPECT_EQ(v(i), GRandom() * 3 + 10);
  EXPECT_FALSE(v.IsEmpty());
  EXPECT_EQ(events.count, 3);
}

TYPED_TEST(Vectors, FingerprintCoversEveryByte) {
  const std::string text = TypeParam{0}.CRCofData();
  EXPECT_EQ(text.size(), 8 * sizeof(typename TypeParam::value_type));
  EXPECT_EQ(text.substr(0, 8), "D202EF8D") << "CRC-32 of one zero byte";
  EXPECT_NE((TypeParam{1, 2}.CRCofData()), (TypeParam{2, 1}.CRCofData()));
}

TEST(Vector, PrintsAndConverts) {
  std::ostringstream text;
  text << TVector{1.5, -2} << TIntVector{3};
  EXPECT_EQ(text.str(), "{1.5, -2}{3}");
  const std::vector<double> plain(TVector{1, 2});
  EXPECT_EQ(plain.size(), 2U);
  static_assert(!std::is_copy_constructible_v<TVector> && !std::is_move_constructible_v<TVector>);
}

}  // namespace
}  // namespace zel::test
