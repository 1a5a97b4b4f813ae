/// @file
/// Shared types, arrays, the object model, errors, progress and random numbers.
#pragma once

#include "zel/base/api.h"
#include "zel/base/array.h"
#include "zel/base/component.h"
#include "zel/base/errors.h"
#include "zel/base/progress.h"
#include "zel/base/random.h"
#include "zel/base/rounding.h"
#include "zel/base/shortstring.h"
#include "zel/base/types.h"
