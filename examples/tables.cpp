// A table with missing values and one with a categorical variable: statistics of all cells, of
// marked ones, a sort, and the table as text.
#include <zel/datatable/Zel_datatable.h>

#include <cstdint>
#include <iomanip>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : "data";
  std::string message;
  zel::TDataTable air;
  if (air.ImportFromCSV(folder + "/airquality.csv", zel::cdComma, true, false, zel::dpsPoint,
                        message) != 0) {
    std::cerr << "airquality.csv: " << message << '\n';
    return 1;
  }
  std::cout << std::fixed << std::setprecision(2);
  for (int c = 1; c <= 4; ++c) {
    double mean, variance, q1, median, q3;
    int n;
    air.MeanVarOfNumCells(c, 0, c, 0, mean, variance);  // rows (0, 0): all
    air.QuartilesOfNumCells(c, 0, c, 0, q1, median, q3, n);
    std::cout << air.GetColName(c) << ": " << n << " values, " << air.CountEmptyCells(c, 0, c, 0)
              << " missing, mean " << mean << ", median " << median << '\n';
  }
  zel::TMatrix correlations;
  correlations.Resize(4, 4);
  if (air.CalcCovar(&correlations, 1, 4, 1, air.NrOfRows(), 2)) {
    std::cout << "ozone and temperature: r = " << correlations(1, 4)
              << " over the days that have both\n";
  }

  zel::TDataTable iris;
  if (iris.ImportFromCSV(folder + "/iris.csv", zel::cdComma, true, false) != 0) return 1;
  const int species = iris.FindColIndex("species");
  constexpr std::uint8_t kMarkingA = 64;
  for (int k = 1; k <= iris.CountNominalIDs(species); ++k) {
    iris.UnmarkAllCells();
    for (int r = 1; r <= iris.NrOfRows(); ++r) {
      if (iris(species, r) == k) iris.SetCellState(1, r, kMarkingA);
    }
    double mean, variance;
    const int n = iris.MeanVarOfMarkedCells(1, 0, 1, 0, kMarkingA, mean, variance);
    std::cout << iris.GetNominalID(species, k) << ": " << n << " flowers, sepal length " << mean
              << '\n';
  }

  // The flowers with the longest petals; names and attributes of the rows go along.
  iris.SortRows(3, false, 0, 0, 0, 0, true);
  iris.Resize(iris.NrOfColumns(), 3);
  if (!iris.ExportAsCSV("longest.csv", -1, zel::cdComma, true, true)) return 1;
  for (int r = 1; r <= 3; ++r) {
    std::cout << iris.GetRowName(r) << ": " << iris.GetElemNominal(species, r) << ", petal "
              << iris(3, r) << " cm\n";
  }
  return 0;
}
