/// @file
/// Tags of the XML form of matrices and of arrays with more dimensions.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace zel {

/// The last one, any tag that is none of these, is xmlInvalid inside the classes of this unit;
/// other units have enumerations with an xmlInvalid of their own.
enum TMatXmlTag : std::uint8_t {
  xmlMatNumCols,
  xmlMatNumRows,
  xmlMatNumLayers,
  xmlMatNumTimeSlots,
  xmlMatCell,
  xmlMatBegin,
  xmlMatEnd,
  xmlMatInvalid
};

/// Names of the tags, by TMatXmlTag, as the readers of tags take them. The last stands for every
/// other tag.
inline constexpr std::array<std::string_view, 8> MatXmlTagNames = {
    "numcols", "numrows", "numplanes", "numtimeslots", "cell", "matrix", "/matrix", "invalidtag"};

namespace detail {

/// What a class knows between the tags of a matrix that is read.
struct TXmlState {
  std::array<int, 4> Counts{};  ///< announced: columns, rows, layers, time slots
};

}  // namespace detail

}  // namespace zel
