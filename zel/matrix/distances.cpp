// TMatrix: distances between rows.
#include "zel/kernels/distances.h"

#include <algorithm>

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
  if (DMat == this) {
    TMatrix objects;
    objects.Assign(this);
    return objects.CalcDistMat(Mode, DMat);
  }
  if (Mode == dmUser) {
    // Complete before the result changes, since the handler may throw, or resize it.
    const int n = NrOfRows();
    TMatrix distances;
    distances.Resize(n, n);
    for (int i = 1; i < n; ++i) {
      for (int j = i + 1; j <= n; ++j) {
        distances.SetVal(i, j, DistanceOfObjects(Mode, i, j));
        distances.SetVal(j, i, distances(i, j));
      }
    }
    if (DMat->HasSizeOf(distances))
      std::copy(distances.begin(), distances.end(), DMat->Cells().begin());
  } else if (kernels::isStandardDistance(Mode)) {
    Guarded([&] { kernels::rowDistances(View(), Mode, DMat->View()); });
  } else {
    const auto cells = DMat->Cells();
    std::fill(cells.begin(), cells.end(), 0.0);
  }
  DMat->Changed();
  return 0;
}

}  // namespace zel
