/// @file
/// Pictures drawn by gnuplot.
#pragma once

#include <string>
#include <string_view>

namespace tool {

/// The file name ends in .png or .svg (in any case).
/// @throws Failure  it does not
void requirePictureName(const std::string& fileName);

/// In inches.
struct PictureSize {
  double width = 8;
  double height = 6;
};

/// Runs a gnuplot script and stores what it draws; the file appears complete or not at all.
///
/// The script draws at its leisure, but sets neither the terminal nor the output: the picture has
/// the given size, as PNG at 200 dots per inch, in a sans serif font of 10 points. It
/// finds the colours ink, grey, blue and red, axes at the left and below, and no key. Line
/// widths and point sizes are in points for both kinds.
/// @throws Failure  gnuplot is not there or fails, or the picture cannot be written
void drawPicture(const std::string& fileName, const PictureSize& size, std::string_view script);

/// A text as gnuplot takes it literally, quotation marks included.
std::string gnuplotText(std::string_view text, std::size_t limit = 100);

/// A line that gives a variable of gnuplot's a value.
std::string gnuplotVariable(std::string_view name, std::string_view value);

}  // namespace tool
