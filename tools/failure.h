/// @file
/// What stops a command.
#pragma once

#include <stdexcept>

namespace tool {

/// Carries one sentence for standard error; the program then ends with status 2.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace tool
