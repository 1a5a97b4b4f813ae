#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/expect_message.h"
#include "tests/support/failing_new.h"
#include "tests/support/failing_storage.h"
#include "zel/vector/Zel_vector.h"

namespace zel {
namespace {

template <class V>
class Vectors : public ::testing::Test {};
using Both = ::testing::Types<TVector, TIntVector>;
TYPED_TEST_SUITE(Vectors, Both);

template <class V>
std::vector<typename V::value_type> contents(const V& v) {
  return {v.begin(), v.end()};
}

template <class V>
using Values = std::vector<typename V::value_type>;

template <class Failing>
void expectFailure(auto&& operation, const std::string& message) {
  const Failing fail(0);
  EXPECT_THROW_MSG(operation(), EZELVectorError, message);
}

TYPED_TEST(Vectors, NewVectorIsOneZero) {
  TypeParam v;
  EXPECT_EQ(contents(v), Values<TypeParam>{0});
  EXPECT_TRUE(v.IsEmpty());
  EXPECT_EQ(contents(TypeParam(std::span<const typename TypeParam::value_type>())),
            Values<TypeParam>{0});
}

TYPED_TEST(Vectors, AccessOutsideIsHarmlessAndSilent) {
  TypeParam v{7, 8};
  int events = 0;
  v.OnChange = [&](TObject* sender) {
    EXPECT_EQ(sender, &v);
    ++events;
  };
  for (const int outside : {0, 3, -1, INT_MIN, INT_MAX}) {
    EXPECT_EQ(v.GetVal(outside), 0);
    v.SetVal(outside, 5);
  }
  EXPECT_EQ(events, 0);
  v.SetVal(2, 5);
  EXPECT_EQ(events, 1);
  EXPECT_EQ(contents(v), (Values<TypeParam>{7, 5}));
}

TYPED_TEST(Vectors, ResizeKeepsAndZeroes) {
  TypeParam v{1, 2, 3};
  int events = 0;
  v.OnChange = [&](TObject*) { ++events; };
  EXPECT_TRUE(v.Resize(5));
  EXPECT_EQ(contents(v), (Values<TypeParam>{1, 2, 3, 0, 0}));
  EXPECT_TRUE(v.Resize(5));
  EXPECT_FALSE(v.Resize(0));
  EXPECT_FALSE(v.Resize(INT_MIN));
  v.SetNrOfElem(-3);
  EXPECT_EQ(v.NrOfElem(), 5);
  EXPECT_EQ(events, 1);
  v.Resize(2);
  v.Resize(3);
  EXPECT_EQ(contents(v), (Values<TypeParam>{1, 2, 0})) << "cut elements do not come back";
}

TYPED_TEST(Vectors, FailedAllocationsNameTheVectorAndChangeNothing) {
  TypeParam v{1, 2};
  TypeParam other{1, 2, 3};
  v.SetName("V1");
  int events = 0;
  v.OnChange = [&](TObject*) { ++events; };
  const std::string message = "Component \"V1\": not enough memory";
  double q = 0;
  const auto percentile = [&] { static_cast<void>(v.Percentile(50, 0, 0)); };
  const auto quartiles = [&] { v.Quartiles(0, 0, q, q, q); };
  expectFailure<test::FailingStorage>([&] { v.Resize(100); }, message);
  expectFailure<test::FailingStorage>([&] { v.Clone(&other); }, message);
  expectFailure<test::FailingStorage>([&] { v.Assign(&other); }, message);
  expectFailure<test::FailingStorage>([&] { static_cast<void>(v.Mode(0, 0)); },
                                      message + " on heap");
  // Order statistics work on a copy of their own, by sorting it while somebody listens, else by
  // selection.
  MathFeedBackProc = [](double) {};
  expectFailure<test::FailingStorage>(percentile, message + " on heap");
  expectFailure<test::FailingStorage>(quartiles, message + " on heap");
  MathFeedBackProc = nullptr;
  expectFailure<test::FailingNew>(percentile, message + " on heap");
  expectFailure<test::FailingNew>(quartiles, message + " on heap");
  std::stringstream record;
  other.SaveToStream(record, 0, 0);
  expectFailure<test::FailingNew>([&] { v.LoadFromStream(record, true); }, message);
  TComponent owner;
  expectFailure<test::FailingStorage>([&] { TypeParam w(&owner); },
                                      "Component \"\": not enough memory on heap");
  EXPECT_EQ(owner.ComponentCount(), 0) << "a half-made object leaves its owner";
  EXPECT_EQ(contents(v), (Values<TypeParam>{1, 2}));
  EXPECT_EQ(events, 0);
}

TYPED_TEST(Vectors, RangesAreClamped) {
  TypeParam v;
  v.Resize(10);
  const auto valid = [&](int low, int high) {
    v.MakeValidElemRange(low, high);
    return std::pair(low, high);
  };
  EXPECT_EQ(valid(0, 0), std::pair(1, 10));
  EXPECT_EQ(valid(0, 5), std::pair(1, 5));
  EXPECT_EQ(valid(7, 3), std::pair(3, 7));
  EXPECT_EQ(valid(-4, 99), std::pair(1, 10));
  EXPECT_EQ(valid(12, 15), std::pair(10, 10));
  EXPECT_EQ(valid(-9, -3), std::pair(1, 1));
  EXPECT_EQ(valid(INT_MAX, INT_MIN), std::pair(1, 10));
  EXPECT_EQ(valid(5, 0), std::pair(1, 5));
}

TYPED_TEST(Vectors, AssignTakesHandlersAndStateCloneDoesNot) {
  TypeParam source{1, 2, 3};
  int sourceEvents = 0;
  source.OnChange = [&](TObject*) { ++sourceEvents; };
  TypeParam assigned;
  assigned.Assign(&source);
  EXPECT_EQ(sourceEvents, 0) << "Assign does not notify";
  EXPECT_EQ(contents(assigned), contents(source));
  EXPECT_FALSE(assigned.IsEmpty());
  assigned.SetVal(1, 9);
  EXPECT_EQ(sourceEvents, 1) << "the handler was copied";
  source.AssignTo(&assigned);
  EXPECT_EQ(assigned.GetVal(1), 1);

  TypeParam cleared;
  cleared.Clear();
  assigned.Assign(&cleared);
  EXPECT_TRUE(assigned.IsEmpty());
  EXPECT_FALSE(assigned.OnChange);

  TypeParam clone;
  int events = 0;
  clone.OnChange = [&](TObject*) { ++events; };
  clone.Clone(nullptr);
  EXPECT_EQ(events, 0);
  clone.Clone(&source);
  EXPECT_EQ(events, 1 + 3 + 1) << "the resize, each element, the end";
  EXPECT_EQ(contents(clone), contents(source));
  clone.Clone(&clone);
  EXPECT_EQ(events, 5 + 3 + 1);
}

TEST(VectorTypes, DoNotAssignToEachOther) {
  TVector v;
  TIntVector w;
  EXPECT_THROW_MSG(v.Assign(&w), EConvertError, "Cannot assign a TIntVector to a TVector");
  EXPECT_THROW_MSG(v.AssignTo(&w), EConvertError, "Cannot assign a TVector to a TIntVector");
}

TYPED_TEST(Vectors, BulkOperationsNotifyOnce) {
  TypeParam v{-3, 1, 2};
  int events = 0;
  v.OnChange = [&](TObject*) { ++events; };
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
  EXPECT_EQ(events, 6);
  EXPECT_FALSE(v.IsEmpty());
  v.Clear();
  EXPECT_TRUE(v.IsEmpty());
  EXPECT_EQ(contents(v), (Values<TypeParam>{0, 0, 0}));
  EXPECT_EQ(events, 7);
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

TYPED_TEST(Vectors, SortReportsEveryExchange) {
  std::mt19937 random(5);
  for (const bool ascending : {true, false}) {
    TypeParam v;
    v.Resize(100);
    for (int i = 1; i <= 100; ++i)
      v.SetVal(i, static_cast<typename TypeParam::value_type>(random() % 40));
    TypeParam silent;
    silent.Clone(&v);
    // A twin that only follows the reports must end up equal.
    auto twin = contents(v);
    int events = 0;
    v.OnChange = [&](TObject*) { ++events; };
    v.OnSortExchange = [&](TObject* sender, std::uint8_t what, int i, int j, int first, int last) {
      EXPECT_EQ(sender, &v);
      EXPECT_TRUE(what == 0 && first == 0 && last == 0 && i < j && i >= 11 && j <= 90);
      std::swap(twin[static_cast<std::size_t>(i - 1)], twin[static_cast<std::size_t>(j - 1)]);
      EXPECT_EQ(v.GetVal(i), twin[static_cast<std::size_t>(i - 1)]) << "reported after it is made";
    };
    v.SortElems(ascending, 90, 11);
    EXPECT_EQ(contents(v), twin);
    EXPECT_EQ(events, 1);
    silent.SortElems(ascending, 11, 90);
    EXPECT_EQ(contents(v), contents(silent)) << "with and without handler";
    const auto first = twin.begin() + 10;
    EXPECT_TRUE(ascending ? std::is_sorted(first, first + 80)
                          : std::is_sorted(first, first + 80, std::greater<>()));
  }
}

TYPED_TEST(Vectors, HandlersMayResizeThrowAndClearThemselves) {
  TypeParam v{5, 4, 3, 2, 1};
  v.OnSortExchange = [&](TObject*, std::uint8_t, int, int, int, int) { v.Resize(2); };
  v.SortElems(true, 0, 0);
  EXPECT_EQ(v.NrOfElem(), 2);

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
  TypeParam source{1, 2, 3, 4, 5, 6};
  TypeParam v;
  v.Resize(10);
  int events = 0;
  v.OnChange = [&](TObject*) { ++events; };
  v.CopyFrom(&source, 5, 2, 9);
  EXPECT_EQ(contents(v), (Values<TypeParam>{0, 0, 0, 0, 0, 0, 0, 0, 2, 3}));
  EXPECT_EQ(events, 2 + 1);
  v.CopyFrom(&source, 4, 99, -1);
  EXPECT_EQ(v.GetVal(1), 6) << "elements 4 and 5 go to positions -1 and 0";
  v.CopyFrom(&source, 0, 0, 3);
  EXPECT_EQ(v.GetVal(3), 1) << "(0, 0) is not the whole range here";
  EXPECT_EQ(v.GetVal(4), 0);
  v.CopyFrom(&source, 1, 6, INT_MAX);
  v.CopyFrom(&source, 1, 6, INT_MIN);
  v.CopyFrom(nullptr, 1, 6, 1);
  EXPECT_EQ(events, 3 + 2 + 2 + 1 + 1);
  v.OnChange = nullptr;

  Values<TypeParam> array{9, 9, 9, 9};
  v.CopyToArray(array, 10, 9);
  EXPECT_EQ(array, (Values<TypeParam>{2, 3}));
  v.CopyFromArray(array, 10);
  EXPECT_EQ(v.GetVal(10), 2);
  EXPECT_EQ(v.NrOfElem(), 10);
  v.CopyFromArray(array, 0);
  EXPECT_EQ(v.GetVal(1), 3);

  // Within one vector the copy proceeds upwards, handler or not.
  for (const bool handler : {false, true}) {
    TypeParam self{1, 2, 3, 4, 5};
    if (handler) self.OnChange = [](TObject*) {};
    self.CopyFrom(&self, 1, 4, 2);
    EXPECT_EQ(contents(self), (Values<TypeParam>{1, 1, 1, 1, 1}));
  }
}

TYPED_TEST(Vectors, SearchGivesPositionsInTheVector) {
  TypeParam v{4, 10, 6, 10, -20};
  EXPECT_EQ(v.Find(0, 0, 5), 1) << "the first on ties";
  EXPECT_EQ(v.Find(4, 3, 9), 4);
  TypeParam sorted{1, 3, 5, 7, 9};
  EXPECT_EQ(sorted.FindInSortedVector(true, 4), 3) << "the upper on ties";
  EXPECT_EQ(sorted.FindInSortedVector(true, 50), 5);
  sorted.Mirror();
  EXPECT_EQ(sorted.FindInSortedVector(false, 9), 1);
  EXPECT_EQ(sorted.FindInSortedVector(false, 2), 5);
}

TEST(VectorTypes, SearchInTheirOwnTypes) {
  TVector v{1, 2, 3, 2};
  EXPECT_EQ(v.Find(0, 0, 2.5), 2);
  EXPECT_EQ(v.Find(0, 0, std::nan("")), 0);
  EXPECT_EQ(v.FindInSortedVector(true, 2.5), 3);
  TIntVector w{INT_MIN, 7, INT_MIN, INT_MAX};
  EXPECT_EQ(w.Find(0, 0, -1), 2);
  EXPECT_EQ(w.FindExact(4, 2, INT_MIN), 3);
  EXPECT_EQ(w.FindExact(2, 2, INT_MIN), 0);
}

TEST(IntVector, SumWrapsAndLengthDoesNot) {
  TIntVector v{2000000000, 2000000000};
  EXPECT_EQ(v.Sum(0, 0), -294967296);
  EXPECT_EQ((TIntVector{2000000000, 1500000000}.Leng()), 2.5e9);
}

TEST(Vector, LengthCanBeSet) {
  TVector v{3, 4};
  int events = 0;
  v.OnChange = [&](TObject*) { ++events; };
  v.SetVecLeng(2);
  EXPECT_DOUBLE_EQ(v.GetVal(1), 1.2);
  EXPECT_DOUBLE_EQ(v.GetVal(2), 1.6);
  EXPECT_DOUBLE_EQ(v.Leng(), 2);
  EXPECT_EQ(events, 1);
  v.Fill(0);
  v.SetLeng(5);
  EXPECT_EQ(events, 2) << "a zero vector is left alone";
}

TEST(Vector, RandomFills) {
  TVector v;
  v.Resize(20000);
  SetRandSeed(3);
  v.FillRandomUniform(-2, 6);
  double low = 0;
  double high = 0;
  v.MinMax(0, 0, low, high);
  EXPECT_TRUE(low >= -2 && low < -1.99 && high < 6 && high > 5.99) << low << ' ' << high;
  double mean = 0;
  double variance = 0;
  v.MeanVar(0, 0, mean, variance);
  EXPECT_NEAR(mean, 2, 0.08);  // five standard errors
  EXPECT_NEAR(variance, 64.0 / 12, 0.17);
  v.Clear();
  v.FillRandomGauss(10, 3);
  EXPECT_FALSE(v.IsEmpty());
  v.MeanVar(0, 0, mean, variance);
  EXPECT_NEAR(mean, 10, 0.11);
  EXPECT_NEAR(variance, 9, 0.45);
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
}  // namespace zel
