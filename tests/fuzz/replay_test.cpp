// Runs the seeds of the fuzz targets, whole and cut off at each byte, in the normal suite.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "fuzz/target.h"

namespace zel_fuzz {

/// The test framework prints a target by its name.
void PrintTo(const Target& target, std::ostream* out);
void PrintTo(const Target& target, std::ostream* out) { *out << target.name; }

namespace {

class Replay : public testing::TestWithParam<Target> {};

TEST_P(Replay, EverySeed) {
  int seeds = 0;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::string(ZEL_FUZZ_CORPUS "/") + GetParam().name)) {
    SCOPED_TRACE(entry.path().filename());
    std::ifstream in(entry.path(), std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(in), {});
    // A buffer of exactly the size, so that a sanitizer sees a read past the end.
    for (std::size_t size = bytes.size() < 1000 ? 0 : bytes.size(); size <= bytes.size(); ++size) {
      const std::vector<std::uint8_t> input(bytes.begin(),
                                            bytes.begin() + static_cast<std::ptrdiff_t>(size));
      GetParam().run(input.data(), input.size());
    }
    ++seeds;
  }
  EXPECT_GT(seeds, 0);
}

INSTANTIATE_TEST_SUITE_P(Corpus, Replay, testing::ValuesIn(targets()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace zel_fuzz
