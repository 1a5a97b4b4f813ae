// Are the differences in three data sets more than chance?
#include <zel/statistics/Zel_statis.h>

#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>

namespace {

/// A column of a CSV file with a header line.
zel::TVector* load(zel::TComponent* owner, const std::string& name, int column) {
  auto* values = new zel::TVector(owner);
  std::ifstream file(name);
  std::string line;
  std::getline(file, line);
  for (int row = 1; std::getline(file, line); ++row) {
    std::istringstream cells(line);
    for (int c = 1; c <= column; ++c) std::getline(cells, line, ',');
    values->Resize(row);
    values->SetVal(row, std::atof(line.c_str()));
  }
  return values;
}

void print(const char* question, double statistic, double p) {
  std::cout << std::left << std::setw(48) << question << std::right << std::setw(9) << statistic
            << std::setw(12) << p << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : "data";
  zel::TComponent owner;
  zel::TVector* widths = load(&owner, folder + "/iris.csv", 2);  // of the sepals
  zel::TVector* power = load(&owner, folder + "/mtcars.csv", 5);
  const zel::TVector* shape = load(&owner, folder + "/mtcars.csv", 9);
  const zel::TVector* gear = load(&owner, folder + "/mtcars.csv", 10);
  zel::TVector* waiting = load(&owner, folder + "/faithful.csv", 2);
  if (widths->NrOfElem() != 150 || power->NrOfElem() != 32 || waiting->NrOfElem() != 272) {
    std::cerr << "the data are not in " << folder << '\n';
    return 1;
  }
  std::cout << std::setprecision(4) << std::left << std::setw(48) << "question" << std::right
            << std::setw(9) << "statistic" << std::setw(12) << "p" << '\n';
  double statistic = 0;
  double p = 0;

  // Three species of 50 irises. First what the analysis of variance presupposes, then itself.
  zel::TIntVector species;
  species.Resize(150);
  for (int i = 1; i <= 150; ++i) species.SetVal(i, (i - 1) / 50);
  p = zel::LeveneTest(widths, &species, statistic);
  print("species: do widths spread differently?", statistic, p);
  double between, within, total;
  int dfBetween, dfWithin, dfTotal;
  p = zel::Anova1F(widths, &species, between, within, total, dfBetween, dfWithin, dfTotal,
                   statistic);
  print("species: do mean widths differ?", statistic, p);

  // Two of the species, with and without the normal distribution.
  const zel::TVector versicolor(widths->Elements().subspan(50, 50));
  const zel::TVector virginica(widths->Elements().subspan(100, 50));
  double df, meanA, meanB, varA, varB;
  int wholeDf;
  p = zel::Perform2SampleTTest(&versicolor, &virginica, zel::ttHeteroScedastic, statistic, df,
                               meanA, meanB, varA, varB, wholeDf);
  print("versicolor, virginica: do means differ?", statistic, p);
  statistic = zel::PerformMannWhitneyUTest(&versicolor, &virginica, true, p);
  print("versicolor, virginica: is one of them wider?", statistic, p);

  // The power of 32 cars.
  if (zel::ShapiroWilkTest(power, 0, statistic, p) != 0) return 1;
  print("cars: is their power not normal?", statistic, p);
  const int outlier = zel::GrubbsTest(power, 0.2, statistic);
  std::cout << "car " << outlier << " is " << statistic << " deviations off\n";

  // Cylinders in V or in line against automatic or manual gear.
  zel::TInt2DArray counts(2, 2);
  for (int i = 1; i <= 32; ++i) {
    ++counts(static_cast<int>(shape->Elem(i)), static_cast<int>(gear->Elem(i)));
  }
  double left, right;
  if (zel::FisherExactTest(counts, left, right, p) != 0) return 1;
  zel::Prob2x2Contingency(counts, statistic);
  print("cars: do shape and gear go together?", statistic, p);

  // Long and short waits for a geyser take turns.
  zel::RunsTestSerial(waiting, p);
  waiting->MeanCenter();
  print("geyser: do waits depend on the last one?", zel::DurbinWatson(waiting->Elements()), p);
}
