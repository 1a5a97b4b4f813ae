/// @file
/// Data structures: the bit field.
#pragma once

#include "zel/base/bitfield.h"
