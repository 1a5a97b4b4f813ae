#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <set>

#include "zel/base/progress.h"
#include "zel/datatable/guards_impl.h"
#include "zel/kernels/minmax.h"
#include "zel/kernels/moments.h"
#include "zel/kernels/order_statistics.h"
#include "zel/kernels/sums.h"
#include "zel/vector/TVector.h"

namespace zel {

using detail::at;

namespace {

using Cells = std::vector<double>;

constexpr std::uint8_t kNoNumber = 3;  // bits of cells that are none
constexpr std::uint8_t kEmpty = 2;
constexpr std::uint8_t kImputed = 32;

std::span<const double> spanOf(const Cells& x) { return x; }
int sizeOf(const Cells& x) { return static_cast<int>(x.size()); }

/// A mask whose bits 0 and 1 do not count.
int marking(std::uint8_t mask) { return mask & ~kNoNumber; }

double sumOf(const Cells& x, int& n) {
  n = sizeOf(x);
  return kernels::sum(spanOf(x)).hi;
}

double sumOfSquaresOf(const Cells& x, int& n) {
  n = sizeOf(x);
  return kernels::sumOfSquares(spanOf(x)).hi;
}

int meanVarOf(const Cells& x, double& mean, double& variance) {
  const kernels::MeanVariance found = kernels::meanVariance(spanOf(x));
  mean = found.mean;
  variance = found.variance;
  return sizeOf(x);
}

int minMaxOf(const Cells& x, double& minimum, double& maximum) {
  constexpr double kLargest = std::numeric_limits<double>::max();
  const auto found = kernels::minMax(spanOf(x), {kLargest, -kLargest});
  minimum = found.minimum;
  maximum = found.maximum;
  return sizeOf(x);
}

void quartilesOf(const Cells& x, double& q1, double& q2, double& q3, int& n) {
  const kernels::Quartiles found = kernels::quartilesBySelection(spanOf(x));
  q1 = found.q1;
  q2 = found.q2;
  q3 = found.q3;
  n = sizeOf(x);
}

double percentileOf(const Cells& x, double prob, int& n) {
  n = sizeOf(x);
  return kernels::percentileBySelection(spanOf(x), prob);
}

/// First extreme of the attributes low..high; better(a, b): a replaces b.
template <class Better>
int extremeAttribute(std::span<const int> attributes, int low, int high, int& index,
                     Better better) {
  index = low;
  for (std::size_t i = at(low) + 1; i < static_cast<std::size_t>(high); ++i) {
    if (better(attributes[i], attributes[at(index)])) index = static_cast<int>(i) + 1;
  }
  return attributes[at(index)];
}

/// How CalcCovar relates two columns.
double association(const Cells& x, const Cells& y, int mode) {
  if (x.size() < 2) return 0;
  const double divisor = static_cast<double>(x.size()) - 1;
  switch (mode) {
    case 2:
    case 3: {
      const double r = x.size() > 2 ? kernels::pearsonCorrelation(spanOf(x), spanOf(y)) : 0;
      return mode == 2 ? r : r * r;
    }
    case 4:
      return kernels::sumOfSquaredDifferences(spanOf(x), spanOf(y)).hi / divisor;
    default:
      return kernels::sumOfProducts(spanOf(x), spanOf(y)).hi / divisor;
  }
}

}  // namespace

std::vector<double> TDataTable::NumberCells(const TCellRange& range, bool isNumericOnly,
                                            int mask) const {
  return Guarded([&] {
    const std::size_t rows = at(range.HighRow) - at(range.LowRow) + 1;
    Cells found;
    Cells column(rows);
    for (int c = range.LowCol; c <= range.HighCol; ++c) {
      if (isNumericOnly && !IsNumeric(c)) continue;
      ReadValues(c, range.LowRow, rows, column.data());
      const std::uint8_t* const states = States(c) + at(range.LowRow);
      std::size_t count = found.size();
      found.resize(count + rows);
      for (std::size_t r = 0; r < rows; ++r) {
        const bool isMarked = mask == kAnyState || (states[r] & mask) != 0;
        found[count] = column[r];
        count += (states[r] & kNoNumber) == 0 && isMarked ? 1 : 0;
      }
      found.resize(count);
    }
    return found;
  });
}

int TDataTable::CountCells(const TCellRange& range, bool isNumericOnly, std::uint8_t mask,
                           std::uint8_t wanted) const {
  std::int64_t count = 0;
  for (int c = range.LowCol; c <= range.HighCol; ++c) {
    if (isNumericOnly && !IsNumeric(c)) continue;
    count += std::count_if(States(c) + at(range.LowRow), States(c) + range.HighRow,
                           [=](std::uint8_t state) { return (state & mask) == wanted; });
  }
  return static_cast<int>(std::min<std::int64_t>(count, std::numeric_limits<int>::max()));
}

int TDataTable::CountNumCells(int LowCol, int LowRow, int HighCol, int HighRow) const {
  return CountCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, kNoNumber, 0);
}

int TDataTable::CountValidCells(int LowCol, int LowRow, int HighCol, int HighRow) const {
  return CountCells(ValidRange(LowCol, LowRow, HighCol, HighRow), false, kNoNumber, 0);
}

int TDataTable::CountEmptyCells(int LowCol, int LowRow, int HighCol, int HighRow) const {
  return CountCells(ValidRange(LowCol, LowRow, HighCol, HighRow), false, kEmpty, kEmpty);
}

int TDataTable::CountImputedCells(int LowCol, int LowRow, int HighCol, int HighRow) const {
  return CountCells(ValidRange(LowCol, LowRow, HighCol, HighRow), false, kImputed, kImputed);
}

double TDataTable::SumOfNumCells(int LowCol, int LowRow, int HighCol, int HighRow,
                                 int& NumData) const {
  return sumOf(NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, kAnyState), NumData);
}

double TDataTable::SumOfMarkedCells(int LowCol, int LowRow, int HighCol, int HighRow,
                                    std::uint8_t CellState, int& NumData) const {
  return sumOf(NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, marking(CellState)),
               NumData);
}

double TDataTable::SumOfSquaredNumCells(int LowCol, int LowRow, int HighCol, int HighRow,
                                        int& NumData) const {
  return sumOfSquaresOf(NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, kAnyState),
                        NumData);
}

double TDataTable::SumOfSquaredMarkedCells(int LowCol, int LowRow, int HighCol, int HighRow,
                                           std::uint8_t CellState, int& NumData) const {
  return sumOfSquaresOf(
      NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, marking(CellState)), NumData);
}

int TDataTable::MeanVarOfNumCells(int LowCol, int LowRow, int HighCol, int HighRow, double& Mean,
                                  double& Variance) const {
  return meanVarOf(NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, kAnyState), Mean,
                   Variance);
}

int TDataTable::MeanVarOfMarkedCells(int LowCol, int LowRow, int HighCol, int HighRow,
                                     std::uint8_t CellState, double& Mean, double& Variance) const {
  return meanVarOf(
      NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, marking(CellState)), Mean,
      Variance);
}

int TDataTable::MinMaxOfNumCells(int LowCol, int LowRow, int HighCol, int HighRow, double& Minimum,
                                 double& Maximum) const {
  return minMaxOf(NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, kAnyState),
                  Minimum, Maximum);
}

int TDataTable::MinMaxOfMarkedCells(int LowCol, int LowRow, int HighCol, int HighRow,
                                    std::uint8_t CellState, double& Minimum,
                                    double& Maximum) const {
  return minMaxOf(
      NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, marking(CellState)), Minimum,
      Maximum);
}

int TDataTable::MinMaxOfValidCells(int LowCol, int LowRow, int HighCol, int HighRow,
                                   double& Minimum, double& Maximum) const {
  TCellRange range = ValidRange(LowCol, LowRow, HighCol, HighRow);
  const int last = range.HighCol;
  Minimum = std::numeric_limits<double>::max();
  Maximum = -Minimum;
  std::int64_t count = 0;
  for (int c = range.LowCol; c <= last; ++c) {
    range.LowCol = range.HighCol = c;
    Cells cells = NumberCells(range, false, kAnyState);
    if (IsCategorical(c)) std::ranges::transform(cells, cells.begin(), RoundEven<double>);
    const auto found = kernels::minMax(spanOf(cells), {Minimum, Maximum});
    Minimum = found.minimum;
    Maximum = found.maximum;
    count += sizeOf(cells);
  }
  return static_cast<int>(count);
}

double TDataTable::GeometricMeanOfNumCells(int LowCol, int LowRow, int HighCol, int HighRow,
                                           int& NumData) const {
  Cells cells = NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, kAnyState);
  if (std::ranges::any_of(cells, [](double x) { return x < 0; })) {
    Raise<EZELDataTableError>("\": negative argument passed to GeometricMean");
  }
  const bool hasZero = std::ranges::count(cells, 0.0) > 0;
  std::erase_if(cells, [](double x) { return !(x > 0); });
  NumData = sizeOf(cells);
  return hasZero || cells.empty() ? 0 : *kernels::geometricMean(spanOf(cells));
}

double TDataTable::HarmonicMeanOfNumCells(int LowCol, int LowRow, int HighCol, int HighRow,
                                          int& NumData) const {
  const Cells cells = NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, kAnyState);
  const auto mean = kernels::harmonicMean(spanOf(cells));
  if (!mean) Raise<EZELDataTableError>("\": negative or zero argument passed to HarmonicMean");
  NumData = sizeOf(cells);
  return *mean;
}

bool TDataTable::QuartilesOfNumCells(int LowCol, int LowRow, int HighCol, int HighRow, double& Q1,
                                     double& Q2, double& Q3, int& NumData) const {
  const Cells cells = NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, kAnyState);
  Guarded([&] { quartilesOf(cells, Q1, Q2, Q3, NumData); });
  return true;
}

bool TDataTable::QuartilesOfMarkedCells(int LowCol, int LowRow, int HighCol, int HighRow,
                                        double& Q1, double& Q2, double& Q3, std::uint8_t CellState,
                                        int& NumData) const {
  const Cells cells =
      NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, marking(CellState));
  Guarded([&] { quartilesOf(cells, Q1, Q2, Q3, NumData); });
  return true;
}

double TDataTable::PercentileOfNumCells(double prob, int LowCol, int LowRow, int HighCol,
                                        int HighRow, int& NumData) const {
  const Cells cells = NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, kAnyState);
  return Guarded([&] { return percentileOf(cells, prob, NumData); });
}

double TDataTable::PercentileOfMarkedCells(double prob, int LowCol, int LowRow, int HighCol,
                                           int HighRow, std::uint8_t CellState,
                                           int& NumData) const {
  const Cells cells =
      NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), true, marking(CellState));
  return Guarded([&] { return percentileOf(cells, prob, NumData); });
}

int TDataTable::CopyCellsToVector(int LowCol, int LowRow, int HighCol, int HighRow,
                                  std::uint8_t CellState, TVector* DestVect) const {
  const int mask = CellState == 0xFF ? kAnyState : CellState;
  const Cells cells = NumberCells(ValidRange(LowCol, LowRow, HighCol, HighRow), false, mask);
  if (DestVect && !cells.empty()) {
    DestVect->Resize(sizeOf(cells));
    DestVect->SetElements(cells);
  }
  return sizeOf(cells);
}

bool TDataTable::CalcCovar(TMatrix* CovarMat, int LoC, int HiC, int LoR, int HiR, int Mode) const {
  AbortMathProc = false;
  const std::int64_t size = std::int64_t{HiC} - LoC + 1;
  if (!CovarMat || Mode < 0 || Mode > 4) return false;
  if (CovarMat->NrOfColumns() < size || CovarMat->NrOfRows() < size) return false;
  const int m = static_cast<int>(std::max<std::int64_t>(size, 0));
  LoR = std::max(LoR, 1);
  HiR = std::min(HiR, FNrOfRows);
  const std::size_t rows = HiR < LoR ? 0 : static_cast<std::size_t>(HiR - LoR) + 1;
  return Guarded([&] {
    // Read before the result is written: it may be the table's own matrix.
    std::vector<Cells> columns(static_cast<std::size_t>(m));
    for (int i = 0; i < m && !AbortMathProc; ++i) {
      Cells& x = columns[static_cast<std::size_t>(i)];
      x.resize(rows);
      if (HasColumn(LoC + i)) ReadValues(LoC + i, LoR, rows, x.data());
      if (Mode != 1) continue;
      double mean = 0;
      double variance = 0;
      if (HasColumn(LoC + i) && rows > 0) {
        MeanVarOfNumCells(LoC + i, LoR, LoC + i, HiR, mean, variance);
      }
      for (double& v : x) v -= mean;
      ProgressStep();
    }
    // A column outside the table has no cells.
    const auto statesOf = [&](std::size_t i) -> const std::uint8_t* {
      const int c = LoC + static_cast<int>(i);
      return HasColumn(c) ? States(c) + at(LoR) : nullptr;
    };
    TDouble2DArray result(m, m);
    Cells x;
    Cells y;
    int done = 0;
    for (; done < m && !AbortMathProc; ++done) {
      const auto i = static_cast<std::size_t>(done);
      for (std::size_t j = 0; j <= i; ++j) {
        x.clear();
        y.clear();
        const std::uint8_t* const a = statesOf(i);
        const std::uint8_t* const b = statesOf(j);
        for (std::size_t r = 0; a && b && r < rows; ++r) {
          if (((a[r] | b[r]) & kNoNumber) != 0) continue;
          x.push_back(columns[i][r]);
          y.push_back(columns[j][r]);
        }
        const bool isUnit = i == j && (Mode == 2 || Mode == 3);
        result(i, j) = isUnit ? 1 : association(x, y, Mode);
      }
      ProgressStep();
    }
    for (int i = 0; i < done; ++i) {
      for (int j = 0; j <= i; ++j) {
        const double s = result(static_cast<std::size_t>(i), static_cast<std::size_t>(j));
        const auto stride = static_cast<std::size_t>(CovarMat->NrOfRows());
        CovarMat->data()[static_cast<std::size_t>(i) * stride + static_cast<std::size_t>(j)] = s;
        CovarMat->data()[static_cast<std::size_t>(j) * stride + static_cast<std::size_t>(i)] = s;
      }
    }
    if (done > 0) CovarMat->Changed();
    return !AbortMathProc;
  });
}

bool TDataTable::CheckDichotomousColumn(int col, double& v1, double& v2) const {
  v1 = v2 = 0;
  if (!HasColumn(col) || FNrOfRows < 2) return false;
  v1 = NumericData->GetVal(col, 1);
  bool hasSecond = false;
  for (std::int64_t r = 2; r <= FNrOfRows; ++r) {
    const double v = NumericData->GetVal(col, static_cast<int>(r));
    if (v == v1 || (hasSecond && v == v2)) continue;
    if (hasSecond) return false;
    v2 = v;
    hasSecond = true;
  }
  if (!hasSecond || std::isnan(v1) || std::isnan(v2)) return false;
  if (v2 < v1) std::swap(v1, v2);
  return true;
}

bool TDataTable::IsConstantColumn(int ColIx) const {
  if (!HasColumn(ColIx)) return false;
  const double first = NumericData->GetVal(ColIx, 1);
  for (std::int64_t r = 1; r <= FNrOfRows; ++r) {
    if (NumericData->GetVal(ColIx, static_cast<int>(r)) != first) return false;
  }
  return true;
}

int TDataTable::RowAttribLevels() const {
  return Guarded(
      [&] { return static_cast<int>(std::set<int>(FRowAtt.begin(), FRowAtt.end()).size()); });
}

int TDataTable::ColAttribLevels() const {
  return Guarded(
      [&] { return static_cast<int>(std::set<int>(FColAtt.begin(), FColAtt.end()).size()); });
}

int TDataTable::MaxRowAttrib(int FirstRow, int LastRow, int& Row) const {
  MakeValidRowRange(FirstRow, LastRow);
  return extremeAttribute(std::span(FRowAtt), FirstRow, LastRow, Row, std::greater<>());
}

int TDataTable::MinRowAttrib(int FirstRow, int LastRow, int& Row) const {
  MakeValidRowRange(FirstRow, LastRow);
  return extremeAttribute(std::span(FRowAtt), FirstRow, LastRow, Row, std::less<>());
}

int TDataTable::MaxColAttrib(int FirstCol, int LastCol, int& Col) const {
  MakeValidColRange(FirstCol, LastCol);
  return extremeAttribute(std::span(FColAtt), FirstCol, LastCol, Col, std::greater<>());
}

int TDataTable::MinColAttrib(int FirstCol, int LastCol, int& Col) const {
  MakeValidColRange(FirstCol, LastCol);
  return extremeAttribute(std::span(FColAtt), FirstCol, LastCol, Col, std::less<>());
}

TMScaleType TDataTable::FindHighestMLevel(int FirstCol, int LastCol) const {
  MakeValidColRange(FirstCol, LastCol);
  TMScaleType level = stNominal;
  for (int c = FirstCol; c <= LastCol; ++c) level = std::max(level, Type(c).MScaleType);
  return level;
}

TMScaleType TDataTable::FindLowestMLevel(int FirstCol, int LastCol) const {
  MakeValidColRange(FirstCol, LastCol);
  TMScaleType level = stRatio;
  for (int c = FirstCol; c <= LastCol; ++c) level = std::min(level, Type(c).MScaleType);
  return level;
}

}  // namespace zel
