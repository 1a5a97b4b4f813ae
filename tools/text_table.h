/// @file
/// Tables of labelled numbers.
#pragma once

#include <string>
#include <utility>
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

/// Lines of a label and a text for each of several columns. Numbers are aligned at their decimal
/// points, other texts to the right.
class TextColumns {
 public:
  /// @param labels  an empty one makes a blank line
  explicit TextColumns(std::vector<std::string> labels) : labels_(std::move(labels)) {}
  /// @param texts  one for each label
  void add(std::string heading, std::vector<std::string> texts);
  /// The columns side by side, in blocks that are no wider than this if they can be.
  [[nodiscard]] std::string text(int width) const;

 private:
  struct Column {
    std::string heading;
    std::vector<std::string> texts;
    std::size_t width = 0;
  };
  [[nodiscard]] std::string block(std::size_t first, std::size_t last, std::size_t label) const;

  std::vector<std::string> labels_;
  std::vector<Column> columns_;
};

}  // namespace tool
