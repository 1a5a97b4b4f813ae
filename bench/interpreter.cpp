#include "bench/interpreter.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace zel::bench {

Interpreter::Interpreter(std::string command) : FCommand(std::move(command)) {
  int toProgram[2];
  int fromProgram[2];
  // No program may hold the ends of another, which would never see the end of its input.
  if (::pipe2(toProgram, O_CLOEXEC) != 0 || ::pipe2(fromProgram, O_CLOEXEC) != 0)
    throw std::runtime_error("no pipe");
  FProcess = ::fork();
  if (FProcess == 0) {
    ::dup2(toProgram[0], STDIN_FILENO);
    ::dup2(fromProgram[1], STDOUT_FILENO);
    ::setenv("OMP_NUM_THREADS", "1", 1);
    ::setenv("OPENBLAS_NUM_THREADS", "1", 1);
    ::execl("/bin/sh", "sh", "-c", FCommand.c_str(), nullptr);
    ::_exit(127);
  }
  ::close(toProgram[0]);
  ::close(fromProgram[1]);
  FInput = ::fdopen(toProgram[1], "w");
  FOutput = ::fdopen(fromProgram[0], "r");
}

Interpreter::~Interpreter() {
  std::fclose(FInput);
  std::fclose(FOutput);
  ::waitpid(FProcess, nullptr, 0);
}

double Interpreter::ask(const std::string& line) {
  char answer[64];
  if (std::fprintf(FInput, "%s\n", line.c_str()) < 0 || std::fflush(FInput) != 0 ||
      std::fgets(answer, sizeof answer, FOutput) == nullptr) {
    throw std::runtime_error(FCommand + " does not answer");
  }
  return std::strtod(answer, nullptr);
}

}  // namespace zel::bench
