/// @file
/// Streams: memory and file streams, binary items, checksums, the mixed text and binary file.
#pragma once

#include "zel/base/crc.h"
#include "zel/base/mixedstream.h"
#include "zel/base/streams.h"
