#include "bench/peers_blas.h"

#include <cblas.h>

#include <vector>

extern "C" {
void dgetrf_(const int* m, const int* n, double* a, const int* lda, int* pivots, int* info);
void dgetri_(const int* n, double* a, const int* lda, const int* pivots, double* work,
             const int* lwork, int* info);
void dpotrf_(const char* uplo, const int* n, double* a, const int* lda, int* info);
}

namespace zel::bench {

namespace {
[[maybe_unused]] const bool kIsOneThread = [] {
  openblas_set_num_threads(1);
  return true;
}();
}  // namespace

void blasMultiply(const double* a, const double* b, double* c, std::size_t n) {
  const int m = static_cast<int>(n);
  cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, m, m, m, 1, a, m, b, m, 0, c, m);
}

void blasSquare(const double* a, std::size_t rows, std::size_t columns, double* c) {
  const int k = static_cast<int>(rows);
  const int m = static_cast<int>(columns);
  cblas_dsyrk(CblasColMajor, CblasUpper, CblasTrans, m, k, 1, a, k, 0, c, m);
}

void blasMultiplyVector(const double* a, bool isTransposed, const double* x, double* y,
                        std::size_t n) {
  const int m = static_cast<int>(n);
  cblas_dgemv(CblasColMajor, isTransposed ? CblasTrans : CblasNoTrans, m, m, 1, a, m, x, 1, 0, y,
              1);
}

int lapackLu(double* a, int* pivots, std::size_t n) {
  const int m = static_cast<int>(n);
  int info = 0;
  dgetrf_(&m, &m, a, &m, pivots, &info);
  return info;
}

int lapackInverse(double* a, int* pivots, std::size_t n) {
  int info = lapackLu(a, pivots, n);
  if (info != 0) return info;
  const int m = static_cast<int>(n);
  int length = -1;
  double best = 0;
  dgetri_(&m, a, &m, pivots, &best, &length, &info);
  length = static_cast<int>(best);
  std::vector<double> work(static_cast<std::size_t>(length));
  dgetri_(&m, a, &m, pivots, work.data(), &length, &info);
  return info;
}

int lapackCholesky(double* a, std::size_t n) {
  const int m = static_cast<int>(n);
  int info = 0;
  dpotrf_("L", &m, a, &m, &info);
  return info;
}

}  // namespace zel::bench
