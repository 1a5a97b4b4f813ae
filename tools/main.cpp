// zel, the command line: a data file in, a table or a picture out.
#include <signal.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <system_error>

#include "describe.h"
#include "failure.h"
#include "utf8.h"

namespace {

constexpr int kFailed = 2;

constexpr const char* kHelp = R"(Examples:
  zel describe data/sunspots.asc
  zel describe data/sunspots.asc --plot sunspots.png
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

/// CLI11 would only say that some command is required.
bool hasCommand(const CLI::App& program, std::string_view name) {
  const auto commands = program.get_subcommands([](const CLI::App*) { return true; });
  return std::any_of(commands.begin(), commands.end(),
                     [&](const CLI::App* command) { return command->get_name() == name; });
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
  CLI::App* describeCommand = tool::addDescribe(program, describeOptions);
  try {
    if (argc > 1 && argv[1][0] != '-' && !hasCommand(program, argv[1])) {
      return failed("there is no command " + tool::inQuotes(argv[1]) + " (zel --help lists them)");
    }
    program.parse(argc, argv);
    return print(tool::describe(describeOptions));
  } catch (const CLI::CallForVersion& version) {
    return print(std::string(version.what()) + '\n');
  } catch (const CLI::CallForHelp&) {
    return print(program.help());
  } catch (const CLI::ParseError& error) {
    const std::string help = describeCommand->parsed() ? "zel describe --help" : "zel --help";
    return failed(oneLine(error.what()) + " (" + help + " shows how)");
  } catch (const tool::Failure& failure) {
    return failed(failure.what());
  } catch (const std::bad_alloc&) {
    return failed("there is not enough memory");
  } catch (const std::exception& error) {
    return failed(oneLine(error.what()));
  }
}
