/// @file
/// Elementary numeric routines: compensated summation, sorting and selection of plain arrays,
/// interpolation, axis scaling, integers and bits, random deviates, elementary functions; numbers,
/// angles and dates as text.
///
/// The routines keep no state and may run on several threads at once, except GRandom, LongRand and
/// the other random routines, which share process-wide generators, and the sorts, which add to the
/// process-wide progress counter. Failures raise EZELMath1Error unless a routine says otherwise.
#pragma once

#include "zel/base/Zel_zelbase.h"
#include "zel/foundation/angles.h"
#include "zel/foundation/bitpatterns.h"
#include "zel/foundation/bits.h"
#include "zel/foundation/bounds.h"
#include "zel/foundation/datescanner.h"
#include "zel/foundation/degreescanner.h"
#include "zel/foundation/elementary.h"
#include "zel/foundation/exchange.h"
#include "zel/foundation/geometry.h"
#include "zel/foundation/integers.h"
#include "zel/foundation/integertext.h"
#include "zel/foundation/interpolation.h"
#include "zel/foundation/kahan.h"
#include "zel/foundation/numberformats.h"
#include "zel/foundation/numberscanners.h"
#include "zel/foundation/polynomial.h"
#include "zel/foundation/randoms.h"
#include "zel/foundation/scaling.h"
#include "zel/foundation/sorting.h"
