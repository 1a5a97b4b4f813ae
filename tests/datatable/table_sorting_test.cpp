// Sorts of a table, against the passes of the comb sort carried out line by line.
#include <functional>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "tests/datatable/same_tables.h"
#include "zel/datatable/Zel_datatable.h"

namespace zel {
namespace {

using test::expectSame;

/// All cells differ but for ties in the first column and row, so that every exchange shows.
void fill(TDataTable& T, int columns, int rows, unsigned seed) {
  std::mt19937 random(seed);
  T.Resize(columns, rows);
  const char* const names[] = {"b", "A", "a", "B", "", "\xE4", "ab"};
  for (int c = 1; c <= columns; ++c) {
    T.SetColAttrib(c, static_cast<int>(random() % 7) - 3);
    T.SetColName(c, names[random() % 7]);
    T.SetMScaleType(c, static_cast<TMScaleType>(c % 5));
    T.AddNominalID(c, "id" + std::string(1, static_cast<char>('a' + c)));
    for (int r = 1; r <= rows; ++r) {
      T.SetElem(c, r, c == 1 || r == 1 ? static_cast<double>(random() % 9) : 100 * c + r);
      T.SetCellState(c, r, static_cast<std::uint8_t>(random()));
    }
  }
  for (int r = 1; r <= rows; ++r) {
    T.SetRowAttrib(r, static_cast<int>(random() % 7) - 3);
    T.SetRowName(r, names[random() % 7]);
  }
}

using Exchange = std::tuple<int, int, int, int, int>;

/// What moves, cell by cell.
void exchange(TDataTable& T, bool isRows, int i, int j, int first, int last, bool headers,
              int keyLine) {
  for (int k = first; k <= last; ++k) {
    const auto cell = [&](int line) { return isRows ? std::pair(k, line) : std::pair(line, k); };
    const auto [c1, r1] = cell(i);
    const auto [c2, r2] = cell(j);
    const std::uint8_t state = T.GetCellState(c1, r1);
    T.SetCellState(c1, r1, T.GetCellState(c2, r2));
    T.SetCellState(c2, r2, state);
    const double x = T.NumericData->GetVal(c1, r1);
    T.NumericData->SetVal(c1, r1, T.NumericData->GetVal(c2, r2));
    T.NumericData->SetVal(c2, r2, x);
  }
  if (keyLine > 0 && (keyLine < first || keyLine > last)) {
    const auto [c1, r1] = isRows ? std::pair(keyLine, i) : std::pair(i, keyLine);
    const auto [c2, r2] = isRows ? std::pair(keyLine, j) : std::pair(j, keyLine);
    const double x = T.NumericData->GetVal(c1, r1);
    T.NumericData->SetVal(c1, r1, T.NumericData->GetVal(c2, r2));
    T.NumericData->SetVal(c2, r2, x);
  }
  if (!headers) return;
  if (isRows) {
    const std::string name(T.GetRowName(i).view());
    const int attribute = T.GetRowAttrib(i);
    T.SetRowName(i, T.GetRowName(j));
    T.SetRowAttrib(i, T.GetRowAttrib(j));
    T.SetRowName(j, name);
    T.SetRowAttrib(j, attribute);
    return;
  }
  const std::string name(T.GetColName(i).view());
  const int attribute = T.GetColAttrib(i);
  T.SetColName(i, T.GetColName(j));
  T.SetColAttrib(i, T.GetColAttrib(j));
  T.SetColName(j, name);
  T.SetColAttrib(j, attribute);
  const TMScaleType scale = T.GetMScaleType(i);
  // Identifiers can be read and written in categorical columns only.
  T.SetMScaleType(i, stNominal);
  const TMScaleType other = T.GetMScaleType(j);
  T.SetMScaleType(j, stNominal);
  const std::string id(T.GetNominalID(i, 1).view());
  T.SetNominalID(i, 1, T.GetNominalID(j, 1));
  T.SetNominalID(j, 1, id);
  T.SetMScaleType(i, other);
  T.SetMScaleType(j, scale);
}

TEST(TableSort, EverySortIsTheCombSort) {
  for (unsigned seed = 0; seed < 144; ++seed) {
    const unsigned kind = seed % 6;  // by row or column values, attributes, names
    const bool isRows = kind % 2 == 0;
    const bool ascending = seed / 6 % 2 == 0;
    const bool isOption = seed / 12 % 2 == 0;  // headers, or letter case
    TDataTable T;
    fill(T, static_cast<int>(seed % 5) + 2, static_cast<int>(seed % 11) + 2, seed);
    const int lines = isRows ? T.NrOfRows() : T.NrOfColumns();
    const int low = seed % 3 == 0 ? 1 : 2;
    const int c1 = isRows ? static_cast<int>(seed % 2) + 1 : low;
    const int r1 = isRows ? low : static_cast<int>(seed % 2) + 1;
    TDataTable Plain;
    Plain.CopyContentsFrom(&T);
    const int first = isRows ? c1 : r1;
    const int last = isRows ? T.NrOfColumns() : T.NrOfRows();
    const bool headers = kind > 1 || isOption;
    std::vector<Exchange> expected;
    const auto comesFirst = [&](int i, int j) {
      if (kind < 2) {
        const double a = isRows ? Plain(1, i) : Plain.NumericData->GetVal(i, 1);
        const double b = isRows ? Plain.NumericData->GetVal(1, j) : Plain.NumericData->GetVal(j, 1);
        return a < b;
      }
      if (kind < 4) {
        return isRows ? Plain.GetRowAttrib(i) < Plain.GetRowAttrib(j)
                      : Plain.GetColAttrib(i) < Plain.GetColAttrib(j);
      }
      const auto name = [&](int k) {
        std::string text((isRows ? Plain.GetRowName(k) : Plain.GetColName(k)).view());
        for (char& c : text) c = isOption && c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        return text;
      };
      return name(i) < name(j);
    };
    // As the sort is defined.
    int gap = lines - low;
    for (bool exchanged = true; gap > 1 || exchanged;) {
      if (lines - low < 1) break;
      gap = std::max(gap * 10 / 13, 1);
      exchanged = false;
      for (int i = low; i + gap <= lines; ++i) {
        const int j = i + gap;
        if (!(ascending ? comesFirst(j, i) : comesFirst(i, j))) continue;
        exchange(Plain, isRows, i, j, first, last, headers, kind < 2 ? 1 : 0);
        expected.emplace_back(isRows ? 2 : 1, i, j, first, last);
        exchanged = true;
      }
      if (gap == 1 && !exchanged) break;
    }
    const auto sort = [&](TDataTable& Table) {
      const int c2 = Table.NrOfColumns();
      const int r2 = Table.NrOfRows();
      switch (kind) {
        case 0:
          return Table.SortRows(1, ascending, c1, r1, c2, r2, isOption);
        case 1:
          return Table.SortCols(1, ascending, c1, r1, c2, r2, isOption);
        case 2:
          return Table.SortRowAttributes(ascending, c1, r1, c2, r2);
        case 3:
          return Table.SortColAttributes(ascending, c1, r1, c2, r2);
        case 4:
          return Table.SortRowNames(ascending, isOption, c1, r1, c2, r2);
        default:
          return Table.SortColNames(ascending, isOption, c1, r1, c2, r2);
      }
    };
    SCOPED_TRACE(seed);
    TDataTable Silent;
    Silent.CopyContentsFrom(&T);
    std::string events;
    Silent.OnChange = [&](TObject*) { events += 'd'; };
    Silent.OnChangeNames = [&](TObject*) { events += 'n'; };
    Silent.OnChangeAttrib = [&](TObject*) { events += 'a'; };
    Silent.OnChangeSetup = Silent.OnChangeCellState = [&](TObject*) { events += 'x'; };
    sort(Silent);
    expectSame(Silent, Plain);
    const char* const told[] = {"d", "da", "dn"};
    const bool isSingle = low == lines;
    EXPECT_EQ(events, isSingle ? "" : kind < 2 ? (isOption ? "dna" : "d") : told[kind / 2]);
    std::vector<Exchange> exchanges;
    T.OnSortExchange = [&](TObject*, std::uint8_t what, int i, int j, int from, int to) {
      exchanges.emplace_back(what, i, j, from, to);
    };
    sort(T);
    expectSame(T, Plain);
    EXPECT_EQ(exchanges, expected);
  }
}

TEST(TableSort, HandlersMayShrinkTheTable) {
  for (int kind = 0; kind < 4; ++kind) {
    TDataTable T;
    fill(T, 6, 12, 5);
    for (int c = 1; c <= 6; ++c) T.SetColAttrib(c, -c);
    T.OnSortExchange = [&](TObject*, auto...) { T.Resize(2, 3); };
    if (kind == 0) T.SortRows(1, true, 0, 0, 0, 0, true);
    if (kind == 1) T.SortCols(1, true, 0, 0, 0, 0, true);
    if (kind == 2) T.SortRowNames(true, 0, 0, 0, 0);
    if (kind == 3) T.SortColAttributes(true, 0, 0, 0, 0);
    EXPECT_EQ(T.NrOfRows(), 3) << kind;
  }
  TDataTable T;
  T.OnChange = [](TObject*) { FAIL() << "nothing to sort"; };
  T.OnChangeNames = T.OnChange;
  T.SortRows(1, true, 0, 0, 0, 0, true);
  T.Resize(1, 3);
  T.SortRows(2, true, 0, 0, 0, 0, true);
  T.SortCols(1, true, 0, 0, 0, 0, true);
}

}  // namespace
}  // namespace zel
