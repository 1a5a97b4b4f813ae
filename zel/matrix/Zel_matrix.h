/// @file
/// Matrices: TMatrix (double), TIntMatrix (int, dense or sparse).
#pragma once

#include "zel/matrix/TIntMatrix.h"
#include "zel/matrix/TMatSq1ColThread.h"
#include "zel/matrix/TMatrix.h"
