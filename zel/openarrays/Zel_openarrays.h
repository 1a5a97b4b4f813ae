/// @file
/// Routines on plain arrays of one to four dimensions and several element types.
///
/// Arrays are indexed from 0: [column][row][layer][time slot], so a two-dimensional array is an
/// image whose cell [x][y] is in column x and row y, or a table whose objects are its rows. An
/// array is empty if one of its extents is 0. A range is given by its low corner and its high
/// corner, the first index first; nothing is clamped but by PercentileArray.
///
/// Most routines return a status: 0 for success; -1 if an array is empty; -2 if an index or
/// parameter is invalid or two arrays differ in size; less for reasons of their own. Emptiness is
/// checked first, then the parameters in their order, and nothing changes on a fault unless a
/// routine says so. Results are sized by the routine where their type is that of a dynamic array,
/// and may be operands. None throws for a bad argument; where storage fails, EZELError "<routine>:
/// not enough memory".
///
/// The routines keep no state and may run on several threads at once on different arrays, but for
/// FillRandomUniform, FillRandomNormal and ShuffleArray, which use the process-wide generator.
#pragma once

#include "zel/openarrays/arrayarithmetic.h"
#include "zel/openarrays/arraycopying.h"
#include "zel/openarrays/arrayextremes.h"
#include "zel/openarrays/arrayfiles.h"
#include "zel/openarrays/arrayfilling.h"
#include "zel/openarrays/arrayimages.h"
#include "zel/openarrays/arrayordering.h"
#include "zel/openarrays/arraysearching.h"
#include "zel/openarrays/arrayshape.h"
#include "zel/openarrays/arraystatistics.h"
