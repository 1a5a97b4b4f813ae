#include "zel/base/bitmap.h"

#include <algorithm>
#include <exception>
#include <string>
#include <system_error>
#include <utility>

#include "zel/base/errors.h"
#include "zel/base/picturefiles_impl.h"
#include "zel/base/stringhelpers.h"
#include "zel/base/wholefile.h"

namespace zel {
namespace {

[[noreturn]] void raise(std::string_view fileName, std::string_view problem) {
  throw EInOutError("TBitmap: \"" + std::string(fileName) + "\": " + std::string(problem));
}

std::string endingOf(std::string_view fileName) {
  const std::size_t dot = fileName.rfind('.');
  return dot == std::string_view::npos ? std::string() : LowerCase(fileName.substr(dot));
}

}  // namespace

TBitmap::TBitmap() = default;
TBitmap::TBitmap(int Width, int Height) { SetSize(Width, Height); }
TBitmap::~TBitmap() = default;
std::string_view TBitmap::ClassName() const { return "TBitmap"; }

void TBitmap::SetSize(int Width, int Height) {
  if (Width <= 0 || Height <= 0) Width = Height = 0;
  try {
    std::vector<TColor> pixels(static_cast<std::size_t>(Width) * static_cast<std::size_t>(Height));
    FPixels.swap(pixels);
  } catch (const std::exception&) {
    throw EZELError("TBitmap: not enough memory");
  }
  FWidth = Width;
  FHeight = Height;
}

std::span<TColor> TBitmap::Row(int y) {
  if (!Inside(0, y)) return {};
  return std::span(FPixels).subspan(Index(0, y), static_cast<std::size_t>(FWidth));
}

std::span<const TColor> TBitmap::Row(int y) const {
  if (!Inside(0, y)) return {};
  return std::span(FPixels).subspan(Index(0, y), static_cast<std::size_t>(FWidth));
}

void TBitmap::Assign(const TPersistent* Source) {
  const auto* picture = dynamic_cast<const TBitmap*>(Source);
  if (!picture) return TPersistent::Assign(Source);
  FPixels = picture->FPixels;
  FWidth = picture->FWidth;
  FHeight = picture->FHeight;
}

void TBitmap::SaveToFile(std::string_view FileName) const {
  const std::string ending = endingOf(FileName);
  if (FPixels.empty()) raise(FileName, "the picture is empty");
  const detail::PictureView picture{FWidth, FHeight, FPixels};
  std::string bytes;
  std::string problem;
  if (ending == ".bmp") {
    problem = detail::encodeBmp(picture, bytes);
  } else if (ending == ".png") {
    problem = detail::encodePng(picture, bytes);
  } else if (ending == ".jpg" || ending == ".jpeg") {
    problem = detail::encodeJpeg(picture, bytes);
  } else {
    problem = "unknown picture format";
  }
  if (!problem.empty()) raise(FileName, problem);
  WholeFileWriter file(FileName);
  file.Stream().write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!file.Commit()) raise(FileName, file.Error().message());
}

void TBitmap::LoadFromFile(std::string_view FileName) {
  const std::string ending = endingOf(FileName);
  if (ending != ".bmp" && ending != ".png") raise(FileName, "unknown picture format");
  std::error_code error;
  const auto bytes = ReadWholeFile(FileName, error);
  if (!bytes) raise(FileName, error.message());
  detail::Picture picture;
  const std::string problem =
      ending == ".bmp" ? detail::decodeBmp(*bytes, picture) : detail::decodePng(*bytes, picture);
  if (!problem.empty()) raise(FileName, problem);
  FPixels = std::move(picture.pixels);
  FWidth = picture.width;
  FHeight = picture.height;
}

}  // namespace zel
