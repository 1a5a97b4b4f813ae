/// @file
/// A column as a series of values at equal distances.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "table_file.h"

namespace tool {

struct Series {
  std::string what;                // the file and the column, for messages
  std::string title;               // what to call the column
  std::span<const double> values;  // the table's
};

/// The column with the given name or number; the only one if none is given.
/// @param user  what it is for, for messages
/// @throws Failure  there is no such column, there are several, or a row has no value
Series seriesOf(const Table& table, const std::string& wanted,
                const std::string& user = "a transform");

/// A block of data for gnuplot, a place and a value in each line. Of a long series each line of the
/// plot gets the extremes of what falls on the same place.
/// @param name   with its dollar sign
/// @param first  place of the first value
/// @param step   distance of two values
std::string curveBlock(const std::string& name, std::span<const double> values, double first,
                       double step);

/// More places than this, side by side, would not be told apart.
constexpr std::size_t kMostPlaces = 1500;

}  // namespace tool
