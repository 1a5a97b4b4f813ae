#include "zel/vector/vectorbase.h"

#include "zel/vector/container_impl.h"
#include "zel/vector/files_impl.h"
#include "zel/vector/statistics_impl.h"

namespace zel {

template class ZEL_API TNumVector<double>;
template class ZEL_API TNumVector<int>;

}  // namespace zel
