// Reads a column of numbers and asks for its mean and quartiles.
#include <zel/vector/Zel_vector.h>

#include <iostream>
#include <string>

int main(int argc, char** argv) {
  zel::TVector sunspots;
  std::string comment;
  if (sunspots.ImportASC(argc > 1 ? argv[1] : "data/sunspots.asc", comment) != 0) return 1;

  double mean = 0, variance = 0, q1 = 0, median = 0, q3 = 0;
  sunspots.MeanVar(0, 0, mean, variance);  // (0, 0): all elements
  sunspots.Quartiles(0, 0, q1, median, q3);
  std::cout << comment << '\n'
            << sunspots.NrOfElem() << " values, mean " << mean << ", quartiles " << q1 << ", "
            << median << ", " << q3 << '\n';
}
