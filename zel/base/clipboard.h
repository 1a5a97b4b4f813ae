/// @file
/// What an application has on its clipboard.
#pragma once

#include <string>

namespace zel {

/// Text of a clipboard. The library knows no window system: the application takes the text from
/// its clipboard, or gives it there.
struct TClipboard {
  std::string AsText;
};

}  // namespace zel
