#include "options.h"

#include <CLI/CLI.hpp>

#include "clusters.h"
#include "table_file.h"

namespace tool {
namespace {

constexpr const char* kDescribeHelp = R"(
The figures:
  standard deviation  divisor n - 1; the standard error is that of the mean
  skewness, kurtosis  corrected for the sample size; 0 for a normal population
  quartiles           at (n + 1) q of the sorted values, interpolated
  percentiles         at (n - 1) p of the sorted values from 0, interpolated
  mode                the smallest of the most frequent values

Several columns make one table, one picture of all histograms and, in JSON, the
array "variables"; a single one is shown in more detail. With --by each variable
is a table with a column for each category of another one, which holds texts or
at most 150 different numbers, and a picture of box plots side by side.

Examples:
  zel describe data/sunspots.asc
  zel describe data/sunspots.asc --plot sunspots.png
  zel describe data/faithful_waiting.asc --percentiles 1,2.5,97.5,99 --bins 20
  zel describe data/iris.csv --column Petal.Length,Petal.Width
  zel describe data/iris.csv --by Species --plot iris_species.png
  zel describe - --json < data/sunspots.asc
)";

constexpr const char* kCorrelateHelp = R"(
The figure for two variables is Pearson's correlation over the rows in which
neither value is missing, n their number. It is undefined, and shown as a dash,
for fewer than two such rows and for a variable that is constant or infinite in
them.

Examples:
  zel correlate data/iris.csv
  zel correlate data/USArrests.csv --column Murder,Assault,Rape
  zel correlate data/iris.csv --plot iris.png
)";

constexpr const char* kFitHelp = R"(
The models, fitted by least squares:
  line        y = intercept + slope x
  parabola    y = k0 + k1 x + k2 x^2
  poly:N      polynomial of degree N, up to 30
  centred:N   the same in powers of x less its mean, for large x or N
  circle      (x - x0)^2 + (y - y0)^2 = radius^2
  log         y = k0 + k1 ln x
  hyperbola   y = k0 + k1 / x
  recip       y = 1 / (k0 + k1 x)
  recihyp     y = x / (k0 x + k1)
  recilog     y = 1 / (k0 + k1 ln x)
  power       y = k0 x^k1
  exp         y = k0 exp(k1 x)
  hoerl       y = k0 k1^x x^k2
  gauss       y = height exp(-(x - position)^2 / (2 sigma^2))
  spline      natural cubic spline through the pairs, the mean y where x repeats
  smooth      cubic smoothing spline; --smoothing 0 is the spline, 1 the line
The models recip to gauss fit 1/y or ln y; their quality, standard errors and
analysis of variance are those of 1/y or ln y. Standard errors of coefficients
that are exponentials are to first order. Significances are two-sided, of the
t distribution. Rows in which x or y is missing are left out.

Examples:
  zel fit data/faithful.csv --x eruptions --y waiting
  zel fit data/faithful.csv --x eruptions --y waiting --plot fit.png
  zel fit data/longley.csv --x GNP --y Employed --model centred:2 --json
)";

constexpr const char* kPcaHelp = R"(
Components of the correlations suit variables in different units, those of the
covariances variables in the same. Explained is the part of the variance that a
component has; the loadings are unit eigenvectors, signed so that the largest of
each is positive. Rows with a missing value are left out. The picture shows each
row by its first two components, with the same scale on both axes, and the
loadings as arrows.

Examples:
  zel pca data/iris.csv
  zel pca data/iris.csv --color Species --plot iris_pca.png
  zel pca data/USArrests.csv --mode covariance --json
)";

constexpr const char* kClusterHelp = R"(
The methods:
  kmeans    partition about means: of several starts from rows drawn at random
            the one of the least sum of squares; --starts 0 takes the first rows
Trees, in which the two nearest clusters become one until a single one is left,
cut into --clusters; the distance of two clusters is
  single    that of their nearest objects
  complete  that of their farthest objects
  upgma     the mean one of their objects (average linkage of other programs)
  average   the mean one of the two parts that the younger is made of
  ward      by Ward's formula, from the distances as they are, not squared
  flexible  f (d1 + d2) + (1 - 2 f) d12, f from 0.5 to 1 by --flexible
Each variable is divided by its standard deviation first, unless --raw is given.
Clusters are numbered by size. Rows with a missing value are left out. The picture
of a partition shows each row by its first two principal components, that of a tree
the tree, both coloured by the clusters.

Examples:
  zel cluster data/iris.csv --by Species
  zel cluster data/iris.csv --by Species --plot clusters.png
  zel cluster data/USArrests.csv --method complete --clusters 4 --plot tree.png
)";

constexpr const char* kSmoothHelp = R"(
The column is taken as a series of values at equal distances of time. The methods:
  mean, median, triangle  moving average, median and triangular average
  polynomial              value of a parabola through the window (Savitzky-Golay)
  slope, curvature        first and second derivative of that parabola by the time
  lowpass, highpass, bandpass, bandstop
                          convolution with a windowed-sinc kernel of --width taps
  chebyshev-low, chebyshev-high
                          recursive filter of --poles, forwards and then backwards,
                          so that nothing is shifted; --ripple 0: Butterworth
The first and last half window repeats the first and last whole one; the kernels
continue the series with its first and last value, the recursive filters with its
mean. Frequencies are in cycles per unit of the sample time.

Examples:
  zel smooth data/sunspots.asc
  zel smooth data/sunspots.asc --method median --width 11 --plot smooth.png
  zel smooth data/sunspots.asc --method lowpass --cutoff 0.05 --json
  zel smooth data/sunspots.asc --method chebyshev-low --cutoff 0.05
)";

constexpr const char* kSpectrumHelp = R"(
The column is taken as a series of values at equal distances of time. Its mean is
removed, the window put over it, and zeros are added at its end to at least three
times its length; then it is transformed. A line is shown if its magnitude exceeds
that of its neighbours, the strongest first. The magnitude is the amplitude of a
cosine of that frequency in the series, the phase that of the cosine at the first
value, in degrees. Frequencies are in cycles per unit of the sample time. The
window rectangle has the narrowest lines, but shows small ones beside each strong
one that are not in the series; harris and nuttall have the widest lines and the
least of those. Numbers beside the lines of the picture are periods.

Examples:
  zel spectrum data/sunspots.asc
  zel spectrum data/sunspots.asc --window hamming --plot spectrum.png
  zel spectrum data/airquality.csv --column Temp --sample-time 1 --json
)";

constexpr const char* kWaveletHelp = R"(
The column is taken as a series of values at equal distances. Its mean is removed
and zeros are added at its end up to the next power of two, which changes no
energy. Level k of the details, Dk, holds the periods from 2^k to 2^(k+1) values,
the approximations of the last level what is longer. The energy of a level is the
sum of squares of its coefficients. With the mode wrap (before the series comes
its end) the levels have the energy of the series together; zero and symmetric
(before it come zeros, or its mirror image) change it near the start. Order 1 is
the Haar wavelet. In the picture each level has a scale of its own.

Examples:
  zel wavelet data/sunspots.asc
  zel wavelet data/sunspots.asc --order 3 --plot wavelet.png
  zel wavelet data/airquality.csv --column Temp --levels 5 --json
)";

constexpr const char* kCrosstabHelp = R"(
The lines are the categories of A, the columns those of B: texts, or numbers of
which there are at most 150 different ones. Rows in which A or B is missing are
left out, and it is told how many there are.

Examples:
  zel crosstab data/mtcars.csv cyl gear
  zel crosstab data/mtcars.csv cyl gear --percent row
)";

constexpr const char* kConvertHelp = R"(
The ending of OUT tells its form: .csv, .asc or .txt (ASC), .xml. ASC and XML hold
all that belongs to a table: names, attributes, scales of measurement, categories
and states of cells. CSV holds the comment, the names, the attributes of rows and
the categories; a sentence on standard error says what else there was. Numbers are
written as the shortest text that gives the same number again. OUT appears as a
whole or not at all.

Examples:
  zel convert data/iris.csv iris.xml
  zel convert iris.xml iris.asc --precision 2
  zel convert data/mtcars.csv mtcars.csv --out-decimal-comma
)";

constexpr const char* kExitHelp = R"(
Exit status: 0 all done; 2 a wrong argument, a file that cannot be read or
written, bad data: one line on standard error says what, where and why.)";

/// A command with its file and its help.
template <class Options>
CLI::App* addCommand(CLI::App& program, const std::string& name, const std::string& what,
                     Options& options, const char* help) {
  CLI::App* command = program.add_subcommand(name, what);
  command->add_option("FILE", options.file, "CSV, ASC or XML file; - is standard input")
      ->required()
      ->option_text(" ");
  command->add_flag("--decimal-comma", options.decimalComma,
                    "the numbers of a CSV file have a decimal comma");
  command->footer(std::string(kFileHelp) + help + kExitHelp);
  return command;
}

/// The option that chooses columns, for chooseColumns. Each use takes one word, so that it leaves
/// the file alone.
void addColumns(CLI::App& command, std::vector<std::string>& columns) {
  command
      .add_option("--column", columns,
                  "take only these columns, each by its name or its number in the file")
      ->allow_extra_args(false)
      ->option_text("NAME,...");
}

/// The option that chooses the column of a series, for seriesOf.
void addSeries(CLI::App& command, std::string& column) {
  command
      .add_option("--column", column,
                  "the column of the series, by name or number, if there are several")
      ->option_text("COL");
}

void addPicture(CLI::App& command, std::string& picture, const std::string& what) {
  command.add_option("--plot", picture, "draw " + what + ", a .png or .svg file (needs gnuplot)")
      ->option_text("PICTURE");
}

void addJson(CLI::App& command, bool& json) {
  command.add_flag("--json", json, "print JSON, all digits, null for what is undefined");
}

}  // namespace

CLI::App* addDescribe(CLI::App& program, DescribeOptions& options) {
  CLI::App* command =
      addCommand(program, "describe", "Describe columns of numbers: table, histogram, picture",
                 options, kDescribeHelp);
  addColumns(*command, options.columns);
  command->add_option("--by", options.by, "by the categories of this column, by name or number")
      ->option_text("COL");
  command
      ->add_option("--percentiles", options.percentiles,
                   "percentiles to show, 0 to 100 [5,10,90,95]")
      ->option_text("P,P,...");
  command->add_option("--bins", options.bins, "about this many bins, of a round width")
      ->check(CLI::Range(1, 200))
      ->option_text("N");
  command->add_flag("--no-histogram", options.noHistogram, "the table only");
  addPicture(*command, options.picture, "a picture");
  addJson(*command, options.json);
  command->add_flag("--ascii", options.ascii, "print bars and dashes as ASCII characters");
  return command;
}

CLI::App* addCorrelate(CLI::App& program, CorrelateOptions& options) {
  CLI::App* command =
      addCommand(program, "correlate", "Correlate columns of numbers: table, heat map", options,
                 kCorrelateHelp);
  addColumns(*command, options.columns);
  addPicture(*command, options.picture, "a heat map");
  addJson(*command, options.json);
  command->add_flag("--ascii", options.ascii, "print dashes as ASCII characters");
  return command;
}

CLI::App* addFit(CLI::App& program, FitOptions& options) {
  CLI::App* command =
      addCommand(program, "fit", "Fit a curve to two columns: coefficients, quality, picture",
                 options, kFitHelp);
  command->add_option("--x", options.x, "the column of the abscissas, by name or number")
      ->required()
      ->option_text("COL");
  command->add_option("--y", options.y, "the column of the ordinates")
      ->required()
      ->option_text("COL");
  command->add_option("--model", options.model, "the curve, one of those below [line]")
      ->option_text("MODEL");
  command->add_option("--smoothing", options.smoothing, "of the model smooth, 0 to 1 [0.5]")
      ->check(CLI::Range(0.0, 1.0))
      ->option_text("S");
  addPicture(*command, options.picture, "the points, the curve and the residuals");
  addJson(*command, options.json);
  command->add_flag("--ascii", options.ascii, "print dashes as ASCII characters");
  return command;
}

CLI::App* addPca(CLI::App& program, PcaOptions& options) {
  CLI::App* command =
      addCommand(program, "pca", "Principal components of columns: variances, loadings, score plot",
                 options, kPcaHelp);
  addColumns(*command, options.columns);
  command->add_option("--mode", options.mode, "correlation or covariance [correlation]")
      ->option_text("MODE");
  command
      ->add_option("--color", options.color,
                   "colour the picture by the words or numbers of this column")
      ->option_text("COL");
  addPicture(*command, options.picture, "the scores of the first two components");
  addJson(*command, options.json);
  return command;
}

CLI::App* addCluster(CLI::App& program, ClusterOptions& options) {
  CLI::App* command = addCommand(program, "cluster",
                                 "Cluster rows by k-means or as a tree: clusters, members, picture",
                                 options, kClusterHelp);
  addColumns(*command, options.columns);
  command->add_option("--method", options.method, "kmeans, " + treeWords() + " [kmeans]")
      ->option_text("NAME");
  command->add_option("--clusters", options.clusters, "so many clusters [3]")
      ->check(CLI::Range(1, 1000000))
      ->option_text("K");
  command->add_flag("--raw", options.raw, "take the values as they are, not standardised");
  command->add_option("--starts", options.starts, "starts of kmeans; 0: the first rows [25]")
      ->check(CLI::Range(0, 1000))
      ->option_text("N");
  command->add_option("--seed", options.seed, "of the random starts [1]")
      ->check(CLI::Range(1, 1000000000))
      ->option_text("S");
  command
      ->add_option("--distance", options.distance,
                   "of rows in a tree: euclid, squared or manhattan [euclid]")
      ->option_text("NAME");
  command->add_option("--flexible", options.flexible, "parameter of flexible [0.625]")
      ->check(CLI::Range(0.5, 1.0))
      ->option_text("F");
  command->add_option("--by", options.by, "count the rows of each class of this column, too")
      ->option_text("COL");
  addPicture(*command, options.picture, "the clusters or the tree");
  addJson(*command, options.json);
  return command;
}

CLI::App* addSmooth(CLI::App& program, SmoothOptions& options) {
  CLI::App* command =
      addCommand(program, "smooth", "Smooth, differentiate or filter a column: table, picture",
                 options, kSmoothHelp);
  addSeries(*command, options.column);
  command->add_option("--method", options.method, "one of those below [mean]")->option_text("NAME");
  command->add_option("--width", options.width, "values of the window, odd [5, 7, 31]")
      ->check(CLI::Range(1, 1000000000))
      ->option_text("N");
  command->add_option("--sample-time", options.sampleTime, "time between two values [1]")
      ->option_text("T");
  command->add_option("--cutoff", options.cutoff, "frequency of a filter, two of a band")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->option_text("F[,F]");
  command
      ->add_option("--window", options.window,
                   "of a kernel: rectangle, hamming or blackman [hamming]")
      ->option_text("NAME");
  command->add_option("--poles", options.poles, "of a recursive filter, even [4]")
      ->check(CLI::Range(2, 20))
      ->option_text("P");
  command->add_option("--ripple", options.ripple, "of its pass band, in percent, 0 to 29 [0.5]")
      ->check(CLI::Range(0.0, 29.0))
      ->option_text("R");
  command->add_option("--rows", options.rows, "print so many rows at most [20]")
      ->check(CLI::Range(1, 1000000000))
      ->option_text("N");
  addPicture(*command, options.picture, "the series and the result");
  addJson(*command, options.json);
  return command;
}

CLI::App* addSpectrum(CLI::App& program, SpectrumOptions& options) {
  CLI::App* command =
      addCommand(program, "spectrum", "Spectrum of a column: strongest lines, picture", options,
                 kSpectrumHelp);
  addSeries(*command, options.column);
  command->add_option("--sample-time", options.sampleTime, "time between two values [1]")
      ->option_text("T");
  command->add_option("--window", options.window, windowWords() + " [cos2]")->option_text("NAME");
  command->add_option("--lines", options.lines, "show at most so many lines [10]")
      ->check(CLI::Range(1, 1000))
      ->option_text("N");
  addPicture(*command, options.picture, "the series and its spectrum");
  addJson(*command, options.json);
  command->add_flag("--ascii", options.ascii, "print no degree signs");
  return command;
}

CLI::App* addWavelet(CLI::App& program, WaveletOptions& options) {
  CLI::App* command = addCommand(
      program, "wavelet", "Wavelet transform of a column: energy by level, coefficients, picture",
      options, kWaveletHelp);
  addSeries(*command, options.column);
  command->add_option("--order", options.order, "vanishing moments of the wavelet, 1 to 3 [2]")
      ->check(CLI::Range(1, 3))
      ->option_text("K");
  command->add_option("--levels", options.levels, "so many levels [all]")
      ->check(CLI::Range(1, 23))
      ->option_text("L");
  command->add_option("--mode", options.mode, "wrap, zero or symmetric [wrap]")
      ->option_text("MODE");
  addPicture(*command, options.picture, "the series and the coefficients by level");
  addJson(*command, options.json);
  command->add_flag("--ascii", options.ascii, "print dashes as ASCII characters");
  return command;
}

CLI::App* addCrosstab(CLI::App& program, CrosstabOptions& options) {
  CLI::App* command =
      addCommand(program, "crosstab", "Contingency table of two columns of categories", options,
                 kCrosstabHelp);
  command->add_option("A", options.a, "a column, by name or number: the lines")
      ->required()
      ->option_text(" ");
  command->add_option("B", options.b, "another one: the columns")->required()->option_text(" ");
  command->add_option("--percent", options.percent, "percentages of the row, column or total, too")
      ->check(CLI::IsMember({"row", "column", "total"}))
      ->option_text("OF");
  addJson(*command, options.json);
  return command;
}

CLI::App* addConvert(CLI::App& program, ConvertOptions& options) {
  CLI::App* command = addCommand(program, "convert", "Turn CSV, ASC and XML files into one another",
                                 options, kConvertHelp);
  command->add_option("OUT", options.out, "the file to write")->required()->option_text(" ");
  command
      ->add_option("--precision", options.precision, "write so many decimals [shortest exact text]")
      ->check(CLI::Range(0, 50))
      ->option_text("N");
  command
      ->add_option("--out-delimiter", options.delimiter,
                   "of a CSV file: comma, semicolon or tab [comma]")
      ->check(CLI::IsMember({"comma", "semicolon", "tab"}))
      ->option_text("WORD");
  command->add_flag("--out-decimal-comma", options.outDecimalComma,
                    "write numbers with a decimal comma, delimiter semicolon (CSV)");
  command->add_option("--id", options.id, "write this identifier of the table (XML)")
      ->option_text("ID");
  return command;
}

}  // namespace tool
