/// @file
/// Variables: the columns of a table that a command works on, without their missing cells.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "table_file.h"

namespace tool {

/// A column, or a part of its rows, as a sample. Rows are numbered from 1.
struct Variable {
  const Table* table = nullptr;
  std::string name;            // may be empty
  std::string title;           // what to call it if it is one of several
  int number = 0;              // of the column in the file
  std::vector<double> values;  // those present, in the order of the rows
  std::vector<int> rows;       // of the values
  int missing = 0;

  /// Row of a value.
  /// @param position  1-based among the values present; 0, which is no place, gives 0
  [[nodiscard]] int rowOf(int position) const {
    return position > 0 ? rows[static_cast<std::size_t>(position - 1)] : 0;
  }
};

/// The values of a column without those in the given rows.
/// @param rows  ascending
std::vector<double> withoutRows(std::span<const double> values, const std::vector<int>& rows);

/// The rows in which one of the columns has no value, ascending.
std::vector<int> rowsWithout(const Table& table, const std::vector<std::size_t>& columns);

/// @param c  position in table.columns, from 0
Variable variableOf(const Table& table, std::size_t c);
/// @param rows  those that count
Variable variableOf(const Table& table, std::size_t c, std::span<const int> rows);

/// Columns that a command shall work on.
struct ColumnChoice {
  std::vector<std::size_t> columns;  // positions in table.columns
  std::string note;                  // says which columns of text are left out; or empty
};

/// The columns with the given names or numbers, each once and in this order; all columns of numbers
/// if none is given.
/// @param wanted  each a name, a number among all columns of the file, or several, with commas
/// between
/// @param taken  number of a column that is used for something else and not among all; 0: none
/// @throws Failure  there is no such column, or it has other words than numbers in it
ColumnChoice chooseColumns(const Table& table, const std::vector<std::string>& wanted,
                           int taken = 0);

/// The position of the column of numbers with the given name or number.
/// @param option  the option that names it
/// @throws Failure  as chooseColumns
std::size_t chooseColumn(const Table& table, const std::string& wanted, const std::string& option);

/// The position of a column of any kind.
/// @throws Failure  there is no such column
std::size_t findColumn(const Table& table, const std::string& wanted, const std::string& option);

}  // namespace tool
