#include <zel/zel.h>

#include <iostream>

int main() {
  zel::TVector v{4, 1, 3, 2};
  const double median = v.Percentile(50, 0, 0);
  // An exception thrown inside the shared library must be caught by its class outside.
  bool caught = false;
  try {
    zel::TVector w{1, 2};
    w.SetName("w");
    w.Add(&v);
  } catch (const zel::EZELVectorError& e) {
    caught = e.Message() == "Component \"w\": vectors have different dimensions";
  }
  zel::ProcStat = 0;
  zel::TDoubleArray x{3, 1, 2};
  zel::SortArray(x, true);
  std::cout << median << ' ' << x[0] << ' ' << caught << '\n';
  return median == 2.5 && x[0] == 1 && caught && zel::ProcStat > 0 ? 0 : 1;
}
