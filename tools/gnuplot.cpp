#include "gnuplot.h"

#include <algorithm>
#include <cmath>

#include "failure.h"
#include "file_names.h"
#include "run_program.h"
#include "utf8.h"
#include "zel/base/wholefile.h"

namespace tool {
namespace {

/// The PNG terminal counts fonts in points of 1/96 inch and lines in dots; so these factors make
/// points of 1/72 inch of both at 200 dots per inch. The SVG terminal's unit is made such a point.
std::string terminalFor(const std::string& fileName, const PictureSize& picture) {
  const auto size = [&](double dotsPerInch) {
    return std::to_string(std::lround(picture.width * dotsPerInch)) + ',' +
           std::to_string(std::lround(picture.height * dotsPerInch));
  };
  if (hasExtension(fileName, ".svg")) {
    return "set terminal svg enhanced size " + size(72) +
           " font 'DejaVu Sans,Verdana,sans-serif,10' background '#ffffff'\n";
  }
  return "set terminal pngcairo enhanced size " + size(200) +
         " font 'DejaVu Sans,10' fontscale 2.0833 linewidth 2.7778 pointscale 2.7778\n";
}

bool isComplete(const std::string& fileName, std::string_view picture) {
  if (hasExtension(fileName, ".svg")) {
    return picture.starts_with("<?xml") && picture.find("</svg>") != std::string_view::npos;
  }
  return picture.starts_with("\x89PNG\r\n\x1a\n") && picture.find("IEND") != std::string_view::npos;
}

/// The line of gnuplot's messages that says what was wrong.
std::string reasonIn(std::string_view errors) {
  std::string reason;
  while (!errors.empty()) {
    const std::string_view line = errors.substr(0, errors.find('\n'));
    errors.remove_prefix(std::min(line.size() + 1, errors.size()));
    // Before it comes the line of the script and a mark below the fault.
    if (line.find_first_not_of(" ^\t\r") != std::string_view::npos) reason = printable(line, 120);
  }
  return reason.empty() ? "without a message" : "saying: " + reason;
}

}  // namespace

void requirePictureName(const std::string& fileName) {
  if (!hasExtension(fileName, ".png") && !hasExtension(fileName, ".svg")) {
    throw Failure("the picture " + printable(fileName) +
                  " must have a name that ends in .png or .svg");
  }
}

/// What all pictures have in common; a script may set it otherwise.
constexpr const char* kStyle = R"(
set encoding utf8
ink = '#333333'; blue = '#2f6496'; red = '#b3262e'; grey = '#777777'
set border 3 lc rgb ink lw 0.75
set tics nomirror out scale 0.6 textcolor rgb ink font ',9'
set format '%.10g'
unset key
)";

void drawPicture(const std::string& fileName, const PictureSize& size, std::string_view script) {
  requirePictureName(fileName);
  const std::string failed = "the picture " + printable(fileName) + " was not written: ";
  // -d: no start-up files of the user, so that a picture looks the same for everybody.
  const ProgramResult drawn =
      runProgram({"gnuplot", "-d"}, kStyle + terminalFor(fileName, size) + std::string(script));
  if (!drawn.started) {
    throw Failure(failed + "the program gnuplot, which draws it, cannot be started (" +
                  drawn.startError + ')');
  }
  if (drawn.exitStatus != 0 || !isComplete(fileName, drawn.output)) {
    throw Failure(failed + "gnuplot ended with status " + std::to_string(drawn.exitStatus) + ' ' +
                  reasonIn(drawn.errors));
  }
  zel::WholeFileWriter file(fileName);
  file.Stream() << drawn.output;
  if (!file.Commit()) throw Failure(failed + file.Error().message());
}

std::string gnuplotText(std::string_view text, std::size_t limit) {
  std::string result = "'";
  for (const char c : printable(text, limit)) {
    result += c;
    if (c == '\'') result += c;
  }
  return result + '\'';
}

std::string gnuplotVariable(std::string_view name, std::string_view value) {
  return std::string(name).append(" = ").append(value) + '\n';
}

}  // namespace tool
