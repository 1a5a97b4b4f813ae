#include "zel/matrix/matrixbase.h"

#include "zel/matrix/arithmetic_impl.h"
#include "zel/matrix/container_impl.h"
#include "zel/matrix/copies_impl.h"
#include "zel/matrix/files_impl.h"
#include "zel/matrix/reordering_impl.h"
#include "zel/matrix/statistics_impl.h"

namespace zel {

template class TNumMatrix<double>;
template class TNumMatrix<int>;

}  // namespace zel
