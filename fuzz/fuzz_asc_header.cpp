// The header of the ASC format, then names, words and numbers. An accepted header must survive
// being written in the library's own form and read again.
#include <sstream>
#include <string>

#include "fuzz/target.h"
#include "zel/base/Zel_filesys.h"
#include "zel/base/Zel_stringl.h"

namespace zel_fuzz {
namespace {

struct Header {
  std::string comment;
  int columns = -1;
  int rows = -1;
  bool flags[4] = {};
  int read(std::istream& in) {
    return zel::ReadHeaderOfASC(in, comment, columns, rows, flags[0], flags[1], flags[2], flags[3]);
  }
  bool operator==(const Header&) const = default;
};

}  // namespace

int FuzzAscHeader(const std::uint8_t* data, std::size_t size) {
  const std::string text(textOf(data, size));
  std::istringstream in(text);
  Header header;
  const int result = header.read(in);
  require(result >= 0 && result <= 4, "the result is 0 or a line number");
  require(header.columns >= 0 && header.rows >= 0, "counts are not negative");
  if (result == 0) {
    std::ostringstream out;
    out << header.comment << "\r\n"
        << header.columns << "\t;nr. of columns\r\n"
        << header.rows << "\t;nr. of rows\r\n";
    for (const bool flag : header.flags) out << (flag ? "TRUE " : "FALSE ");
    out << "\t;legend\r\n";
    std::istringstream again(out.str());
    Header copy;
    require(copy.read(again) == 0 && copy == header, "a written header reads the same");
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
