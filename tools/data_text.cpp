#include "data_text.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <string_view>
#include <system_error>

#include "failure.h"
#include "utf8.h"

namespace tool {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;
constexpr std::size_t kLongestLine = std::size_t{1} << 20;

/// An open file.
class Input {
 public:
  explicit Input(const std::string& fileName) {
    if (fileName == "-") {
      name_ = "standard input";
      descriptor_ = ::dup(STDIN_FILENO);
    } else {
      name_ = printable(fileName);
      descriptor_ = ::open(fileName.c_str(), O_RDONLY | O_CLOEXEC);
    }
    if (descriptor_ < 0) failed("opened");
    struct stat status {};
    if (::fstat(descriptor_, &status) == 0 && S_ISDIR(status.st_mode)) {
      ::close(descriptor_);
      throw Failure(name_ + " is a directory, not a data file");
    }
  }
  ~Input() { ::close(descriptor_); }
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  [[nodiscard]] const std::string& name() const { return name_; }

  /// Appends what comes next.
  /// @return false at the end
  bool read(std::string& content) const {
    const std::size_t kept = content.size();
    content.resize(kept + kBlock);
    ssize_t n = 0;
    do {
      n = ::read(descriptor_, content.data() + kept, kBlock);
    } while (n < 0 && errno == EINTR);
    if (n < 0) failed("read");
    content.resize(kept + static_cast<std::size_t>(n));
    return n > 0;
  }

 private:
  [[noreturn]] void failed(const char* what) const {
    throw Failure(name_ + " cannot be " + what + ": " + std::generic_category().message(errno));
  }

  std::string name_;
  int descriptor_ = -1;
};

/// Looks at what has come last.
/// @param from  where it starts
void requireText(const DataText& text, std::size_t from) {
  const std::string_view content = text.content;
  const auto fail = [&](std::size_t at, const char* reason) {
    const auto line =
        std::count(content.begin(), content.begin() + static_cast<std::ptrdiff_t>(at), '\n');
    throw Failure(text.source + ", line " + std::to_string(line + 1) + ": " + reason);
  };
  const std::size_t zero = content.find('\0', from);
  if (zero != std::string_view::npos) {
    fail(zero, "there is a zero byte, so this is a binary file, not a text file");
  }
  const std::size_t lineEnd = content.find_last_of("\r\n");
  const std::size_t lastLine = lineEnd == std::string_view::npos ? 0 : lineEnd + 1;
  if (content.size() - lastLine > kLongestLine && content[0] != '<') {
    fail(lastLine, "the line is longer than 1 MiB, so this is not a data file");
  }
}

}  // namespace

DataText readDataText(const std::string& fileName) {
  constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
  const Input input(fileName);
  DataText text{input.name(), {}};
  for (std::size_t before = 0; input.read(text.content); before = text.content.size()) {
    if (before == 0 && text.content.starts_with(kByteOrderMark)) {
      text.content.erase(0, kByteOrderMark.size());
    }
    requireText(text, before);
  }
  if (text.content.empty()) throw Failure(text.source + " is empty");
  return text;
}

}  // namespace tool
