// The binary record of the vectors. What is read must survive being written and read again, and
// no size may come from a forged bound alone.
#include <sstream>

#include "fuzz/target.h"
#include "zel/vector/Zel_vector.h"

namespace zel_fuzz {
namespace {

// A record may place its values at most this far beyond what it holds.
constexpr std::size_t kMostGap = std::size_t{1} << 24;

template <class Vector>
void readRecord(std::string_view bytes, bool adjust) {
  std::istringstream in{std::string(bytes)};
  Vector v{1, 2, 3};
  const bool complete = v.LoadFromStream(in, adjust);
  require(v.size() <= kMostGap + bytes.size(), "the size is borne out by the source");
  require(adjust || v.size() == 3, "no resize unasked");
  // Writing long vectors would only make the search slow.
  if (!complete || v.size() > 10000) return;
  std::stringstream copy;
  v.SaveToStream(copy, 0, 0);
  Vector w;
  require(w.LoadFromStream(copy, true) && w.CRCofData() == v.CRCofData(),
          "a record reads the same");
}

}  // namespace

int FuzzVectorStream(const std::uint8_t* data, std::size_t size) {
  for (const bool adjust : {true, false}) {
    readRecord<zel::TVector>(textOf(data, size), adjust);
    readRecord<zel::TIntVector>(textOf(data, size), adjust);
  }
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(vector_stream, zel_fuzz::FuzzVectorStream)
