#include <algorithm>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

#include "zel/base/rounding.h"
#include "zel/datatable/guards_impl.h"
#include "zel/kernels/range.h"

namespace zel {

using detail::at;

namespace {

template <class... Event>
auto copiesOf(const std::tuple<Event&...>& events) {
  return std::tuple<std::remove_const_t<Event>...>(events);
}

/// A nominal variable whose categories are 1:name, 2:name and so on.
detail::TColumnType numberedNames(const TDynArray<TDTNameStr, 1>& names) {
  detail::TColumnType type;
  type.MScaleType = stNominal;
  for (std::size_t i = 0; i < std::min(names.size(), type.IDs.size()); ++i) {
    const std::string id = std::to_string(i + 1).append(":").append(std::string_view(names[i]));
    type.IDs.Set(i, TNominalIDStr(id));
  }
  return type;
}

}  // namespace

void TDataTable::Assign(const TPersistent* Source) {
  const auto* source = dynamic_cast<const TDataTable*>(Source);
  if (!source) return TComponent::Assign(Source);
  if (source == this) return;
  Guarded([&] {
    // Whatever may throw comes before anything of this object changes.
    detail::TTableArrays arrays(*source);
    auto events = copiesOf(source->Events());
    NumericData->Assign(source->NumericData);
    AttachMatrix();
    static_cast<detail::TTableArrays&>(*this) = std::move(arrays);
    Events() = std::move(events);
  });
  FNrOfCols = source->FNrOfCols;
  FNrOfRows = source->FNrOfRows;
  FSortIncludeHd = source->FSortIncludeHd;
}

void TDataTable::AssignTo(TPersistent* Dest) const {
  auto* dest = dynamic_cast<TDataTable*>(Dest);
  if (!dest) return TComponent::AssignTo(Dest);
  dest->Assign(this);
}

void TDataTable::CopyContentsFrom(const TDataTable* ExtTab) {
  if (!ExtTab) return;
  TakeContents(Guarded([&] {
    detail::TTableContents contents(*ExtTab);
    const std::size_t rows = contents.Rows();
    contents.Values.SetLength(contents.Columns(), rows);
    for (int c = 1; c <= ExtTab->FNrOfCols; ++c) {
      double* const values = contents.Values.data() + at(c) * rows;
      ExtTab->ReadValues(c, 1, rows, values);
      if (ExtTab->IsCategorical(c))
        std::transform(values, values + rows, values, RoundEven<double>);
    }
    return contents;
  }));
}

void TDataTable::TakeContents(detail::TTableContents&& contents) {
  const int oldCols = FNrOfCols;
  const int oldRows = FNrOfRows;
  {
    const detail::TSuspended change(OnChange);
    const detail::TSuspended setup(OnChangeSetup);
    const detail::TSuspended names(OnChangeNames);
    const detail::TSuspended states(OnChangeCellState);
    const detail::TSuspended attributes(OnChangeAttrib);
    {
      const TDetached detached(*this);
      NumericData->Adopt(std::move(contents.Values));
    }
    static_cast<detail::TTableArrays&>(*this) = std::move(contents);
    FNrOfCols = static_cast<int>(FColName.size());
    FNrOfRows = static_cast<int>(FRowName.size());
    if (FNrOfCols != oldCols || FNrOfRows != oldRows) FireResize(oldCols, oldRows);
  }
  ChangedData();
  ChangedCellStates();
  ChangedSetup();
  ChangedNames();
  ChangedAttrib();
  FireResize(oldCols, oldRows);
}

void TDataTable::CopyFrom(const TDataTable* ExtTab, int SourceColLo, int SourceRowLo,
                          int SourceColHi, int SourceRowHi, int DestCol, int DestRow) {
  if (!ExtTab) return;
  FitMatrix();
  kernels::clampBounds(SourceColLo, SourceColHi, ExtTab->FNrOfCols);
  kernels::clampBounds(SourceRowLo, SourceRowHi, ExtTab->FNrOfRows);
  // The part of the rectangle, counted from 0, that falls inside.
  const auto inside = [](int low, int high, int destination, int limit) {
    const std::int64_t count = std::int64_t{high} - low + 1;
    return std::pair(std::max<std::int64_t>(0, std::int64_t{1} - destination),
                     std::min(count, std::int64_t{limit} - destination + 1));
  };
  const auto [firstCol, endCol] = inside(SourceColLo, SourceColHi, DestCol, FNrOfCols);
  const auto [firstRow, endRow] = inside(SourceRowLo, SourceRowHi, DestRow, FNrOfRows);
  if (firstCol < endCol && firstRow < endRow) {
    const auto rows = static_cast<std::size_t>(endRow - firstRow);
    const int fromRow = SourceRowLo + static_cast<int>(firstRow);
    const int toRow = static_cast<int>(DestRow + firstRow);
    // A table that copies to columns behind must read them before it writes there.
    const bool backward = DestCol > SourceColLo;
    for (std::int64_t k = 0; k < endCol - firstCol; ++k) {
      const std::int64_t i = backward ? endCol - 1 - k : firstCol + k;
      const int from = SourceColLo + static_cast<int>(i);
      const int to = static_cast<int>(DestCol + i);
      ExtTab->ReadValues(from, fromRow, rows, Values(to) + at(toRow));
      std::memmove(States(to) + at(toRow), ExtTab->States(from) + at(fromRow), rows);
    }
  }
  ChangedData();
  ChangedCellStates();
}

bool TDataTable::CopyCellStatesFrom(const TDataTable* ExtTab) {
  if (!ExtTab || ExtTab->FNrOfCols != FNrOfCols || ExtTab->FNrOfRows != FNrOfRows) return false;
  if (ExtTab != this) {
    std::copy(ExtTab->FCState.begin(), ExtTab->FCState.end(), FCState.begin());
  }
  ChangedCellStates();
  return true;
}

void TDataTable::Serialize(bool ColHeadsAsVar, bool IncludeColRowNumbers) {
  const int oldCols = FNrOfCols;
  const int oldRows = FNrOfRows;
  {
    const detail::TSuspended change(OnChange);
    TMScaleType highest = stUnknown;
    for (const detail::TColumnType& type : FVType) highest = std::max(highest, type.MScaleType);
    const std::size_t rows = Rows();
    TDouble2DArray oldValues;
    TDynArray<std::uint8_t, 2> oldStates;
    TDynArray<TDTNameStr, 1> oldColName;
    TDynArray<TDTNameStr, 1> oldRowName;
    TDynArray<int, 1> oldRowAtt;
    detail::TColumnType heads;
    Guarded([&] {
      CopyDataToArray(oldValues);
      oldStates = FCState;
      oldColName = FColName;
      oldRowName = FRowName;
      oldRowAtt = FRowAtt;
      if (ColHeadsAsVar) heads = numberedNames(FColName);
    });
    for (int c = 1; c <= oldCols; ++c) {
      const auto values = oldValues[at(c)];
      if (!IsCategorical(c)) continue;
      std::transform(values.begin(), values.end(), values.begin(), RoundEven<double>);
    }
    const int m = 1 + (ColHeadsAsVar ? 1 : 0) + (IncludeColRowNumbers ? 2 : 0);
    ResizeTo(m, std::int64_t{oldCols} * oldRows);

    if (ColHeadsAsVar) {
      Type(1) = std::move(heads);
      FColName[0] = TDTNameStr("(column)");
    }
    if (IncludeColRowNumbers) {
      FColName[at(m - 2)] = TDTNameStr("(col. index)");
      FColName[at(m - 1)] = TDTNameStr("(row index)");
    }
    FColName[at(m)] = TDTNameStr("(data)");
    Type(m).MScaleType = highest;

    for (int c = 1; c <= oldCols; ++c) {
      const std::size_t first = at(c) * rows;  // place of the old column's first cell
      std::copy_n(oldValues[at(c)].data(), rows, Values(m) + first);
      std::copy_n(oldStates[at(c)].data(), rows, States(m) + first);
      if (ColHeadsAsVar) std::fill_n(Values(1) + first, rows, c);
      if (IncludeColRowNumbers) {
        std::fill_n(Values(m - 2) + first, rows, c);
        for (std::size_t r = 0; r < rows; ++r) {
          Values(m - 1)[first + r] = static_cast<double>(r + 1);
        }
      }
      std::copy_n(oldRowName.data(), rows, FRowName.data() + first);
      std::copy_n(oldRowAtt.data(), rows, FRowAtt.data() + first);
    }
    if (FNrOfCols != oldCols || FNrOfRows != oldRows) FireResize(oldCols, oldRows);
  }
  ChangedData();
}

// Arrays.

int TDataTable::CopyDataColumnToArray(int Col, TDoubleArray& DstArray) const {
  if (!HasColumn(Col)) return -1;
  Guarded([&] { DstArray.resize(Rows()); });
  ReadValues(Col, 1, Rows(), DstArray.data());
  return 0;
}

int TDataTable::CopyDataRowToArray(int Row, TDoubleArray& DstArray) const {
  if (!HasRow(Row)) return -1;
  Guarded([&] { DstArray.resize(Columns()); });
  for (int c = 1; c <= FNrOfCols; ++c) DstArray[at(c)] = NumericData->GetVal(c, Row);
  return 0;
}

int TDataTable::CopyDataColumnFromArray(int Col, std::span<const double> SrcArray) {
  if (!HasColumn(Col)) return -1;
  FitMatrix();
  const std::size_t count = std::min(SrcArray.size(), Rows());
  // The source may be part of the column.
  if (count > 0) std::memmove(Values(Col), SrcArray.data(), count * sizeof(double));
  ChangedData();
  return 0;
}

int TDataTable::CopyDataRowFromArray(int Row, std::span<const double> SrcArray) {
  if (!HasRow(Row)) return -1;
  FitMatrix();
  const std::size_t count = std::min(SrcArray.size(), Columns());
  for (std::size_t c = 0; c < count; ++c) Values(static_cast<int>(c) + 1)[at(Row)] = SrcArray[c];
  ChangedData();
  return 0;
}

void TDataTable::CopyDataToArray(TDouble2DArray& DstArray) const {
  Guarded([&] { DstArray.SetLength(Columns(), Rows()); });
  for (int c = 1; c <= FNrOfCols; ++c) ReadValues(c, 1, Rows(), DstArray.data() + at(c) * Rows());
}

template <class Array>
int TDataTable::StoreArray(const Array& source) {
  FitMatrix();
  const std::size_t columns = std::min(source.Length(0), Columns());
  const std::size_t rows = std::min(source.Length(1), Rows());
  for (std::size_t c = 0; c < columns; ++c) {
    std::copy_n(source.data() + c * source.Length(1), rows, Values(static_cast<int>(c) + 1));
  }
  ChangedData();
  return source.Length(0) == Columns() && source.Length(1) == Rows() ? 0 : -1;
}

int TDataTable::CopyDataFromArray(const TDouble2DArray& SrcArray) { return StoreArray(SrcArray); }
int TDataTable::CopyDataFromArray(const TInt2DArray& SrcArray) { return StoreArray(SrcArray); }

}  // namespace zel
