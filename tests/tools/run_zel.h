/// @file
/// Runs the program zel as a user does.
#pragma once

#include <sys/wait.h>

#include "tests/support/testing.h"
#include "tests/tools/json_fields.h"

namespace zel_test {

/// What a run of the program did.
struct ZelRun {
  int status = 0;
  std::string output;
  std::string errors;
};

/// The program failed with one line on standard error and printed nothing else.
inline void expectFailure(const ZelRun& run, const std::string& sentence) {
  EXPECT_EQ(2, run.status) << sentence;
  EXPECT_EQ("zel: " + sentence + '\n', run.errors);
  EXPECT_EQ("", run.output);
}

/// Words of arguments with the sentences that refuse them.
using Refusals = std::vector<std::pair<std::string, const char*>>;

inline void expectWords(const std::string& text, const std::vector<std::string>& words) {
  for (const std::string& word : words) EXPECT_NE(std::string::npos, text.find(word)) << word;
}

/// An ASC file of one column without names.
inline std::string ascText(const std::string& values) {
  return "test data\n1\t;nr. of columns\n" +
         std::to_string(std::count(values.begin(), values.end(), '\n')) +
         "\t;nr. of rows\nFALSE FALSE FALSE FALSE\t;flags\n" + values;
}

/// A test of the program, which runs in a folder of its own.
class ToolTest : public InFolder {
 protected:
  /// Runs zel through the shell.
  /// @param arguments  shell words; redirections overrule those to the result
  /// @param before     shell commands that prepare the run: "PATH=fake; ulimit -f 8;"
  [[nodiscard]] ZelRun runZel(const std::string& arguments, const std::string& before = "") const {
    const TempDir results;
    const std::string out = results.file("out"), errors = results.file("err");
    const std::string command = "cd '" + path("") + "' && { " + before + " '" ZEL_PROGRAM "' " +
                                "<&0 >'" + out + "' 2>'" + errors + "' " + arguments + "; }";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readBytes(out), readBytes(errors)};
  }
  [[nodiscard]] JsonFields jsonOf(const std::string& arguments) const {
    return JsonFields(runZel(arguments).output);
  }
  void expectRefusals(const std::string& command, const Refusals& refusals) const {
    for (const auto& [arguments, sentence] : refusals) {
      expectFailure(runZel(command + ' ' + arguments), sentence);
    }
  }
};

}  // namespace zel_test
