// What the library promises about sums: exact to the last digit or two, whatever the data.
#include <zel/vector/Zel_vector.h>

#include <iomanip>
#include <iostream>

int main() {
  // Measurements around 1e9 whose spread is 1. A running sum of squares holds no digit of it.
  zel::TVector v;
  v.Resize(3000);
  double sum = 0;
  double squares = 0;
  for (int i = 1; i <= 3000; ++i) {
    const double x = 1e9 + i % 3;  // 0, 1, 2 in turn: the variance is 2000 / 2999
    v.SetVal(i, x);
    sum += x;
    squares += x * x;
  }
  double mean = 0;
  double variance = 0;
  v.MeanVar(0, 0, mean, variance);
  std::cout << std::setprecision(17) << "exact      " << 2000.0 / 2999 << '\n'
            << "MeanVar    " << variance << '\n'
            << "plain sums " << (squares - sum * sum / 3000) / 2999 << '\n';

  // Values that cancel: the plain sum loses every 1.
  zel::TVector cancelling;
  cancelling.Resize(2000);
  double plain = 0;
  for (int i = 1; i <= 2000; i += 2) {
    cancelling.SetVal(i, i % 4 == 1 ? 1e16 : -1e16);
    cancelling.SetVal(i + 1, 1);
    plain += cancelling.Elem(i);
    plain += 1;
  }
  std::cout << "exact sum 1000, Sum " << cancelling.Sum(0, 0) << ", plain loop " << plain << '\n';
  return variance == 2000.0 / 2999 && cancelling.Sum(0, 0) == 1000 ? 0 : 1;
}
