/// @file
/// Data files of several columns.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "zel/matrix/Zel_matrix.h"

namespace tool {

/// A column of numbers. Columns and rows are numbered from 1.
struct Column {
  std::string name;              // may be empty
  int number = 0;                // among all columns of the file
  std::vector<int> missingRows;  // ascending

  /// The name, or "column 3" if it has none.
  [[nodiscard]] std::string title() const;
};

/// A column of a CSV file that does not hold numbers, or not only.
struct OtherColumn {
  std::string name;
  int number = 0;
  bool isText = false;    // more words than numbers
  std::int64_t line = 0;  // of the first word
  std::string word;
};

/// What a data file holds.
struct Table {
  std::string source;   // the file as messages name it
  std::string comment;  // may be empty
  std::vector<Column> columns;
  std::unique_ptr<zel::TMatrix> values;  // one column for each of `columns`; 0 where one is missing
  int rows = 0;
  std::vector<std::string> rowNames;  // empty, or one for each row
  std::vector<OtherColumn> others;
  /// Of the column that was asked for: its number, or 0 if there is none, and its cell in each row,
  /// empty where it is missing.
  int labelColumn = 0;
  std::vector<std::string> labels;
};

/// The values of the columns while a file is read: they grow as it bears them out.
using ColumnValues = std::vector<std::vector<double>>;

/// Reads an ASC or a CSV file; its content tells which it is.
/// @param fileName     "-" is standard input
/// @param labelColumn  name or number of a column whose cells are kept as texts, whatever they
/// hold;
///   empty: none
/// @throws Failure  names the file, the line and the reason; also if there is no column of numbers
Table readTable(const std::string& fileName, const std::string& labelColumn = {});

/// Why a column is none of numbers, as a sentence that names the file and the line.
std::string whyNotNumbers(const Table& table, const OtherColumn& column);

/// The lines above the tables of several variables.
std::string headingText(const Table& table, std::size_t variables);

/// The comment of a file; without one the file's own name.
std::string pictureTitle(const Table& table);

/// Both forms, for the help of the commands.
extern const char* const kFileHelp;

}  // namespace tool
