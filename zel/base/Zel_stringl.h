/// @file
/// Strings and text: helpers, number text, words and names in text files, XML tags.
#pragma once

#include "zel/base/numbertext.h"
#include "zel/base/stringhelpers.h"
#include "zel/base/textreading.h"
#include "zel/base/xmltags.h"
