#include "zel/base/wholefile.h"
#include "zel/datatable/csv_form_impl.h"
#include "zel/datatable/guards_impl.h"

namespace zel {

int TDataTable::ReadText(std::string_view text, TCSVImport& import) {
  detail::TTableContents contents(0, 0);
  const int code = Guarded([&] { return detail::ReadCSV(text, import, contents); });
  if (code == 0) TakeContents(std::move(contents));
  return code;
}

int TDataTable::ImportFromCSV(std::istream& InStream, TCSVImport& Import) {
  const auto text = Guarded([&] { return ReadWholeStream(InStream); });
  if (text) return ReadText(*text, Import);
  Import.Message = "the stream cannot be read";
  return -1;
}

int TDataTable::ImportFromCSV(std::string_view FName, TCSVDelimiters Delimiter,
                              bool IncludeColHeaders, bool IncludeRowHeaders, TDecPSep DecSep,
                              std::string& Message) {
  const auto text = Guarded([&] { return ReadWholeFile(FName); });
  if (!text) {
    Message = "the file cannot be read";
    return -1;
  }
  TCSVImport import;
  import.Delimiter = Delimiter;
  import.IncludeColHeaders = IncludeColHeaders;
  import.IncludeRowHeaders = IncludeRowHeaders;
  import.DecSep = DecSep;
  const int code = ReadText(*text, import);
  if (code != 0) Message = std::move(import.Message);
  return code;
}

int TDataTable::ImportFromCSV(std::string_view FName, TCSVDelimiters Delimiter,
                              bool IncludeColHeaders, bool IncludeRowHeaders, TDecPSep DecSep) {
  std::string ignored;
  return ImportFromCSV(FName, Delimiter, IncludeColHeaders, IncludeRowHeaders, DecSep, ignored);
}

bool TDataTable::ExportAsCSV(std::string_view FName, int Precision, TCSVDelimiters Delimiter,
                             bool IncludeColHeaders, bool IncludeRowHeaders,
                             bool IncludeRowAttributes, bool IncludeComment,
                             TDecPSep DecSep) const {
  detail::TCSVExport how;
  how.Precision = Precision;
  how.Delimiter = detail::DelimiterOf(Delimiter, {});
  how.IncludeColHeaders = IncludeColHeaders;
  how.IncludeRowHeaders = IncludeRowHeaders;
  how.IncludeRowAttributes = IncludeRowAttributes;
  how.IncludeComment = IncludeComment;
  how.DecSep = DecSep;
  return Guarded([&] {
    WholeFileWriter file(FName);
    WithView([&](const detail::TTableView& table) { detail::WriteCSV(file.Stream(), table, how); });
    return file.Commit();
  });
}

}  // namespace zel
