/// @file
/// What a user would call instead, on arrays stored by columns. Compiled apart, with -O3
/// -march=native.
#pragma once

#include <cstddef>
#include <vector>

namespace zel::bench {

/// The block without the outermost rows and columns.
double eigenInnerMean(const double* a, std::size_t rows, std::size_t columns);
void eigenFillInner(double* a, std::size_t rows, std::size_t columns, double value);
double eigenDeviation(const int* x, std::size_t n);
void eigenMinMax(const float* x, std::size_t n, float& minimum, float& maximum);
/// The aggregated rows.
void eigenRowMeans(const double* a, std::size_t rows, std::size_t columns, double* means);
/// a + b, or a + factor b.
void eigenAdd(const int* a, const int* b, std::size_t n, int* sum);
void eigenAccumulate(double* a, const double* b, std::size_t n, double factor);

/// Fills cell by cell from a stack of cells, as textbooks do.
int stackFloodFill(int* a, int rows, int columns, int x, int y, int value);

}  // namespace zel::bench
