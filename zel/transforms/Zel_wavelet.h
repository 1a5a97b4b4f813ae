/// @file
/// Wavelet transforms.
#pragma once

#include "zel/transforms/TWavelet1D.h"
