/// @file
/// Matrices: TMatrix (double), TIntMatrix (int, dense or sparse), TMat3D and TMat4D (three and four
/// dimensions).
#pragma once

#include "zel/matrix/TIntMatrix.h"
#include "zel/matrix/TMat3D.h"
#include "zel/matrix/TMat4D.h"
#include "zel/matrix/TMatSq1ColThread.h"
#include "zel/matrix/TMatrix.h"
