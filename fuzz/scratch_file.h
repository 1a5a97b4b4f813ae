/// @file
/// A file for targets whose readers take a name.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace zel_fuzz {

/// A file name of this process, gone at its end.
class ScratchFile {
 public:
  ScratchFile()
      : name_((std::filesystem::temp_directory_path() / ("zel_fuzz_" + std::to_string(::getpid())))
                  .string()) {}
  ~ScratchFile() { std::filesystem::remove(name_); }
  [[nodiscard]] const std::string& name() const { return name_; }
  void write(std::string_view text) const {
    std::filesystem::remove(name_);  // truncating an old file is slow
    std::ofstream(name_, std::ios::binary)
        .write(text.data(), static_cast<std::streamsize>(text.size()));
  }
  [[nodiscard]] std::string read() const {
    std::ifstream in(name_, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

 private:
  std::string name_;
};

inline const ScratchFile& scratchFile() {
  static const ScratchFile file;
  return file;
}

}  // namespace zel_fuzz
