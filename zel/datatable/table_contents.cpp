#include "zel/datatable/table_contents_impl.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "zel/base/rounding.h"

namespace zel::detail {

namespace {

/// Default name: C-7.
TDTNameStr numberedName(char initial, std::size_t number) {
  char text[24] = {initial, '-'};
  const auto end = std::to_chars(text + 2, std::end(text), number).ptr;
  return TDTNameStr(std::string_view(text, static_cast<std::size_t>(end - text)));
}

}  // namespace

TNominalIDStr CategoryText(const TVTypeSpec& type, double value) {
  const int k = RoundToInt<int>(value);
  if (k >= 1 && static_cast<std::size_t>(k) <= type.IDs.size()) {
    return type.IDs[static_cast<std::size_t>(k - 1)];
  }
  char text[16];
  const auto end = std::to_chars(std::begin(text), std::end(text), k).ptr;
  return TNominalIDStr(std::string_view(text, static_cast<std::size_t>(end - text)));
}

void NameColumns(TTableArrays& arrays, std::size_t from) {
  for (std::size_t i = from; i < arrays.FColName.size(); ++i) {
    arrays.FColName[i] = numberedName('C', i + 1);
  }
}

void NameRows(TTableArrays& arrays, std::size_t from) {
  for (std::size_t i = from; i < arrays.FRowName.size(); ++i) {
    arrays.FRowName[i] = numberedName('R', i + 1);
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

void TTableContents::AddRow() {
  const std::size_t rows = Rows() + 1;
  if (rows > Values.Length(1)) {
    const std::size_t room = std::max<std::size_t>(16, 2 * rows);
    Values.SetLength(Columns(), room);
    FCState.SetLength(Columns(), room);
  }
  FRowAtt.resize(rows);
  FRowName.resize(rows);
  NameRows(*this, rows - 1);
}

void TTableContents::FitRows() {
  Values.SetLength(Columns(), Rows());
  FCState.SetLength(Columns(), Rows());
}

}  // namespace zel::detail
