/// @file
/// A variable with all that zel describe says of it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "bins.h"
#include "describe.h"
#include "json.h"
#include "summary.h"
#include "variable.h"

namespace tool {

struct Description {
  Variable variable;
  Summary summary;
  std::optional<Histogram> histogram;  // none without values, or if they are too large
  std::optional<Histogram> few;        // with few bins, for a line of small bars
};

/// @param percents  0..100
/// @param bins      0: as suits the data
Description describeVariable(Variable variable, const std::vector<double>& percents, int bins);

/// The same of a part of the rows, with the bins of the whole.
Description describePart(Variable variable, const std::vector<double>& percents,
                         const Description& whole);

/// For a figure that there is none of.
std::string dash(const DescribeOptions& options);

/// A table with one column for each description.
/// @param headings  of the columns
std::string textOfColumns(const std::vector<Description>& descriptions,
                          const std::vector<std::string>& headings, const DescribeOptions& options);

/// Adds all figures to an object.
void addFigures(JsonWriter& json, const Description& d, const DescribeOptions& options);

}  // namespace tool
