/// @file
/// Nearest neighbours.
///
/// The rows of a data matrix are the objects, its columns the variables. Distances are Euclidean,
/// from plain sums over the columns. A distance that is not a number, or infinite, makes no
/// neighbour.
#pragma once

#include <cstdint>
#include <functional>

#include "zel/base/api.h"
#include "zel/matrix/TMatrix.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// Distance of an object, given by its row.
using TCalcDistFunc = std::function<double(int)>;

/// How an estimate follows from the neighbours; see EstimateByKNN.
enum TKnnWMode : std::uint8_t { kwmGauss, kwmAverage, kwmMedian, kwmLinear, kwmBiQuad };

/// Mean distance of every object of a range from its nearest neighbours in that range, itself
/// included as the nearest, at distance 0.
/// @param NumNeighbors     limited to 1..50 and to the number of rows of DataMat; where the range
///   has fewer neighbours the mean is over these
/// @param LowRow, HighRow  each limited to 1..rows, a reversed pair exchanged
/// @param MeanDist         element i is that of row i; not resized. Not-a-number without
///   neighbours.
/// Nothing happens for null or without rows.
/// @throws EZELMath2Error  "MeanDistanceKNN: not enough memory"; nothing is changed then
/// O(rows log rows) for few columns, by a tree of boxes; up to O(rows^2 * columns) for many.
ZEL_API void MeanDistanceKNN(const TMatrix* DataMat, int NumNeighbors, int LowRow, int HighRow,
                             TVector* MeanDist);

/// The nearest rows of a matrix, nearest first; of equally near ones the earlier row comes first.
/// @param NumNeighbors     limited to 100 and to the number of rows; below 1: nothing happens
/// @param LowRow, HighRow  range of rows, clamped; (0, 0): all
/// @param Probe            coordinates of the point; the distance is over its elements, those
///   beyond the columns of DataMat facing zeros
/// @param NNList           not resized; rows 1..NumNeighbors take the row (column 1) and its
///   distance (column 2), or 0 and the largest double where there is no neighbour left
/// @param DistFunc         if assigned, gives the distances; Probe is not used then
/// Nothing happens if a matrix, or what gives the distance, is null, or without rows.
/// @throws EZELMath2Error  "FindNearestNeighbors: not enough memory"; nothing is changed then
/// O(rows * columns).
ZEL_API void FindNearestNeighbors(int NumNeighbors, const TMatrix* DataMat, int LowRow, int HighRow,
                                  const TVector* Probe, TMatrix* NNList,
                                  const TCalcDistFunc& DistFunc);

/// k-nearest-neighbour estimate of a target value at a point, from the targets t of the k nearest
/// rows and their distances d, whose mean is m (0.001 if it is 0):
/// - kwmGauss: mean with the weights exp(-(d KernelWidth / m)^2)
/// - kwmAverage: mean; kwmMedian: median
/// - kwmLinear: mean with the weights 1 - d / (m KernelWidth), where they are positive;
///   0 if there is none
/// - kwmBiQuad: value of the full quadratic polynomial in all variables that fits the targets of
///   the neighbours by least squares, of least norm where they do not determine it; 0 if the fit
///   fails
/// @param Targets       target of each row; 0 beyond its elements
/// @param NumNeighbors  k, limited to 100 and to the number of rows
/// @param Probe         as in FindNearestNeighbors
/// @param Estimate      0 without neighbours and for another WMode
/// @param MeanDist      mean of the distances; the largest double without neighbours
/// For null arguments the results are those without neighbours.
/// @throws EZELMath2Error  "EstimateByKNN: not enough memory"
ZEL_API void EstimateByKNN(const TMatrix* DataMat, const TVector* Targets, int NumNeighbors,
                           TKnnWMode WMode, double KernelWidth, const TVector* Probe,
                           double& Estimate, double& MeanDist);

}  // namespace zel
