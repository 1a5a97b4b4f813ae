#include "zel/datatable/xml_form_impl.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <concepts>
#include <functional>
#include <limits>
#include <optional>

#include "zel/base/numbertext_impl.h"
#include "zel/base/stringhelpers.h"
#include "zel/base/textwriter_impl.h"
#include "zel/base/xmltags.h"

namespace zel::detail {

namespace {

constexpr std::string_view nameOf(TDTxmlTags tag) { return DTxmlTagNames[tag]; }

// Reading.

struct TDamage {
  std::string text;
};

[[noreturn]] void fail(std::string text) { throw TDamage{std::move(text)}; }

/// A tag as a message shows it.
std::string shown(std::string_view name, std::string_view attr) {
  constexpr std::size_t most = 80;
  std::string text = std::string(1, '<').append(name);
  if (!attr.empty()) text.append(1, ' ').append(attr.substr(0, most));
  return text.append(attr.size() > most ? "...>" : ">");
}

bool isContainer(TDTxmlTags tag) {
  return (tag >= xmlColNames && tag <= xmlRowAttrib) || tag == xmlDataCells || tag == xmlVarType;
}

[[noreturn]] void refuse(const XmlTag& tag, const char* why) {
  fail(shown(tag.name, tag.attr).append(why));
}

/// xmlInvalid for a tag that is none of a table's.
TDTxmlTags tagOf(const XmlTag& read) {
  const int index = StringIx(read.name, DTxmlTagNames, xmlInvalid);
  return index < 0 ? xmlInvalid : static_cast<TDTxmlTags>(index);
}

/// Refuses a tag that breaks off or cannot stand in a table where it does.
/// @param open  the container around it, xmlInvalid if there is none
void checkPlace(const XmlTag& read, TDTxmlTags tag, TDTxmlTags open) {
  if (read.kind == XmlTagKind::kBroken) refuse(read, " breaks off");
  if (read.kind == XmlTagKind::kClosing && tag == xmlInvalid) {
    const std::string_view name = std::string_view(read.name).substr(1);
    if (open == xmlInvalid || !EqualIgnoringCase(name, nameOf(open))) {
      refuse(read, " closes nothing");
    }
  }
  const bool isTopLevel = tag <= xmlRowAttrib || isContainer(tag);
  if (tag == xmlDataTableId || (open != xmlInvalid && isTopLevel)) {
    refuse(read, " does not belong there");
  }
}

/// Passes the tags of a table on, those in a container one by one.
/// @return whether the table is complete; false at the end of the text
/// @throws TDamage
bool passTags(XmlReader& reader, TXmlTable& table) {
  TDTxmlTags open = xmlInvalid;
  std::string content;
  while (reader.nextTag()) {
    const XmlTag& read = reader.tag();
    const TDTxmlTags tag = tagOf(read);
    checkPlace(read, tag, open);
    content.clear();
    if (read.kind == XmlTagKind::kClosing) {
      open = xmlInvalid;
    } else if (read.kind == XmlTagKind::kOpening) {
      if (isContainer(tag)) {
        open = tag;
      } else if (!reader.takeContent(content)) {
        refuse(read, " is not closed");
      }
    }
    if (tag == xmlInvalid) continue;  // a container closed, or of somebody else
    const int result = table.process(tag, read.attr, content);
    if (result < 0) fail(table.message());
    if (result > 0) return true;
  }
  return false;
}

/// The text that the value of an attribute or the content of an element stands for.
std::string textOf(std::string_view attr, std::string text) {
  auto decoded = decodeXmlText(attr, std::move(text));
  if (!decoded) fail("the coding of the text is not known, or it is not coded so");
  return *std::move(decoded);
}

int integerIn(std::string_view text, int least, int most, const char* what) {
  text = trimXmlSpace(text);
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < least || value > most) {
    fail(std::string(what).append(" is missing or not an integer in its range"));
  }
  return value;
}

/// An attribute that numbers something from 1 on.
int numberIn(std::string_view attr, const char* name, int most = std::numeric_limits<int>::max()) {
  std::string value;
  XmlAttribute(attr, name, value);
  return integerIn(value, 1, most, name);
}

double valueIn(std::string_view content) {
  const bool isPlain = content.find('&') == content.npos && content.find('<') == content.npos;
  const auto value =
      isPlain ? numberOf(trimXmlSpace(content)) : numberOf(trimXmlSpace(XmlUnescape(content)));
  if (!value) fail("the value is not a number");
  return *value;
}

template <class Entries, class Target>
void place(const Entries& entries, Target& target) {
  for (const auto& [number, entry] : entries) target[at(number)] = entry;
}

template <class Entries>
void checkNumbers(const Entries& entries, int most) {
  for (const auto& [number, entry] : entries) {
    if (number > most) fail("there is no column or row " + std::to_string(number));
  }
}

}  // namespace

int TXmlTable::process(TDTxmlTags tag, std::string_view attr, std::string_view content) {
  if (tag >= xmlInvalid || !FMessage.empty()) return -1;
  try {
    return take(tag, attr, content);
  } catch (const TDamage& damage) {
    FMessage = shown(nameOf(tag), attr).append(": ").append(damage.text);
    return -1;
  }
}

int TXmlTable::take(TDTxmlTags tag, std::string_view attr, std::string_view content) {
  if (isContainer(tag)) {
    if (tag == xmlVarType) {
      FColumn = numberIn(attr, "ix");
      std::string scale;
      XmlAttribute(attr, "scale", scale);
      const int index = StringIx(scale, MScaleTypeNames);
      if (index < 0) fail("there is no such scale");
      FScales.emplace_back(FColumn, static_cast<TMScaleType>(index));
    }
    return takeInside(tag, content);
  }
  switch (tag) {
    case xmlDataTableEndId:
      checkSize();
      return 1;
    case xmlComment:
      FComment = RemoveControlChars(textOf(attr, XmlUnescape(content)));
      break;
    case xmlSize:
      FColumns = numberIn(attr, "columns");
      FRows = numberIn(attr, "rows");
      break;
    case xmlColId:
    case xmlRowId:
      takeHead(tag, attr, content);
      break;
    case xmlCellID:
      takeCell(attr, content);
      break;
    case xmlVarIdentifier:
      if (FContainer != xmlVarType) fail("it stands outside a vardef");
      FIdentifiers.push_back({FColumn, numberIn(attr, "slot", 150),
                              TNominalIDStr(textOf(attr, XmlUnescape(content)))});
      break;
    default:
      break;
  }
  return 0;
}

int TXmlTable::takeInside(TDTxmlTags container, std::string_view content) {
  FContainer = container;
  std::size_t pos = 0;
  XmlReader reader(content, pos);
  return passTags(reader, *this) ? 1 : 0;
}

void TXmlTable::takeHead(TDTxmlTags tag, std::string_view attr, std::string_view content) {
  const bool isRow = tag == xmlRowId;
  THeads& heads = FHeads[isRow ? 1 : 0];
  const int number = numberIn(attr, isRow ? "iy" : "ix");
  if (FContainer == (isRow ? xmlRowNames : xmlColNames)) {
    heads.names.emplace_back(number, TDTNameStr(textOf(attr, XmlUnescape(content))));
  } else if (FContainer == (isRow ? xmlRowAttrib : xmlColAttrib)) {
    using Limits = std::numeric_limits<int>;
    heads.attributes.emplace_back(
        number, integerIn(XmlUnescape(content), Limits::min(), Limits::max(), "the attribute"));
  } else {
    fail("it stands outside the names and attributes");
  }
}

void TXmlTable::takeCell(std::string_view attr, std::string_view content) {
  if (FContainer != xmlDataCells) fail("it stands outside the cells");
  TCell cell{numberIn(attr, "ix"), numberIn(attr, "iy"), valueIn(content), 0};
  std::string state;
  if (XmlAttribute(attr, "state", state)) {
    cell.state = static_cast<std::uint8_t>(integerIn(state, 0, 255, "state"));
  }
  FCells.push_back(cell);
}

void TXmlTable::checkSize() const {
  if (FColumns == 0) fail("there is no size");
  const std::size_t cells = static_cast<std::size_t>(FColumns) * static_cast<std::size_t>(FRows);
  if (FCells.size() != cells) {
    fail("it has " + std::to_string(FCells.size()) + " cells, not " + std::to_string(cells));
  }
  std::vector<bool> found(cells);
  for (const TCell& cell : FCells) {
    if (cell.column > FColumns || cell.row > FRows || found[placeOf(cell)]) {
      fail("the cell in column " + std::to_string(cell.column) + " and row " +
           std::to_string(cell.row) + " is there twice or outside the table");
    }
    found[placeOf(cell)] = true;
  }
  for (int isRow = 0; isRow < 2; ++isRow) {
    checkNumbers(FHeads[isRow].names, isRow ? FRows : FColumns);
    checkNumbers(FHeads[isRow].attributes, isRow ? FRows : FColumns);
  }
  checkNumbers(FScales, FColumns);
}

TTableContents TXmlTable::contents() const {
  TTableContents contents(static_cast<std::size_t>(FColumns), static_cast<std::size_t>(FRows));
  contents.FComment = FComment;
  place(FHeads[0].names, contents.FColName);
  place(FHeads[0].attributes, contents.FColAtt);
  place(FHeads[1].names, contents.FRowName);
  place(FHeads[1].attributes, contents.FRowAtt);
  for (const auto& [column, scale] : FScales) {
    contents.FVType[at(column)].MScaleType = scale;
  }
  for (const auto& [column, slot, text] : FIdentifiers) {
    contents.FVType[at(column)].IDs.Set(at(slot), text);
  }
  for (const TCell& cell : FCells) {
    contents.Values.data()[placeOf(cell)] = cell.value;
    contents.FCState.data()[placeOf(cell)] = cell.state;
  }
  return contents;
}

bool ReadXmlTable(XmlReader& reader, std::string_view DataID, TXmlTable& table,
                  std::string& Message) {
  const auto isWanted = [&] {
    const XmlTag& tag = reader.tag();
    if (tag.kind != XmlTagKind::kOpening) return false;
    if (!EqualIgnoringCase(tag.name, nameOf(xmlDataTableId))) return false;
    std::string id;
    XmlAttribute(tag.attr, "id", id);
    return DataID.empty() || decodeXmlText(tag.attr, std::move(id)) == DataID;
  };
  while (reader.nextTag()) {
    if (!isWanted()) continue;
    try {
      if (passTags(reader, table)) return true;
      Message = "the text ends in the table";
    } catch (const TDamage& damage) {
      Message = damage.text;
    }
    return false;
  }
  Message = DataID.empty() ? "there is no table" : "there is no table with this identifier";
  return false;
}

// Writing.

namespace {

class TXmlWriter : public TextWriter {
 public:
  using TextWriter::TextWriter;

  TXmlWriter& operator<<(std::string_view text) {
    FText += text;
    return *this;
  }
  void integer(std::integral auto number) {
    char digits[24];
    FText.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
  }
  /// Decimals would lose small numbers, so that these get as many significant digits.
  void number(double x, int precision) {
    constexpr int kExact = 17;
    if (precision < 0 || x == 0 || !(std::fabs(x) < 1)) return appendNumber(FText, x, precision);
    if (precision >= kExact) return appendNumber(FText, x, -1);
    char digits[32];
    FText.append(digits, std::to_chars(digits, digits + sizeof digits, x,
                                       std::chars_format::general, std::max(precision, 1))
                             .ptr);
  }
  /// An attribute with a number.
  void attribute(std::string_view name, std::integral auto number) {
    *this << " " << name << "=\"";
    integer(number);
    *this << "\"";
  }
  /// The end of an opening tag, a text of any bytes, and the closing tag.
  void content(TDTxmlTags tag, std::string_view bytes) {
    bool isCoded = false;
    const std::string text = XmlEscape(encodeXmlText(bytes, isCoded));
    *this << (isCoded ? kCodingAttribute : "") << ">" << text;
    close(tag);
  }
  void open(TDTxmlTags tag) { *this << "<" << nameOf(tag); }
  void close(TDTxmlTags tag) { *this << "</" << nameOf(tag) << ">"; }
  /// Ends a line.
  /// @return false if no more can be written
  bool endLine() {
    FText += '\n';
    return flushIfLong();
  }
};

/// A container with a line for each entry of a list that isWritten accepts; nothing if there are
/// none.
template <class List, class IsWritten, class WriteContent>
void writeHeads(TXmlWriter& xml, TDTxmlTags container, bool isRow, const List& list,
                IsWritten&& isWritten, WriteContent&& writeContent) {
  const TDTxmlTags tag = isRow ? xmlRowId : xmlColId;
  bool isOpen = false;
  for (std::size_t k = 0; k < list.size(); ++k) {
    if (!isWritten(list[k])) continue;
    if (!isOpen) {
      xml.open(container);
      xml << ">\n";
      isOpen = true;
    }
    xml.open(tag);
    xml.attribute(isRow ? "iy" : "ix", k + 1);
    writeContent(tag, list[k]);
    if (!xml.endLine()) return;
  }
  if (!isOpen) return;
  xml.close(container);
  xml.endLine();
}

void writeNames(TXmlWriter& xml, TDTxmlTags container, bool isRow,
                const TDynArray<TDTNameStr, 1>& names) {
  writeHeads(
      xml, container, isRow, names, [](const TDTNameStr&) { return true; },
      [&](TDTxmlTags tag, const TDTNameStr& name) { xml.content(tag, name); });
}

void writeAttributes(TXmlWriter& xml, TDTxmlTags container, bool isRow,
                     const TDynArray<int, 1>& attributes) {
  writeHeads(
      xml, container, isRow, attributes, [](int attribute) { return attribute != 0; },
      [&](TDTxmlTags tag, int attribute) {
        xml << ">";
        xml.integer(attribute);
        xml.close(tag);
      });
}

void writeVariable(TXmlWriter& xml, std::size_t number, const TColumnType& type) {
  xml.open(xmlVarType);
  xml.attribute("ix", number);
  xml << " scale=\"" << MScaleTypeNames[type.MScaleType] << "\">";
  for (std::size_t k = 0; k < type.IDs.size(); ++k) {
    if (type.IDs[k].empty()) continue;
    xml.open(xmlVarIdentifier);
    xml.attribute("slot", k + 1);
    xml.content(xmlVarIdentifier, type.IDs[k]);
  }
  xml.close(xmlVarType);
  xml.endLine();
}

void writeCell(TXmlWriter& xml, const TTableView& table, std::size_t c, std::size_t r,
               int precision) {
  xml.open(xmlCellID);
  xml.attribute("ix", c + 1);
  xml.attribute("iy", r + 1);
  if (const std::uint8_t state = table.State(c, r); state != 0) xml.attribute("state", int{state});
  xml << ">";
  xml.number(table.Value(c, r), precision);
  xml.close(xmlCellID);
}

}  // namespace

void WriteXmlTable(std::ostream& out, const TTableView& table, bool CreateHeader, int Precision,
                   std::string_view DataID) {
  const TTableArrays& arrays = table.Arrays;
  TXmlWriter xml(out);
  if (CreateHeader) xml << "<?xml version=\"1.0\"?>\n";
  bool isCoded = false;
  const std::string id = XmlEscape(encodeXmlText(DataID, isCoded));
  xml.open(xmlDataTableId);
  xml << " id=\"" << id << "\"" << (isCoded ? kCodingAttribute : "") << ">\n";
  if (!arrays.FComment.empty()) {
    xml.open(xmlComment);
    xml.content(xmlComment, arrays.FComment);
    xml.endLine();
  }
  xml.open(xmlSize);
  xml.attribute("columns", table.Columns());
  xml.attribute("rows", table.Rows());
  xml << "/>\n";
  writeNames(xml, xmlColNames, false, arrays.FColName);
  writeNames(xml, xmlRowNames, true, arrays.FRowName);
  writeAttributes(xml, xmlColAttrib, false, arrays.FColAtt);
  writeAttributes(xml, xmlRowAttrib, true, arrays.FRowAtt);
  for (std::size_t c = 0; c < table.Columns(); ++c) writeVariable(xml, c + 1, arrays.FVType[c]);
  xml.open(xmlDataCells);
  xml << ">\n";
  for (std::size_t r = 0; r < table.Rows(); ++r) {
    for (std::size_t c = 0; c < table.Columns(); ++c) writeCell(xml, table, c, r, Precision);
    if (!xml.endLine()) return;
  }
  xml.close(xmlDataCells);
  xml << "\n";
  xml.close(xmlDataTableId);
  xml << "\n";
  xml.flush();
}

}  // namespace zel::detail
