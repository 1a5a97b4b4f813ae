#include "zel/vector/export_asc_impl.h"

#include <string>

#include "zel/base/Zel_filesys.h"
#include "zel/base/ascheader_impl.h"

namespace zel::detail {

int ExportVectorASC(std::string_view fileName, std::string_view className, std::string_view comment,
                    int count, const std::function<void(std::ostream&)>& rows) {
  WholeFileWriter file(fileName);
  if (!file.IsOpen()) return -1;
  const std::string flags = std::string("FALSE FALSE FALSE FALSE").append(kASCLegend);
  WriteASCHeader(file.Stream(), className, fileName, comment, 1, count, flags);
  rows(file.Stream());
  return file.Commit() ? 0 : -1;
}

bool StoreNumberFile(std::string_view fileName, int first, int last,
                     const std::function<void(std::ostream&)>& values) {
  WholeFileWriter file(fileName);
  if (!file.IsOpen()) return false;
  file.Stream() << first << ' ' << last << '\n';
  values(file.Stream());
  // The file could be created, which is what the result tells; what fails later leaves an old file.
  static_cast<void>(file.Commit());
  return true;
}

}  // namespace zel::detail
