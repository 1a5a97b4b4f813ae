#include "correlate.h"

#include <algorithm>
#include <utility>

#include "correlations.h"
#include "correlations_picture.h"
#include "failure.h"
#include "file_names.h"
#include "gnuplot.h"
#include "json.h"
#include "number_text.h"
#include "table_file.h"
#include "text_histogram.h"
#include "text_table.h"
#include "utf8.h"
#include "variable.h"

namespace tool {
namespace {

/// A table with the variables as lines and as columns. The columns of long names have the numbers
/// of the variables as headings.
template <class TextOf>
std::string squareText(const Correlations& correlations, TextOf textOf) {
  constexpr std::size_t kLongestHeading = 12;
  std::vector<std::string> labels;
  std::vector<std::string> headings;
  bool numbered = false;
  for (const std::string& name : correlations.names) {
    labels.push_back(printable(name, 40));
    headings.push_back(labels.back());
    numbered = numbered || characterCount(name) > kLongestHeading;
  }
  if (numbered) {
    const std::size_t width =
        std::to_string(*std::max_element(correlations.numbers.begin(), correlations.numbers.end()))
            .size();
    for (std::size_t i = 0; i < labels.size(); ++i) {
      headings[i] = std::to_string(correlations.numbers[i]);
      labels[i] = std::string(width - headings[i].size(), ' ') + headings[i] + "  " + labels[i];
    }
  }
  TextColumns columns(labels);
  for (std::size_t j = 0; j < labels.size(); ++j) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < labels.size(); ++i) texts.push_back(textOf(i, j));
    columns.add(headings[j], std::move(texts));
  }
  return columns.text(terminalColumns());
}

std::string tableText(const Table& file, const Correlations& correlations, bool ascii) {
  std::string text = headingText(file, correlations.size());
  const auto [fewest, most] = correlations.rangeOfPairs();
  text += "  Pearson correlation, n = " + std::to_string(fewest) +
          (fewest == most ? "" : " to " + std::to_string(most)) + "\n\n";
  text += squareText(correlations, [&](std::size_t i, std::size_t j) {
    const auto& r = correlations.r[i][j];
    return r ? fixedPoint(*r, 4) : ascii ? "-" : "–";
  });
  if (fewest == most) return text;
  return text + "\n  n, the rows in which neither value is missing\n\n" +
         squareText(correlations, [&](std::size_t i, std::size_t j) {
           return std::to_string(correlations.pairs[i][j]);
         });
}

std::string jsonText(const Table& file, const std::vector<std::size_t>& columns,
                     const Correlations& correlations, const CorrelateOptions& options) {
  JsonWriter json;
  const auto addSquare = [&](const char* key, const auto& rows) {
    json.beginArray(key);
    for (const auto& row : rows) json.addAll("", row);
    json.endArray();
  };
  json.beginObject();
  json.add("file", options.file);
  json.add("comment", file.comment());
  json.add("rows", file.rows());
  json.beginArray("variables");
  for (const std::size_t c : columns) {
    json.beginObject();
    json.add("column", file.columns[c].number);
    json.add("name", file.columns[c].name);
    json.endObject();
  }
  json.endArray();
  addSquare("correlation", correlations.r);
  addSquare("n", correlations.pairs);
  if (!options.picture.empty()) json.add("picture", options.picture);
  json.endObject();
  return json.text();
}

}  // namespace

Result correlate(const CorrelateOptions& options) {
  if (!options.picture.empty()) {
    requirePictureName(options.picture);
    requireDifferentFiles(options.file, options.picture);
  }
  const Table file = readTable(options.file, options.decimalComma);
  const ColumnChoice choice = chooseColumns(file, options.columns);
  if (choice.columns.size() < 2) {
    throw Failure(options.columns.empty()
                      ? file.source + " has one column of numbers, and a correlation takes two"
                      : "--column names one column, and a correlation takes two");
  }
  const Correlations correlations = correlate(file, choice.columns);
  if (!options.picture.empty()) drawCorrelations(options.picture, pictureTitle(file), correlations);
  if (options.json) return {jsonText(file, choice.columns, correlations, options), choice.note};
  std::string text = tableText(file, correlations, options.ascii);
  if (!options.picture.empty()) text += "\n  Picture: " + printable(options.picture) + '\n';
  return {text, choice.note};
}

}  // namespace tool
