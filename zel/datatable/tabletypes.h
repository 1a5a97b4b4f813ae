/// @file
/// Types of the data table: scales, identifiers, names, its XML tags.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "zel/base/array.h"
#include "zel/base/component.h"
#include "zel/base/shortstring.h"
#include "zel/base/types.h"

namespace zel {

/// Scale on which a variable is measured. Nominal and ordinal variables are categorical.
enum TMScaleType : std::uint8_t { stUnknown, stNominal, stOrdinal, stInterval, stRatio };

/// Names of the scales, by TMScaleType.
inline constexpr std::array<std::string_view, 5> MScaleTypeNames = {"Unknown", "Nominal", "Ordinal",
                                                                    "Interval", "Ratio"};

/// Identifier of a category, at most 10 bytes.
using TNominalIDStr = TShortString<10>;
/// Name of a row or column, at most 50 bytes.
using TDTNameStr = TShortString<50>;

/// Scale of a variable and its categories. Category k = 1..150 has the identifier IDs[k - 1].
struct TVTypeSpec {
  TMScaleType MScaleType = stInterval;
  std::array<TNominalIDStr, 150> IDs{};
  bool operator==(const TVTypeSpec&) const = default;
};

/// The dimensions of a table have changed.
using TDataTableResizeEvent =
    std::function<void(TObject* Sender, int OldColumns, int OldRows, int NewColumns, int NewRows)>;

/// How a text file of delimited cells is read, and what is told of it beside the table.
struct TCSVImport {
  TCSVDelimiters Delimiter = cdDetect;
  bool IncludeColHeaders = true;   ///< the first line holds the names of the columns
  bool IncludeRowHeaders = false;  ///< the first column holds the names of the rows
  TDecPSep DecSep = dpsPoint;
  /// A column with more than 150 different texts is no error: it becomes a column of empty cells of
  /// unknown scale.
  bool SkipLongTexts = false;

  /// A column with other texts than numbers.
  struct TTexts {
    int Column = 0;          ///< from 1
    int Numbers = 0;         ///< cells that are numbers; of a skipped column those looked at
    int Words = 0;           ///< cells that are none, empty ones apart
    std::int64_t Line = 0;   ///< of the first of them
    std::string Word{};      ///< its whole text
    bool IsCut = false;      ///< a text is longer than an identifier
    bool IsSkipped = false;  ///< by SkipLongTexts
  };
  std::string Message{};                 ///< what is wrong, with the line or the column
  std::vector<std::int64_t> RowLines{};  ///< the line of the file in which each row starts, from 1
  std::vector<TTexts> Texts{};           ///< in ascending order of the columns
};

/// Tags of the XML form of a table.
enum TDTxmlTags : std::uint8_t {
  xmlDataTableId,
  xmlDataTableEndId,
  xmlComment,
  xmlSize,
  xmlColNames,
  xmlRowNames,
  xmlColAttrib,
  xmlRowAttrib,
  xmlColId,
  xmlRowId,
  xmlDataCells,
  xmlCellID,
  xmlVarType,
  xmlVarIdentifier,
  xmlInvalid
};

/// Names of the tags, by TDTxmlTags, as the readers of tags take them. The last stands for every
/// other tag.
inline constexpr std::array<std::string_view, 15> DTxmlTagNames = {
    "datatable", "/datatable", "comment",   "size", "colnames",
    "rownames",  "colattrib",  "rowattrib", "col",  "row",
    "datacells", "cell",       "vardef",    "idf",  "invalid"};

namespace detail {

constexpr bool IsCategoricalScale(TMScaleType scale) {
  return scale == stNominal || scale == stOrdinal;
}

/// The identifiers of a column. Copies share them until one is changed, and a column without any
/// holds nothing: a file may have a million columns.
class TIdentifiers {
 public:
  using TSlots = decltype(TVTypeSpec::IDs);

  [[nodiscard]] static constexpr std::size_t size() { return std::tuple_size_v<TSlots>; }
  [[nodiscard]] const TNominalIDStr& operator[](std::size_t k) const { return All()[k]; }
  [[nodiscard]] TSlots::const_iterator begin() const { return All().begin(); }
  [[nodiscard]] TSlots::const_iterator end() const { return All().end(); }
  /// @throws std::bad_alloc  nothing has changed then
  void Set(std::size_t k, const TNominalIDStr& id) {
    if (All()[k] == id) return;
    if (FSlots.use_count() != 1) FSlots = std::make_shared<TSlots>(All());
    (*FSlots)[k] = id;
  }
  void Clear() { FSlots.reset(); }
  [[nodiscard]] bool operator==(const TIdentifiers& other) const { return All() == other.All(); }

 private:
  [[nodiscard]] const TSlots& All() const {
    static constexpr TSlots none{};
    return FSlots ? *FSlots : none;
  }
  std::shared_ptr<TSlots> FSlots;
};

/// What a TVTypeSpec tells, as a table keeps it.
struct TColumnType {
  TMScaleType MScaleType = stInterval;
  TIdentifiers IDs;
  bool operator==(const TColumnType&) const = default;
};

/// What a table holds beside its values.
struct TTableArrays {
  std::string FComment;
  TDynArray<int, 1> FRowAtt;
  TDynArray<int, 1> FColAtt;
  TDynArray<TColumnType, 1> FVType;
  TDynArray<std::uint8_t, 2> FCState;  // [column][row]
  TDynArray<TDTNameStr, 1> FColName;
  TDynArray<TDTNameStr, 1> FRowName;
};

struct TTableContents;
class TXmlTable;
class XmlReader;

}  // namespace detail

}  // namespace zel
