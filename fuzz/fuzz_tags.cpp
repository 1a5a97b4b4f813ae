// The tag readers: file and string form must agree, end, and stay within the text.
#include <array>
#include <sstream>
#include <string>

#include "fuzz/target.h"
#include "zel/base/Zel_stringl.h"

namespace zel_fuzz {
namespace {

constexpr std::array<std::string_view, 7> kTags = {"numcols", "cell",  "matrix",    "/matrix",
                                                   "comment", "model", "invalidtag"};
constexpr int kCount = static_cast<int>(kTags.size());

/// Reads a content as the readers of nested models do.
void scan(std::string_view text, int level) {
  std::string attr;
  std::string content;
  std::size_t pos = 0;
  std::size_t before = 0;
  while (zel::ReadNextTagInString(text, pos, kTags, kCount, attr, content) >= 0) {
    require(pos > before && pos <= text.size(), "each tag moves on");
    require(attr.size() + content.size() < pos - before, "a tag is larger than its parts");
    before = pos;
    std::string value;
    static_cast<void>(zel::XmlAttribute(attr, "ix", value));
    if (level < 4) scan(content, level + 1);
  }
  require(pos == text.size(), "the last tag is the end");
}

}  // namespace

int FuzzTags(const std::uint8_t* data, std::size_t size) {
  const std::string text(textOf(data, size));
  scan(text, 0);

  std::istringstream in(text);
  std::array<std::string, 2> attr;
  std::array<std::string, 2> content;
  std::size_t pos = 0;
  for (int index = 0; index >= 0;) {
    index = zel::ReadNextTagInTextFile(in, kTags, kCount, attr[0], content[0]);
    require(zel::ReadNextTagInString(text, pos, kTags, kCount, attr[1], content[1]) == index,
            "both readers find the same tag");
    require(attr[0] == attr[1] && content[0] == content[1], "both readers find the same text");
  }
  require(zel::XmlUnescape(zel::XmlEscape(text)) == text, "escaping can be undone");
  require(zel::XmlUnescape(text).size() <= text.size(), "references are longer than characters");
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(tags, zel_fuzz::FuzzTags)
