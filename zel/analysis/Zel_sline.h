/// @file
/// Straight lines.
#pragma once

#include "zel/analysis/TSLine.h"
