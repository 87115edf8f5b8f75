// SPDX-License-Identifier: Apache-2.0
// The XML and binary readers and writers: hostile inputs are refused with a message that
// names the fault, and every kind of value survives both forms exactly.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/plist/file.h"
#include "support/temp_dir.h"

namespace varno::plist {
namespace {

using varno::testing::ReadAll;

// The inputs fuzzing found, kept once for the fuzz targets and the tests.
const std::string kHostile = std::string(VARNO_FUZZ_REGRESSIONS) + "/";

std::string Xml(std::string_view body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\">" + std::string(body) +
         "</plist>";
}

std::string Repeat(std::string_view s, int n) {
  std::string out;
  for (int i = 0; i < n; ++i) out += s;
  return out;
}

// A binary property list of the given encoded objects (references one byte wide unless
// more are needed), with object `top` as the root.
std::string Binary(const std::vector<std::string>& objects, std::size_t refSize = 1,
                   std::uint64_t top = 0) {
  std::string body = "bplist00";
  std::vector<std::uint64_t> offsets;
  for (const std::string& o : objects) {
    offsets.push_back(body.size());
    body += o;
  }
  auto be = [](std::uint64_t v, int size) {
    std::string s;
    for (int i = size - 1; i >= 0; --i) s += static_cast<char>((v >> (8 * i)) & 0xFF);
    return s;
  };
  const std::uint64_t table = body.size();
  for (std::uint64_t off : offsets) body += be(off, 4);
  body += std::string(6, '\0') + static_cast<char>(4) + static_cast<char>(refSize);
  return body + be(objects.size(), 8) + be(top, 8) + be(table, 8);
}

// Arrays nested `levels` deep, each holding the next, as the fuzzing generator builds them.
std::string DeepBinary(int levels) {
  std::vector<std::string> objects;
  for (int i = 0; i < levels; ++i) {
    if (i == levels - 1) {
      objects.push_back("\xa0");
    } else {
      std::string ref = {'\xa1', static_cast<char>((i + 1) >> 24), static_cast<char>((i + 1) >> 16),
                         static_cast<char>((i + 1) >> 8), static_cast<char>(i + 1)};
      objects.push_back(ref);
    }
  }
  return Binary(objects, 4);
}

TEST(HostileInputs, AreRefusedWithTheFaultNamed) {
  const std::string deep600 = Xml(Repeat("<array>", 600) + Repeat("</array>", 600));
  const std::string commentTrick = "<?xml version=\"1.0\"?><plist version=\"1.0\"><!--" +
                                   Repeat("</dict>", 600) + "-->" + Repeat("<array>", 600) +
                                   Repeat("</array>", 600) + "</plist>";
  // Each array holds its successor twice: 2^40 values from 41 objects.
  std::vector<std::string> doubling;
  for (int i = 0; i < 40; ++i) doubling.push_back({'\xa2', char(i + 1), char(i + 1)});
  doubling.push_back("\x09");
  struct Case {
    const char* name;
    std::string bytes;
    const char* says;
  } cases[] = {
      {"xml 600 deep", deep600, "nested deeper than 512 levels"},
      {"closing tags in a comment", commentTrick, "nested deeper than 512 levels"},
      {"binary 600 deep", DeepBinary(600), "nested deeper than 512 levels"},
      {"binary 100000 deep", DeepBinary(100000), "nested deeper than 512 levels"},
      {"shared references", Binary(doubling), "has more than 1000000 values"},
      {"a million and one values", Xml("<array>" + Repeat("<true/>", 1000001) + "</array>"),
       "has more than 1000000 values"},
      {"integer above int64", Xml("<integer>9223372036854775808</integer>"),
       "integer that does not fit in 64 bits"},
      {"integer below int64", Xml("<integer>-9223372036854775809</integer>"),
       "integer that does not fit in 64 bits"},
      {"NUL reference", Xml("<string>a&#0;b</string>"), "string with a NUL character"},
      {"Latin-1 encoding", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><string>x</string>",
       "only UTF-8"},
      {"overlong UTF-8", Xml("<string>\xC0\xAF</string>"), "not valid UTF-8 (byte 0xC0 at offset 67)"},
      {"UTF-16 surrogate in UTF-8", Xml("<string>\xED\xA0\x80</string>"), "not valid UTF-8"},
      {"date out of form", Xml("<date>2100-02-30T00:00:00Z</date>"), "YYYY-MM-DDTHH:MM:SSZ"},
      {"unclosed", Xml("<dict><key>a</key>").substr(0, 60), "not a well-formed"},
      {"binary cycle", Binary({std::string("\xa1\x00", 2)}), "a container contains itself"},
      {"binary reference out of range", Binary({"\xa1\x05"}), "object reference out of range"},
      {"binary top out of range", Binary({"\x09"}, 1, 3), "object reference out of range"},
      {"binary string past the table", Binary({"\x5e" "abc"}), "string out of range"},
      {"binary 8-bit ASCII", Binary({"\x52\x61\xfc"}), "not valid UTF-8 (byte 0xFC at offset 10)"},
      {"binary NUL", Binary({std::string("\x52\x61\x00", 3)}), "string with a NUL character"},
      {"binary lone surrogate", Binary({std::string("\x61\xd8\x00", 3)}), "unpaired UTF-16 surrogate"},
      {"binary 128-bit integer", Binary({"\x14" + std::string(7, '\0') + "\x01" + std::string(8, '\0')}),
       "does not fit in 64 bits"},
      {"binary set", Binary({"\xc1\x01", "\x09"}), "holds a set"},
      {"binary UID", Binary({"\x80\x01"}), "holds a UID"},
      {"binary key not a string", Binary({"\xd1\x01\x01", "\x09"}), "key that is not a string"},
      {"binary date in year 10000", Binary({std::string("\x33\x43\0\0\0\0\0\0\0", 9)}), "outside the years 1 to 9999"},
      {"binary truncated trailer", std::string("bplist00\xa0", 9), "damaged binary"},
  };
  for (const Case& c : cases) {
    std::string error;
    EXPECT_FALSE(Parse(c.bytes, &error)) << c.name;
    EXPECT_NE(error.find(c.says), std::string::npos) << c.name << ": " << error;
  }
}

TEST(HostileInputs, FuzzFindingsAreRefusedOrReadExactly) {
  struct Case {
    const char* file;
    const char* says;  // empty: the file must read
  } cases[] = {
      {"plist-nul-in-string-abort.plist", "string with a NUL character"},
      {"watermark-store-nul-abort.plist", "string with a NUL character"},
      {"plist-invalid-utf8-binary-damaged.plist", "not valid UTF-8 (byte 0xD2 at offset 8)"},
      {"plist-invalid-utf8-binary-truncated.plist", "not valid UTF-8 (byte 0xD2 at offset 28)"},
      {"ticket-latin1-strings-job-options-truncated.plist", "not valid UTF-8 (byte 0xFC at offset 143)"},
      {"ticket-xml-date-2100.plist", ""},
      {"ticket-binary-date-2100-becomes-1932.bplist", ""},
  };
  const Date year2100{static_cast<double>(3124137600)};  // 2100-01-01T00:00:00Z
  for (const Case& c : cases) {
    std::string error;
    std::optional<Value> value = ReadFile(kHostile + c.file, &error);
    if (*c.says) {
      EXPECT_FALSE(value) << c.file;
      EXPECT_NE(error.find(c.says), std::string::npos) << c.file << ": " << error;
      EXPECT_NE(error.find(c.file), std::string::npos) << "names the file: " << error;
      continue;
    }
    ASSERT_TRUE(value) << c.file << ": " << error;
    const Value* when = value->asDictionary()->getDictionary("Items")->getDictionary(
        "com.varno.print.When")->find("Value");
    ASSERT_TRUE(when && when->asDate()) << c.file;
    EXPECT_EQ(*when->asDate(), year2100) << c.file;
  }
}

TEST(HostileInputs, CommentedTagsDoNotCountAndRealDepthDoes) {
  // The same trick below the limit reads as what it is: nested arrays, nothing else.
  const std::string xml = "<?xml version=\"1.0\"?><plist><!--" + Repeat("</dict>", 50) + "-->" +
                          Repeat("<array>", 50) + Repeat("</array>", 50) + "</plist>";
  std::optional<Value> value = Parse(xml);
  ASSERT_TRUE(value);
  int depth = 0;
  for (const Value* v = &*value; v->asArray(); v = v->asArray()->at(0), ++depth)
    if (v->asArray()->empty()) break;
  EXPECT_EQ(depth, 49);
  // Exactly at the limit is fine; one more level is not, in either form.
  Value deepest = Array{};
  for (int i = 0; i < kMaxDepth; ++i) deepest = Array{deepest};
  EXPECT_TRUE(Parse(ToXML(deepest).value_or("")));
  EXPECT_TRUE(Parse(ToBinary(deepest).value_or("")));
  EXPECT_FALSE(ToBinary(Array{deepest}));
}

TEST(XMLForms, WhatOtherWritersProduceReadsAsMeant) {
  struct Case {
    const char* name;
    std::string xml;
    Value expected;
  } cases[] = {
      {"entities and references", Xml("<string>&lt;&gt;&amp;&quot;&apos;&#233;&#x1F600;</string>"),
       "<>&\"'é😀"},
      {"CDATA and comments in text", Xml("<string>a<![CDATA[<b>&]]><!-- c -->d</string>"), "a<b>&d"},
      {"empty forms", Xml("<array><string/><dict/><array/><data/><true></true></array>"),
       Array{"", Dictionary{}, Array{}, Data{}, true}},
      {"no plist element, BOM, doctype with subset",
       "\xEF\xBB\xBF<!DOCTYPE plist [ <!ENTITY x \"]>\"> ]>\n<integer> 0x7fffffffffffffff </integer>",
       INT64_MAX},
      {"lowest integer", Xml("<integer>-9223372036854775808</integer>"), INT64_MIN},
      {"reals in every spelling",
       Xml("<array><real>+infinity</real><real>-Infinity</real><real>inf</real><real>1e400</real>"
           "<real>.5</real><real>-0</real></array>"),
       Array{HUGE_VAL, -HUGE_VAL, HUGE_VAL, HUGE_VAL, 0.5, -0.0}},
      {"base64 across lines", Xml("<data>\n\tAAEC\n\t/w==\n</data>"), Data{0, 1, 2, 0xff}},
      {"duplicate keys: the last wins in the first place",
       Xml("<dict><key>a</key><integer>1</integer><key>b</key><true/><key>a</key><integer>2</integer></dict>"),
       Dictionary{{"a", 2}, {"b", true}}},
      {"oldest and newest dates",
       Xml("<array><date>0001-01-01T00:00:00Z</date><date>9999-12-31T23:59:59Z</date></array>"),
       Array{Date{-63113904000}, Date{252423993599}}},
  };
  for (const Case& c : cases) {
    std::string error;
    std::optional<Value> value = Parse(c.xml, &error);
    ASSERT_TRUE(value) << c.name << ": " << error;
    EXPECT_EQ(*value, c.expected) << c.name;
  }
  std::optional<Value> nan = Parse(Xml("<real>nan</real>"));
  ASSERT_TRUE(nan && nan->asReal());
  EXPECT_TRUE(std::isnan(*nan->asReal()));
}

TEST(RoundTrips, EveryValueSurvivesBothFormsExactly) {
  const Value values[] = {
      Date{-3187296000},       // 1900-01-01
      Date{3124137600.25},     // 2100-01-01, a quarter second after
      Date{252423993599},      // 9999-12-31T23:59:59
      Date{-63113904000},      // 0001-01-01
      "Grüße Ελληνικά Кириллица עברית العربية हिन्दी 日本語 한국어 ไทย 😀𝄞 \t\r\n",
      INT64_MIN, INT64_MAX, 0, 255, 256, 65535, 65536, 4294967295LL, 4294967296LL, -1,
      0.1, -0.0, 5e-324, 1.7976931348623157e308, HUGE_VAL, -HUGE_VAL,
      Data{}, Data{0}, Data(300, 0xA5),
      Array{Array{}, Dictionary{}, ""},
      Dictionary{{"é", Dictionary{{"", Array{true, false}}}}, {"a", "b"}},
  };
  for (const Value& v : values) {
    std::string error;
    std::optional<std::string> binary = ToBinary(v, &error);
    ASSERT_TRUE(binary) << error;
    std::optional<Value> fromBinary = Parse(*binary, &error);
    ASSERT_TRUE(fromBinary) << error;
    EXPECT_EQ(*fromBinary, v) << "binary is exact";
    // XML keeps whole seconds of dates and everything else exactly; through binary and
    // back through XML gives the same.
    Value expected = v;
    if (const Date* d = v.asDate()) expected = Date{std::floor(d->seconds)};
    std::optional<Value> fromXML = Parse(ToXML(v, &error).value_or(""), &error);
    ASSERT_TRUE(fromXML) << error;
    EXPECT_EQ(*fromXML, expected);
    EXPECT_EQ(Parse(ToXML(*fromBinary).value_or("")), expected);
    EXPECT_EQ(Parse(ToBinary(*fromXML).value_or("")), expected);
  }
}

TEST(Writers, RefuseWhatTheyCouldNotWriteFaithfully) {
  struct Case {
    const char* name;
    Value value;
    const char* says;
  } cases[] = {
      {"Latin-1 bytes", Value("f\xfcr"), "not valid UTF-8 (byte 0xFC at offset 1)"},
      {"NUL", Value(std::string("a\0b", 3)), "string with a NUL character"},
      {"NUL in a key", Dictionary{{std::string("k\0", 2), 1}}, "string with a NUL character"},
      {"year 10000", Date{252423993600}, "outside the years 1 to 9999"},
      {"NaN date", Date{NAN}, "outside the years 1 to 9999"},
  };
  for (const Case& c : cases) {
    std::string xmlError, binaryError;
    EXPECT_FALSE(ToXML(c.value, &xmlError)) << c.name;
    EXPECT_FALSE(ToBinary(c.value, &binaryError)) << c.name;
    EXPECT_NE(xmlError.find(c.says), std::string::npos) << c.name << ": " << xmlError;
    EXPECT_EQ(xmlError, binaryError) << c.name;
  }
}

TEST(Writers, XMLKeepsTheLayoutOfEarlierVersions) {
  // Bytes written by the earlier libplist-based writer for the same value.
  const Dictionary value{{"K&<>", "a & <b>"}, {"N", -5}, {"T", true},
                         {"D", Date{-978307200}}, {"Data", Data{0, 1, 2}},
                         {"A", Array{Array{}, Dictionary{}, Dictionary{{"x", "y"}}}}};
  EXPECT_EQ(ToXML(value).value_or(""),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
            "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
            "<plist version=\"1.0\">\n<dict>\n"
            "\t<key>K&amp;&lt;&gt;</key>\n\t<string>a &amp; &lt;b&gt;</string>\n"
            "\t<key>N</key>\n\t<integer>-5</integer>\n"
            "\t<key>T</key>\n\t<true/>\n"
            "\t<key>D</key>\n\t<date>1970-01-01T00:00:00Z</date>\n"
            "\t<key>Data</key>\n\t<data>\n\tAAEC\n\t</data>\n"
            "\t<key>A</key>\n\t<array>\n\t\t<array/>\n\t\t<dict/>\n\t\t<dict>\n"
            "\t\t\t<key>x</key>\n\t\t\t<string>y</string>\n\t\t</dict>\n\t</array>\n"
            "</dict>\n</plist>\n");
  // Base64 lines narrow by eight columns a level, down to 12 columns.
  Value nested = Data(60, 0);
  for (int i = 0; i < 10; ++i) nested = Array{nested};
  const std::string xml = ToXML(nested).value_or("");
  EXPECT_NE(xml.find("\n\t\t\t\t\t\t\t\tAAAAAAAAAAAA\n"), std::string::npos) << xml;
}

}  // namespace
}  // namespace varno::plist
