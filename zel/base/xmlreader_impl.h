/// @file
/// Tags of an XML text one by one, whatever their names, and any bytes as XML text. Internal.
#pragma once

#include <cstddef>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace zel::detail {

enum class XmlTagKind { kOpening, kEmptyElement, kClosing, kBroken };

struct XmlTag {
  XmlTagKind kind = XmlTagKind::kBroken;
  std::string name;  ///< that of a closing tag begins with "/"
  std::string attr;  ///< what stands behind the name, without blanks around
};

/// Goes through the tags of a stream or of a string. Elements are not taken whole unless that is
/// asked for, so that a large one is never held in memory. What the public readers of tags skip is
/// skipped.
class XmlReader {
 public:
  explicit XmlReader(std::istream& f) : FStream(&f) {}
  /// @param pos  0-based, moved along
  XmlReader(std::string_view text, std::size_t& pos) : FText(text), FPos(&pos) {}

  /// Goes to the next tag and behind it.
  /// @return false at the end of the text
  bool nextTag();
  [[nodiscard]] const XmlTag& tag() const { return FTag; }
  /// Takes all up to the closing tag of the element that the opening tag found last begins, and
  /// goes behind it.
  /// @return false if the text ends before
  bool takeContent(std::string& content);

 private:
  template <class Operation>
  bool onSource(Operation&& operation);

  std::istream* FStream = nullptr;
  std::string_view FText;
  std::size_t* FPos = nullptr;
  XmlTag FTag;
};

/// What stands between white space.
[[nodiscard]] std::string_view trimXmlSpace(std::string_view s);

/// A text of any bytes as characters that XML may hold, before XmlEscape. It stays as it is if it
/// is UTF-8 without control characters. Otherwise the bytes that are not, and "%", become "%" and
/// two hexadecimal digits, and isCoded is true; the element is to have the attribute coding then.
[[nodiscard]] std::string encodeXmlText(std::string_view bytes, bool& isCoded);
inline constexpr std::string_view kCodingAttribute = " coding=\"percent\"";

/// The inverse, after XmlUnescape; nothing if the text is not properly coded.
/// @param attr  attributes of the element
[[nodiscard]] std::optional<std::string> decodeXmlText(std::string_view attr, std::string text);

}  // namespace zel::detail
