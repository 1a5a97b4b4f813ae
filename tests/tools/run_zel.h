/// @file
/// Runs the program zel as a user does.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "tests/base/temp_dir.h"
#include "tests/tools/json_fields.h"

namespace zel_test {

/// What a run of the program did.
struct ZelRun {
  int status = 0;
  std::string output;
  std::string errors;
};

/// Runs zel in a folder through the shell.
/// @param arguments  shell words; redirections overrule those to the result
/// @param before     shell commands that prepare the run: "PATH=fake; ulimit -f 8;"
inline ZelRun runZel(const TempDir& folder, const std::string& arguments,
                     const std::string& before = "") {
  const TempDir results;
  const std::string command = "cd '" + folder.file("") + "' && { " + before +
                              " '" ZEL_PROGRAM "' " + "<&0 >'" + results.file("out") + "' 2>'" +
                              results.file("err") + "' " + arguments + "; }";
  const int status = std::system(command.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readBytes(results.file("out")),
          readBytes(results.file("err"))};
}

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
  [[nodiscard]] ZelRun runZel(const std::string& arguments, const std::string& before = "") const {
    return zel_test::runZel(folder, arguments, before);
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
