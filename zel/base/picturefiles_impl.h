/// @file
/// Encoders and decoders of picture files, in memory. Each returns what went wrong; empty: nothing.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zel/base/colors.h"

namespace zel::detail {

/// Pixels row by row from the top; at least one of them.
struct PictureView {
  int width;
  int height;
  std::span<const TColor> pixels;
};

struct Picture {
  int width = 0;
  int height = 0;
  std::vector<TColor> pixels;
};

std::string encodeBmp(const PictureView& picture, std::string& bytes);
std::string encodePng(const PictureView& picture, std::string& bytes);
std::string encodeJpeg(const PictureView& picture, std::string& bytes);

/// Nothing is allocated for pixels that the bytes cannot hold.
std::string decodeBmp(std::string_view bytes, Picture& picture);
std::string decodePng(std::string_view bytes, Picture& picture);

}  // namespace zel::detail
