#include "zel/analysis/singularvalues.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "zel/analysis/matrix_view_impl.h"
#include "zel/analysis/memory_impl.h"
#include "zel/kernels/least_squares.h"
#include "zel/kernels/products.h"
#include "zel/kernels/svd.h"

namespace zel {

bool SingularValueDecompose(TMatrix* A, TMatrix* V, TVector* W) {
  if (!A || !V || !W || A == V) return false;
  return detail::GuardFit("SingularValueDecompose", [&] {
    const int n = A->NrOfColumns();
    const auto size = static_cast<std::size_t>(n);
    std::vector<double> values(size);
    TDouble2DArray right(n, n);
    const auto status = kernels::singularValueDecompose(detail::ViewOf(*A), values,
                                                        {right.data(), size, size, size});
    // V and W take the result, in one go each, while A is already U.
    V->Resize(n, n);
    std::copy_n(right.data(), size * size, V->data());
    W->SetElements(values);
    A->Changed();
    V->Changed();
    W->Changed();
    return status == kernels::SvdStatus::done;
  });
}

bool SingValEquSolve(const TMatrix* MatU, const TMatrix* MatV, const TVector* VecW,
                     const TVector* VecB, TVector* VecX, TVector* VecC) {
  if (!MatU || !MatV || !VecW || !VecB || !VecX) return false;
  const int n = MatU->NrOfColumns();
  if (n < 1 || MatV->NrOfColumns() != n || MatV->NrOfRows() != n || VecW->NrOfElem() != n ||
      VecB->NrOfElem() != MatU->NrOfRows()) {
    return false;
  }
  return detail::GuardFit("SingValEquSolve", [&] {
    const auto size = static_cast<std::size_t>(n);
    std::vector<double> inside(size);
    std::vector<double> solution(size);
    std::vector<double> factors(size);
    const auto w = VecW->Elements();
    kernels::multiplyVector(detail::ViewOf(*MatU), kernels::Factor::transposed, VecB->Elements(),
                            inside);
    for (std::size_t k = 0; k < size; ++k) inside[k] = w[k] == 0 ? 0 : inside[k] / w[k];
    const kernels::ConstMatrix v = detail::ViewOf(*MatV);
    kernels::multiplyVector(v, kernels::Factor::plain, inside, solution);
    kernels::errorFactors(v, w, factors);
    VecX->SetElements(solution);
    if (VecC) VecC->SetElements(factors);
    VecX->Changed();
    if (VecC) VecC->Changed();
    return true;
  });
}

bool PseudoInverse(const TMatrix* Mat, TMatrix* PInv, double Tol) {
  if (!Mat || !PInv) return false;
  return detail::GuardFit("PseudoInverse", [&] {
    const int columns = Mat->NrOfColumns();
    const int rows = Mat->NrOfRows();
    TDouble2DArray inverse(rows, columns);
    const auto m = static_cast<std::size_t>(rows);
    const auto n = static_cast<std::size_t>(columns);
    if (!kernels::pseudoInverse(detail::ViewOf(*Mat), Tol, {inverse.data(), n, m, n})) return false;
    PInv->Resize(rows, columns);
    std::copy_n(inverse.data(), m * n, PInv->data());
    PInv->Changed();
    return true;
  });
}

}  // namespace zel
