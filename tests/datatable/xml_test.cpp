// Tables as XML: exact round trips, what others write, and what is damaged.
#include "tests/datatable/table_model.h"
#include "tests/datatable/tables.h"
#include "tests/support/testing.h"
#include "zel/base/xmltags.h"
#include "zel/datatable/Zel_datatable.h"

namespace zel::test {
namespace {

using zel_test::readBytes;
using TableXml = zel_test::InFolder;

/// Reads as a caller does who scans for tags himself.
struct TScanningTable : TDataTable {
  int scan(std::string_view text) {
    std::string attr, content;
    int result = 0;
    for (std::size_t pos = 0; result == 0;) {
      const int tag = ReadNextTagInString(text, pos, DTxmlTagNames, 15, attr, content);
      result = ProcessXmlTag(static_cast<TDTxmlTags>(tag), attr, content);
    }
    return result;
  }
};

TEST_F(TableXml, RoundTripsExactly) {
  std::mt19937_64 random(3);
  for (int trial = 0; trial < 80; ++trial) {
    TDataTable T, Read;
    makeRandom(T, random);
    const std::string id = "a" + randomText(random, 90);
    ASSERT_TRUE(T.SaveAsXMLFile(path("x"), -1, id));
    const std::string whole = bytesOf("x");
    TDataTable Small, FromFile;
    TScanningTable Scanning;
    ASSERT_TRUE(FromFile.LoadFromXMLFile(path("x"), id));
    EXPECT_EQ(Scanning.scan("<?x?>" + whole), 1);
    std::stringstream stream;
    stream << "<m><n/><k>";
    Small.WriteToXMLStream(stream, false, 2, id.substr(1));
    T.WriteToOpenXMLFile(stream, false, -1, id);
    stream << "</k></m>";
    std::size_t pos = 3;
    const std::string text = stream.str();
    ASSERT_TRUE(Read.ReadFromXMLString(text, pos, id));
    EXPECT_EQ(text.substr(pos), "\n</k></m>");
    expectIdentical(Read, FromFile);
    expectIdentical(Read, Scanning);
    ASSERT_TRUE(Read.ReadFromXMLStream(stream, ""));
    EXPECT_EQ(Read.NrOfColumns() * Read.NrOfRows(), 1);
    ASSERT_TRUE(Read.ReadFromOpenXMLFile(stream, ""));
    EXPECT_FALSE(FromFile.ReadFromXMLStream(stream, id));
    expectIdentical(T, Read);
    for (std::size_t size = 0; trial < 5 && size + 1 < whole.size(); ++size) {
      pos = 0;
      ASSERT_FALSE(FromFile.ReadFromXMLString(whole.substr(0, size), pos, "")) << size;
      EXPECT_EQ(pos, 0U);
    }
  }
}

TEST_F(TableXml, ReadsWhatOthersWrite) {
  std::istringstream in(readBytes(ZEL_FUZZ_CORPUS "/table_xml/by_hand.xml"));
  TDataTable T, Copied;
  std::string events, expected, message;
  recordEvents(T, events);
  ASSERT_TRUE(T.ReadFromXMLStream(in, "two & three", message)) << message;
  EXPECT_EQ(T.Comment(), "a<b>\xC3\xA4");
  EXPECT_EQ(T.GetColName(1), "C-1");
  EXPECT_EQ(T.GetColName(2), std::string_view("\0%", 2));
  EXPECT_EQ(T.GetColAttrib(1), -7);
  EXPECT_EQ(T.GetMScaleType(1), stNominal);
  EXPECT_EQ(T.GetNominalID(1, 150), "z");
  EXPECT_EQ(T.NumericData->GetVal(1, 2), 1.5);
  EXPECT_EQ(T.GetCellState(1, 2), 66);
  EXPECT_EQ(T(2, 1), -std::numeric_limits<double>::infinity());
  EXPECT_NE(T(2, 2), T(2, 2));
  recordEvents(Copied, expected);
  Copied.CopyContentsFrom(&T);
  EXPECT_EQ(events, expected);
  EXPECT_FALSE(T.ReadFromXMLStream(in, "5", message));
  EXPECT_EQ(message, "there is no table with this identifier");
}

TEST_F(TableXml, DamageLeavesTheTable) {
  TDataTable T;
  T.SetElem(1, 1, 7);
  T.OnChange = T.OnChangeSetup = [](TObject*) { FAIL() << "nothing has changed"; };
  const std::string cells = "<datacells><cell ix='1' iy='1'>1</cell></datacells>";
  const std::string size = "<size columns='1' rows='1'/>";
  const std::pair<std::string, const char*> cases[] = {
      {cells, "</datatable>: there is no size"},
      {"<size columns='2000000000' rows='2000000000'/>" + cells,
       "</datatable>: it has 1 cells, not 4000000000000000000"},
      {"<size columns='0' rows='1'/>",
       "<size columns='0' rows='1'>: columns is missing or not an integer in its range"},
      {"<size columns='2' rows='1'/>" + cells + cells,
       "</datatable>: the cell in column 1 and row 1 is there twice or outside the table"},
      {size + "<rowattrib><row iy='2'>1</row></rowattrib>" + cells,
       "</datatable>: there is no column or row 2"},
      {size + "<colnames><col ix='1' coding='percent'>%4</col></colnames>",
       "<col ix='1' coding='percent'>: the coding of the text is not known, or it is not coded so"},
      {"<datacells><cell ix='1' iy='1'>1e999</cell>",
       "<cell ix='1' iy='1'>: the value is not a number"},
      {"<vardef ix='1' scale='x'>", "<vardef ix='1' scale='x'>: there is no such scale"},
      {"<colnames><size/>", "<size> does not belong there"},
      {"<datatable>", "<datatable> does not belong there"},
      {"</x>", "</x> closes nothing"},
      {"<cell ix='1' <", "<cell ix='1'> breaks off"},
      {"<comment>", "<comment> is not closed"}};
  std::string message;
  for (const auto& [text, expected] : cases) {
    std::istringstream in("<datatable>" + text + "</datatable>");
    EXPECT_FALSE(T.ReadFromXMLStream(in, "", message)) << text;
    EXPECT_EQ(message, expected);
  }
  EXPECT_FALSE(T.LoadFromXMLFile("/nowhere/x.xml", ""));
  EXPECT_EQ(T(1, 1), 7);
}

TEST_F(TableXml, WritesAllOrNothing) {
  TDataTable T;
  EXPECT_FALSE(T.SaveAsXMLFile("/dev/full", -1, ""));
  EXPECT_FALSE(T.SaveAsXMLFile("/nowhere/x.xml", -1, ""));
  T.Resize(3, 1);
  T.SetElem(2, 1, -0.00012345);
  T.SetElem(3, 1, 12.3456);
  std::stringstream out;
  T.WriteToXMLStream(out, true, 2, "\x01\"");
  EXPECT_TRUE(out.str().starts_with(
      "<?xml version=\"1.0\"?>\n<datatable id=\"%01&quot;\" coding=\"percent\">\n<size columns="));
  EXPECT_NE(out.str().find("iy=\"1\">0.00</cell><cell ix=\"2\" iy=\"1\">-0.00012</cell>"
                           "<cell ix=\"3\" iy=\"1\">12.35</cell>\n"),
            std::string::npos)
      << "small values keep their digits";
}

}  // namespace
}  // namespace zel::test
