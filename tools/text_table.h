/// @file
/// Tables of labelled numbers.
#pragma once

#include <string>
#include <vector>

namespace tool {

/// Lines of a label, a number and a note. The numbers are aligned at their decimal points.
class TextTable {
 public:
  void add(std::string label, std::string number, std::string note = {});
  void addBlankLine() { rows_.emplace_back(); }
  [[nodiscard]] std::string text() const;

 private:
  struct Row {
    std::string label;
    std::string number;
    std::string note;
  };
  std::vector<Row> rows_;
};

}  // namespace tool
