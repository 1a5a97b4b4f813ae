#include "zel/statistics/plsmodel.h"

#include "zel/base/ascheader.h"

namespace zel {

int LoadPLSModelComment(std::string_view FName, std::string& Comment) {
  TASCHeader header;
  const int code = ReadHeaderOfASC(FName, header);
  Comment = header.Comment;
  return code;
}

}  // namespace zel
