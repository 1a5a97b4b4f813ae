#include "text_table.h"

#include <algorithm>
#include <utility>

#include "utf8.h"

namespace tool {
namespace {

/// Characters before the decimal point, or before the exponent if there is no point.
std::size_t widthBeforePoint(const std::string& number) {
  return characterCount(std::string_view(number).substr(0, number.find_first_of(".e")));
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

}  // namespace tool
