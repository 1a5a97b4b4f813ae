/// @file
/// The picture of zel pca.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "components.h"

namespace tool {

/// Draws the scores of the first two components with equal scales, and the loadings as arrows.
/// @param title       above the picture
/// @param subtitle    below the title
/// @param categories  one for each row, which colours its dot; empty: all dots are alike
/// @throws Failure  there are too many categories, or drawing or writing failed
void drawScores(const std::string& fileName, const std::string& title, const Components& components,
                const std::vector<std::string>& categories, const std::string& subtitle);

/// Different colours.
constexpr std::size_t kMostColours = 10;
/// As gnuplot takes it; the colours begin again after the last.
const char* colourOf(std::size_t k);

}  // namespace tool
