#include <zel/vector/Zel_vector.h>

int main() {
  zel::TIntVector v{3, 1, 2};
  v.SortElems(true, 0, 0);
  return v.Elem(1) == 1 ? 0 : 1;
}
