/// @file
/// XML form of matrices and of arrays with more dimensions. Internal.
///
/// An element `matrix`, with the DataID in its attribute id, holds numcols, numrows (from three
/// dimensions on numplanes, with four numtimeslots), then a `cell` for each stored value, which has
/// its position in the attributes ix, iy (and iz; il and it with four dimensions). Cells that are
/// missing are 0.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zel/base/textwriter_impl.h"
#include "zel/base/wholefile.h"
#include "zel/base/xmlreader_impl.h"
#include "zel/matrix/xmlvocabulary.h"

namespace zel::detail {

/// Indices of a cell, in the order of the interface; those that are missing are 0.
using TXmlIndex = std::array<int, 4>;

/// An integer: blanks, a sign, digits up to the first other character; 0 without digits, limited to
/// the range.
[[nodiscard]] int XmlIntegerIn(std::string_view text);
/// The value of a cell; nothing if there is none.
[[nodiscard]] bool XmlValueIn(std::string_view content, double& value);
[[nodiscard]] bool XmlValueIn(std::string_view content, int& value);
/// The indices in the attributes of a cell.
[[nodiscard]] TXmlIndex XmlIndexIn(std::string_view attr, int rank);

/// What a tag of a matrix does while it is read, see ProcessXmlTag of the classes.
/// @param resize  resize(counts), called for the first cell
/// @param store   store(index, value)
template <class T, class Resize, class Store>
int ProcessXmlTag(int rank, TMatXmlTag tag, std::string_view attr, std::string_view content,
                  TXmlState& state, bool& isFirstCell, Resize&& resize, Store&& store) {
  switch (tag) {
    case xmlMatNumCols:
    case xmlMatNumRows:
    case xmlMatNumLayers:
    case xmlMatNumTimeSlots:
      state.Counts[tag] = XmlIntegerIn(content);
      isFirstCell = true;
      return 0;
    case xmlMatCell: {
      if (isFirstCell) {
        isFirstCell = false;
        resize(state.Counts);
      }
      T value{};
      if (!XmlValueIn(content, value)) return -1;
      store(XmlIndexIn(attr, rank), value);
      return 0;
    }
    case xmlMatBegin:
      state = {};
      isFirstCell = true;
      return 0;
    case xmlMatEnd:
      return 1;
    default:
      return -1;
  }
}

/// A matrix as it is read. Holds no more than its text bears out, whatever the announced size is.
template <class T>
class TXmlMatrix {
 public:
  explicit TXmlMatrix(int rank) : FRank(rank) {}

  /// Reads the first matrix with an identifier, or the first one if that is empty, whatever it
  /// stands in. The reader is left behind the matrix, or where it turned out to be damaged.
  /// @return false if there is no such matrix, or it is damaged: an unknown tag, no closing tag, a
  ///   cell that is no number, sizes that cannot be
  /// @throws std::bad_alloc
  [[nodiscard]] bool Read(XmlReader& reader, std::string_view id);

  [[nodiscard]] const std::string& ID() const { return FID; }
  /// Number of columns, rows, layers, time slots; those that the rank lacks are 1.
  [[nodiscard]] int Count(std::size_t dim) const { return FCounts[dim]; }
  [[nodiscard]] std::uint64_t Size() const { return FSize; }
  /// Cells that were there.
  [[nodiscard]] std::uint64_t Cells() const { return FValues.size() + FOthers.size(); }
  /// The text bears an array of that size out, or one that is no larger than what is held already.
  [[nodiscard]] bool IsBorneOut(std::uint64_t held) const;
  /// Stores the cells in an array of that size, which is 0 everywhere.
  void Store(T* elements) const;
  /// The cells with their places in the storage, ascending, of equal places the last one.
  /// @throws std::bad_alloc
  [[nodiscard]] std::vector<std::pair<std::uint64_t, T>> Sorted() const;

 private:
  [[nodiscard]] bool TakeTags(XmlReader& reader);
  [[nodiscard]] bool TakeSize(const std::array<int, 4>& counts);
  void TakeCell(const TXmlIndex& at, T value);

  int FRank;
  std::string FID;
  std::array<int, 4> FCounts{};
  std::uint64_t FSize = 0;
  std::vector<T> FValues;  ///< of the first places of the storage
  std::vector<std::pair<std::uint64_t, T>> FOthers;
};

extern template class TXmlMatrix<double>;
extern template class TXmlMatrix<int>;

/// Writes a matrix, cell by cell.
class TXmlMatrixWriter : TextWriter {
 public:
  /// @param counts  as many as there are dimensions
  /// @param id      empty: that of the object
  TXmlMatrixWriter(std::ostream& out, bool createHeader, std::string_view id,
                   std::string_view objectId, std::span<const int> counts);
  /// @return false if no more can be written
  bool Cell(const TXmlIndex& at, double value);
  bool Cell(const TXmlIndex& at, int value);
  void End();

 private:
  void Open(const TXmlIndex& at);
  bool Close();

  int FRank;
};

/// The file forms in terms of the stream forms.
template <class Object>
[[nodiscard]] bool SaveXmlFile(const Object& object, std::string_view fileName,
                               std::string_view id) {
  WholeFileWriter file(fileName);
  if (file.IsOpen()) object.WriteToOpenXMLFile(file.Stream(), true, id);
  return file.Commit();
}
template <class Object>
[[nodiscard]] bool LoadXmlFile(Object& object, std::string_view fileName, std::string_view id) {
  std::ifstream file;
  return OpenForReading(file, fileName) && object.ReadFromOpenXMLFile(file, id);
}

}  // namespace zel::detail
