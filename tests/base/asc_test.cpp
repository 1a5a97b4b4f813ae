#include "tests/support/testing.h"
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

TEST(ReadHeaderOfASC, TakesWhatIsWrittenByProgramsAndHands) {
  const struct {
    std::string text;
    TASCHeader header;
    std::string next;  // word in the stream
  } cases[] = {
      {"Exported by ZEL TVector component: a.asc\n1\t;nr. of columns\n2\t;nr. of rows\n"
       "FALSE FALSE FALSE FALSE\t;row attributes, column names, row names, nominal variables\n"
       "       1.500\n      -2.000\n",
       {"Exported by ZEL TVector component: a.asc", 1, 2, false, false, false, false},
       "1.500"},
      {"pairs\r\n2\t;nr. of columns\r\n30\t;nr. of rows\r\n"
       "FALSE TRUE FALSE\t;row attributes, column names, row names\r\nx   y\r\n",
       {"pairs", 2, 30, false, true, false, false},
       "x"},
      {"\n +3;\n2147483647 rows\ntrue\tfalse  True TRUE",
       {"", 3, INT_MAX, true, false, true, true},
       ""},
      {" c \t\r\n0\r\n0\r\nFALSE FALSE TRUE;x", {" c \t", 0, 0, false, false, true, false}, ""}};
  for (const auto& c : cases) {
    Header h;
    std::istringstream in(c.text);
    EXPECT_EQ(h.read(in), 0);
    EXPECT_EQ(h, c.header);
    EXPECT_EQ(ReadNextWordInTextFile(in), c.next);
  }
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
      EXPECT_EQ(h, (TASCHeader{"c", line > 2 ? 1 : 0, line > 3 ? 2 : 0})) << bad;
    }
    start += good[line - 1];
  }
}

TEST(ReadHeaderOfASC, TellsFilesThatCannotBeRead) {
  const zel_test::TempDir dir;
  EXPECT_EQ(Header().read(dir.file("none")), -1);
  EXPECT_EQ(Header().read(dir.file(".")), -1);
  zel_test::writeBytes(dir.file("a"), "c\n1\n");
  EXPECT_EQ(Header().read(dir.file("a")), 3);
}

TEST(ReadNextWordInTextFile, SplitsAtBlanksAndLineEnds) {
  std::istringstream in(" a\t\tb-1\r\n\r\nc\"d ");
  for (const char* word : {"a", "b-1", "c\"d", "", ""}) EXPECT_EQ(ReadNextWordInTextFile(in), word);
  EXPECT_TRUE(in.eof());
}

/// Told at each mark that may be the last one, and behind a bare name.
TEST(ParseQuotedName, TellsWhereAReaderMayStop) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"'it''s' ", "00010011", "it's"},
      {" \t'' ", "00011", ""},
      {" 5'x\r\n", "000011", "5'x"},
      {"'a b", "0000", "a b"}};
  for (const auto& [text, stops, wanted] : cases) {
    std::string name, complete;
    TQuotedNameState state = qnsStart;
    for (const char c : std::string(text)) {
      complete += ParseQuotedName(c, '\'', name, state) ? '1' : '0';
    }
    EXPECT_EQ(complete, stops) << text;
    EXPECT_EQ(name, wanted);
  }
}

TEST(ReadQuotedName, LooksAheadAndLeavesTheRest) {
  std::istringstream in(" \"a \"\"b\"\"\"1.5 bare\tx \"\" \"open");
  const int end = std::char_traits<char>::eof();
  const std::tuple<bool, std::string, int> cases[] = {
      {true, "a \"b\"", '1'}, {true, "1.5", ' '},   {true, "bare", '\t'}, {true, "x", ' '},
      {true, "", ' '},        {false, "open", end}, {false, "", end}};
  for (const auto& [isRead, wanted, next] : cases) {
    std::string name;
    EXPECT_EQ(ReadQuotedName(in, '"', name), isRead);
    EXPECT_EQ(name, wanted);
    EXPECT_EQ(in.peek(), next) << "behind " << wanted;
  }
}

}  // namespace
}  // namespace zel
