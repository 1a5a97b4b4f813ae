// Tables as XML: a stream and a string give the same, no more than the text bears out, and what is
// written is read again.
#include <bit>
#include <optional>
#include <sstream>
#include <string>

#include "fuzz/target.h"
#include "zel/base/xmltags.h"
#include "zel/datatable/xml_form_impl.h"

namespace zel_fuzz {
namespace {

using zel::detail::TTableContents;
using zel::detail::TTableView;
using zel::detail::XmlReader;

std::optional<TTableContents> read(XmlReader reader, std::string_view id, std::string& message) {
  zel::detail::TXmlTable table;
  if (!zel::detail::ReadXmlTable(reader, id, table, message)) {
    require(!message.empty(), "a failure has a reason");
    return std::nullopt;
  }
  return table.contents();
}

std::string written(const TTableContents& contents, std::string_view id) {
  std::ostringstream out;
  zel::detail::WriteXmlTable(out, TTableView{contents, contents.Values.data()}, true, -1, id);
  return std::move(out).str();
}

}  // namespace

int FuzzTableXml(const std::uint8_t* data, std::size_t size) {
  const std::string text(textOf(data, size));
  std::istringstream in(text);
  std::size_t pos = 0;
  std::string messages[2];
  const auto contents = read(XmlReader(text, pos), "", messages[0]);
  const auto streamed = read(XmlReader(in), "", messages[1]);
  require(contents.has_value() == streamed.has_value() && messages[0] == messages[1],
          "stream and string agree");

  // The tags as the readers of whole elements give them.
  zel::detail::TXmlTable table;
  std::string attr;
  std::string content;
  int result = 0;
  for (std::size_t at = 0; result == 0;) {
    const int tag = zel::ReadNextTagInString(text, at, zel::DTxmlTagNames, 15, attr, content);
    result = tag < 0 ? -1 : table.process(static_cast<zel::TDTxmlTags>(tag), attr, content);
  }
  if (!contents) return 0;
  require(contents->Values.size() <= size, "each cell stands in the text");
  const std::string first = written(*contents, text);
  require(first == written(*streamed, text), "stream and string give the same table");
  pos = 0;
  const auto again = read(XmlReader(first, pos), text, messages[0]);
  require(again && pos + 1 == first.size() && written(*again, text) == first,
          "what is written is read again");
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(table_xml, zel_fuzz::FuzzTableXml)
