#include "zel/vector/vectorbase.h"

#include "zel/vector/container_impl.h"
#include "zel/vector/files_impl.h"
#include "zel/vector/statistics_impl.h"

namespace zel {

template class TNumVector<double>;
template class TNumVector<int>;

}  // namespace zel
