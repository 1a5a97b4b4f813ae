/// @file
/// A data table written down plainly, cell by cell and step by step, for comparison.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "zel/datatable/Zel_datatable.h"

namespace zel::test {

struct TableModel {
  struct Cell {
    double value = 0;
    int state = 0;
  };
  struct Line {
    std::string name;
    int attribute = 0;
  };
  struct Column : Line {
    TMScaleType scale = stInterval;
    std::vector<std::string> ids = std::vector<std::string>(150);
    std::vector<Cell> cells;
    [[nodiscard]] bool categorical() const { return scale == stNominal || scale == stOrdinal; }
    [[nodiscard]] double elem(std::size_t r) const {
      return categorical() ? std::nearbyint(cells[r].value) : cells[r].value;
    }
    void round() {
      for (std::size_t r = 0; r < cells.size(); ++r) cells[r].value = elem(r);
    }
  };
  std::string comment;
  std::vector<Column> columns;
  std::vector<Line> rows;
  std::string events;

  TableModel() { setSize(1, 1); }
  [[nodiscard]] int nCols() const { return static_cast<int>(columns.size()); }
  [[nodiscard]] int nRows() const { return static_cast<int>(rows.size()); }
  Column& column(int c) { return columns[static_cast<std::size_t>(c - 1)]; }
  Line& row(int r) { return rows[static_cast<std::size_t>(r - 1)]; }
  Cell& cell(int c, int r) { return column(c).cells[static_cast<std::size_t>(r - 1)]; }

  void setSize(int nc, int nr) {
    while (nCols() > nc) columns.pop_back();
    while (nRows() > nr) rows.pop_back();
    while (nCols() < nc) {
      columns.emplace_back();
      columns.back().name = "C-" + std::to_string(nCols());
    }
    while (nRows() < nr) rows.push_back({"R-" + std::to_string(nRows() + 1), 0});
    for (Column& column : columns) column.cells.resize(rows.size());
  }
  void resized(int oldCols, int oldRows) {
    events += "Z(" + std::to_string(oldCols) + "," + std::to_string(oldRows) + ")";
  }
  void resize(int nc, int nr) {
    if (nc < 1 || nr < 1 || (nc == nCols() && nr == nRows())) return;
    const int oldCols = nCols(), oldRows = nRows();
    setSize(nc, nr);
    resized(oldCols, oldRows);
  }
  void insertRow(int ix) {
    if (ix < 1 || ix > nRows() + 1) return;
    rows.insert(rows.begin() + ix - 1, Line());
    for (Column& column : columns) {
      for (std::size_t r = rows.size() - 1; r-- > static_cast<std::size_t>(ix - 1);) {
        column.cells[r].value = column.elem(r);
      }
      column.cells.insert(column.cells.begin() + ix - 1, Cell());
    }
    resized(nCols(), nRows() - 1);
    events += "S";
  }
  void insertColumn(int ix) {
    if (ix < 1 || ix > nCols() + 1) return;
    for (int c = ix; c <= nCols(); ++c) column(c).round();
    columns.insert(columns.begin() + ix - 1, Column());
    column(ix).cells.resize(rows.size());
    resized(nCols() - 1, nRows());
    events += "S";
  }
  void dropRow(int ix) {
    rows.erase(rows.begin() + ix - 1);
    for (Column& column : columns) column.cells.erase(column.cells.begin() + ix - 1);
  }
  void removeRow(int ix) {
    if (ix < 1 || ix > nRows() || nRows() == 1) return;
    dropRow(ix);
    resized(nCols(), nRows() + 1);
    events += "S";
  }
  void removeColumn(int ix) {
    if (ix < 1 || ix > nCols() || nCols() == 1) return;
    for (int c = ix; c < nCols(); ++c) {
      const std::vector<std::string> ids = column(c).ids;
      column(c) = column(c + 1);
      if (!column(c).categorical()) column(c).ids = ids;
    }
    columns.pop_back();
    resized(nCols() + 1, nRows());
    events += "S";
  }
  int removeMarkedRows(int first, int last, int mask) {
    if (first == 0 && last == 0) first = 1, last = nRows();
    if (first < 1 || last < 1 || first > nRows() || last > nRows()) return -1;
    const int oldRows = nRows();
    int removed = 0;
    for (int r = last; r >= first; --r) {
      bool marked = false;
      for (int c = 1; c <= nCols(); ++c) marked = marked || (cell(c, r).state & mask) != 0;
      if (!marked) continue;
      ++removed;
      if (nRows() > 1) {
        dropRow(r);
      } else {
        row(1) = {};
        for (Column& column : columns) column.cells[0] = {};
      }
    }
    if (nRows() != oldRows) resized(nCols(), oldRows);
    if (removed > 0) events += "S";
    return removed;
  }
  void swapRows(int r1, int r2) {
    std::swap(row(r1), row(r2));
    for (int c = 1; c <= nCols(); ++c) std::swap(cell(c, r1), cell(c, r2));
  }
  void exchange(bool ofRows, int i, int j) {
    const int n = ofRows ? nRows() : nCols();
    if (i < 1 || j < 1 || i > n || j > n) return;
    ofRows ? swapRows(i, j) : std::swap(column(i), column(j));
    events += "DCANS";
  }
  void mirror(bool ofRows) {
    const int n = ofRows ? nRows() : nCols();
    for (int i = 1; i < n + 1 - i; ++i) {
      ofRows ? swapRows(i, n + 1 - i) : std::swap(column(i), column(n + 1 - i));
    }
    events += "DCANS";
  }
  void clear() {
    const int nc = nCols(), nr = nRows();
    setSize(0, 0);
    setSize(nc, nr);
    comment.clear();
    events += "NACS";
  }
  void copyFrom(int c1, int r1, int c2, int r2, int destCol, int destRow) {
    TableModel source = *this;
    for (int c = c1; c <= c2; ++c) {
      for (int r = r1; r <= r2; ++r) {
        const int toCol = c - c1 + destCol, toRow = r - r1 + destRow;
        if (toCol < 1 || toRow < 1 || toCol > nCols() || toRow > nRows()) continue;
        cell(toCol, toRow) = source.cell(c, r);
      }
    }
    events += "DC";
  }
  TMScaleType setScale(int c, TMScaleType scale) {
    events += "S";
    return column(c).scale = scale;
  }
  void attribute(int c, int r, int ofColumn, int ofRow) {
    column(c).attribute = ofColumn;
    row(r).attribute = ofRow;
    events += "AA";
  }
  void setNames(int c, int r, const std::string& name) {
    column(c).name = row(r).name = name.substr(0, 50);
    events += "NN";
  }
  void setIdentifier(int c, int k) {
    if (k < 1 || k > 150 || !column(c).categorical()) return;
    column(c).ids[static_cast<std::size_t>(k - 1)] = "identifier";
    events += "S";
  }
  void setCell(int c, int r, double value, int state) {
    events += state == cell(c, r).state ? "D" : "DC";
    cell(c, r) = {value, state};
  }
  void serialize(bool heads, bool numbers) {
    TableModel old = *this;
    TMScaleType highest = stUnknown;
    for (const Column& column : columns) highest = std::max(highest, column.scale);
    const int m = 1 + (heads ? 1 : 0) + (numbers ? 2 : 0);
    resize(m, old.nCols() * old.nRows());
    if (heads) {
      column(1).ids.assign(150, "");
      column(1).scale = stNominal;
      column(1).name = "(column)";
    }
    if (numbers) column(m - 2).name = "(col. index)", column(m - 1).name = "(row index)";
    column(m).name = "(data)";
    column(m).scale = highest;
    int k = 0;
    for (int i = 1; i <= old.nCols(); ++i) {
      if (heads && i <= 150) {
        column(1).ids[static_cast<std::size_t>(i - 1)] =
            (std::to_string(i) + ":" + old.column(i).name).substr(0, 10);
      }
      for (int j = 1; j <= old.nRows(); ++j) {
        ++k;
        if (heads) cell(1, k).value = i;
        if (numbers) cell(m - 2, k).value = i, cell(m - 1, k).value = j;
        cell(m, k) = {old.column(i).elem(static_cast<std::size_t>(j - 1)), old.cell(i, j).state};
        row(k) = old.row(j);
      }
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

/// First difference between a table and its model; empty if there is none.
inline std::string difference(const TDataTable& table, TableModel& model) {
  if (table.NrOfColumns() != model.nCols() || table.NrOfRows() != model.nRows()) return "size";
  if (table.Comment() != model.comment) return "comment";
  for (int r = 1; r <= model.nRows(); ++r) {
    if (table.GetRowName(r) != model.row(r).name) return "name of row " + std::to_string(r);
    if (table.GetRowAttrib(r) != model.row(r).attribute) return "attribute of row";
  }
  for (int c = 1; c <= model.nCols(); ++c) {
    const TableModel::Column& column = model.column(c);
    if (table.GetColName(c) != column.name) return "name of column " + std::to_string(c);
    if (table.GetColAttrib(c) != column.attribute) return "attribute of column";
    if (table.GetMScaleType(c) != column.scale) return "scale of column " + std::to_string(c);
    int used = 0;
    for (int k = 1; k <= 150; ++k) {
      const std::string& id = column.ids[static_cast<std::size_t>(k - 1)];
      used += id.empty() ? 0 : 1;
      if (column.categorical() && table.GetNominalID(c, k) != id) return "identifier";
    }
    if (table.CountNominalIDs(c) != used) return "hidden identifiers of " + std::to_string(c);
    for (int r = 1; r <= model.nRows(); ++r) {
      if (table.NumericData->GetVal(c, r) != model.cell(c, r).value) return "value";
      if (table.GetElem(c, r) != column.elem(static_cast<std::size_t>(r - 1))) return "element";
      if (table.GetCellState(c, r) != model.cell(c, r).state) return "state";
    }
  }
  return {};
}

}  // namespace zel::test
