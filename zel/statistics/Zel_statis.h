/// @file
/// Statistics: special functions and distributions.
#pragma once

#include "zel/statistics/errorfunction.h"
#include "zel/statistics/tdistribution.h"
