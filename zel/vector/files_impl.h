/// @file
/// TNumVector: streams, number files, the ASC reader. Included by vectorbase.cpp only.
#pragma once

#include <fstream>
#include <limits>
#include <type_traits>
#include <utility>

#include "zel/base/Zel_filesys.h"
#include "zel/base/Zel_streams.h"
#include "zel/base/Zel_stringl.h"
#include "zel/base/numbertext.h"
#include "zel/base/rounding.h"
#include "zel/vector/vectorbase.h"

namespace zel {
namespace detail {

/// Positions beyond what a source holds that a resize to its announced size may still add: enough
/// for a record of a late part of a long vector, little enough for a forged one.
inline constexpr std::int64_t kUnbackedPositions = std::int64_t{1} << 24;

/// A number of a file as an element: integers are rounded, ties to even, and limited.
template <class T>
T ElementFrom(double x) {
  if constexpr (std::is_integral_v<T>) {
    return RoundToInt<T>(x);
  } else {
    return x;
  }
}

template <class T>
void WriteItem(std::ostream& stream, T x) {
  if constexpr (std::is_integral_v<T>) {
    WriteLongintToStream(stream, x);
  } else {
    WriteExtendedToStream(stream, x);
  }
}

template <class T>
T ReadItem(std::istream& stream, bool& fail) {
  if constexpr (std::is_integral_v<T>) {
    return ReadLongintFromStream(stream, fail);
  } else {
    return static_cast<T>(ReadExtendedFromStream(stream, fail));
  }
}

template <class T>
int ReadBound(std::istream& stream, bool& fail) {
  if constexpr (std::is_integral_v<T>) {
    return ReadLongintFromStream(stream, fail);
  } else {
    return RoundToInt<int>(ReadExtendedFromStream(stream, fail));
  }
}

}  // namespace detail

template <class T>
void TNumVector<T>::SaveToStream(std::unique_ptr<TMemoryStream>& OutStream, int LowElem,
                                 int HighElem) const {
  if (!OutStream) OutStream = std::make_unique<TMemoryStream>();
  SaveToStream(static_cast<std::ostream&>(*OutStream), LowElem, HighElem);
}

template <class T>
void TNumVector<T>::SaveToStream(std::ostream& OutStream, int LowElem, int HighElem) const {
  MakeValidElemRange(LowElem, HighElem);
  detail::WriteItem<T>(OutStream, static_cast<T>(LowElem));
  detail::WriteItem<T>(OutStream, static_cast<T>(HighElem));
  for (const T x : Range(LowElem, HighElem)) detail::WriteItem<T>(OutStream, x);
}

template <class T>
template <class Next>
void TNumVector<T>::ReadPositions(int LowElem, int HighElem, TPositions& read, Next&& next) const {
  try {
    for (std::int64_t position = LowElem; position <= HighElem; ++position) {
      T value{};
      const TReadResult result = next(value);
      if (result == TReadResult::ended) break;
      if (position < 1) continue;
      if (result == TReadResult::bad) read.gaps.push_back(read.values.size());
      read.values.push_back(value);
    }
  } catch (const std::bad_alloc&) {
    Raise<EZELVectorError>("\": not enough memory");
  }
}

template <class T>
void TNumVector<T>::StoreQuietly(std::size_t first, const TPositions& read) {
  auto gap = read.gaps.begin();
  for (std::size_t k = 0; k < read.values.size(); ++k) {
    if (gap != read.gaps.end() && *gap == k) {
      ++gap;
    } else if (first + k < FVec.size()) {
      FVec[first + k] = read.values[k];
      FIsEmpty = false;
    }
  }
}

template <class T>
bool TNumVector<T>::ResizeForPositions(int HighElem, bool AdjustVectorSize, std::size_t held) {
  if (AdjustVectorSize) {
    const auto backed = static_cast<std::int64_t>(held) + detail::kUnbackedPositions;
    if (HighElem <= std::max<std::int64_t>(backed, NrOfElem())) Resize(HighElem);
  }
  return HighElem <= NrOfElem();
}

// The values are read before the vector is resized: what the source holds, not what it announces,
// decides how much is allocated.
template <class T>
bool TNumVector<T>::LoadFromStream(std::istream* InStream, bool AdjustVectorSize) {
  if (!InStream) return false;
  bool fail = false;
  const int low = detail::ReadBound<T>(*InStream, fail);
  if (fail) return false;
  const int high = detail::ReadBound<T>(*InStream, fail);
  if (fail) return false;

  TPositions read;
  bool complete = true;
  if (AdjustVectorSize || high <= NrOfElem()) {
    ReadPositions(low, high, read, [&](T& value) {
      value = detail::ReadItem<T>(*InStream, fail);
      complete = !fail;
      return fail ? TReadResult::ended : TReadResult::good;
    });
  }
  const bool fits = ResizeForPositions(high, AdjustVectorSize, read.values.size());
  if (fits) {
    StoreEach(std::max(low, 1), read.values.size(), [&](std::size_t k) { return read.values[k]; });
  }
  Changed();
  return fits && complete;
}

template <class T>
bool TNumVector<T>::LoadFromFile(std::string_view FileName, bool AdjustVectorSize) {
  std::ifstream file;
  double low = 0;
  double high = 0;
  if (!OpenForReading(file, FileName) || !ReadNumber(file, low) || !ReadNumber(file, high))
    return false;
  const int lowElem = RoundToInt<int>(low);
  const int highElem = RoundToInt<int>(high);

  TPositions read;
  if (AdjustVectorSize || highElem <= NrOfElem()) {
    ReadPositions(lowElem, highElem, read, [&](T& value) { return ReadWord(file, value); });
  }
  const bool fits = ResizeForPositions(highElem, AdjustVectorSize, read.values.size());
  if (fits) StoreQuietly(static_cast<std::size_t>(std::max(lowElem, 1) - 1), read);
  Changed();
  return fits;
}

template <class T>
typename TNumVector<T>::TReadResult TNumVector<T>::ReadWord(std::istream& file, T& value) {
  const std::string word = ReadNextWordInTextFile(file);
  if (word.empty()) return TReadResult::ended;
  const auto number = ParseNumber(word);
  if (!number) return TReadResult::bad;
  value = detail::ElementFrom<T>(*number);
  return TReadResult::good;
}

template <class T>
int TNumVector<T>::ImportASC(std::string_view FName, std::string& Comment) {
  constexpr int badAttribute = -5;
  constexpr int badValue = -6;
  constexpr int tooManyColumns = -7;
  constexpr int noSuchFile = -8;
  if (!FileExists(FName)) return noSuchFile;
  std::ifstream file;
  if (!OpenForReading(file, FName)) return -1;
  TASCHeader header;
  const int headerResult = ReadHeaderOfASC(file, header);
  Comment = std::move(header.Comment);
  if (headerResult != 0) return headerResult;
  if (header.NCols > 1) return tooManyColumns;

  const auto skipName = [&] {
    std::string name;
    ReadQuotedName(file, '"', name);
  };
  if (header.ColNames && header.NCols == 1) skipName();

  TPositions read;
  int result = 0;
  ReadPositions(1, header.NRows, read, [&](T& value) {
    if (double attribute = 0; header.RowAttr && !ReadNumber(file, attribute)) {
      result = badAttribute;
      return TReadResult::ended;
    }
    if (header.RowNames) skipName();
    const std::string word = ReadNextWordInTextFile(file);
    if (word == "NAN" || word == "###") {
      value = 0;
      return TReadResult::good;
    }
    const auto number = ParseNumber(word);
    if (!number) {
      result = badValue;
      return TReadResult::ended;
    }
    value = detail::ElementFrom<T>(*number);
    return TReadResult::good;
  });
  if (file.bad()) throw EInOutError("ImportASC: error while reading " + std::string(FName));

  // A failing row counts: the vector ends with it, and its element is what it was before.
  Resize(result == 0 ? header.NRows : static_cast<int>(read.values.size()) + 1);
  StoreQuietly(0, read);
  Changed();
  return result;
}

}  // namespace zel
