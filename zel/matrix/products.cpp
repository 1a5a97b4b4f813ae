// TMatrix: arithmetic and products.
#include "zel/kernels/products.h"

#include <algorithm>

#include "zel/kernels/elementwise.h"
#include "zel/matrix/TMatrix.h"
#include "zel/matrix/container_impl.h"

namespace zel {

using kernels::Factor;

bool TMatrix::Add(const TMatrix* MatB) {
  if (!MatB || !HasSizeOf(*MatB)) return false;
  kernels::add(Cells(), MatB->Elements());
  Changed();
  return true;
}

bool TMatrix::Subtract(const TMatrix* MatB) {
  if (!MatB || !HasSizeOf(*MatB)) return false;
  kernels::subtract(Cells(), MatB->Elements());
  Changed();
  return true;
}

void TMatrix::SMult(double Scalar) {
  kernels::scale(Cells(), Scalar);
  Changed();
}

void TMatrix::SAdd(double Scalar) {
  kernels::shift(Cells(), Scalar);
  Changed();
}

template <class Compute>
bool TMatrix::Produce(TMatrix* MatRes, int Nc, int Nr, Compute&& compute) {
  const bool resized = MatRes->NrOfColumns() != Nc || MatRes->NrOfRows() != Nr;
  TDouble2DArray contents;
  Guarded([&] {
    contents.SetLength(std::max(Nc, 1), std::max(Nr, 1));
    const auto rows = static_cast<std::size_t>(Nr);
    compute(kernels::Matrix{contents.data(), rows, static_cast<std::size_t>(Nc), rows});
  });
  MatRes->TakeOver(contents, Nc, Nr);
  if (resized) MatRes->Changed();
  MatRes->Changed();
  Changed();
  return true;
}

template <class Compute>
bool TMatrix::Produce(TVector* VecRes, int size, Compute&& compute) {
  TDoubleArray contents;
  Guarded([&] { contents.resize(static_cast<std::size_t>(std::max(size, 1))); });
  compute(std::span(contents).first(static_cast<std::size_t>(size)));
  const bool resized = VecRes->size() != contents.size();
  Guarded([&] { VecRes->SetElements(contents); });
  if (resized) VecRes->Changed();
  VecRes->Changed();
  Changed();
  return true;
}

bool TMatrix::EMult(const TMatrix* MatB, TMatrix* MatRes) {
  if (!MatB || !MatRes || !HasSizeOf(*MatB)) return false;
  return Produce(MatRes, NrOfColumns(), NrOfRows(), [&](kernels::Matrix result) {
    const auto b = MatB->Elements();
    std::transform(begin(), end(), b.begin(), result.data,
                   [](double x, double y) { return x * y; });
  });
}

bool TMatrix::Multiply(const TMatrix* MatB, TMatrix* MatRes) {
  if (!MatB || !MatRes || NrOfColumns() != MatB->NrOfRows()) return false;
  return Produce(MatRes, MatB->NrOfColumns(), NrOfRows(), [&](kernels::Matrix result) {
    kernels::multiply(View(), Factor::plain, MatB->View(), Factor::plain, result);
  });
}

bool TMatrix::MultiplyTransposed(const TMatrix* MatB, TMatrix* MatRes) {
  if (!MatB || !MatRes || NrOfColumns() != MatB->NrOfColumns()) return false;
  return Produce(MatRes, MatB->NrOfRows(), NrOfRows(), [&](kernels::Matrix result) {
    kernels::multiply(View(), Factor::plain, MatB->View(), Factor::transposed, result);
  });
}

bool TMatrix::TransposeAndMultiply(const TMatrix* MatB, TMatrix* MatRes) {
  if (!MatB || !MatRes || NrOfRows() != MatB->NrOfRows()) return false;
  return Produce(MatRes, MatB->NrOfColumns(), NrOfColumns(), [&](kernels::Matrix result) {
    kernels::multiply(View(), Factor::transposed, MatB->View(), Factor::plain, result);
  });
}

bool TMatrix::Multiply(const TVector* VecB, TVector* VecRes) {
  if (!VecB || !VecRes || NrOfColumns() != VecB->NrOfElem()) return false;
  return Produce(VecRes, NrOfRows(), [&](std::span<double> result) {
    kernels::multiplyVector(View(), Factor::plain, VecB->Elements(), result);
  });
}

bool TMatrix::TransposeAndMultiply(const TVector* VecB, TVector* VecRes) {
  if (!VecB || !VecRes || NrOfRows() != VecB->NrOfElem()) return false;
  return Produce(VecRes, NrOfColumns(), [&](std::span<double> result) {
    kernels::multiplyVector(View(), Factor::transposed, VecB->Elements(), result);
  });
}

bool TMatrix::Transpose() {
  if (NrOfColumns() == NrOfRows()) {
    kernels::transposeSquare(View());
  } else {
    TDouble2DArray turned;
    const auto rows = static_cast<std::size_t>(NrOfRows());
    const auto columns = static_cast<std::size_t>(NrOfColumns());
    Guarded([&] {
      turned.SetLength(std::max<std::size_t>(rows, 1), std::max<std::size_t>(columns, 1));
    });
    kernels::transpose(View(), {turned.data(), columns, rows, columns});
    TakeOver(turned, NrOfRows(), NrOfColumns());
  }
  Changed();
  return true;
}

bool TMatrix::CalcHatMatrix(TMatrix* HatMat) {
  if (!HatMat) return false;
  TMatrix turned;
  turned.Clone(this);
  turned.Transpose();
  TMatrix square;
  turned.Multiply(this, &square);
  if (!square.Invert()) return false;
  TMatrix product;
  Multiply(&square, &product);
  return product.Multiply(&turned, HatMat);
}

}  // namespace zel
