#include "zel/openarrays/arrayarithmetic.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>

#include "zel/kernels/elementwise.h"
#include "zel/kernels/integer_products.h"
#include "zel/kernels/products.h"
#include "zel/kernels/rows.h"
#include "zel/kernels/sums.h"
#include "zel/matrix/rules_impl.h"
#include "zel/openarrays/cells_impl.h"

namespace zel {

namespace {

using detail::kDone;
using detail::kEmpty;
using detail::kInvalid;
using detail::TBlock;

constexpr int kSingular = -3;

template <class T, int Rank, class Result, class Operation>
int combine(const char* routine, const TBlock<const T, Rank>& a, const TBlock<const T, Rank>& b,
            Result& result, Operation operation) {
  if (a.empty() || b.empty()) return kEmpty;
  if (a.extents != b.extents) return kInvalid;
  return detail::StoreResult(routine, a.extents, result, [&](T* to) {
    kernels::combineEach(a.cells(), b.cells(), to, operation);
  });
}

template <class T, int Rank, class Result, class Operation>
int combine(const char* routine, const TBlock<const T, Rank>& a, std::type_identity_t<T> value,
            Result& result, Operation operation) {
  if (a.empty()) return kEmpty;
  return detail::StoreResult(routine, a.extents, result,
                             [&](T* to) { kernels::combineEach(a.cells(), value, to, operation); });
}

template <class T, int Rank, class Change>
int change(const TBlock<T, Rank>& a, Change&& change) {
  if (a.empty()) return kEmpty;
  change(a.cells());
  return kDone;
}

template <class T, int Rank>
int accumulate(const TBlock<T, Rank>& a, const TBlock<const T, Rank>& source, T factor) {
  if (a.empty() || source.empty()) return kEmpty;
  if (a.extents != source.extents) return kInvalid;
  kernels::accumulate(a.cells(), source.cells(), factor);
  return kDone;
}

int invert(TDouble2DArray& a) {
  if (a.empty()) return kEmpty;
  if (a.Length(0) != a.Length(1)) return kInvalid;
  TDouble2DArray cells;
  const bool done = detail::GuardMemory(
      [&] {
        cells = a;
        return detail::InvertCells(cells);
      },
      [] { return EZELMatrixError("InvertArray: not enough memory on heap"); });
  a.swap(cells);
  return done ? kDone : kSingular;
}

template <class T>
int trace(const TDynArray<T, 2>& a, T& trace) {
  if (a.empty()) return kEmpty;
  const std::size_t n = a.Length(0);
  if (n != a.Length(1)) return kInvalid;
  // The diagonal is a row of a matrix with longer columns.
  const kernels::MatrixSpan<const T> diagonal{a.data(), 1, n, n + 1};
  detail::GuardArrays("TraceOfArray", [&] {
    kernels::forEachRow(diagonal, [&](std::size_t, std::span<const T> x) {
      if constexpr (std::is_integral_v<T>) {
        trace = static_cast<T>(kernels::integerSum(x));
      } else {
        trace = kernels::sum(x).hi;
      }
    });
  });
  return kDone;
}

template <class T>
int multiply(const TDynArray<T, 2>& a, const TDynArray<T, 2>& b, TDynArray<T, 2>& result) {
  if (a.empty() || b.empty()) return kEmpty;
  if (a.Length(0) != b.Length(1)) return kInvalid;
  TDynArray<T, 2> product;
  detail::GuardArrays("MultiplyArrays", [&] {
    product.SetLength(b.Length(0), a.Length(1));
    kernels::multiply(detail::MatrixOf(a), kernels::Factor::plain, detail::MatrixOf(b),
                      kernels::Factor::plain, detail::MatrixOf(product));
  });
  result.swap(product);
  return kDone;
}

template <class T, class Result>
int multiplyVector(const TDynArray<T, 2>& a, kernels::Factor asA, std::span<const T> x,
                   Result& result) {
  if (a.empty() || x.empty()) return kEmpty;
  const bool turned = asA == kernels::Factor::transposed;
  if (x.size() != a.Length(turned ? 1 : 0)) return kInvalid;
  Result product;
  detail::GuardArrays("MultiplyArrays", [&] {
    product.resize(a.Length(turned ? 0 : 1));
    kernels::multiplyVector(detail::MatrixOf(a), asA, x, std::span<T>(product));
  });
  result.swap(product);
  return kDone;
}

template <class T>
int dotProduct(std::span<const T> a, std::span<const T> b, T& result) {
  if (a.empty() || b.empty()) return kEmpty;
  if (a.size() != b.size()) return kInvalid;
  if constexpr (std::is_integral_v<T>) {
    result = static_cast<T>(kernels::integerSumOfProducts(a, b));
  } else {
    result = kernels::sumOfProducts(a, b).hi;
  }
  return kDone;
}

template <class T, class Result>
int crossProduct(std::span<const T> a, std::span<const T> b, Result& result) {
  if (a.empty() || b.empty()) return kEmpty;
  if (a.size() != 3 || b.size() != 3) return kInvalid;
  const auto element = [&](std::size_t i, std::size_t j) {
    const kernels::Product product;
    return kernels::Difference()(product(a[i], b[j]), product(a[j], b[i]));
  };
  const std::array<T, 3> cross{element(1, 2), element(2, 0), element(0, 1)};
  return detail::StoreResult("VectorCrossProduct", detail::TExtents<1>{3}, result,
                             [&](T* to) { std::ranges::copy(cross, to); });
}

int hatMatrix(const TDouble2DArray& x, TDouble2DArray& hat) {
  using kernels::Factor;
  if (x.empty()) return kEmpty;
  const std::size_t columns = x.Length(0);
  const std::size_t rows = x.Length(1);
  const auto m = detail::MatrixOf(x);
  return detail::GuardArrays("CalcHatMatrix", [&] {
    TDouble2DArray square(columns, columns);
    kernels::multiply(m, Factor::transposed, m, Factor::plain, detail::MatrixOf(square));
    if (!detail::InvertCells(square)) return kSingular;
    TDouble2DArray product(columns, rows);
    kernels::multiply(m, Factor::plain, detail::MatrixOf(square), Factor::plain,
                      detail::MatrixOf(product));
    TDouble2DArray result(rows, rows);
    kernels::multiply(detail::MatrixOf(product), Factor::plain, m, Factor::transposed,
                      detail::MatrixOf(result));
    hat.swap(result);
    return kDone;
  });
}

}  // namespace

int AddArrays(std::span<const double> A, std::span<const double> B, TDoubleArray& Result) {
  return combine("AddArrays", detail::BlockOf(A), detail::BlockOf(B), Result, kernels::Sum());
}
int AddArrays(const TDouble2DArray& A, const TDouble2DArray& B, TDouble2DArray& Result) {
  return combine("AddArrays", detail::BlockOf(A), detail::BlockOf(B), Result, kernels::Sum());
}
int AddArrays(const TDouble3DArray& A, const TDouble3DArray& B, TDouble3DArray& Result) {
  return combine("AddArrays", detail::BlockOf(A), detail::BlockOf(B), Result, kernels::Sum());
}
int AddArrays(const TDouble4DArray& A, const TDouble4DArray& B, TDouble4DArray& Result) {
  return combine("AddArrays", detail::BlockOf(A), detail::BlockOf(B), Result, kernels::Sum());
}
int AddArrays(std::span<const int> A, std::span<const int> B, TIntArray& Result) {
  return combine("AddArrays", detail::BlockOf(A), detail::BlockOf(B), Result, kernels::Sum());
}
int AddArrays(const TInt2DArray& A, const TInt2DArray& B, TInt2DArray& Result) {
  return combine("AddArrays", detail::BlockOf(A), detail::BlockOf(B), Result, kernels::Sum());
}
int AddArrays(const TInt3DArray& A, const TInt3DArray& B, TInt3DArray& Result) {
  return combine("AddArrays", detail::BlockOf(A), detail::BlockOf(B), Result, kernels::Sum());
}
int AddArrays(const TInt4DArray& A, const TInt4DArray& B, TInt4DArray& Result) {
  return combine("AddArrays", detail::BlockOf(A), detail::BlockOf(B), Result, kernels::Sum());
}

int SubtractArrays(std::span<const double> A, std::span<const double> B, TDoubleArray& Result) {
  return combine("SubtractArrays", detail::BlockOf(A), detail::BlockOf(B), Result,
                 kernels::Difference());
}
int SubtractArrays(const TDouble2DArray& A, const TDouble2DArray& B, TDouble2DArray& Result) {
  return combine("SubtractArrays", detail::BlockOf(A), detail::BlockOf(B), Result,
                 kernels::Difference());
}
int SubtractArrays(const TDouble3DArray& A, const TDouble3DArray& B, TDouble3DArray& Result) {
  return combine("SubtractArrays", detail::BlockOf(A), detail::BlockOf(B), Result,
                 kernels::Difference());
}
int SubtractArrays(const TDouble4DArray& A, const TDouble4DArray& B, TDouble4DArray& Result) {
  return combine("SubtractArrays", detail::BlockOf(A), detail::BlockOf(B), Result,
                 kernels::Difference());
}
int SubtractArrays(std::span<const int> A, std::span<const int> B, TIntArray& Result) {
  return combine("SubtractArrays", detail::BlockOf(A), detail::BlockOf(B), Result,
                 kernels::Difference());
}
int SubtractArrays(const TInt2DArray& A, const TInt2DArray& B, TInt2DArray& Result) {
  return combine("SubtractArrays", detail::BlockOf(A), detail::BlockOf(B), Result,
                 kernels::Difference());
}
int SubtractArrays(const TInt3DArray& A, const TInt3DArray& B, TInt3DArray& Result) {
  return combine("SubtractArrays", detail::BlockOf(A), detail::BlockOf(B), Result,
                 kernels::Difference());
}
int SubtractArrays(const TInt4DArray& A, const TInt4DArray& B, TInt4DArray& Result) {
  return combine("SubtractArrays", detail::BlockOf(A), detail::BlockOf(B), Result,
                 kernels::Difference());
}

int MultiplyArraysElemw(std::span<const double> A, std::span<const double> B,
                        TDoubleArray& Result) {
  return combine("MultiplyArraysElemw", detail::BlockOf(A), detail::BlockOf(B), Result,
                 kernels::Product());
}
int MultiplyArraysElemw(const TDouble2DArray& A, const TDouble2DArray& B, TDouble2DArray& Result) {
  return combine("MultiplyArraysElemw", detail::BlockOf(A), detail::BlockOf(B), Result,
                 kernels::Product());
}
int MultiplyArraysElemw(std::span<const int> A, std::span<const int> B, TIntArray& Result) {
  return combine("MultiplyArraysElemw", detail::BlockOf(A), detail::BlockOf(B), Result,
                 kernels::Product());
}
int MultiplyArraysElemw(const TInt2DArray& A, const TInt2DArray& B, TInt2DArray& Result) {
  return combine("MultiplyArraysElemw", detail::BlockOf(A), detail::BlockOf(B), Result,
                 kernels::Product());
}

int MultiplyArrayByScalar(std::span<const double> Source, double Factor, TDoubleArray& Result) {
  return combine("MultiplyArrayByScalar", detail::BlockOf(Source), Factor, Result,
                 kernels::Product());
}
int MultiplyArrayByScalar(const TDouble2DArray& Source, double Factor, TDouble2DArray& Result) {
  return combine("MultiplyArrayByScalar", detail::BlockOf(Source), Factor, Result,
                 kernels::Product());
}
int MultiplyArrayByScalar(const TDouble3DArray& Source, double Factor, TDouble3DArray& Result) {
  return combine("MultiplyArrayByScalar", detail::BlockOf(Source), Factor, Result,
                 kernels::Product());
}
int MultiplyArrayByScalar(const TDouble4DArray& Source, double Factor, TDouble4DArray& Result) {
  return combine("MultiplyArrayByScalar", detail::BlockOf(Source), Factor, Result,
                 kernels::Product());
}
int MultiplyArrayByScalar(std::span<const int> Source, int Factor, TIntArray& Result) {
  return combine("MultiplyArrayByScalar", detail::BlockOf(Source), Factor, Result,
                 kernels::Product());
}
int MultiplyArrayByScalar(const TInt2DArray& Source, int Factor, TInt2DArray& Result) {
  return combine("MultiplyArrayByScalar", detail::BlockOf(Source), Factor, Result,
                 kernels::Product());
}
int MultiplyArrayByScalar(const TInt3DArray& Source, int Factor, TInt3DArray& Result) {
  return combine("MultiplyArrayByScalar", detail::BlockOf(Source), Factor, Result,
                 kernels::Product());
}
int MultiplyArrayByScalar(const TInt4DArray& Source, int Factor, TInt4DArray& Result) {
  return combine("MultiplyArrayByScalar", detail::BlockOf(Source), Factor, Result,
                 kernels::Product());
}
int MultiplyArrayByScalar(std::span<double> Arr, double Factor) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::scale(cells, Factor); });
}
int MultiplyArrayByScalar(TDouble2DArray& Arr, double Factor) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::scale(cells, Factor); });
}
int MultiplyArrayByScalar(TDouble3DArray& Arr, double Factor) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::scale(cells, Factor); });
}
int MultiplyArrayByScalar(TDouble4DArray& Arr, double Factor) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::scale(cells, Factor); });
}
int MultiplyArrayByScalar(std::span<int> Arr, int Factor) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::scale(cells, Factor); });
}
int MultiplyArrayByScalar(TInt2DArray& Arr, int Factor) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::scale(cells, Factor); });
}
int MultiplyArrayByScalar(TInt3DArray& Arr, int Factor) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::scale(cells, Factor); });
}
int MultiplyArrayByScalar(TInt4DArray& Arr, int Factor) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::scale(cells, Factor); });
}

int AddScalarToArray(std::span<const double> Source, double Scalar, TDoubleArray& Result) {
  return combine("AddScalarToArray", detail::BlockOf(Source), Scalar, Result, kernels::Sum());
}
int AddScalarToArray(const TDouble2DArray& Source, double Scalar, TDouble2DArray& Result) {
  return combine("AddScalarToArray", detail::BlockOf(Source), Scalar, Result, kernels::Sum());
}
int AddScalarToArray(const TDouble3DArray& Source, double Scalar, TDouble3DArray& Result) {
  return combine("AddScalarToArray", detail::BlockOf(Source), Scalar, Result, kernels::Sum());
}
int AddScalarToArray(const TDouble4DArray& Source, double Scalar, TDouble4DArray& Result) {
  return combine("AddScalarToArray", detail::BlockOf(Source), Scalar, Result, kernels::Sum());
}
int AddScalarToArray(std::span<const int> Source, int Scalar, TIntArray& Result) {
  return combine("AddScalarToArray", detail::BlockOf(Source), Scalar, Result, kernels::Sum());
}
int AddScalarToArray(const TInt2DArray& Source, int Scalar, TInt2DArray& Result) {
  return combine("AddScalarToArray", detail::BlockOf(Source), Scalar, Result, kernels::Sum());
}
int AddScalarToArray(const TInt3DArray& Source, int Scalar, TInt3DArray& Result) {
  return combine("AddScalarToArray", detail::BlockOf(Source), Scalar, Result, kernels::Sum());
}
int AddScalarToArray(const TInt4DArray& Source, int Scalar, TInt4DArray& Result) {
  return combine("AddScalarToArray", detail::BlockOf(Source), Scalar, Result, kernels::Sum());
}

int IncArray(std::span<double> Arr, double Increment) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::shift(cells, Increment); });
}
int IncArray(TDouble2DArray& Arr, double Increment) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::shift(cells, Increment); });
}
int IncArray(TDouble3DArray& Arr, double Increment) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::shift(cells, Increment); });
}
int IncArray(TDouble4DArray& Arr, double Increment) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::shift(cells, Increment); });
}
int IncArray(std::span<int> Arr, int Increment) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::shift(cells, Increment); });
}
int IncArray(TInt2DArray& Arr, int Increment) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::shift(cells, Increment); });
}
int IncArray(TInt3DArray& Arr, int Increment) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::shift(cells, Increment); });
}
int IncArray(TInt4DArray& Arr, int Increment) {
  return change(detail::BlockOf(Arr), [=](auto cells) { kernels::shift(cells, Increment); });
}

int AbsValArray(std::span<double> Arr) {
  return change(detail::BlockOf(Arr), [](auto cells) { kernels::absolute(cells); });
}
int AbsValArray(TDouble2DArray& Arr) {
  return change(detail::BlockOf(Arr), [](auto cells) { kernels::absolute(cells); });
}
int AbsValArray(TDouble3DArray& Arr) {
  return change(detail::BlockOf(Arr), [](auto cells) { kernels::absolute(cells); });
}
int AbsValArray(TDouble4DArray& Arr) {
  return change(detail::BlockOf(Arr), [](auto cells) { kernels::absolute(cells); });
}
int AbsValArray(std::span<int> Arr) {
  return change(detail::BlockOf(Arr), [](auto cells) { kernels::absolute(cells); });
}
int AbsValArray(TInt2DArray& Arr) {
  return change(detail::BlockOf(Arr), [](auto cells) { kernels::absolute(cells); });
}
int AbsValArray(TInt3DArray& Arr) {
  return change(detail::BlockOf(Arr), [](auto cells) { kernels::absolute(cells); });
}
int AbsValArray(TInt4DArray& Arr) {
  return change(detail::BlockOf(Arr), [](auto cells) { kernels::absolute(cells); });
}

int AccumulateArray(std::span<double> Arr, std::span<const double> Source, double Factor) {
  return accumulate(detail::BlockOf(Arr), detail::BlockOf(Source), Factor);
}
int AccumulateArray(TDouble2DArray& Arr, const TDouble2DArray& Source, double Factor) {
  return accumulate(detail::BlockOf(Arr), detail::BlockOf(Source), Factor);
}
int AccumulateArray(TDouble3DArray& Arr, const TDouble3DArray& Source, double Factor) {
  return accumulate(detail::BlockOf(Arr), detail::BlockOf(Source), Factor);
}
int AccumulateArray(TDouble4DArray& Arr, const TDouble4DArray& Source, double Factor) {
  return accumulate(detail::BlockOf(Arr), detail::BlockOf(Source), Factor);
}
int AccumulateArray(std::span<int> Arr, std::span<const int> Source, int Factor) {
  return accumulate(detail::BlockOf(Arr), detail::BlockOf(Source), Factor);
}
int AccumulateArray(TInt2DArray& Arr, const TInt2DArray& Source, int Factor) {
  return accumulate(detail::BlockOf(Arr), detail::BlockOf(Source), Factor);
}
int AccumulateArray(TInt3DArray& Arr, const TInt3DArray& Source, int Factor) {
  return accumulate(detail::BlockOf(Arr), detail::BlockOf(Source), Factor);
}
int AccumulateArray(TInt4DArray& Arr, const TInt4DArray& Source, int Factor) {
  return accumulate(detail::BlockOf(Arr), detail::BlockOf(Source), Factor);
}

int InvertArray(std::span<bool> Arr) {
  return change(detail::BlockOf(Arr), [](auto cells) {
    for (bool& cell : cells) cell = !cell;
  });
}
int InvertArray(TBool2DArray& Arr) {
  return change(detail::BlockOf(Arr), [](auto cells) {
    for (bool& cell : cells) cell = !cell;
  });
}
int InvertArray(TDouble2DArray& Arr) { return invert(Arr); }

int TraceOfArray(const TDouble2DArray& Arr, double& Trace) { return trace(Arr, Trace); }
int TraceOfArray(const TInt2DArray& Arr, int& Trace) { return trace(Arr, Trace); }

int MultiplyArrays(const TDouble2DArray& A, const TDouble2DArray& B, TDouble2DArray& Result) {
  return multiply(A, B, Result);
}
int MultiplyArrays(const TInt2DArray& A, const TInt2DArray& B, TInt2DArray& Result) {
  return multiply(A, B, Result);
}
int MultiplyArrays(std::span<const double> A, const TDouble2DArray& B, TDoubleArray& Result) {
  return multiplyVector(B, kernels::Factor::transposed, A, Result);
}
int MultiplyArrays(std::span<const int> A, const TInt2DArray& B, TIntArray& Result) {
  return multiplyVector(B, kernels::Factor::transposed, A, Result);
}
int MultiplyArrays(const TDouble2DArray& A, std::span<const double> B, TDoubleArray& Result) {
  return multiplyVector(A, kernels::Factor::plain, B, Result);
}
int MultiplyArrays(const TInt2DArray& A, std::span<const int> B, TIntArray& Result) {
  return multiplyVector(A, kernels::Factor::plain, B, Result);
}

int VectorDotProduct(std::span<const double> A, std::span<const double> B, double& Result) {
  return dotProduct(A, B, Result);
}
int VectorDotProduct(std::span<const int> A, std::span<const int> B, int& Result) {
  return dotProduct(A, B, Result);
}

int VectorCrossProduct(std::span<const double> A, std::span<const double> B, TDoubleArray& Result) {
  return crossProduct(A, B, Result);
}
int VectorCrossProduct(std::span<const int> A, std::span<const int> B, TIntArray& Result) {
  return crossProduct(A, B, Result);
}

int CalcHatMatrix(const TDouble2DArray& Arr, TDouble2DArray& HatMat) {
  return hatMatrix(Arr, HatMat);
}

}  // namespace zel
