#include <climits>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <sstream>

#include "tests/base/temp_dir.h"
#include "tests/matrix/matrices.h"
#include "tests/support/expect_message.h"
#include "zel/datatable/TDataTable.h"

namespace zel {
namespace {

using Values = std::vector<double>;
using zel_test::readBytes;
using zel_test::writeBytes;

/// What a file of each class keeps.
template <class Object>
std::string contentsOf(const Object& o) {
  std::ostringstream out;
  out << o.DataID() << ' ' << o.NrOfColumns() << ' ' << o.NrOfRows() << ' ';
  if constexpr (requires { o.NrOfLayers(); }) out << o.NrOfLayers() << ' ';
  if constexpr (requires { o.NrOfTimeSlots(); }) out << o.NrOfTimeSlots() << ' ';
  if constexpr (requires { o.StoredCells(); }) {
    if (o.IsSparse()) out << "sparse ";
    for (const TSpMatElemInt& cell : o.StoredCells()) {
      out << cell.colidx << ',' << cell.rowidx << ',' << cell.value << ' ';
    }
  }
  const std::string text = out.str();
  return text.find("sparse ") == text.npos ? text + o.CRCofData() : text;
}

class MatrixFiles : public testing::Test {
 protected:
  using Load = std::function<bool()>;

  /// A file comes back, over whatever was there; cut off at any byte it changes nothing.
  template <class Object>
  void expectRoundTrip(const Object& source, Object& target, const std::string& bytes,
                       const Load& load, std::size_t needed) {
    const std::string before = contentsOf(target);
    test::Events events(target);
    const std::size_t step = needed < 400 ? 1 : needed / 40;
    for (std::size_t cut = 0; cut < needed; cut += step) {
      std::filesystem::remove(name());  // truncating an old file is slow
      writeBytes(name(), bytes.substr(0, cut));
      try {
        EXPECT_FALSE(load()) << cut;
      } catch (const EInOutError&) {
      }
    }
    EXPECT_EQ(contentsOf(target), before);
    EXPECT_EQ(events.count, 0);
    writeBytes(name(), bytes);
    EXPECT_TRUE(load());
    EXPECT_EQ(contentsOf(target), contentsOf(source));
    EXPECT_EQ(events.count, 2) << "a resize and the end";
    EXPECT_TRUE(load());
    EXPECT_EQ(events.count, 3) << "only the end";
    target.OnChange = nullptr;
  }

  /// Each form in turn; a fresh target for each of them.
  template <class Object, class Fresh>
  void expectEveryForm(const Object& source, Fresh&& fresh) {
    const auto run = [&](bool isSaved, auto&& load, std::size_t spare) {
      ASSERT_TRUE(isSaved);
      const std::string bytes = readBytes(name());
      auto target = fresh();
      expectRoundTrip(
          source, *target, bytes, [&] { return load(*target); }, bytes.size() - spare);
      if (source.NrOfColumns() * source.NrOfRows() > 9) return;
      bool isLoaded = false;
      test::expectFailuresHarmless([&] { isLoaded = load(*target); },
                                   "Component \"T\": not enough memory on heap",
                                   [&] { EXPECT_EQ(contentsOf(*target), contentsOf(source)); });
      EXPECT_TRUE(isLoaded);
    };
    if constexpr (requires { source.SaveBinary(name()); }) {
      run(
          source.SaveBinary(name()) == 0, [&](Object& o) { return o.LoadBinary(name()) == 0; }, 0);
    } else {
      run(
          source.SaveBinary(name(), 0, 0) == 0,
          [&](Object& o) { return o.LoadBinary(name(), 0, 0) == 0; }, 0);
    }
    run(
        source.SaveAsXMLFile(name(), ""), [&](Object& o) { return o.LoadFromXMLFile(name(), ""); },
        2);
    if constexpr (requires { source.StoreSparseMat(name()); }) {
      run(
          source.StoreSparseMat(name()), [&](Object& o) { return o.LoadSparseMat(name()); }, 0);
    }
  }

  [[nodiscard]] const std::string& name() const { return name_; }
  const zel_test::TempDir folder_;
  const std::string name_ = folder_.file("matrix");
};

template <class Object>
auto maker() {
  return [] {
    auto o = std::make_unique<Object>();
    o->SetName("T");
    return o;
  };
}

TEST_F(MatrixFiles, ComeBackInEveryForm) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  std::mt19937_64 random(5);
  const auto any = [&] {
    return std::ldexp(static_cast<double>(random()), -static_cast<int>(random() % 1000));
  };
  for (const auto& [columns, rows] : {std::pair{3, 2}, {1, 700}, {70, 1}, {0, 4}}) {
    TMatrix m;
    m.Resize(columns, rows);
    for (int c = 1; c <= columns; ++c) {
      for (int r = 1; r <= rows; ++r) m.SetVal(c, r, any());
    }
    m.SetVal(1, 1, -0.0);
    m.SetVal(3, 1, -inf);
    m.SetDataID("tab\t, <\"\xff");
    expectEveryForm(m, maker<TMatrix>());
    TIntMatrix ints;
    test::fillNormal(ints, columns, rows);
    ints.SetVal(2, 1, 0);
    ints.SetVal(1, 1, INT_MIN);
    ints.SetDataID("&");
    expectEveryForm(ints, maker<TIntMatrix>());
    TIntMatrix sparse(CreateSparse, nullptr, 3);
    sparse.Clone(&ints);
    sparse.SetDataID("sparse");
    expectEveryForm(sparse, [] {
      auto o = std::make_unique<TIntMatrix>(CreateSparse, nullptr, 2);
      o->SetName("T");
      o->SetVal(9, 9, 1);
      return o;
    });
  }
  // Layers in groups of 8, and time slots across records.
  TMat3D stack;
  stack.Resize(5, 3, 19);
  stack.FillRandomGauss(0, 1);
  stack.SetVal(2, 3, 19, std::nan(""));
  stack.SetDataID(std::string(255, 'x'));
  expectEveryForm(stack, maker<TMat3D>());
  TMat4D series;
  series.Resize(7, 5, 3, 6);
  series.FillRandomGauss(0, 1);
  expectEveryForm(series, maker<TMat4D>());

  // Everything that a list of cells can be.
  TIntMatrix far(CreateSparse, nullptr, 1);
  far.SetVal(INT_MAX, INT_MAX, 7);
  far.SetVal(3, 1, 0);
  far.SetVal(2, INT_MAX, -1);
  TIntMatrix other(CreateSparse, nullptr, 1), dense;
  ASSERT_TRUE(far.StoreSparseMat(name()));
  EXPECT_FALSE(dense.LoadSparseMat(name())) << "too large for its cells";
  EXPECT_TRUE(other.LoadSparseMat(name()));
  EXPECT_EQ(contentsOf(other), contentsOf(far));
  ASSERT_TRUE(far.SaveAsXMLFile(name(), "far"));
  EXPECT_FALSE(dense.LoadFromXMLFile(name(), ""));
  EXPECT_FALSE(other.LoadFromXMLFile(name(), "near"));
  EXPECT_TRUE(other.LoadFromXMLFile(name(), "far"));
  EXPECT_EQ(other.DataID(), "far");
  other.SetDataID("");
  EXPECT_EQ(contentsOf(other), contentsOf(far));
  EXPECT_EQ(stack.SaveBinary("/nonexistent/x"), -1);
  EXPECT_FALSE(far.SaveAsXMLFile("/nonexistent/x", "") || far.StoreSparseMat("/nonexistent/x"));
}

/// A file made by hand: header fields, then elements.
std::string binaryFile(const std::vector<int>& counts, int format, const Values& elements,
                       int cells = 0) {
  std::ostringstream out;
  for (const int n : counts) WriteLongintToStream(out, n);
  std::string bytes = out.str() + "\2id";
  bytes.resize(272);
  out.str("");
  WriteLongintToStream(out, format);
  WriteLongintToStream(out, cells);
  bytes += out.str();
  bytes.resize(4096);
  for (const double x : elements) {
    const auto* raw = reinterpret_cast<const char*>(&x);
    bytes.append(raw, raw + 8);
  }
  bytes.resize((bytes.size() + 4095) / 4096 * 4096);
  return bytes;
}

TEST_F(MatrixFiles, HeadersOfEveryClassAndForgedOnes) {
  const std::vector<std::pair<std::vector<int>, int>> headers{
      {{3, 2, 0, 0}, 1}, {{3, 2, 0, 0}, 2}, {{3, 2, 1, 0}, 1}, {{3, 2, 1, 2}, 1},
      {{3, 2, 0, 1}, 1}, {{3, 2, 1, 1}, 2}, {{3, 2, 0, 0}, 3}};
  const std::vector<std::string> accepted{"M", "I", "3", "4", "", "", ""};
  for (std::size_t k = 0; k < headers.size(); ++k) {
    writeBytes(name(), binaryFile(headers[k].first, headers[k].second, Values(12)));
    int columns = 0, rows = 0, layers = 0, slots = 0, format = 0;
    std::string id, by;
    if (TMatrix::ReadBinaryHeader(name(), columns, rows, id, format)) by += 'M';
    if (TIntMatrix::ReadBinaryHeader(name(), columns, rows, id, format)) by += 'I';
    if (TMat3D::ReadBinaryHeader(name(), columns, rows, layers, slots, id, format)) by += '3';
    if (TMat4D::ReadBinaryHeader(name(), columns, rows, layers, slots, id, format)) by += '4';
    EXPECT_EQ(by, accepted[k]);
    EXPECT_EQ((std::vector<int>{columns, rows, layers, slots}), headers[k].first);
    EXPECT_EQ(format, headers[k].second);
    EXPECT_EQ(id, "id");
    std::string loaded;
    TMatrix m;
    TIntMatrix i;
    TMat3D three;
    TMat4D four;
    if (m.LoadBinary(name()) == 0) loaded += 'M';
    if (i.LoadBinary(name()) == 0) loaded += 'I';
    if (three.LoadBinary(name()) == 0) loaded += '3';
    if (four.LoadBinary(name(), 1, 9) == 0) loaded += '4';
    EXPECT_EQ(loaded, accepted[k]);
    EXPECT_EQ(four.LoadBinaryNoFmtCheck(name(), 1, 9), k == 3 || k == 5 ? 0 : -2);
  }
  // Counts that nothing bears out.
  for (const std::vector<int>& counts :
       std::vector<std::vector<int>>{{INT_MAX, INT_MAX, 0, 0},
                                     {0, INT_MAX, 0, 0},
                                     {-1, -1, 0, 0},
                                     {513, 1, 0, 0},
                                     {INT_MAX, INT_MAX, INT_MAX, 0},
                                     {-1, -512, 1, 0},
                                     {1 << 16, 1 << 16, 1 << 16, 1 << 16},
                                     {-3, 5, -7, 2},
                                     {1, 1, 513, 1}}) {
    for (const int format : {1, 2, 3}) {
      writeBytes(name(), binaryFile(counts, format, Values(512), 600));
      TMatrix m;
      TIntMatrix i;
      TMat3D three;
      TMat4D four;
      const std::function<bool()> loads[] = {
          [&] { return m.LoadBinary(name()) == 0; }, [&] { return i.LoadBinary(name()) == 0; },
          [&] { return i.LoadSparseMat(name()); }, [&] { return three.LoadBinary(name()) == 0; },
          [&] { return four.LoadBinaryNoFmtCheck(name(), 0, 0) == 0; }};
      for (const auto& load : loads) {
        try {
          EXPECT_FALSE(load() && counts[0] * counts[1] != 513 && i.NrOfColumns() != 513);
        } catch (const EInOutError&) {
        }
      }
    }
  }
  TMatrix m;
  EXPECT_THROW(m.LoadBinary(name() + "missing"), EInOutError);
  EXPECT_THROW(m.LoadBinary(folder_.file("")), EInOutError);
}

TEST_F(MatrixFiles, TimeSlotsAreReadWhereTheyAre) {
  const std::vector<int> counts{20, 10, 3, 4};
  Values elements(2400);
  for (std::size_t k = 0; k < elements.size(); ++k) elements[k] = static_cast<double>(k);
  const auto at = [](int x, int y, int z, int t) { return ((t * 3.0 + z) * 10 + y) * 20 + x; };
  writeBytes(name(), binaryFile(counts, 7, elements));
  TMat4D m;
  double next = 600;
  std::vector<int> reports;
  m.OnPercentDone = [&](TObject*, int percent) { reports.push_back(percent); };
  m.OnReadElement = [&](TObject* sender, int x, int y, int z, int t, double value) {
    EXPECT_EQ(sender, &m);
    EXPECT_EQ(value, at(x - 1, y - 1, z - 1, t));
    EXPECT_EQ(value, next++);
  };
  EXPECT_EQ(m.ReadBinary(name(), 2, 9), 0);
  EXPECT_EQ(next, 2400);
  EXPECT_EQ(reports.size(), 100U);
  EXPECT_EQ(reports.back(), 100);
  EXPECT_EQ(m.ReadBinary(name(), 5, 9), -1);
  EXPECT_EQ(m.ReadBinary(name(), 3, 2), 0);
  EXPECT_EQ(next, 2400);
  int count = 0;
  m.OnReadElement = [&](TObject*, int, int, int, int, double) { ++count; };
  EXPECT_EQ(m.ReadBinary(name(), 0, 1), 0);
  EXPECT_EQ(count, 2400) << "a bound below 1 means all";

  m.OnPercentDone = nullptr;
  m.Resize(20, 10, 2, 3);
  const std::vector<int> codes{m.ReadLayer(name(), 3, 1), m.ReadLayer(name(), 1, 4),
                               m.ReadLayer(name(), 0, 0), m.ReadLayer(name(), 2, 3)};
  EXPECT_EQ(codes, (std::vector<int>{-2, -1, -2, 0}));
  EXPECT_EQ(m(20, 9, 2, 3), at(19, 8, 1, 2));
  EXPECT_EQ(m(20, 9, 1, 3), 0);
  m.Resize(19, 10, 2, 3);
  EXPECT_EQ(m.ReadLayer(name(), 3, 0), -3);
  TDouble2DArray layer;
  EXPECT_EQ(Read4DLayer(name(), 4, 1, layer), -2);
  EXPECT_EQ(Read4DLayerAndAccumulate(name(), 4, 1, layer), -3);
  EXPECT_EQ(Read4DLayer(name(), 2, 4, layer), 0);
  EXPECT_EQ(Read4DLayerAndAccumulate(name(), 1, 5, layer), -1);
  EXPECT_EQ(Read4DLayerAndAccumulate(name(), 1, 1, layer), 0);
  EXPECT_EQ(layer.Length(0), 20U);
  EXPECT_EQ(layer(7, 9), at(7, 9, 1, 3) + at(7, 9, 0, 0));
  EXPECT_EQ(m.LoadBinary(name(), 1, 1), -2);
  EXPECT_EQ(m.LoadBinaryNoFmtCheck(name(), 5, 5), -1);
  EXPECT_EQ(m.LoadBinaryNoFmtCheck(name(), 3, 3), 0);
  EXPECT_EQ(m.NrOfTimeSlots(), 1);
  EXPECT_EQ(m(1, 1, 1, 1), 1200);

  // Appending makes the same file as saving at once.
  TMat4D whole;
  whole.Resize(20, 10, 3, 4);
  whole.FillRandomGauss(0, 1);
  whole.SaveBinary(name(), 0, 0);
  const std::string expected = readBytes(name());
  const std::string parts = folder_.file("parts");
  EXPECT_EQ(whole.AppendToBinaryFile(parts, 1, 1), 0);
  EXPECT_EQ(whole.AppendToBinaryFile(parts, 2, 3), 0);
  const std::string three = readBytes(parts);
  EXPECT_EQ(whole.AppendToBinaryFile(parts, 4, 4), 0);
  EXPECT_EQ(readBytes(parts), expected);
  EXPECT_EQ(m.AppendToBinaryFile(name(), 0, 0), 0);
  m.Resize(20, 9, 3, 1);
  EXPECT_EQ(m.AppendToBinaryFile(name(), 0, 0), -3);
  writeBytes(name(), binaryFile({20, 9, 3, INT_MAX}, 1, {}));
  EXPECT_EQ(m.AppendToBinaryFile(name(), 0, 0), -4);
  writeBytes(name(), binaryFile(counts, 2, elements));
  EXPECT_EQ(whole.AppendToBinaryFile(name(), 0, 0), -2);
  const std::string cut = three.substr(0, three.size() - 1);
  writeBytes(name(), cut);
  EXPECT_THROW(whole.AppendToBinaryFile(name(), 0, 0), EInOutError);
  EXPECT_EQ(readBytes(name()), cut);
}

/// Opens what derived classes may call.
template <class Object>
struct Tags : Object {
  using Object::FirstCell;
  using Object::ProcessXmlTag;
};

TEST_F(MatrixFiles, XmlTagsAndDamagedXml) {
  Tags<TMatrix> m;
  EXPECT_EQ(m.ProcessXmlTag(xmlMatNumCols, "", "2"), 0);
  EXPECT_EQ(m.ProcessXmlTag(xmlMatNumRows, "", "  +3x"), 0);
  EXPECT_EQ(m.ProcessXmlTag(xmlMatCell, "iy=\"3\" ix=\"2\"", "4.5"), 0);
  EXPECT_FALSE(m.FirstCell);
  EXPECT_EQ(m.ProcessXmlTag(xmlMatCell, "ix=\"5\" iy=\"1\"", "1"), 0);
  EXPECT_EQ(m.ProcessXmlTag(xmlMatCell, "ix=\"1\" iy=\"1\"", " -1.25E2"), 0);
  EXPECT_EQ(m.ProcessXmlTag(xmlMatCell, "ix=\"1\" iy=\"1\"", "1.2.5"), -1);
  EXPECT_EQ(m.ProcessXmlTag(xmlMatCell, "ix=\"1\" iy=\"1\"", ""), -1);
  EXPECT_EQ(m.ProcessXmlTag(xmlMatEnd, "", ""), 1);
  EXPECT_EQ(m.ProcessXmlTag(TMatrix::xmlInvalid, "", ""), -1);
  EXPECT_EQ(test::contents(m), (Values{2, 3, -125, 0, 0, 0, 0, 4.5}));
  EXPECT_EQ(m.ProcessXmlTag(xmlMatBegin, "", ""), 0);
  EXPECT_TRUE(m.FirstCell);
  Tags<TMat4D> four;
  const char* const sizes[] = {"2", "1", "3", "2"};
  for (int k = 0; k < 4; ++k) four.ProcessXmlTag(static_cast<TMatXmlTag>(k), "", sizes[k]);
  four.ProcessXmlTag(xmlMatCell, R"(ix="2" iy="1" il="3" it="2")", "8");
  EXPECT_EQ(four(2, 1, 3, 2), 8);
  EXPECT_EQ(four.NrOfLayers(), 3);
  Tags<TMat3D> three;
  for (int k = 0; k < 3; ++k) three.ProcessXmlTag(static_cast<TMatXmlTag>(k), "", sizes[k]);
  three.ProcessXmlTag(xmlMatCell, R"(ix="2" iy="1" iz="3")", "9");
  EXPECT_EQ(three(2, 1, 3), 9);

  const std::string counts = "<numcols>2</numcols><numrows>2</numrows>";
  const std::string cell = R"(<cell ix="2" iy="1">7</cell>)";
  const std::vector<std::pair<std::string, bool>> texts{
      {"<a><matrix>" + counts + cell + "</matrix>", true},
      {"<matrix>" + counts + cell + R"(<cell ix="2" iy="1">5</cell></matrix>)", true},
      {"<matrix>" + counts + "</matrix>", true},
      {"<matrix>" + counts + cell, false},
      {"<matrix>" + counts + "<odd/></matrix>", false},
      {"<matrix>" + counts + cell + counts + "</matrix>", false},
      {"<matrix><matrix>" + counts + "</matrix>", false},
      {"<matrix>" + counts + "<cell ix=\"1\" iy=\"1\"/></matrix>", false},
      {"<matrix coding=\"odd\">" + counts + "</matrix>", false},
      {"<matrix><numcols>2147483647</numcols><numrows>99999999999</numrows></matrix>", false},
      {"<matrix><numcols>0</numcols><numrows>2147483647</numrows>" + cell + "</matrix>", false}};
  for (const auto& [text, isGood] : texts) {
    TMatrix read{{1}};
    TIntMatrix ints{{1}};
    std::istringstream in(text), again(text);
    EXPECT_EQ(read.ReadFromXMLStream(in, ""), isGood) << text;
    EXPECT_EQ(ints.ReadFromOpenXMLFile(again, ""), isGood) << text;
    if (!isGood) {
      EXPECT_EQ(test::contents(read), (Values{1, 1, 1}));
    }
    const int value = &text == &texts[0].first ? 7 : &text == &texts[1].first ? 5 : 0;
    if (isGood) {
      EXPECT_EQ(test::contents(ints), (std::vector<int>{2, 2, 0, 0, value, 0}));
    }
  }
  for (const char* planes : {"0", "4000000000", "1000000"}) {
    std::istringstream in("<matrix>" + counts + "<numplanes>" + planes + "</numplanes>" +
                          "<numtimeslots>1000000</numtimeslots></matrix>");
    EXPECT_FALSE(four.ReadFromOpenXMLFile(in, ""));
  }
}

TEST_F(MatrixFiles, AscFilesAndTheirCodes) {
  TMatrix m{{1.5, -2}, {0.1, 1e300}, {3, INFINITY}};
  EXPECT_EQ(m.ExportAsASC(name(), 3, "a\nb"), 0);
  const std::string header =
      "a b\n2\t;nr. of columns\n3\t;nr. of rows\nFALSE FALSE FALSE FALSE\t;row "
      "attributes, column names, row names, nominal variables\n";
  EXPECT_EQ(readBytes(name()).substr(0, header.size() + 26),
            header + "       1.500\t      -2.000\n");
  TStr2DArray texts{{"x", "two words", "\"\\\n"}, {"", "b", "c"}}, read;
  EXPECT_EQ(m.ExportAsASC(name(), -1, "", texts), 0);
  TMatrix back;
  std::string comment;
  test::Events events(back);
  EXPECT_EQ(back.ImportASC(name(), comment, read), 0);
  EXPECT_EQ(test::contents(back), test::contents(m));
  EXPECT_EQ(read, texts);
  EXPECT_EQ(events.count, 2);
  EXPECT_EQ(comment, "Exported by ZEL TMatrix component: " + name());
  TDataTable table;
  EXPECT_EQ(table.ImportASC(name(), read), 0);
  EXPECT_EQ(read, texts) << "a table takes the same lines";
  const std::string whole = readBytes(name());
  for (std::size_t cut = 0; cut + 1 < whole.size(); ++cut) {
    writeBytes(name(), whole.substr(0, cut));
    const bool isWithoutTexts = whole.find("\n;more") < cut + 5 && cut <= whole.find("\n;more") + 5;
    EXPECT_TRUE(back.ImportASC(name(), comment) != 0 || isWithoutTexts ||
                cut + 3 > whole.find("\n;more"))
        << cut;
  }
  TIntMatrix ints{{1, INT_MIN}, {7, 0}}, sparse(CreateSparse, nullptr, 1);
  EXPECT_EQ(ints.ExportAsASC(name(), "c"), 0);
  EXPECT_EQ(sparse.ImportASC(name(), comment), 0);
  EXPECT_EQ(test::contents(sparse), test::contents(ints));

  const auto code = [&](const std::string& text) {
    writeBytes(name(), text);
    TMatrix target{{4}};
    const int result = target.ImportASC(name(), comment);
    if (result != 0) {
      EXPECT_EQ(test::contents(target), (Values{1, 1, 4}));
    }
    return result;
  };
  const std::string flags = "\nFALSE FALSE FALSE\n";
  EXPECT_EQ(code("c\n2\n1" + flags + "NAN ###\n"), 0);
  EXPECT_EQ(code("c\n1\n1\nTRUE TRUE TRUE TRUE\n\"na me\" 5 bare 1\n"), 0);
  EXPECT_EQ(code("c\n1\n1\nTRUE FALSE TRUE FALSE\nx bare 1\n"), -5);
  EXPECT_EQ(code("c\n2\n1" + flags + "1 1,5\n"), -6);
  EXPECT_EQ(code("c\n2\n1" + flags + "1\n"), -6);
  EXPECT_EQ(code("c\n99999\n99999" + flags + "1\n"), -6);
  EXPECT_EQ(code("c\n0\n2147483647" + flags), -6);
  EXPECT_EQ(code("c\nx\n1" + flags), 2);
  EXPECT_EQ(code("c\n1\n1" + flags + "1\n;more\n;custom\t2\t\"a\"\n;end\n"), -9);
  EXPECT_EQ(code("c\n1\n1" + flags + "1\n;more\n;custom\t1\t\"a\" \"b\"\n;end\n"), -9);
  EXPECT_EQ(code("c\n1\n1" + flags + "1\n;more\n"), -9);
  EXPECT_EQ(back.ImportASC(name() + "missing", comment), -8);
  EXPECT_EQ(m.ExportAsASC("/nonexistent/x", 1, ""), -1);
}

}  // namespace
}  // namespace zel
