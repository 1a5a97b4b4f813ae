#include "zel/base/Zel_stringl.h"

#include "tests/support/testing.h"

namespace zel {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

TEST(StringHelpers, StripAndReplace) {
  EXPECT_EQ(StripLTBlanks(" \t a b\t "), "a b");
  EXPECT_EQ(StripLTBlanks(" \t "), "");
  EXPECT_EQ(StripTrailingChars('0', "100200"), "1002");
  EXPECT_EQ(StripTrailingChars('0', "000"), "");
  EXPECT_EQ(ReplaceCharInString("a.b.\0"sv, '.', '\0'), "a\0b\0\0"s);
  EXPECT_EQ(RemoveControlChars("a\r\n\tb\0\x7F\xC3\xA4 "sv), "ab\xC3\xA4 ");
  EXPECT_TRUE(StringContains("x //dig", "//dig"));
  EXPECT_TRUE(StringContains("", ""));
  EXPECT_FALSE(StringContains("//DIG", "//dig"));
}

TEST(StringIx, IgnoresCaseWithinTheCountedEntries) {
  constexpr std::array names = {"Euclidean"sv, "Manhattan"sv, "manhattan"sv, "\xC3\xA4"sv};
  EXPECT_EQ(StringIx("MANHATTAN", names, 4), 1);
  EXPECT_EQ(StringIx("euclidea", names, 4), -1);
  EXPECT_EQ(StringIx("manhattan", names, 1), -1);
  EXPECT_EQ(StringIx("manhattan", names, INT_MAX), 1);
  EXPECT_EQ(StringIx("manhattan", names, -1), -1);
  EXPECT_EQ(StringIx("\xC3\x84", names), -1);  // only ASCII letters have a case here
  const TStrArray list = {"a", "b"};
  EXPECT_EQ(StringIx("B", list), 1);
  const char* const plain[] = {"c", "d"};
  EXPECT_EQ(StringIx("D", plain, 2), 1);
}

TEST(Tokenize, DropsOrKeepsEmptyPieces) {
  TStrArray parts = {"old"};
  EXPECT_EQ(Tokenize(",a;;b", ";,", parts, true), 4);
  EXPECT_EQ(parts, (TStrArray{"", "a", "", "b"}));
  EXPECT_EQ(Tokenize("", " ", parts) + 10 * Tokenize("", " ", parts, true), 10);
  parts = {" a  b "};
  EXPECT_EQ(Tokenize(parts[0], " ", parts), 2);  // the text may be one of the results
  EXPECT_EQ(parts, (TStrArray{"a", "b"}));
}

constexpr std::array kMatrixTags = {"numcols"sv, "numrows"sv, "cell"sv,
                                    "matrix"sv,  "/matrix"sv, "invalidtag"sv};
constexpr std::array kModelTags = {"model"sv, "comment"sv, "data"sv, "$invalidtag$"sv};

/// Every tag that the string reader finds, as "index attr|content;", checked against the file
/// reader.
template <class Tags>
std::string tagsIn(std::string_view text, const Tags& tags) {
  std::string all;
  std::string attr;
  std::string content;
  std::istringstream in{std::string(text)};
  std::string fileAttr;
  std::string fileContent;
  const int count = static_cast<int>(tags.size());
  for (std::size_t pos = 0;;) {
    const int index = ReadNextTagInString(text, pos, tags, count, attr, content);
    EXPECT_EQ(ReadNextTagInTextFile(in, tags, count, fileAttr, fileContent), index);
    EXPECT_EQ(fileAttr, attr);
    EXPECT_EQ(fileContent, content);
    if (index < 0) return all;
    all += std::to_string(index) + " " + attr + "|" + content + ";";
  }
}

TEST(TagReaders, StreamAContainerWhoseClosingTagIsListed) {
  EXPECT_EQ(
      tagsIn("<?xml version=\"1.0\"?>\r\n<!-- <cell> -- -->\n<matrix id=\"a > b\">\n"
             " <numcols>2</numcols>\n<NumRows> +3x</NumRows >\n"
             "<cell  ix=\"2\"\n iy='3' >-1.25E2</cell><cell ix=\"1\"/>text & more\n</matrix>\n",
             kMatrixTags),
      "3 id=\"a > b\"|;0 |2;1 | +3x;2 ix=\"2\"\n iy='3'|-1.25E2;2 ix=\"1\"|;4 |;");
}

TEST(TagReaders, DeliverAnElementWhole) {
  const std::string_view text =
      "<model sig=\"s\" id=\"7\">\n<comment>a < b & c <i></comment>"
      "<comment><![CDATA[</comment>]]><!--</comment>--></comment>"
      "<data><x/><data a='</'>1<data/></data></DATA>\n</model>";
  std::string attr;
  std::string content;
  std::size_t pos = 0;
  EXPECT_EQ(ReadNextTagInString(text, pos, kModelTags, 4, attr, content), 0);
  EXPECT_EQ(pos, text.size());
  EXPECT_EQ(attr, "sig=\"s\" id=\"7\"");
  EXPECT_EQ(tagsIn(content, kModelTags),
            "1 |a < b & c <i>;1 |<![CDATA[</comment>]]><!--</comment>-->;"
            "2 |<x/><data a='</'>1<data/></data>;");
}

TEST(TagReaders, ReportWhatIsNotListedOrBroken) {
  for (const auto& [text, found] :
       {std::pair("<other a=\"1\"><cell>1</cell></other></matrix></other>",
                  "5 a=\"1\"|<cell>1</cell>;4 |;5 |;"),
        // The element that is not closed takes the rest, so a cut-off value is never taken for a
        // whole one.
        {"<cell>1</cell><cell ix=\"2\">12<numcols>3</numcols>", "2 |1;5 ix=\"2\"|;"},
        {"<cell>1</cell", "5 |;"},
        {"<cell ix=\"2>1</cell>", "5 ix=\"2>1</cell>|;"},
        {"<cell ix=2 <numcols>3</numcols>", "5 ix=2|;0 |3;"},
        {"a < b <1> < > <!-- <cell>1</cell>", ""},
        {"<!DOCTYPE m [<!ENTITY e \"v\">]><![CDATA[<cell>]]><numcols>1</numcols>", "0 |1;"}}) {
    EXPECT_EQ(tagsIn(text, kMatrixTags), found) << text;
  }
}

TEST(TagReaders, TakeLinearTime) {
  // A reader that searched ahead for each closing tag would need hours.
  const auto many = [](const char* part) {
    std::string text;
    for (int i = 0; i < 200000; ++i) text += part;
    return text;
  };
  EXPECT_EQ(tagsIn(many("<cell><!--<!DOCTYPE</cell"), kMatrixTags), "5 |;");
  EXPECT_FALSE(tagsIn(many("</x><y a='<"), kMatrixTags).empty());
  EXPECT_EQ(XmlUnescape(many("<![CDATA[&")), many("<![CDATA[&"));
}

TEST(XmlText, EscapesAndBack) {
  std::string all;
  for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
  EXPECT_EQ(XmlUnescape(XmlEscape(all)), all);
  EXPECT_EQ(XmlEscape("a<b>&\"c'\r\n"), "a&lt;b&gt;&amp;&quot;c&apos;&#13;\n");
  EXPECT_EQ(XmlUnescape("&#65;&#x20AC;&#x10FFFF;&#xe4;"), "A\xE2\x82\xAC\xF4\x8F\xBF\xBF\xC3\xA4");
  EXPECT_EQ(XmlUnescape("a<![CDATA[&lt;<!--]]&gt;]]>&lt;"), "a&lt;<!--]]&gt;<");
  EXPECT_EQ(XmlUnescape("<!--&lt;-->a<!----><!---->b<!--c"), "ab<!--c");
  for (const char* kept : {"&", "&;", "&none;", "&#;", "&#x;", "&#x110000;", "&#xD800;", "&#-1;",
                           "&lt", "a & b; c", "<![CDATA[x"}) {
    EXPECT_EQ(XmlUnescape(kept), kept);
  }
}

TEST(XmlAttribute, FindsValuesByTheWholeName) {
  const std::string_view attr = "ix=\"1\" iy = '2' flag mix=\"a &lt; b\"  e=\"\" bad=x open=\"";
  std::string value;
  for (const auto& [name, wanted] : {std::pair("iy", "2"), {"mix", "a < b"}, {"e", ""}}) {
    EXPECT_TRUE(XmlAttribute(attr, name, value)) << name;
    EXPECT_EQ(value, wanted);
  }
  for (const char* name : {"x", "flag", "bad", "open", "", "IX"}) {
    EXPECT_FALSE(XmlAttribute(attr, name, value)) << name;
  }
}

}  // namespace
}  // namespace zel
