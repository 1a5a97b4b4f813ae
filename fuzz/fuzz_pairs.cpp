// ASC files that hold pairs of values. What is read must fit into the file.
#include <sstream>
#include <string>

#include "fuzz/target.h"
#include "zel/analysis/pairs_asc_impl.h"
#include "zel/base/errors.h"

namespace zel_fuzz {

int FuzzPairs(const std::uint8_t* data, std::size_t size) {
  std::istringstream in{std::string(textOf(data, size))};
  zel::detail::TPairs pairs;
  try {
    const int result = zel::detail::ReadPairsASC(in, pairs);
    require(result >= -7 && result <= 4, "the result is a described one");
  } catch (const zel::EZELMath2Error&) {
    require(pairs.x.size() == 0, "a wrong number of columns is found before the pairs");
  }
  require(pairs.x.size() == pairs.y.size(), "there is a y to each x");
  require(pairs.x.size() <= size / 2, "a value takes at least two bytes");
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(pairs, zel_fuzz::FuzzPairs)
