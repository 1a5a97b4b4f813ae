#include "crosstab.h"

#include <utility>
#include <vector>

#include "failure.h"
#include "grouping.h"
#include "json.h"
#include "number_text.h"
#include "table_file.h"
#include "text_histogram.h"
#include "text_table.h"
#include "utf8.h"

namespace tool {
namespace {

/// Counts with their sums over a, over b, and over both at the ends.
struct Crosstab {
  Grouping a, b;
  std::vector<std::vector<int>> counts;  // [category of a][category of b]
  int missing = 0;                       // rows without one of them

  [[nodiscard]] int total() const { return counts.back().back(); }
  /// What a cell is a part of.
  [[nodiscard]] int whole(std::size_t i, std::size_t j, const std::string& percent) const {
    if (percent == "row") return counts[i].back();
    return percent == "column" ? counts.back()[j] : total();
  }
};

/// Gives a column of a table the categories of a grouping.
void setCategories(zel::TDataTable& table, int column, const Grouping& grouping) {
  table.SetMScaleType(column, zel::stNominal);
  for (int r = 1; r <= table.NrOfRows(); ++r) table.SetCellState(column, r, 2);
  for (std::size_t k = 0; k < grouping.size(); ++k) {
    for (const int r : grouping.rows[k]) {
      table.SetElem(column, r, static_cast<double>(k + 1));
      table.SetCellState(column, r, 0);
    }
  }
}

Crosstab crosstabOf(const Table& file, const CrosstabOptions& options) {
  Crosstab result{groupingOf(file, options.a, "A"), groupingOf(file, options.b, "B"), {}, 0};
  zel::TDataTable table;
  table.Resize(2, file.rows());
  setCategories(table, 1, result.a);
  setCategories(table, 2, result.b);
  zel::TInt2DArray counted;
  table.CreateContingencyTable(1, 2, 0, 0, counted);
  // Its size is that of the categories that have rows; the sums are at its ends.
  const std::size_t lastA = counted.Length(0) - 1;
  const std::size_t lastB = counted.Length(1) - 1;
  result.counts.assign(result.a.size() + 1, std::vector<int>(result.b.size() + 1, 0));
  for (std::size_t i = 0; i <= lastA; ++i) {
    for (std::size_t j = 0; j <= lastB; ++j) {
      result.counts[i == lastA ? result.a.size() : i][j == lastB ? result.b.size() : j] =
          counted(i, j);
    }
  }
  result.missing = file.rows() - result.total();
  return result;
}

/// One line for each category of a, and one for all.
template <class TextOf>
std::string squareText(const Crosstab& table, TextOf textOf) {
  const auto withAll = [](const Grouping& grouping) {
    std::vector<std::string> labels;
    for (const std::string& label : grouping.labels) labels.push_back(printable(label, 24));
    labels.emplace_back("all");
    return labels;
  };
  const std::vector<std::string> headings = withAll(table.b);
  TextColumns columns(withAll(table.a));
  for (std::size_t j = 0; j < headings.size(); ++j) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i <= table.a.size(); ++i) texts.push_back(textOf(i, j));
    columns.add(headings[j], std::move(texts));
  }
  return columns.text(terminalColumns());
}

std::string tableText(const Table& file, const Crosstab& table, const CrosstabOptions& options) {
  std::string text = file.source + ": " + printable(table.a.title, 60) + " (lines) by " +
                     printable(table.b.title, 60) + " (columns), " + counted(table.total(), "row") +
                     '\n';
  if (!file.comment().empty()) text += printable(file.comment()) + '\n';
  if (table.missing > 0) {
    text += counted(table.missing, "row") + (table.missing == 1 ? " is" : " are") +
            " left out for missing values\n";
  }
  text += '\n' + squareText(table, [&](std::size_t i, std::size_t j) {
            return std::to_string(table.counts[i][j]);
          });
  if (options.percent.empty()) return text;
  text += "\n  Percent of the " + options.percent + "\n\n";
  return text + squareText(table, [&](std::size_t i, std::size_t j) {
           const int whole = table.whole(i, j, options.percent);
           return whole > 0 ? fixedPoint(100.0 * table.counts[i][j] / whole, 1) : "-";
         });
}

std::string jsonText(const Table& file, const Crosstab& table, const CrosstabOptions& options) {
  JsonWriter json;
  const auto addVariable = [&](const char* key, const Grouping& grouping) {
    json.beginObject(key);
    json.add("column", grouping.column);
    json.add("name", grouping.title);
    json.beginArray("categories");
    for (const std::string& label : grouping.labels) json.add("", label);
    json.endArray();
    json.endObject();
  };
  const auto addRow = [&](const char* key, std::size_t i, std::size_t length, auto&& cell) {
    json.beginArray(key);
    for (std::size_t j = 0; j < length; ++j) cell(i, j);
    json.endArray();
  };
  const auto addCount = [&](std::size_t i, std::size_t j) { json.add("", table.counts[i][j]); };
  const auto addPercent = [&](std::size_t i, std::size_t j) {
    const int whole = table.whole(i, j, options.percent);
    whole > 0 ? json.add("", 100.0 * table.counts[i][j] / whole) : json.addNull("");
  };
  json.beginObject();
  json.add("file", options.file);
  json.add("comment", file.comment());
  json.add("rows", file.rows());
  json.add("missing", table.missing);
  addVariable("a", table.a);
  addVariable("b", table.b);
  json.beginArray("counts");
  for (std::size_t i = 0; i < table.a.size(); ++i) addRow("", i, table.b.size(), addCount);
  json.endArray();
  json.beginArray("sums_of_a");
  for (std::size_t i = 0; i < table.a.size(); ++i) addCount(i, table.b.size());
  json.endArray();
  addRow("sums_of_b", table.a.size(), table.b.size(), addCount);
  json.add("total", table.total());
  if (!options.percent.empty()) {
    json.add("percent_of", options.percent);
    json.beginArray("percent");
    for (std::size_t i = 0; i < table.a.size(); ++i) addRow("", i, table.b.size(), addPercent);
    json.endArray();
  }
  json.endObject();
  return json.text();
}

}  // namespace

Result crosstab(const CrosstabOptions& options) {
  const Table file = readTable(options.file, options.decimalComma);
  const Crosstab table = crosstabOf(file, options);
  return {options.json ? jsonText(file, table, options) : tableText(file, table, options), ""};
}

}  // namespace tool
