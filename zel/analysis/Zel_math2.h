/// @file
/// Curve fitting and multivariate analysis.
#pragma once

#include "zel/analysis/TCurveFit.h"
#include "zel/analysis/penalizedspline.h"
