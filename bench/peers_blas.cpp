#include "bench/peers_blas.h"

#include <vector>

// The Fortran names: another library of the program has C names of the same functions, and slow
// ones.
extern "C" {
void openblas_set_num_threads(int n);
void dgemm_(const char* transA, const char* transB, const int* m, const int* n, const int* k,
            const double* alpha, const double* a, const int* lda, const double* b, const int* ldb,
            const double* beta, double* c, const int* ldc);
void dsyrk_(const char* uplo, const char* trans, const int* n, const int* k, const double* alpha,
            const double* a, const int* lda, const double* beta, double* c, const int* ldc);
void dgemv_(const char* trans, const int* m, const int* n, const double* alpha, const double* a,
            const int* lda, const double* x, const int* incx, const double* beta, double* y,
            const int* incy);
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
constexpr double kZero = 0;
constexpr double kOne = 1;
constexpr int kNext = 1;
}  // namespace

void blasMultiply(const double* a, const double* b, double* c, std::size_t n) {
  const int m = static_cast<int>(n);
  dgemm_("N", "N", &m, &m, &m, &kOne, a, &m, b, &m, &kZero, c, &m);
}

void blasSquare(const double* a, std::size_t rows, std::size_t columns, double* c) {
  const int k = static_cast<int>(rows);
  const int m = static_cast<int>(columns);
  dsyrk_("U", "T", &m, &k, &kOne, a, &k, &kZero, c, &m);
}

void blasMultiplyVector(const double* a, bool isTransposed, const double* x, double* y,
                        std::size_t n) {
  const int m = static_cast<int>(n);
  dgemv_(isTransposed ? "T" : "N", &m, &m, &kOne, a, &m, x, &kNext, &kZero, y, &kNext);
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
