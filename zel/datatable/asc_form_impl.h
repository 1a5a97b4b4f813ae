/// @file
/// Reader and writer of tables in the ASC form. Internal.
///
/// The rows are what all readers of the form know: attribute, name and values, where categories are
/// their numbers and a cell that is no number is NAN. What they cannot tell stands behind them in
/// lines, each at most once and in this order, which the line ";more" begins and ";end" ends:
///
///     ;comment     "text"             if line 1 cannot tell it
///     ;colnames    2="text"           exact names that the names line cannot tell
///     ;colattrib   1=-5 3-9=2         column attributes other than 0
///     ;scales      5=Nominal          scales other than Interval
///     ;categories  5 1="a" 3="b"      identifiers of column 5 that are not empty
///     ;rownames    7="text"           like colnames
///     ;states      5 1-20=64 22=34    states of column 5 that the rows do not tell
///     ;values      5 22=1.5 23=-INF   values likewise
///     ;custom      1 "text" "text"    further column 1, a text for each row
///
/// The numbers before "=" count from 1 and ascend; first-last is a run. In quotation marks \" and
/// \\ stand for the character, \xHH for a control character.
#pragma once

#include <array>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "zel/datatable/table_contents_impl.h"

namespace zel::detail {

/// Lines behind the rows.
enum TASCLine : std::uint8_t {
  alComment,
  alColNames,
  alColAttrib,
  alScales,
  alCategories,
  alRowNames,
  alStates,
  alValues,
  alCustom,
  alEnd
};
inline constexpr std::array<std::string_view, 10> kASCLineNames = {
    "comment",  "colnames", "colattrib", "scales", "categories",
    "rownames", "states",   "values",    "custom", "end"};

inline constexpr std::string_view kASCClassName = "TDataTable";
inline constexpr std::uint8_t kEmptyState = 2;  ///< of a cell that is NAN in its row

/// Writes a table.
/// @param fileName   for the first line of a table without a comment
/// @param precision  decimals; negative: the shortest text that gives the same number again
/// @param custData   [column][row]
void WriteTableASC(std::ostream& out, const TTableView& table, std::string_view fileName,
                   int precision, const TStr2DArray& custData);

/// What an ASC file holds.
struct TASCTable {
  TTableContents Contents{0, 0};
  bool HasColNames = false;
  bool HasRowNames = false;
  TStr2DArray CustData;  ///< [column][row]
};

/// Reads a table from the text of a whole file, in one pass. The counts of the header allocate
/// nothing that the text does not bear out.
/// @param message  receives, for a result other than 0, what is wrong, with the line
/// @return as TDataTable::ImportASC; unless it is 0, the table is not complete
/// @throws std::bad_alloc, std::length_error
[[nodiscard]] int ReadTableASC(std::string_view text, TASCTable& table, std::string& message);

}  // namespace zel::detail
