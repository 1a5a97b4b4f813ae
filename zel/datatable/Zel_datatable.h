/// @file
/// Table of observations: TDataTable.
#pragma once

#include "zel/datatable/TDataTable.h"
