/// @file
/// The picture of zel describe --by.
#pragma once

#include <string>
#include <vector>

#include "grouping.h"
#include "summary.h"
#include "variable.h"

namespace tool {

/// A variable in each category.
struct GroupedVariable {
  std::string name;
  std::vector<const Variable*> variables;  // one for each category
  std::vector<const Summary*> summaries;
};

/// Draws a panel for each variable: box plots of the categories side by side.
/// @param title  above them
/// @throws Failure  there are too many categories or variables, or drawing or writing failed
void drawGroups(const std::string& fileName, const std::string& title, const Grouping& grouping,
                const std::vector<GroupedVariable>& variables);

}  // namespace tool
