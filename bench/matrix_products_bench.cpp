// Matrix products and the transpose beside OpenBLAS on one thread and Eigen.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

#include "bench/peers_blas.h"
#include "bench/peers_matrix.h"
#include "bench/rivals.h"
#include "zel/kernels/products.h"

namespace zel::bench {
namespace {

using kernels::ConstMatrix;
using kernels::Factor;

/// Two factors and a result for each rival, made on first use.
struct Factors {
  Factors(std::size_t rows, std::size_t columns, std::size_t resultSize)
      : a(normalData(rows * columns)), b(a.rbegin(), a.rend()), zel(resultSize), peer(resultSize) {}
  [[nodiscard]] bool agree() const {
    double largest = 0;
    double difference = 0;
    for (std::size_t i = 0; i < zel.size(); ++i) {
      largest = std::max(largest, std::abs(peer[i]));
      difference = std::max(difference, std::abs(zel[i] - peer[i]));
    }
    return difference <= 1e-12 * largest;
  }
  std::vector<double> a, b, zel, peer;
};

void addMultiply(std::size_t n) {
  const auto f = std::make_shared<std::unique_ptr<Factors>>();
  const auto zel = [=] {
    const ConstMatrix a{(*f)->a.data(), n, n, n};
    const ConstMatrix b{(*f)->b.data(), n, n, n};
    kernels::multiply(a, Factor::plain, b, Factor::plain, {(*f)->zel.data(), n, n, n});
  };
  const auto blas = [=] { blasMultiply((*f)->a.data(), (*f)->b.data(), (*f)->peer.data(), n); };
  compete("matrix product", n,
          [=] {
            *f = std::make_unique<Factors>(n, n, n * n);
            zel();
            blas();
            return (*f)->agree();
          },
          {{"Zel", zel}, {"OpenBLAS", blas}});
}

void addSquare(std::size_t rows, std::size_t n) {
  const auto f = std::make_shared<std::unique_ptr<Factors>>();
  const auto zel = [=] {
    kernels::squareColumns({(*f)->a.data(), rows, n, rows}, 1, 0, n, {(*f)->zel.data(), n, n, n});
  };
  const auto blas = [=] { blasSquare((*f)->a.data(), rows, n, (*f)->peer.data()); };
  compete("square product", n,
          [=] {
            *f = std::make_unique<Factors>(rows, n, n * n);
            zel();
            blas();
            for (std::size_t j = 0; j < n; ++j) {  // dsyrk leaves the lower triangle
              for (std::size_t i = 0; i < j; ++i) (*f)->peer[i * n + j] = (*f)->peer[j * n + i];
            }
            return (*f)->agree();
          },
          {{"Zel", zel}, {"OpenBLAS", blas}});
}

void addMultiplyVector(const char* kernel, Factor as, std::size_t n) {
  const auto f = std::make_shared<std::unique_ptr<Factors>>();
  const auto zel = [=] {
    kernels::multiplyVector({(*f)->a.data(), n, n, n}, as, {(*f)->b.data(), n}, (*f)->zel);
  };
  const auto blas = [=] {
    blasMultiplyVector((*f)->a.data(), as == Factor::transposed, (*f)->b.data(), (*f)->peer.data(),
                       n);
  };
  compete(kernel, n,
          [=] {
            *f = std::make_unique<Factors>(n, n, n);
            zel();
            blas();
            return (*f)->agree();
          },
          {{"Zel", zel}, {"OpenBLAS", blas}});
}

void addTranspose(std::size_t n) {
  const auto f = std::make_shared<std::unique_ptr<Factors>>();
  const auto zel = [=] { kernels::transposeSquare({(*f)->zel.data(), n, n, n}); };
  const auto eigen = [=] { eigenTranspose((*f)->peer.data(), n); };
  compete("transpose in place", n,
          [=] {
            *f = std::make_unique<Factors>(n, n, 0);
            (*f)->zel = (*f)->peer = (*f)->a;
            zel();
            eigen();
            return (*f)->zel == (*f)->peer && (*f)->zel != (*f)->a;
          },
          {{"Zel", zel}, {"Eigen", eigen}});
}

const bool kRegistered = [] {
  for (const std::size_t n : {16U, 64U, 256U, 1024U, 2048U}) addMultiply(n);
  addSquare(20000, 300);
  for (const std::size_t n : {200U, 2000U}) {
    addMultiplyVector("matrix times vector", Factor::plain, n);
    addMultiplyVector("transposed times vector", Factor::transposed, n);
  }
  for (const std::size_t n : {256U, 1000U, 2048U}) addTranspose(n);
  return true;
}();

}  // namespace
}  // namespace zel::bench
