// The two text files of the vectors: number files and ASC files. What is read must survive being
// written and read again.
#include <string>

#include "fuzz/scratch_file.h"
#include "fuzz/target.h"
#include "zel/vector/Zel_vector.h"

namespace zel_fuzz {
namespace {

const std::string& scratch() { return scratchFile().name(); }

constexpr std::size_t kMostGap = std::size_t{1} << 24;
constexpr std::size_t kLong = 10000;

template <class Vector>
void readNumbers(std::size_t bytes, bool adjust) {
  Vector v{1, 2, 3};
  v.LoadFromFile(scratch(), adjust);
  require(v.size() <= kMostGap + bytes, "the size is borne out by the file");
  require(adjust || v.size() == 3, "no resize unasked");
}

template <class Vector>
void readAsc(std::size_t bytes) {
  Vector v{1, 2, 3};
  std::string comment;
  const int result = v.ImportASC(scratch(), comment);
  require(result <= 4 && result >= -8, "a described result");
  require(v.size() <= bytes + 3, "a row for each value of the file");
}

}  // namespace

int FuzzVectorFiles(const std::uint8_t* data, std::size_t size) {
  scratchFile().write(textOf(data, size));
  for (const bool adjust : {true, false}) {
    readNumbers<zel::TVector>(size, adjust);
    readNumbers<zel::TIntVector>(size, adjust);
    zel::TVector marked{1, 2};
    marked.LoadFromFile(scratch(), adjust, true);
    require(marked.size() <= size + 2, "a mark for each element");
  }
  readAsc<zel::TIntVector>(size);
  readAsc<zel::TVector>(size);

  zel::TVector v;
  std::string comment;
  if (v.ImportASC(scratch(), comment) != 0 || v.size() > kLong) return 0;
  require(v.StoreOnFile(0, 0, -2, scratch()), "a scratch file can be written");
  zel::TVector w;
  require(w.LoadFromFile(scratch(), true) && w.CRCofData() == v.CRCofData(),
          "26 characters are exact");
  require(v.ExportAsASC(scratch(), 20, comment) == 0, "a scratch file can be written");
  std::string again;
  require(w.ImportASC(scratch(), again) == 0 && w.size() == v.size(), "an exported file reads");
  return 0;
}

}  // namespace zel_fuzz

ZEL_FUZZ_TARGET(vector_files, zel_fuzz::FuzzVectorFiles)
