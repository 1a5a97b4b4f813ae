// Writes a vector in the three file forms and reads each back.
#include <zel/vector/Zel_vector.h>

#include <cstdio>
#include <iostream>
#include <memory>
#include <string>

int main() {
  const zel::TVector v{0.1, 1e-300, -12345.678};
  zel::TVector w;
  const auto same = [&] { return v.CRCofData() == w.CRCofData(); };

  // A binary record: exact, and any stream will do.
  std::unique_ptr<zel::TMemoryStream> memory;
  v.SaveToStream(memory, 0, 0);
  bool good = w.LoadFromStream(*memory, true) && same();
  std::cout << "record: " << (good ? "identical" : "different") << '\n';

  // A number file: -2 asks for the exponential form of 26 characters, which holds a double exactly.
  good = v.StoreOnFile(0, 0, -2, "files_example.txt") &&
         w.LoadFromFile("files_example.txt", true) && same() && good;
  std::cout << "number file: " << (same() ? "identical" : "different") << '\n';

  // An ASC file keeps as many decimals as it is told to; the rest is gone.
  std::string comment;
  good = v.ExportAsASC("files_example.asc", 3, "three measurements") == 0 &&
         w.ImportASC("files_example.asc", comment) == 0 && good;
  std::cout << "ASC file: \"" << comment << "\", " << w << '\n';

  std::remove("files_example.txt");
  std::remove("files_example.asc");
  return good && comment == "three measurements" ? 0 : 1;
}
