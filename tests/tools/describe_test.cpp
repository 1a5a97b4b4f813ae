// The program zel, run as a user runs it: figures, texts, errors, exit status.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "tests/tools/json_fields.h"
#include "tests/tools/run_zel.h"

namespace {

using zel_test::ascText;
using zel_test::JsonFields;
using zel_test::readBytes;
using zel_test::runZel;
using zel_test::TempDir;
using zel_test::writeBytes;
using zel_test::ZelRun;

const std::string kData = ZEL_TEST_DATA;

JsonFields describeValues(const std::string& values, const std::string& options = "") {
  const TempDir folder;
  writeBytes(folder.file("x.asc"), ascText(values));
  const ZelRun run = runZel(folder, "describe x.asc --json " + options);
  EXPECT_EQ(0, run.status) << run.errors;
  return JsonFields(run.output);
}

/// The program failed with one line on standard error and printed nothing else.
void expectFailure(const ZelRun& run, const std::string& sentence) {
  EXPECT_EQ(2, run.status) << sentence;
  EXPECT_EQ("zel: " + sentence + '\n', run.errors);
  EXPECT_EQ("", run.output);
}

// Reference values: R 4.2.2, x the column of the published table.
//   s <- sd(x); n <- length(x); d <- x - mean(x); m2 <- mean(d^2)
//   mean(x); s; s / sqrt(n); mean(d^3) / m2^1.5 * sqrt(n * (n - 1)) / (n - 2)
//   ((n + 1) * (mean(d^4) / m2^2 - 3) + 6) * (n - 1) / ((n - 2) * (n - 3)); exp(mean(log(x)))
//   quantile(x, c(.25, .5, .75), type = 6); quantile(x, c(.05, .1, .9, .95), type = 7)
//   which.min(x); which.max(x); sort(table(x)); hist(x, seq(0, 200, 10), right = FALSE)$counts
using Reference = std::vector<std::pair<const char*, double>>;
void expectFigures(const std::string& file, const Reference& reference) {
  const TempDir folder;
  const ZelRun run = runZel(folder, "describe '" + kData + '/' + file + "' --json");
  ASSERT_EQ(0, run.status) << run.errors;
  const JsonFields json(run.output);
  for (const auto& [path, value] : reference) {
    EXPECT_NEAR(value, json.number(path), 2e-14 * std::abs(value)) << path << json.text(path);
  }
}

TEST(Describe, SunspotsAsR) {
  expectFigures("sunspots.asc", {{"n", 289},
                                 {"missing", 0},
                                 {"mean", 48.6134948096885822},
                                 {"standard_deviation", 39.4741026818287963},
                                 {"standard_error", 2.3220060401075764},
                                 {"skewness", 1.03006523190562183},
                                 {"excess_kurtosis", 0.64988642293150356},
                                 {"minimum", 0},
                                 {"minimum_row", 12},
                                 {"minimum_row_name", 1711},
                                 {"lower_quartile", 15.55},
                                 {"median", 39},
                                 {"upper_quartile", 68.95},
                                 {"percentiles/0/value", 4.34},
                                 {"percentiles/1/value", 6.78},
                                 {"percentiles/2/value", 104.7},
                                 {"percentiles/3/percent", 95},
                                 {"percentiles/3/value", 128.9},
                                 {"maximum", 190.2},
                                 {"maximum_row", 258},
                                 {"maximum_row_name", 1957},
                                 {"mode", 5},
                                 {"mode_count", 5},
                                 {"histogram/first_edge", 0},
                                 {"histogram/bin_width", 10},
                                 {"histogram/counts/0", 43},
                                 {"histogram/counts/1", 42},
                                 {"histogram/counts/17", 0},
                                 {"histogram/counts/19", 1}});
}

TEST(Describe, OldFaithfulAsR) {
  expectFigures("faithful_waiting.asc", {{"n", 272},
                                         {"mean", 70.89705882352940591},
                                         {"standard_deviation", 13.59497378999939698},
                                         {"standard_error", 0.82431636637751704},
                                         {"skewness", -0.41863094909479143},
                                         {"excess_kurtosis", -1.14152880316017602},
                                         {"geometric_mean", 69.490842740560339},
                                         {"minimum_row", 265},
                                         {"lower_quartile", 58},
                                         {"median", 76},
                                         {"upper_quartile", 82},
                                         {"maximum_row", 149},
                                         {"mode", 78},
                                         {"mode_count", 15},
                                         {"histogram/first_edge", 40},
                                         {"histogram/counts/0", 1},
                                         {"histogram/counts/8", 57},
                                         {"histogram/counts/11", 1}});
}

// The figures are R's, as above. Guards the layout, the place of missing rows, names, marks and the
// rounding to the spread.
TEST(Describe, Table) {
  const TempDir folder;
  writeBytes(
      folder.file("x.asc"),
      "Lengths of leaves\r\n1\r\n9\r\nFALSE TRUE TRUE\r\n\"length (mm)\"\r\n"
      "a 12.5\r\n\"b c\" NAN\r\nd\t10\r\ne 11\r\nf 11\r\n\r\ng ###\r\nh 1.35e1\r\ni 13\r\nk 17");
  const ZelRun run = runZel(folder, "describe x.asc --percentiles 90,2.5 --ascii");
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

TEST(Describe, SmallSamples) {
  const JsonFields none = describeValues("NAN\n###\n");
  EXPECT_EQ("0", none.text("n"));
  EXPECT_EQ("2", none.text("missing"));
  EXPECT_EQ("null", none.text("mean"));
  EXPECT_EQ("null", none.text("minimum_row"));
  EXPECT_EQ("null", none.text("histogram"));
  EXPECT_EQ("0", describeValues("").text("n"));

  const JsonFields one = describeValues("5\n");
  EXPECT_EQ("5", one.text("mean"));
  EXPECT_EQ("null", one.text("standard_deviation"));
  EXPECT_EQ("5", one.text("upper_quartile"));
  EXPECT_EQ("5", one.text("mode"));

  // The usual deviation, not the 1 that the vectors' MeanVar gives by convention.
  const JsonFields two = describeValues("2\n4\n");
  EXPECT_DOUBLE_EQ(std::sqrt(2.0), two.number("standard_deviation"));
  EXPECT_EQ("null", two.text("skewness"));
  EXPECT_EQ("null", two.text("mode"));
  EXPECT_EQ("0", two.text("mode_count"));
  EXPECT_DOUBLE_EQ(1, describeValues("1\n2\n3\n").number("standard_deviation"));

  const JsonFields constant = describeValues("0.1\n0.1\n0.1\n0.1\n0.1\n");
  EXPECT_EQ("0", constant.text("standard_deviation"));
  EXPECT_EQ("null", constant.text("skewness"));
  EXPECT_EQ("null", constant.text("excess_kurtosis"));
  EXPECT_EQ("5", constant.text("histogram/counts/0"));

  EXPECT_EQ("null", describeValues("0\n1\n2\n").text("geometric_mean"));
  EXPECT_EQ("null", describeValues("-1\n1\n2\n").text("geometric_mean"));
}

// Their squares leave the range of a double; the last sample also that where MinMax starts to
// search.
TEST(Describe, HugeAndTinyValues) {
  for (const double size : {1e300, 1e-300}) {
    const JsonFields json = describeValues(size > 1 ? "1e300\n2e300\n4e300\n9e300\n"
                                                    : "1e-300\n2e-300\n4e-300\n9e-300\n");
    const JsonFields plain = describeValues("1\n2\n4\n9\n");
    EXPECT_DOUBLE_EQ(plain.number("standard_deviation") * size, json.number("standard_deviation"));
    EXPECT_NEAR(plain.number("skewness"), json.number("skewness"), 1e-13);
    EXPECT_NEAR(plain.number("excess_kurtosis"), json.number("excess_kurtosis"), 1e-13);
  }
  const JsonFields top = describeValues("1.75e308\n1.71e308\n1.79e308\n");
  EXPECT_EQ("1.71e+308", top.text("minimum"));
  EXPECT_EQ("2", top.text("minimum_row"));
  EXPECT_EQ("3", top.text("maximum_row"));
  EXPECT_EQ("null", top.text("histogram"));
  EXPECT_EQ("null", describeValues("-1.79e308\n1.79e308\n").text("standard_deviation"));
}

TEST(Describe, BadContentIsLocated) {
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
      {head + twelve + "0x1F", ", line 17: \"0x1F\" is not a number" + missing},
      {head + twelve + "13\t14\n", ", line 17: there is more than one value: \"14\" is left over"},
      {head + twelve + "\x1b[2J\n", ", line 17: \"\\x1b[2J\" is not a number" + missing},
      {head + twelve + std::string("1\0", 2) + '\n',
       ", line 17: there is a zero byte, so this is a binary file, not a text file"},
      {head + twelve, ", line 16: the file ends here, after 12 of the 20 rows announced in line 3"},
      {head + twelve + twelve, ", line 25: there are more than the 20 rows announced in line 3"},
      {"c\n2\n1\nFALSE FALSE FALSE\n1 2\n",
       ", line 2: there are 2 columns, and this command takes a file of one"},
      {"some\ngarbled \xff text\n1\n2\n",
       ", line 2: the number of columns should be here, not \"garbled \\xff text\"" + format},
      {"c\n1\n99999999999\t;rows\nFALSE FALSE FALSE\n1\n",
       ", line 3: the number of rows should be here, not \"99999999999\"" + format},
      {"c\n1\n", ", line 3: the number of rows should be here, but the file ends before it"},
      {"c\n1\n1\nFALSE FALSE MAYBE\n1\n",
       ", line 4: the flags (four words TRUE or FALSE) should be here, not \"FALSE FALSE MAYBE\"" +
           format},
      {"c\n1\n1\nFALSE TRUE FALSE\n\"a\" \"b\"\n1\n",
       ", line 5: there is more than the name of one column"},
      {"c\n1\n1\nTRUE FALSE FALSE\nA 1\n",
       ", line 5: the row attribute \"A\" is not a number" + missing},
      {"c\n1\n1\nFALSE FALSE TRUE\n\"r 1\n",
       ", line 5: the name of the row is missing or has no closing quotation mark"},
      {"c\n1\n1\nFALSE FALSE TRUE\n\"r\"\n", ", line 5: the row has no value"},
      {std::string(1 << 21, 'x'),
       ", line 1: the line is longer than 1 MiB, so this is not a data file"},
  };
  const TempDir folder;
  for (const auto& [content, reason] : cases) {
    writeBytes(folder.file("x.asc"), content);
    expectFailure(runZel(folder, "describe x.asc"), "x.asc" + reason);
  }
  expectFailure(runZel(folder, "describe - <x.asc"), "standard input" + cases.back().second);
}

TEST(Describe, FilesThatCannotBeRead) {
  const TempDir folder;
  std::filesystem::create_directory(folder.file("d"));
  std::filesystem::create_symlink("loop", folder.file("loop"));
  expectFailure(runZel(folder, "describe none.asc"),
                "none.asc cannot be opened: No such file or directory");
  expectFailure(runZel(folder, "describe d"), "d is a directory, not a data file");
  expectFailure(runZel(folder, "describe loop"),
                "loop cannot be opened: Too many levels of symbolic links");
  expectFailure(runZel(folder, "describe - <&-"),
                "standard input cannot be opened: Bad file descriptor");
  if (::geteuid() != 0) {
    writeBytes(folder.file("secret"), ascText("1\n"));
    std::filesystem::permissions(folder.file("secret"), std::filesystem::perms::none);
    expectFailure(runZel(folder, "describe secret"), "secret cannot be opened: Permission denied");
  }
}

#if !defined(__SANITIZE_ADDRESS__)  // which reserves address space without limit
TEST(Describe, AnnouncedRowsAreNotAllocated) {
  const TempDir folder;
  writeBytes(folder.file("x.asc"), "c\n1\n2147483647\nFALSE FALSE FALSE\n1\n");
  expectFailure(
      runZel(folder, "describe x.asc", "ulimit -v 1000000;"),
      "x.asc, line 5: the file ends here, after 1 of the 2147483647 rows announced in line 3");
}
#endif

// What a file says must neither steer the terminal nor break the JSON.
TEST(Describe, HostileTexts) {
  const TempDir folder;
  writeBytes(
      folder.file("x.asc"),
      "\x1b]0;owned\x07 \"q\" \\ \xff \xc3\xa9 \xe2\x80\xae\n1\n1\nFALSE TRUE TRUE\n\"\x1b[31m\"\n"
      "\"\tr\" 7\n");
  const ZelRun table = runZel(folder, "describe x.asc");
  EXPECT_EQ(0, table.status);
  EXPECT_EQ("x.asc: \\x1b[31m\n\\x1b]0;owned\\x07 \"q\" \\ \\xff \xc3\xa9 \\u202e\n",
            table.output.substr(0, table.output.find("\n\n") + 1));
  EXPECT_EQ(std::string::npos, table.output.find('\x1b'));
  const JsonFields json(runZel(folder, "describe x.asc --json").output);
  EXPECT_EQ("\\u001b]0;owned\\u0007 \"q\" \\ \xef\xbf\xbd \xc3\xa9 \xe2\x80\xae",
            json.text("comment"));
  EXPECT_EQ("\\u0009r", json.text("maximum_row_name"));
}

TEST(Describe, Arguments) {
  const TempDir folder;
  writeBytes(folder.file("x.asc"), ascText("1\n2\n"));
  for (const char* list : {"abc", "101", "-1", "nan", "5,", ""}) {
    const ZelRun run = runZel(folder, std::string("describe x.asc --percentiles '") + list + '\'');
    EXPECT_EQ(2, run.status) << list;
    EXPECT_EQ(1, std::count(run.errors.begin(), run.errors.end(), '\n')) << run.errors;
  }
  expectFailure(runZel(folder, "describe x.asc --bins 201"),
                "--bins: Value 201 not in range 1 to 200 (zel describe --help shows how)");
  expectFailure(runZel(folder, "describe"), "FILE is required (zel describe --help shows how)");
  expectFailure(runZel(folder, "frobnicate"),
                "there is no command \"frobnicate\" (zel --help lists them)");
  // A list of percentiles ends at its commas and leaves the file alone.
  EXPECT_EQ(0, runZel(folder, "describe --percentiles 1,99 x.asc").status);
  EXPECT_EQ(std::string::npos,
            runZel(folder, "describe x.asc --no-histogram").output.find("Histogram"));

  expectFailure(runZel(folder, "describe x.asc >/dev/full"),
                "the result cannot be written to standard output: No space left on device");
}

TEST(Describe, HelpTeaches) {
  const TempDir folder;
  const ZelRun general = runZel(folder, "--help");
  const ZelRun describe = runZel(folder, "describe --help");
  EXPECT_EQ(0, general.status);
  EXPECT_EQ(0, describe.status);
  EXPECT_NE(std::string::npos, general.output.find("describe "));
  for (const char* word : {"--percentiles", "--bins", "--no-histogram", "--plot", "--json",
                           "--ascii", "Examples:", "Exit status:", "NAN"}) {
    EXPECT_NE(std::string::npos, describe.output.find(word)) << word;
  }
  EXPECT_TRUE(runZel(folder, "--version").output.starts_with("zel "));
}

}  // namespace
