// The text files of arrays. What is read must survive being written and read again.
#include <sstream>
#include <string>

#include "fuzz/target.h"
#include "zel/openarrays/array_form_impl.h"

namespace zel_fuzz {
namespace {

template <class T>
void readArray(std::string_view text) {
  zel::detail::TStoredArray<T> read;
  if (!zel::detail::ReadArrayText(text, read)) return;
  const auto& cells = read.Cells.Values;
  require(!cells.empty() && cells.size() <= text.size(), "the size is borne out by the text");
  require(read.Layers == 0 || cells.Length(1) % read.Layers == 0, "the layers are whole");
  std::ostringstream out;
  zel::detail::WriteArrayText<T>(out, read.Comment, read.Layers,
                                 {cells.data(), cells.Length(1), cells.Length(0), cells.Length(1)});
  const std::string written = out.str();
  zel::detail::TStoredArray<T> again;
  require(zel::detail::ReadArrayText(std::string_view(written), again), "what is written reads");
  require(again.Layers == read.Layers, "the layers survive");
  std::ostringstream once;
  zel::detail::WriteArrayText<T>(
      once, again.Comment, again.Layers,
      {again.Cells.Values.data(), cells.Length(1), cells.Length(0), cells.Length(1)});
  require(once.str() == written, "the text survives");
}

}  // namespace

int FuzzArrayText(const std::uint8_t* data, std::size_t size) {
  readArray<double>(textOf(data, size));
  readArray<int>(textOf(data, size));
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(array_text, zel_fuzz::FuzzArrayText)
