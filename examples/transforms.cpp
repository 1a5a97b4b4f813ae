// The sunspot cycle: the strongest line of the spectrum, and the energy of the wavelet transform by
// level.
#include <zel/transforms/Zel_fourier.h>
#include <zel/transforms/Zel_wavelet.h>
#include <zel/vector/Zel_vector.h>

#include <iomanip>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : "data";
  zel::TVector spots;
  std::string comment;
  if (spots.ImportASC(folder + "/sunspots.asc", comment) != 0) {
    std::cerr << "the data are not in " << folder << '\n';
    return 1;
  }
  const int n = spots.NrOfElem();
  double mean = 0;
  double variance = 0;
  spots.MeanVar(0, 0, mean, variance);  // (0, 0): all elements
  std::cout << std::fixed << std::setprecision(2);

  zel::TFastFourier fourier;
  fourier.SetNumData(2048);  // the rest stays zero
  fourier.SetWgtWin(zel::fwUserDef);
  for (int i = 1; i <= n; ++i) {
    // The window over the data, not over the zeros.
    fourier.SetWgtVal(i, zel::TFastFourier::WeightAt(zel::fwCos2, (i - 0.5) / n - 0.5));
    fourier.SetRealVal(i, spots.Elem(i) - mean);
  }
  fourier.Transform();
  int strongest = 1;
  for (int line = 1; line <= fourier.SpectrumSize() / 2; ++line) {
    if (fourier.GetMagnitude(line) > fourier.GetMagnitude(strongest)) strongest = line;
  }
  const double year = 1;
  std::cout << "strongest line " << strongest << ": a period of "
            << 1 / fourier.FreqOfLine(strongest, year) << " years\n";
  std::cout << "share of the lines of 9 to 13 years: "
            << fourier.RMS(fourier.LineOfFreq(1.0 / 13, year), fourier.LineOfFreq(1.0 / 9, year)) /
                   fourier.RMS(0, fourier.SpectrumSize() / 2)
            << " of the root mean square\n";

  zel::TWavelet1D wavelet;
  wavelet.SetNumData(256);
  wavelet.SetOrder(2);
  for (int i = 1; i <= 256; ++i) wavelet.SetDataVal(i, spots.Elem(n - 256 + i) - mean);
  wavelet.Transform(4);
  // After the 16 approximations come the details of level 4, then those of 3, 2 and 1.
  int first = 17;
  for (int level = 4; level >= 1; --level) {
    const int count = 256 >> level;
    double energy = 0;
    for (int i = first; i < first + count; ++i) {
      energy += wavelet.GetDataVal(i) * wavelet.GetDataVal(i);
    }
    std::cout << "periods of " << (1 << level) << " to " << (2 << level) << " years: energy "
              << energy << '\n';
    first += count;
  }
  return 0;
}
