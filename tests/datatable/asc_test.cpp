// Tables in the ASC form: exact round trips, files of the other containers, pasting, and what
// cannot be read.
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/base/temp_dir.h"
#include "tests/datatable/same_tables.h"
#include "zel/analysis/TCurveFit.h"
#include "zel/datatable/Zel_datatable.h"
#include "zel/vector/TVector.h"

namespace zel {
namespace {

using test::expectSame;
using zel_test::readBytes;
using zel_test::TempDir;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Same as expectSame, to the bit, where a not-a-number is like any other.
void expectIdentical(const TDataTable& A, const TDataTable& B) {
  ASSERT_EQ(A.NrOfColumns(), B.NrOfColumns());
  ASSERT_EQ(A.NrOfRows(), B.NrOfRows());
  EXPECT_EQ(A.Comment(), B.Comment());
  EXPECT_EQ(A.CRCofNamesAndAttributes(), B.CRCofNamesAndAttributes());
  EXPECT_EQ(A.CRCofCellStates(), B.CRCofCellStates());
  for (int c = 1; c <= A.NrOfColumns(); ++c) {
    EXPECT_EQ(A.GetColAttrib(c), B.GetColAttrib(c));
    for (int r = 1; r <= A.NrOfRows(); ++r) {
      EXPECT_EQ(A.GetRowAttrib(r), B.GetRowAttrib(r));
      const double a = A.NumericData->GetVal(c, r);
      const double b = B.NumericData->GetVal(c, r);
      EXPECT_TRUE(std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
                  (std::isnan(a) && std::isnan(b)))
          << c << ' ' << r << ": " << a << ' ' << b;
    }
  }
}

using Random = std::mt19937_64;

std::string randomText(Random& random, std::size_t most) {
  constexpr std::string_view kOften = "\"\\ \t\r\n;=a0";
  std::string text(random() % (most + 1), '\0');
  for (char& c : text) {
    c = random() % 2 ? kOften[random() % kOften.size()] : static_cast<char>(random() % 256);
  }
  return text;
}

void makeRandom(TDataTable& T, Random& random) {
  T.Resize(static_cast<int>(random() % 5) + 1, static_cast<int>(random() % 9) + 1);
  const std::string_view comments[] = {"", "a \"comment\"; ",
                                       "Exported by ZEL TDataTable component: x"};
  T.SetFComment(comments[random() % 3]);
  const bool isPlain = random() % 4 == 0;
  for (int c = 1; c <= T.NrOfColumns(); ++c) {
    if (random() % 2) T.SetColAttrib(c, static_cast<int>(random()));
    T.SetMScaleType(c, static_cast<TMScaleType>(random() % 5));
    for (int k = random() % 3 ? 151 : 1; k <= 150; k += static_cast<int>(random() % 70)) {
      T.SetNominalID(c, k, randomText(random, 10));
    }
    if (!isPlain) T.SetColName(c, randomText(random, 50));
  }
  constexpr double kTiny = std::numeric_limits<double>::denorm_min();
  constexpr double kSpecial[] = {-0.0,
                                 kTiny,
                                 -kTiny,
                                 1.7976931348623157e308,
                                 kInfinity,
                                 -kInfinity,
                                 std::numeric_limits<double>::quiet_NaN(),
                                 2.5};
  for (int r = 1; r <= T.NrOfRows(); ++r) {
    if (!isPlain) T.SetRowName(r, randomText(random, 50));
    if (random() % 2) T.SetRowAttrib(r, static_cast<int>(random()));
    for (int c = 1; c <= T.NrOfColumns(); ++c) {
      const auto any = std::bit_cast<double>(random());
      T.SetElem(c, r, random() % 3 ? any : kSpecial[random() % std::size(kSpecial)]);
      if (random() % 3 == 0) T.SetElem(c, r, 0);
      constexpr std::uint8_t kStates[] = {0, 0, 2, 64, 34, 255};
      T.SetCellState(c, r, kStates[random() % std::size(kStates)]);
    }
  }
}

/// The events of a table, as letters.
void record(TDataTable& T, std::string& events) {
  const auto note = [&events](char letter) {
    return [&events, letter](TObject*) { events += letter; };
  };
  T.OnChange = note('d');
  T.OnChangeSetup = note('s');
  T.OnChangeNames = note('n');
  T.OnChangeCellState = note('c');
  T.OnChangeAttrib = note('a');
  T.OnResize = [&events](TObject*, int, int, int, int) { events += 'r'; };
}

TEST(TableAsc, RoundTripsAreExact) {
  Random random(11);
  const TempDir folder;
  const std::string file = folder.file("x.asc");
  for (int trial = 0; trial < 200; ++trial) {
    TDataTable T;
    makeRandom(T, random);
    TStr2DArray custom(random() % 3, T.NrOfRows());
    if (custom.Length(0) == 0) custom.clear();
    for (std::string& text : custom) text = randomText(random, 20);
    ASSERT_EQ(T.ExportAsASC(file, -1, custom), 0);
    std::string events;
    std::string expected;
    TDataTable Read;
    TDataTable Copy;
    record(Read, events);
    record(Copy, expected);
    TStr2DArray customRead{{"x"}};
    ASSERT_EQ(Read.ImportASC(file, customRead), 0) << readBytes(file);
    Copy.CopyContentsFrom(&T);
    EXPECT_EQ(events, expected);
    expectIdentical(Read, T);
    EXPECT_EQ(customRead, custom);
    TMemoryStream stream;
    T.ExportAsASC(stream, -1);
    ASSERT_EQ(Read.ImportASC(stream), 0) << stream.str();
    expectIdentical(Read, T);

    // Cut off anywhere, it is a table or refused, and then nothing has changed.
    const std::string bytes = readBytes(file);
    for (std::size_t size = 0; trial < 5 && size < bytes.size(); ++size) {
      ASSERT_EQ(Read.ImportASC(TClipboard{bytes}), 0);
      events.clear();
      if (Read.ImportASC(TClipboard{bytes.substr(0, size)}) != 0) {
        EXPECT_EQ(events, "");
        expectIdentical(Read, T);
      }
    }
    if (testing::Test::HasFailure()) FAIL() << "trial " << trial << '\n' << bytes;
  }
}

TEST(TableAsc, SharesItsFormWithTheOtherContainers) {
  const TempDir folder;
  const std::string file = folder.file("x.asc");
  TDataTable T;
  TVector V{1.5, kInfinity, -2};
  ASSERT_EQ(V.ExportAsASC(file, 3, "a vector"), 0);
  ASSERT_EQ(T.ImportASC(file), 0);
  EXPECT_EQ(T.Comment(), "a vector");
  EXPECT_EQ(T.GetRowName(3), "R-3");
  EXPECT_EQ(T(1, 2), kInfinity);

  T.SetElem(1, 2, 2.25);
  T.SetCellState(1, 3, 1);
  T.SetRowName(1, "two\nlines \"x\"");
  T.SetRowAttrib(2, -7);
  T.SetColName(1, "\"");
  T.SetColAttrib(1, 3);
  ASSERT_EQ(T.ExportAsASC(file, 1, TStr2DArray{{"a", "b", "c"}}), 0);
  EXPECT_EQ(
      readBytes(file),
      "a vector\n1\t;nr. of columns\n3\t;nr. of rows\nTRUE TRUE TRUE FALSE\t;row attributes, "
      "column names, row names, nominal variables\n\"\"\"\"\n0\t\"two lines \"\"x\"\"\"\t"
      "         1.5\n-7\t\"R-2\"\t         2.2\n0\t\"R-3\"\tNAN\n;more\t;what the rows do not "
      "tell\n;colattrib\t1=3\n;rownames\t1=\"two\\x0Alines \\\"x\\\"\"\n;states\t1\t3=1\n"
      ";values\t1\t3=-2.0\n;custom\t1\t\"a\"\t\"b\"\t\"c\"\n;end\n");
  std::string comment;
  ASSERT_EQ(V.ImportASC(file, comment), 0);
  EXPECT_EQ(std::vector<double>(V), (std::vector<double>{1.5, 2.2, 0}));

  TCurveFit Fit;
  Fit.EnterStatValue(1, 10);
  Fit.EnterStatValue(2, -20);
  ASSERT_EQ(Fit.ExportAsASC(file, "", 2), "");
  ASSERT_EQ(T.ImportASC(file), 0);
  EXPECT_EQ(T.GetColName(2), "y");
  EXPECT_EQ(T(2, 2), -20);
  T.SetMScaleType(1, stRatio);
  ASSERT_EQ(T.ExportAsASC(file, -1), 0);
  ASSERT_EQ(Fit.ImportASC(file), 0);
  EXPECT_EQ(Fit.NumData(), 2);

  EXPECT_EQ(T.ImportASC(
                TClipboard{"c\td\r\n+2\r\n2 rows\r\ntrue TRUE true TRUE\r\nlong \"a\r\nb\"\r\n\r\n"
                           "1.0 x +1e2\r\n nan\r\n-2 \"y z\" .5 ### what follows\r\n;is ignored"}),
            0);
  EXPECT_EQ(T.Comment(), "cd");
  EXPECT_EQ(T.GetColName(2), "a\r\nb");
  EXPECT_EQ(T.GetRowAttrib(2), -2);
  EXPECT_EQ(T(1, 1), 100);
  EXPECT_EQ(T.GetCellState(2, 1), 2);
  EXPECT_EQ(T.GetCellState(2, 2), 2);
}

TEST(TableAsc, WhatCannotBeReadLeavesTheTable) {
  TDataTable T;
  T.SetElem(1, 1, 7);
  std::string events;
  record(T, events);
  const std::string head = "c\n1\n2\nFALSE FALSE FALSE\n";
  const std::string more = head + "1\n2\n;more\n";
  const std::pair<std::string, const char*> cases[] = {
      {"", "1 line 1: the comment should be here"},
      {"c\nx\n", "2 line 2: the number of columns should be here"},
      {"c\n1\n1\nTRUE\n", "4 line 4: the flags should be here"},
      {"c\n0\n1\nFALSE FALSE FALSE\n", "-2 line 2: there are no columns"},
      {"c\n1\n0\nFALSE FALSE FALSE\n", "-2 line 3: there are no rows"},
      {head + "1\n", "-3 line 6: the value of column 1 in row 2 is missing"},
      {"c\n2000000000\n2000000000\nTRUE TRUE TRUE\nx y",
       "-3 line 5: the name of column 3 is missing or has no closing quotation mark"},
      {"c\n1\n1\nFALSE TRUE FALSE\n\n\"x\n1",
       "-3 line 6: the name of column 1 is missing or has no closing quotation mark"},
      {"c\n2000000000\n2000000000\nFALSE FALSE FALSE\n1 2\n3",
       "-3 line 6: the value of column 4 in row 1 is missing"},
      {"c\n1\n2000000000\nFALSE FALSE FALSE\n1 2\n3",
       "-3 line 6: the value of column 1 in row 4 is missing"},
      {"c\n1\n1\nTRUE FALSE FALSE\n1.5 2", "-5 line 5: the row attribute is not an integer"},
      {head + "1\n\n1,5\n", "-6 line 7: the value of column 1 in row 2 is not a number"},
      {more + ";scales\t1=Ratio\n",
       "-9 line 9: the lines behind the rows are cut off before \";end\""},
      {more + ";scales\t1=Ratio\n;scales\t1=Ratio\n;end",
       "-9 line 9: this line behind the rows is not in its place"},
      {more + ";scale\t1=Ratio\n;end", "-9 line 8: this line behind the rows is not known"},
      {more + ";custom\t1\t\"a\"\n;end",
       "-9 line 8: a further column has not a text for each row"}};
  for (const auto& [text, expected] : cases) {
    TMemoryStream stream(text);
    TStr2DArray custom{{"kept"}};
    std::string message;
    const int code = T.ImportASC(stream, custom, message);
    EXPECT_EQ(std::to_string(code) + " " + message, expected);
    EXPECT_EQ(custom, (TStr2DArray{{"kept"}}));
  }
  for (const char* line :
       {"scales 2=Ratio", "scales 1=Best", "colattrib 1=99999999999", "states 1 2-1=3",
        "states 1 1=3 1=3", "states 1 1=256", "states 2 1=1", "values 1 1=x", "rownames 1=x",
        "rownames 1=\"\\y\"", "rownames 3=\"\"", "categories 1 151=\"x\"", "comment \"a\" \"b\"",
        "custom 2 \"a\" \"b\"", "states 1 -1=1"}) {
    EXPECT_EQ(
        T.ImportASC(TClipboard{std::string(more).append(";").append(line).append("\n;end\n")}), -9)
        << line;
  }
  EXPECT_EQ(T.ImportASC("/nowhere/x.asc"), -8);
  EXPECT_EQ(T.ReadFromASC("/nowhere/x.asc", 1, 1, true), -8);
  EXPECT_EQ(events, "");
  EXPECT_EQ(T(1, 1), 7);

  EXPECT_EQ(T.ExportAsASC("/nowhere/x.asc", -1), -1);
  EXPECT_EQ(T.ExportAsASC("/dev/full", -1), -1);
}

TEST(TableAsc, PastesWithAndWithoutIdentifiers) {
  TDataTable Source;
  Source.Resize(2, 2);
  Source.SetMScaleType(1, stOrdinal);
  Source.SetNominalID(1, 2, "Red");
  Source.SetNominalID(1, 4, "blue");
  Source.SetElem(1, 1, 4);
  Source.SetElem(1, 2, 2);
  Source.SetElem(2, 1, -1.5);
  Source.SetCellState(2, 2, 66);
  Source.SetColName(1, "colour");
  Source.SetRowAttrib(2, 9);
  TMemoryStream text;
  Source.ExportAsASC(text, -1);

  TDataTable T;
  T.Resize(2, 3);
  T.AddNominalID(2, "RED");
  std::string events;
  record(T, events);
  ASSERT_EQ(T.ReadFromASC(text, 2, 2, false), 0);
  EXPECT_EQ(events, "rdcs");
  EXPECT_EQ(T.NrOfColumns(), 3);
  EXPECT_EQ(T.GetMScaleType(2), stNominal);
  EXPECT_EQ(T.GetElemNominal(2, 2), "blue");
  EXPECT_EQ(T(2, 2), 2);
  EXPECT_EQ(T(2, 3), 1);
  EXPECT_EQ(T(3, 2), -1.5);
  EXPECT_EQ(T.GetCellState(3, 3), 66);
  EXPECT_EQ(T.GetColName(2), "C-2");
  EXPECT_EQ(T.GetRowAttrib(3), 0);

  events.clear();
  const TClipboard clip{text.str()};
  ASSERT_EQ(T.ReadFromASC(clip, 1, 1, false), 0) << "an interval column takes the numbers";
  EXPECT_EQ(events, "dc");
  EXPECT_EQ(T(1, 1), 4);
  EXPECT_EQ(T.GetMScaleType(1), stInterval);
  events.clear();
  ASSERT_EQ(T.ReadFromASC(clip, 2, 3, true), 0);
  EXPECT_EQ(events, "rdcsna");
  EXPECT_EQ(T.GetMScaleType(2), stOrdinal);
  EXPECT_EQ(T.GetElemNominal(2, 3), "blue");
  EXPECT_EQ(T(2, 3), 4);
  EXPECT_EQ(T.GetColName(2), "colour");
  EXPECT_EQ(T.GetRowName(4), "R-4") << "the file has no names of rows";
  EXPECT_EQ(T.GetRowAttrib(4), 9);

  for (int k = 1; k <= 150; ++k) T.SetNominalID(2, k, std::string("k").append(std::to_string(k)));
  TDataTable Before;
  Before.Assign(&T);
  events.clear();
  EXPECT_EQ(T.ReadFromASC(clip, 2, 1000, false), -10);
  EXPECT_EQ(T.ReadFromASC(clip, 0, 1, true), -4);
  EXPECT_EQ(T.ReadFromASC(clip, 1, std::numeric_limits<int>::max(), true), -4);
  EXPECT_EQ(events, "");
  expectSame(T, Before);
}

}  // namespace
}  // namespace zel
