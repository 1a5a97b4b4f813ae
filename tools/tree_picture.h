/// @file
/// The picture of a tree of zel cluster.
#pragma once

#include <string>
#include <vector>

#include "clusters.h"

namespace tool {

/// Draws the tree, coloured by the clusters, with a dashed line where it is cut.
/// @param title   above the picture
/// @param labels  of the objects
/// @throws Failure  drawing or writing failed
void drawTree(const std::string& fileName, const std::string& title, const Clusters& clusters,
              const std::vector<std::string>& labels);

}  // namespace tool
