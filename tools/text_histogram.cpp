#include "text_histogram.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>

#include "utf8.h"

namespace tool {
namespace {

/// A bar for part / whole of a number of columns. What is not nothing shows.
std::string bar(int part, int whole, int columns, bool ascii) {
  if (part == 0) return {};
  const int perColumn = ascii ? 1 : 8;
  const std::int64_t steps = std::int64_t{columns} * perColumn * part / whole;
  const auto filled = std::max<std::int64_t>(steps, 1);
  if (ascii) return std::string(static_cast<std::size_t>(filled), '#');
  std::string text;
  for (std::int64_t i = 0; i < filled / 8; ++i) text += "█";
  constexpr const char* kEighths[] = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
  return text + kEighths[filled % 8];
}

}  // namespace

std::string textHistogram(const Histogram& histogram, const std::vector<BinMark>& marks,
                          int columns, bool ascii) {
  const std::size_t bins = histogram.counts.size();
  std::vector<std::string> notes(bins);
  for (const BinMark& mark : marks) {
    std::string& note = notes[histogram.binOf(mark.at)];
    note += (note.empty() ? (ascii ? "  < " : "  ◂ ") : ", ") + mark.word;
  }
  std::size_t labelWidth = 0;
  std::size_t noteWidth = 0;
  for (std::size_t i = 0; i < bins; ++i) {
    labelWidth = std::max(labelWidth, histogram.edgeText(i).size());
    noteWidth = std::max(noteWidth, characterCount(notes[i]));
  }
  const int most = *std::max_element(histogram.counts.begin(), histogram.counts.end());
  // Beside the bar: two blanks, the label, " | ", a blank and the count, the note.
  const std::size_t beside = 2 + labelWidth + 2 + 1 + std::to_string(most).size() + noteWidth;
  const int barColumns = std::max(std::max(columns, 40) - static_cast<int>(beside), 10);

  std::string text;
  for (std::size_t i = 0; i < bins; ++i) {
    const std::string label = histogram.edgeText(i);
    text += "  " + std::string(labelWidth - label.size(), ' ') + label + (ascii ? " |" : " │") +
            bar(histogram.counts[i], most, barColumns, ascii) + ' ' +
            std::to_string(histogram.counts[i]) + notes[i] + '\n';
  }
  return text;
}

std::string sparkline(const Histogram& histogram) {
  constexpr const char* kEighths[] = {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
  const int most = *std::max_element(histogram.counts.begin(), histogram.counts.end());
  std::string text;
  for (const int count : histogram.counts) {
    const std::int64_t eighths = (std::int64_t{count} * 8 + most - 1) / most;  // any count shows
    text += count == 0 ? " " : kEighths[eighths - 1];
  }
  return text;
}

int terminalColumns() {
  constexpr int kWidest = 100;
  struct winsize size {};
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
  return std::min<int>(size.ws_col, kWidest);
}

}  // namespace tool
