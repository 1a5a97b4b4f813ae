#include <string>

#include "zel/base/numbertext_impl.h"
#include "zel/base/textwriter_impl.h"
#include "zel/datatable/csv_form_impl.h"

namespace zel::detail {

namespace {

constexpr std::uint8_t kEmpty = 2;

class TCsvWriter : TextWriter {
 public:
  TCsvWriter(std::ostream& out, const TTableView& table, const TCSVExport& how)
      : TextWriter(out), FTable(table), FHow(how) {}

  void write() {
    const TTableArrays& arrays = FTable.Arrays;
    if (FHow.IncludeComment && !arrays.FComment.empty()) {
      FText.append(kCommentMark).append(arrays.FComment) += '\n';
    }
    if (FHow.IncludeColHeaders) {
      if (FHow.IncludeRowHeaders) addText({});
      if (FHow.IncludeRowAttributes) FText.append(kAttributes) += FHow.Delimiter;
      for (const TDTNameStr& name : arrays.FColName) addText(name, name == kAttributes);
      endRow();
    }
    for (std::size_t r = 0; FOut && r < FTable.Rows(); ++r) {
      if (FHow.IncludeRowHeaders) addText(arrays.FRowName[r]);
      if (FHow.IncludeRowAttributes) addText(std::to_string(arrays.FRowAtt[r]));
      for (std::size_t c = 0; c < FTable.Columns(); ++c) addCell(c, r);
      endRow();
    }
    flush();
  }

 private:
  /// @param isWord  the text would mean something without quotation marks
  void addText(std::string_view text, bool isWord = false) {
    if (isWord) {
      FText.append(1, '"').append(text) += '"';
    } else {
      appendCell(FText, text, FHow.Delimiter);
    }
    FText += FHow.Delimiter;
  }

  void addCell(std::size_t c, std::size_t r) {
    const double x = FTable.Value(c, r);
    if ((FTable.State(c, r) & kEmpty) != 0) {
      FText.append("NA") += FHow.Delimiter;
    } else if (FTable.IsCategorical(c)) {
      const TNominalIDStr text = CategoryText(FTable.Arrays.FVType[c], x);
      addText(text, IsMissingWord(text));
    } else {
      const std::size_t start = FText.size();
      appendNumber(FText, x, FHow.Precision);
      const std::size_t point =
          FHow.DecSep == dpsComma ? FText.find('.', start) : std::string::npos;
      if (point != std::string::npos) putComma(start, point);
      FText += FHow.Delimiter;
    }
  }

  /// A number whose comma is the delimiter needs quotation marks.
  void putComma(std::size_t start, std::size_t point) {
    FText[point] = ',';
    if (FHow.Delimiter != ',') return;
    FText.insert(start, 1, '"');
    FText += '"';
  }

  void endRow() {
    FText.back() = '\n';
    flushIfLong();
  }

  const TTableView& FTable;
  const TCSVExport& FHow;
};

}  // namespace

void WriteCSV(std::ostream& out, const TTableView& table, const TCSVExport& how) {
  TCsvWriter(out, table, how).write();
}

}  // namespace zel::detail
