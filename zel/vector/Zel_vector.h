/// @file
/// Vectors: TVector (double) and TIntVector (32-bit integer).
#pragma once

#include "zel/vector/TIntVector.h"
#include "zel/vector/TVector.h"
