#include "convert.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

#include "failure.h"
#include "file_names.h"
#include "number_text.h"
#include "table_file.h"
#include "utf8.h"
#include "zel/base/wholefile.h"

namespace tool {
namespace {

enum class Form { asc, csv, xml };

Form formOf(const std::string& fileName) {
  if (hasExtension(fileName, ".csv")) return Form::csv;
  if (hasExtension(fileName, ".asc") || hasExtension(fileName, ".txt")) return Form::asc;
  if (hasExtension(fileName, ".xml")) return Form::xml;
  throw Failure("the file " + printable(fileName) +
                " must have a name that ends in .csv, .asc, .txt or .xml");
}

void requireFittingOptions(Form form, const ConvertOptions& options) {
  if (form != Form::csv && !options.delimiter.empty()) {
    throw Failure("--out-delimiter: only a CSV file has one");
  }
  if (form != Form::csv && options.outDecimalComma) {
    throw Failure("--out-decimal-comma: only a CSV file may have one");
  }
  if (form != Form::xml && !options.id.empty()) {
    throw Failure("--id: only an XML file has one");
  }
}

/// Texts that the table could not take must not get lost unnoticed.
void requireWhole(const Table& table) {
  for (const Column& column : table.columns) {
    if (!column.isSkipped) continue;
    throw Failure(placeOf(table, column) +
                  ": it has more than 150 different texts, which no column of a table can hold");
  }
}

bool hasRowAttributes(const zel::TDataTable& table) {
  int ignored = 0;
  return table.MinRowAttrib(0, 0, ignored) != 0 || table.MaxRowAttrib(0, 0, ignored) != 0;
}

zel::TCSVDelimiters delimiterOf(const ConvertOptions& options) {
  if (options.delimiter == "semicolon") return zel::cdSemicolon;
  if (options.delimiter == "tab") return zel::cdTab;
  const bool isOpen = options.delimiter.empty();
  return isOpen && options.outDecimalComma ? zel::cdSemicolon : zel::cdComma;
}

bool write(const Table& table, Form form, const ConvertOptions& options) {
  const zel::TDataTable& data = *table.data;
  switch (form) {
    case Form::asc:
      return data.ExportAsASC(options.out, options.precision) == 0;
    case Form::xml:
      return data.SaveAsXMLFile(options.out, options.precision, options.id);
    default:
      return data.ExportAsCSV(options.out, options.precision, delimiterOf(options), true,
                              table.hasRowNames, hasRowAttributes(data), !data.Comment().empty(),
                              options.outDecimalComma ? zel::dpsComma : zel::dpsPoint);
  }
}

/// What a file that has been written again does not say any more. Values are left out: their digits
/// are as wanted.
std::vector<std::string> differences(const Table& before, const Table& after) {
  const zel::TDataTable& a = *before.data;
  const zel::TDataTable& b = *after.data;
  const int rows = before.rows();
  const int columns = a.NrOfColumns();
  std::vector<std::string> lost;
  const auto compare = [&](const std::string& what, int n, auto&& isSame) {
    for (int i = 1; i <= n; ++i) {
      if (isSame(i)) continue;
      lost.push_back(what);
      return;
    }
  };
  if (b.NrOfColumns() > columns) return {"row names that do not differ"};
  if (b.NrOfColumns() < columns) return {"the first column, whose texts would name the rows"};
  if (a.Comment() != b.Comment()) lost.emplace_back("the comment");
  compare("names of columns", columns, [&](int c) { return a.GetColName(c) == b.GetColName(c); });
  compare("names of rows", rows, [&](int r) { return before.rowName(r) == after.rowName(r); });
  compare("attributes of columns", columns,
          [&](int c) { return a.GetColAttrib(c) == b.GetColAttrib(c); });
  compare("scales of measurement", columns,
          [&](int c) { return a.GetMScaleType(c) == b.GetMScaleType(c); });
  compare("the order of categories", columns, [&](int c) {
    for (int k = 1; k <= 150; ++k) {
      if (a.GetNominalID(c, k) != b.GetNominalID(c, k)) return false;
    }
    return true;
  });
  compare("cell states", rows, [&](int r) {
    for (int c = 1; c <= columns; ++c) {
      if (a.GetCellState(c, r) != b.GetCellState(c, r)) return false;
    }
    return true;
  });
  return lost;
}

/// What a CSV file cannot hold and is lost, found by reading it.
std::string lossesOf(const Table& table, Form form, const ConvertOptions& options) {
  std::error_code ignored;
  // A pipe would wait for ever.
  if (form != Form::csv || !std::filesystem::is_regular_file(options.out, ignored)) return {};
  const std::string name = printable(options.out);
  try {
    const auto lost = differences(table, readTable(options.out, options.outDecimalComma));
    if (!lost.empty()) {
      return name + " cannot hold " + inSentence(lost) + " of " + table.source + ", which are lost";
    }
  } catch (const Failure& failure) {
    return "it will not be read again as it is: " + std::string(failure.what());
  }
  return {};
}

/// What the table could not take from the file.
std::vector<std::string> notesOf(const Table& table) {
  std::vector<std::string> notes;
  if (!table.rowNameTitle.empty()) {
    notes.push_back("the heading " + inQuotes(table.rowNameTitle) + " of the row names is lost");
  }
  if (table.hasCustomData) notes.emplace_back("the columns of another program's data are lost");
  std::vector<std::string> names;
  for (const Column& column : table.columns) {
    if (column.isCut) names.push_back(inQuotes(column.title()));
  }
  if (!names.empty()) {
    notes.push_back("texts of more than 10 bytes are cut in " + inSentence(names));
  }
  return notes;
}

[[noreturn]] void failToWrite(const std::string& fileName) {
  const zel::WholeFileWriter again(fileName);  // it knows why, the table has only told that
  const std::error_code reason = again.Error();
  throw Failure("the file " + printable(fileName) + " was not written" +
                (reason ? ": " + reason.message() : ""));
}

}  // namespace

Result convert(const ConvertOptions& options) {
  const Form form = formOf(options.out);
  requireFittingOptions(form, options);
  requireDifferentFiles(options.file, options.out, "file");
  const Table table = readTable(options.file, options.decimalComma);
  requireWhole(table);
  if (!write(table, form, options)) failToWrite(options.out);
  std::vector<std::string> notes = notesOf(table);
  if (const std::string lost = lossesOf(table, form, options); !lost.empty()) notes.push_back(lost);
  std::string note;
  for (const std::string& each : notes) note += (note.empty() ? "" : "; ") + each;
  return {printable(options.out) + ": " + counted(table.data->NrOfColumns(), "column") + ", " +
              counted(table.rows(), "row") + '\n',
          note};
}

}  // namespace tool
