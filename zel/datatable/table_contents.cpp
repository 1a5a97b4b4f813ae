#include "zel/datatable/table_contents_impl.h"

#include <charconv>
#include <iterator>

#include "zel/base/rounding.h"
#include "zel/base/stringhelpers.h"

namespace zel::detail {

int FindCategory(const TColumnType& type, const TNominalIDStr& id, bool ignoreCase) {
  const auto found = std::ranges::find_if(type.IDs, [&](const TNominalIDStr& known) {
    return ignoreCase ? EqualIgnoringCase(known, id) : known == id;
  });
  return found == type.IDs.end() ? 0 : static_cast<int>(found - type.IDs.begin()) + 1;
}

int FreeCategory(const TColumnType& type) { return FindCategory(type, {}, false); }

TDTNameStr NumberedName(char initial, std::size_t number) {
  char text[24] = {initial, '-'};
  const auto end = std::to_chars(text + 2, std::end(text), number).ptr;
  return TDTNameStr(std::string_view(text, static_cast<std::size_t>(end - text)));
}

TNominalIDStr CategoryText(const TColumnType& type, double value) {
  const int k = RoundToInt<int>(value);
  if (IsCategory(k)) return type.IDs[static_cast<std::size_t>(k - 1)];
  char text[16];
  const auto end = std::to_chars(std::begin(text), std::end(text), k).ptr;
  return TNominalIDStr(std::string_view(text, static_cast<std::size_t>(end - text)));
}

void NameColumns(TTableArrays& arrays, std::size_t from) {
  for (std::size_t i = from; i < arrays.FColName.size(); ++i) {
    arrays.FColName[i] = NumberedName('C', i + 1);
  }
}

void NameRows(TTableArrays& arrays, std::size_t from) {
  for (std::size_t i = from; i < arrays.FRowName.size(); ++i) {
    arrays.FRowName[i] = NumberedName('R', i + 1);
  }
}

TTableContents::TTableContents(std::size_t columns, std::size_t rows) : Values(columns, rows) {
  FCState.SetLength(columns, rows);
  FColAtt.resize(columns);
  FColName.resize(columns);
  FVType.resize(columns);
  FRowAtt.resize(rows);
  FRowName.resize(rows);
  NameColumns(*this, 0);
  NameRows(*this, 0);
}

void TTableContents::FitRows() {
  Values.SetLength(Columns(), Rows());
  FCState.SetLength(Columns(), Rows());
}

}  // namespace zel::detail
