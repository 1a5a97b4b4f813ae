// TMatrix: distances between rows.
#include "zel/kernels/distances.h"

#include "zel/matrix/TMatrix.h"
#include "zel/matrix/container_impl.h"

namespace zel {

double TMatrix::DistanceOfObjects(TDistMode Mode, int obj1, int obj2) const {
  if (kernels::isStandardDistance(Mode)) {
    // Rows below 1 become huge, and so beyond the matrix.
    return kernels::rowDistance(View(), Mode, static_cast<unsigned>(obj1) - 1U,
                                static_cast<unsigned>(obj2) - 1U);
  }
  double distance = 0;
  if (Mode == dmUser) Fire(OnCalcDistance, const_cast<TMatrix*>(this), obj1, obj2, distance);
  return distance;
}

int TMatrix::CalcDistMat(TDistMode Mode, TMatrix* DMat) const {
  if (!DMat) return -3;
  if (DMat->NrOfColumns() != NrOfRows()) return -2;
  if (DMat->NrOfColumns() != DMat->NrOfRows()) return -1;
  const int n = NrOfRows();
  // The distances are complete before the result changes: it may be this matrix, and a handler may
  // throw.
  TDouble2DArray distances;
  Guarded([&] {
    distances.SetLength(std::max(n, 1), std::max(n, 1));
    if (!kernels::isStandardDistance(Mode)) return;
    const auto size = static_cast<std::size_t>(n);
    kernels::rowDistances(View(), Mode, {distances.data(), size, size, size});
  });
  if (Mode == dmUser) {
    for (int i = 1; i < n; ++i) {
      for (int j = i + 1; j <= n; ++j) {
        const double d = DistanceOfObjects(Mode, i, j);
        distances(i - 1, j - 1) = distances(j - 1, i - 1) = d;
      }
    }
  }
  if (DMat->NrOfColumns() == n && DMat->NrOfRows() == n) DMat->TakeOver(distances, n, n);
  DMat->Changed();
  return 0;
}

}  // namespace zel
