#include "zel/analysis/singularvalues.h"

#include <cstddef>
#include <span>
#include <vector>

#include "zel/analysis/matrix_view_impl.h"
#include "zel/analysis/memory_impl.h"
#include "zel/analysis/results_impl.h"
#include "zel/kernels/least_squares.h"
#include "zel/kernels/products.h"
#include "zel/kernels/scaling.h"
#include "zel/kernels/svd.h"

namespace zel {

bool SingularValueDecompose(TMatrix* A, TMatrix* V, TVector* W) {
  if (!A || !V || !W || A == V) return false;
  return detail::GuardFit("SingularValueDecompose", [&] {
    const kernels::Matrix a = detail::ViewOf(*A);
    if (!kernels::extremeExponent(a)) return false;
    detail::TResults results;
    const kernels::Matrix right = results.Add(V, a.columns, a.columns);
    const std::span<double> values = results.Add(W, a.columns);
    const auto status = kernels::singularValueDecompose(a, values, right);
    A->Changed();
    results.Commit();
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
    detail::TResults results;
    const std::span<double> solution = results.Add(VecX, size);
    const std::span<double> factors = results.Add(VecC, size);
    const auto w = VecW->Elements();
    kernels::multiplyVector(detail::ViewOf(*MatU), kernels::Factor::transposed, VecB->Elements(),
                            inside);
    for (std::size_t k = 0; k < size; ++k) inside[k] = w[k] == 0 ? 0 : inside[k] / w[k];
    const kernels::ConstMatrix v = detail::ViewOf(*MatV);
    kernels::multiplyVector(v, kernels::Factor::plain, inside, solution);
    if (VecC) kernels::errorFactors(v, w, factors);
    results.Commit();
    return true;
  });
}

bool PseudoInverse(const TMatrix* Mat, TMatrix* PInv, double Tol) {
  if (!Mat || !PInv) return false;
  return detail::GuardFit("PseudoInverse", [&] {
    const kernels::ConstMatrix a = detail::ViewOf(*Mat);
    detail::TResults results;
    if (!kernels::pseudoInverse(a, Tol, results.Add(PInv, a.columns, a.rows))) return false;
    results.Commit();
    return true;
  });
}

}  // namespace zel
