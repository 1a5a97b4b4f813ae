/// @file
/// A data table written down plainly, cell by cell, for comparison.
#pragma once

#include "tests/support/testing.h"
#include "zel/datatable/Zel_datatable.h"

namespace zel::test {

/// Every operation that moves lines says from which old place each new line comes.
struct TableModel {
  using Places = std::vector<int>;  // of lines, 0: a new one
  struct Cell {
    double value = 0;
    int state = 0;
  };
  struct Line {
    std::string name;
    int attribute = 0;
    TMScaleType scale = stInterval;
    std::vector<std::string> ids = std::vector<std::string>(151);
  };
  std::string comment, events;
  std::vector<Line> lines[2] = {{{}, {"C-1"}}, {{}, {"R-1"}}};  // columns, rows; 0 is empty
  std::vector<std::vector<Cell>> cells{{{}, {}}, {{}, {}}};     // [column][row]

  [[nodiscard]] int count(bool ofRows) const { return static_cast<int>(lines[ofRows].size()) - 1; }
  [[nodiscard]] int nCols() const { return count(false); }
  [[nodiscard]] int nRows() const { return count(true); }
  Line& column(int c) { return lines[0][static_cast<std::size_t>(c)]; }
  Line& row(int r) { return lines[1][static_cast<std::size_t>(r)]; }
  Cell& cell(int c, int r) {
    return cells[static_cast<std::size_t>(c)][static_cast<std::size_t>(r)];
  }
  bool categorical(int c) { return column(c).scale == stNominal || column(c).scale == stOrdinal; }
  double elem(int c, int r) {
    return categorical(c) ? std::nearbyint(cell(c, r).value) : cell(c, r).value;
  }
  void round(int fromCol, int fromRow) {
    for (int c = fromCol; c <= nCols(); ++c) {
      for (int r = fromRow; r <= nRows(); ++r) cell(c, r).value = elem(c, r);
    }
  }
  static Places all(int n) {
    Places places(static_cast<std::size_t>(n));
    std::iota(places.begin(), places.end(), 1);
    return places;
  }
  void take(Places ofCols, Places ofRows) {
    TableModel old = *this;
    for (Places* places : {&ofCols, &ofRows}) places->insert(places->begin(), 0);
    lines[0].clear(), lines[1].clear(), cells.clear();
    for (const int r : ofRows) lines[1].push_back(old.row(r));
    for (const int c : ofCols) {
      lines[0].push_back(old.column(c));
      cells.emplace_back();
      for (const int r : ofRows) cells.back().push_back(old.cell(c, r));
    }
    if (nCols() != old.nCols() || nRows() != old.nRows()) {
      events += "Z(" + std::to_string(old.nCols()) + "," + std::to_string(old.nRows()) + ")";
    }
  }
  void take(bool ofRows, const Places& places) {
    take(ofRows ? all(nCols()) : places, ofRows ? places : all(nRows()));
  }
  void name(int fromCol, int fromRow) {
    for (int c = fromCol; c <= nCols(); ++c) column(c).name = "C-" + std::to_string(c);
    for (int r = fromRow; r <= nRows(); ++r) row(r).name = "R-" + std::to_string(r);
  }
  void resize(int nc, int nr) {
    if (nc < 1 || nr < 1) return;
    const int oldCols = nCols(), oldRows = nRows();
    Places ofCols = all(std::min(nc, oldCols)), ofRows = all(std::min(nr, oldRows));
    ofCols.resize(static_cast<std::size_t>(nc)), ofRows.resize(static_cast<std::size_t>(nr));
    take(ofCols, ofRows);
    name(oldCols + 1, oldRows + 1);
  }
  void insert(bool ofRows, int ix) {
    if (ix < 1 || ix > count(ofRows) + 1) return;
    round(ofRows ? 1 : ix, ofRows ? ix : 1);
    Places places = all(count(ofRows));
    places.insert(places.begin() + ix - 1, 0);
    take(ofRows, places);
    events += "S";
  }
  void remove(bool ofRows, int ix) {
    if (ix < 1 || ix > count(ofRows) || count(ofRows) == 1) return;
    for (int c = nCols(); c > ix && !ofRows; --c) {
      if (!categorical(c)) column(c).ids = column(c - 1).ids;  // those of its new place
    }
    Places places = all(count(ofRows));
    places.erase(places.begin() + ix - 1);
    take(ofRows, places);
    events += "S";
  }
  int removeMarkedRows(int first, int last, int mask) {
    if (first == 0 && last == 0) first = 1, last = nRows();
    if (first < 1 || last < 1 || first > nRows() || last > nRows()) return -1;
    Places kept = all(nRows());
    const int removed = static_cast<int>(std::erase_if(kept, [&](int r) {
      int states = 0;
      for (int c = 1; c <= nCols(); ++c) states |= cell(c, r).state;
      return r >= first && r <= last && (states & mask) != 0;
    }));
    if (kept.empty()) kept = {0};
    take(true, kept);
    events += removed > 0 ? "S" : "";
    return removed;
  }
  void exchange(bool ofRows, int i, int j) {
    if (std::min(i, j) < 1 || std::max(i, j) > count(ofRows)) return;
    Places places = all(count(ofRows));
    std::swap(places[static_cast<std::size_t>(i - 1)], places[static_cast<std::size_t>(j - 1)]);
    take(ofRows, places);
    events += "DCANS";
  }
  void mirror(bool ofRows) {
    Places places = all(count(ofRows));
    std::reverse(places.begin(), places.end());
    take(ofRows, places);
    events += "DCANS";
  }
  void clear() {
    take(Places(lines[0].size() - 1), Places(lines[1].size() - 1));
    name(1, 1);
    comment.clear();
    events += "NACS";
  }
  void copyFrom(int c1, int r1, int c2, int r2, int destCol, int destRow) {
    TableModel old = *this;
    for (int c = std::max(1, destCol); c <= std::min(nCols(), destCol + c2 - c1); ++c) {
      for (int r = std::max(1, destRow); r <= std::min(nRows(), destRow + r2 - r1); ++r) {
        cell(c, r) = old.cell(c - destCol + c1, r - destRow + r1);
      }
    }
    events += "DC";
  }
  void serialize(bool heads, bool numbers) {
    TableModel old = *this;
    TMScaleType highest = stUnknown;
    for (int c = 1; c <= nCols(); ++c) highest = std::max(highest, column(c).scale);
    const int m = 1 + (heads ? 1 : 0) + (numbers ? 2 : 0);
    resize(m, old.nCols() * old.nRows());
    if (heads) column(1) = {"(column)", column(1).attribute, stNominal};
    if (numbers) column(m - 2).name = "(col. index)", column(m - 1).name = "(row index)";
    column(m).name = "(data)", column(m).scale = highest;
    for (int k = 1; k <= nRows(); ++k) {
      const int i = (k - 1) / old.nRows() + 1, j = (k - 1) % old.nRows() + 1;
      std::string& id = column(1).ids[static_cast<std::size_t>(i)];
      if (heads) id = (std::to_string(i) + ":" + old.column(i).name).substr(0, 10);
      if (heads) cell(1, k).value = i;
      if (numbers) cell(m - 2, k).value = i, cell(m - 1, k).value = j;
      cell(m, k) = {old.elem(i, j), old.cell(i, j).state};
      row(k) = old.row(j);
    }
    events += "D";
  }
};

/// Writes the events of a table down, and checks that every handler finds it consistent.
inline void recordEvents(TDataTable& table, std::string& events) {
  const auto note = [&table, &events](const char* letter) {
    return [&table, &events, letter](TObject* Sender) {
      EXPECT_EQ(Sender, &table);
      EXPECT_EQ(table.NumericData->NrOfColumns(), table.NrOfColumns());
      EXPECT_EQ(table.NumericData->NrOfRows(), table.NrOfRows());
      events += letter;
    };
  };
  table.OnChange = note("D");
  table.OnChangeSetup = note("S");
  table.OnChangeNames = note("N");
  table.OnChangeCellState = note("C");
  table.OnChangeAttrib = note("A");
  table.OnResize = [&events, resized = note("")](TObject* Sender, int c, int r, int, int) {
    resized(Sender);
    events += "Z(" + std::to_string(c) + "," + std::to_string(r) + ")";
  };
}

/// A difference between a table and its model; empty if there is none.
inline std::string difference(const TDataTable& table, TableModel& model) {
  std::string found;
  const auto expect = [&found](const char* what, int place, const auto& a, const auto& b) {
    if (!(a == b)) found = what + std::to_string(place);
  };
  expect("columns ", 0, table.NrOfColumns(), model.nCols());
  expect("rows ", 0, table.NrOfRows(), model.nRows());
  expect("comment ", 0, table.Comment(), model.comment);
  for (int r = 1; r <= model.nRows() && found.empty(); ++r) {
    expect("name of row ", r, table.GetRowName(r), model.row(r).name);
    expect("attribute of row ", r, table.GetRowAttrib(r), model.row(r).attribute);
  }
  for (int c = 1; c <= model.nCols() && found.empty(); ++c) {
    const TableModel::Line& column = model.column(c);
    expect("name of column ", c, table.GetColName(c), column.name);
    expect("attribute of column ", c, table.GetColAttrib(c), column.attribute);
    expect("scale of column ", c, table.GetMScaleType(c), column.scale);
    const auto hidden = std::count_if(column.ids.begin(), column.ids.end(),
                                      [](const std::string& id) { return !id.empty(); });
    expect("number of identifiers ", c, table.CountNominalIDs(c), static_cast<int>(hidden));
    for (int k = 1; k <= 150 && model.categorical(c); ++k) {
      expect("identifier ", k, table.GetNominalID(c, k), column.ids[static_cast<std::size_t>(k)]);
    }
    for (int r = 1; r <= model.nRows(); ++r) {
      expect("value in row ", r, table.NumericData->GetVal(c, r), model.cell(c, r).value);
      expect("element in row ", r, table.GetElem(c, r), model.elem(c, r));
      expect("state in row ", r, int{table.GetCellState(c, r)}, model.cell(c, r).state);
    }
  }
  return found;
}

}  // namespace zel::test
