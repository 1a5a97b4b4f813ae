/// @file
/// Data files: what they hold as a table.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "zel/datatable/Zel_datatable.h"

namespace tool {

/// A column of a table. Columns and rows are numbered from 1.
struct Column {
  enum Kind {
    numbers,  // and nothing else but missing values
    mixed,    // more numbers than words: a command that takes the column names the first word
    texts,    // categories
    nothing   // neither a name nor a value
  };
  std::string name;  // may be empty
  int number = 0;    // among all columns of the file
  Kind kind = numbers;
  std::vector<int> missingRows;  // ascending; of a column of numbers
  // Of texts in a CSV file:
  std::int64_t line = 0;  // of the first word; 0: not known
  std::string word;
  bool isSkipped = false;  // more different texts than a table can hold
  bool isCut = false;      // texts longer than a table can hold

  [[nodiscard]] bool isNumeric() const { return kind == numbers; }
  /// The name, or "column 3" if it has none.
  [[nodiscard]] std::string title() const;
};

/// What a data file holds.
struct Table {
  std::string source;  // the file as messages name it
  std::unique_ptr<zel::TDataTable> data;
  std::vector<Column> columns;  // [column of data - 1]
  bool hasRowNames = false;
  /// Of a CSV file: number and name of the column that names the rows; 0 if there is none.
  int rowNameColumn = 0;
  std::string rowNameTitle;
  bool hasCustomData = false;  // of another program, behind the table of an ASC file

  [[nodiscard]] int rows() const { return data->NrOfRows(); }
  [[nodiscard]] const std::string& comment() const { return data->Comment(); }
  /// Empty if the rows have no names.
  [[nodiscard]] std::string rowName(int row) const;
  /// All cells of a column, 0 where one is missing.
  /// @param c  position in `columns`
  [[nodiscard]] std::span<const double> values(std::size_t c) const {
    return data->NumericData->Column(static_cast<int>(c) + 1);
  }
  /// A cell that is empty, or no number.
  [[nodiscard]] bool isMissing(std::size_t c, int row) const;
  /// Positions of the columns of numbers.
  [[nodiscard]] std::vector<std::size_t> numericColumns() const;
};

/// Reads an ASC, CSV or XML file; its content tells which it is.
/// @param fileName        "-" is standard input
/// @param isDecimalComma  the numbers of a CSV file have a comma in place of the point
/// @throws Failure  names the file, the line and the reason
Table readTable(const std::string& fileName, bool isDecimalComma = false);

/// @throws Failure  says why, if the table has no column of numbers
void requireNumbers(const Table& table);

/// The file and a column, for messages; also the line of its first word if that is to be told.
std::string placeOf(const Table& table, const Column& column, bool isWithLine = false);

/// Why a column is none of numbers, as a sentence that names the file and the line.
std::string whyNotNumbers(const Table& table, const Column& column);

/// The lines above the tables of several variables.
std::string headingText(const Table& table, std::size_t variables);

/// The comment of a file; without one the file's own name.
std::string pictureTitle(const Table& table);

/// The forms, for the help of the commands.
extern const char* const kFileHelp;

}  // namespace tool
