#include <cmath>

#include "zel/datatable/guards_impl.h"
#include "zel/kernels/moments.h"
#include "zel/vector/TVector.h"

namespace zel {

using detail::at;

namespace {

constexpr std::uint8_t kNoNumber = 3;

/// Centre and unit of a standardization.
struct Scale {
  double mean = 0;
  double unit = 1;

  [[nodiscard]] double operator()(double x) const { return (x - mean) / unit; }
};

}  // namespace

int TDataTable::FillMarkedCells(double Value, std::uint8_t StateMask) {
  FitMatrix();
  int count = 0;
  for (int c = 1; c <= FNrOfCols; ++c) {
    double* const values = Values(c);
    const std::uint8_t* const states = States(c);
    for (std::size_t r = 0; r < Rows(); ++r) {
      if ((states[r] & StateMask) == 0) continue;
      values[r] = Value;
      ++count;
    }
  }
  if (count > 0) ChangedData();
  return count;
}

bool TDataTable::StandardizeColumns(TVector* Means, TVector* StdDevs, bool isDivided) {
  FitMatrix();
  bool hasChanged = false;
  for (int c = 1; c <= FNrOfCols; ++c) {
    if (!IsNumeric(c)) continue;
    double variance = 0;
    Scale scale;
    const int n = MeanVarOfNumCells(c, 0, c, 0, scale.mean, variance);
    if (isDivided) scale.unit = std::sqrt(variance);
    if (Means) Means->SetVal(c, scale.mean);
    if (StdDevs) StdDevs->SetVal(c, std::sqrt(variance));
    if (!HasColumn(c)) break;  // their handlers may do anything
    FitMatrix();
    if (n == 0 || !(scale.unit > 0)) continue;
    hasChanged = true;
    double* const values = Values(c);
    const std::uint8_t* const states = States(c);
    for (std::size_t r = 0; r < Rows(); ++r) {
      if ((states[r] & kNoNumber) == 0) values[r] = scale(values[r]);
    }
  }
  return hasChanged;
}

void TDataTable::StandardizeRows(TVector* Means, TVector* StdDevs, bool isDivided) {
  FitMatrix();
  std::vector<double> row;
  Guarded([&] { row.reserve(Columns()); });
  for (int r = 1; r <= FNrOfRows; ++r) {
    row.clear();
    for (int c = 1; c <= FNrOfCols; ++c) {
      if (IsNumeric(c) && GetIsNumber(c, r)) row.push_back(Values(c)[at(r)]);
    }
    const auto found = kernels::meanVariance(std::span<const double>(row));
    const Scale scale{found.mean, isDivided ? std::sqrt(found.variance) : 1};
    if (Means) Means->SetVal(r, scale.mean);
    if (StdDevs) StdDevs->SetVal(r, std::sqrt(found.variance));
    FitMatrix();
    if (!(scale.unit > 0)) continue;
    for (int c = 1; c <= FNrOfCols; ++c) {
      if (GetIsNumber(c, r)) Values(c)[at(r)] = scale(Values(c)[at(r)]);
    }
  }
  ChangedData();
}

void TDataTable::RefuseCategorical(const char* message) const {
  for (int c = 1; c <= FNrOfCols; ++c) {
    if (IsCategorical(c)) throw EZELDataTableError(message);
  }
}

void TDataTable::StandardizeNumCellColumns(TVector* Means, TVector* StdDevs) {
  if (StandardizeColumns(Means, StdDevs, true)) ChangedData();
}

void TDataTable::StandardizeNumCellRows(TVector* Means, TVector* StdDevs) {
  RefuseCategorical("standardization of rows is not possible with nominal or ordinal variables");
  StandardizeRows(Means, StdDevs, true);
}

void TDataTable::MeanCenterNumCellColumns(TVector* Means) {
  StandardizeColumns(Means, nullptr, false);
  ChangedData();
}

void TDataTable::MeanCenterNumCellRows(TVector* Means) {
  RefuseCategorical("mean centering of rows is not possible with nominal or ordinal variables");
  StandardizeRows(Means, nullptr, false);
}

}  // namespace zel
