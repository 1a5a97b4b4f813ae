// zel convert: nothing gets lost unless it is told; zel crosstab: counts against a slow count.

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <utility>

#include "tests/datatable/tables.h"
#include "tests/tools/json_fields.h"
#include "tests/tools/run_zel.h"
#include "tools/table_file.h"

namespace zel_test {
namespace {

/// What a conversion has to say.
std::string noteOf(const TempDir& folder, const std::string& arguments) {
  const ZelRun run = runZel(folder, "convert " + arguments);
  EXPECT_EQ(0, run.status) << arguments;
  return run.errors;
}

TEST(Convert, RoundTripsKeepAll) {
  std::mt19937_64 random(7);
  for (int trial = 0; trial < 40; ++trial) {
    zel::TDataTable table;
    zel::test::makeRandom(table, random);
    const TempDir folder;
    ASSERT_TRUE(table.SaveAsXMLFile(folder.file("a.xml"), -1, "id"));
    EXPECT_EQ("", noteOf(folder, "a.xml b.asc"));
    EXPECT_EQ("", noteOf(folder, "b.asc c.xml"));
    zel::test::expectIdentical(table, *tool::readTable(folder.file("c.xml")).data);
  }
}

TEST(Convert, CsvTellsWhatItLoses) {
  const TempDir folder;
  for (const char* file : {"iris", "airquality", "longley"}) {
    const std::string source = std::string(ZEL_TEST_DATA "/") + file + ".csv";
    EXPECT_EQ("", noteOf(folder, '\'' + source + "' x.xml"));
    EXPECT_EQ("", noteOf(folder, "x.xml x.csv"));
    EXPECT_EQ(readBytes(source), readBytes(folder.file("x.csv")));
  }
  // What the form has room for: a comment, row names and attributes, categories like other words.
  zel::TDataTable table;
  table.Resize(2, 2);
  table.SetFComment("a comment");
  for (int r = 1; r <= 2; ++r) {
    table.SetRowName(r, r == 1 ? "first" : "second");
    table.SetRowAttrib(r, r);
    table.SetElemNominal(2, r, "");
  }
  table.SetMScaleType(2, zel::stNominal);
  table.SetElemNominal(2, 1, "NA");
  table.SetElemNominal(2, 2, "b");
  const auto lost = [&] {
    EXPECT_TRUE(table.SaveAsXMLFile(folder.file("x.xml"), -1, ""));
    return noteOf(folder, "x.xml x.csv");
  };
  EXPECT_EQ("", lost());
  EXPECT_EQ("# a comment\n\"\",(attribute),C-1,C-2\nfirst,1,0,\"NA\"\nsecond,2,0,b\n",
            readBytes(folder.file("x.csv")));
  table.SetColAttrib(1, 3);
  table.SetCellState(1, 1, 64);
  table.SetMScaleType(1, zel::stRatio);
  EXPECT_EQ(
      "zel: x.csv cannot hold attributes of columns, scales of measurement and cell states of "
      "x.xml, which are lost\n",
      lost());
  writeBytes(folder.file("cut.csv"), "n,k\na,long enough a\nb,long enough b\nc,x\n");
  EXPECT_EQ(
      "zel: the heading \"n\" of the row names is lost; texts of more than 10 bytes are cut in "
      "\"k\"\n",
      noteOf(folder, "cut.csv cut.xml"));
}

TEST(Convert, Options) {
  const TempDir folder;
  writeBytes(folder.file("x.csv"), "a;b\n1,25;t\n-3,5;\n");
  EXPECT_EQ("", noteOf(folder, "x.csv y.csv --decimal-comma"));
  EXPECT_EQ("a,b\n1.25,t\n-3.5,NA\n", readBytes(folder.file("y.csv")));
  EXPECT_EQ("", noteOf(folder, "- z.csv --out-decimal-comma --precision 1 <y.csv"));
  EXPECT_EQ("a;b\n1,2;t\n-3,5;NA\n", readBytes(folder.file("z.csv")));
  EXPECT_EQ("", noteOf(folder, "y.csv y.csv.xml --id some"));
  expectWords(readBytes(folder.file("y.csv.xml")), {"\"some\""});
  std::string many = "id,n\n1,x\n";
  for (int i = 0; i < 151; ++i) many += "1,t" + std::to_string(i) + '\n';
  writeBytes(folder.file("many.csv"), many);
  expectRefusals(
      folder, "convert",
      {{"y.csv y.csv", "the file y.csv would replace the data file"},
       {"y.csv y.dat", "the file y.dat must have a name that ends in .csv, .asc, .txt or .xml"},
       {"y.csv none/y.xml", "the file none/y.xml was not written: No such file or directory"},
       {"y.csv y.xml --out-decimal-comma", "--out-decimal-comma: only a CSV file may have one"},
       {"many.csv y.xml",
        "many.csv, column \"n\": it has more than 150 different texts, which no column of a table "
        "can hold"}});
}

TEST(Crosstab, CountsAsCounted) {
  const TempDir folder;
  EXPECT_EQ(R"(m.csv: cyl (lines) by gear (columns), 32 rows

        3   4  5  all
  4     1   8  2   11
  6     2   4  1    7
  8    12   0  2   14
  all  15  12  5   32

  Percent of the row

          3     4     5    all
  4     9.1  72.7  18.2  100.0
  6    28.6  57.1  14.3  100.0
  8    85.7   0.0  14.3  100.0
  all  46.9  37.5  15.6  100.0
)",
            runZel(folder, "crosstab m.csv cyl gear --percent row",
                   "ln -s '" ZEL_TEST_DATA "/mtcars.csv' m.csv;")
                .output);
  std::mt19937 random(3);
  std::string rows = "a,b\n";
  std::map<std::pair<int, char>, int> counts;
  int missing = 0;
  for (int i = 0; i < 500; ++i) {
    const int a = static_cast<int>(random() % 7) - 3;
    const char b = "pqrs "[random() % 5];
    rows.append(std::to_string(a)).append(",").append(1, b).append("\n");
    b == ' ' ? ++missing : ++counts[{a, b}];
  }
  // A category that has no row with both.
  ++missing;
  writeBytes(folder.file("x.csv"), rows + "4,\n");
  const JsonFields json(runZel(folder, "crosstab x.csv 1 b --percent total --json").output);
  EXPECT_EQ(std::to_string(missing), json.text("missing"));
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(std::to_string(i - 3), json.text("a/categories/" + std::to_string(i)));
    for (int j = 0; j < 4; ++j) {
      const char b = json.text("b/categories/" + std::to_string(j))[0];
      const std::string cell = '/' + std::to_string(i) + '/' + std::to_string(j);
      EXPECT_EQ((counts[{i - 3, b}]), json.number("counts" + cell));
      EXPECT_DOUBLE_EQ((100.0 * counts[{i - 3, b}] / (501 - missing)),
                       json.number("percent" + cell));
    }
  }
  std::string many = "x,y\n";
  for (int i = 0; i < 151; ++i) many += std::to_string(i) + ",1\n";
  writeBytes(folder.file("many.csv"), many);
  expectRefusals(
      folder, "crosstab many.csv y",
      {{"x",
        "many.csv, column \"x\": it has more than 150 different values, too many for categories"},
       {"z", "B: many.csv has no column \"z\", but these: 1 \"x\", 2 \"y\""}});
}

}  // namespace
}  // namespace zel_test
