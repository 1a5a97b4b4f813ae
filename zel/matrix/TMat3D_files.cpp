// TMat3D: binary files, XML.
#include <array>
#include <utility>

#include "zel/base/wholefile.h"
#include "zel/matrix/binary_arrays_impl.h"
#include "zel/matrix/mat3d_impl.h"
#include "zel/matrix/xml_form_impl.h"

namespace zel {

void TMat3D::TakeAll(TDouble3DArray& contents, std::string_view id) {
  std::string newId = Guarded([&] { return std::string(id); });
  const bool resized = std::pair(contents.Length(0), contents.Length(1)) !=
                           std::pair(Mat.Length(0), Mat.Length(1)) ||
                       contents.Length(2) != Mat.Length(2);
  Mat.swap(contents);
  FNumX = static_cast<int>(Mat.Length(0));
  FNumY = static_cast<int>(Mat.Length(1));
  FNumZ = static_cast<int>(Mat.Length(2));
  FDataID.swap(newId);
  if (resized) Changed();
  Changed();
}

bool TMat3D::ReadBinaryHeader(std::string_view FName, int& NrColumns, int& NrRows, int& NrLayers,
                              int& NrTimeSlots, std::string& DataID, int& Format) {
  const detail::TBinaryReader reader(FName);
  return reader.Header().Give(NrColumns, NrRows, NrLayers, NrTimeSlots, DataID, Format).Is3D();
}

int TMat3D::SaveBinary(std::string_view FName) const {
  return Guarded([&] { return detail::SaveBinaryArray(FName, Mat, FDataID) ? 0 : -1; });
}

int TMat3D::LoadBinary(std::string_view FName) {
  TDouble3DArray read;
  std::string id;
  if (!Guarded([&] { return detail::LoadBinaryArray(FName, read, id); })) return -1;
  TakeAll(read, id);
  return 0;
}

bool TMat3D::SaveAsXMLFile(std::string_view FName, std::string_view DataID) const {
  return Guarded([&] { return detail::SaveXmlFile(*this, FName, DataID); });
}

void TMat3D::WriteToXMLStream(std::ostream& OutStream, bool CreateHeader,
                              std::string_view DataID) const {
  Guarded([&] {
    detail::TXmlMatrixWriter xml(OutStream, CreateHeader, DataID, FDataID,
                                 std::array{FNumX, FNumY, FNumZ});
    for (int x = 1; x <= FNumX; ++x) {
      for (int y = 1; y <= FNumY; ++y) {
        for (int z = 1; z <= FNumZ; ++z) {
          if (!xml.Cell({x, y, z}, GetVal(x, y, z))) return;
        }
      }
    }
    xml.End();
  });
}

void TMat3D::WriteToOpenXMLFile(std::ostream& TextFile, bool CreateHeader,
                                std::string_view DataID) const {
  WriteToXMLStream(TextFile, CreateHeader, DataID);
}

bool TMat3D::LoadFromXMLFile(std::string_view FName, std::string_view DataID) {
  return Guarded([&] { return detail::LoadXmlFile(*this, FName, DataID); });
}

bool TMat3D::ReadFromXMLStream(std::istream& InStream, std::string_view DataID) {
  detail::TXmlMatrix<double> read(3);
  TDouble3DArray contents;
  const bool isRead = Guarded([&] {
    detail::XmlReader reader(InStream);
    if (!read.Read(reader, DataID) || !read.IsBorneOut(Mat.size())) return false;
    contents.SetLength(read.Count(0), read.Count(1), read.Count(2));
    read.Store(contents.data());
    return true;
  });
  if (isRead) TakeAll(contents, read.ID());
  return isRead;
}

bool TMat3D::ReadFromOpenXMLFile(std::istream& TextFile, std::string_view DataID) {
  return ReadFromXMLStream(TextFile, DataID);
}

int TMat3D::ProcessXmlTag(TMatXmlTag Tag, std::string_view Attr, std::string_view Content) {
  return detail::ProcessXmlTag<double>(
      3, Tag, Attr, Content, FXmlState, FirstCell,
      [&](const auto& counts) { Resize(counts[0], counts[1], counts[2]); },
      [&](const detail::TXmlIndex& at, double value) { SetVal(at[0], at[1], at[2], value); });
}

}  // namespace zel
