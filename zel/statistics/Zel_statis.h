/// @file
/// Statistics: special functions and distributions, critical values, tests of hypotheses, random
/// numbers of any distribution, cross-validation, classifier evaluation.
#pragma once

#include "zel/statistics/TCFEvaluator.h"
#include "zel/statistics/TCrossValidator.h"
#include "zel/statistics/TRandGen.h"
#include "zel/statistics/association.h"
#include "zel/statistics/chisquaredistribution.h"
#include "zel/statistics/contingencytests.h"
#include "zel/statistics/criticalvalues.h"
#include "zel/statistics/densityestimate.h"
#include "zel/statistics/discretedistributions.h"
#include "zel/statistics/errorfunction.h"
#include "zel/statistics/fdistribution.h"
#include "zel/statistics/goodnessoffit.h"
#include "zel/statistics/groupcomparisons.h"
#include "zel/statistics/normaldistribution.h"
#include "zel/statistics/normalitytests.h"
#include "zel/statistics/outliertests.h"
#include "zel/statistics/percentileofarray.h"
#include "zel/statistics/plsmodel.h"
#include "zel/statistics/runstests.h"
#include "zel/statistics/samplecomparisons.h"
#include "zel/statistics/significance.h"
#include "zel/statistics/specialfunctions.h"
#include "zel/statistics/tdistribution.h"
#include "zel/statistics/weibulldistribution.h"
