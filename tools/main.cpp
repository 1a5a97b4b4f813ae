// zel, the command line: a data file in, a table or a picture out.
#include <signal.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <functional>
#include <iostream>
#include <iterator>
#include <new>
#include <string>
#include <string_view>
#include <system_error>

#include "failure.h"
#include "options.h"
#include "result.h"
#include "utf8.h"

namespace {

constexpr int kFailed = 2;

constexpr const char* kHelp = R"(Examples:
  zel describe data/sunspots.asc
  zel describe data/sunspots.asc --plot sunspots.png
  zel describe data/iris.csv --by Species
  zel correlate data/iris.csv
  zel fit data/faithful.csv --x eruptions --y waiting
  zel pca data/iris.csv --color Species --plot iris_pca.png
  zel cluster data/iris.csv --by Species --plot iris_clusters.png
  zel smooth data/sunspots.asc --method median --width 11
  zel spectrum data/sunspots.asc
  zel wavelet data/sunspots.asc
  zel crosstab data/mtcars.csv cyl gear
  zel convert data/iris.csv iris.xml
  zel describe --help

Exit status: 0 all done; 2 something failed, and one line on standard error
says what.)";

int failed(std::string_view sentence) {
  std::cerr << "zel: " << sentence << '\n';
  return kFailed;
}

int print(const std::string& text) {
  errno = 0;
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
    return failed("the result cannot be written to standard output: " +
                  std::generic_category().message(errno));
  }
  return 0;
}

/// CLI11's messages may hold what was typed, and several lines.
std::string oneLine(const std::string& message) {
  return tool::printable(message.substr(0, message.find('\n')), 300);
}

/// A command and what runs it once its options are parsed.
struct Command {
  CLI::App* app;
  std::function<tool::Result()> run;
};

int run(const Command& command) {
  const tool::Result result = command.run();
  if (!result.note.empty()) std::cerr << "zel: " << result.note << '\n';
  return print(result.text);
}

}  // namespace

int main(int argc, char** argv) {
  // A write beyond the size limit of files is then an error with a message like any other.
  ::signal(SIGXFSZ, SIG_IGN);
  CLI::App program("zel: numerical data analysis on the command line", "zel");
  program.set_version_flag("--version", "zel " ZEL_VERSION);
  program.require_subcommand(1);
  program.footer(kHelp);
  tool::DescribeOptions describeOptions;
  tool::CorrelateOptions correlateOptions;
  tool::FitOptions fitOptions;
  tool::PcaOptions pcaOptions;
  tool::ClusterOptions clusterOptions;
  tool::SmoothOptions smoothOptions;
  tool::SpectrumOptions spectrumOptions;
  tool::WaveletOptions waveletOptions;
  tool::CrosstabOptions crosstabOptions;
  tool::ConvertOptions convertOptions;
  const Command commands[] = {
      {tool::addDescribe(program, describeOptions),
       [&] { return tool::describe(describeOptions); }},
      {tool::addCorrelate(program, correlateOptions),
       [&] { return tool::correlate(correlateOptions); }},
      {tool::addFit(program, fitOptions), [&] { return tool::fit(fitOptions); }},
      {tool::addPca(program, pcaOptions), [&] { return tool::pca(pcaOptions); }},
      {tool::addCluster(program, clusterOptions), [&] { return tool::cluster(clusterOptions); }},
      {tool::addSmooth(program, smoothOptions), [&] { return tool::smooth(smoothOptions); }},
      {tool::addSpectrum(program, spectrumOptions),
       [&] { return tool::spectrum(spectrumOptions); }},
      {tool::addWavelet(program, waveletOptions), [&] { return tool::wavelet(waveletOptions); }},
      {tool::addCrosstab(program, crosstabOptions),
       [&] { return tool::crosstab(crosstabOptions); }},
      {tool::addConvert(program, convertOptions), [&] { return tool::convert(convertOptions); }}};
  const auto find = [&](auto&& condition) {
    return std::find_if(std::begin(commands), std::end(commands),
                        [&](const Command& command) { return condition(*command.app); });
  };
  const auto parsed = [&] { return find([](const CLI::App& app) { return app.parsed(); }); };
  try {
    // CLI11 would only say that some command is required.
    if (argc > 1 && argv[1][0] != '-' && find([&](const CLI::App& app) {
                                           return app.get_name() == argv[1];
                                         }) == std::end(commands)) {
      return failed("there is no command " + tool::inQuotes(argv[1]) + " (zel --help lists them)");
    }
    program.parse(argc, argv);
    return run(*parsed());
  } catch (const CLI::CallForVersion& version) {
    return print(std::string(version.what()) + '\n');
  } catch (const CLI::CallForHelp&) {
    return print(program.help());
  } catch (const CLI::ParseError& error) {
    const Command* command = parsed();
    const std::string name = command == std::end(commands) ? "" : command->app->get_name() + ' ';
    return failed(oneLine(error.what()) + " (zel " + name + "--help shows how)");
  } catch (const tool::Failure& failure) {
    return failed(failure.what());
  } catch (const std::bad_alloc&) {
    return failed("there is not enough memory");
  } catch (const std::exception& error) {
    return failed(oneLine(error.what()));
  }
}
