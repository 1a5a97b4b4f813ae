// A series of image stacks: written slot by slot, read back layer by layer, averaged.
#include <zel/matrix/Zel_matrix.h>

#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>

int main() {
  // Four time slots of three layers, each an image of 6 x 4 pixels: a spot that fades with time.
  zel::TMat4D series;
  series.Resize(6, 4, 3, 4);
  series.SetDataID("fading spot");
  for (int t = 1; t <= 4; ++t) {
    for (int layer = 1; layer <= 3; ++layer) {
      for (int y = 1; y <= 4; ++y) {
        for (int x = 1; x <= 6; ++x) {
          const double distance = (x - 3) * (x - 3) + (y - 2) * (y - 2);
          series.SetVal(x, y, layer, t, layer / (1 + distance) / t);
        }
      }
    }
  }

  // A file may grow slot by slot, as the data come in.
  const std::string file = "arrays_example.dat";
  if (series.SaveBinary(file, 1, 2) != 0 || series.AppendToBinaryFile(file, 3, 4) != 0) return 1;

  // What is in it can be read in parts; elements of large files need not be held at all.
  zel::TMat4D part;
  part.LoadBinary(file, 4, 4);
  std::cout << part.DataID() << ", slot 4: brightest in layer 3 at (3, 2): " << part(3, 2, 3, 1)
            << '\n';
  double sum = 0;
  part.OnReadElement = [&](zel::TObject*, int, int, int, int, double value) { sum += value; };
  part.ReadBinary(file, 0, 0);
  std::cout << "sum of the file " << sum << ", of the array " << series.Sum(0, 0, 0, 0, 0, 0, 0, 0)
            << '\n';

  // Aggregates over layers and time slots.
  zel::TMatrix mean;
  zel::TMatrix most;
  series.MeanOfLayersToMatrix(&mean, 0, 0, 2, 2, 0, 0, 0, 0);
  series.MaximumOfLayersToMatrix(&most, 0, 0, 2, 2, 0, 0, 0, 0);
  std::cout << "row 2, mean   ";
  for (const double x : mean) std::cout << ' ' << x;
  std::cout << "\nrow 2, maximum";
  for (const double x : most) std::cout << ' ' << x;
  std::cout << '\n';

  // Blocks of 3 x 2 pixels, averaged over all layers and time slots, as XML.
  series.Resample(3, 0, 2, 0, 3, 0, 4, 0, true);
  std::ostringstream xml;
  series.WriteToOpenXMLFile(xml, false, "");
  std::cout << xml.str();
  std::remove(file.c_str());
}
