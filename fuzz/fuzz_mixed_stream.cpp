// Reading of a mixed file by a script: the first byte is the number of steps, then one byte per
// step, then the file. What was read must give the same bytes when it is written.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

#include "fuzz/target.h"
#include "zel/base/Zel_filesys.h"
#include "zel/base/Zel_streams.h"

namespace zel_fuzz {
namespace {

/// Two files of this process, gone at its end.
struct Files {
  std::string source = name("source");
  std::string copy = name("copy");
  ~Files() {
    std::error_code ignored;
    std::filesystem::remove(source, ignored);
    std::filesystem::remove(copy, ignored);
  }
  static std::string name(const char* which) {
    const std::string leaf = "zel-fuzz-" + std::to_string(::getpid()) + "-" + which;
    // In memory where that is possible: each run makes and renames a file.
    const std::filesystem::path memory = "/dev/shm";
    const bool usable = ::access(memory.c_str(), W_OK) == 0;
    return ((usable ? memory : std::filesystem::temp_directory_path()) / leaf).string();
  }
};

/// One step; false when it failed.
bool copyItem(unsigned step, zel::TMixedFStream& from, zel::TMixedFStream& to) {
  bool fail = false;
  if (step == 0) {
    const int i = from.ReadInteger(fail);
    if (!fail) to.WriteInteger(i);
  } else if (step == 1) {
    const double x = from.ReadDouble(fail);
    if (!fail) to.WriteDouble(x);
  } else if (step == 2) {
    const std::uint8_t b = from.ReadByte(fail);
    if (!fail) to.WriteByte(b);
  } else if (step == 3) {
    const std::string line = from.ReadLn(zel::leCRLF, fail);
    if (!fail) to.WriteLn(line);
  } else {
    const std::string text = from.ReadString(fail);
    if (!fail) to.WriteString(text);
  }
  return !fail;
}

}  // namespace

int FuzzMixedStream(const std::uint8_t* data, std::size_t size) {
  static const Files files;
  if (size == 0) return 0;
  const std::size_t steps = std::min<std::size_t>(data[0], size - 1);
  const std::string content(textOf(data + 1 + steps, size - 1 - steps));
  std::ofstream(files.source, std::ios::binary) << content;
  {
    zel::TMixedFStream from(files.source, zel::fmOpenRead);
    zel::TMixedFStream to(files.copy, zel::fmCreate);
    std::size_t done = 0;
    while (done < steps && copyItem(data[1 + done] % 5U, from, to)) ++done;
    if (done < steps) {
      for (unsigned step = 0; step < 5; ++step) {
        require(!from.Valid() && !copyItem(step, from, to), "a failure lasts");
      }
    }
    to.Close();
  }
  require(content.starts_with(zel::ReadWholeFile(files.copy).value()), "the copy is the same");
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(mixed_stream, zel_fuzz::FuzzMixedStream)
