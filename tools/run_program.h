/// @file
/// Running another program.
#pragma once

#include <string>
#include <vector>

namespace tool {

/// What a program did.
struct ProgramResult {
  bool started = false;
  std::string startError;  // why it could not be started
  int exitStatus = 0;      // 128 + the signal that ended it
  std::string output;
  std::string errors;
};

/// Runs a program that is searched in PATH, without a shell, and waits for its end.
/// @param arguments  the first is the program
/// @param input      what it reads from its standard input
ProgramResult runProgram(const std::vector<std::string>& arguments, const std::string& input);

}  // namespace tool
