#include <gtest/gtest.h>

#include <climits>
#include <sstream>
#include <vector>

#include "tests/base/temp_dir.h"
#include "zel/base/Zel_filesys.h"
#include "zel/base/Zel_stringl.h"

namespace zel {
namespace {

/// Reads through the form with single variables, which stands on the other.
struct Header : TASCHeader {
  Header() : TASCHeader{"before", 77, 77, true, true, true, true} {}

  template <class Source>
  int read(Source&& source) {
    return ReadHeaderOfASC(source, Comment, NCols, NRows, RowAttr, ColNames, RowNames, Nominal);
  }
  int readText(const std::string& text) {
    std::istringstream in(text);
    return read(in);
  }
};

constexpr char kVectorFile[] =
    "Exported by ZEL TVector component: a.asc\n1\t;nr. of columns\n2\t;nr. of rows\n"
    "FALSE FALSE FALSE FALSE\t;row attributes, column names, row names, nominal variables\n"
    "       1.500\n      -2.000\n";

TEST(ReadHeaderOfASC, TakesTheVariantsThatAreWritten) {
  Header h;
  std::istringstream in(kVectorFile);
  EXPECT_EQ(h.read(in), 0);
  double x = 0;
  EXPECT_TRUE(ReadNumber(in, x));
  EXPECT_EQ(x, 1.5) << "the stream stands at the data";
  EXPECT_EQ(h, (TASCHeader{"Exported by ZEL TVector component: a.asc", 1, 2, false, false, false,
                           false}));
  EXPECT_EQ(h.readText("pairs\r\n2\t;nr. of columns\r\n30\t;nr. of rows\r\n"
                       "FALSE TRUE FALSE\t;row attributes, column names, row names\r\nx   y\r\n"),
            0);
  EXPECT_EQ(h, (TASCHeader{"pairs", 2, 30, false, true, false, false}));
}

TEST(ReadHeaderOfASC, TakesHeadersWrittenByHand) {
  Header h;
  EXPECT_EQ(h.readText("\n +3;\n2147483647 rows\ntrue\tfalse  True TRUE"), 0);
  EXPECT_EQ(h, (TASCHeader{"", 3, INT_MAX, true, false, true, true}));
  EXPECT_EQ(h.readText(" c \t\r\n0\r\n0\r\nFALSE FALSE TRUE;x"), 0);
  EXPECT_EQ(h, (TASCHeader{" c \t", 0, 0, false, false, true, false}));
}

TEST(ReadHeaderOfASC, NamesTheBadLine) {
  const std::string good[] = {"c\n", "1\n", "2\n", "TRUE TRUE TRUE TRUE\n"};
  std::string start;
  for (int line = 1; line <= 4; ++line) {
    EXPECT_EQ(Header().readText(start), line) << "missing";
    for (const char* bad :
         {"-1", "+-1", "x", "", "1.5", "1e2", "2147483648", "99999999999999999999", ";1",
          "TRUE TRUE", "TRUE TRUE TRUE 1", "TRUE;TRUE TRUE"}) {
      if (line == 1) continue;  // every line is a comment
      Header h;
      EXPECT_EQ(h.readText(start + bad + "\n" + good[3]), line) << bad;
      EXPECT_EQ(h.Comment, "c");
      EXPECT_EQ(h.NCols, line > 2 ? 1 : 0);
      EXPECT_EQ(h.NRows, line > 3 ? 2 : 0);
      EXPECT_FALSE(h.RowAttr || h.ColNames || h.RowNames || h.Nominal);
    }
    start += good[line - 1];
  }
}

TEST(ReadHeaderOfASC, TellsFilesThatCannotBeRead) {
  const zel_test::TempDir dir;
  EXPECT_EQ(Header().read(dir.file("none")), -1);
  EXPECT_EQ(Header().read(dir.file(".")), -1);
  zel_test::writeBytes(dir.file("a"), "");
  EXPECT_EQ(Header().read(dir.file("a")), 1);
  zel_test::writeBytes(dir.file("a"), kVectorFile);
  EXPECT_EQ(Header().read(dir.file("a")), 0);
}

TEST(ReadNextWordInTextFile, SplitsAtBlanksAndLineEnds) {
  std::istringstream in(" a\t\tb-1\r\n\r\nc\"d ");
  for (const char* word : {"a", "b-1", "c\"d", "", ""}) EXPECT_EQ(ReadNextWordInTextFile(in), word);
  EXPECT_TRUE(in.eof());
}

/// Feeds a text to the state machine as a reader does that stops at each report.
std::vector<std::string> parsedNames(std::string_view text) {
  std::vector<std::string> names;
  std::string name;
  TQuotedNameState state = qnsStart;
  for (const char c : text) {
    if (!ParseQuotedName(c, '"', name, state)) continue;
    names.push_back(name);
    state = qnsStart;
  }
  if (state != qnsStart) names.push_back("unfinished: " + name);
  return names;
}

TEST(ParseQuotedName, ReportsQuotedAndBareNames) {
  using Names = std::vector<std::string>;
  EXPECT_EQ(parsedNames("\"a\" \"\"\t\"b  c\"\r\n\"d\""), (Names{"a", "", "b  c", "d"}));
  EXPECT_EQ(parsedNames("x   y\r\n"), (Names{"x", "y"}));
  EXPECT_EQ(parsedNames(" 5\"x \"y"), (Names{"5\"x", "unfinished: y"}));
}

TEST(ParseQuotedName, TakesADoubledMarkWhenTheReaderGoesOn) {
  std::string name;
  TQuotedNameState state = qnsStart;
  bool complete = false;
  for (const char c : std::string("'it''s'")) complete = ParseQuotedName(c, '\'', name, state);
  EXPECT_TRUE(complete);
  EXPECT_EQ(name, "it's");
  EXPECT_TRUE(ParseQuotedName(' ', '\'', name, state));
  EXPECT_EQ(name, "it's");
}

TEST(ReadQuotedName, LooksAheadAndLeavesTheRest) {
  std::istringstream in(" \"a \"\"b\"\"\"1.5 bare\tx \"\" \"open");
  std::string name;
  EXPECT_TRUE(ReadQuotedName(in, '"', name));
  EXPECT_EQ(name, "a \"b\"");
  EXPECT_EQ(ReadNextWordInTextFile(in), "1.5");
  EXPECT_TRUE(ReadQuotedName(in, '"', name));
  EXPECT_EQ(name, "bare");
  EXPECT_EQ(in.peek(), '\t');
  EXPECT_TRUE(ReadQuotedName(in, '"', name));
  EXPECT_EQ(name, "x");
  EXPECT_TRUE(ReadQuotedName(in, '"', name));
  EXPECT_EQ(name, "");
  EXPECT_FALSE(ReadQuotedName(in, '"', name));
  EXPECT_EQ(name, "open");
  EXPECT_FALSE(ReadQuotedName(in, '"', name));
}

}  // namespace
}  // namespace zel
