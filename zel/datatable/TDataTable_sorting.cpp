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
  if (keyColumn < range.LowCol || keyColumn > range.HighCol) {
    reorder(Values(keyColumn) + first, order, values);
  }
  if (FSortIncludeHd) {
    reorder(FRowAtt.data() + first, order, attributes);
    reorder(FRowName.data() + first, order, names);
  }
}

void TDataTable::SortRows(int SortColIx, bool Ascending, int LowCol, int LowRow, int HighCol,
                          int HighRow, bool IncludeHeaders) {
  const TCellRange range = ValidRange(LowCol, LowRow, HighCol, HighRow);
  FSortIncludeHd = IncludeHeaders;
  if (range.LowRow == range.HighRow || !HasColumn(SortColIx)) return;
  FitMatrix();
  bool isSorted = false;
  if (!OnSortExchange) {
    try {
      const double* const column = Values(SortColIx);
      std::vector<double> keys(column + at(range.LowRow), column + range.HighRow);
      std::vector<std::uint64_t> order(keys.size());
      kernels::combOrderFast(std::span(keys), std::span(order), keys.size() - 1, Ascending);
      ReorderRows(range, SortColIx, order);
      isSorted = true;
    } catch (const std::bad_alloc&) {
      // One exchange after the other takes no memory.
    }
  }
  if (isSorted) {
    ChangedData();
  } else {
    NumericData->SortRows(SortColIx, Ascending, range.LowCol, range.LowRow, range.HighCol,
                          range.HighRow);
  }
  if (!IncludeHeaders) return;
  ChangedNames();
  ChangedAttrib();
}

void TDataTable::SortCols(int SortRowIx, bool Ascending, int LowCol, int LowRow, int HighCol,
                          int HighRow, bool IncludeHeaders) {
  const TCellRange range = ValidRange(LowCol, LowRow, HighCol, HighRow);
  FSortIncludeHd = IncludeHeaders;
  if (range.LowCol == range.HighCol || !HasRow(SortRowIx)) return;
  FitMatrix();
  NumericData->SortCols(SortRowIx, Ascending, range.LowCol, range.LowRow, range.HighCol,
                        range.HighRow);
  if (!IncludeHeaders) return;
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
