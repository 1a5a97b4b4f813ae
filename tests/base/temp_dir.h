/// @file
/// A folder of its own for each test that writes files.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zel_test {

class TempDir {
 public:
  TempDir() {
    std::string name = (std::filesystem::temp_directory_path() / "zel-test-XXXXXX").string();
    if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
    path_ = name;
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  [[nodiscard]] std::string file(std::string_view name) const { return (path_ / name).string(); }

  /// Number of files in the folder: more than expected means that a temporary was left behind.
  [[nodiscard]] std::ptrdiff_t count() const {
    return std::distance(std::filesystem::directory_iterator(path_), {});
  }

 private:
  std::filesystem::path path_;
};

inline void writeBytes(const std::string& name, std::string_view bytes) {
  std::ofstream(name, std::ios::binary) << bytes;
}

inline std::string readBytes(const std::string& name) {
  std::ifstream in(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// A test with a folder of its own.
class InFolder : public testing::Test {
 protected:
  [[nodiscard]] std::string path(std::string_view name) const { return folder.file(name); }
  void write(std::string_view name, std::string_view bytes) const { writeBytes(path(name), bytes); }
  [[nodiscard]] std::string bytesOf(std::string_view name) const { return readBytes(path(name)); }

  const TempDir folder;
};

}  // namespace zel_test
