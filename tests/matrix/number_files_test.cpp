#include <climits>
#include <cmath>
#include <limits>
#include <sstream>

#include "tests/base/temp_dir.h"
#include "tests/matrix/matrices.h"

namespace zel {
namespace {

using test::contents;

class MatrixNumbers : public testing::Test {
 protected:
  [[nodiscard]] std::string file(const std::string& text) const {
    zel_test::writeBytes(name(), text);
    return name();
  }
  [[nodiscard]] std::string name() const { return folder_.file("numbers"); }

  const zel_test::TempDir folder_;
};

/// Every double and int comes back bit for bit, from the text and from the record, whatever the
/// rectangle; what is cut off changes nothing.
TEST_F(MatrixNumbers, ComeBackFromEveryForm) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  TMatrix m{{1.0 / 3, -0.0, 5e-324}, {std::numeric_limits<double>::max(), -inf, 1e22}};
  const TIntMatrix ints{{INT_MIN, 2, 3}, {INT_MAX, 0, -6}};
  TIntMatrix sparse(CreateSparse, nullptr, 1);
  sparse.Clone(&ints);
  const auto check = [&](const auto& source, auto&& target, auto&& expected) {
    ASSERT_TRUE(source.StoreOnFile(3, 1, 2, 2, name()));
    const std::string text = zel_test::readBytes(name());
    std::unique_ptr<TMemoryStream> stream;
    source.SaveToStream(stream, 3, 1, 2, 2);
    const std::string record = stream->str();
    const auto load = [&](bool fromText, std::size_t length, bool adjust) {
      std::istringstream in(record.substr(0, length));
      return fromText ? target.LoadFromFile(file(text.substr(0, length)), adjust)
                      : target.LoadFromStream(in, adjust);
    };
    expected.Resize(3, 2);
    expected.Fill(9);
    for (int c = 2; c <= 3; ++c) {
      for (int r = 1; r <= 2; ++r) expected.SetVal(c, r, source(c, r));
    }
    test::Events events(target);
    for (const bool adjust : {true, false}) {
      for (const bool fromText : {true, false}) {
        target.Resize(3, 2);
        target.Fill(9);
        const auto before = contents(target);
        events.count = 0;
        for (std::size_t cut = 0; cut < (fromText ? text : record).size(); ++cut) {
          // The last digit and the line end may be missed in a text.
          if (fromText && text.find('\n') < cut && cut + 2 >= text.rfind(' ')) continue;
          EXPECT_FALSE(load(fromText, cut, adjust)) << cut;
        }
        EXPECT_EQ(contents(target), before);
        EXPECT_EQ(events.count, 0);
        EXPECT_TRUE(load(fromText, std::string::npos, adjust));
        EXPECT_EQ(target.CRCofData(), expected.CRCofData());
        EXPECT_EQ(events.count, 1);
      }
    }
  };
  check(m, TMatrix(), TMatrix());
  check(ints, TIntMatrix(), TIntMatrix());
  check(sparse, TIntMatrix(), TIntMatrix());
  m.SetPrecision(1, 6);
  m.SetPrecision(2, 2);
  EXPECT_TRUE(m.StoreOnFile(1, 1, 1, 1, name()));
  EXPECT_EQ(zel_test::readBytes(name()), "1 1 1 1\n  0.33\n");
  EXPECT_TRUE(ints.StoreOnFile(0, 0, 0, 0, name()));
  for (const bool adjust : {true, false}) {
    sparse.Resize(3, 2);
    EXPECT_TRUE(sparse.LoadFromFile(name(), adjust));
    EXPECT_TRUE(sparse.IsSparse());
    EXPECT_EQ(sparse.StoredCells().size(), 5U) << "the cells that are not 0";
  }
  EXPECT_FALSE(m.LoadFromFile("/no/such/file", true));
  for (const char* unwritable : {"", "/", "/dev/full", "/no/such/folder"}) {
    EXPECT_FALSE(m.StoreOnFile(0, 0, 0, 0, unwritable)) << unwritable;
  }
}

/// Bounds decide nothing that the values do not bear out.
TEST_F(MatrixNumbers, RefuseWhatIsNoRectangle) {
  TMatrix m{{1, 2}, {3, 4}};
  const auto before = contents(m);
  for (const char* text : {"", "1 1 2", "0 1 1 1 5 6", "1 0 1 1 5 6", "3 1 1 1", "1 1 1.5 1 5 6",
                           "1 1 1 1 x", "1 1 1 1 1,5", "1 1 2147483647 2147483647 5",
                           "1 1 65536 65536 5", "8000 8000 8000 8000 5", "nan 1 1 1 5"}) {
    EXPECT_FALSE(m.LoadFromFile(file(text), true)) << text;
    EXPECT_EQ(contents(m), before);
  }
  EXPECT_FALSE(m.LoadFromFile(file("2 2 3 2 5 6"), false)) << "does not fit";
  EXPECT_EQ(contents(m), before);
  EXPECT_TRUE(m.LoadFromFile(file("+2 2 3 2\r\n5\t6"), true));
  EXPECT_EQ(contents(m), (std::vector<double>{3, 2, 1, 3, 2, 5, 0, 6}));
  EXPECT_TRUE(m.LoadFromFile(file("1 1 4 0"), true));
  EXPECT_TRUE(m.LoadFromFile(file("1 1 0 4"), true));
  EXPECT_EQ(contents(m), (std::vector<double>{0, 4}));
  EXPECT_TRUE(m.StoreOnFile(0, 0, 0, 0, name()));
  TMatrix empty;
  EXPECT_TRUE(empty.LoadFromFile(name(), true));
  EXPECT_EQ(contents(empty), contents(m));
  m.Resize(30, 30);
  m.SetName("M");
  m.StoreOnFile(0, 0, 0, 0, name());
  const std::string stored = name();
  test::expectFailuresHarmless([&] { EXPECT_TRUE(empty.LoadFromFile(stored, true)); },
                               "Component \"\": not enough memory on heap",
                               [&] { EXPECT_EQ(empty.NrOfRows(), 4); },
                               [&] { empty.Resize(0, 4); });
}

TEST_F(MatrixNumbers, TablesWithoutBoundsAreDetected) {
  TMatrix m;
  EXPECT_TRUE(m.LoadFromFile(file("1 2 // a\n\n // b\n3\t4e1\r\n"), true, true));
  EXPECT_EQ(contents(m), (std::vector<double>{2, 2, 1, 3, 2, 40}));
  EXPECT_TRUE(m.LoadFromFile(file("title\n7 //dig\n"), false, true)) << "into the front";
  EXPECT_EQ(m(1, 1), 7);
  for (const char* text : {"", "1 2\n3\n", "1 x\n", "title\n1\n", "//dig", "1 2 3"}) {
    EXPECT_FALSE(m.LoadFromFile(file(text), false, true)) << text;
  }
  EXPECT_TRUE(m.LoadFromFile(file("1 1 1 2 8 9"), true, false));
  EXPECT_EQ(contents(m), (std::vector<double>{1, 2, 8, 9}));
}

}  // namespace
}  // namespace zel
