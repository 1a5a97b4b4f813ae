/// @file
/// The published data sets in matrices.
#pragma once

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "zel/matrix/TMatrix.h"

namespace zel::test {

/// `columns` columns of numbers behind the first `skipped` ones, of all lines but the header.
inline void loadCsv(const std::string& name, int skipped, int columns, TMatrix& m) {
  std::ifstream file(ZEL_TEST_DATA "/" + name);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  const int rows = static_cast<int>(lines.size()) - 1;
  m.Resize(columns, rows);
  for (int r = 1; r <= rows; ++r) {
    std::istringstream cells(lines[static_cast<std::size_t>(r)]);
    std::string cell;
    for (int c = 1 - skipped; c <= columns && std::getline(cells, cell, ','); ++c) {
      if (c > 0) m.SetVal(c, r, std::atof(cell.c_str()));
    }
  }
}

}  // namespace zel::test
