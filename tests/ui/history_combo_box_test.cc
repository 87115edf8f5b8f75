// SPDX-License-Identifier: Apache-2.0
// History combo boxes, typed into and chosen from as a person would, with a string table of
// their own and the input history in a temporary preferences folder.
#include "ui/history_combo_box.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/bundle/test_bundle.h"
#include "platform/system/user_preferences.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/toolkit_test_support.h"
#include "support/bundle_folder.h"
#include "support/temp_dir.h"

namespace varno::ui {
namespace {

using namespace varno::toolkit;
using Strings = std::vector<std::string>;
using vocabulary::SettingMap;

constexpr SettingMap kAutoMap[] = {{"Auto", 1000, 0, nullptr, 0}, {nullptr, 0, 0, nullptr, 0}};
constexpr SettingMap kTwoRowMap[] = {
    {"Auto", 1000, 0, nullptr, 0}, {"Public", 2000, 0, nullptr, 0}, {nullptr, 0, 0, nullptr, 0}};
constexpr SettingMap kZeroFirstMap[] = {
    {"None", 0, 0, nullptr, 0}, {"Auto", 1000, 0, nullptr, 0}, {nullptr, 0, 0, nullptr, 0}};
constexpr SettingMap kZeroInsideMap[] = {{"Auto", 1000, 0, nullptr, 0},
                                         {"None", 0, 0, nullptr, 0},
                                         {"Public", 2000, 0, nullptr, 0},
                                         {nullptr, 0, 0, nullptr, 0}};
constexpr SettingMap kUnknownKeyMap[] = {{"No Such Key", 7, 0, nullptr, 0},
                                         {nullptr, 0, 0, nullptr, 0}};

class HistoryComboBox : public testing::ToolkitTest {
 protected:
  HistoryComboBox()
      : combo(add(ControlKind::ComboBox, 1)), elsewhere(add(ControlKind::EditText, 2)) {}

  VComboBoxOptions Numeric(std::int32_t minValue, std::int32_t maxValue) const {
    VComboBoxOptions options;
    options.kind = kVComboBoxNumeric;
    options.bundle = bundle;
    options.minValue = minValue;
    options.maxValue = maxValue;
    return options;
  }
  VComboBoxOptions Text(std::int32_t maxLength, std::string allowed = {}) const {
    VComboBoxOptions options;
    options.kind = kVComboBoxText;
    options.bundle = bundle;
    options.minLength = 1;
    options.maxLength = maxLength;
    if (!allowed.empty()) options.allowedCharacters = allowed;
    return options;
  }
  static VComboBoxOptions WithHistory(VComboBoxOptions options, std::int32_t limit = 0) {
    options.historyKey = "entries";
    options.historyLimit = limit;
    return options;
  }

  static Strings Titles(const Control& box) {
    Strings titles;
    for (MenuItemIndex i = 1; i <= box.menu()->count(); ++i)
      titles.push_back(box.menu()->item(i)->text);
    return titles;
  }
  static void Store(const std::string& key, const plist::Array& entries) {
    std::optional<plist::Dictionary> file = sys::CopyUserPreferences(kInputHistoryFileName);
    ASSERT_TRUE(file);
    file->set(key, plist::Value(entries));
    ASSERT_TRUE(sys::WriteUserPreferences(kInputHistoryFileName, *file));
  }
  static plist::Array Stored(const Strings& entries) {
    plist::Array array;
    for (const std::string& entry : entries) array.append(plist::Value(entry));
    return array;
  }
  static Strings History(const std::string& key = "entries") {
    Strings entries;
    std::optional<plist::Dictionary> file = sys::CopyUserPreferences(kInputHistoryFileName);
    std::optional<plist::Array> array = file ? file->getArray(key) : std::nullopt;
    for (const plist::Value& entry : array.value_or(plist::Array()))
      entries.push_back(entry.asString() ? *entry.asString() : "(not a string)");
    return entries;
  }
  std::optional<plist::Value> Value(Control& box, OSStatus expected = noErr) {
    std::optional<plist::Value> value;
    EXPECT_EQ(VComboBoxCopyValue(&box, &value), expected);
    return value;
  }

  testing::TempDir folder;
  testing::ScopedEnv env{{"XDG_CONFIG_HOME", folder.path().string()},
                         {"HOME", folder.path().string()}};
  bundle::BundleRef bundle = testing::MakeBundle(
      folder, {{"Auto", "Automatic"}, {"Public", "Public Folder"}, {"None", "No Folder"}});
  Control& combo;
  Control& elsewhere;
};

TEST_F(HistoryComboBox, TypingFollowsTheKindOfBox) {
  struct Case {
    const char* what;
    VComboBoxOptions options;
    const char* typed;
    const char* shown;
  } cases[] = {
      {"a maximum of 999 takes three digits", Numeric(1, 999), "12a345", "123"},
      {"no maximum takes nine digits", Numeric(0, 0), "1234567890", "123456789"},
      {"text keeps to its length and characters", Text(4, "abc "), "abxc ab", "abc "},
      {"another kind has no rules", VComboBoxOptions{}, "any text at all!", "any text at all!"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    combo.setText({});
    ASSERT_EQ(VComboBoxInitializeWithMapAndHistory(&combo, &c.options), noErr);
    TypeText(combo, c.typed);
    EXPECT_EQ(combo.text(), c.shown);
    VComboBoxFinalize(&combo, false);
  }
}

TEST_F(HistoryComboBox, LeavingANumericFieldBringsItsNumberIntoRange) {
  struct Case {
    const char* what;
    VComboBoxOptions options;
    std::function<void()> enter;
    const char* whileIn;
    const char* afterLeaving;
    std::int64_t value;
  } cases[] = {
      {"too large", Numeric(1, 999), [&] { plist::Value v("5000"); VComboBoxSetValue(&combo, &v); },
       "5000", "999", 999},
      {"typed above", Numeric(1, 500), [&] { TypeText(combo, "750"); }, "750", "500", 500},
      {"typed below", Numeric(10, 999), [&] { TypeText(combo, "5"); }, "5", "10", 10},
      {"zero below one", Numeric(1, 999), [&] { TypeText(combo, "0"); }, "0", "1", 1},
      {"within", Numeric(1, 999), [&] { TypeText(combo, "250"); }, "250", "250", 250},
      {"no maximum", Numeric(1, 0), [&] { TypeText(combo, "123456789"); }, "123456789",
       "123456789", 123456789},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    combo.setText({});
    ASSERT_EQ(VComboBoxInitializeWithMapAndHistory(&combo, &c.options), noErr);
    SetFocus(combo);
    c.enter();
    EXPECT_EQ(combo.text(), c.whileIn) << "nothing changes while the person types";
    SetFocus(elsewhere);
    EXPECT_EQ(combo.text(), c.afterLeaving);
    EXPECT_EQ(Value(combo), plist::Value(c.value));
    VComboBoxFinalize(&combo, false);
  }
}

TEST_F(HistoryComboBox, ValuesGoBetweenTheTextAndNumbersOrStrings) {
  VComboBoxOptions numeric = Numeric(1, 999);
  numeric.map = kAutoMap;
  ASSERT_EQ(VComboBoxInitializeWithMapAndHistory(&combo, &numeric), noErr);
  const plist::Value fixed(1000), typed(42), flag(true), text("17");
  VComboBoxSetValue(&combo, &fixed);
  EXPECT_EQ(combo.text(), "Automatic");
  SetFocus(combo);
  SetFocus(elsewhere);
  EXPECT_EQ(combo.text(), "Automatic") << "a fixed item's title is no number to bring into range";
  EXPECT_EQ(Value(combo), plist::Value(1000));
  VComboBoxSetValue(&combo, &typed);
  EXPECT_EQ(combo.text(), "42");
  EXPECT_EQ(Value(combo), plist::Value(42));
  VComboBoxSetValue(&combo, &flag);
  EXPECT_EQ(combo.text(), "42") << "neither a string nor a number";
  VComboBoxSetValue(&combo, &text);
  EXPECT_EQ(Value(combo), plist::Value(17));
  combo.setText({});
  EXPECT_FALSE(Value(combo, kVComboBoxNoValue));

  VComboBoxOptions words = Text(24);
  words.map = kAutoMap;
  ASSERT_EQ(VComboBoxInitializeWithMapAndHistory(&combo, &words), noErr);
  ChooseMenuItemByText(combo, "Automatic");
  EXPECT_EQ(Value(combo), plist::Value(1000));
  TypeText(combo, std::string(9, '\b') + "1000");
  EXPECT_EQ(Value(combo), plist::Value("1000")) << "typed text stays text";
}

TEST_F(HistoryComboBox, TheListHoldsTheMapsItemsThenTheStoredEntriesThatFit) {
  plist::Array stored = Stored({"12", "1000", "abc"});
  stored.append(plist::Value(7));  // not a string: never offered
  for (const char* entry : {"0", "999", "1.5", "ok", "far too long", "bad!", ""})
    stored.append(plist::Value(entry));
  Store("entries", stored);
  struct Case {
    const char* what;
    VComboBoxOptions options;
    const SettingMap* map;
    Strings titles;
  } cases[] = {
      {"every row", Numeric(1, 999), kTwoRowMap, {"Automatic", "Public Folder"}},
      {"a first row of 0 gives none", Numeric(1, 999), kZeroFirstMap, {}},
      {"a row of 0 ends them", Numeric(1, 999), kZeroInsideMap, {"Automatic"}},
      {"a missing string says so", Numeric(1, 999), kUnknownKeyMap, {"STRING NOT FOUND"}},
      {"numbers in range", WithHistory(Numeric(1, 999)), kAutoMap, {"Automatic", "12", "999"}},
      {"no maximum", WithHistory(Numeric(0, 0)), nullptr, {"12", "1000", "0", "999"}},
      {"text that fits", WithHistory(Text(5, "abcdefghijklmnopqrstuvwxyz0123456789")), nullptr,
       {"12", "1000", "abc", "0", "999", "ok"}},
      {"any text", WithHistory(VComboBoxOptions{}), nullptr,
       {"12", "1000", "abc", "0", "999", "1.5", "ok", "far too long", "bad!", ""}},
  };
  for (Case& c : cases) {
    SCOPED_TRACE(c.what);
    combo.menu()->deleteAllItems();
    c.options.map = c.map;
    ASSERT_EQ(VComboBoxInitializeWithMapAndHistory(&combo, &c.options), noErr);
    EXPECT_EQ(Titles(combo), c.titles);
    VComboBoxFinalize(&combo, false);
  }
  combo.menu()->deleteAllItems();
  VComboBoxOptions unlocalized = Numeric(1, 999);
  unlocalized.map = kAutoMap;
  unlocalized.bundle = nullptr;
  VComboBoxInitializeWithMapAndHistory(&combo, &unlocalized);
  EXPECT_TRUE(Titles(combo).empty()) << "fixed items need a bundle for their titles";
}

TEST_F(HistoryComboBox, ConfirmingPutsANewEntryFirstWithinTheLimit) {
  const Strings five = {"e1", "e2", "e3", "e4", "e5"};
  struct Case {
    const char* what;
    std::int32_t limit;
    std::function<void()> enter;
    bool save;
    Strings after;
  } cases[] = {
      {"a new entry pushes out the oldest", 5, [&] { TypeText(combo, "new"); }, true,
       {"new", "e1", "e2", "e3", "e4"}},
      {"no limit keeps them all", 0, [&] { TypeText(combo, "new"); }, true,
       {"new", "e1", "e2", "e3", "e4", "e5"}},
      {"a fixed item's title is no entry", 5, [&] { ChooseMenuItemByText(combo, "Automatic"); },
       true, five},
      {"an entry in the list already", 5, [&] { ChooseMenuItemByText(combo, "e3"); }, true, five},
      {"an empty field", 5, [] {}, true, five},
      {"not confirmed", 5, [&] { TypeText(combo, "new"); }, false, five},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Store("entries", Stored(five));
    combo.setText({});
    combo.menu()->deleteAllItems();
    VComboBoxOptions options = WithHistory(Text(24), c.limit);
    options.map = kAutoMap;
    ASSERT_EQ(VComboBoxInitializeWithMapAndHistory(&combo, &options), noErr);
    c.enter();
    EXPECT_EQ(VComboBoxFinalize(&combo, c.save), noErr);
    EXPECT_EQ(History(), c.after);
  }
}

TEST_F(HistoryComboBox, ASaveRereadsTheFileAndChangesOnlyItsOwnKey) {
  Store("entries", Stored({"first"}));
  const VComboBoxOptions options = WithHistory(Text(24), 10);
  ASSERT_EQ(VComboBoxInitializeWithMapAndHistory(&combo, &options), noErr);
  // Another dialog confirms entries while this one is open.
  Store("otherKey", Stored({"kept"}));
  Store("entries", Stored({"theirs", "first"}));
  TypeText(combo, "mine");
  ASSERT_EQ(VComboBoxFinalize(&combo, true), noErr);
  EXPECT_EQ(History("otherKey"), Strings{"kept"});
  EXPECT_EQ(History(), (Strings{"mine", "theirs", "first"}));

  // A folder where the file should go: the entry cannot be kept, and the box says so.
  ASSERT_EQ(VComboBoxInitializeWithMapAndHistory(&combo, &options), noErr);
  TypeText(combo, "lost");
  std::filesystem::remove_all(folder / "varno");
  std::filesystem::create_directories(folder / "varno" / kInputHistoryFileName);
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(VComboBoxFinalize(&combo, true), kPMIOError);
  ::testing::internal::GetCapturedStderr();
}

TEST_F(HistoryComboBox, TheBoxLetsGoOfItsStateWhenFinalizedOrDisposedOf) {
  const VComboBoxOptions options = WithHistory(Text(24));
  const long before = bundle.use_count();
  ASSERT_EQ(VComboBoxInitializeWithMapAndHistory(&combo, &options), noErr);
  ASSERT_EQ(VComboBoxInitializeWithMapAndHistory(&combo, &options), noErr);
  EXPECT_EQ(bundle.use_count(), before + 1) << "setting a box up again replaces its state";
  EXPECT_TRUE(combo.property(kVComboBoxCreator, kVComboBoxContextTag));
  EXPECT_EQ(VComboBoxFinalize(&combo, false), noErr);
  EXPECT_EQ(bundle.use_count(), before);
  EXPECT_FALSE(combo.property(kVComboBoxCreator, kVComboBoxContextTag));
  EXPECT_EQ(VComboBoxFinalize(&combo, false), paramErr);

  Control& other = add(ControlKind::ComboBox, 4);
  ASSERT_EQ(VComboBoxInitializeWithMapAndHistory(&other, &options), noErr);
  EXPECT_EQ(bundle.use_count(), before + 1);
  ASSERT_EQ(other.dispose(), noErr);
  EXPECT_EQ(bundle.use_count(), before) << "disposed of without finalizing";
}

}  // namespace
}  // namespace varno::ui
