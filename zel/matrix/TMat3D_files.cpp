// TMat3D: binary files, XML.
#include <algorithm>
#include <array>
#include <vector>

#include "zel/base/wholefile.h"
#include "zel/matrix/binary_form_impl.h"
#include "zel/matrix/mat3d_impl.h"
#include "zel/matrix/xml_form_impl.h"

namespace zel {

namespace {

/// Calls use(z, n, planes) for groups of layers, z from 0: planes has room for n of them in the
/// order of the file. Neighbouring layers share cache lines of the storage.
/// @throws std::bad_alloc
template <class Use>
void forLayerGroups(std::size_t columns, std::size_t rows, std::size_t layers, Use&& use) {
  constexpr std::size_t kMost = std::size_t{1} << 20;
  const std::size_t plane = columns * rows;
  const std::size_t together = std::clamp<std::size_t>(kMost / plane, 1, 8);
  std::vector<double> planes(std::min(together, layers) * plane);
  for (std::size_t z = 0; z < layers; z += together) {
    const std::size_t n = std::min(together, layers - z);
    use(z, n, std::span(planes).first(n * plane));
  }
}

/// Calls move(cells, places) for the n layers from z on of each pixel: they lie together in the
/// storage and at places[k * plane] in the planes.
template <class Array, class Move>
void forPixels(Array& array, std::size_t z, double* planes, Move&& move) {
  const std::size_t columns = array.Length(0);
  const std::size_t rows = array.Length(1);
  for (std::size_t x = 0; x < columns; ++x) {
    for (std::size_t y = 0; y < rows; ++y) {
      move(&array(x, y, z), planes + y * columns + x);
    }
  }
}

}  // namespace

void TMat3D::TakeAll(TDouble3DArray& contents, std::string_view id) {
  std::string newId(id);
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
  const std::size_t plane = Mat.Length(0) * Mat.Length(1);
  return Guarded([&] {
    WholeFileWriter file(FName);
    if (!file.IsOpen()) return -1;
    detail::TBinaryWriter writer(file.Stream(), {FNumX, FNumY, FNumZ, 0, std::string_view(FDataID),
                                                 detail::kDoubleElements});
    forLayerGroups(Mat.Length(0), Mat.Length(1), Mat.Length(2),
                   [&](std::size_t z, std::size_t n, std::span<double> planes) {
                     if (!file.Stream()) return;
                     forPixels(Mat, z, planes.data(), [&](const double* cells, double* places) {
                       for (std::size_t k = 0; k < n; ++k) places[k * plane] = cells[k];
                     });
                     writer.Write(planes);
                   });
    writer.Finish();
    return file.Commit() ? 0 : -1;
  });
}

int TMat3D::LoadBinary(std::string_view FName) {
  TDouble3DArray read;
  std::string id;
  const bool isLoaded = Guarded([&] {
    detail::TBinaryReader reader(FName);
    const detail::TBinaryHeader& header = reader.Header();
    if (!header.Is3D() || header.TimeSlotSize() == 0) return false;
    reader.Seek(0, header.TimeSlotSize());
    read.SetLength(header.Columns, header.Rows, header.Layers);
    const std::size_t plane = read.Length(0) * read.Length(1);
    forLayerGroups(read.Length(0), read.Length(1), read.Length(2),
                   [&](std::size_t z, std::size_t n, std::span<double> planes) {
                     reader.Read(planes);
                     forPixels(read, z, planes.data(), [&](double* cells, const double* places) {
                       for (std::size_t k = 0; k < n; ++k) cells[k] = places[k * plane];
                     });
                   });
    id = header.DataID;
    return true;
  });
  if (!isLoaded) return -1;
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
  return detail::LoadXmlFile(*this, FName, DataID);
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
