/// @file
/// Reductions across the layers of a stack: cell i of the result is made from element i of every
/// layer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zel::kernels {

/// Runs of cells at equal distances: run (l, t) begins at first + l * layerStride + t * slotStride.
struct LayerStack {
  const double* first = nullptr;
  std::size_t layers = 0;
  std::size_t layerStride = 0;
  std::size_t slots = 0;
  std::size_t slotStride = 0;
  std::size_t divisor = 0;  ///< of the means; 0: count()
  [[nodiscard]] std::size_t count() const { return layers * slots; }
};

enum class LayerOp : std::uint8_t { mean, maximum, minimum, standardDeviation };

/// Writes the reduction of each of result.size() cells. Layers are taken in order, all slots of one
/// before the next; at least one layer and slot.
///
/// The extremes start at the largest double and its negative and take strictly smaller (larger)
/// elements only. Mean and standard deviation (divisor n, 0 for equal elements) come from
/// double-double sums and are rounded once; where the plain formula of the deviation would lose too
/// many digits, or a sum is not finite, the cell is computed anew about its mean. The result has
/// the same bits on every machine and does not depend on the neighbouring cells.
/// @throws std::bad_alloc  only where a cell is computed anew
void reduceLayers(LayerOp op, const LayerStack& stack, std::span<double> result);

}  // namespace zel::kernels
