#include "tests/support/testing.h"
#include "zel/vector/Zel_vector.h"

namespace zel::test {
namespace {

using Values = std::vector<double>;

class VectorFiles : public zel_test::InFolder {
 protected:
  [[nodiscard]] std::string file(const std::string& text) const {
    write("in", text);
    return path("in");
  }
};

template <class V>
class VectorRecords : public testing::Test {};
using Both = testing::Types<TVector, TIntVector>;
TYPED_TEST_SUITE(VectorRecords, Both);

TYPED_TEST(VectorRecords, KeepWhatCanBeRead) {
  using V = std::vector<typename TypeParam::value_type>;
  constexpr std::size_t item = std::is_same_v<TypeParam, TVector> ? 10 : 4;
  const TypeParam v{1, 2, 3};
  std::unique_ptr<TMemoryStream> stream;
  v.SaveToStream(stream, 0, 0);
  ASSERT_TRUE(stream);
  const std::string bytes = stream->str();
  ASSERT_EQ(bytes.size(), 5 * item);
  for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
    std::istringstream in(bytes.substr(0, cut));
    TypeParam w{9};
    Events events(w);
    EXPECT_EQ(w.LoadFromStream(in, true), cut == bytes.size());
    V expected{9};
    int stored = 0;
    if (cut >= 2 * item) {
      expected = {9, 0, 0};
      stored = static_cast<int>(cut / item) - 2;
      std::copy_n(v.begin(), stored, expected.begin());
    }
    EXPECT_EQ(contents(w), expected) << "without bounds no change";
    EXPECT_EQ(events.count, cut < 2 * item ? 0 : 1 + stored + 1) << "resize, each value, the end";
  }
  v.SaveToStream(stream, 2, 3);
  TypeParam w, two{5, 6};
  EXPECT_TRUE(w.LoadFromStream(*stream, true));
  EXPECT_EQ(w.CRCofData(), v.CRCofData());
  w.Fill(9);
  EXPECT_TRUE(w.LoadFromStream(stream.get(), true)) << "the record that follows";
  EXPECT_EQ(contents(w), (V{9, 2, 3}));
  EXPECT_FALSE(w.LoadFromStream(*stream, true));
  EXPECT_FALSE(w.LoadFromStream(nullptr, true));
  std::istringstream in(bytes);
  EXPECT_FALSE(two.LoadFromStream(in, false)) << "does not grow unasked";
  EXPECT_EQ(contents(two), (V{5, 6}));
  EXPECT_EQ(in.tellg(), static_cast<std::streamoff>(2 * item)) << "no value is read";
}

TEST_F(VectorFiles, ForgedCountsAllocateNothing) {
  std::stringstream stream;
  WriteExtendedToStream(stream, 1);
  WriteExtendedToStream(stream, 1e18L);
  WriteExtendedToStream(stream, 5);
  TVector v{1, 2};
  EXPECT_FALSE(v.LoadFromStream(stream, true));
  EXPECT_EQ(contents(v), (Values{1, 2}));
  EXPECT_FALSE(v.LoadFromFile(file("1 2147483647\n5\n6\n"), true));
  EXPECT_EQ(contents(v), (Values{1, 2}));
  std::string comment;
  EXPECT_EQ(v.ImportASC(file("c\n1\n2147483647\nFALSE FALSE FALSE FALSE\n5\n6\n"), comment), -6);
  EXPECT_EQ(contents(v), (Values{5, 6, 0}));
  // A record of a late part of a long vector is no forgery.
  TVector late;
  late.Resize(100000);
  late.SetVal(99999, 7);
  std::stringstream part;
  late.SaveToStream(part, 99998, 100000);
  TVector w;
  EXPECT_TRUE(w.LoadFromStream(part, true));
  EXPECT_EQ(w.GetVal(99999), 7);
}

TEST_F(VectorFiles, NumberFilesFollowThePrecision) {
  const std::string name = path("numbers");
  TVector v{1.5, -2, 1.0 / 3};
  EXPECT_TRUE(v.StoreOnFile(1, 3, -5, name));
  EXPECT_EQ(zel_test::readBytes(name), "1 3\n1.50\n-2.00\n0.33\n");
  EXPECT_TRUE(v.StoreOnFile(3, 1, 25, name));
  EXPECT_EQ(zel_test::readBytes(name),
            "1 3\n1.50000000000000000000\n-2.00000000000000000000\n0.33333333333333331483\n");
  EXPECT_TRUE(v.StoreOnFile(2, 9, 0, name));
  EXPECT_EQ(zel_test::readBytes(name), "2 3\n-2\n0\n");
  EXPECT_TRUE(v.StoreOnFile(0, 0, -1, name));
  EXPECT_EQ(zel_test::readBytes(name), "1 3\n 1.50000E+000\n-2.00000E+000\n 3.33333E-001\n");
  EXPECT_TRUE(v.StoreOnFile(0, 0, -2, name));
  EXPECT_EQ(zel_test::readBytes(name).size(), 4 + 3 * 27U);
  TVector w;
  EXPECT_TRUE(w.LoadFromFile(name, true));
  EXPECT_EQ(w.CRCofData(), v.CRCofData()) << "26 characters hold a double exactly";

  TIntVector k{4, 5, 6};
  EXPECT_TRUE(k.StoreOnFile(0, 0, name));
  EXPECT_EQ(zel_test::readBytes(name), "1 0\n") << "the integer form does not know (0, 0)";
  EXPECT_TRUE(k.StoreOnFile(9, -4, name));
  EXPECT_EQ(zel_test::readBytes(name), "1 3\n4\n5\n6\n");
  EXPECT_FALSE(v.StoreOnFile(0, 0, 2, path("no/such/folder")));
  EXPECT_TRUE(v.StoreOnFile(0, 0, 2, "/dev/full")) << "the file could be created";
}

TEST_F(VectorFiles, NumberFilesWithBadWords) {
  TVector v{7, 7, 7, 7};
  Events events(v);
  EXPECT_TRUE(v.LoadFromFile(file("2 4\r\n+1.5\r\nabc\r\n3e2"), false));
  EXPECT_EQ(contents(v), (Values{7, 1.5, 7, 300}));
  EXPECT_EQ(events.count, 1);
  EXPECT_TRUE(v.LoadFromFile(file("1 3\n1"), true)) << "missing values leave their elements";
  EXPECT_EQ(contents(v), (Values{1, 1.5, 7}));
  EXPECT_FALSE(v.LoadFromFile(file("1 4\n1 2 3 4"), false));
  for (const char* garbage : {"", "x", "1", "1 x", "\n\n"}) {
    EXPECT_FALSE(v.LoadFromFile(file(garbage), true)) << garbage;
  }
  EXPECT_FALSE(v.LoadFromFile(path("missing"), true));
  EXPECT_FALSE(v.LoadFromFile(path("."), true));
  EXPECT_EQ(contents(v), (Values{1, 1.5, 7}));
  TIntVector k;
  EXPECT_TRUE(k.LoadFromFile(file("1 4\n0.5 1.5 -2.5 1e99"), true));
  EXPECT_EQ(contents(k), (std::vector<int>{0, 2, -2, INT_MAX}));
}

TEST_F(VectorFiles, MarkedLinesSetTheLength) {
  TVector v{9};
  const std::string name = file("1.5 //dig\n\n2.5//dig\nx //dig\n4 //dig first\n");
  EXPECT_TRUE(v.LoadFromFile(name, true, true));
  EXPECT_EQ(contents(v), (Values{1.5, 2.5, 0, 4}));
  TVector two{8, 8};
  EXPECT_TRUE(two.LoadFromFile(name, false, true));
  EXPECT_EQ(contents(two), (Values{1.5, 2.5}));
  EXPECT_TRUE(two.LoadFromFile(file("no marks 5"), true, true));
  EXPECT_EQ(two.NrOfElem(), 2) << "no marked line leaves the size";
  EXPECT_FALSE(two.LoadFromFile(path("missing"), true, true));
  EXPECT_FALSE(two.LoadFromFile(path("."), true, true));
  EXPECT_TRUE(two.LoadFromFile(file("1 1\n6\n"), true, false));
  EXPECT_EQ(contents(two), Values{6});
}

TEST_F(VectorFiles, AscFilesHaveTheirForm) {
  const std::string name = path("a.asc");
  TVector v{1.5, -2};
  EXPECT_EQ(v.ExportAsASC(name, 3, ""), 0);
  EXPECT_EQ(zel_test::readBytes(name),
            "Exported by ZEL TVector component: " + name +
                "\n1\t;nr. of columns\n2\t;nr. of rows\nFALSE FALSE FALSE FALSE\t"
                ";row attributes, column names, row names, nominal variables\n"
                "       1.500\n      -2.000\n");
  TIntVector k{-7};
  EXPECT_EQ(k.ExportAsASC(name, "two\nlines"), 0);
  EXPECT_EQ(zel_test::readBytes(name),
            "two lines\n1\t;nr. of columns\n1\t;nr. of rows\nFALSE FALSE FALSE FALSE\t"
            ";row attributes, column names, row names, nominal variables\n-7\n");
  EXPECT_EQ(v.ExportAsASC(path("no/such/folder"), 3, ""), -1);
  EXPECT_EQ(v.ExportAsASC("/dev/full", 3, ""), -1);
  std::string comment;
  TVector w;
  EXPECT_EQ(w.ImportASC(name, comment), 0);
  EXPECT_EQ(comment, "two lines");
  EXPECT_EQ(contents(w), Values{-7});
}

TEST_F(VectorFiles, AscReaderSkipsAttributesAndNames) {
  std::string comment;
  TVector v;
  Events events(v);
  EXPECT_EQ(
      v.ImportASC(file("c\r\n1\t;nr. of columns\r\n3\t;nr. of rows\r\nTRUE TRUE TRUE FALSE\r\n"
                       "\"my \"\"column\"\"\"\r\n"
                       "3 \"row one\" 1.5e1\r\n4 \"row 2\" NAN\r\n5 bare ###\r\n"),
                  comment),
      0);
  EXPECT_EQ(contents(v), (Values{15, 0, 0}));
  EXPECT_EQ(events.count, 2) << "the resize and the end";
  EXPECT_FALSE(v.IsEmpty());
}

TEST_F(VectorFiles, AscErrorsAreTold) {
  const std::string head = "c\n1\n4\nFALSE FALSE FALSE FALSE\n";
  std::string comment;
  TVector v{7, 8, 9};
  EXPECT_EQ(v.ImportASC(path("missing"), comment), -8);
  EXPECT_NE(v.ImportASC(path("."), comment), 0);
  const struct {
    std::string text;
    int result;
    Values left;
  } cases[] = {
      {"c\n2\n1\nFALSE FALSE FALSE FALSE\n1 2\n", -7, {7, 8, 9}},
      {"c\n1\n1\nFALSE MAYBE FALSE FALSE\n1\n", 4, {7, 8, 9}},
      // Cut to the failing row, which keeps its value.
      {head + "1\n1,5\n3\n4\n", -6, {1, 8}},
      {head + "1\n2\n3\n", -6, {1, 2, 3, 0}},
      {"c\n1\n2\nTRUE FALSE FALSE FALSE\n1 5\nx 6\n", -5, {5, 2}},
  };
  for (const auto& [text, result, left] : cases) {
    EXPECT_EQ(v.ImportASC(file(text), comment), result) << text;
    EXPECT_EQ(contents(v), left) << text;
  }
  TIntVector k;
  EXPECT_EQ(k.ImportASC(file(head + "0.5\n1.5\n-1e10\n+3\n"), comment), 0);
  EXPECT_EQ(contents(k), (std::vector<int>{0, 2, INT_MIN, 3}));
}

}  // namespace
}  // namespace zel::test
