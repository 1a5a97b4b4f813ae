#include "bench/peers_matrix.h"

#include <Eigen/Core>

namespace zel::bench {

void eigenTranspose(double* a, std::size_t n) {
  const auto m = static_cast<Eigen::Index>(n);
  Eigen::Map<Eigen::MatrixXd>(a, m, m).transposeInPlace();
}

}  // namespace zel::bench
