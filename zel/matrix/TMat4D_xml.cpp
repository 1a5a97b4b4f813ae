// TMat4D: XML.
#include <array>

#include "zel/matrix/mat4d_impl.h"
#include "zel/matrix/xml_form_impl.h"

namespace zel {

bool TMat4D::SaveAsXMLFile(std::string_view FName, std::string_view DataID) const {
  return Guarded([&] { return detail::SaveXmlFile(*this, FName, DataID); });
}

void TMat4D::WriteToOpenXMLFile(std::ostream& TextFile, bool CreateHeader,
                                std::string_view DataID) const {
  Guarded([&] {
    detail::TXmlMatrixWriter xml(TextFile, CreateHeader, DataID, FDataID,
                                 std::array{FNumX, FNumY, FNumZ, FNumT});
    for (int t = 1; t <= FNumT; ++t) {
      for (int z = 1; z <= FNumZ; ++z) {
        for (int y = 1; y <= FNumY; ++y) {
          for (int x = 1; x <= FNumX; ++x) {
            if (!xml.Cell({x, y, z, t}, GetVal(x, y, z, t))) return;
          }
        }
      }
    }
    xml.End();
  });
}

bool TMat4D::LoadFromXMLFile(std::string_view FName, std::string_view DataID) {
  return Guarded([&] { return detail::LoadXmlFile(*this, FName, DataID); });
}

bool TMat4D::ReadFromOpenXMLFile(std::istream& TextFile, std::string_view DataID) {
  detail::TXmlMatrix<double> read(4);
  TDouble4DArray contents;
  const bool isRead = Guarded([&] {
    detail::XmlReader reader(TextFile);
    if (!read.Read(reader, DataID) || !read.IsBorneOut(Mat.size())) return false;
    contents.SetLength(read.Count(3), read.Count(2), read.Count(1), read.Count(0));
    read.Store(contents.data());
    return true;
  });
  if (isRead) TakeAll(contents, read.ID());
  return isRead;
}

int TMat4D::ProcessXmlTag(TMatXmlTag Tag, std::string_view Attr, std::string_view Content) {
  return detail::ProcessXmlTag<double>(
      4, Tag, Attr, Content, FXmlState, FirstCell,
      [&](const auto& counts) { Resize(counts[0], counts[1], counts[2], counts[3]); },
      [&](const detail::TXmlIndex& at, double value) {
        SetVal(at[0], at[1], at[2], at[3], value);
      });
}

}  // namespace zel
