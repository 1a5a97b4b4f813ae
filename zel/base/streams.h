/// @file
/// Memory and file streams, and binary items in them. All items are little-endian on every
/// platform.
#pragma once

#include <fstream>
#include <istream>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>

#include "zel/base/api.h"
#include "zel/base/types.h"

namespace zel {

/// Ways to open a file.
inline constexpr int fmCreate = 0xFF00;  // create, or empty an existing file
inline constexpr int fmOpenRead = 0;
inline constexpr int fmOpenWrite = 1;      // existing file, content kept
inline constexpr int fmOpenReadWrite = 2;  // existing file, content kept

/// Binary stream in memory for writing and reading; the two positions are independent.
class ZEL_API TMemoryStream : public std::stringstream {
 public:
  TMemoryStream();
  /// Starts with the given bytes; writing starts at their end, reading at the first one.
  explicit TMemoryStream(std::string_view bytes);
  ~TMemoryStream() override;
};

/// Binary stream on a file. What it writes goes into the file at once, unlike WholeFileWriter.
class ZEL_API TFileStream : public std::fstream {
 public:
  /// @param Mode  fmCreate, fmOpenRead, fmOpenWrite or fmOpenReadWrite; further low bits are
  /// ignored.
  ///   fmOpenWrite also needs the permission to read.
  /// @throws EInOutError  if the file cannot be opened so; a folder never can
  TFileStream(std::string_view FileName, int Mode);
  ~TFileStream() override;
};

/// Appends the ten bytes of the 80-bit extended format: 64-bit significand with explicit leading
/// bit, sign and 15-bit exponent. Exact where Extended has that format, rounded to it (ties to
/// even) where Extended is wider.
ZEL_API void WriteExtendedToStream(std::ostream& s, Extended x);
/// Appends four bytes, two's complement.
ZEL_API void WriteLongintToStream(std::ostream& s, int i);

/// Reads what WriteExtendedToStream wrote. Bytes that encode no number (leading bit missing) give
/// not-a-number. Where Extended is narrower than 80 bits the value is rounded.
/// @param fail  true if fewer than ten bytes were left, false otherwise; the result is then 0
[[nodiscard]] ZEL_API Extended ReadExtendedFromStream(std::istream& s, bool& fail);
/// Reads what WriteLongintToStream wrote.
/// @param fail  true if fewer than four bytes were left, false otherwise; the result is then 0
[[nodiscard]] ZEL_API int ReadLongintFromStream(std::istream& s, bool& fail);

}  // namespace zel
