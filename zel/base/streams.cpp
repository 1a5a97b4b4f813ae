#include "zel/base/streams.h"

#include <array>

#include "zel/base/errors.h"
#include "zel/base/extended_impl.h"
#include "zel/base/littleendian_impl.h"
#include "zel/base/wholefile.h"

namespace zel {
namespace {

using detail::bitsOf;
using detail::getLittle;
using detail::putLittle;
using detail::valueOf;

template <std::size_t N>
bool readBytes(std::istream& s, std::array<char, N>& bytes) {
  s.read(bytes.data(), N);
  return s.gcount() == static_cast<std::streamsize>(N);
}

}  // namespace

TMemoryStream::TMemoryStream() : std::stringstream(in | out | binary) {}
TMemoryStream::TMemoryStream(std::string_view bytes)
    : std::stringstream(std::string(bytes), in | out | binary | ate) {}
TMemoryStream::~TMemoryStream() = default;

TFileStream::TFileStream(std::string_view FileName, int Mode) {
  const std::string name(FileName);
  if (name.find('\0') == std::string::npos) {
    if ((Mode & fmCreate) == fmCreate) {
      open(name, in | out | trunc | binary);
    } else if (FileExists(name)) {
      if ((Mode & 3) == fmOpenRead) open(name, in | binary);
      if ((Mode & 3) == fmOpenWrite || (Mode & 3) == fmOpenReadWrite) open(name, in | out | binary);
    }
  }
  if (!is_open()) throw EInOutError("TFileStream: cannot open file \"" + name + "\"");
}
TFileStream::~TFileStream() = default;

void WriteExtendedToStream(std::ostream& s, Extended x) {
  std::array<char, 10> bytes{};
  const detail::ExtendedBits bits = bitsOf(x);
  putLittle<8>(bytes.data(), bits.significand);
  putLittle<2>(bytes.data() + 8, bits.signExponent);
  s.write(bytes.data(), bytes.size());
}

void WriteLongintToStream(std::ostream& s, int i) {
  std::array<char, 4> bytes{};
  putLittle<4>(bytes.data(), static_cast<std::uint32_t>(i));
  s.write(bytes.data(), bytes.size());
}

Extended ReadExtendedFromStream(std::istream& s, bool& fail) {
  std::array<char, 10> bytes{};
  fail = !readBytes(s, bytes);
  if (fail) return 0;
  return valueOf(
      {getLittle<8>(bytes.data()), static_cast<std::uint16_t>(getLittle<2>(bytes.data() + 8))});
}

int ReadLongintFromStream(std::istream& s, bool& fail) {
  std::array<char, 4> bytes{};
  fail = !readBytes(s, bytes);
  return fail ? 0 : static_cast<int>(static_cast<std::uint32_t>(getLittle<4>(bytes.data())));
}

}  // namespace zel
