#include <fstream>
#include <optional>
#include <utility>

#include "zel/base/wholefile.h"
#include "zel/datatable/guards_impl.h"
#include "zel/datatable/xml_form_impl.h"

namespace zel {

bool TDataTable::SaveAsXMLFile(std::string_view FName, int Precision,
                               std::string_view DataID) const {
  return Guarded([&] {
    WholeFileWriter file(FName);
    if (file.IsOpen()) WriteToXMLStream(file.Stream(), true, Precision, DataID);
    return file.Commit();
  });
}

void TDataTable::WriteToXMLStream(std::ostream& OutStream, bool CreateHeader, int Precision,
                                  std::string_view DataID) const {
  Guarded([&] {
    WithView([&](const detail::TTableView& view) {
      detail::WriteXmlTable(OutStream, view, CreateHeader, Precision, DataID);
    });
  });
}

void TDataTable::WriteToOpenXMLFile(std::ostream& TextFile, bool CreateHeader, int Precision,
                                    std::string_view DataID) const {
  WriteToXMLStream(TextFile, CreateHeader, Precision, DataID);
}

bool TDataTable::ReadXml(detail::XmlReader reader, std::string_view DataID, std::string& Message) {
  auto contents = Guarded([&]() -> std::optional<detail::TTableContents> {
    detail::TXmlTable table;
    if (!detail::ReadXmlTable(reader, DataID, table, Message)) return std::nullopt;
    return table.contents();
  });
  if (contents) TakeContents(std::move(*contents));
  return contents.has_value();
}

bool TDataTable::LoadFromXMLFile(std::string_view FName, std::string_view DataID) {
  std::ifstream file;
  return OpenForReading(file, FName) && ReadFromXMLStream(file, DataID);
}

bool TDataTable::ReadFromXMLStream(std::istream& InStream, std::string_view DataID) {
  std::string ignored;
  return ReadFromXMLStream(InStream, DataID, ignored);
}

bool TDataTable::ReadFromXMLStream(std::istream& InStream, std::string_view DataID,
                                   std::string& Message) {
  return ReadXml(detail::XmlReader(InStream), DataID, Message);
}

bool TDataTable::ReadFromOpenXMLFile(std::istream& TextFile, std::string_view DataID) {
  return ReadFromXMLStream(TextFile, DataID);
}

bool TDataTable::ReadFromXMLString(std::string_view InString, std::size_t& StartAt,
                                   std::string_view DataID) {
  std::size_t pos = StartAt;
  std::string ignored;
  const bool isRead = ReadXml(detail::XmlReader(InString, pos), DataID, ignored);
  if (isRead) StartAt = pos;
  return isRead;
}

int TDataTable::ProcessXmlTag(TDTxmlTags xmlTag, std::string_view Attr, std::string_view Content) {
  std::optional<detail::TTableContents> contents;
  const int result = Guarded([&] {
    if (xmlTag == xmlDataTableId) FXmlTable = std::make_unique<detail::TXmlTable>();
    if (!FXmlTable) return -1;
    const int processed = FXmlTable->process(xmlTag, Attr, Content);
    if (processed == 1) contents = FXmlTable->contents();
    return processed;
  });
  if (result == 1) {
    FXmlTable.reset();
    TakeContents(std::move(*contents));
  }
  return result;
}

}  // namespace zel
