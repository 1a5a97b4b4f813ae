// Data files: what each form may look like, and the sentences for those that are wrong.
#include "tools/table_file.h"

#include "tests/support/testing.h"
#include "tools/failure.h"
#include "tools/variable.h"

namespace {

using Names = std::vector<std::string>;
using Values = std::vector<double>;
using Rows = std::vector<int>;

tool::Table read(const std::string& name, const std::string& content) {
  const zel_test::TempDir folder;
  zel_test::writeBytes(folder.file(name), content);
  return tool::readTable(folder.file(name));
}

/// What stops the reading, without the folder.
std::string failure(const std::string& name, const std::string& content,
                    const Names& columns = {}) {
  try {
    tool::chooseColumns(read(name, content), columns);
  } catch (const tool::Failure& stopped) {
    const std::string sentence = stopped.what();
    const std::size_t start = sentence.find('/');
    return sentence.substr(0, start) + sentence.substr(sentence.find(name, start));
  }
  return "none";
}

Names namesOf(const tool::Table& table) {
  Names names;
  for (const tool::Column& column : table.columns) names.push_back(column.name);
  return names;
}

Values valuesOf(const tool::Table& table, int column) {
  const auto values = table.values(static_cast<std::size_t>(column - 1));
  return {values.begin(), values.end()};
}

Names rowNamesOf(const tool::Table& table) {
  Names names;
  for (int r = 1; table.hasRowNames && r <= table.rows(); ++r) names.push_back(table.rowName(r));
  return names;
}

TEST(TableFile, Asc) {
  const tool::Table table =
      read("x.asc",
           "\xef\xbb\xbfTwo\r\n2\t;nr. of columns\r\n3\t;nr. of rows\r\nTRUE TRUE TRUE FALSE\r\n"
           "\"depth (m)\"\r\nbare\r\n1 r1 1.5\tNAN\r\n\r\n2 \"r 2\" -2 ###\r\n3 r3 +1e3 4");
  EXPECT_EQ("Two", table.comment());
  EXPECT_EQ(3, table.rows());
  EXPECT_EQ((Names{"depth (m)", "bare"}), namesOf(table));
  EXPECT_EQ((Names{"r1", "r 2", "r3"}), rowNamesOf(table));
  EXPECT_EQ((Values{1.5, -2, 1000}), valuesOf(table, 1));
  EXPECT_EQ((Values{0, 0, 4}), valuesOf(table, 2));
  EXPECT_EQ(Rows{}, table.columns[0].missingRows);
  EXPECT_EQ((Rows{1, 2}), table.columns[1].missingRows);
  EXPECT_EQ(Values{4}, variableOf(table, 1).values);
}

TEST(TableFile, Xml) {
  const tool::Table table =
      read("x",
           "<datatable><size columns='1' rows='2'/><datacells><cell ix='1' iy='1'>NAN</cell>"
           "<cell ix='1' iy='2'>5</cell></datacells></datatable>");
  EXPECT_EQ(Rows{1}, table.columns[0].missingRows);
  EXPECT_EQ(Values{5}, variableOf(table, 0).values);
}

// What the commands take from a CSV file beside the table that the library reads.
TEST(TableFile, Csv) {
  const tool::Table table =
      read("x.csv",
           "\xef\xbb\xbf# A comment\nname; x ,1 ;\"y \"\"of\"\"\nz\";kind;;empty\r\n"
           "a;1;\"2.5\";s;;\r\n\r\n\"b\n;\";NA; ### ;t;;NaN\r\nc;-3e2;4;\"\";;nan");
  EXPECT_EQ("A comment", table.comment());
  EXPECT_EQ((Names{"x ,1", "y \"of\"\nz", "kind", "", "empty"}), namesOf(table));
  EXPECT_EQ((Names{"a", "b\n;", "c"}), rowNamesOf(table));
  EXPECT_EQ("name", table.rowNameTitle);
  EXPECT_EQ((Values{1, 0, -300}), valuesOf(table, 1));
  EXPECT_EQ(Rows{2}, table.columns[0].missingRows);
  EXPECT_EQ((Rows{1, 2, 3}), table.columns[4].missingRows);
  EXPECT_EQ(6, table.columns[4].number);
  EXPECT_EQ(tool::Column::texts, table.columns[2].kind);
  EXPECT_EQ(tool::Column::nothing, table.columns[3].kind) << "neither a name nor a value";
  EXPECT_TRUE(table.isMissing(2, 3)) << "empty, in quotation marks or not";
}

// Row names are texts that all differ, or whatever differs in a column without a name; the line of
// names may lack it.
TEST(TableFile, RowNames) {
  EXPECT_EQ((Names{"1", "2"}), rowNamesOf(read("x.csv", "\"\",a\n\"1\",5\n\"2\",6\n")));
  EXPECT_EQ((Names{"p", "q"}), rowNamesOf(read("x.csv", "a b\tb\np\t5\t1\nq\t6\t2\n")));
  EXPECT_EQ((Names{"p"}), rowNamesOf(read("x.csv", "(attribute),a\np,7,5\n")));
  EXPECT_EQ(3, read("x.csv", "(attribute),a\np,7,5\n").columns[0].number);
  for (const char* none : {"k,a\ns,5\ns,6\n", "k,a\n1,5\n2,6\n", "k\ns\nt\n", ",a\n1,5\n1,6\n"}) {
    EXPECT_EQ(Names{}, rowNamesOf(read("x.csv", none))) << none;
  }
  std::string many = "key;x\n";  // more than categories, and the same when cut to their length
  for (int i = 0; i < 300; ++i) {
    many.append("a long name, number ").append(std::to_string(i)).append(";1\n");
  }
  EXPECT_EQ("a long name, number 299", rowNamesOf(read("x.csv", many)).back());
}

// The content decides; the name does where it decides nothing.
TEST(TableFile, WhichForm) {
  const std::string asc = "c\n1\n2\nFALSE TRUE FALSE\na\n7\n8\n";
  const std::string csv = "a,b\n7,1\n8,2\n";
  EXPECT_EQ((Values{7, 8}), valuesOf(read("x.csv", asc), 1));
  EXPECT_EQ(
      "x.csv, line 3: the number of rows should be here, not \"x\" (zel describe --help shows "
      "the format)",
      failure("x.csv", "c\n1 ;nr. of columns\nx\n"));
  EXPECT_EQ((Values{7, 8}), valuesOf(read("x.txt", csv), 1));
  EXPECT_EQ((Values{1, 2, 3, 4}), valuesOf(read("x", "a\n1\n2\n3\n4\n"), 1));
  EXPECT_TRUE(failure("x.ASC", csv).starts_with("x.ASC, line 2: the number of columns"));
}

TEST(TableFile, BadAscIsLocated) {
  const std::string head = "c\n1\t;columns\n20\t;rows\nFALSE FALSE FALSE FALSE\t;flags\n";
  const std::string twelve = "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n";
  const std::string format = " (zel describe --help shows the format)";
  const std::string missing = " (a missing value is written NAN or ###)";
  const std::vector<std::pair<std::string, std::string>> cases{
      {"", " is empty"},
      {head + twelve + "x\n", ", line 17: \"x\" is not a number" + missing},
      {head + twelve + "1,5\n",
       ", line 17: \"1,5\" is not a number: the decimal separator is a point"},
      {head + twelve + "1e999\n", ", line 17: \"1e999\" is too large for a double"},
      {head + twelve + "13\t14\n", ", line 17: there is more than one value: \"14\" is left over"},
      {head + twelve + std::string("1\0", 2) + '\n',
       ", line 17: there is a zero byte, so this is a binary file, not a text file"},
      {head + twelve, ", line 16: the file ends here, after 12 of the 20 rows announced in line 3"},
      {head + twelve + twelve, ", line 25: there are more than the 20 rows announced in line 3"},
      {"c\n0\n1\nFALSE FALSE FALSE\n", ", line 2: there are no columns"},
      {"c\n2\n0\nFALSE FALSE FALSE\n", ", line 3: there are no rows"},
      {"c\n2\n2\nFALSE FALSE FALSE\n1 2\n3\n", ", line 6: the row has 1 of 2 values"},
      {"c\n2\n1\nFALSE FALSE FALSE\n1 2 3\n",
       ", line 5: there are more than 2 values: \"3\" is left over"},
      {"some\ngarbled \xff text\n1\n2\n",
       ", line 2: the number of columns should be here, not \"garbled \\xff text\"" + format},
      {"c\n1\n", ", line 3: the number of rows should be here, but the file ends before it"},
      {"c\n1\n1\nFALSE FALSE MAYBE\n1\n",
       ", line 4: the flags (four words TRUE or FALSE) should be here, not \"FALSE FALSE MAYBE\"" +
           format},
      {"c\n1\n1\nFALSE TRUE FALSE\n\"a\" \"b\"\n1\n",
       ", line 5: there are more names than 1 column"},
      {"c\n3\n1\nFALSE TRUE FALSE\n\"a\" \"b\"\n\"c\n",
       ", line 6: the name of column 3 has no closing quotation mark"},
      {"c\n3\n1\nFALSE TRUE FALSE\n\"a\" \"b\"\n",
       ", line 6: the name of column 3 should be here, but the file ends before it"},
      {"c\n1\n1\nTRUE FALSE FALSE\nA 1\n",
       ", line 5: the row attribute \"A\" is not a number" + missing},
      {"c\n1\n1\nFALSE FALSE TRUE\n\"r 1\n",
       ", line 5: the name of the row is missing or has no closing quotation mark"},
      {"c\n1\n1\nFALSE FALSE TRUE\n\"r\"\n", ", line 5: the row has no value"},
      {std::string(1 << 21, 'x'),
       ", line 1: the line is longer than 1 MiB, so this is not a data file"},
  };
  for (const auto& [content, reason] : cases) {
    EXPECT_EQ("x.asc" + reason, failure("x.asc", content));
  }
}

TEST(TableFile, BadCsvIsLocated) {
  const std::string missing = " (a missing value is left empty or written NA, NAN or ###)";
  const std::vector<std::pair<std::string, std::string>> cases{
      {"\n \n", " holds nothing but blanks"},
      {"5.1,3\n4.9,2\n", ", line 1: the names of the columns should be here, not numbers"},
      {"a,b\n1,2\n\n3\n", ", line 4: the row has 1 cell, and the header line has 2"},
      {"a,b\n1,\"" + std::string(2000000, '\n'), ", line 2: a quotation mark is never closed"},
      {"a,b\n1,2\n\"3\n3\",4\n5,x\n",
       ", line 3, column \"a\": \"3\\x0a3\" is not a number" + missing},
      {"a\n1,5\n2,7\n", ", line 2: the row has 2 cells, and the header line has 1"},
      {"a;b\n1;2\n3;4\n5;6,5\n",
       ", line 4, column \"b\": \"6,5\" is not a number: the decimal separator is a point"},
      {"a,b\n1,1e999\n2,3\n", ", line 2, column \"b\": \"1e999\" is too large for a double"},
      {"a,b\ns,t\ns,v\n", ", line 2, column \"a\": \"s\" is not a number" + missing},
      {"a,b\ns,\nt,\n", "none"},
      {"a,\ns,\nt,\n", " has no column of numbers"},
  };
  for (const auto& [content, reason] : cases) {
    const std::string expected = reason == "none" ? reason : "x.csv" + reason;
    EXPECT_EQ(expected, failure("x.csv", content)) << content.substr(0, 40);
  }
}

TEST(TableFile, ChoiceOfColumns) {
  const std::string content =
      "site,a,a,7,\"x,y\",kind,\nA,1,2,3,4,s,1\nB,1,2,3,4,s,x\nC,1,2,3,4,t,2\n";
  const tool::Table table = read("x.csv", content);
  const auto chosen = [&](const Names& wanted) { return chooseColumns(table, wanted).columns; };
  using Positions = std::vector<std::size_t>;
  EXPECT_EQ((Positions{3, 2, 0}), chosen({"x,y", "7,2,5"}));  // a name goes before a number
  EXPECT_EQ("--column: x.csv has 2 columns with the name \"a\"; choose by number",
            failure("x.csv", content, {"a"}));
  EXPECT_EQ("--column: x.csv has no column \"z\", but these: 2 \"a\", 3 \"a\", 4 \"7\", 5 \"x,y\"",
            failure("x.csv", content, {"2,z"}));
  for (const char* wrong : {"", "0", "8", "2,", "site"}) {
    EXPECT_TRUE(failure("x.csv", content, {wrong}).starts_with("--column: x.csv has no column"));
  }
  EXPECT_TRUE(
      failure("x.csv", content, {"6"}).starts_with("x.csv, line 2, column \"kind\": \"s\""));
  // A word among numbers stops only those who need the column.
  EXPECT_TRUE(
      failure("x.csv", content).starts_with("x.csv, line 3, column 7: \"x\" is not a number"));
  const tool::Table iris = tool::readTable(ZEL_TEST_DATA "/iris.csv");
  EXPECT_EQ(iris.source + ": column \"Species\" is left out: it holds text",
            chooseColumns(iris, {}).note);
  EXPECT_EQ("", chooseColumns(iris, {"1"}).note);
}

}  // namespace
