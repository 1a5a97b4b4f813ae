// Sorts of a table, against the passes of the comb sort carried out line by line.
#include "tests/datatable/table_model.h"
#include "tests/support/testing.h"

namespace zel::test {
namespace {

/// All cells differ but for ties in the first column and row, so that every exchange shows.
TableModel fill(TDataTable& T, int columns, int rows, unsigned seed) {
  std::mt19937 random(seed);
  TableModel model;
  T.Resize(columns, rows), model.resize(columns, rows);
  const auto head = [&](TableModel::Line& line) {
    const char* const names[] = {"b", "A", "a", "B", "", "\xE4", "ab"};
    line.attribute = static_cast<int>(random() % 7) - 3;
    line.name = names[random() % 7];
  };
  for (int c = 1; c <= columns; ++c) {
    TableModel::Line& column = model.column(c);
    head(column);
    column.scale = static_cast<TMScaleType>(c % 5);
    column.ids[1].append("id").append(1, static_cast<char>('a' + c));
    T.SetColAttrib(c, column.attribute), T.SetColName(c, column.name);
    T.AddNominalID(c, column.ids[1]), T.SetMScaleType(c, column.scale);
    for (int r = 1; r <= rows; ++r) {
      model.cell(c, r) = {c == 1 || r == 1 ? static_cast<double>(random() % 9) : 100 * c + r,
                          static_cast<std::uint8_t>(random())};
      T.SetElem(c, r, model.cell(c, r).value);
      T.SetCellState(c, r, static_cast<std::uint8_t>(model.cell(c, r).state));
    }
  }
  for (int r = 1; r <= rows; ++r) {
    head(model.row(r));
    T.SetRowAttrib(r, model.row(r).attribute), T.SetRowName(r, model.row(r).name);
  }
  return model;
}

TEST(TableSort, EverySortIsTheCombSort) {
  for (unsigned seed = 0; seed < 144; ++seed) {
    const unsigned kind = seed % 6;  // by row or column values, attributes, names
    const bool isRows = kind % 2 == 0;
    const bool ascending = seed / 6 % 2 == 0;
    const bool isOption = seed / 12 % 2 == 0;  // headers, or letter case
    TDataTable T;
    TableModel plain =
        fill(T, static_cast<int>(seed % 5) + 2, static_cast<int>(seed % 11) + 2, seed);
    const int lines = plain.count(isRows), last = plain.count(!isRows);
    const int low = seed / 48 % 2 ? 2 : 1, first = seed / 24 % 2 ? 2 : 1;
    const auto cell = [&](int line, int k) -> TableModel::Cell& {
      return isRows ? plain.cell(k, line) : plain.cell(line, k);
    };
    const auto head = [&](int i) -> auto& { return isRows ? plain.row(i) : plain.column(i); };
    const auto comesFirst = [&](int i, int j) {
      const auto name = [&](int k) {
        std::string text = head(k).name;
        for (char& c : text) c = isOption && c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        return text;
      };
      return kind < 2   ? cell(i, 1).value < cell(j, 1).value
             : kind < 4 ? head(i).attribute < head(j).attribute
                        : name(i) < name(j);
    };
    // As the sort is defined.
    using Exchange = std::tuple<int, int, int, int, int>;
    std::vector<Exchange> exchanges, expected;
    int gap = lines - low;
    for (bool exchanged = true; gap > 1 || exchanged;) {
      gap = std::max(gap * 10 / 13, 1);
      exchanged = false;
      for (int i = low; i + gap <= lines; ++i) {
        const int j = i + gap;
        if (!(ascending ? comesFirst(j, i) : comesFirst(i, j))) continue;
        for (int k = first; k <= last; ++k) std::swap(cell(i, k), cell(j, k));
        // The keys go along, without their states.
        if (kind < 2 && first > 1) std::swap(cell(i, 1).value, cell(j, 1).value);
        if (kind > 1 || isOption) std::swap(head(i), head(j));
        expected.emplace_back(isRows ? 2 : 1, i, j, first, last);
        exchanged = true;
      }
    }
    const auto sort = [&](TDataTable& table) {
      const int c1 = isRows ? first : low, r1 = isRows ? low : first;
      const int c2 = table.NrOfColumns(), r2 = table.NrOfRows();
      if (kind == 0) table.SortRows(1, ascending, c1, r1, c2, r2, isOption);
      if (kind == 1) table.SortCols(1, ascending, c1, r1, c2, r2, isOption);
      if (kind == 2) table.SortRowAttributes(ascending, c1, r1, c2, r2);
      if (kind == 3) table.SortColAttributes(ascending, c1, r1, c2, r2);
      if (kind == 4) table.SortRowNames(ascending, isOption, c1, r1, c2, r2);
      if (kind == 5) table.SortColNames(ascending, isOption, c1, r1, c2, r2);
    };
    SCOPED_TRACE(seed);
    TDataTable silent;
    silent.CopyContentsFrom(&T);
    std::string events;
    recordEvents(silent, events);
    sort(silent);
    EXPECT_EQ(difference(silent, plain), "");
    const char* const told[] = {isOption ? "DNA" : "D", "DA", "DN"};
    EXPECT_EQ(events, low == lines ? "" : told[kind / 2]);
    T.OnSortExchange = [&](TObject*, std::uint8_t what, int i, int j, int from, int to) {
      exchanges.emplace_back(what, i, j, from, to);
    };
    sort(T);
    EXPECT_EQ(difference(T, plain), "");
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
}  // namespace zel::test
