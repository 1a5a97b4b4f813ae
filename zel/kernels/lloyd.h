/// @file
/// k-means partitioning.
#pragma once

#include <span>

#include "zel/kernels/dense.h"
#include "zel/kernels/poll.h"

namespace zel::kernels {

enum class LloydEnd { settled, stopped, tooManyPasses };

/// Lloyd's iteration: assigns every object (row) to the centre of least squared Euclidean distance,
/// the first of several, then moves each centre to the mean of its objects, until a pass changes no
/// assignment. A centre without objects becomes zero; an object without a finite distance belongs
/// to cluster 0.
///
/// On the way the means are plain sums; those that are returned are rounded once.
/// @param centres     at least one, one in each row: the start, then the result
/// @param assignment  takes the cluster of each object, from 0
/// @param sizes       takes the number of objects in each cluster
/// @param limit       more passes than this end the iteration
/// @param goOn        asked between two passes
/// @throws std::bad_alloc  before anything is written
/// Method: Lloyd, IEEE Trans. Inf. Theory 28 (1982) 129. O(n k p) for each pass.
LloydEnd lloyd(ConstMatrix data, Matrix centres, std::span<int> assignment, std::span<int> sizes,
               int limit, Poll goOn = {});

/// Sum of the squared distances of all objects from the centres of their clusters.
/// @throws std::bad_alloc
[[nodiscard]] double sumOfSquaresWithin(ConstMatrix data, ConstMatrix centres,
                                        std::span<const int> assignment);

}  // namespace zel::kernels
