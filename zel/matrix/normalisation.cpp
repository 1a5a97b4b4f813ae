// TMatrix: normalisation of columns and rows.
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "zel/kernels/elementwise.h"
#include "zel/matrix/TMatrix.h"
#include "zel/matrix/statistics_impl.h"

namespace zel {

template <class Measure>
void TMatrix::NormalizeAlong(TDims dim, Measure&& measure, TVector* Centres, TVector* Scales) {
  struct TNormal {
    double centre;
    double scale;
  };
  std::vector<TNormal> normals;
  Guarded([&] {
    normals.resize(static_cast<std::size_t>(dim == dimColumns ? NrOfColumns() : NrOfRows()));
    const auto find = [&](std::size_t k, std::span<const double> x) {
      const auto [centre, scale] = measure(x);
      normals[k] = {centre, scale};
    };
    detail::Along(dim, kernels::ConstMatrix(View()), find);
  });
  kernels::forEachColumn(View(), [&](std::size_t c, std::span<double> x) {
    if (dim == dimColumns) {
      if (normals[c].scale > 0) kernels::standardize(x, normals[c].centre, normals[c].scale);
    } else {
      for (std::size_t r = 0; r < x.size(); ++r) {
        if (normals[r].scale > 0) x[r] = (x[r] - normals[r].centre) / normals[r].scale;
      }
    }
  });
  for (std::size_t k = 0; k < normals.size(); ++k) {
    if (Centres) Centres->SetVal(static_cast<int>(k) + 1, normals[k].centre);
    if (Scales) Scales->SetVal(static_cast<int>(k) + 1, normals[k].scale);
  }
  Changed();
}

void TMatrix::Standardize(TDims dim, TVector* Means, TVector* StdDevs) {
  const auto measure = [](std::span<const double> x) {
    const auto m = x.empty() ? kernels::MeanVariance{0, 0} : kernels::meanVariance(x);
    return std::pair(m.mean, std::sqrt(m.variance));
  };
  NormalizeAlong(dim, measure, Means, StdDevs);
}

void TMatrix::StandardizeColumns(TVector* Means, TVector* StdDevs) {
  Standardize(dimColumns, Means, StdDevs);
}

void TMatrix::StandardizeRows(TVector* Means, TVector* StdDevs) {
  Standardize(dimRows, Means, StdDevs);
}

void TMatrix::QNormalize(TDims dim, double RefQuant, TVector* Medians, TVector* QuantDiffs) {
  const auto measure = [&](std::span<const double> x) {
    if (x.empty()) return std::pair(0.0, 0.0);
    const double median = detail::RankedValue(x, 50);
    return std::pair(median, std::fabs(median - detail::RankedValue(x, RefQuant)));
  };
  NormalizeAlong(dim, measure, Medians, QuantDiffs);
}

void TMatrix::QNormalizeColumns(double RefQuant, TVector* Medians, TVector* QuantDiffs) {
  QNormalize(dimColumns, RefQuant, Medians, QuantDiffs);
}

void TMatrix::QNormalizeRows(double RefQuant, TVector* Medians, TVector* QuantDiffs) {
  QNormalize(dimRows, RefQuant, Medians, QuantDiffs);
}

void TMatrix::MeanCenter(TDims dim, TVector* Means) {
  if (Means) Means->Resize(std::max(1, dim == dimColumns ? NrOfColumns() : NrOfRows()));
  const auto measure = [](std::span<const double> x) { return std::pair(kernels::mean(x), 1.0); };
  NormalizeAlong(dim, measure, Means, nullptr);
}

void TMatrix::MeanCenterColumns(TVector* Means) { MeanCenter(dimColumns, Means); }

void TMatrix::MeanCenterRows(TVector* Means) { MeanCenter(dimRows, Means); }

}  // namespace zel
