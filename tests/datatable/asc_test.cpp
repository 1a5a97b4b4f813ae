// Tables in the ASC form: exact round trips, files of the other containers, pasting, and what
// cannot be read.
#include "tests/datatable/table_model.h"
#include "tests/datatable/tables.h"
#include "tests/support/testing.h"
#include "zel/analysis/TCurveFit.h"
#include "zel/datatable/Zel_datatable.h"
#include "zel/vector/TVector.h"

namespace zel::test {
namespace {

using TableAsc = zel_test::InFolder;

/// Rows and what stands behind them, as the writer writes them.
std::string bodyOf(const TDataTable& T) {
  TMemoryStream out;
  T.ExportAsASC(out, -1);
  const std::string text = out.str();
  return text.substr(text.find("nominal variables\n") + 18);
}

TEST_F(TableAsc, RoundTripsAreExact) {
  std::mt19937_64 random(11);
  const std::string file = path("x.asc");
  for (int trial = 0; trial < 200 && !HasFailure(); ++trial) {
    TDataTable T, Read, Copy;
    makeRandom(T, random);
    TStr2DArray custom(random() % 3, T.NrOfRows()), customRead{{"x"}};
    if (custom.Length(0) == 0) custom.clear();
    for (std::string& text : custom) text = randomText(random, 20);
    ASSERT_EQ(T.ExportAsASC(file, -1, custom), 0);
    const std::string bytes = bytesOf("x.asc");
    SCOPED_TRACE(bytes);
    std::string events, expected;
    recordEvents(Read, events);
    recordEvents(Copy, expected);
    ASSERT_EQ(Read.ImportASC(file, customRead), 0);
    Copy.CopyContentsFrom(&T);
    EXPECT_EQ(events, expected);
    EXPECT_EQ(customRead, custom);
    TMemoryStream stream;
    T.ExportAsASC(stream, -1);
    TDataTable Streamed;
    ASSERT_EQ(Streamed.ImportASC(stream), 0);
    for (TDataTable* table : {&Read, &Streamed}) {
      EXPECT_EQ(table->Comment(), T.Comment());
      expectIdentical(*table, T);
    }
    // Cut off anywhere, it is a table or refused, and then nothing has changed.
    for (std::size_t size = 0; trial < 5 && size < bytes.size(); ++size) {
      ASSERT_EQ(Read.ImportASC(TClipboard{bytes}), 0);
      events.clear();
      if (Read.ImportASC(TClipboard{bytes.substr(0, size)}) == 0) continue;
      EXPECT_EQ(events, "");
      expectIdentical(Read, T);
    }
  }
}

TEST_F(TableAsc, SharesItsFormWithTheOtherContainers) {
  const std::string file = path("x.asc");
  TDataTable T;
  TVector V{1.5, kInf, -2};
  ASSERT_EQ(V.ExportAsASC(file, 3, "a vector"), 0);
  ASSERT_EQ(T.ImportASC(file), 0);
  EXPECT_EQ(T.Comment(), "a vector");
  EXPECT_EQ(T.GetRowName(3), "R-3");
  EXPECT_EQ(T(1, 2), kInf);

  T.SetElem(1, 2, 2.25);
  T.SetCellState(1, 3, 1);
  T.SetRowName(1, "two\nlines \"x\"");
  T.SetRowAttrib(2, -7);
  T.SetColName(1, "\"");
  T.SetColAttrib(1, 3);
  ASSERT_EQ(T.ExportAsASC(file, 1, TStr2DArray{{"a", "b", "c"}}), 0);
  EXPECT_EQ(
      bytesOf("x.asc"),
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
  EXPECT_EQ(bodyOf(T),
            "\"long\"\t\"a  b\"\n1\t\"x\"\t100\tNAN\n-2\t\"y z\"\t0.5\tNAN\n;more\t;what "
            "the rows do not tell\n;colnames\t2=\"a\\x0D\\x0Ab\"\n;end\n");
}

TEST_F(TableAsc, WhatCannotBeReadLeavesTheTable) {
  TDataTable T;
  T.SetElem(1, 1, 7);
  std::string events;
  recordEvents(T, events);
  const std::string head = "c\n1\n2\nFALSE FALSE FALSE\n";
  const std::string more = head + "1\n2\n;more\n";
  const std::pair<std::string, const char*> cases[] = {
      {"", "1 line 1: the comment should be here"},
      {"c\nx\n", "2 line 2: the number of columns should be here"},
      {"c\n1\n0\nFALSE FALSE FALSE\n", "-2 line 3: there are no rows"},
      {head + "1\n", "-3 line 6: the value of column 1 in row 2 is missing"},
      {"c\n2000000000\n2000000000\nTRUE TRUE TRUE\n\nx y",
       "-3 line 6: the name of column 3 is missing or has no closing quotation mark"},
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
  EXPECT_EQ(events, "");
  EXPECT_EQ(T(1, 1), 7);

  EXPECT_EQ(T.ExportAsASC("/nowhere/x.asc", -1), -1);
  EXPECT_EQ(T.ExportAsASC("/dev/full", -1), -1);
}

TEST_F(TableAsc, PastesWithAndWithoutIdentifiers) {
  const TClipboard clip{
      "c\n2\n2\nTRUE TRUE FALSE\ncolour x\n0 4 -1.5\n9 2 7\n;more\n;scales 1=Ordinal\n"
      ";categories 1 2=\"Red\" 4=\"blue\"\n;states 2 2=66\n;end\n"};
  TDataTable T;
  T.Resize(2, 3);
  T.AddNominalID(2, "RED");
  std::string events;
  recordEvents(T, events);
  TMemoryStream stream(clip.AsText);
  ASSERT_EQ(T.ReadFromASC(stream, 2, 2, false), 0);
  EXPECT_EQ(events, "Z(2,3)DCS");
  const std::string merged =
      ";more\t;what the rows do not "
      "tell\n;scales\t2=Nominal\n;categories\t2\t1=\"RED\"\t2=\"blue\"\n";
  EXPECT_EQ(bodyOf(T), "0\t0\t0\n0\t2\t-1.5\n0\t1\tNAN\n" + merged +
                           ";states\t3\t3=66\n;values\t3\t3=7\n;end\n");
  events.clear();
  ASSERT_EQ(T.ReadFromASC(clip, 1, 2, false), 0);
  EXPECT_EQ(events, "DC");
  EXPECT_EQ(bodyOf(T), "0\t0\t0\n4\t-1.5\t-1.5\n2\tNAN\tNAN\n" + merged +
                           ";states\t2\t3=66\n;states\t3\t3=66\n;values\t2\t3=7\n;values\t3\t3=7\n"
                           ";end\n");
  events.clear();
  ASSERT_EQ(T.ReadFromASC(clip, 2, 3, true), 0);
  EXPECT_EQ(events, "Z(3,3)DCSNA");
  EXPECT_EQ(
      bodyOf(T),
      "\"C-1\"\t\"colour\"\t\"x\"\n0\t0\t0\t0\n0\t4\t-1.5\t-1.5\n0\t2\t4\t-1.5\n9\t0\t2\tNAN\n"
      ";more\t;what the rows do not tell\n;scales\t2=Ordinal\n;categories\t2\t2=\"Red\"\t4="
      "\"blue\"\n;states\t3\t4=66\n;values\t3\t4=7\n;end\n");

  for (int k = 1; k <= 150; ++k) T.SetNominalID(2, k, std::string("k").append(std::to_string(k)));
  const std::string before = bodyOf(T);
  events.clear();
  EXPECT_EQ(T.ReadFromASC(clip, 2, 1000, false), -10);
  EXPECT_EQ(T.ReadFromASC(clip, 0, 1, true), -4);
  EXPECT_EQ(T.ReadFromASC(clip, 1, std::numeric_limits<int>::max(), true), -4);
  EXPECT_EQ(T.ReadFromASC("/nowhere/x.asc", 1, 1, true), -8);
  EXPECT_EQ(events + bodyOf(T), before);
}

}  // namespace
}  // namespace zel::test
