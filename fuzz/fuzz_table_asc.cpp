// Tables in the ASC form: what is read fits into the file, and is read again as it was from what is
// written of it.
#include <sstream>
#include <string>

#include "fuzz/target.h"
#include "zel/datatable/asc_form_impl.h"

namespace zel_fuzz {

int FuzzTableAsc(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = textOf(data, size);
  zel::detail::TASCTable table;
  std::string message;
  const int result = zel::detail::ReadTableASC(text, table, message);
  require(message.empty() == (result == 0), "a failure has a message");
  if (result != 0) {
    require(result >= -9 && result <= 4, "the result is a described one");
    return 0;
  }
  const auto& contents = table.Contents;
  require(2 * contents.Values.size() <= size, "a value takes at least two bytes");
  require(3 * table.CustData.size() <= size, "a text takes at least three bytes");

  const auto write = [](const zel::detail::TASCTable& from) {
    std::ostringstream out;
    const zel::detail::TTableView view{from.Contents, from.Contents.Values.data()};
    zel::detail::WriteTableASC(out, view, "", -1, from.CustData);
    return std::move(out).str();
  };
  const std::string written = write(table);
  zel::detail::TASCTable again;
  require(zel::detail::ReadTableASC(written, again, message) == 0, "what is written can be read");
  require(write(again) == written, "what is read again is the same");
  require(
      again.Contents.FComment == contents.FComment && again.CustData == table.CustData &&
          again.Contents.FVType == contents.FVType && again.Contents.FCState == contents.FCState &&
          again.Contents.FColName == contents.FColName &&
          again.Contents.FRowName == contents.FRowName &&
          again.Contents.FRowAtt == contents.FRowAtt && again.Contents.FColAtt == contents.FColAtt,
      "all of it");
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(table_asc, zel_fuzz::FuzzTableAsc)
