/// @file
/// What the ASC form must be like for the commands.
#pragma once

#include "data_text.h"

namespace tool {

/// Looks at an ASC file more closely than the library's readers do, for which a row may go on in
/// the next line, so that a value that is missing shifts all behind it: a row is a line and has as
/// many values as there are columns, and there are as many rows as announced. Blank lines between
/// rows are passed over.
/// @throws Failure  names the file, the line and the reason
void requireAsc(const DataText& text);

}  // namespace tool
