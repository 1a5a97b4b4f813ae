#include "describe_by.h"

#include <string>
#include <utility>

#include "description.h"
#include "grouping.h"
#include "groups_picture.h"
#include "json.h"
#include "number_text.h"
#include "utf8.h"
#include "variable.h"

namespace tool {
namespace {

/// A variable in each category, and in all rows at the end.
using Groups = std::vector<Description>;

Groups groupsOf(const Table& file, std::size_t c, const Grouping& grouping,
                const std::vector<double>& percents, int bins) {
  Groups groups;
  Description all = describeVariable(variableOf(file, c), percents, bins);
  for (const std::vector<int>& rows : grouping.rows) {
    groups.push_back(describePart(variableOf(file, c, rows), percents, all));
  }
  groups.push_back(std::move(all));
  return groups;
}

std::string tableText(const Table& file, const Grouping& grouping,
                      const std::vector<Groups>& variables, const DescribeOptions& options) {
  std::string text = file.source + ": " +
                     counted(static_cast<long long>(variables.size()), "variable") + " by " +
                     printable(grouping.title, 60) + ", " + counted(file.rows(), "row") + '\n';
  if (!file.comment().empty()) text += printable(file.comment()) + '\n';
  if (grouping.missing > 0) {
    text += counted(grouping.missing, "row") + " without " + printable(grouping.title, 60) +
            (grouping.missing == 1 ? " counts" : " count") + " in \"all\" only\n";
  }
  std::vector<std::string> headings = grouping.labels;
  headings.push_back("all");
  for (const Groups& groups : variables) {
    text += "\n  " + printable(groups.back().variable.title, 60) + "\n\n" +
            textOfColumns(groups, headings, options);
  }
  return text;
}

std::string jsonText(const Table& file, const Grouping& grouping,
                     const std::vector<Groups>& variables, const DescribeOptions& options) {
  JsonWriter json;
  json.beginObject();
  json.add("file", options.file);
  json.add("comment", file.comment());
  json.add("rows", file.rows());
  json.beginObject("by");
  json.add("column", grouping.column);
  json.add("name", grouping.title);
  json.add("missing", grouping.missing);
  json.endObject();
  json.beginArray("variables");
  for (const Groups& groups : variables) {
    json.beginObject();
    json.add("column", groups.back().variable.number);
    json.add("name", groups.back().variable.name);
    json.beginArray("categories");
    for (std::size_t k = 0; k < grouping.size(); ++k) {
      json.beginObject();
      json.add("category", grouping.labels[k]);
      addFigures(json, groups[k], options);
      json.endObject();
    }
    json.endArray();
    json.beginObject("all");
    addFigures(json, groups.back(), options);
    json.endObject();
    json.endObject();
  }
  json.endArray();
  if (!options.picture.empty()) json.add("picture", options.picture);
  json.endObject();
  return json.text();
}

void draw(const Table& file, const Grouping& grouping, const std::vector<Groups>& variables,
          const DescribeOptions& options) {
  std::vector<GroupedVariable> panels;
  for (const Groups& groups : variables) {
    GroupedVariable& panel = panels.emplace_back();
    panel.name = groups.back().variable.title;
    for (std::size_t k = 0; k < grouping.size(); ++k) {
      panel.variables.push_back(&groups[k].variable);
      panel.summaries.push_back(&groups[k].summary);
    }
  }
  drawGroups(options.picture, pictureTitle(file), grouping, panels);
}

}  // namespace

Result describeBy(const Table& file, const std::vector<double>& percents,
                  const DescribeOptions& options) {
  const Grouping grouping = groupingOf(file, options.by, "--by");
  const ColumnChoice choice = chooseColumns(file, options.columns, grouping.column);
  std::vector<Groups> variables;
  for (const std::size_t c : choice.columns) {
    variables.push_back(groupsOf(file, c, grouping, percents, options.bins));
  }
  if (!options.picture.empty()) draw(file, grouping, variables, options);
  if (options.json) return {jsonText(file, grouping, variables, options), choice.note};
  std::string text = tableText(file, grouping, variables, options);
  if (!options.picture.empty()) text += "\n  Picture: " + printable(options.picture) + '\n';
  return {text, choice.note};
}

}  // namespace tool
