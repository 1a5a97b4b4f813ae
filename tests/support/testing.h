/// @file
/// What nearly every test needs: the framework, the standard headers that tests write their data
/// and plain versions with, the helpers of many, and the odd numbers.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <numbers>
#include <numeric>
#include <random>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/base/temp_dir.h"
#include "tests/support/containers.h"
#include "tests/support/expect_message.h"
#include "tests/support/same_bits.h"

namespace zel {

inline constexpr double kInf = std::numeric_limits<double>::infinity();
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kPi = std::numbers::pi;

}  // namespace zel
