// SPDX-License-Identifier: Apache-2.0
// Help books: which file a help request opens, and what it never opens.
#include "platform/toolkit/help_book.h"

#include <gtest/gtest.h>

#include "support/temp_dir.h"

namespace varno::toolkit {
namespace {

using testing::TempDir;

std::string InfoPlist(const std::string& extra) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
         "<key>CFBundleIdentifier</key><string>com.varno.test.help</string>"
         "<key>CFBundleDevelopmentRegion</key><string>en</string>" + extra + "</dict></plist>\n";
}

class HelpBookTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_.write("Book.plugin/Contents/Info.plist",
               InfoPlist("<key>CFBundleHelpBookName</key><string>Test Help</string>"
                         "<key>CFBundleHelpBookFolder</key><string>Help</string>"));
    dir_.write("Book.plugin/Contents/Resources/en.lproj/Help/index.html", "<h1>Help</h1>");
    dir_.write("Book.plugin/Contents/Resources/en.lproj/Help/panel/a b.htm", "<p id=\"covers\">x</p>");
    dir_.write("Book.plugin/Contents/Resources/en.lproj/secret.htm", "outside the book");
    ASSERT_EQ(books_.add(dir_.path() / "Book.plugin"), noErr);
  }
  std::string help(const std::string& page) const { return dir_.path() / "Book.plugin/Contents/Resources/en.lproj/Help" / page; }

  TempDir dir_;
  HelpBooks books_;
};

TEST_F(HelpBookTest, RequestsOpenPagesOfTheBookOnly) {
  struct Case {
    HelpRequest request;
    std::optional<std::string> page;  // relative to the book's folder; nullopt: nothing opens
  } cases[] = {
      {{"Test Help", "", ""}, "index.html"},
      {{"Test Help", "panel/a b.htm", "covers"}, "panel/a b.htm"},
      {{"Test Help", "", "covers"}, "panel/a b.htm"},  // an anchor alone is looked for
      {{"Test Help", "", "nowhere"}, std::nullopt},
      {{"Test Help", "missing.htm", ""}, std::nullopt},
      {{"Test Help", "../secret.htm", ""}, std::nullopt},
      {{"Test Help", "panel/../../secret.htm", ""}, std::nullopt},
      {{"Other Help", "", ""}, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.request.book + " / " + c.request.page + " # " + c.request.anchor);
    const std::optional<std::filesystem::path> page = books_.page(c.request);
    if (c.page) EXPECT_EQ(page, std::filesystem::path(help(*c.page)).lexically_normal());
    else EXPECT_FALSE(page);
  }
  EXPECT_EQ(books_.url({"Test Help", "panel/a b.htm", "covers"}),
            "file://" + help("panel/a%20b.htm") + "#covers");
  EXPECT_EQ(books_.url({"Test Help", "missing.htm", ""}), "");
}

TEST_F(HelpBookTest, BundlesWithoutABookAreRefused) {
  dir_.write("NoName.plugin/Contents/Info.plist", InfoPlist(""));
  dir_.write("NoFolder.plugin/Contents/Info.plist",
             InfoPlist("<key>CFBundleHelpBookName</key><string>X</string>"
                       "<key>CFBundleHelpBookFolder</key><string>Gone</string>"));
  EXPECT_EQ(books_.add(dir_.path() / "NoName.plugin"), paramErr);
  EXPECT_EQ(books_.add(dir_.path() / "NoFolder.plugin"), fnfErr);
  EXPECT_EQ(books_.add(dir_.path() / "Nothing.plugin"), fnfErr);
}

}  // namespace
}  // namespace varno::toolkit
