/// @file
/// Files of partial least squares models.
#pragma once

#include <string>
#include <string_view>

#include "zel/base/api.h"

namespace zel {

/// Comment of a model file: an ASC file with the coefficients, as ExportAsASC of the matrix or
/// vector from SimPLS writes it. Only the header is read.
/// @param Comment  the first line; empty if it cannot be read
/// @return 0; -1 if the file cannot be opened or read, 1..4: the first line of the header that is
///   missing or bad, which makes it no such file
ZEL_API int LoadPLSModelComment(std::string_view FName, std::string& Comment);

}  // namespace zel
