/// @file
/// zel describe by the categories of a column.
#pragma once

#include <vector>

#include "describe.h"
#include "table_file.h"

namespace tool {

/// Does what the options ask for; --by is one of them.
/// @param percents  0..100
/// @throws Failure  nothing was written then
Result describeBy(const Table& file, const std::vector<double>& percents,
                  const DescribeOptions& options);

}  // namespace tool
