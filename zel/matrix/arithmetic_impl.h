/// @file
/// TNumMatrix: arithmetic and products. Included by the sources of the matrices only.
#pragma once

#include <algorithm>
#include <span>
#include <vector>

#include "zel/kernels/elementwise.h"
#include "zel/kernels/integer_products.h"
#include "zel/kernels/products.h"
#include "zel/matrix/container_impl.h"

namespace zel {

template <class T>
bool TNumMatrix<T>::Add(const TNumMatrix* MatB) {
  if (!MatB || !HasSizeOf(*MatB)) return false;
  kernels::add<T>(Cells(), MatB->Elements());
  Changed();
  return true;
}

template <class T>
bool TNumMatrix<T>::Subtract(const TNumMatrix* MatB) {
  if (!MatB || !HasSizeOf(*MatB)) return false;
  kernels::subtract<T>(Cells(), MatB->Elements());
  Changed();
  return true;
}

template <class T>
void TNumMatrix<T>::SMult(T Scalar) {
  kernels::scale(Cells(), Scalar);
  Changed();
}

template <class T>
void TNumMatrix<T>::SAdd(T Scalar) {
  kernels::shift(Cells(), Scalar);
  Changed();
}

template <class T>
template <class Compute>
bool TNumMatrix<T>::Produce(TNumMatrix* MatRes, int Nc, int Nr, Compute&& compute) {
  const bool resized = MatRes->NrOfColumns() != Nc || MatRes->NrOfRows() != Nr;
  TDynArray<T, 2> contents;
  Guarded([&] {
    contents.SetLength(std::max(Nc, 1), std::max(Nr, 1));
    const auto rows = static_cast<std::size_t>(Nr);
    compute(kernels::MatrixSpan<T>{contents.data(), rows, static_cast<std::size_t>(Nc), rows});
  });
  MatRes->TakeOver(contents, Nc, Nr);
  if (resized) MatRes->Changed();
  MatRes->Changed();
  Changed();
  return true;
}

template <class T>
template <class Compute>
bool TNumMatrix<T>::Produce(TVectorType* VecRes, int size, Compute&& compute) {
  std::vector<T> contents;
  Guarded([&] { contents.resize(static_cast<std::size_t>(std::max(size, 1))); });
  compute(std::span(contents).first(static_cast<std::size_t>(size)));
  const bool resized = VecRes->size() != contents.size();
  Guarded([&] { VecRes->SetElements(contents); });
  if (resized) VecRes->Changed();
  VecRes->Changed();
  Changed();
  return true;
}

template <class T>
bool TNumMatrix<T>::EMult(const TNumMatrix* MatB, TNumMatrix* MatRes) {
  if (!MatB || !MatRes || !HasSizeOf(*MatB)) return false;
  return Produce(MatRes, NrOfColumns(), NrOfRows(), [&](kernels::MatrixSpan<T> result) {
    kernels::multiplyEach(Elements(), MatB->Elements(), result.data);
  });
}

template <class T>
bool TNumMatrix<T>::Multiply(const TNumMatrix* MatB, TNumMatrix* MatRes) {
  if (!MatB || !MatRes || NrOfColumns() != MatB->NrOfRows()) return false;
  return Produce(MatRes, MatB->NrOfColumns(), NrOfRows(), [&](kernels::MatrixSpan<T> result) {
    kernels::multiply(View(), kernels::Factor::plain, MatB->View(), kernels::Factor::plain, result);
  });
}

template <class T>
bool TNumMatrix<T>::MultiplyTransposed(const TNumMatrix* MatB, TNumMatrix* MatRes) {
  if (!MatB || !MatRes || NrOfColumns() != MatB->NrOfColumns()) return false;
  return Produce(MatRes, MatB->NrOfRows(), NrOfRows(), [&](kernels::MatrixSpan<T> result) {
    kernels::multiply(View(), kernels::Factor::plain, MatB->View(), kernels::Factor::transposed,
                      result);
  });
}

template <class T>
bool TNumMatrix<T>::TransposeAndMultiply(const TNumMatrix* MatB, TNumMatrix* MatRes) {
  if (!MatB || !MatRes || NrOfRows() != MatB->NrOfRows()) return false;
  return Produce(MatRes, MatB->NrOfColumns(), NrOfColumns(), [&](kernels::MatrixSpan<T> result) {
    kernels::multiply(View(), kernels::Factor::transposed, MatB->View(), kernels::Factor::plain,
                      result);
  });
}

template <class T>
bool TNumMatrix<T>::Multiply(const TVectorType* VecB, TVectorType* VecRes) {
  if (!VecB || !VecRes || NrOfColumns() != VecB->NrOfElem()) return false;
  return Produce(VecRes, NrOfRows(), [&](std::span<T> result) {
    kernels::multiplyVector(View(), kernels::Factor::plain, VecB->Elements(), result);
  });
}

template <class T>
bool TNumMatrix<T>::TransposeAndMultiply(const TVectorType* VecB, TVectorType* VecRes) {
  if (!VecB || !VecRes || NrOfRows() != VecB->NrOfElem()) return false;
  return Produce(VecRes, NrOfColumns(), [&](std::span<T> result) {
    kernels::multiplyVector(View(), kernels::Factor::transposed, VecB->Elements(), result);
  });
}

template <class T>
bool TNumMatrix<T>::Transpose() {
  if (NrOfColumns() == NrOfRows()) {
    kernels::transposeSquare(View());
  } else {
    TDynArray<T, 2> turned;
    const auto rows = static_cast<std::size_t>(NrOfRows());
    const auto columns = static_cast<std::size_t>(NrOfColumns());
    Guarded([&] {
      turned.SetLength(std::max<std::size_t>(rows, 1), std::max<std::size_t>(columns, 1));
    });
    kernels::transpose(View(), kernels::MatrixSpan<T>{turned.data(), columns, rows, columns});
    TakeOver(turned, NrOfRows(), NrOfColumns());
  }
  Changed();
  return true;
}

}  // namespace zel
