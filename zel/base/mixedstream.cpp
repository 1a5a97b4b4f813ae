#include "zel/base/mixedstream.h"

#include <algorithm>
#include <array>
#include <bit>
#include <exception>
#include <limits>

#include "zel/base/errors.h"
#include "zel/base/littleendian_impl.h"

namespace zel {

TMixedFStream::TMixedFStream(std::string_view FileName, int Mode)
    : FFileName(FileName), FExceptions(std::uncaught_exceptions()) {
  if (Mode == fmCreate) {
    FTarget = std::make_unique<WholeFileWriter>(FileName);
    if (!FTarget->IsOpen()) Raise("cannot create file: " + FTarget->Error().message());
  } else if (Mode == fmOpenRead) {
    if (!OpenForReading(FSource, FileName)) Raise("cannot open file");
  } else {
    Raise("unknown mode");
  }
}

TMixedFStream::~TMixedFStream() {
  if (FTarget && std::uncaught_exceptions() == FExceptions) FTarget->Commit();
}

void TMixedFStream::Raise(const std::string& problem) const {
  throw EInOutError("TMixedFStream: \"" + FFileName + "\": " + problem);
}

void TMixedFStream::RaiseIf(bool fail) const {
  if (fail) Raise("cannot read");
}

bool TMixedFStream::Valid() const {
  if (FTarget) return FTarget->IsOpen() && FTarget->Stream().good();
  return FSource.is_open() && !FSource.fail();
}

bool TMixedFStream::EndOfFile() {
  return FSource.is_open() && FSource.peek() == std::ifstream::traits_type::eof();
}

void TMixedFStream::Close() {
  if (FTarget && FTarget->IsOpen() && !FTarget->Commit()) {
    Raise("cannot write: " + FTarget->Error().message());
  }
  FSource.close();
}

void TMixedFStream::Write(std::string_view bytes) {
  if (!FTarget || !FTarget->IsOpen()) Raise("not open for writing");
  FTarget->Stream().write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!FTarget->Stream().good()) Raise("cannot write: " + FTarget->Error().message());
}

template <std::size_t N>
bool TMixedFStream::Read(char* bytes) {
  if (!FSource.is_open()) return false;
  FSource.read(bytes, N);
  return FSource.gcount() == static_cast<std::streamsize>(N);
}

void TMixedFStream::WriteInteger(int i) {
  std::array<char, 4> bytes{};
  detail::putLittle<4>(bytes.data(), static_cast<std::uint32_t>(i));
  Write({bytes.data(), bytes.size()});
}

void TMixedFStream::WriteDouble(double x) {
  std::array<char, 8> bytes{};
  detail::putLittle<8>(bytes.data(), std::bit_cast<std::uint64_t>(x));
  Write({bytes.data(), bytes.size()});
}

void TMixedFStream::WriteByte(std::uint8_t b) {
  const char byte = static_cast<char>(b);
  Write({&byte, 1});
}

void TMixedFStream::WriteLn(std::string_view s) {
  if (s.find("\r\n") != std::string_view::npos) Raise("a line holds a line end");
  Write(s);
  Write("\r\n");
}

void TMixedFStream::WriteString(std::string_view s) {
  if (s.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) Raise("text too long");
  WriteInteger(static_cast<int>(s.size()));
  Write(s);
  Write("\r\n");
}

int TMixedFStream::ReadInteger(bool& fail) {
  std::array<char, 4> bytes{};
  fail = !Read<4>(bytes.data());
  return fail ? 0
              : static_cast<int>(static_cast<std::uint32_t>(detail::getLittle<4>(bytes.data())));
}

double TMixedFStream::ReadDouble(bool& fail) {
  std::array<char, 8> bytes{};
  fail = !Read<8>(bytes.data());
  return fail ? 0.0 : std::bit_cast<double>(detail::getLittle<8>(bytes.data()));
}

std::uint8_t TMixedFStream::ReadByte(bool& fail) {
  char byte = 0;
  fail = !Read<1>(&byte);
  return fail ? std::uint8_t{0} : static_cast<std::uint8_t>(byte);
}

std::string TMixedFStream::ReadLn(int LineEnd, bool& fail) {
  std::string line;
  fail = !FSource.is_open() || !FSource.good();
  if (fail) return line;
  const bool any = LineEnd == leAny;
  std::streambuf& source = *FSource.rdbuf();
  using Traits = std::ifstream::traits_type;
  for (;;) {
    const auto next = source.sbumpc();
    if (Traits::eq_int_type(next, Traits::eof())) {
      FSource.setstate(std::ios::eofbit);
      if (any && !line.empty()) return line;
      FSource.setstate(std::ios::failbit);
      fail = true;
      return {};
    }
    const char c = Traits::to_char_type(next);
    if ((c == '\n' && (any || LineEnd == leLF)) || (c == '\r' && LineEnd == leCR)) return line;
    if (c == '\r' && any) {
      if (source.sgetc() == Traits::to_int_type('\n')) source.sbumpc();
      return line;
    }
    if (c == '\n' && LineEnd != leCR && line.ends_with('\r')) {
      line.pop_back();
      return line;
    }
    line += c;
  }
}

std::string TMixedFStream::ReadString(bool& fail) {
  const int length = ReadInteger(fail);
  std::string text;
  if (!fail && length >= 0) {
    // Grows as the bytes arrive: the length is only a promise.
    auto missing = static_cast<std::size_t>(length);
    while (missing > 0 && FSource.good()) {
      const std::size_t block = std::min<std::size_t>(missing, 1 << 16);
      const std::size_t kept = text.size();
      text.resize(kept + block);
      FSource.read(text.data() + kept, static_cast<std::streamsize>(block));
      missing -= block;
    }
  }
  std::array<char, 2> end{};
  fail = fail || length < 0 || !Read<2>(end.data()) || end[0] != '\r' || end[1] != '\n';
  if (fail) {
    FSource.setstate(std::ios::failbit);
    return {};
  }
  return text;
}

int TMixedFStream::ReadInteger() {
  bool fail = false;
  const int i = ReadInteger(fail);
  RaiseIf(fail);
  return i;
}

double TMixedFStream::ReadDouble() {
  bool fail = false;
  const double x = ReadDouble(fail);
  RaiseIf(fail);
  return x;
}

std::uint8_t TMixedFStream::ReadByte() {
  bool fail = false;
  const std::uint8_t b = ReadByte(fail);
  RaiseIf(fail);
  return b;
}

std::string TMixedFStream::ReadLn(int LineEnd) {
  bool fail = false;
  std::string line = ReadLn(LineEnd, fail);
  RaiseIf(fail);
  return line;
}

std::string TMixedFStream::ReadString() {
  bool fail = false;
  std::string text = ReadString(fail);
  RaiseIf(fail);
  return text;
}

}  // namespace zel
