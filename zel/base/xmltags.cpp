#include "zel/base/xmltags.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

#include "zel/base/stringhelpers.h"
#include "zel/base/utf8_impl.h"
#include "zel/base/xmlreader_impl.h"

namespace zel {
namespace {

using detail::XmlTag;
using detail::XmlTagKind;

constexpr int kEnd = -1;

bool isSpace(int c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

bool startsName(int c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' || c >= 0x80;
}

bool endsName(int c) { return c == kEnd || isSpace(c) || c == '>' || c == '<' || c == '/'; }

class StreamSource {
 public:
  explicit StreamSource(std::istream& f) : stream_(f), ready_(std::istream::sentry(f, true)) {}
  int peek() {
    if (!ready_) return kEnd;
    const auto c = stream_.rdbuf()->sgetc();
    if (!Traits::eq_int_type(c, Traits::eof())) {
      return static_cast<unsigned char>(Traits::to_char_type(c));
    }
    stream_.setstate(std::ios::eofbit);
    ready_ = false;
    return kEnd;
  }
  int next() {
    const int c = peek();
    if (c != kEnd) stream_.rdbuf()->sbumpc();
    return c;
  }

 private:
  using Traits = std::istream::traits_type;
  std::istream& stream_;
  bool ready_;
};

class StringSource {
 public:
  StringSource(std::string_view text, std::size_t& pos) : text_(text), pos_(pos) {
    pos_ = std::min(pos_, text_.size());
  }
  int peek() const { return pos_ < text_.size() ? static_cast<unsigned char>(text_[pos_]) : kEnd; }
  int next() {
    const int c = peek();
    if (c != kEnd) ++pos_;
    return c;
  }

 private:
  std::string_view text_;
  std::size_t& pos_;
};

/// Where skipped text goes.
struct Nowhere {
  void push_back(char) {}
};

/// Every character is taken from the source once and never looked back at.
template <class Source>
class TagReader {
 public:
  explicit TagReader(Source source) : source_(source) {}

  int read(std::span<const std::string_view> tags, std::string& attr, std::string& content) {
    content.clear();
    XmlTag tag;
    const bool found = nextTag(tag);
    attr.swap(tag.attr);
    if (!found) return -1;
    const int invalid = static_cast<int>(tags.size());
    if (tag.kind == XmlTagKind::kBroken) return invalid;
    const bool whole = tag.kind == XmlTagKind::kOpening && StringIx('/' + tag.name, tags) < 0;
    if (whole && !takeContent(tag.name, content)) {
      content.clear();
      return invalid;
    }
    const int index = StringIx(tag.name, tags);
    return index < 0 ? invalid : index;
  }

  /// False, with an empty tag, at the end.
  bool nextTag(XmlTag& tag) {
    tag.name.clear();
    tag.attr.clear();
    if (!findTag()) return false;
    if (source_.peek() == '/') take(tag.name);
    takeName(tag.name);
    tag.kind = takeAttributes(tag.attr);
    if (tag.kind == XmlTagKind::kOpening && tag.name[0] == '/') tag.kind = XmlTagKind::kClosing;
    trim(tag.attr);
    return true;
  }

  /// Takes everything up to the closing tag of the element, which goes nowhere; false at the end.
  bool takeContent(std::string_view name, std::string& content) {
    std::string inner;
    std::size_t depth = 1;
    for (;;) {
      if (source_.peek() == kEnd) return false;
      const std::size_t mark = content.size();
      take(content);
      if (content.back() != '<') continue;
      const int c = source_.peek();
      if (c == '!') {
        take(content);
        takeSection(content);
        continue;
      }
      if (c != '/' && !startsName(c)) continue;
      if (c == '/') take(content);
      inner.clear();
      takeName(inner);
      content += inner;
      if (!EqualIgnoringCase(inner, name)) continue;
      if (c != '/') {
        const XmlTagKind end = takeAttributes(content);
        if (end == XmlTagKind::kOpening) {
          content.push_back('>');
          ++depth;
        } else if (end == XmlTagKind::kEmptyElement) {
          content += "/>";
        }
        continue;
      }
      while (isSpace(source_.peek())) take(content);
      if (source_.peek() != '>') continue;
      take(content);
      if (--depth == 0) {
        content.resize(mark);
        return true;
      }
    }
  }

 private:
  template <class Target>
  void take(Target& target) {
    target.push_back(static_cast<char>(source_.next()));
  }

  template <class Target>
  void takeName(Target& target) {
    while (!endsName(source_.peek())) take(target);
  }

  /// Stops behind the "<" of a tag.
  bool findTag() {
    for (;;) {
      int c = source_.next();
      if (c == kEnd) return false;
      if (c != '<') continue;
      Nowhere nowhere;
      c = source_.peek();
      if (c == '/' || startsName(c)) return true;
      if (c == '?') {
        takeThrough("?>", nowhere);
      } else if (c == '!') {
        source_.next();
        if (!takeSection(nowhere)) skipDeclaration();
      }
    }
  }

  /// Takes a comment or a CDATA section whose "<!" has been taken; false if it is neither.
  template <class Target>
  bool takeSection(Target& target) {
    if (source_.peek() == '-') return takeIf("--", target) && takeThrough("-->", target);
    return takeIf("[CDATA[", target) && takeThrough("]]>", target);
  }

  template <class Target>
  bool takeIf(std::string_view text, Target& target) {
    for (const char c : text) {
      if (source_.peek() != c) return false;
      take(target);
    }
    return true;
  }

  /// Takes everything up to and including text, whose characters but the last two are equal: then
  /// counting is all that searching needs. True also at the end of the source.
  template <class Target>
  bool takeThrough(std::string_view text, Target& target) {
    const std::string_view run = text.substr(0, text.size() - 1);
    std::size_t matched = 0;
    while (source_.peek() != kEnd) {
      const int c = source_.peek();
      take(target);
      if (matched == run.size() && c == text.back()) return true;
      matched = c == run[0] ? std::min(matched + 1, run.size()) : 0;
    }
    return true;
  }

  /// "<!DOCTYPE ...>" with the declarations that it may hold.
  void skipDeclaration() {
    for (int depth = 1; depth > 0;) {
      const int c = source_.next();
      if (c == kEnd) return;
      if (c == '<') ++depth;
      if (c == '>') --depth;
    }
  }

  /// Takes the rest of a tag; the ">" and the "/" before it go nowhere.
  XmlTagKind takeAttributes(std::string& target) {
    int quote = 0;
    const std::size_t start = target.size();
    for (;;) {
      const int c = source_.peek();
      if (c == kEnd || (c == '<' && quote == 0)) return XmlTagKind::kBroken;
      if (c == '>' && quote == 0) {
        source_.next();
        if (target.size() == start || target.back() != '/') return XmlTagKind::kOpening;
        target.pop_back();
        return XmlTagKind::kEmptyElement;
      }
      take(target);
      if (quote != 0) {
        if (c == quote) quote = 0;
      } else if (c == '"' || c == '\'') {
        quote = c;
      }
    }
  }

  static void trim(std::string& s) {
    const std::string_view inner = detail::trimXmlSpace(s);
    if (inner.size() < s.size()) s = std::string(inner);
  }

  Source source_;
};

template <class Source>
int readTag(Source source, std::span<const std::string_view> tags, int count, std::string& attr,
            std::string& content) {
  const auto limit = std::min<std::ptrdiff_t>(count, std::ssize(tags));
  const auto known = static_cast<std::size_t>(std::max<std::ptrdiff_t>(limit - 1, 0));
  return TagReader<Source>(source).read(tags.first(known), attr, content);
}

void appendUtf8(std::string& s, std::uint32_t code) {
  const auto tail = [&](int shift) { s += static_cast<char>(0x80U | ((code >> shift) & 0x3FU)); };
  if (code < 0x80) {
    s += static_cast<char>(code);
  } else if (code < 0x800) {
    s += static_cast<char>(0xC0U | (code >> 6));
    tail(0);
  } else if (code < 0x10000) {
    s += static_cast<char>(0xE0U | (code >> 12));
    tail(6);
    tail(0);
  } else {
    s += static_cast<char>(0xF0U | (code >> 18));
    tail(12);
    tail(6);
    tail(0);
  }
}

constexpr std::pair<std::string_view, char> kEntities[] = {
    {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}};

/// Sections in a text that are not read for references.
class TextSections {
 public:
  explicit TextSections(std::string_view text) : text_(text) {}

  /// Appends the text of a CDATA section that begins at pos, drops a comment, and goes behind
  /// either; false if neither begins there or it is not closed.
  bool take(std::size_t& pos, std::string& target) {
    for (Section& section : sections_) {
      if (!text_.substr(pos).starts_with(section.open)) continue;
      const std::size_t first = pos + section.open.size();
      // The search ends for good where nothing is closed any more, so that the cost stays linear.
      const std::size_t end = section.isClosed ? text_.find(section.close, first) : text_.npos;
      section.isClosed = end != text_.npos;
      if (!section.isClosed) return false;
      if (section.isText) target.append(text_, first, end - first);
      pos = end + section.close.size();
      return true;
    }
    return false;
  }

 private:
  struct Section {
    std::string_view open;
    std::string_view close;
    bool isText;
    bool isClosed = true;
  };
  std::string_view text_;
  Section sections_[2] = {{"<![CDATA[", "]]>", true}, {"<!--", "-->", false}};
};

/// Whether XML may hold a character that is no control character.
bool isText(const detail::Character& c) {
  return c.valid && c.code >= 0x20 && c.code != 0x7f && c.code != 0xfffe && c.code != 0xffff;
}

/// Appends what the name of a reference stands for; false if it stands for nothing.
bool appendReference(std::string& s, std::string_view name) {
  for (const auto& [entity, c] : kEntities) {
    if (name == entity) {
      s += c;
      return true;
    }
  }
  if (!name.starts_with('#')) return false;
  name.remove_prefix(1);
  const bool hexadecimal = name.starts_with('x');
  if (hexadecimal) name.remove_prefix(1);
  std::uint32_t code = 0;
  const char* const last = name.data() + name.size();
  const auto [end, error] = std::from_chars(name.data(), last, code, hexadecimal ? 16 : 10);
  if (error != std::errc() || end != last || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) {
    return false;
  }
  appendUtf8(s, code);
  return true;
}

}  // namespace

namespace detail {

template <class Operation>
bool XmlReader::onSource(Operation&& operation) {
  return FStream ? operation(TagReader(StreamSource(*FStream)))
                 : operation(TagReader(StringSource(FText, *FPos)));
}

bool XmlReader::nextTag() {
  return onSource([this](auto reader) { return reader.nextTag(FTag); });
}

bool XmlReader::takeContent(std::string& content) {
  content.clear();
  return onSource([&](auto reader) { return reader.takeContent(FTag.name, content); });
}

std::string_view trimXmlSpace(std::string_view s) {
  while (!s.empty() && isSpace(s.back())) s.remove_suffix(1);
  while (!s.empty() && isSpace(s.front())) s.remove_prefix(1);
  return s;
}

std::string encodeXmlText(std::string_view bytes, bool& isCoded) {
  constexpr char digits[] = "0123456789ABCDEF";
  std::string result;
  isCoded = false;
  for (std::string_view rest = bytes; !rest.empty();) {
    const Character c = firstCharacter(rest);
    if (isText(c) && c.code != '%') {
      result += rest.substr(0, c.bytes);
    } else {
      for (const char byte : rest.substr(0, c.bytes)) {
        const auto code = static_cast<unsigned char>(byte);
        result.append({'%', digits[code / 16], digits[code % 16]});
      }
    }
    isCoded = isCoded || !isText(c);
    rest.remove_prefix(c.bytes);
  }
  return isCoded ? result : std::string(bytes);
}

std::optional<std::string> decodeXmlText(std::string_view attr, std::string text) {
  std::string coding;
  if (!XmlAttribute(attr, "coding", coding)) return text;
  if (coding != "percent") return std::nullopt;
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned char code = static_cast<unsigned char>(text[i]);
    if (text[i] == '%') {
      const char* const first = text.data() + i + 1;
      if (text.size() - i < 3 || std::from_chars(first, first + 2, code, 16).ptr != first + 2) {
        return std::nullopt;
      }
      i += 2;
    }
    result += static_cast<char>(code);
  }
  return result;
}

}  // namespace detail

int ReadNextTagInTextFile(std::istream& f, std::span<const std::string_view> Tags, int Count,
                          std::string& Attr, std::string& Content) {
  return readTag(StreamSource(f), Tags, Count, Attr, Content);
}

int ReadNextTagInString(std::string_view Text, std::size_t& Pos,
                        std::span<const std::string_view> Tags, int Count, std::string& Attr,
                        std::string& Content) {
  return readTag(StringSource(Text, Pos), Tags, Count, Attr, Content);
}

bool XmlAttribute(std::string_view Attr, std::string_view Name, std::string& Value) {
  const auto skipSpace = [&] {
    while (!Attr.empty() && isSpace(Attr[0])) Attr.remove_prefix(1);
  };
  Value.clear();
  for (;;) {
    skipSpace();
    const auto* const nameEnd =
        std::find_if(Attr.begin(), Attr.end(), [](char c) { return c == '=' || isSpace(c); });
    const std::string_view name = Attr.substr(0, static_cast<std::size_t>(nameEnd - Attr.begin()));
    Attr.remove_prefix(name.size());
    skipSpace();
    if (Attr.empty()) return false;
    if (Attr[0] != '=') continue;  // a name without a value
    Attr.remove_prefix(1);
    skipSpace();
    if (Attr.empty() || (Attr[0] != '"' && Attr[0] != '\'')) continue;
    const std::size_t end = Attr.find(Attr[0], 1);
    if (end == std::string_view::npos) return false;
    if (name == Name) {
      Value = XmlUnescape(Attr.substr(1, end - 1));
      return true;
    }
    Attr.remove_prefix(end + 1);
  }
}

std::string XmlEscape(std::string_view s) {
  std::string result;
  result.reserve(s.size());
  for (const char c : s) {
    const auto* entity = std::find_if(std::begin(kEntities), std::end(kEntities),
                                      [c](const auto& e) { return e.second == c; });
    const auto code = static_cast<unsigned char>(c);
    if (entity != std::end(kEntities)) {
      result.append("&").append(entity->first).append(";");
    } else if ((code < 32 && c != '\t' && c != '\n') || code == 127) {
      result.append("&#").append(std::to_string(code)).append(";");
    } else {
      result += c;
    }
  }
  return result;
}

std::string XmlUnescape(std::string_view s) {
  constexpr std::size_t longest = 10;  // of the names that mean something
  std::string result;
  result.reserve(s.size());
  TextSections sections(s);
  for (std::size_t i = 0; i < s.size();) {
    if (s[i] == '&') {
      const std::size_t length = s.substr(i + 1, longest + 1).find(';');
      if (length != std::string_view::npos && appendReference(result, s.substr(i + 1, length))) {
        i += length + 2;
        continue;
      }
    } else if (s[i] == '<' && sections.take(i, result)) {
      continue;
    }
    result += s[i++];
  }
  return result;
}

}  // namespace zel
