#include "zel/base/wholefile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <streambuf>

namespace zel {
namespace {

namespace fs = std::filesystem;

std::error_code systemError(int number) { return {number, std::generic_category()}; }

/// A name with a NUL would silently be cut at it by the system.
bool isUsableName(std::string_view name) {
  return !name.empty() && name.find('\0') == std::string_view::npos;
}

/// Output buffer on a file descriptor that remembers why a write failed, which std::filebuf does
/// not.
class DescriptorBuffer : public std::streambuf {
 public:
  ~DescriptorBuffer() override {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  void open(int descriptor) {
    descriptor_ = descriptor;
    setp(buffer_.data(), buffer_.data() + buffer_.size());
  }
  [[nodiscard]] int descriptor() const { return descriptor_; }
  [[nodiscard]] int error() const { return error_; }

  /// Writes the rest and closes; errors that the system reports only now count too.
  bool close() {
    if (descriptor_ < 0) return false;
    const bool written = drain();
    const int closed = ::close(descriptor_);
    if (closed != 0 && error_ == 0) error_ = errno;
    descriptor_ = -1;
    setp(nullptr, nullptr);
    return written && closed == 0;
  }

 protected:
  int_type overflow(int_type c) override {
    if (!drain()) return traits_type::eof();
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
      *pptr() = traits_type::to_char_type(c);
      pbump(1);
    }
    return traits_type::not_eof(c);
  }
  std::streamsize xsputn(const char* text, std::streamsize n) override {
    if (n < epptr() - pptr()) {
      traits_type::copy(pptr(), text, static_cast<std::size_t>(n));
      pbump(static_cast<int>(n));
      return n;
    }
    return drain() && writeAll(text, static_cast<std::size_t>(n)) ? n : 0;
  }
  int sync() override { return drain() ? 0 : -1; }

 private:
  bool drain() {
    if (descriptor_ < 0) return false;
    const bool written = writeAll(pbase(), static_cast<std::size_t>(pptr() - pbase()));
    setp(buffer_.data(), buffer_.data() + buffer_.size());
    return written;
  }

  bool writeAll(const char* text, std::size_t n) {
    while (error_ == 0 && n > 0) {
      const ssize_t written = ::write(descriptor_, text, n);
      if (written >= 0) {
        text += written;
        n -= static_cast<std::size_t>(written);
      } else if (errno != EINTR) {
        error_ = errno;
      }
    }
    return error_ == 0;
  }

  std::array<char, 1 << 16> buffer_;
  int descriptor_ = -1;
  int error_ = 0;
};

struct Descriptor {
  int number;
  ~Descriptor() {
    if (number >= 0) ::close(number);
  }
};

/// What a chain of symbolic links ends at, whether it exists or not.
fs::path followLinks(fs::path path, std::error_code& error) {
  for (int step = 0; step < 40; ++step) {
    std::error_code ignored;
    if (!fs::is_symlink(fs::symlink_status(path, ignored))) return path;
    const fs::path target = fs::read_symlink(path, error);
    if (error) return path;
    path = target.is_absolute() ? target : path.parent_path() / target;
  }
  error = systemError(ELOOP);
  return path;
}

/// Opens a new file beside the target, under a name that no other writer has.
int createTemporary(const fs::path& target, mode_t mode, std::string& name) {
  static std::atomic<unsigned> counter{0};
  for (int attempt = 0; attempt < 10000; ++attempt) {
    const std::string leaf =
        ".zel-" + std::to_string(::getpid()) + "-" + std::to_string(++counter) + ".tmp";
    name = (target.parent_path() / leaf).string();
    const int descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor >= 0 || errno != EEXIST) return descriptor;
  }
  errno = EEXIST;
  return -1;
}

}  // namespace

struct WholeFileWriter::Impl {
  DescriptorBuffer buffer;
  std::ostream stream{&buffer};
  std::string target;
  std::string temporary;  // empty: the target is written directly
  std::error_code error;
  bool open = false;

  explicit Impl(std::string_view name) {
    if (!isUsableName(name)) {
      error = systemError(name.empty() ? ENOENT : EINVAL);
    } else {
      choose(std::string(name));
    }
    open = !error;
    if (!open) stream.setstate(std::ios::badbit);
  }

  void choose(const std::string& name) {
    struct stat existing {};
    const bool exists = ::stat(name.c_str(), &existing) == 0;
    if (exists && S_ISDIR(existing.st_mode)) {
      error = systemError(EISDIR);
    } else if (exists && !S_ISREG(existing.st_mode)) {
      adopt(::open(name.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    } else if (exists && ::access(name.c_str(), W_OK) != 0) {
      // The folder alone would allow to replace a file that must not be written.
      error = systemError(errno);
    } else {
      target = followLinks(name, error).string();
      if (error) return;
      struct stat found {};
      if (exists && (::lstat(target.c_str(), &found) != 0 || found.st_ino != existing.st_ino ||
                     found.st_dev != existing.st_dev)) {
        // A link of the system that only names an open file: there is no place to rename to.
        adopt(::open(name.c_str(), O_WRONLY | O_CLOEXEC | O_TRUNC));
        return;
      }
      adopt(createTemporary(target, exists ? 0600 : 0666, temporary));
      if (!error && exists) keepAttributes(existing);
    }
  }

  void adopt(int descriptor) {
    if (descriptor < 0) {
      error = systemError(errno);
      temporary.clear();
    } else {
      buffer.open(descriptor);
    }
  }

  void keepAttributes(const struct stat& existing) {
    mode_t mode = existing.st_mode & 07777;
    // The owner can seldom be kept. Rights of a group must not pass to another group.
    if (::fchown(buffer.descriptor(), existing.st_uid, existing.st_gid) != 0 &&
        ::fchown(buffer.descriptor(), static_cast<uid_t>(-1), existing.st_gid) != 0) {
      mode &= ~static_cast<mode_t>(06070);
    }
    if (::fchmod(buffer.descriptor(), mode) != 0) error = systemError(errno);
  }

  bool commit() {
    if (!open) return false;
    open = false;
    stream.flush();
    const bool complete = buffer.close() && stream.good();
    stream.setstate(std::ios::badbit);
    if (!complete) {
      error = systemError(buffer.error() != 0 ? buffer.error() : EIO);
    } else if (!temporary.empty() && ::rename(temporary.c_str(), target.c_str()) != 0) {
      error = systemError(errno);
    } else {
      temporary.clear();
    }
    return !error;
  }

  ~Impl() {
    if (!temporary.empty()) ::unlink(temporary.c_str());
  }
};

WholeFileWriter::WholeFileWriter(std::string_view FileName)
    : FImpl(std::make_unique<Impl>(FileName)) {}
WholeFileWriter::~WholeFileWriter() = default;
bool WholeFileWriter::IsOpen() const { return FImpl->open; }
std::ostream& WholeFileWriter::Stream() { return FImpl->stream; }
bool WholeFileWriter::Commit() { return FImpl->commit(); }

std::error_code WholeFileWriter::Error() const {
  if (FImpl->error || FImpl->buffer.error() == 0) return FImpl->error;
  return systemError(FImpl->buffer.error());
}

bool FileExists(std::string_view FileName) {
  struct stat found {};
  return isUsableName(FileName) && ::stat(std::string(FileName).c_str(), &found) == 0 &&
         !S_ISDIR(found.st_mode);
}

bool OpenForReading(std::ifstream& f, std::string_view FileName) {
  // Opening a folder succeeds on some systems, and only reading from it fails.
  if (FileExists(FileName)) {
    f.open(std::string(FileName), std::ios::in | std::ios::binary);
  } else {
    f.setstate(std::ios::failbit);
  }
  return f.is_open();
}

std::optional<std::string> ReadWholeFile(std::string_view FileName, std::error_code& Error) {
  Error.clear();
  if (!isUsableName(FileName)) {
    Error = systemError(FileName.empty() ? ENOENT : EINVAL);
    return std::nullopt;
  }
  const Descriptor file{::open(std::string(FileName).c_str(), O_RDONLY | O_CLOEXEC)};
  if (file.number < 0) {
    Error = systemError(errno);
    return std::nullopt;
  }
  // The announced size saves copies but is not trusted: some files have none, others grow meanwhile
  // or have holes.
  constexpr off_t kMostReserved = off_t{1} << 28;
  std::string content;
  struct stat status {};
  if (::fstat(file.number, &status) == 0 && S_ISREG(status.st_mode)) {
    content.reserve(static_cast<std::size_t>(std::min(status.st_size, kMostReserved)));
  }
  std::array<char, 1 << 16> block;
  ssize_t n = 0;
  do {
    n = ::read(file.number, block.data(), block.size());
    if (n > 0) content.append(block.data(), static_cast<std::size_t>(n));
  } while (n > 0 || (n < 0 && errno == EINTR));
  if (n < 0) {
    Error = systemError(errno);
    return std::nullopt;
  }
  return content;
}

std::optional<std::string> ReadWholeFile(std::string_view FileName) {
  std::error_code ignored;
  return ReadWholeFile(FileName, ignored);
}

std::optional<std::string> ReadWholeStream(std::istream& Stream) {
  if (!Stream.good()) return std::nullopt;
  std::string content;
  std::array<char, 1 << 16> block;
  do {
    Stream.read(block.data(), static_cast<std::streamsize>(block.size()));
    content.append(block.data(), static_cast<std::size_t>(Stream.gcount()));
  } while (Stream);
  if (Stream.bad()) return std::nullopt;
  Stream.clear(std::ios::eofbit);
  return content;
}

}  // namespace zel
