// The sunspot series without noise, without its cycle, and the years of its steepest rise.
#include <zel/analysis/Zel_math2.h>
#include <zel/vector/Zel_vector.h>

#include <cmath>
#include <iomanip>
#include <iostream>
#include <string>

namespace {

double spread(const zel::TVector& values) {
  double mean = 0;
  double variance = 0;
  values.MeanVar(0, 0, mean, variance);  // (0, 0): all elements
  return std::sqrt(variance);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : "data";
  zel::TVector spots;
  std::string comment;
  if (spots.ImportASC(folder + "/sunspots.asc", comment) != 0) {
    std::cerr << "the data are not in " << folder << '\n';
    return 1;
  }
  const int n = spots.NrOfElem();
  const int firstYear = 1700;
  std::cout << std::fixed << std::setprecision(2);
  std::cout << "standard deviation of the series " << spread(spots) << '\n';

  // The results take the size that the vector has.
  zel::TVector result;
  result.Resize(n);
  zel::MovingAverageSmooth(&spots, 1, n, &result, 11);
  std::cout << "of means over 11 years " << spread(result) << '\n';
  zel::MovingMedianSmooth(&spots, 1, n, &result, 5);
  std::cout << "of medians over 5 years " << spread(result) << '\n';

  zel::FirstDeriv(&spots, 1, n, &result, 5);
  int steepest = 1;
  for (int i = 2; i <= n; ++i) {
    if (result(i) > result(steepest)) steepest = i;
  }
  std::cout << "steepest rise in " << firstYear + steepest - 1 << ", by " << result(steepest)
            << " a year\n";

  // Frequencies are parts of the sampling rate: cycles per year.
  zel::TVector taps;
  zel::CalcSincBPKernel(61, 1.0 / 14, 1.0 / 8, 2, &taps);  // 2: Blackman window
  zel::MovingKernelFilter(&spots, 1, n, &result, &taps);
  std::cout << "of the periods of 8 to 14 years " << spread(result) << '\n';

  // A recursive filter takes what is outside the series as zero, so the mean is better removed.
  double mean = 0;
  double variance = 0;
  spots.MeanVar(0, 0, mean, variance);
  for (int i = 1; i <= n; ++i) result.SetVal(i, spots(i) - mean);
  double a0 = 0;
  zel::TMatrix coefficients;
  zel::CalcChebFilterCoeffs(4, false, 1.0 / 20, 0.5, a0, &coefficients);
  zel::ChebychevFilter(&result, 1, n, &result, a0, &coefficients);
  int lowest = 1;
  for (int i = 2; i <= n; ++i) {
    if (result(i) < result(lowest)) lowest = i;
  }
  std::cout << "least long-term activity in " << firstYear + lowest - 1 << '\n';

  zel::TVector ranks;
  const double ties = zel::CalcRanks(&spots, &ranks);
  std::cout << "rank of 1957: " << ranks(1957 - firstYear + 1) << ", tie sum " << ties << '\n';
  return 0;
}
