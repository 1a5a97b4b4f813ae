#include "line_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "failure.h"
#include "utf8.h"

namespace tool {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;
constexpr std::size_t kLongestLine = std::size_t{1} << 20;

std::string reasonOf(int error) { return std::generic_category().message(error); }

}  // namespace

LineReader::LineReader(const std::string& fileName) {
  if (fileName == "-") {
    name_ = "standard input";
    descriptor_ = ::dup(STDIN_FILENO);
  } else {
    name_ = printable(fileName);
    descriptor_ = ::open(fileName.c_str(), O_RDONLY | O_CLOEXEC);
  }
  if (descriptor_ < 0) fail("cannot be opened: " + reasonOf(errno));
  struct stat status {};
  if (::fstat(descriptor_, &status) == 0 && S_ISDIR(status.st_mode)) {
    ::close(descriptor_);
    fail("is a directory, not a data file");
  }
}

LineReader::~LineReader() { ::close(descriptor_); }

void LineReader::fail(std::string_view reason) const {
  throw Failure(name_ + ' ' + std::string(reason));
}

void LineReader::failInLine(std::int64_t line, std::string_view reason) const {
  throw Failure(name_ + ", line " + std::to_string(line) + ": " + std::string(reason));
}

bool LineReader::refill() {
  buffer_.erase(0, begin_);
  begin_ = 0;
  const std::size_t kept = buffer_.size();
  buffer_.resize(kept + kBlock);
  ssize_t n = 0;
  do {
    n = ::read(descriptor_, buffer_.data() + kept, kBlock);
  } while (n < 0 && errno == EINTR);
  const int error = errno;
  buffer_.resize(kept + static_cast<std::size_t>(n > 0 ? n : 0));
  if (n < 0) fail("cannot be read: " + reasonOf(error));
  ended_ = n == 0;
  return !ended_;
}

void LineReader::putBack(std::vector<std::string> lines) {
  putBack_ = std::move(lines);
  again_ = 0;
  lineNumber_ = 0;
}

bool LineReader::next(std::string_view& line) {
  if (again_ < putBack_.size()) {
    line = putBack_[again_++];
    ++lineNumber_;
    return true;
  }
  std::size_t searched = begin_;
  std::size_t end = buffer_.find('\n', searched);
  while (end == std::string::npos && !ended_ && buffer_.size() - begin_ <= kLongestLine) {
    searched = buffer_.size() - begin_;  // the place that this will have after the refill
    refill();
    end = buffer_.find('\n', searched);
  }
  const bool tooLong = end == std::string::npos && !ended_;
  if (end == std::string::npos) {
    if (begin_ == buffer_.size()) return false;
    end = buffer_.size();
  }
  line = std::string_view(buffer_).substr(begin_, end - begin_);
  begin_ = end < buffer_.size() ? end + 1 : end;
  ++lineNumber_;
  if (line.find('\0') != std::string_view::npos) {
    failInLine(lineNumber_, "there is a zero byte, so this is a binary file, not a text file");
  }
  if (tooLong) {
    failInLine(lineNumber_, "the line is longer than 1 MiB, so this is not a data file");
  }
  if (line.ends_with('\r')) line.remove_suffix(1);
  return true;
}

}  // namespace tool
