// SPDX-License-Identifier: Apache-2.0
// The watermark store on real files in a temporary support folder.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "panels/booklet_watermark/fax_image_store.h"
#include "panels/booklet_watermark/watermark_store.h"
#include "panels/watermark_test_records.h"
#include "platform/bundle/test_bundle.h"
#include "platform/plist/file.h"
#include "platform/toolkit/list_view.h"
#include "support/bundle_folder.h"
#include "support/temp_dir.h"

namespace varno::panels {
namespace {

using plist::Array;
using plist::Data;
using plist::Dictionary;
using testing::NumberedRecord;
using testing::ReadAll;
using testing::ScopedEnv;
using testing::TempDir;

class WatermarkStore : public ::testing::Test {
 protected:
  std::filesystem::path folder() const { return support / "Varno"; }
  std::filesystem::path store() const { return folder() / kWatermarkStoreFileName; }
  std::optional<Dictionary> root() const { return plist::ReadDictionaryFile(store()); }
  void writeRoot(const Dictionary& root) const {
    std::filesystem::create_directories(folder());
    ASSERT_TRUE(plist::WriteFile(store(), plist::Value(root)));
  }

  TempDir support;
  ScopedEnv env{{"VARNO_SUPPORT_DIR", support.path().string()}};
};

unsigned Mode(const std::filesystem::path& path) {
  return static_cast<unsigned>(std::filesystem::status(path).permissions());
}

TEST_F(WatermarkStore, FilesAreSharedByAllUsersAndReplacedWhole) {
  mode_t old = ::umask(022);
  saveWatermarkData(kWatermarkStoreFileName, NumberedRecord("A-1", 1));
  ::umask(old);
  EXPECT_EQ(Mode(folder()), 0777u) << "no sticky bit: users replace each other's files";
  EXPECT_EQ(Mode(store()), 0664u) << "only the folder's users replace it; nobody else rewrites it";
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder()), {}), 1)
      << "no temporary file left behind";
  EXPECT_FALSE(root()->contains(kWatermarkListEntriesKey)) << "the list is the caller's";
  EXPECT_FALSE(CopyPreferenceFileURL("../escape.plist"));
}

// The installed folder (setgid, one group) keeps its mode, and new stores take its group.
TEST_F(WatermarkStore, AnInstalledGroupFolderKeepsItsModeAndGivesItsGroup) {
  ASSERT_EQ(::mkdir(folder().c_str(), 0700), 0);
  // A group the test runs without, when it may give one (as root, as in CI).
  if (::geteuid() == 0) {
    ASSERT_EQ(::chown(folder().c_str(), static_cast<uid_t>(-1), 4242), 0);
  }
  ASSERT_EQ(::chmod(folder().c_str(), 02775), 0);
  saveWatermarkData(kWatermarkStoreFileName, NumberedRecord("A-1", 1));
  struct stat made {}, kept {};
  ASSERT_EQ(::stat(folder().c_str(), &kept), 0);
  ASSERT_EQ(::stat(store().c_str(), &made), 0);
  EXPECT_EQ(kept.st_mode & 07777, 02775u);
  EXPECT_EQ(made.st_gid, kept.st_gid);
  EXPECT_EQ(made.st_mode & 07777, 0664u);
}

TEST_F(WatermarkStore, LoadingFillsOnlyPresentKeysAndCutsLongTexts) {
  const std::string accented = std::string(510, 'e') + "\xc3\xa9";  // é straddles byte 511
  writeRoot(Dictionary{{"Short", Dictionary{{"angle", 30}, {"density", 1.5}}},
                       {"Long", Dictionary{{"textString", std::string(600, 't')},
                                           {"filePath", std::string(9000, 'p')},
                                           {"fontName", accented}}}});
  WatermarkData record = NumberedRecord("K-5", 5);
  ASSERT_EQ(loadWatermarkData(kWatermarkStoreFileName, "Short", &record), 1);
  EXPECT_EQ(record.angle, 30);
  EXPECT_EQ(record.density, 5) << "1.5 is no integer: the field keeps its value";
  EXPECT_EQ(record.glyphs, NumberedRecord("K-5", 5).glyphs) << "no glyphs key: glyphs kept";

  ASSERT_EQ(loadWatermarkData(kWatermarkStoreFileName, "Long", &record), 1);
  EXPECT_EQ(std::strlen(record.text), 511u);
  EXPECT_EQ(std::strlen(record.filePath), 8191u);
  EXPECT_EQ(WatermarkString(record.fontName), std::string(510, 'e')) << "never half a character";

  EXPECT_EQ(loadWatermarkData(kWatermarkStoreFileName, "short", &record), 0);
  EXPECT_EQ(CreateWatermarkDictionary(record), CreateWatermarkDictionary(WatermarkData{}));
  EXPECT_FALSE(record.glyphs);
}

TEST_F(WatermarkStore, NamesAreTextOrFileNameAndRemovalTakesTheFirstExactEntry) {
  WatermarkData picture;
  CopyWatermarkString(picture.fileName, "logo.png");
  saveWatermarkData(kWatermarkStoreFileName, picture);
  WatermarkData text = NumberedRecord("x-1", 1);
  CopyWatermarkString(text.text, "logo.png");
  saveWatermarkData(kWatermarkStoreFileName, text);
  EXPECT_EQ(root()->size(), 1u);
  EXPECT_EQ(root()->getDictionary("logo.png")->getString("filename"), "");

  Array names{"logo.png", "LOGO.PNG", "logo.png"};
  saveWatermarkList(kWatermarkStoreFileName, &names);
  removeWatermarkData(kWatermarkStoreFileName, "logo.png");
  std::optional<Array> list;
  auto view = toolkit::Control::create(toolkit::ControlKind::ListView);
  ASSERT_TRUE(loadWatermarkList(kWatermarkStoreFileName, toolkit::AsListView(view.get()), &list));
  EXPECT_EQ(*list, (Array{"LOGO.PNG", "logo.png"}));
  EXPECT_EQ(toolkit::AsListView(view.get())->items().size(), 2u);
  EXPECT_FALSE(root()->contains("logo.png"));
  EXPECT_FALSE(loadWatermarkList(kWatermarkStoreFileName, nullptr, nullptr));
}

TEST_F(WatermarkStore, FontDataGoesOnlyIntoAnExistingStore) {
  storeFontData(kWatermarkStoreFileName, SubsetFontKey("ArialMT"), Data{1, 2});
  EXPECT_FALSE(std::filesystem::exists(store()));
  Array empty;
  saveWatermarkList(kWatermarkStoreFileName, &empty);
  storeFontData(kWatermarkStoreFileName, "VN-ArialMT-VN", Data{1, 2});
  Data buffer{9};
  loadFontData(kWatermarkStoreFileName, SubsetFontKey("ArialMT"), &buffer);
  loadFontData(kWatermarkStoreFileName, "ArialMT", &buffer);
  EXPECT_EQ(buffer, (Data{9, 1, 2}));
}

TEST_F(WatermarkStore, DamagedStoreIsReportedKeptAsideAndStartedAfresh) {
  support.write("Varno/" + std::string(kWatermarkStoreFileName), "<plist><dict><key>A");
  ::testing::internal::CaptureStderr();
  EXPECT_FALSE(CopyXMLData(kWatermarkStoreFileName));
  removeWatermarkData(kWatermarkStoreFileName, "A");
  storeFontData(kWatermarkStoreFileName, "VN-F-VN", Data{1});
  EXPECT_EQ(ReadAll(store()), "<plist><dict><key>A") << "only saves replace a damaged store";
  saveWatermarkData(kWatermarkStoreFileName, NumberedRecord("N-1", 1));
  std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_TRUE(err.starts_with("CopyXMLData()::CFPropertyListCreateFromXMLData() error: ")) << err;
  EXPECT_EQ(root()->size(), 1u);
  EXPECT_EQ(ReadAll(store().string() + ".damaged"), "<plist><dict><key>A");

  support.write("Varno/" + std::string(kWatermarkStoreFileName), "<array/>");
  Array names{"B"};
  saveWatermarkList(kWatermarkStoreFileName, &names);
  EXPECT_EQ(ReadAll(store().string() + ".damaged.1"), "<array/>") << "older copies are kept";
  EXPECT_EQ(root()->getArray(kWatermarkListEntriesKey), names);
}

TEST_F(WatermarkStore, StoreThatCannotBeReplacedIsReportedAndLeftAlone) {
  std::filesystem::create_directories(store());  // a folder where the file should be
  ::testing::internal::CaptureStderr();
  saveWatermarkData(kWatermarkStoreFileName, NumberedRecord("W-1", 1));
  std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(err.find("saveWatermarkData: Error 21 writing data to file\n"), std::string::npos)
      << err;
  EXPECT_TRUE(std::filesystem::is_directory(store()));
}

TEST_F(WatermarkStore, DefaultsAreThreeLocalizedTextWatermarksInOrder) {
  TempDir bundleDir;
  bundle::BundleRef bundle = testing::MakeBundle(
      bundleDir, {{"DraftWatermark", "Entwurf"}, {"CopyWatermark", "Kopie"}});
  ASSERT_TRUE(bundle);
  EXPECT_EQ(CreateDefaultWatermarks(bundle.get()), 0);
  std::optional<Array> list;
  ASSERT_TRUE(loadWatermarkList(kWatermarkStoreFileName, nullptr, &list));
  EXPECT_EQ(*list, (Array{"Entwurf", "STRING NOT FOUND", "Kopie"}));
  WatermarkData record;
  ASSERT_EQ(loadWatermarkData(kWatermarkStoreFileName, "STRING NOT FOUND", &record), 1);
  EXPECT_FALSE(record.glyphs);
  EXPECT_FALSE(root()->getDictionary("Kopie")->contains("glyphCount"));
}

TEST_F(WatermarkStore, FaxCoverImagesLiveInTheirOwnStore) {
  WatermarkData image;
  CopyWatermarkString(image.fileName, "cover.png");
  SaveFaxCoverImage(image);
  SaveFaxCoverImage(image);
  EXPECT_EQ(LoadFaxCoverImageList(), (Array{"cover.png"}));
  EXPECT_FALSE(std::filesystem::exists(store()));
  RemoveFaxCoverImage("cover.png");
  EXPECT_EQ(LoadFaxCoverImage("cover.png", &image), 0);
}

// Python's plistlib stands for any other tool that reads or writes the store.
int Python(const std::string& verb, const std::filesystem::path& a,
           const std::filesystem::path& b = {}) {
  std::string command = "python3 " VARNO_WATERMARK_PLISTLIB " " + verb + " '" + a.string() +
                        "'" + (b.empty() ? "" : " '" + b.string() + "'");
  int status = std::system(command.c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(WatermarkStore, PlistlibReadsOurStoreAndWritesOneWeLoad) {
  WatermarkData record = NumberedRecord("Entwurf \xe2\x80\x93 \xc3\xa9", 7);
  record.pageWidth = 612;  // not stored
  saveWatermarkData(kWatermarkStoreFileName, record);
  Array names{WatermarkName(record)};
  saveWatermarkList(kWatermarkStoreFileName, &names);
  storeFontData(kWatermarkStoreFileName, "VN-F-VN", Data{0, 255, 10});
  // plistlib checks every value's type, then writes what it read as a new store.
  std::filesystem::path copy = support / "copy.plist";
  ASSERT_EQ(Python("check-and-copy", store(), copy), 0);
  std::filesystem::rename(copy, store());
  WatermarkData loaded;
  ASSERT_EQ(loadWatermarkData(kWatermarkStoreFileName, WatermarkName(record), &loaded), 1);
  EXPECT_EQ(CreateWatermarkDictionary(loaded), CreateWatermarkDictionary(record));
  EXPECT_EQ(loaded.pageWidth, 0);
  EXPECT_EQ(root()->getData("VN-F-VN"), (Data{0, 255, 10}));

  ASSERT_EQ(Python("make", store()), 0);
  std::optional<Array> list;
  ASSERT_TRUE(loadWatermarkList(kWatermarkStoreFileName, nullptr, &list));
  EXPECT_EQ(*list, (Array{"Confidential", "seal.png"}));
  ASSERT_EQ(loadWatermarkData(kWatermarkStoreFileName, "seal.png", &loaded), 1);
  EXPECT_EQ(WatermarkString(loaded.filePath), "/home/ana/seal.png");
  EXPECT_EQ(loaded.xPos, 100.25);
  EXPECT_EQ(loaded.angle, -30);
  EXPECT_EQ(loaded.glyphs, (std::vector<std::uint16_t>{3, 0x1234, 0xffff}));
  Data font;
  loadFontData(kWatermarkStoreFileName, "VN-Helvetica-VN", &font);
  EXPECT_EQ(font.size(), 1024u);
}

}  // namespace
}  // namespace varno::panels
