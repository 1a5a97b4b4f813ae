// zel convert: nothing gets lost unless it is told; zel crosstab.
#include "tests/support/testing.h"
#include "tests/tools/run_zel.h"
#include "zel/datatable/Zel_datatable.h"

namespace zel_test {
namespace {

class Convert : public ToolTest {
 protected:
  /// What a conversion has to say.
  [[nodiscard]] std::string noteOf(const std::string& arguments) const {
    const ZelRun run = runZel("convert " + arguments);
    EXPECT_EQ(0, run.status) << arguments;
    return run.errors;
  }
};
using Crosstab = ToolTest;

TEST_F(Convert, CsvTellsWhatItLoses) {
  for (const char* file : {"iris", "airquality", "longley"}) {
    const std::string source = std::string(ZEL_TEST_DATA "/") + file + ".csv";
    EXPECT_EQ("", noteOf('\'' + source + "' x.xml"));
    EXPECT_EQ("", noteOf("x.xml x.csv"));
    EXPECT_EQ(readBytes(source), bytesOf("x.csv"));
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
    EXPECT_TRUE(table.SaveAsXMLFile(path("x.xml"), -1, ""));
    return noteOf("x.xml x.csv");
  };
  EXPECT_EQ("", lost());
  EXPECT_EQ("# a comment\n\"\",(attribute),C-1,C-2\nfirst,1,0,\"NA\"\nsecond,2,0,b\n",
            bytesOf("x.csv"));
  table.SetColAttrib(1, 3);
  table.SetCellState(1, 1, 64);
  table.SetMScaleType(1, zel::stRatio);
  EXPECT_EQ(
      "zel: x.csv cannot hold attributes of columns, scales of measurement and cell states of "
      "x.xml, which are lost\n",
      lost());
  EXPECT_EQ("", noteOf("x.xml x.asc") + noteOf("x.xml y.xml")) << "the own forms hold all";
  EXPECT_EQ("", noteOf("x.asc z.xml"));
  EXPECT_EQ(bytesOf("y.xml"), bytesOf("z.xml"));
  write("cut.csv", "n,k\na,long enough a\nb,long enough b\nc,x\n");
  EXPECT_EQ(
      "zel: the heading \"n\" of the row names is lost; texts of more than 10 bytes are cut in "
      "\"k\"\n",
      noteOf("cut.csv cut.xml"));
}

TEST_F(Convert, Options) {
  write("x.csv", "a;b\n1,25;t\n-3,5;\n");
  EXPECT_EQ("", noteOf("x.csv y.csv --decimal-comma"));
  EXPECT_EQ("a,b\n1.25,t\n-3.5,NA\n", bytesOf("y.csv"));
  EXPECT_EQ("", noteOf("- z.csv --out-decimal-comma --precision 1 <y.csv"));
  EXPECT_EQ("a;b\n1,2;t\n-3,5;NA\n", bytesOf("z.csv"));
  EXPECT_EQ("", noteOf("y.csv y.csv.xml --id some"));
  expectWords(bytesOf("y.csv.xml"), {"\"some\""});
  std::string many = "id,n\n1,x\n";
  for (int i = 0; i < 151; ++i) many += "1,t" + std::to_string(i) + '\n';
  write("many.csv", many);
  expectRefusals(
      "convert",
      {{"y.csv y.csv", "the file y.csv would replace the data file"},
       {"y.csv y.dat", "the file y.dat must have a name that ends in .csv, .asc, .txt or .xml"},
       {"y.csv none/y.xml", "the file none/y.xml was not written: No such file or directory"},
       {"y.csv y.xml --out-decimal-comma", "--out-decimal-comma: only a CSV file may have one"},
       {"many.csv y.xml",
        "many.csv, column \"n\": it has more than 150 different texts, which no column of a table "
        "can hold"}});
}

TEST_F(Crosstab, CountsAsCounted) {
  EXPECT_EQ(
      R"(m.csv: cyl (lines) by gear (columns), 32 rows

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
      runZel("crosstab m.csv cyl gear --percent row", "ln -s '" ZEL_TEST_DATA "/mtcars.csv' m.csv;")
          .output);
  // A category that has no row with both.
  write("x.csv", "a,b\n-1,p\n3,q\n3,q\n3,\n4,\n");
  expectFields(
      jsonOf("crosstab x.csv 1 b --percent total --json"),
      "missing 2 a/categories/0 -1 a/categories/2 4 b/categories/1 q counts/1/1 2 "
      "counts/1/0 0 counts/2/1 0 percent/0/0 33.333333333333333 percent/1/1 66.666666666666667",
      1e-15);
  std::string many = "x,y\n";
  for (int i = 0; i < 151; ++i) many += std::to_string(i) + ",1\n";
  write("many.csv", many);
  expectRefusals(
      "crosstab many.csv y",
      {{"x",
        "many.csv, column \"x\": it has more than 150 different values, too many for categories"},
       {"z", "B: many.csv has no column \"z\", but these: 1 \"x\", 2 \"y\""}});
}

}  // namespace
}  // namespace zel_test
