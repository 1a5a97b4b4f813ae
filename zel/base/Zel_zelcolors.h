/// @file
/// Colours, colour models and pictures.
#pragma once

#include "zel/base/bitmap.h"
#include "zel/base/colors.h"
