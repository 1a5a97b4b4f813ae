/// @file
/// Partitions around centres: k-means, and centres found by agglomeration.
///
/// The rows of a data matrix are the objects, its columns the variables.
#pragma once

#include "zel/base/api.h"
#include "zel/matrix/TMatrix.h"
#include "zel/vector/Zel_vector.h"

namespace zel {

/// k-means: partitions the objects into NumClust clusters, each about the mean of its objects, by
/// assigning every object to the centre of least Euclidean distance (the lower cluster on ties)
/// and moving the centres to the means until nothing changes.
///
/// The clusters are numbered by size, the largest first; those of equal size stay in the order that
/// TIntMatrix::SortRows leaves. A cluster without objects has the zero vector as its centre; an
/// object without a finite distance from any centre (a value that is not a number) counts to the
/// first cluster, and makes its centre not-a-number.
///
/// ProcStat grows by 1 for each pass. While AbortMathProc is set, the iteration ends after the
/// running pass; the clusters are those of this pass then, not renumbered.
/// @param Reserved1, Reserved2  take no part
/// @param NumClust     number of clusters, at least 1
/// @param RandInit     0 or below: the first rows are the start; otherwise the process-wide
///   generator is seeded with it and each centre starts at a row drawn from all (repeats are
///   possible)
/// @param Centers      resized: a row per cluster
/// @param ClustAssign  resized: cluster of each object, from 1
/// @param ClustSize    resized: number of objects of each cluster
/// Results may be null.
/// @return sum of the squared distances of the objects from the centres of their clusters; -1 if
///   stopped; 0, with nothing changed, for a null DataMat
/// @throws EZELMath2Error
///   "kMeansClustering: number of clusters is greater than number of objects";
///   "kMeansClustering: not enough memory";
///   "kMeansClustering: max. number of iterations exceeded", after more than 1000 passes, with
///   complete results
/// Finds a local minimum. O(rows * NumClust * columns) for each pass.
/// Method: Lloyd, IEEE Trans. Inf. Theory 28 (1982) 129.
ZEL_API double kMeansClustering(const TMatrix* DataMat, int Reserved1, int Reserved2, int NumClust,
                                int RandInit, TMatrix* Centers, TIntVector* ClustAssign,
                                TIntVector* ClustSize);
/// The same from the first rows.
ZEL_API double kMeansClustering(const TMatrix* DataMat, int Reserved1, int Reserved2, int NumClust,
                                TMatrix* Centers, TIntVector* ClustAssign);
/// Roughly the number of passes of a k-means run, for a progress display; at least 20. An empirical
/// formula, limited to the range of int.
ZEL_API int kMeansEstimatedSteps(int NumA, int NumB, int NumC);

/// Centres of a set of objects: the two nearest ones (least squared Euclidean distance, the lowest
/// rows on ties) are replaced by their weighted mean, where the weight is the number of objects in
/// it, until NumCenters are left.
///
/// The last object moves to the row of the second of a pair; that decides the order of the centres.
/// The data are written to the file "MAT.$$$" in the current directory, which is removed in the
/// end; DataMat itself is only read. Squared distances from 1E10 on do not count unless there are
/// no others; without any distance (values that are not numbers) the first two rows are merged.
/// ProcStat grows by 1 for each step. AbortMathProc ends the work, with Centers and MeanDist
/// unchanged.
/// @param LowRow, HighRow  range of the objects, clamped; (0, 0): all
/// @param NumCenters       limited to 1..number of objects
/// @param Centers          not resized; takes as many rows and columns as it has. May be null.
/// @param MeanDist         mean over the centres of the distance from the nearest other one, each
///   limited to 1E5
/// Nothing happens if DataMat is null or has no rows, or if the file cannot be written.
/// @throws EZELMath2Error  "FindCenters: not enough memory"; nothing is changed then
/// O(rows^2 * columns) for most data. Not for two calls at the same time in one directory.
ZEL_API void FindCenters(const TMatrix* DataMat, int LowRow, int HighRow, int NumCenters,
                         TMatrix* Centers, double& MeanDist);

}  // namespace zel
