// The program zel, run as a user runs it: figures, texts, errors, exit status.
#include "tests/support/testing.h"
#include "tests/tools/run_zel.h"

namespace zel_test {
namespace {

class Describe : public ToolTest {
 protected:
  [[nodiscard]] JsonFields describeValues(const std::string& values,
                                          const std::string& options = "") const {
    write("x.asc", ascText(values));
    const ZelRun run = runZel("describe x.asc --json " + options);
    EXPECT_EQ(0, run.status) << run.errors;
    return JsonFields(run.output);
  }
};

// Reference values: R 4.2.2, x the column of the published table.
//   s <- sd(x); n <- length(x); d <- x - mean(x); m2 <- mean(d^2)
//   mean(x); s; s / sqrt(n); mean(d^3) / m2^1.5 * sqrt(n * (n - 1)) / (n - 2)
//   ((n + 1) * (mean(d^4) / m2^2 - 3) + 6) * (n - 1) / ((n - 2) * (n - 3)); exp(mean(log(x)))
//   quantile(x, c(.25, .5, .75), type = 6); quantile(x, c(.05, .1, .9, .95), type = 7)
//   which.min(x); which.max(x); sort(table(x)); hist(x, seq(0, 200, 10), right = FALSE)$counts
TEST_F(Describe, RealDataAsR) {
  expectFields(jsonOf("describe '" ZEL_TEST_DATA "/sunspots.asc' --json"), R"(
    n 289  missing 0  mean 48.6134948096885822  standard_deviation 39.4741026818287963
    standard_error 2.3220060401075764  skewness 1.03006523190562183
    excess_kurtosis 0.64988642293150356  minimum 0  minimum_row 12  minimum_row_name 1711
    lower_quartile 15.55  median 39  upper_quartile 68.95  percentiles/0/value 4.34
    percentiles/1/value 6.78  percentiles/2/value 104.7  percentiles/3/percent 95
    percentiles/3/value 128.9  maximum 190.2  maximum_row 258  maximum_row_name 1957  mode 5
    mode_count 5  histogram/first_edge 0  histogram/bin_width 10  histogram/counts/0 43
    histogram/counts/1 42  histogram/counts/17 0  histogram/counts/19 1)",
               2e-14);
}

// The figures are R's, as above. Guards the layout, the place of missing rows, names, marks and the
// rounding to the spread.
TEST_F(Describe, Table) {
  write("x.asc",
        "Lengths of leaves\r\n1\r\n9\r\nFALSE TRUE TRUE\r\n\"length (mm)\"\r\n"
        "a 12.5\r\n\"b c\" NAN\r\nd\t10\r\ne 11\r\nf 11\r\n\r\ng ###\r\nh 1.35e1\r\ni 13\r\nk 17");
  const ZelRun run = runZel("describe x.asc --percentiles 90,2.5 --ascii");
  EXPECT_EQ(0, run.status) << run.errors;
  EXPECT_EQ(R"(x.asc: length (mm)
Lengths of leaves

  n                    7
  missing              2
  mean                12.5714
  standard deviation   2.3171
  standard error       0.87579
  skewness             1.1810
  excess kurtosis      1.7446
  geometric mean      12.4019

  minimum             10         row 3 (d)
  2.5 %               10.15
  lower quartile      11
  median              12.5
  upper quartile      13.5
  90 %                14.9
  maximum             17         row 9 (k)
  mode                11         2 times

  Histogram: bins of width 2, lower edges shown

  10 |############################################## 3  < lower quartile
  12 |############################################## 3  < median, upper quartile
  14 | 0
  16 |############### 1
)",
            run.output);
}

// Several variables side by side, one of them without values, in blocks that fit the width.
TEST_F(Describe, TableOfSeveral) {
  write("x.csv",
        "plant,length (mm),none,a rather long name,kind\n"
        "\"Acer pseudoplatanus\",12.5,,1e-3,s\nTilia,10,NA,3e-3,s\nUlmus,11,,1e-3,t\n");
  const ZelRun run = runZel("describe x.csv --percentiles 90");
  EXPECT_EQ(0, run.status);
  EXPECT_EQ("zel: x.csv: column \"kind\" is left out: it holds text\n", run.errors);
  EXPECT_EQ(R"(x.csv: 3 variables, 3 rows

                       length (mm)  none  a rather long name
  n                        3           0          3
  missing                  0           3          0
  mean                    11.1667      –          0.0016667
  standard deviation       1.2583      –          0.0011547
  standard error           0.72648     –          0.00066667
  skewness                 –           –          –
  excess kurtosis          –           –          –
  geometric mean          11.1199      –          0.0014422

  minimum                 10           –          0.001
    in row                   Tilia     –        Acer pseu...
  lower quartile          10           –          0.001
  median                  11           –          0.001
  upper quartile          12.5         –          0.003
  90 %                    12.2         –          0.0026
  maximum                 12.5         –          0.003
    in row            Acer pseu...     –               Tilia
  mode                     –           –          0.001
    times                  –           –          2

  histogram              █  █    █     –                 █ ▄
)",
            run.output);
  const std::string one = runZel("describe x.csv --column 2 --percentiles 90").output;
  EXPECT_TRUE(one.starts_with("x.csv: length (mm)\n\n  n ")) << one;
  EXPECT_NE(std::string::npos, one.find("row 2 (Tilia)")) << one;
  const JsonFields json = jsonOf("describe --column 3,2 x.csv --json 2>&1");
  expectFields(json,
               "variables/0/name none variables/0/mean null variables/1/minimum_row_name Tilia");
}

// R 4.2.2: tapply(iris$Petal.Width, iris$Species, mean) and so on; the whole must be as without
// --by, and the bins of the parts must add up to its own.
TEST_F(Describe, ByCategory) {
  const std::string iris = "describe '" ZEL_TEST_DATA "/iris.csv' --json";
  const JsonFields by = jsonOf(iris + " --by Species");
  const JsonFields whole = jsonOf(iris);
  expectFields(by,
               "variables/3/categories/2/category virginica variables/3/categories/2/mean 2.026 "
               "variables/3/categories/2/standard_deviation 0.27465005563666739 "
               "variables/0/categories/2/minimum_row 107",
               4e-16);
  for (int v = 0; v < 4; ++v) {
    const std::string variable = "variables/" + std::to_string(v);
    for (const char* figure : {"/n", "/mean", "/skewness", "/percentiles/1/value", "/mode"}) {
      EXPECT_EQ(whole.text(variable + figure), by.text(variable + "/all" + figure));
    }
    for (int bin = 0;
         by.text(variable + "/all/histogram/counts/" + std::to_string(bin)) != "(absent)"; ++bin) {
      const std::string counts = "/histogram/counts/" + std::to_string(bin);
      double sum = 0;
      for (int k = 0; k < 3; ++k) {
        sum += by.number(variable + "/categories/" + std::to_string(k) + counts);
      }
      EXPECT_EQ(whole.number(variable + counts), sum);
    }
  }
  write("x.csv", "r,k,v,w\np,2,1,\nq,10,3,\ns,,5,7\nt,2,NA,8\n");
  const ZelRun run = runZel("describe x.csv --by k --percentiles 50 --ascii --column v");
  EXPECT_TRUE(run.output.starts_with(R"(x.csv: 1 variable by k, 4 rows
1 row without k counts in "all" only

  v

                      2  10     all
  n                   1   1  3
  missing             1   0  1
  mean                1   3  3.0000
)")) << run.output;
  EXPECT_NE(std::string::npos, run.output.find("    in row            p   q  p\n"));
  expectFailure(runZel("describe x.csv --by z"),
                "--by: x.csv has no column \"z\", but these: 2 \"k\", 3 \"v\", 4 \"w\"");
}

TEST_F(Describe, SmallSamples) {
  const std::pair<const char*, const char*> cases[] = {
      {"NAN\n###\n", "n 0 missing 2 mean null minimum_row null histogram null"},
      {"5\n", "mean 5 standard_deviation null upper_quartile 5 mode 5"},
      {"2\n4\n", "skewness null mode null mode_count 0"},
      {"0.1\n0.1\n0.1\n0.1\n0.1\n",
       "standard_deviation 0 skewness null excess_kurtosis null histogram/counts/0 5"},
      {"0\n1\n2\n", "geometric_mean null"},
      {"-1\n1\n2\n", "geometric_mean null"}};
  for (const auto& [values, fields] : cases) {
    SCOPED_TRACE(values);
    expectFields(describeValues(values), fields);
  }
  expectFields(describeValues("0\n1\n2\n3\n", "--bins 4"), "histogram/counts/3 1");
  // The usual deviation, not the 1 that the vectors' MeanVar gives by convention.
  EXPECT_DOUBLE_EQ(std::sqrt(2.0), describeValues("2\n4\n").number("standard_deviation"));
}

// Their squares leave the range of a double; the last sample also that where MinMax starts to
// search.
TEST_F(Describe, HugeAndTinyValues) {
  const JsonFields plain = describeValues("1\n2\n4\n9\n");
  for (const double size : {1e300, 1e-300}) {
    const JsonFields json = describeValues(size > 1 ? "1e300\n2e300\n4e300\n9e300\n"
                                                    : "1e-300\n2e-300\n4e-300\n9e-300\n");
    EXPECT_DOUBLE_EQ(plain.number("standard_deviation") * size, json.number("standard_deviation"));
    EXPECT_NEAR(plain.number("skewness"), json.number("skewness"), 1e-13);
    EXPECT_NEAR(plain.number("excess_kurtosis"), json.number("excess_kurtosis"), 1e-13);
  }
  const JsonFields top = describeValues("1.75e308\n1.71e308\n1.79e308\n");
  expectFields(top, "minimum 1.71e308 minimum_row 2 maximum_row 3 histogram null");
  EXPECT_EQ("null", describeValues("-1.79e308\n1.79e308\n").text("standard_deviation"));
}

TEST_F(Describe, FilesThatCannotBeRead) {
  std::filesystem::create_directory(path("d"));
  std::filesystem::create_symlink("loop", path("loop"));
  write("x.csv", "a,b\n1,2\n3,x\n");
  expectRefusals("describe",
                 {{"none.asc", "none.asc cannot be opened: No such file or directory"},
                  {"d", "d is a directory, not a data file"},
                  {"loop", "loop cannot be opened: Too many levels of symbolic links"},
                  {"- <x.csv",
                   "standard input, line 3, column \"b\": \"x\" is not a number (a missing value "
                   "is left empty "
                   "or written NA, NAN or ###)"},
                  {"- <&-", "standard input cannot be opened: Bad file descriptor"}});
}

#if !defined(__SANITIZE_ADDRESS__)  // which reserves address space without limit
TEST_F(Describe, AnnouncedSizesAreNotAllocated) {
  write("x.asc", "c\n1\n2147483647\nFALSE FALSE FALSE\n1\n");
  expectFailure(
      runZel("describe x.asc", "ulimit -v 1000000;"),
      "x.asc, line 5: the file ends here, after 1 of the 2147483647 rows announced in line 3");
  write("x.asc", "c\n2147483647\n2147483647\nFALSE FALSE FALSE\n1\n");
  expectFailure(runZel("describe x.asc", "ulimit -v 1000000;"),
                "x.asc, line 5: the row has 1 of 2147483647 values");
}
#endif

// What a file says must neither steer the terminal nor break the JSON.
TEST_F(Describe, HostileTexts) {
  write(
      "x.asc",
      "\x1b]0;owned\x07 \"q\" \\ \xff \xc3\xa9 \xe2\x80\xae\n1\n1\nFALSE TRUE TRUE\n\"\x1b[31m\"\n"
      "\"\tr\" 7\n");
  const ZelRun table = runZel("describe x.asc");
  EXPECT_EQ(0, table.status);
  EXPECT_EQ("x.asc: \\x1b[31m\n]0;owned \"q\" \\ \\xff \xc3\xa9 \\u202e\n",
            table.output.substr(0, table.output.find("\n\n") + 1));
  EXPECT_EQ(std::string::npos, table.output.find('\x1b'));
  const JsonFields json = jsonOf("describe x.asc --json");
  EXPECT_EQ("]0;owned \"q\" \\ \xef\xbf\xbd \xc3\xa9 \xe2\x80\xae", json.text("comment"));
  EXPECT_EQ("\\u0009r", json.text("maximum_row_name"));
}

TEST_F(Describe, Arguments) {
  write("x.asc", ascText("1\n2\n"));
  for (const char* list : {"abc", "101", "-1", "nan", "5,", ""}) {
    const ZelRun run = runZel(std::string("describe x.asc --percentiles '") + list + '\'');
    EXPECT_EQ(2, run.status) << list;
    EXPECT_EQ(1, std::count(run.errors.begin(), run.errors.end(), '\n')) << run.errors;
  }
  expectRefusals("",
                 {{"describe x.asc --bins 201",
                   "--bins: Value 201 not in range 1 to 200 (zel describe --help shows how)"},
                  {"describe", "FILE is required (zel describe --help shows how)"},
                  {"frobnicate", "there is no command \"frobnicate\" (zel --help lists them)"},
                  {"describe x.asc >/dev/full",
                   "the result cannot be written to standard output: No space left on device"}});
  // A list of percentiles ends at its commas and leaves the file alone.
  EXPECT_EQ(0, runZel("describe --percentiles 1,99 x.asc").status);
  EXPECT_EQ(std::string::npos, runZel("describe x.asc --no-histogram").output.find("Histogram"));
}

TEST_F(Describe, HelpTeaches) {
  const std::pair<const char*, std::vector<std::string>> commands[] = {
      {"--help", {"describe ", "correlate "}},
      {"describe --help",
       {"--column", "--percentiles", "--bins", "--no-histogram", "--plot", "--json", "--ascii",
        "Examples:", "Exit status:", "NAN", "CSV", "ASC"}},
      {"correlate --help", {"--column", "--plot", "Pearson", "CSV", "Examples:", "Exit status:"}}};
  for (const auto& [command, words] : commands) {
    const ZelRun run = runZel(command);
    EXPECT_EQ(0, run.status) << command;
    expectWords(run.output, words);
  }
  EXPECT_TRUE(runZel("--version").output.starts_with("zel "));
}

}  // namespace
}  // namespace zel_test
