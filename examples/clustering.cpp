// Irises: three clusters, the upper part of a tree, and a width estimated from neighbours.
#include <zel/analysis/Zel_math2.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>

namespace {

/// The first columns of a CSV file with a header line.
bool load(const std::string& name, int columns, zel::TMatrix& data) {
  std::ifstream file(name);
  std::string line;
  std::getline(file, line);
  data.Resize(columns, 0);
  for (int row = 1; std::getline(file, line); ++row) {
    data.Resize(columns, row);
    std::istringstream cells(line);
    for (int c = 1; c <= columns && std::getline(cells, line, ','); ++c) {
      data.SetVal(c, row, std::atof(line.c_str()));
    }
  }
  return data.NrOfRows() > 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : "data";
  zel::TMatrix irises;
  if (!load(folder + "/iris.csv", 4, irises)) {
    std::cerr << "the data are not in " << folder << '\n';
    return 1;
  }
  std::cout << std::fixed << std::setprecision(3);

  // The best of ten starts from rows drawn at random: each ends in a minimum near it.
  zel::TMatrix centres;
  zel::TIntVector assignment;
  zel::TIntVector sizes;
  double least = HUGE_VAL;
  int best = 0;
  for (int seed = 1; seed <= 10; ++seed) {
    const double within =
        zel::kMeansClustering(&irises, 0, 0, 3, seed, &centres, &assignment, &sizes);
    if (within < least) {
      least = within;
      best = seed;
    }
  }
  zel::kMeansClustering(&irises, 0, 0, 3, best, &centres, &assignment, &sizes);
  std::cout << "within the clusters " << least << '\n';
  for (int k = 1; k <= 3; ++k) {
    std::cout << sizes(k) << " irises with petals of " << centres(3, k) << " x " << centres(4, k)
              << " cm\n";
  }

  zel::TIntMatrix tree;
  zel::TVector heights;
  zel::TVector positions;
  zel::AgglomClustering(nullptr, &irises, zel::dmEuclid, zel::cmUpgma, 0, &tree, &heights,
                        &positions, {}, {});
  const int unions = heights.NrOfElem();
  for (int s = unions - 2; s <= unions; ++s) {
    std::cout << "union of " << tree.GetVal(1, s) << " and " << tree.GetVal(2, s) << " to "
              << tree.GetVal(3, s) << " at " << heights(s) << '\n';
  }

  // The petal width of an iris from the other measurements of those like it.
  zel::TMatrix others;
  others.Resize(3, irises.NrOfRows());
  zel::TVector widths;
  widths.Resize(irises.NrOfRows());
  for (int row = 1; row <= irises.NrOfRows(); ++row) {
    for (int c = 1; c <= 3; ++c) others.SetVal(c, row, irises(c, row));
    widths.SetVal(row, irises(4, row));
  }
  const zel::TVector probe{6.0, 3.0, 4.5};
  double estimate = 0;
  double distance = 0;
  zel::EstimateByKNN(&others, &widths, 7, zel::kwmGauss, 1, &probe, estimate, distance);
  std::cout << "petal width estimated as " << estimate << ", neighbours at " << distance << '\n';
  return 0;
}
