/// @file
/// Files that mix binary values and text lines.
#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include "zel/base/api.h"
#include "zel/base/streams.h"
#include "zel/base/wholefile.h"

namespace zel {

/// What ends a line of TMixedFStream::ReadLn.
inline constexpr int leCR = 1;
inline constexpr int leLF = 2;
inline constexpr int leAny = 3;   // CR, LF, CRLF or the end of the file
inline constexpr int leCRLF = 4;  // what WriteLn writes

/// A file of binary values and text lines, read back in the order in which they were written.
/// Integers are 32-bit two's complement, doubles IEEE 754, both little-endian; lines end in CRLF.
///
/// A new file takes the place of an old one only when it is complete: at Close, or when the object
/// is destroyed without an error and not by an exception.
///
/// Reading fails at the end of the file, in the middle of an item, and always after a failure. The
/// forms with a flag set it (to true or false) and return 0 or an empty text then; the forms
/// without one throw EInOutError. Writing throws EInOutError. No reader allocates more than the
/// file holds.
class ZEL_API TMixedFStream {
 public:
  /// @param Mode  fmCreate: a new file for writing; fmOpenRead: an existing file for reading
  /// @throws EInOutError  if that is impossible, or for another mode
  TMixedFStream(std::string_view FileName, int Mode);
  /// Closes the file; an error then goes unnoticed. Call Close to learn of it.
  ~TMixedFStream();
  TMixedFStream(const TMixedFStream&) = delete;
  TMixedFStream& operator=(const TMixedFStream&) = delete;

  /// True while the file is open and nothing failed.
  [[nodiscard]] bool Valid() const;
  /// True when reading and nothing is left.
  [[nodiscard]] bool EndOfFile();
  /// Completes a file that is written. Nothing can be read or written afterwards.
  /// @throws EInOutError  if not everything could be written; an old file is then untouched
  void Close();

  void WriteInteger(int i);
  void WriteDouble(double x);
  void WriteByte(std::uint8_t b);
  /// Writes a line. It may hold any bytes but the pair CRLF, which would end it.
  /// @throws EInOutError  for such a line; nothing is written and the stream stays valid
  void WriteLn(std::string_view s);
  /// Writes the length of the text in bytes as an integer, then the text as a line. Any bytes may
  /// occur, since ReadString goes by the length.
  void WriteString(std::string_view s);

  [[nodiscard]] int ReadInteger();
  [[nodiscard]] int ReadInteger(bool& fail);
  [[nodiscard]] double ReadDouble();
  [[nodiscard]] double ReadDouble(bool& fail);
  [[nodiscard]] std::uint8_t ReadByte();
  [[nodiscard]] std::uint8_t ReadByte(bool& fail);
  /// Reads a line, which is returned without its end.
  /// @param LineEnd  leCR, leLF, leAny or leCRLF; other values mean leCRLF. A line that lacks its
  ///   end is a failure, except for leAny if it is not empty.
  [[nodiscard]] std::string ReadLn(int LineEnd = leCRLF);
  [[nodiscard]] std::string ReadLn(int LineEnd, bool& fail);
  /// Reads what WriteString wrote. A negative length, or another end than CRLF, is a failure.
  [[nodiscard]] std::string ReadString();
  [[nodiscard]] std::string ReadString(bool& fail);

 private:
  void Write(std::string_view bytes);
  template <std::size_t N>
  bool Read(char* bytes);
  [[noreturn]] void Raise(const std::string& problem) const;
  void RaiseIf(bool fail) const;

  std::string FFileName;
  std::ifstream FSource;
  std::unique_ptr<WholeFileWriter> FTarget;
  int FExceptions;  // that were on their way when this object was made
};

}  // namespace zel
