#include "zel/openarrays/array_form_impl.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "zel/base/textreading.h"

namespace zel::detail {

namespace {

constexpr std::string_view kCommentMark = "//";
constexpr std::string_view kLayersWord = "layers";

std::string takeComment(std::string_view& text) {
  std::string comment;
  for (bool first = true; text.starts_with(kCommentMark); first = false) {
    std::string_view line = ReadNextLine(text).substr(kCommentMark.size());
    while (line.ends_with('\r')) line.remove_suffix(1);
    if (line.starts_with(' ')) line.remove_prefix(1);
    if (!first) comment += '\n';
    comment += line;
  }
  return comment;
}

/// Takes the line with the number of layers; 0 if there is none.
/// @return false if the number is missing
bool takeLayers(std::string_view& text, std::size_t& layers) {
  layers = 0;
  std::string_view rest = text;
  if (ReadNextWord(rest) != kLayersWord) return true;
  const std::string_view number = ReadNextWord(rest);
  const auto end = number.data() + number.size();
  const auto [last, error] = std::from_chars(number.data(), end, layers);
  text = rest;
  return error == std::errc() && last == end && layers > 0;
}

}  // namespace

template <class T>
void WriteArrayText(std::ostream& out, std::string_view comment, std::size_t layers,
                    kernels::MatrixSpan<const T> cells) {
  while (!comment.empty()) {
    const std::string_view line = comment.substr(0, comment.find('\n'));
    out << kCommentMark << ' ' << line << '\n';
    const bool isLast = line.size() == comment.size();
    comment.remove_prefix(isLast ? line.size() : line.size() + 1);
    // A line feed at the end begins one more line.
    if (!isLast && comment.empty()) out << kCommentMark << '\n';
  }
  if (layers > 0) out << kLayersWord << ' ' << layers << '\n';
  const TBounds bounds{1, 1, static_cast<int>(cells.columns), static_cast<int>(cells.rows)};
  WriteNumberFile(out, bounds, cells, TNumberFormat());
}

template <class T>
bool ReadArrayText(std::string_view text, TStoredArray<T>& read) {
  read.Comment = takeComment(text);
  if (!takeLayers(text, read.Layers) || !ReadNumberFile(text, read.Cells)) return false;
  if (read.Cells.Values.empty()) return false;
  return read.Layers == 0 || read.Cells.Values.Length(1) % read.Layers == 0;
}

template void WriteArrayText(std::ostream&, std::string_view, std::size_t,
                             kernels::MatrixSpan<const double>);
template void WriteArrayText(std::ostream&, std::string_view, std::size_t,
                             kernels::MatrixSpan<const int>);
template bool ReadArrayText(std::string_view, TStoredArray<double>&);
template bool ReadArrayText(std::string_view, TStoredArray<int>&);

}  // namespace zel::detail
