/// @file
/// Weighted sums over sliding windows: filters in one dimension, small kernels in two.
///
/// Each product and each addition is rounded, the sum runs over the window in its order: every
/// machine gets the bits of the plain loop.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace zel::kernels {

/// Weights of a window of several rows, one after the other; the window is not turned round.
struct WindowWeights {
  const double* weights;
  std::size_t rows;
  std::size_t columns;
  std::size_t before;  // columns left of the centre
};

/// out[c] = sum over r and j of the weights (r, j) times rows[r][c + j], c = 0..count-1.
/// @param rows  as many as the window has, each of count + columns - 1 numbers
void weightedSums(const double* const* rows, const WindowWeights& window, double* out,
                  std::size_t count);

/// The weighted sums about every column of rows that are continued beyond their ends with their
/// first and last number. The columns whose windows lie within the rows are the inner ones.
class ClampedWindows {
 public:
  /// @throws std::bad_alloc
  ClampedWindows(const WindowWeights& window, std::size_t length);
  [[nodiscard]] std::size_t innerBegin() const { return FInnerBegin; }
  [[nodiscard]] std::size_t innerEnd() const { return FInnerEnd; }
  /// The sums of the inner columns, at their places in a row of results.
  void inner(const double* const* rows, double* out);
  /// The sums of the other columns.
  void edges(const double* const* rows, double* out);

 private:
  void edge(const double* const* rows, std::size_t first, std::size_t last, double* out);

  WindowWeights FWindow;
  std::size_t FLength;
  std::size_t FInnerBegin;
  std::size_t FInnerEnd;
  std::vector<double> FContinued;
  std::vector<const double*> FRows;
};

/// Weights of a window that are the same on both sides, or opposite: weights[k - 1] at the
/// distances k = 1..m. The weights of all 2 m + 1 values of `smoothing` add up to the divisor,
/// those of `curvature` to 0; the values enter as differences from the centre, so that a constant,
/// however large, leaves no error. In `slope` the weights are opposite and the centre has none.
enum class SymmetricForm { smoothing, slope, curvature };

/// smoothing: x + sum / divisor; slope and curvature: sum * factor / divisor.
struct SymmetricWeights {
  SymmetricForm form;
  std::span<const double> weights;
  double factor;
  double divisor;
};

/// @param x    the first centre; m numbers lie before it, m behind the last one
/// @param out  must not overlap x
void symmetricSums(const double* x, const SymmetricWeights& window, double* out, std::size_t count);

}  // namespace zel::kernels
