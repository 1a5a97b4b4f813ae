/// @file
/// Peers that are programs of their own.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>

namespace zel::bench {

/// A program that answers each line on its standard input with a number in a line.
class Interpreter {
 public:
  /// Starts it; the environment is asked for one thread.
  explicit Interpreter(std::string command);
  /// Ends it.
  ~Interpreter();
  Interpreter(const Interpreter&) = delete;
  Interpreter& operator=(const Interpreter&) = delete;

  /// @throws std::runtime_error  if it does not answer
  double ask(const std::string& line);

 private:
  std::string FCommand;
  std::FILE* FInput = nullptr;   // of the program
  std::FILE* FOutput = nullptr;  // of the program
  pid_t FProcess = -1;
};

}  // namespace zel::bench
