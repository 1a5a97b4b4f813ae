#include "run_program.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

extern char** environ;

namespace tool {
namespace {

[[noreturn]] void failed(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

/// Closed at the end of its life.
class Descriptor {
 public:
  Descriptor() = default;
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  void close() {
    if (number >= 0) ::close(number);
    number = -1;
  }
  int number = -1;
};

struct Pipe {
  Descriptor read;
  Descriptor write;
  Pipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) failed("pipe");
    read.number = ends[0];
    write.number = ends[1];
  }
};

/// A program that ends before it has read its input must not end this one too.
class IgnoreBrokenPipe {
 public:
  IgnoreBrokenPipe() {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGPIPE, &ignore, &before_);
  }
  ~IgnoreBrokenPipe() { ::sigaction(SIGPIPE, &before_, nullptr); }
  IgnoreBrokenPipe(const IgnoreBrokenPipe&) = delete;
  IgnoreBrokenPipe& operator=(const IgnoreBrokenPipe&) = delete;

 private:
  struct sigaction before_ {};
};

/// Starts the program with the three pipes as its standard streams.
/// @return 0 or the error number
int start(const std::vector<std::string>& arguments, const Pipe& in, const Pipe& out,
          const Pipe& err, pid_t& child) {
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (const auto& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in.read.number, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out.write.number, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, err.write.number, STDERR_FILENO);
  posix_spawnattr_init(&attributes);
  sigset_t defaults;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  sigaddset(&defaults, SIGXFSZ);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  const int error = posix_spawnp(&child, argv[0], &actions, &attributes, argv.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return error;
}

/// Appends what there is to read; closes the pipe at its end.
void drain(Descriptor& from, std::string& to) {
  std::array<char, 1 << 16> block;
  const ssize_t n = ::read(from.number, block.data(), block.size());
  if (n > 0) {
    to.append(block.data(), static_cast<std::size_t>(n));
  } else if (n == 0 || errno != EINTR) {
    from.close();
  }
}

/// Feeds and reads at the same time, as the program may answer before it has read everything.
void exchange(Pipe& in, Pipe& out, Pipe& err, const std::string& input, ProgramResult& result) {
  ::fcntl(in.write.number, F_SETFL, O_NONBLOCK);
  std::size_t sent = 0;
  while (in.write.number >= 0 || out.read.number >= 0 || err.read.number >= 0) {
    if (in.write.number >= 0 && sent == input.size()) in.write.close();
    std::array<pollfd, 3> wait{{{in.write.number, POLLOUT, 0},
                                {out.read.number, POLLIN, 0},
                                {err.read.number, POLLIN, 0}}};
    if (::poll(wait.data(), wait.size(), -1) < 0) {
      if (errno == EINTR) continue;
      failed("poll");
    }
    if (wait[0].revents != 0) {
      const ssize_t n = ::write(in.write.number, input.data() + sent, input.size() - sent);
      if (n > 0) sent += static_cast<std::size_t>(n);
      if (n < 0 && errno != EAGAIN && errno != EINTR) in.write.close();
    }
    if (wait[1].revents != 0) drain(out.read, result.output);
    if (wait[2].revents != 0) drain(err.read, result.errors);
  }
}

}  // namespace

ProgramResult runProgram(const std::vector<std::string>& arguments, const std::string& input) {
  ProgramResult result;
  const IgnoreBrokenPipe ignoring;
  Pipe in;
  Pipe out;
  Pipe err;
  pid_t child = 0;
  if (const int error = start(arguments, in, out, err, child); error != 0) {
    result.startError = std::generic_category().message(error);
    return result;
  }
  result.started = true;
  in.read.close();
  out.write.close();
  err.write.close();
  exchange(in, out, err, input, result);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  result.exitStatus = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return result;
}

}  // namespace tool
