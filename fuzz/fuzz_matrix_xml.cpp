// XML of matrices and arrays: no more cells than the text has, and what is written is read again.
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/target.h"
#include "zel/matrix/xml_form_impl.h"

namespace zel_fuzz {
namespace {

template <class T>
void readMatrix(const std::string& text, int rank) {
  std::istringstream in(text);
  std::size_t pos = 0;
  zel::detail::TXmlMatrix<T> read(rank);
  zel::detail::TXmlMatrix<T> fromString(rank);
  zel::detail::XmlReader stream(in);
  zel::detail::XmlReader string(text, pos);
  const bool isRead = read.Read(stream, "");
  require(isRead == fromString.Read(string, ""), "stream and string agree");
  if (!isRead) return;
  require(read.Cells() <= text.size() / 5, "each cell stands in the text");
  const auto cells = read.Sorted();
  for (std::size_t k = 0; k < cells.size(); ++k) {
    require(cells[k].first < read.Size(), "each cell lies in the array");
    require(k == 0 || cells[k - 1].first < cells[k].first, "none is there twice");
  }
  // Filling large arrays would only make the search slow.
  if (read.Size() > 4096) return;
  std::vector<T> elements(static_cast<std::size_t>(read.Size()) + 1);
  read.Store(elements.data());
  std::vector<int> counts;
  for (int d = 0; d < rank; ++d) counts.push_back(read.Count(static_cast<std::size_t>(d)));
  std::stringstream out;
  zel::detail::TXmlMatrixWriter xml(out, true, read.ID(), "", counts);
  const auto at = [&](std::size_t place) {
    zel::detail::TXmlIndex index{};
    for (int k = rank - 1; k >= 0; --k) {
      const auto d = static_cast<std::size_t>(rank == 4 ? 3 - k : k);
      index[d] = static_cast<int>(place % static_cast<std::size_t>(counts[d])) + 1;
      place /= static_cast<std::size_t>(counts[d]);
    }
    return index;
  };
  for (std::size_t k = 0; k < read.Size(); ++k) xml.Cell(at(k), elements[k]);
  xml.End();
  zel::detail::TXmlMatrix<T> again(rank);
  zel::detail::XmlReader reader(out);
  require(again.Read(reader, read.ID()) && again.Size() == read.Size(), "written XML reads");
  std::vector<T> same(elements.size());
  again.Store(same.data());
  for (std::size_t k = 0; k < same.size(); ++k) {
    require(same[k] == elements[k] || elements[k] != elements[k], "the same elements");
  }
}

}  // namespace

int FuzzMatrixXml(const std::uint8_t* data, std::size_t size) {
  const std::string text(textOf(data, size));
  for (const int rank : {2, 3, 4}) readMatrix<double>(text, rank);
  readMatrix<int>(text, 2);
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(matrix_xml, zel_fuzz::FuzzMatrixXml)
