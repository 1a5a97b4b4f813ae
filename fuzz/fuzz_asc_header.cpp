// The header of the ASC format, then names, words and numbers. An accepted header must survive
// being written in the library's own form and read again.
#include <sstream>
#include <string>

#include "fuzz/target.h"
#include "zel/base/Zel_filesys.h"
#include "zel/base/Zel_stringl.h"

namespace zel_fuzz {

int FuzzAscHeader(const std::uint8_t* data, std::size_t size) {
  const std::string text(textOf(data, size));
  std::istringstream in(text);
  zel::TASCHeader header;
  const int result = zel::ReadHeaderOfASC(in, header);
  require(result >= 0 && result <= 4, "the result is 0 or a line number");
  require(header.NCols >= 0 && header.NRows >= 0, "counts are not negative");
  if (result == 0) {
    std::ostringstream out;
    out << header.Comment << "\r\n"
        << header.NCols << "\t;nr. of columns\r\n"
        << header.NRows << "\t;nr. of rows\r\n";
    for (const bool flag : {header.RowAttr, header.ColNames, header.RowNames, header.Nominal}) {
      out << (flag ? "TRUE " : "FALSE ");
    }
    out << "\t;legend\r\n";
    std::istringstream again(out.str());
    zel::TASCHeader copy;
    require(zel::ReadHeaderOfASC(again, copy) == 0 && copy == header,
            "a written header reads the same");
  }
  std::size_t read = 0;
  while (in.good()) {
    std::string name;
    double x = 0;
    static_cast<void>(zel::ReadQuotedName(in, '"', name));
    read += name.size() + zel::ReadNextWordInTextFile(in).size();
    static_cast<void>(zel::ReadNumber(in, x));
  }
  require(read <= size, "no more is read than there is");
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(asc_header, zel_fuzz::FuzzAscHeader)
