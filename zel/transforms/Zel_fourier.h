/// @file
/// Fourier transforms.
#pragma once

#include "zel/transforms/TFastFourier.h"
