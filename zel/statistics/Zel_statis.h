/// @file
/// Statistics: special functions and distributions, cross-validation, classifier evaluation.
#pragma once

#include "zel/statistics/TCFEvaluator.h"
#include "zel/statistics/TCrossValidator.h"
#include "zel/statistics/errorfunction.h"
#include "zel/statistics/tdistribution.h"
