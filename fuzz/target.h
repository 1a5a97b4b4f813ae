/// @file
/// Frame of the fuzz targets. A target is a function of any bytes that ends the program when a
/// promise is broken. Built alone it is a libFuzzer program, built into the tests it is listed for
/// the replay.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace zel_fuzz {

struct Target {
  const char* name;  // of its folder below corpus
  int (*run)(const std::uint8_t* data, std::size_t size);
};

inline std::vector<Target>& targets() {
  static std::vector<Target> list;
  return list;
}

inline void require(bool promise, const char* what) {
  if (promise) return;
  std::fprintf(stderr, "broken: %s\n", what);
  std::abort();
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace zel_fuzz

#ifdef ZEL_FUZZ_ENTRY
#define ZEL_FUZZ_TARGET(name, run)                                                    \
  extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);  \
  extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) { \
    return run(data, size);                                                           \
  }
#else
#define ZEL_FUZZ_TARGET(name, run)              \
  [[maybe_unused]] static const bool isListed = \
      (zel_fuzz::targets().push_back({#name, &run}), true);
#endif
