// SPDX-License-Identifier: Apache-2.0
// Interface files: every kind of control built from one file, found by ID, and every way a
// file can be missing or wrong ending in a failing status.
#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/bundle/bundle.h"
#include "platform/toolkit/interface_file.h"
#include "platform/toolkit/list_view.h"
#include "support/bundle_folder.h"
#include "support/temp_dir.h"
#include "toolkit_test_support.h"

namespace varno::testing {
namespace {

const std::filesystem::path kEveryKind = VARNO_TEST_DATA_DIR "/toolkit/Every_Kind.interface.plist";

// A bundle holding the sample file and an English string table.
bundle::BundleRef MakeEveryKindBundle(const TempDir& dir) {
  const std::filesystem::path folder = WriteBundleFolder(
      dir, {{"Every Kind Title", "Every kind of control"}, {"Page(s)", "Pages"}});
  std::filesystem::copy_file(kEveryKind, folder / "Contents/Resources/Every_Kind.interface.plist");
  return bundle::Bundle::Open(folder);
}

Control& Find(Window& window, std::int32_t id) {
  Control* control = window.findByID({kTestSignature, id});
  if (!control) throw std::runtime_error("no control " + std::to_string(id));
  return *control;
}

TEST(InterfaceFileLoading, EveryKindIsBuiltWithItsAttributesAndFoundByID) {
  TempDir dir;
  bundle::BundleRef bundle = MakeEveryKindBundle(dir);
  ASSERT_TRUE(bundle);
  std::unique_ptr<InterfaceFile> file;
  std::string error;
  ASSERT_EQ(InterfaceFile::open(bundle, "Every_Kind", &file, &error), noErr) << error;
  EXPECT_EQ(file->windowNames(), (std::vector<std::string>{"Window", "Empty"}));
  std::unique_ptr<Window> window;
  ASSERT_EQ(file->createWindow("Window", &window, &error), noErr) << error;

  EXPECT_EQ(window->text(), "Every kind of control");  // the title key, localized
  EXPECT_FALSE(window->isVisible());

  const ControlKind expected[] = {
      ControlKind::UserPane,   ControlKind::Group,       ControlKind::StaticText,
      ControlKind::EditText,   ControlKind::PushButton,  ControlKind::PushButton,
      ControlKind::CheckBox,   ControlKind::RadioButton, ControlKind::PopupButton,
      ControlKind::BevelButton, ControlKind::ComboBox,   ControlKind::SpinControl,
      ControlKind::Clock,      ControlKind::ImageView,   ControlKind::ListView,
      ControlKind::TabControl};
  for (std::int32_t id = 1; id <= 16; ++id) {
    EXPECT_EQ(Find(*window, id).kind(), expected[id - 1]) << "control " << id;
  }
  EXPECT_EQ(Find(*window, 3).parent(), &Find(*window, 2));
  EXPECT_EQ(Find(*window, 3).text(), "Passcode Label");  // a key with no text shows itself
  EXPECT_TRUE(Find(*window, 4).isPassword());
  EXPECT_EQ(window->defaultButton(), &Find(*window, 5));
  EXPECT_EQ(window->cancelButton(), &Find(*window, 6));
  EXPECT_EQ(Find(*window, 5).command(), kHICommandOK);
  EXPECT_FALSE(Find(*window, 7).isEnabled());
  EXPECT_EQ(Find(*window, 8).value(), 1);

  Control& popup = Find(*window, 9);
  ASSERT_EQ(popup.menu()->count(), 3);
  EXPECT_EQ(popup.value(), 2);
  EXPECT_EQ(popup.menu()->item(2)->command, MakeOSType("Jsec"));
  EXPECT_EQ(popup.menu()->item(2)->refCon, 6u);
  EXPECT_FALSE(popup.menu()->item(3)->enabled);
  EXPECT_EQ(popup.menu()->item(3)->submenu->item(1)->text, "Inner");

  EXPECT_EQ(Find(*window, 10).pictureName(), "Finishing.png");
  EXPECT_EQ(Find(*window, 11).menu()->count(), 2);
  EXPECT_EQ(Find(*window, 12).maximum(), 999);
  EXPECT_TRUE(Find(*window, 13).isTimeOnly());
  EXPECT_FALSE(Find(*window, 14).isVisible());
  ListView* list = AsListView(&Find(*window, 15));
  ASSERT_TRUE(list);
  ASSERT_EQ(list->columns().size(), 2u);
  EXPECT_EQ(list->columns()[0].property, MakeOSType("PAGE"));
  EXPECT_EQ(list->columns()[0].title, "Pages");
  EXPECT_EQ(Find(*window, 16).childCount(), 2u);
  EXPECT_TRUE(window->findByID({MakeOSType("Tabs"), 2}));

  EXPECT_EQ(file->createWindow("Empty", &window), noErr);
  EXPECT_EQ(window->childCount(), 0u);
}

TEST(InterfaceFileLoading, MissingFilesAndWindowsGiveTheirStatus) {
  TempDir dir;
  bundle::BundleRef bundle = MakeEveryKindBundle(dir);
  std::unique_ptr<InterfaceFile> file;
  std::string error;
  EXPECT_EQ(InterfaceFile::open(bundle, "Nowhere", &file, &error), kInterfaceFileNotFound);
  EXPECT_NE(error.find("Nowhere"), std::string::npos);
  EXPECT_EQ(InterfaceFile::open(nullptr, "Every_Kind", &file), paramErr);
  EXPECT_FALSE(file);

  ASSERT_EQ(InterfaceFile::openFile(kEveryKind, &file), noErr);
  std::unique_ptr<Window> window;
  EXPECT_EQ(file->createWindow("Missing", &window, &error), kInterfaceObjectNotFound);
  EXPECT_FALSE(window);
  EXPECT_NE(error.find("Missing"), std::string::npos);
}

// Writes `windows` as the "Windows" dictionary of a file and tries to build "W".
OSStatus BuildOne(const TempDir& dir, const std::string& windows, std::string* error) {
  auto path = dir.write("t.interface.plist",
                        "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Windows</key>"
                        "<dict>" + windows + "</dict></dict></plist>");
  std::unique_ptr<InterfaceFile> file;
  if (OSStatus status = InterfaceFile::openFile(path, &file, error)) return status;
  std::unique_ptr<Window> window;
  return file->createWindow("W", &window, error);
}

std::string WithControl(const std::string& control) {
  return "<key>W</key><dict><key>Controls</key><array><dict>" + control + "</dict></array></dict>";
}

TEST(InterfaceFileLoading, MalformedFilesAreRefusedWithTheFaultNamed) {
  TempDir dir;
  std::unique_ptr<InterfaceFile> file;
  EXPECT_EQ(InterfaceFile::openFile(dir.write("a.plist", "<plist><dict><key>Win"), &file),
            kInterfaceFileDamaged);

  const std::string kind = "<key>Kind</key><string>";
  const std::string button = kind + "PushButton</string>";
  const std::string twice = "<dict>" + button + "<key>Signature</key><string>Test</string>"
                            "<key>ID</key><integer>1</integer></dict>";
  const std::pair<std::string, std::string> cases[] = {
      {"<key>W</key><string>x</string>", "W"},
      {WithControl(kind + "Slider</string>"), "Slider"},
      {WithControl("<key>Title</key><string>no kind</string>"), "Kind"},
      {WithControl(button + "<key>Colour</key><string>red</string>"), "Colour"},
      {WithControl(button + "<key>Command</key><string>ok</string>"), "Command"},
      {WithControl(kind + "CheckBox</string><key>Value</key><string>1</string>"), "Value"},
      {WithControl(button + "<key>Signature</key><string>Test</string>"), "ID"},
      {WithControl(kind + "StaticText</string><key>Bounds</key><array><integer>1</integer></array>"),
       "Bounds"},
      {WithControl(button + "<key>Items</key><array/>"), "menu"},
      {WithControl(kind + "CheckBox</string><key>Controls</key><array/>"), "holds no"},
      {WithControl(kind + "EditText</string><key>Columns</key><array/>"), "columns"},
      {WithControl(button + "<key>TimeOnly</key><true/>"), "time of day"},
      {WithControl(kind + "Group</string><key>Controls</key><array><dict>" + kind +
                   "PopupButton</string><key>Items</key><array><integer>1</integer></array>"
                   "</dict></array>"),
       "(Group), control 1 (PopupButton), item 1"},
      {"<key>W</key><dict><key>Controls</key><array>" + twice + twice + "</array></dict>",
       "used twice"},
      // Bounds stay within what a screen holds, so no edge overflows.
      {"<key>W</key><dict><key>Bounds</key><array><integer>0</integer><integer>2147483647</integer>"
       "<integer>10</integer><integer>1</integer></array></dict>",
       "window \"W\": \"Bounds\""},
      {WithControl(button + "<key>Bounds</key><array><integer>32767</integer><integer>0</integer>"
                   "<integer>1</integer><integer>1</integer></array>"),
       "control 1 (PushButton): \"Bounds\""},
      {WithControl(button + "<key>Bounds</key><array><integer>-32768</integer><integer>0</integer>"
                   "<integer>1</integer><integer>1</integer></array>"),
       "control 1 (PushButton): \"Bounds\""},
      {WithControl(button + "<key>Bounds</key><array><integer>0</integer><integer>0</integer>"
                   "<integer>-1</integer><integer>1</integer></array>"),
       "control 1 (PushButton): \"Bounds\""},
  };
  for (const auto& [windows, named] : cases) {
    std::string error;
    EXPECT_EQ(BuildOne(dir, windows, &error), kInterfaceFileDamaged) << windows;
    EXPECT_NE(error.find(named), std::string::npos) << error;
  }
}

// The widest bounds a screen holds are kept; a window named by a long name with many
// controls builds in linear time and a fault in its last control is still named.
TEST(InterfaceFileLoading, ExtremeButSaneLayoutsBuild) {
  TempDir dir;
  std::string error;
  EXPECT_EQ(BuildOne(dir, WithControl("<key>Kind</key><string>PushButton</string><key>Bounds</key>"
                                      "<array><integer>0</integer><integer>0</integer>"
                                      "<integer>32767</integer><integer>32767</integer></array>"),
                     &error),
            noErr)
      << error;

  const std::string name(200 * 1024, 'W');
  constexpr int kControls = 20000;
  auto file = [&](const std::string& last) {
    std::string xml = "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Windows</key><dict><key>" +
                      name + "</key><dict><key>Controls</key><array>";
    for (int i = 0; i < kControls; ++i) xml += "<dict><key>Kind</key><string>PushButton</string></dict>";
    return dir.write("long.interface.plist", xml + last + "</array></dict></dict></dict></plist>");
  };
  std::unique_ptr<InterfaceFile> interface;
  std::unique_ptr<Window> window;
  ASSERT_EQ(InterfaceFile::openFile(file(""), &interface, &error), noErr) << error;
  ASSERT_EQ(interface->createWindow(name, &window, &error), noErr) << error.substr(0, 300);
  EXPECT_EQ(window->childCount(), static_cast<std::size_t>(kControls));

  ASSERT_EQ(InterfaceFile::openFile(file("<dict><key>Kind</key><string>PushButton</string>"
                                         "<key>Visible</key><integer>1</integer></dict>"),
                                    &interface, &error),
            noErr);
  EXPECT_EQ(interface->createWindow(name, &window, &error), kInterfaceFileDamaged);
  EXPECT_NE(error.find("window \"" + name + "\", control " + std::to_string(kControls + 1) +
                       " (PushButton): \"Visible\" must be a boolean"),
            std::string::npos)
      << error.substr(error.size() - 200);
}

}  // namespace
}  // namespace varno::testing
