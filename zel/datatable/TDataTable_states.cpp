#include <algorithm>

#include "zel/datatable/guards_impl.h"

namespace zel {

using detail::at;

namespace {

constexpr std::uint8_t kMarkingA = 64;
constexpr std::uint8_t kMarkingB = 128;

bool selects(std::uint8_t mask, std::uint8_t state) { return (state & mask) != 0; }

/// True if the mask selects one of n states.
bool selectsAny(std::uint8_t mask, const std::uint8_t* states, std::size_t n) {
  return std::any_of(states, states + n, [&](std::uint8_t state) { return selects(mask, state); });
}

template <class Rule>
void changeAll(TDynArray<std::uint8_t, 2>& states, Rule&& rule) {
  for (std::uint8_t& state : states) state = static_cast<std::uint8_t>(rule(state));
}

}  // namespace

void TDataTable::SetCellState(int ACol, int ARow, std::uint8_t Value) {
  if (!HasCell(ACol, ARow) || States(ACol)[at(ARow)] == Value) return;
  States(ACol)[at(ARow)] = Value;
  ChangedCellStates();
}

void TDataTable::SetStateBit(int ACol, int ARow, std::uint8_t bit, bool value) {
  const std::uint8_t old = GetCellState(ACol, ARow);
  const auto state = static_cast<std::uint8_t>(value ? old | bit : old & ~bit);
  if (!HasCell(ACol, ARow) || state == old) return;
  SetCellState(ACol, ARow, state);
  ChangedData();
}

void TDataTable::SetAllCellStates(std::uint8_t CellState) {
  std::fill(FCState.begin(), FCState.end(), CellState);
  ChangedCellStates();
}

void TDataTable::UnmarkAllCells() {
  changeAll(FCState, [](std::uint8_t state) { return state & ~(kMarkingA | kMarkingB); });
  ChangedCellStates();
}

void TDataTable::InvertCellStates(std::uint8_t StateMask) {
  changeAll(FCState, [&](std::uint8_t state) { return state ^ StateMask; });
  ChangedCellStates();
}

void TDataTable::ExchangeMarkings() {
  changeAll(FCState, [](std::uint8_t state) {
    return (state & ~(kMarkingA | kMarkingB)) | (state & kMarkingA) << 1 | (state & kMarkingB) >> 1;
  });
  ChangedCellStates();
}

bool TDataTable::IfRowHasCellState(int row, std::uint8_t CellState) const {
  if (!HasRow(row)) return false;
  for (int c = 1; c <= FNrOfCols; ++c) {
    if (selects(CellState, States(c)[at(row)])) return true;
  }
  return false;
}

bool TDataTable::IfColHasCellState(int col, std::uint8_t CellState) const {
  return HasColumn(col) && selectsAny(CellState, States(col), Rows());
}

bool TDataTable::IfAnyCellHasCellState(int LowCol, int LowRow, int HighCol, int HighRow,
                                       std::uint8_t CellState) const {
  MakeValidColRange(LowCol, HighCol);
  MakeValidRowRange(LowRow, HighRow);
  const std::size_t rows = at(HighRow) - at(LowRow) + 1;
  for (int c = LowCol; c <= HighCol; ++c) {
    if (selectsAny(CellState, States(c) + at(LowRow), rows)) return true;
  }
  return false;
}

int TDataTable::CountMarkedCellsInRow(int Row, std::uint8_t StateMask) const {
  if (!HasRow(Row)) return 0;
  int count = 0;
  for (int c = 1; c <= FNrOfCols; ++c) count += selects(StateMask, States(c)[at(Row)]) ? 1 : 0;
  return count;
}

int TDataTable::CountMarkedCellsInColumn(int Col, std::uint8_t StateMask) const {
  if (!HasColumn(Col)) return 0;
  return static_cast<int>(std::count_if(States(Col), States(Col) + Rows(), [&](std::uint8_t state) {
    return selects(StateMask, state);
  }));
}

}  // namespace zel
