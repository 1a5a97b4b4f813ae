#include "cluster.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

#include "clusters.h"
#include "components.h"
#include "failure.h"
#include "file_names.h"
#include "gnuplot.h"
#include "grouping.h"
#include "json.h"
#include "number_text.h"
#include "objects.h"
#include "scores_picture.h"
#include "table_file.h"
#include "text_histogram.h"
#include "text_table.h"
#include "tree_picture.h"
#include "utf8.h"
#include "variable.h"

namespace tool {
namespace {

constexpr std::size_t kMostMembers = 200;

std::string labelOf(const Table& file, int row) {
  const std::string name = file.rowName(row);
  return name.empty() ? std::to_string(row) : name;
}

/// What the command works on and what it found.
struct Run {
  const Table& file;
  const Objects& objects;
  std::vector<int> rows;  // of the objects
  const Clusters& clusters;
  const Grouping& classes;

  /// Objects of each cluster in each class.
  [[nodiscard]] std::vector<std::vector<int>> counts() const {
    std::vector<std::vector<int>> table(clusters.sizes.size(), std::vector<int>(classes.size()));
    for (std::size_t k = 0; k < classes.size(); ++k) {
      for (const int row : classes.rows[k]) {
        const auto place = std::ranges::lower_bound(rows, row);
        if (place == rows.end() || *place != row) continue;
        const auto object = static_cast<std::size_t>(place - rows.begin());
        ++table[static_cast<std::size_t>(clusters.assignment[object] - 1)][k];
      }
    }
    return table;
  }
};

/// The texts in lines of the terminal's width, after a label.
std::string wrapped(const std::string& label, const std::vector<std::string>& words) {
  const auto width = static_cast<std::size_t>(terminalColumns());
  std::string text;
  std::string line = "  " + label;
  for (std::size_t k = 0; k < words.size(); ++k) {
    const std::string word = words[k] + (k + 1 < words.size() ? "," : "");
    if (characterCount(line) + 1 + characterCount(word) > width) {
      text += line + '\n';
      line = "   ";
    }
    line += ' ' + word;
  }
  return text + line + '\n';
}

std::string membersText(const Run& run) {
  std::string text = "\n  Members\n\n";
  for (std::size_t g = 0; g < run.clusters.sizes.size(); ++g) {
    std::vector<std::string> members;
    for (std::size_t i = 0; i < run.rows.size(); ++i) {
      if (std::cmp_not_equal(run.clusters.assignment[i], g + 1)) continue;
      members.push_back(printable(labelOf(run.file, run.rows[i]), 30));
    }
    text += wrapped("cluster " + std::to_string(g + 1) + ':', members);
  }
  return text;
}

/// The last unions, from the top of the tree down.
std::string unionsText(const Clusters& clusters) {
  constexpr std::size_t kMostShown = 10;
  const std::size_t shown = std::min(clusters.unions.size(), kMostShown);
  std::vector<std::string> labels, heights;
  for (std::size_t k = 0; k < shown; ++k) {
    labels.push_back(std::to_string(k + 2) + " to " + std::to_string(k + 1));
    heights.push_back(significant(clusters.unions[clusters.unions.size() - 1 - k].height, 6));
  }
  TextColumns columns(std::move(labels));
  columns.add("distance", std::move(heights));
  return "\n  The last unions, by the number of clusters\n\n" + columns.text(terminalColumns());
}

std::string tableText(const Run& run, const ClusterOptions& options) {
  const auto& [file, objects, rows, clusters, classes] = run;
  std::string text = headingText(file, objects.names.size());
  text += "  " + clusters.method + ", " +
          (options.raw ? "of the values as they are" : "of standardised values") +
          ", n = " + std::to_string(objects.rows);
  if (!objects.leftOut.empty()) {
    text += ", " + counted(static_cast<long long>(objects.leftOut.size()), "row") +
            " left out for missing values";
  }
  text += "\n  Sum of squares within the clusters " + significant(clusters.within, 6) + " of " +
          significant(clusters.total, 6);
  if (clusters.total > 0) {
    text +=
        ", " + fixedPoint(100 * (1 - clusters.within / clusters.total), 1) + " % are between them";
  }
  text += "\n\n";
  std::vector<std::string> labels, sizes;
  for (std::size_t g = 0; g < clusters.sizes.size(); ++g) {
    labels.push_back("cluster " + std::to_string(g + 1));
    sizes.push_back(std::to_string(clusters.sizes[g]));
  }
  TextColumns means(labels);
  means.add("size", std::move(sizes));
  for (std::size_t v = 0; v < objects.names.size(); ++v) {
    std::vector<std::string> texts;
    for (const auto& mean : clusters.means) texts.push_back(significant(mean[v], 5));
    means.add(printable(objects.names[v], 24), std::move(texts));
  }
  text += means.text(terminalColumns());
  if (classes.size() > 0) {
    text += "\n  Rows by " + printable(classes.title, 40) + "\n\n";
    TextColumns columns(labels);
    const auto counts = run.counts();
    for (std::size_t k = 0; k < classes.size(); ++k) {
      std::vector<std::string> texts;
      for (const auto& line : counts) texts.push_back(std::to_string(line[k]));
      columns.add(printable(classes.labels[k], 24), std::move(texts));
    }
    text += columns.text(terminalColumns());
  }
  if (clusters.isTree()) text += unionsText(clusters);
  if (rows.size() <= kMostMembers) text += membersText(run);
  return text;
}

std::string jsonText(const Run& run, const ClusterOptions& options) {
  const auto& [file, objects, rows, clusters, classes] = run;
  JsonWriter json;
  json.beginObject();
  json.add("file", options.file);
  json.add("comment", file.comment());
  json.add("method", options.method);
  json.add("method_text", clusters.method);
  json.add("scale", options.raw ? "raw" : "standardised");
  json.add("rows", objects.rows);
  json.add("left_out", static_cast<int>(objects.leftOut.size()));
  json.beginArray("variables");
  for (std::size_t v = 0; v < objects.names.size(); ++v) {
    json.beginObject();
    json.add("column", objects.numbers[v]);
    json.add("name", objects.names[v]);
    json.endObject();
  }
  json.endArray();
  json.add("within", clusters.within);
  json.add("total", clusters.total);
  const auto counts = run.counts();
  json.beginArray("clusters");
  for (std::size_t g = 0; g < clusters.sizes.size(); ++g) {
    json.beginObject();
    json.add("size", clusters.sizes[g]);
    json.addAll("means", clusters.means[g]);
    if (classes.size() > 0) json.addAll("classes", counts[g]);
    json.endObject();
  }
  json.endArray();
  if (classes.size() > 0) json.addAll("class_names", classes.labels);
  json.beginArray("assignment");
  for (std::size_t i = 0; i < rows.size(); ++i) {
    json.beginObject();
    json.add("row", rows[i]);
    if (file.hasRowNames) json.add("name", file.rowName(rows[i]));
    json.add("cluster", clusters.assignment[i]);
    json.endObject();
  }
  json.endArray();
  if (clusters.isTree()) {
    json.beginArray("unions");
    for (const Union& u : clusters.unions) {
      json.beginObject();
      json.add("first", u.first);
      json.add("second", u.second);
      json.add("distance", u.height);
      json.endObject();
    }
    json.endArray();
    json.addAll("positions", clusters.positions);
  }
  if (!options.picture.empty()) json.add("picture", options.picture);
  json.endObject();
  return json.text();
}

/// The objects by their first two principal components, cluster by cluster.
void drawPartition(const Table& file, const std::vector<std::size_t>& columns,
                   const Clusters& clusters, const ClusterOptions& options) {
  Components components = componentsOf(file, columns, !options.raw);
  std::vector<std::size_t> order(clusters.assignment.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, {}, [&](std::size_t i) { return clusters.assignment[i]; });
  for (auto& scores : components.scores) {
    std::vector<double> sorted;
    for (const std::size_t i : order) sorted.push_back(scores[i]);
    scores.swap(sorted);
  }
  std::vector<std::string> categories;
  for (const std::size_t i : order) {
    const int g = clusters.assignment[i];
    categories.push_back(std::to_string(g) + " (" +
                         std::to_string(clusters.sizes[static_cast<std::size_t>(g - 1)]) + ')');
  }
  drawScores(options.picture, pictureTitle(file), components, categories,
             clusters.method + "; principal components of the " +
                 (options.raw ? "covariances" : "correlations"));
}

}  // namespace

Result cluster(const ClusterOptions& options) {
  const bool isPartition = options.method == "kmeans";
  if (!options.picture.empty()) {
    requirePictureName(options.picture);
    requireDifferentFiles(options.file, options.picture);
    if (isPartition && std::cmp_greater(options.clusters, kMostColours)) {
      throw Failure("--clusters: the picture has colours for " + std::to_string(kMostColours) +
                    " clusters");
    }
  }
  const Table file = readTable(options.file, options.decimalComma);
  const Grouping classes = options.by.empty() ? Grouping() : groupingOf(file, options.by, "--by");
  const ColumnChoice choice = chooseColumns(file, options.columns, classes.column);
  if (!options.picture.empty() && isPartition && choice.columns.size() < 2) {
    throw Failure("--plot: the picture of a partition takes two columns");
  }
  Objects objects(file, choice.columns, !options.raw,
                  "and so cannot be standardised (--column leaves it out, --raw takes it)");
  const Clusters clusters = clustersOf(file, objects, options);
  const Run run{file, objects, rowsLeft(objects), clusters, classes};
  if (!options.picture.empty()) {
    if (clusters.isTree()) {
      std::vector<std::string> labels;
      for (const int row : run.rows) labels.push_back(labelOf(file, row));
      drawTree(options.picture, pictureTitle(file), clusters, labels);
    } else {
      drawPartition(file, choice.columns, clusters, options);
    }
  }
  if (options.json) return {jsonText(run, options), choice.note};
  std::string text = tableText(run, options);
  if (!options.picture.empty()) text += "\n  Picture: " + printable(options.picture) + '\n';
  return {text, choice.note};
}

}  // namespace tool
