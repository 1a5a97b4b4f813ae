/// @file
/// Files: whole-file writing and reading, the header of the ASC format.
#pragma once

#include "zel/base/ascheader.h"
#include "zel/base/wholefile.h"
