/// @file
/// XML form of a table. Internal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zel/base/xmlreader_impl.h"
#include "zel/datatable/table_contents_impl.h"

namespace zel::detail {

/// Makes the contents of a table from its tags. Holds no more than these bear out, whatever the
/// announced size is.
class TXmlTable {
 public:
  /// Takes the next tag. The content of a container (colnames ... datacells, vardef) may be given
  /// with it or its tags one by one after it.
  /// @return 0 to go on, 1 if the table is complete, -1 if it is damaged, for good, or for
  ///   xmlInvalid, which changes nothing
  int process(TDTxmlTags tag, std::string_view attr, std::string_view content);
  /// What is wrong.
  [[nodiscard]] const std::string& message() const { return FMessage; }
  /// What has been read, after the last tag.
  /// @throws std::bad_alloc
  [[nodiscard]] TTableContents contents() const;

 private:
  template <class T>
  using TEntries = std::vector<std::pair<int, T>>;  // by number of the column or row
  struct THeads {
    TEntries<TDTNameStr> names;
    TEntries<int> attributes;
  };
  struct TIdentifier {
    int column;
    int slot;
    TNominalIDStr text;
  };
  struct TCell {
    int column;
    int row;
    double value;
    std::uint8_t state;
  };

  int take(TDTxmlTags tag, std::string_view attr, std::string_view content);
  int takeInside(TDTxmlTags container, std::string_view content);
  void takeHead(TDTxmlTags tag, std::string_view attr, std::string_view content);
  void takeCell(std::string_view attr, std::string_view content);
  void checkSize() const;
  /// Where a cell of the table belongs.
  [[nodiscard]] std::size_t placeOf(const TCell& cell) const {
    return at(cell.column) * static_cast<std::size_t>(FRows) + at(cell.row);
  }

  std::string FMessage;
  TDTxmlTags FContainer = xmlInvalid;
  int FColumn = 0;  ///< of the vardef
  int FColumns = 0;
  int FRows = 0;
  std::string FComment;
  THeads FHeads[2];  // of columns, of rows
  TEntries<TMScaleType> FScales;
  std::vector<TIdentifier> FIdentifiers;
  std::vector<TCell> FCells;
};

/// Reads the first table with an identifier, or the first one if that is empty, whatever it stands
/// in. Elements in a table that are none of its own are passed over.
/// @param table    a fresh one
/// @param Message  what is wrong
/// @return false if there is no such table or it is damaged. The reader is left behind the table,
///   or where it turned out to be damaged.
[[nodiscard]] bool ReadXmlTable(XmlReader& reader, std::string_view DataID, TXmlTable& table,
                                std::string& Message);

/// Writes a table as TDataTable.WriteToXMLStream does.
void WriteXmlTable(std::ostream& out, const TTableView& table, bool CreateHeader, int Precision,
                   std::string_view DataID);

}  // namespace zel::detail
