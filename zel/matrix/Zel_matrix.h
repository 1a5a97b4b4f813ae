/// @file
/// Matrices: TMatrix (double).
#pragma once

#include "zel/matrix/TMatSq1ColThread.h"
#include "zel/matrix/TMatrix.h"
