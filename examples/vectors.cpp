// Reads a data file, describes it, and keeps names in step with a sort.
#include <zel/vector/Zel_vector.h>

#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
  zel::TVector waiting;
  std::string comment;
  const int error = waiting.ImportASC(argc > 1 ? argv[1] : "data/faithful_waiting.asc", comment);
  if (error != 0) {
    std::cerr << "cannot read the data: error " << error << '\n';
    return 1;
  }

  // (0, 0) is the whole vector; (1, 100) would be its first hundred elements.
  double mean = 0;
  double variance = 0;
  double q1 = 0;
  double median = 0;
  double q3 = 0;
  waiting.MeanVar(0, 0, mean, variance);
  waiting.Quartiles(0, 0, q1, median, q3);
  std::cout << waiting.NrOfElem() << " values, mean " << mean << ", variance " << variance << '\n'
            << "quartiles " << q1 << ", " << median << ", " << q3 << '\n';

  // A sort reports its exchanges, so that data kept elsewhere can follow.
  zel::TVector price{2.5, 0.8, 1.2};
  std::vector<std::string> fruit{"mango", "apple", "pear"};
  price.OnSortExchange = [&](zel::TObject*, std::uint8_t, int i, int j, int, int) {
    std::swap(fruit[static_cast<std::size_t>(i - 1)], fruit[static_cast<std::size_t>(j - 1)]);
  };
  price.SortElems(true, 0, 0);
  for (int i = 1; i <= price.NrOfElem(); ++i) {
    std::cout << fruit[static_cast<std::size_t>(i - 1)] << ' ' << price.Elem(i) << '\n';
  }
  return fruit.front() == "apple" ? 0 : 1;
}
