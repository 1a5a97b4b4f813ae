/// @file
/// Lines of a text file with their numbers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// Reads a text file, or standard input, line by line through a buffer of its own. Every way in
/// which that can fail is a Failure that names the file and the reason.
class LineReader {
 public:
  /// @param fileName  "-" is standard input
  /// @throws Failure  the file cannot be opened or is a directory
  explicit LineReader(const std::string& fileName);
  ~LineReader();
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  /// The next line without its end (LF or CRLF). It stays valid until the next call.
  /// @return false at the end of the file
  /// @throws Failure  a read error, a zero byte (a binary file) or a line of more than 1 MiB
  bool next(std::string_view& line);
  /// Makes next give again the lines that it gave so far, or what the caller has made of them.
  void putBack(std::vector<std::string> lines);
  /// Number of the line that next gave last, from 1; 0 before the first.
  [[nodiscard]] std::int64_t lineNumber() const { return lineNumber_; }
  /// The file as messages name it.
  [[nodiscard]] const std::string& name() const { return name_; }

  /// Throws a Failure that names the file.
  [[noreturn]] void fail(std::string_view reason) const;
  /// Throws a Failure that names the file and a line.
  [[noreturn]] void failInLine(std::int64_t line, std::string_view reason) const;

 private:
  bool refill();

  std::string name_;
  int descriptor_ = -1;
  std::string buffer_;
  std::size_t begin_ = 0;  // what is left of the buffer starts here
  bool ended_ = false;
  std::int64_t lineNumber_ = 0;
  std::vector<std::string> putBack_;  // comes before the buffer
  std::size_t again_ = 0;             // of these lines, given again so far
};

}  // namespace tool
