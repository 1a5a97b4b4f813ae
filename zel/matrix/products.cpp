// TMatrix: operations composed of products.
#include "zel/matrix/TMatrix.h"

namespace zel {

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
