// Fits a saturation curve, interpolates a table, smooths a series.
#include <zel/analysis/Zel_math2.h>

#include <iostream>
#include <string>

int main(int argc, char** argv) {
  // Rate of an enzyme reaction in counts per minute^2 over the concentration of the substrate in
  // ppm (Treloar 1974; the data set Puromycin of R, treated cells).
  const double conc[] = {0.02, 0.02, 0.06, 0.06, 0.11, 0.11, 0.22, 0.22, 0.56, 0.56, 1.1, 1.1};
  const double rate[] = {76, 47, 97, 107, 123, 139, 159, 152, 191, 201, 207, 200};
  zel::TCurveFit enzyme;
  for (int i = 0; i < 12; ++i) enzyme.EnterStatValue(conc[i], rate[i]);
  double k0 = 0;
  double k1 = 0;
  double quality = 0;
  enzyme.CalcReciHyperbolFit(k0, k1, quality);
  std::cout << "limit " << 1 / k0 << ", half of it at " << k1 / k0 << " ppm, fit quality "
            << quality << '\n';
  enzyme.CalcLogFit(k0, k1, quality);
  std::cout << "rate = " << k0 << " + " << k1 << " ln(conc), fit quality " << quality << '\n';

  // Data that a fit cannot take are refused by name.
  enzyme.EnterStatValue(0, 0);
  try {
    enzyme.CalcLogFit(k0, k1, quality);
  } catch (const zel::EZELMath2Error& e) {
    std::cout << e.what() << '\n';
  }

  // Density of water in kg/m^3, between the values of a table.
  zel::TCurveFit water;
  const double density[] = {999.84, 999.70, 998.21, 995.65, 992.22};
  for (int i = 0; i < 5; ++i) water.EnterStatValue(10 * i, density[i]);
  std::cout << "water at 25 degrees: " << water.CubicSpline(25) << " kg/m^3\n";

  // Sunspot numbers of 1700 to 1988, more and more smoothed.
  zel::TVector numbers;
  std::string comment;
  const int error = numbers.ImportASC(argc > 1 ? argv[1] : "data/sunspots.asc", comment);
  if (error != 0) {
    std::cerr << "cannot read the data: error " << error << '\n';
    return 1;
  }
  zel::TCurveFit sun;
  for (int i = 1; i <= numbers.NrOfElem(); ++i) sun.EnterStatValue(1699 + i, numbers(i));
  for (const double smoothing : {0.0, 0.5, 0.99, 0.9999, 1.0}) {
    sun.SetSplineSmoothing(smoothing);
    bool valid = false;
    const double at1957 = sun.SmoothedSpline(1957, quality, valid);
    std::cout << "smoothing " << smoothing << ": " << at1957 << " in 1957, fit quality " << quality
              << '\n';
  }
  return water.CubicSpline(10) == density[1] ? 0 : 1;
}
