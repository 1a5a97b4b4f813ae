/// @file
/// Pure components of linear mixtures.
#pragma once

#include "zel/base/api.h"
#include "zel/matrix/TMatrix.h"
#include "zel/vector/TIntVector.h"

namespace zel {

/// Vertex component analysis: finds the observations that are nearest to the pure components
/// ("endmembers") of data in which each observation is a mixture of them, with parts that are not
/// negative and sum to 1, such as the spectra of a hyperspectral image. Such data fill a simplex
/// with the pure components at its vertices.
///
/// The data are projected to the subspace that the endmembers span. Again and again a random
/// direction orthogonal to all vertices so far is drawn, and the observation that lies farthest
/// along it is the next vertex. The directions come from GRandom: the same seed (SetRandSeed) gives
/// the same result, another one the endmembers in another order, and on data with noise or without
/// pure observations perhaps others.
/// @param Data         observations in the rows, variables in the columns
/// @param NEndmembers  2 .. smaller number of rows and columns
/// @param HighSNR      true: the subspace is that of the largest second moments, and observations
///   are scaled to the same size in it, which makes up for a varying brightness; those that point
///   away from the mean are passed over. For signal-to-noise ratios above about
///   15 + 10 lg NEndmembers decibels. false: the subspace of one dimension less of the largest
///   variances about the mean, which suppresses more noise.
/// @param Endmembers   resized to one row per endmember: the chosen observations, projected
/// @param Indices      resized to one element per endmember: the rows of Data, from 1, in the order
///   in which they were found
/// @param Fractions    resized to the rows of Data and one column per endmember: the mixture that
///   fits each observation best (least squares; not limited to 0..1)
/// Results may be null, and a matrix may be Data.
/// @return false, with nothing changed, if the data span too few dimensions for so many endmembers
///   (to about 1E-13 of their squares), if NEndmembers is out of range, a value is not finite, or
///   Data is null
/// @throws EZELMath2Error  "VertexCompAnalysis: not enough memory"; the results are unchanged then
/// Cost: O(rows columns^2), and O(columns^3) for the subspace.
/// Method: Nascimento and Bioucas-Dias, IEEE Trans. Geosci. Remote Sens. 43 (2005) 898.
ZEL_API bool VertexCompAnalysis(const TMatrix* Data, int NEndmembers, bool HighSNR,
                                TMatrix* Endmembers, TIntVector* Indices, TMatrix* Fractions);

}  // namespace zel
