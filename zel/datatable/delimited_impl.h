/// @file
/// Text of cells and records (RFC 4180 and what is found beside it). Internal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "zel/base/types.h"

namespace zel::detail {

/// Goes through the records of a text. Lines end in LF, CRLF or CR; blank lines between records are
/// passed over; blanks around a cell do not belong to it. A cell in quotation marks may hold
/// delimiters, line ends and doubled quotation marks.
class DelimitedText {
 public:
  DelimitedText(std::string_view text, char delimiter) : FRest(text), FDelimiter(delimiter) {}

  /// Goes to the next record.
  /// @return false at the end of the text
  bool nextRecord();
  /// Takes the next cell of the record, valid until the next one is taken.
  /// @return false behind the last one, or if the text is broken
  bool nextCell(std::string_view& cell);
  /// Takes the next cell if it is a finite number with a decimal point and nothing around it.
  /// @return false, with nothing taken, if it is not
  bool nextNumber(double& x);
  /// The cell taken last was in quotation marks.
  [[nodiscard]] bool isQuoted() const { return FIsQuoted; }
  /// A quotation mark is never closed, or more than blanks follows a closing one.
  [[nodiscard]] bool isBroken() const { return FIsBroken; }
  /// What has broken it is a quotation mark that is never closed.
  [[nodiscard]] bool isOpen() const { return FIsOpen; }
  /// What has not been taken yet.
  [[nodiscard]] std::string_view rest() const { return FRest; }
  /// The line that the record, or what is broken, starts in, from 1.
  [[nodiscard]] std::size_t line() const { return FRecordLine; }

 private:
  [[nodiscard]] bool isBlank(char c) const { return (c == ' ' || c == '\t') && c != FDelimiter; }
  void skipBlanks();
  bool takeQuoted(std::string_view& cell);
  /// Goes over the delimiter or the line end behind a cell.
  void finishCell();

  std::string_view FRest;
  char FDelimiter;
  std::string FCell;
  std::size_t FLine = 1;
  std::size_t FRecordLine = 1;
  bool FHasMore = false;  ///< cells of the record are left
  bool FIsQuoted = false;
  bool FIsBroken = false;
  bool FIsOpen = false;
};

/// Of comma, semicolon and tab the one that the first line of a text has most of outside quotation
/// marks; a comma if there is none.
[[nodiscard]] char detectDelimiter(std::string_view text);

/// The character; that of a text for cdDetect.
[[nodiscard]] char DelimiterOf(TCSVDelimiters delimiter, std::string_view text);

/// Appends a cell, in quotation marks where it needs them to be read again as the same text.
void appendCell(std::string& text, std::string_view cell, char delimiter);

}  // namespace zel::detail
