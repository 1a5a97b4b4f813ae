// Least squares with a matrix, statistics of its columns, and a sort that keeps rows together.
#include <zel/matrix/Zel_matrix.h>

#include <cmath>
#include <iostream>

int main() {
  // Speed (mph) and stopping distance (ft) of cars; every index names the column first.
  zel::TMatrix cars{{4, 2}, {7, 4}, {8, 16}, {9, 10}, {10, 18}, {12, 24}, {15, 54}, {20, 64}};
  cars.SetName("cars");
  std::cout << cars.NrOfColumns() << " columns, " << cars.NrOfRows() << " rows\n";

  // Normal equations: (X'X) b = X'y with a column of ones.
  zel::TMatrix x;
  x.Resize(2, cars.NrOfRows());
  x.Fill(1);
  x.CopyFrom(&cars, 1, 1, 1, cars.NrOfRows(), 2, 1);
  zel::TVector distance;
  distance.Resize(cars.NrOfRows());
  cars.CopyColToVec(&distance, 2, 0, 0);

  zel::TMatrix inverse;
  zel::TVector b;
  x.Square(&inverse, 1);
  if (!inverse.Invert()) return 1;
  x.TransposeAndMultiply(&distance, &b);
  inverse.Multiply(&b, &b);
  std::cout << "distance = " << b(1) << " + " << b(2) << " speed\n";

  // Statistics take a rectangle; (0, 0) is a whole dimension.
  double mean = 0;
  double variance = 0;
  cars.MeanVar(2, 0, 2, 0, mean, variance);
  std::cout << "mean distance " << mean << ", standard deviation " << std::sqrt(variance)
            << ", median by rank " << cars.Percentile(50, 2, 0, 2, 0) << '\n';

  // Longest way first; the speeds move along.
  cars.SortRows(2, false, 0, 0, 0, 0);
  std::cout << "the longest way, " << cars(2, 1) << ", at " << cars(1, 1) << '\n';

  zel::TMatrix distances;
  distances.Resize(cars.NrOfRows(), cars.NrOfRows());
  cars.StandardizeColumns(nullptr, nullptr);
  cars.CalcDistMat(zel::dmEuclid, &distances);
  std::cout << "the two longest are " << distances(1, 2) << " apart in standard units\n";

  try {
    static_cast<void>(cars.GeometricMean(0, 0, 0, 0));
  } catch (const zel::EZELMatrixError& error) {
    std::cout << error.what() << '\n';
  }
}
