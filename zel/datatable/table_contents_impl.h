/// @file
/// Contents of a table outside one: what the readers of files fill and the writers write. Internal.
#pragma once

#include <cstddef>
#include <tuple>

#include "zel/datatable/tabletypes.h"

namespace zel::detail {

/// Place in storage of an index that counts from 1.
inline std::size_t at(int index) { return static_cast<std::size_t>(index - 1); }

/// All that a table holds.
struct TTableContents : TTableArrays {
  TDouble2DArray Values;  // [column][row], like FCState

  /// Takes copies of all but the values.
  explicit TTableContents(const TTableArrays& arrays) : TTableArrays(arrays) {}
  /// Zeros, with the names and scales of a new table.
  TTableContents(std::size_t columns, std::size_t rows);

  [[nodiscard]] std::size_t Columns() const { return FColName.size(); }
  [[nodiscard]] std::size_t Rows() const { return FRowName.size(); }
  /// Gives Values and FCState, which a reader may have made longer, the number of rows that have a
  /// name.
  void FitRows();
};

/// What a writer writes. Refers to its source.
struct TTableView {
  const TTableArrays& Arrays;
  const double* Values;  // column by column

  [[nodiscard]] std::size_t Columns() const { return Arrays.FColName.size(); }
  [[nodiscard]] std::size_t Rows() const { return Arrays.FRowName.size(); }
  /// @param c  from 0, like r
  [[nodiscard]] double Value(std::size_t c, std::size_t r) const { return Values[c * Rows() + r]; }
  [[nodiscard]] std::uint8_t State(std::size_t c, std::size_t r) const {
    return Arrays.FCState.data()[c * Rows() + r];
  }
  [[nodiscard]] bool IsCategorical(std::size_t c) const {
    return IsCategoricalScale(Arrays.FVType[c].MScaleType);
  }
};

/// Identifier of the category that a value stands for; the decimal text of the number if there is
/// none.
[[nodiscard]] TNominalIDStr CategoryText(const TColumnType& type, double value);

/// Number of categories that a variable can have.
inline constexpr int kSlots = static_cast<int>(std::tuple_size_v<decltype(TVTypeSpec::IDs)>);

[[nodiscard]] constexpr bool IsCategory(int k) { return k >= 1 && k <= kSlots; }
/// Number of the first category with an identifier, which is not empty; 0 if there is none.
[[nodiscard]] int FindCategory(const TColumnType& type, const TNominalIDStr& id, bool ignoreCase);
/// Number of the first category without identifier; 0 if there is none.
[[nodiscard]] int FreeCategory(const TColumnType& type);

/// Default name: C-7.
[[nodiscard]] TDTNameStr NumberedName(char initial, std::size_t number);
/// Default names: C-1, C-2 ... from an index (from 0) on.
void NameColumns(TTableArrays& arrays, std::size_t from);
void NameRows(TTableArrays& arrays, std::size_t from);

}  // namespace zel::detail
