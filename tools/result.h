/// @file
/// What a command hands back.
#pragma once

#include <string>

namespace tool {

/// Texts for the two standard streams.
struct Result {
  std::string text;
  std::string note;  // one sentence for standard error, or empty; no failure
};

}  // namespace tool
