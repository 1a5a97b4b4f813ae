#include "zel/analysis/testsignals.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "zel/analysis/memory_impl.h"

namespace zel {

namespace {

double bell(double z) { return std::exp(-z * z); }

}  // namespace

int CreateSigmoidArray(std::span<double> Data, double Slope, double Offset, double Amplitude,
                       int Center) {
  if (Data.size() < 3) return -1;
  double i = 0;
  for (double& y : Data) {
    ++i;
    y = Amplitude / (std::exp(-Slope * (i - Center)) + 1) + Offset;
  }
  return 0;
}

int CreateGaussianPeaks(std::span<const TGaussPeakParams> PeakParams, TDoubleArray& Data) {
  if (Data.size() < 3) return -2;
  if (PeakParams.empty()) return -1;
  std::ranges::fill(Data, 0.0);
  const auto n = static_cast<double>(Data.size());
  for (const auto& [position, width, height] : PeakParams) {
    // Farther out the exponential is 0.
    const double reach = 27.4 * std::abs(width);
    double first = std::ceil(position - reach);
    double last = std::floor(position + reach);
    if (!std::isfinite(height) || std::isnan(first) || std::isnan(last)) {
      first = 1;
      last = n;
    }
    first = std::max(first, 1.0);
    for (double i = first; i <= std::min(last, n); ++i) {
      Data[static_cast<std::size_t>(i) - 1] += height * bell((i - position) / width);
    }
  }
  return 0;
}

int Gauss2D(int CenterX, int CenterY, double Width, double Amplitude, TDouble2DArray& Data) {
  const std::size_t rows = Data.Length(0);
  const std::size_t columns = Data.Length(1);
  if (rows < 2 || columns < 2) return -2;
  if (!(Width > 0)) return -1;
  // The peak is the product of one along the rows and one along the columns.
  std::vector<double> along;
  detail::GuardFit("Gauss2D", [&] { along.resize(columns); });
  for (std::size_t j = 0; j < columns; ++j) {
    along[j] = bell((static_cast<double>(j + 1) - CenterY) / Width);
  }
  for (std::size_t i = 0; i < rows; ++i) {
    const double factor = bell((static_cast<double>(i + 1) - CenterX) / Width);
    const std::span<double> row = Data[i];
    for (std::size_t j = 0; j < columns; ++j) row[j] = Amplitude * (factor * along[j]);
  }
  return 0;
}

}  // namespace zel
