// Tables as delimited text: what others write, round trips, and what cannot be read.
#include "tests/datatable/tables.h"
#include "tests/support/testing.h"
#include "zel/datatable/Zel_datatable.h"

namespace zel::test {
namespace {

using TableCsv = zel_test::InFolder;

/// Reads a text with a header; the code, with what is wrong behind it.
std::string import(TDataTable& T, std::string_view text, TCSVDelimiters delimiter = cdComma,
                   bool rowNames = false, TDecPSep separator = dpsPoint, bool header = true) {
  std::istringstream stream{std::string(text)};
  TCSVImport how{.Delimiter = delimiter,
                 .IncludeColHeaders = header,
                 .IncludeRowHeaders = rowNames,
                 .DecSep = separator};
  const int code = T.ImportFromCSV(stream, how);
  return code == 0 ? "" : std::to_string(code) + " " + how.Message;
}

/// Names, and cells as one sees them: categories in apostrophes, a dash for those without a value.
std::string seen(const TDataTable& T) {
  std::ostringstream out;
  for (int c = 1; c <= T.NrOfColumns(); ++c) out << T.GetColName(c).view() << '|';
  for (int r = 1; r <= T.NrOfRows(); ++r) {
    out << ' ' << T.GetRowName(r).view() << ':';
    for (int c = 1; c <= T.NrOfColumns(); ++c) {
      const TMScaleType scale = T.GetMScaleType(c);
      EXPECT_TRUE(scale == stNominal || scale == stInterval);
      EXPECT_EQ(T.GetCellState(c, r), T.GetIsEmpty(c, r) ? 2 : 0);
      if (T.GetIsEmpty(c, r)) {
        out << " -" << (T(c, r) == 0 ? "" : "?");
      } else if (scale == stNominal) {
        out << " '" << T.GetElemNominal(c, r).view() << '\'';
      } else {
        out << ' ' << T(c, r);
      }
    }
  }
  return out.str();
}

TEST_F(TableCsv, ReadsWhatOthersWrite) {
  TDataTable T;
  EXPECT_EQ(import(T,
                   "\xEF\xBB\xBFname, \"x, \"\"y\"\"\"\t,z\r\n\r\n 1,2.5e3 ,b\r\n-.5,NA,\"two\r\n"
                   "lines\"\r\n+3,###,b\r\nnan,,NA"),
            "");
  EXPECT_EQ(seen(T),
            "name|x, \"y\"|z| R-1: 1 2500 'b' R-2: -0.5 - 'two\r\nlines' R-3: 3 - 'b' R-4: - - -");
  EXPECT_EQ(import(T, "a;b\n1,5;-2\n", cdDetect, false, dpsComma), "");
  EXPECT_EQ(seen(T), "a|b| R-1: 1.5 -2");
  EXPECT_EQ(import(T, "a\tb\nn1\t1\t\n", cdTab, true), "") << "the header lacks the first cell";
  EXPECT_EQ(seen(T), "a|b| n1: 1 -");
  EXPECT_EQ(import(T, "1,inf\n\"2\",-INF\n", cdComma, false, dpsPoint, false), "");
  EXPECT_EQ(seen(T), "C-1|C-2| R-1: 1 inf R-2: 2 -inf") << "numbers in quotation marks";
  // Texts that are cut stay apart and whole; nothing in quotation marks is missing.
  EXPECT_EQ(import(T,
                   "s\nIris-versicolor\nIris-versiform\n\"NA\"\n1e999\n"
                   "\xE6\xB5\xB7\xE6\xB5\xB7\xE6\xB5\xB7\xE6\xB5\xB7\n\"\"\n"),
            "");
  EXPECT_EQ(seen(T),
            "s| R-1: 'Iris-versi' R-2: 'Iris-ver~2' R-3: 'NA' R-4: '1e999' "
            "R-5: '\xE6\xB5\xB7\xE6\xB5\xB7\xE6\xB5\xB7' R-6: -");
}

TEST_F(TableCsv, WhatCannotBeReadLeavesTheTable) {
  TDataTable T;
  T.Resize(2, 2);
  T.SetElem(1, 2, 7);
  T.SetMScaleType(2, stOrdinal);
  TDataTable Before;
  Before.CopyContentsFrom(&T);
  T.OnChange = T.OnChangeSetup = [](TObject*) { FAIL() << "nothing has changed"; };
  std::string many = "\"c\"\n";
  for (int k = 0; k < 151; ++k) many.append("w").append(std::to_string(k)).append("\n");
  const std::pair<std::string, const char*> cases[] = {
      {"", "-2 there is nothing but blanks"},
      {"a,b\n\n", "-2 line 1: there are no rows after the header line"},
      {"a,b\n1,2\n\n3\n", "-3 line 4: the row has 1 cell, and the header line has 2"},
      {"a\n1,2\n", "-3 line 2: the row has 2 cells, and the header line has 1"},
      {"a,b\n1,\"x\ny\n", "-4 line 2: a quotation mark is never closed"},
      {"a,b\n1,\"x\" y\n", "-4 line 2: there is more after a closing quotation mark"},
      {many, "-5 the column c has more than 150 different texts"},
      {"(attribute),a\n1.5,2\n", "-6 line 2: the row attribute is not an integer"},
      {"(attribute)\n1\n", "-2 there are no columns of data"}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(import(T, text), expected);
  std::string message;
  EXPECT_EQ(T.ImportFromCSV("/nowhere/x.csv", cdComma, true, true), -1);
  T.OnChange = T.OnChangeSetup = nullptr;
  expectIdentical(T, Before);
  many.resize(many.rfind("w150"));
  EXPECT_EQ(import(T, many), "");
  EXPECT_EQ(T.CountNominalIDs(1), 150);
}

TEST_F(TableCsv, ReportsWhatItSkips) {
  std::string text = "id,mixed,late,x\n\n";
  for (int k = 0; k < 200; ++k) {
    const std::string number = std::to_string(k);
    text.append("w").append(number).append(k == 7 ? ",1o5," : "," + number + ",");
    text.append(k < 100 ? number : "big").append(",").append(number).append("\n");
  }
  TDataTable T;
  TCSVImport import;
  import.SkipLongTexts = true;
  std::istringstream stream(text);
  ASSERT_EQ(T.ImportFromCSV(stream, import), 0) << import.Message;
  EXPECT_EQ(import.RowLines.front(), 3);
  EXPECT_EQ(import.RowLines.back(), 202);
  ASSERT_EQ(import.Texts.size(), 3U);
  EXPECT_TRUE(import.Texts[0].IsSkipped && import.Texts[0].Numbers == 0);
  EXPECT_TRUE(import.Texts[1].IsSkipped && import.Texts[1].Numbers > import.Texts[1].Words);
  EXPECT_EQ(import.Texts[1].Column, 2);
  EXPECT_EQ(import.Texts[1].Line, 10);
  EXPECT_EQ(import.Texts[1].Word, "1o5");
  EXPECT_TRUE(!import.Texts[2].IsSkipped && !import.Texts[2].IsCut);
  EXPECT_EQ(import.Texts[2].Words, 100);
  EXPECT_EQ(T.CountMarkedCellsInColumn(2, 2), 200);
  EXPECT_EQ(T.GetMScaleType(2), stUnknown);
  EXPECT_EQ(T.GetElemNominal(3, 8), "7") << "numbers in front of texts are texts";
  EXPECT_EQ(T.GetElemNominal(3, 200), "big");
  EXPECT_EQ(T(4, 200), 199);
}

TEST_F(TableCsv, RoundTrips) {
  std::mt19937_64 random(5);
  const std::string_view names[] = {"",  " a ",         "x,y",      "\"", "1;2\t3", "two\nlines",
                                    "#", "(attribute)", "\xC3\xA4", "NA", "12"};
  for (int trial = 0; trial < 60; ++trial) {
    TDataTable T;
    T.Resize(static_cast<int>(random() % 5) + 1, static_cast<int>(random() % 9) + 1);
    const int columns = T.NrOfColumns(), rows = T.NrOfRows();
    T.SetFComment("A comment, \"quoted\"");
    for (int r = 1; r <= rows; ++r) {
      T.SetRowName(r, names[random() % std::size(names)]);
      T.SetRowAttrib(r, static_cast<int>(random()));
    }
    for (int c = 1; c <= columns; ++c) {
      T.SetColName(c, names[random() % std::size(names)]);
      const bool isText = c % 3 == 0;
      if (isText) T.SetMScaleType(c, stNominal);
      for (int r = 1; r <= rows; ++r) {
        if (random() % 5 == 0) {
          T.SetIsEmpty(c, r, true);
        } else if (isText) {
          T.SetElemNominal(c, r, std::string("k ").append(1, static_cast<char>(random() % 256)));
        } else {
          const double x =
              std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 2000) - 1060);
          T.SetElem(c, r, random() % 9 == 0 ? -std::numeric_limits<double>::infinity() : x);
        }
      }
      // A column without any text would come back as numbers.
      if (isText && T.CountNominalIDs(c) == 0) T.SetMScaleType(c, stInterval);
    }
    const auto delimiter = static_cast<TCSVDelimiters>(trial % 3);
    const TDecPSep separator = trial % 2 == 0 ? dpsPoint : dpsComma;
    const bool hasAttributes = trial % 4 != 3;
    if (!hasAttributes) T.SetRowAttributes(0);
    if (trial % 8 == 3) T.SetColName(1, "(attribute)");  // is none
    const std::string file = path("x.csv");
    ASSERT_TRUE(T.ExportAsCSV(file, -1, delimiter, true, true, hasAttributes, true, separator));
    TDataTable Read;
    std::string message;
    ASSERT_EQ(Read.ImportFromCSV(file, delimiter, true, true, separator, message), 0)
        << message << '\n'
        << bytesOf("x.csv");
    expectIdentical(Read, T);
  }
}

TEST_F(TableCsv, WritesAllOrNothing) {
  TDataTable T;
  T.SetElem(1, 1, 1.25);
  const std::string file = path("x.csv");
  ASSERT_TRUE(T.ExportAsCSV(file, 1, cdDetect, false, false));
  EXPECT_EQ(bytesOf("x.csv"), "1.2\n");
  ASSERT_TRUE(T.ExportAsCSV(file, -1, cdComma, true, true, false, false, dpsComma));
  EXPECT_EQ(bytesOf("x.csv"), "\"\",C-1\nR-1,\"1,25\"\n");
  EXPECT_FALSE(T.ExportAsCSV("/nowhere/x.csv", -1, cdComma, true, true));
  EXPECT_FALSE(T.ExportAsCSV("/dev/full", -1, cdComma, true, true));
}

}  // namespace
}  // namespace zel::test
