// Principal components of the irises, and a regression that is famous for its bad condition.
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
  zel::TMatrix economy;
  if (!load(folder + "/iris.csv", 4, irises) || !load(folder + "/longley.csv", 7, economy)) {
    std::cerr << "the data are not in " << folder << '\n';
    return 1;
  }
  std::cout << std::fixed << std::setprecision(4);
  // (0, 0): all columns and rows; mode 2: of the correlations; as parts of the whole variance.
  if (!zel::CalcPrincComp(&irises, 0, 0, 0, 0, 2, true)) return 1;
  for (int k = 1; k <= zel::GetEigenSize(); ++k) {
    std::cout << "component " << k << ": " << zel::GetEigenResult(k, 0) << " of the variance\n";
  }

  // Employment by six variables and a constant, which takes the place of the employment.
  zel::TVector employed;
  employed.Resize(economy.NrOfRows());
  for (int row = 1; row <= economy.NrOfRows(); ++row) {
    employed.SetVal(row, economy(7, row));
    economy.SetVal(7, row, 1);
  }
  zel::TVector coefficients;
  zel::TVector errors;
  bool isNearSingular = false;
  if (!zel::MultiLinReg(&economy, &employed, &coefficients, &errors, isNearSingular)) return 1;
  for (int i = 1; i <= 7; ++i) {
    std::cout << coefficients(i) << " +- " << errors(i) << '\n';
  }
  return 0;
}
