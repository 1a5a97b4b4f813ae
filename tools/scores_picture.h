/// @file
/// The picture of zel pca.
#pragma once

#include <string>
#include <vector>

#include "components.h"

namespace tool {

/// Draws the scores of the first two components with equal scales, and the loadings as arrows.
/// @param title       above the picture
/// @param categories  one for each row, which colours its dot; empty: all dots are alike
/// @throws Failure  there are too many categories, or drawing or writing failed
void drawScores(const std::string& fileName, const std::string& title, const Components& components,
                const std::vector<std::string>& categories, bool standardised);

}  // namespace tool
