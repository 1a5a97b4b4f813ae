// The eruptions of a geyser as a plain array: describes its variables, counts it on a grid, and
// finds the islands of the grid. With the name of a picture, such as islands.png, it draws them.
#include <zel/openarrays/Zel_openarrays.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

namespace {

/// [column][row]: duration and waiting time in minutes, an eruption in each row.
zel::TDouble2DArray eruptions(const std::string& name) {
  std::ifstream file(name);
  std::string line;
  std::getline(file, line);  // the names of the columns
  zel::TDoubleArray durations, waits;
  char comma = 0;
  for (double duration, wait; file >> duration >> comma >> wait;) {
    durations.push_back(duration);
    waits.push_back(wait);
  }
  zel::TDouble2DArray data(2, durations.size());
  zel::CopyVectorToArrayColumn(durations, 0, 0, 0, 0, data);
  zel::CopyVectorToArrayColumn(waits, 0, 0, 1, 0, data);
  return data;
}

}  // namespace

int main(int argc, char** argv) {
  const zel::TDouble2DArray data = eruptions(argc > 2 ? argv[2] : "data/faithful.csv");
  const int last = static_cast<int>(data.Length(1)) - 1;
  const char* const variables[] = {"duration", "waiting"};
  std::printf("minutes    n   mean  st.dev.  median  shortest\n");
  for (int c = 0; c < 2; ++c) {
    double mean = 0, deviation = 0, low = 0, high = 0;
    int lowCol = 0, lowRow = 0, highCol = 0, highRow = 0;
    if (zel::MeanArray(data, c, 0, c, last, mean) != 0) {
      std::cerr << "cannot read the data\n";  // -1: the array is empty
      return 1;
    }
    zel::StdDevArray(data, c, 0, c, last, deviation);
    zel::MinMaxArray(data, c, 0, c, last, low, high, lowCol, lowRow, highCol, highRow);
    std::printf("%-8s %d  %5.2f  %7.2f  %6.2f  %g in row %d\n", variables[c], last + 1, mean,
                deviation, zel::PercentileArray(50, data, c, 0, c, last), low, lowRow);
  }

  // A picture whose cell [x][y] is 1 where there are eruptions of this duration and wait.
  zel::TInt2DArray grid(16, 12);
  for (int row = 0; row <= last; ++row) {
    const int x = static_cast<int>((data(0, row) - 1.5) * 4);
    const int y = 11 - static_cast<int>((data(1, row) - 40) / 5);
    grid(x, y) = 1;
  }
  // Each island takes a number of its own.
  int islands = 1;
  for (int x = 0; x < 16; ++x) {
    for (int y = 0; y < 12; ++y) {
      if (grid(x, y) != 1) continue;
      int low = 0, high = 0, left = 0, right = 0;
      const int cells = zel::FloodFillArray(x, y, ++islands, grid, high, low, left, right);
      std::printf("island %d: %d cells, columns %d to %d, rows %d to %d\n", islands - 1, cells,
                  left, right, low, high);
    }
  }
  for (int y = 0; y < 12; ++y) {
    for (int x = 0; x < 16; ++x) std::putchar(grid(x, y) == 0 ? '.' : '0' + grid(x, y) - 1);
    std::putchar('\n');
  }
  if (argc > 1) {
    zel::MultiplyArrayByScalar(grid, 0x204060);
    if (zel::SaveArrayAsImg(argv[1], grid, 10) != 0) return 1;
  }
  return 0;
}
