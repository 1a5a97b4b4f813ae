#include "text_table.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "utf8.h"

namespace tool {
namespace {

/// Characters before the decimal point, or before the exponent if there is no point.
std::size_t widthBeforePoint(const std::string& number) {
  return characterCount(std::string_view(number).substr(0, number.find_first_of(".e")));
}

/// A number as the commands print it, or a dash in its place.
bool isNumber(std::string_view text) {
  if (characterCount(text) == 1) return true;
  if (text.starts_with('-')) text.remove_prefix(1);
  return text.find_first_of("0123456789") == 0 &&
         text.find_first_not_of("0123456789.e+-") == std::string_view::npos;
}

std::string blanks(std::size_t n) { return std::string(n, ' '); }

}  // namespace

void TextTable::add(std::string label, std::string number, std::string note) {
  rows_.push_back({std::move(label), std::move(number), std::move(note)});
}

std::string TextTable::text() const {
  std::size_t label = 0;
  std::size_t before = 0;
  std::size_t after = 0;
  for (const Row& row : rows_) {
    label = std::max(label, characterCount(row.label));
    before = std::max(before, widthBeforePoint(row.number));
    after = std::max(after, characterCount(row.number) - widthBeforePoint(row.number));
  }
  std::string text;
  for (const Row& row : rows_) {
    std::string line;
    if (!row.label.empty()) {
      const std::size_t integer = widthBeforePoint(row.number);
      line = "  " + row.label + blanks(label - characterCount(row.label) + 2 + before - integer) +
             row.number;
      if (!row.note.empty()) {
        line += blanks(after - (characterCount(row.number) - integer) + 3) + row.note;
      }
    }
    text += line + '\n';
  }
  return text;
}

void TextColumns::add(std::string heading, std::vector<std::string> texts) {
  std::size_t before = 0;
  std::size_t after = 0;
  for (const std::string& text : texts) {
    if (!isNumber(text)) continue;
    before = std::max(before, widthBeforePoint(text));
    after = std::max(after, characterCount(text) - widthBeforePoint(text));
  }
  std::size_t width = characterCount(heading);
  for (std::string& text : texts) {
    if (isNumber(text)) {
      text.insert(0, before - widthBeforePoint(text), ' ');
      text.append(before + after - characterCount(text), ' ');
    }
    width = std::max(width, characterCount(text));
  }
  columns_.push_back({std::move(heading), std::move(texts), width});
}

std::string TextColumns::text(int width) const {
  std::size_t label = 0;
  for (const std::string& each : labels_) label = std::max(label, characterCount(each));
  std::string text;
  for (std::size_t first = 0; first < columns_.size();) {
    std::size_t last = first;
    std::size_t used = 2 + label;
    do {
      used += 2 + columns_[last++].width;
    } while (last < columns_.size() && std::cmp_less_equal(used + 2 + columns_[last].width, width));
    if (first > 0) text += '\n';
    text += block(first, last, label);
    first = last;
  }
  return text;
}

std::string TextColumns::block(std::size_t first, std::size_t last, std::size_t label) const {
  std::string text;
  const auto addLine = [&](const std::string& start, const auto& textOf) {
    std::string line = "  " + start + blanks(label - characterCount(start));
    for (std::size_t c = first; c < last; ++c) {
      const std::string& cell = textOf(columns_[c]);
      line += blanks(2 + columns_[c].width - characterCount(cell)) + cell;
    }
    text += line.erase(line.find_last_not_of(' ') + 1) + '\n';
  };
  addLine("", [](const Column& column) -> const std::string& { return column.heading; });
  for (std::size_t i = 0; i < labels_.size(); ++i) {
    addLine(labels_[i],
            [&](const Column& column) -> const std::string& { return column.texts[i]; });
  }
  return text;
}

}  // namespace tool
