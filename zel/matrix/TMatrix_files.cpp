#include "zel/matrix/TMatrix.h"
#include "zel/matrix/files_impl.h"

namespace zel {

bool TMatrix::StoreOnFile(int LoC, int LoR, int HiC, int HiR, std::string_view FileName) const {
  const TCells cells = Clamped(LoC, LoR, HiC, HiR);
  return Guarded([&] {
    return detail::StoreNumberFile(FileName,
                                   {cells.LowCol, cells.LowRow, cells.HighCol, cells.HighRow},
                                   View(cells), {FPrecis[0], FPrecis[1]});
  });
}

bool TMatrix::LoadFromFile(std::string_view FileName, bool AdjustMatrixSize, bool AutoDetect) {
  if (!AutoDetect) return LoadFromFile(FileName, AdjustMatrixSize);
  detail::TStoredRectangle<double> read;
  return Guarded([&] {
           const auto text = ReadWholeFile(FileName);
           return text && detail::ReadNumberTable(*text, read);
         }) &&
         TakeRectangle(read, AdjustMatrixSize);
}

int TMatrix::ExportAsASC(std::string_view FName, int Precision, std::string_view Comment) const {
  return ExportAsASC(FName, Precision, Comment, TStr2DArray());
}

int TMatrix::ExportAsASC(std::string_view FName, int Precision, std::string_view Comment,
                         const TStr2DArray& CustData) const {
  return ExportASC({ClassName(), FName, Comment, Precision, &CustData}, View());
}

}  // namespace zel
