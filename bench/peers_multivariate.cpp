#include "bench/peers_multivariate.h"

#include <Eigen/Eigenvalues>
#include <Eigen/QR>
#include <Eigen/SVD>

namespace zel::bench {

namespace {

using Eigen::MatrixXd;
using Eigen::VectorXd;
using View = Eigen::Map<const MatrixXd>;

}  // namespace

double eigenSymmetric(const double* a, long n) {
  const Eigen::SelfAdjointEigenSolver<MatrixXd> solver(View(a, n, n));
  return solver.eigenvalues()[n - 1];
}

double eigenSvd(const double* a, long rows, long columns) {
  const Eigen::BDCSVD<MatrixXd> svd(View(a, rows, columns),
                                    Eigen::ComputeThinU | Eigen::ComputeThinV);
  return svd.singularValues()[0];
}

void eigenLeastSquares(const double* a, long rows, long columns, const double* b, double* x) {
  const Eigen::CompleteOrthogonalDecomposition<MatrixXd> cod(View(a, rows, columns));
  Eigen::Map<VectorXd>(x, columns) = cod.solve(Eigen::Map<const VectorXd>(b, rows));
}

void eigenPseudoInverse(const double* a, long rows, long columns, double* inverse) {
  const Eigen::CompleteOrthogonalDecomposition<MatrixXd> cod(View(a, rows, columns));
  Eigen::Map<MatrixXd>(inverse, columns, rows) = cod.pseudoInverse();
}

void eigenCovariance(const double* a, long rows, long columns, double* covariance) {
  const View data(a, rows, columns);
  const MatrixXd centred = data.rowwise() - data.colwise().mean();
  Eigen::Map<MatrixXd> result(covariance, columns, columns);
  result.setZero();
  result.selfadjointView<Eigen::Lower>().rankUpdate(centred.transpose());
  result /= static_cast<double>(rows - 1);
}

}  // namespace zel::bench
