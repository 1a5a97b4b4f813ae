/// @file
/// Curve fitting, multivariate analysis, clustering.
#pragma once

#include "zel/analysis/TCurveFit.h"
#include "zel/analysis/agglomerative.h"
#include "zel/analysis/expressions.h"
#include "zel/analysis/kmeans.h"
#include "zel/analysis/multivariate.h"
#include "zel/analysis/neighbours.h"
#include "zel/analysis/penalizedspline.h"
#include "zel/analysis/polygons.h"
#include "zel/analysis/regression.h"
#include "zel/analysis/singularvalues.h"
#include "zel/analysis/vertexcomponents.h"
