/// @file
/// Curve fitting, smoothing and filtering, multivariate analysis, clustering.
#pragma once

#include "zel/analysis/TCurveFit.h"
#include "zel/analysis/agglomerative.h"
#include "zel/analysis/chebyshevfilter.h"
#include "zel/analysis/expressions.h"
#include "zel/analysis/firfilters.h"
#include "zel/analysis/gausskernels.h"
#include "zel/analysis/imagecorrelation.h"
#include "zel/analysis/imagekernels.h"
#include "zel/analysis/kmeans.h"
#include "zel/analysis/multivariate.h"
#include "zel/analysis/neighbours.h"
#include "zel/analysis/penalizedspline.h"
#include "zel/analysis/polygons.h"
#include "zel/analysis/ranks.h"
#include "zel/analysis/regression.h"
#include "zel/analysis/singularvalues.h"
#include "zel/analysis/smoothing.h"
#include "zel/analysis/testsignals.h"
#include "zel/analysis/vertexcomponents.h"
