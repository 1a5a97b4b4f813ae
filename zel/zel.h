/// @file
/// The whole library.
#pragma once

#include "zel/analysis/Zel_math2.h"
#include "zel/analysis/Zel_sline.h"
#include "zel/base/Zel_dstruct.h"
#include "zel/base/Zel_filesys.h"
#include "zel/base/Zel_streams.h"
#include "zel/base/Zel_stringl.h"
#include "zel/base/Zel_univconst.h"
#include "zel/base/Zel_zelbase.h"
#include "zel/base/Zel_zelcolors.h"
#include "zel/datatable/Zel_datatable.h"
#include "zel/foundation/Zel_complex.h"
#include "zel/foundation/Zel_math1.h"
#include "zel/matrix/Zel_matrix.h"
#include "zel/openarrays/Zel_openarrays.h"
#include "zel/statistics/Zel_statis.h"
#include "zel/transforms/Zel_fourier.h"
#include "zel/transforms/Zel_wavelet.h"
#include "zel/vector/Zel_vector.h"
