#include "zel/matrix/xml_form_impl.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <numeric>

#include "zel/base/numbertext_impl.h"
#include "zel/base/stringhelpers.h"
#include "zel/base/xmltags.h"
#include "zel/matrix/number_form_impl.h"
#include "zel/vector/files_impl.h"

namespace zel::detail {

namespace {

/// The attributes of a cell, as they stand before the number.
std::span<const std::string_view> markersOf(int rank) {
  static constexpr std::string_view kThree[] = {"ix=\"", "iy=\"", "iz=\""};
  static constexpr std::string_view kFour[] = {"ix=\"", "iy=\"", "il=\"", "it=\""};
  if (rank == 4) return kFour;
  return std::span(kThree).first(static_cast<std::size_t>(rank));
}

/// Calls use(text) with a content whose references and sections are resolved.
template <class Use>
auto withText(std::string_view content, Use&& use) {
  const bool isPlain = content.find('&') == content.npos && content.find('<') == content.npos;
  return isPlain ? use(content) : use(std::string_view(XmlUnescape(content)));
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Takes blanks and a sign off.
/// @return whether there is a minus
bool takeSign(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  return isNegative;
}

}  // namespace

int XmlIntegerIn(std::string_view text) {
  return withText(text, [](std::string_view digits) {
    constexpr std::int64_t most = std::numeric_limits<int>::max();
    const bool isNegative = takeSign(digits);
    std::int64_t value = 0;
    for (std::size_t i = 0; i < digits.size() && isDigit(digits[i]); ++i) {
      value = std::min(10 * value + (digits[i] - '0'), most + 1);
    }
    return static_cast<int>(isNegative ? -value : std::min(value, most));
  });
}

bool XmlValueIn(std::string_view content, int& value) {
  const bool isNumber = withText(content, [](std::string_view text) {
    takeSign(text);
    return !text.empty() && isDigit(text[0]);
  });
  value = XmlIntegerIn(content);
  return isNumber;
}

bool XmlValueIn(std::string_view content, double& value) {
  return withText(content, [&](std::string_view text) {
    text = trimXmlSpace(text);
    const std::size_t length = scanNumber(text, std::chars_format::general, value);
    if (length > 0) return length == text.size() || text[length] != '.';
    const auto word = numberOf(text);
    value = word.value_or(0);
    return word.has_value();
  });
}

TXmlIndex XmlIndexIn(std::string_view attr, int rank) {
  TXmlIndex at{};
  std::size_t dim = 0;
  for (const std::string_view marker : markersOf(rank)) {
    const std::size_t found = attr.find(marker);
    if (found != attr.npos) at[dim] = XmlIntegerIn(attr.substr(found + marker.size()));
    ++dim;
  }
  return at;
}

template <class T>
bool TXmlMatrix<T>::Read(XmlReader& reader, std::string_view id) {
  while (reader.nextTag()) {
    const XmlTag& tag = reader.tag();
    if (tag.kind != XmlTagKind::kOpening) continue;
    if (!EqualIgnoringCase(tag.name, MatXmlTagNames[xmlMatBegin])) continue;
    std::string found;
    XmlAttribute(tag.attr, "id", found);
    auto decoded = decodeXmlText(tag.attr, std::move(found));
    if (!decoded) return false;
    if (!id.empty() && *decoded != id) continue;
    FID = *std::move(decoded);
    return TakeTags(reader);
  }
  return false;
}

template <class T>
bool TXmlMatrix<T>::TakeTags(XmlReader& reader) {
  TXmlState state;
  bool isFirstCell = true;
  bool isGood = true;
  std::string content;
  const auto resize = [&](const std::array<int, 4>& counts) { isGood = TakeSize(counts); };
  const auto store = [&](const TXmlIndex& at, T value) { TakeCell(at, value); };
  while (reader.nextTag()) {
    const XmlTag& tag = reader.tag();
    const int index = StringIx(tag.name, MatXmlTagNames, xmlMatInvalid);
    if (tag.kind == XmlTagKind::kBroken || index < 0 || index == xmlMatBegin) return false;
    content.clear();
    if (tag.kind == XmlTagKind::kOpening && !reader.takeContent(content)) return false;
    // Counts behind a cell would change what its place was.
    if (!isFirstCell && index < xmlMatCell) return false;
    const int result = ProcessXmlTag<T>(FRank, static_cast<TMatXmlTag>(index), tag.attr, content,
                                        state, isFirstCell, resize, store);
    if (result < 0 || !isGood) return false;
    if (result > 0) return !isFirstCell || TakeSize(state.Counts);
  }
  return false;
}

template <class T>
bool TXmlMatrix<T>::TakeSize(const std::array<int, 4>& counts) {
  FSize = 1;
  for (std::size_t d = 0; d < 4; ++d) {
    const bool exists = d < static_cast<std::size_t>(FRank);
    FCounts[d] = exists ? std::max(counts[d], 0) : 1;
    // A matrix may be empty.
    if (FRank > 2 && FCounts[d] < 1) return false;
    const auto count = static_cast<std::uint64_t>(FCounts[d]);
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
    if (count > 0 && FSize > most / count) return false;
    FSize *= count;
  }
  return true;
}

template <class T>
void TXmlMatrix<T>::TakeCell(const TXmlIndex& at, T value) {
  std::uint64_t place = 0;
  for (std::size_t k = 0; k < static_cast<std::size_t>(FRank); ++k) {
    // The storage of four dimensions runs the other way.
    const std::size_t d = FRank == 4 ? 3 - k : k;
    if (at[d] < 1 || at[d] > FCounts[d]) return;
    place = place * static_cast<std::uint64_t>(FCounts[d]) + static_cast<std::uint64_t>(at[d] - 1);
  }
  if (FOthers.empty() && place == FValues.size()) {
    FValues.push_back(value);
  } else {
    FOthers.emplace_back(place, value);
  }
}

template <class T>
bool TXmlMatrix<T>::IsBorneOut(std::uint64_t held) const {
  return FSize <= std::max(Cells() + static_cast<std::uint64_t>(kUnbackedPositions), held);
}

template <class T>
void TXmlMatrix<T>::Store(T* elements) const {
  std::copy(FValues.begin(), FValues.end(), elements);
  for (const auto& [place, value] : FOthers) elements[place] = value;
}

template <class T>
std::vector<std::pair<std::uint64_t, T>> TXmlMatrix<T>::Sorted() const {
  std::vector<std::pair<std::uint64_t, T>> cells;
  cells.reserve(FValues.size() + FOthers.size());
  for (const T value : FValues) cells.emplace_back(cells.size(), value);
  std::vector<std::size_t> order(FOthers.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
    return std::pair(FOthers[a].first, a) < std::pair(FOthers[b].first, b);
  });
  for (const std::size_t k : order) {
    const auto& [place, value] = FOthers[k];
    if (place < FValues.size()) {
      cells[static_cast<std::size_t>(place)].second = value;
    } else if (!cells.empty() && cells.back().first == place) {
      cells.back().second = value;
    } else {
      cells.emplace_back(place, value);
    }
  }
  return cells;
}

template class TXmlMatrix<double>;
template class TXmlMatrix<int>;

// Writing.

namespace {

void appendInteger(std::string& text, int number) {
  char digits[16];
  text.append(digits, std::to_chars(digits, std::end(digits), number).ptr);
}

}  // namespace

TXmlMatrixWriter::TXmlMatrixWriter(std::ostream& out, bool createHeader, std::string_view id,
                                   std::string_view objectId, std::span<const int> counts)
    : TextWriter(out), FRank(static_cast<int>(counts.size())) {
  if (createHeader) FText += "<?xml version=\"1.0\"?>\n";
  bool isCoded = false;
  const std::string text = XmlEscape(encodeXmlText(id.empty() ? objectId : id, isCoded));
  FText.append("<matrix id=\"").append(text).append("\"");
  FText.append(isCoded ? kCodingAttribute : "").append(">\n");
  for (std::size_t d = 0; d < counts.size(); ++d) {
    const std::string_view name = MatXmlTagNames[d];
    FText.append("<").append(name).append(">");
    appendInteger(FText, counts[d]);
    FText.append("</").append(name).append(">\n");
  }
}

void TXmlMatrixWriter::Open(const TXmlIndex& at) {
  FText += "<cell";
  std::size_t dim = 0;
  for (const std::string_view marker : markersOf(FRank)) {
    (FText += ' ') += marker;
    appendInteger(FText, at[dim++]);
    FText += '"';
  }
  FText += '>';
}

bool TXmlMatrixWriter::Close() {
  FText += "</cell>\n";
  return flushIfLong();
}

bool TXmlMatrixWriter::Cell(const TXmlIndex& at, double value) {
  Open(at);
  appendNumber(FText, value, -1);
  return Close();
}

bool TXmlMatrixWriter::Cell(const TXmlIndex& at, int value) {
  Open(at);
  appendInteger(FText, value);
  return Close();
}

void TXmlMatrixWriter::End() {
  FText += "</matrix>\n";
  flush();
}

}  // namespace zel::detail
