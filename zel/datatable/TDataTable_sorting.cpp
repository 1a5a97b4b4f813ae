#include <algorithm>

#include "zel/base/stringhelpers.h"
#include "zel/datatable/guards_impl.h"
#include "zel/kernels/comb_order.h"

namespace zel {

using detail::at;

namespace {

/// Puts entry order[k] to place k.
template <class T>
void reorder(T* entries, std::span<const std::uint64_t> order, std::vector<T>& room) {
  for (std::size_t k = 0; k < order.size(); ++k) room[k] = entries[order[k]];
  std::copy(room.begin(), room.end(), entries);
}

/// While it lives, a flag has another value.
class TKept {
 public:
  TKept(bool& flag, bool value) : FFlag(flag), FOld(flag) { flag = value; }
  ~TKept() { FFlag = FOld; }
  TKept(const TKept&) = delete;
  TKept& operator=(const TKept&) = delete;

 private:
  bool& FFlag;
  bool FOld;
};

}  // namespace

void TDataTable::ReorderRows(const TCellRange& range, int keyColumn,
                             std::span<const std::uint64_t> order) {
  const std::size_t first = at(range.LowRow);
  std::vector<double> values(order.size());
  std::vector<std::uint8_t> states(order.size());
  std::vector<int> attributes(FSortIncludeHd ? order.size() : 0);
  std::vector<TDTNameStr> names(FSortIncludeHd ? order.size() : 0);
  // From here on nothing fails.
  for (int c = range.LowCol; c <= range.HighCol; ++c) {
    reorder(Values(c) + first, order, values);
    reorder(States(c) + first, order, states);
  }
  if (keyColumn > 0 && (keyColumn < range.LowCol || keyColumn > range.HighCol)) {
    reorder(Values(keyColumn) + first, order, values);
  }
  if (FSortIncludeHd) {
    reorder(FRowAtt.data() + first, order, attributes);
    reorder(FRowName.data() + first, order, names);
  }
}

void TDataTable::ReorderColumns(const TCellRange& range, int keyRow,
                                std::span<const std::uint64_t> order) {
  const std::size_t first = at(range.LowCol);
  const std::size_t row = at(range.LowRow);
  const std::size_t rows = static_cast<std::size_t>(range.HighRow) - row;
  std::vector<double> values(rows);
  std::vector<double> keys(order.size());
  std::vector<std::uint8_t> states(rows);
  std::vector<std::uint8_t> isDone(order.size());
  std::vector<int> attributes(FSortIncludeHd ? order.size() : 0);
  std::vector<TDTNameStr> names(FSortIncludeHd ? order.size() : 0);
  std::vector<detail::TColumnType> types(FSortIncludeHd ? order.size() : 0);
  // From here on nothing fails. Each cycle of columns moves through one that is set aside.
  const auto valuesOf = [&](std::size_t k) { return Values(range.LowCol + static_cast<int>(k)); };
  const auto statesOf = [&](std::size_t k) { return States(range.LowCol + static_cast<int>(k)); };
  if (keyRow > 0 && (keyRow < range.LowRow || keyRow > range.HighRow)) {
    for (std::size_t k = 0; k < order.size(); ++k) keys[k] = valuesOf(order[k])[at(keyRow)];
    for (std::size_t k = 0; k < order.size(); ++k) valuesOf(k)[at(keyRow)] = keys[k];
  }
  for (std::size_t start = 0; start < order.size(); ++start) {
    if (isDone[start] != 0 || order[start] == start) continue;
    std::copy_n(valuesOf(start) + row, rows, values.begin());
    std::copy_n(statesOf(start) + row, rows, states.begin());
    std::size_t k = start;
    for (; order[k] != start; k = order[k]) {
      isDone[k] = 1;
      std::copy_n(valuesOf(order[k]) + row, rows, valuesOf(k) + row);
      std::copy_n(statesOf(order[k]) + row, rows, statesOf(k) + row);
    }
    isDone[k] = 1;
    std::copy_n(values.begin(), rows, valuesOf(k) + row);
    std::copy_n(states.begin(), rows, statesOf(k) + row);
  }
  if (FSortIncludeHd) {
    reorder(FColAtt.data() + first, order, attributes);
    reorder(FColName.data() + first, order, names);
    reorder(FVType.data() + first, order, types);
  }
}

template <class Key>
bool TDataTable::SortAtOnce(const TCellRange& range, bool isRows, int keyLine, bool ascending,
                            Key key) {
  if (OnSortExchange) return false;
  const int low = isRows ? range.LowRow : range.LowCol;
  const int high = isRows ? range.HighRow : range.HighCol;
  try {
    std::vector<std::decay_t<decltype(key(low))>> keys;
    keys.reserve(static_cast<std::size_t>(high - low) + 1);
    for (int k = low; k <= high; ++k) keys.push_back(key(k));
    std::vector<std::uint64_t> order(keys.size());
    kernels::combOrderFast(std::span(keys), std::span(order), keys.size() - 1, ascending);
    isRows ? ReorderRows(range, keyLine, order) : ReorderColumns(range, keyLine, order);
    return true;
  } catch (const std::bad_alloc&) {
    return false;  // one exchange after the other takes no memory
  }
}

void TDataTable::SortRows(int SortColIx, bool Ascending, int LowCol, int LowRow, int HighCol,
                          int HighRow, bool IncludeHeaders) {
  SortByValues(SortColIx, true, Ascending, ValidRange(LowCol, LowRow, HighCol, HighRow),
               IncludeHeaders);
}

void TDataTable::SortCols(int SortRowIx, bool Ascending, int LowCol, int LowRow, int HighCol,
                          int HighRow, bool IncludeHeaders) {
  SortByValues(SortRowIx, false, Ascending, ValidRange(LowCol, LowRow, HighCol, HighRow),
               IncludeHeaders);
}

void TDataTable::SortByValues(int keyLine, bool isRows, bool ascending, const TCellRange& range,
                              bool includeHeaders) {
  FSortIncludeHd = includeHeaders;
  const bool isSingle = isRows ? range.LowRow == range.HighRow : range.LowCol == range.HighCol;
  if (isSingle || !(isRows ? HasColumn(keyLine) : HasRow(keyLine))) return;
  FitMatrix();
  const auto key = [&](int k) { return isRows ? Values(keyLine)[at(k)] : Values(k)[at(keyLine)]; };
  if (SortAtOnce(range, isRows, keyLine, ascending, key)) {
    ChangedData();
  } else if (isRows) {
    NumericData->SortRows(keyLine, ascending, range.LowCol, range.LowRow, range.HighCol,
                          range.HighRow);
  } else {
    NumericData->SortCols(keyLine, ascending, range.LowCol, range.LowRow, range.HighCol,
                          range.HighRow);
  }
  if (!includeHeaders) return;
  ChangedNames();
  ChangedAttrib();
}

void TDataTable::ExchangeLines(bool isRows, int i, int j, int first, int last) {
  if (isRows) {
    for (int c = first; c <= last; ++c) std::swap(Values(c)[at(i)], Values(c)[at(j)]);
  } else {
    std::swap_ranges(Values(i) + at(first), Values(i) + last, Values(j) + at(first));
  }
  ExchangeDuringSort(this, isRows ? 2 : 1, i, j, first, last);
}

template <class Key>
bool TDataTable::SortLines(const TCellRange& range, bool isRows, bool ascending, Key key) {
  const int low = isRows ? range.LowRow : range.LowCol;
  const int high = isRows ? range.HighRow : range.HighCol;
  const int first = isRows ? range.LowCol : range.LowRow;
  const int last = isRows ? range.HighCol : range.HighRow;
  if (low == high) return false;
  FitMatrix();
  const TKept kept(FSortIncludeHd, true);
  if (SortAtOnce(range, isRows, 0, ascending, key)) {
    ChangedData();
    return true;
  }
  const auto step = [&](std::size_t i, std::size_t j) {
    const int a = low + static_cast<int>(i);
    const int b = low + static_cast<int>(j);
    if (!(ascending ? key(b) < key(a) : key(a) < key(b))) return kernels::CombStep::Kept;
    ExchangeLines(isRows, a, b, first, last);
    FitMatrix();
    return range.HighCol <= FNrOfCols && range.HighRow <= FNrOfRows ? kernels::CombStep::Exchanged
                                                                    : kernels::CombStep::Stop;
  };
  const std::size_t n = static_cast<std::size_t>(high - low) + 1;
  kernels::combPasses(n, n - 1, step);
  ChangedData();
  return true;
}

bool TDataTable::SortByNames(const TCellRange& range, bool isRows, bool ascending,
                             bool ignoreCase) {
  const auto name = [this, isRows](int k) { return (isRows ? FRowName : FColName)[at(k)].view(); };
  if (!ignoreCase) return SortLines(range, isRows, ascending, name);
  return SortLines(range, isRows, ascending, [&](int k) { return LowerCase(name(k)); });
}

void TDataTable::SortRowAttributes(bool Ascending, int LowCol, int LowRow, int HighCol,
                                   int HighRow) {
  const auto key = [this](int r) { return FRowAtt[at(r)]; };
  const TCellRange range = ValidRange(LowCol, LowRow, HighCol, HighRow);
  if (SortLines(range, true, Ascending, key)) ChangedAttrib();
}

void TDataTable::SortColAttributes(bool Ascending, int LowCol, int LowRow, int HighCol,
                                   int HighRow) {
  const auto key = [this](int c) { return FColAtt[at(c)]; };
  const TCellRange range = ValidRange(LowCol, LowRow, HighCol, HighRow);
  if (SortLines(range, false, Ascending, key)) ChangedAttrib();
}

void TDataTable::SortRowNames(bool Ascending, bool IgnoreCase, int LowCol, int LowRow, int HighCol,
                              int HighRow) {
  const TCellRange range = ValidRange(LowCol, LowRow, HighCol, HighRow);
  if (SortByNames(range, true, Ascending, IgnoreCase)) ChangedNames();
}

void TDataTable::SortColNames(bool Ascending, bool IgnoreCase, int LowCol, int LowRow, int HighCol,
                              int HighRow) {
  const TCellRange range = ValidRange(LowCol, LowRow, HighCol, HighRow);
  if (SortByNames(range, false, Ascending, IgnoreCase)) ChangedNames();
}

}  // namespace zel
