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
using Step = std::function<void()>;  // what a person does to the box

constexpr SettingMap kAuto{"Auto", 1000, 0, nullptr, 0}, kPublic{"Public", 2000, 0, nullptr, 0};
constexpr SettingMap kNone{"None", 0, 0, nullptr, 0}, kEnd{};
constexpr SettingMap kAutoMap[] = {kAuto, kEnd};
constexpr SettingMap kTwoRowMap[] = {kAuto, kPublic, kEnd};
constexpr SettingMap kZeroFirstMap[] = {kNone, kAuto, kEnd};
constexpr SettingMap kZeroInsideMap[] = {kAuto, kNone, kPublic, kEnd};

class HistoryComboBox : public testing::ToolkitTest {
 protected:
  HistoryComboBox()
      : combo(add(ControlKind::ComboBox, 1)), elsewhere(add(ControlKind::EditText, 2)) {}

  VComboBoxOptions Numeric(std::int32_t lo, std::int32_t hi, const SettingMap* map = {}) {
    return {.kind = kVComboBoxNumeric, .bundle = bundle, .map = map, .historyKey = {},
            .allowedCharacters = {}, .minValue = lo, .maxValue = hi};
  }
  VComboBoxOptions Text(std::int32_t max, std::string allowed = {}, const SettingMap* map = {}) {
    VComboBoxOptions options{.kind = kVComboBoxText, .bundle = bundle, .map = map,
                             .historyKey = {}, .minLength = 1, .maxLength = max,
                             .allowedCharacters = {}};
    if (!allowed.empty()) options.allowedCharacters = allowed;
    return options;
  }
  static VComboBoxOptions WithHistory(VComboBoxOptions options, std::int32_t limit = 0) {
    options.historyKey = "entries";
    options.historyLimit = limit;
    return options;
  }
  Step Typed(std::string text) { return [=, this] { TypeText(combo, text); }; }
  Step Chosen(std::string title) { return [=, this] { ChooseMenuItemByText(combo, title); }; }
  Step Set(plist::Value value) { return [=, this] { VComboBoxSetValue(&combo, &value); }; }
  void SetUpBox(const VComboBoxOptions& options) {
    combo.setText({});
    combo.menu()->deleteAllItems();
    ASSERT_EQ(VComboBoxInitializeWithMapAndHistory(&combo, &options), noErr);
  }
  static Strings Titles(const Control& box) {
    Strings titles;
    for (MenuItemIndex i = 1; i <= box.menu()->count(); ++i)
      titles.push_back(box.menu()->item(i)->text);
    return titles;
  }
  static void Store(const std::string& key, const Strings& entries, plist::Array array = {}) {
    for (const std::string& entry : entries) array.append(plist::Value(entry));
    const auto change = [&](plist::Dictionary& file) { file.set(key, plist::Value(array)); };
    ASSERT_TRUE(sys::UpdateUserPreferences(kInputHistoryFileName, change));
  }
  static Strings History(const std::string& key = "entries") {
    Strings entries;
    for (const plist::Value& entry : sys::CopyUserPreferences(kInputHistoryFileName)
                                         ->getArray(key).value_or(plist::Array()))
      entries.push_back(*entry.asString());
    return entries;
  }

  testing::TempDir folder;
  testing::ScopedEnv env{{"XDG_CONFIG_HOME", folder.path().string()},
                         {"HOME", folder.path().string()}};
  bundle::BundleRef bundle = testing::MakeBundle(
      folder, {{"Auto", "Automatic"}, {"Public", "Public Folder"}, {"None", "No Folder"}});
  Control& combo;
  Control& elsewhere;
};

TEST_F(HistoryComboBox, WhatIsTypedOrSetIsShownAndReadBackWithinTheBoxsRules) {
  using V = plist::Value;
  struct Case {
    const char* what;
    VComboBoxOptions options;
    Step enter;
    const char* shown;         // while the person is in the box
    const char* afterLeaving;  // null: as shown; numbers out of range become the nearest end
    std::optional<V> value;    // nullopt: the box holds no value
  } cases[] = {
      {"three digits below 1000", Numeric(1, 999), Typed("12a345"), "123", nullptr, V(123)},
      {"no maximum", Numeric(0, 0), Typed("1234567890"), "123456789", nullptr, V(123456789)},
      {"above the maximum", Numeric(1, 500), Typed("750"), "750", "500", V(500)},
      {"below the minimum", Numeric(10, 999), Typed("5"), "5", "10", V(10)},
      {"a number set", Numeric(1, 999), Set(V(42)), "42", nullptr, V(42)},
      {"neither a string nor a number", Numeric(1, 999), Set(V(true)), "", nullptr, std::nullopt},
      {"a fixed title", Numeric(1, 999, kAutoMap), Set(V(1000)), "Automatic", nullptr, V(1000)},
      {"text of its length and characters", Text(4, "abc "), Typed("abxc ab"), "abc ", nullptr,
       V("abc ")},
      {"a fixed item in a text box", Text(24, {}, kAutoMap), Chosen("Automatic"), "Automatic",
       nullptr, V(1000)},
      {"typed text stays text", Text(24, {}, kAutoMap), Typed("1000"), "1000", nullptr, V("1000")},
      {"no rules", VComboBoxOptions{}, Typed("any text!"), "any text!", nullptr, V("any text!")},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    SetUpBox(c.options);
    SetFocus(combo);
    c.enter();
    EXPECT_EQ(combo.text(), c.shown);
    SetFocus(elsewhere);
    EXPECT_EQ(combo.text(), c.afterLeaving ? c.afterLeaving : c.shown);
    std::optional<V> value;
    EXPECT_EQ(VComboBoxCopyValue(&combo, &value), c.value ? noErr : kVComboBoxNoValue);
    EXPECT_EQ(value, c.value);
  }
}

TEST_F(HistoryComboBox, TheListHoldsTheMapsItemsThenTheStoredEntriesThatFit) {
  Store("entries", {"12", "1000", "abc", "0", "999", "1.5", "ok", "far too long", "bad!", ""},
        plist::Array{plist::Value(7)});  // not a string: never offered
  const std::pair<VComboBoxOptions, Strings> cases[] = {
      {Numeric(1, 999, kTwoRowMap), {"Automatic", "Public Folder"}},  // every row
      {Numeric(1, 999, kZeroFirstMap), {}},  // a first row of 0 gives none
      {Numeric(1, 999, kZeroInsideMap), {"Automatic"}},  // a row of 0 ends them
      {WithHistory(Numeric(1, 999, kAutoMap)), {"Automatic", "12", "999"}},  // numbers in range
      {WithHistory(Numeric(0, 0)), {"12", "1000", "0", "999"}},  // no maximum
      {WithHistory(Text(5, "abcdefghijklmnopqrstuvwxyz0123456789")),
       {"12", "1000", "abc", "0", "999", "ok"}},  // text that fits
      {WithHistory(VComboBoxOptions{}),
       {"12", "1000", "abc", "0", "999", "1.5", "ok", "far too long", "bad!", ""}},  // any text
  };
  for (const auto& [options, titles] : cases) {
    SetUpBox(options);
    EXPECT_EQ(Titles(combo), titles);
  }
}

TEST_F(HistoryComboBox, ConfirmingPutsANewEntryFirstInTheRereadFileWithinTheLimit) {
  const Strings five = {"e1", "e2", "e3", "e4", "e5"};
  Store("otherKey", {"kept"});
  struct Case {
    const char* what;
    std::int32_t limit;
    Step enter;
    bool save;
    Strings after;
  } cases[] = {
      {"a new entry pushes out the oldest", 5, Typed("new"), true, {"new", "e1", "e2", "e3", "e4"}},
      {"no limit keeps them all", 0, Typed("new"), true, {"new", "e1", "e2", "e3", "e4", "e5"}},
      {"another dialog saved meanwhile", 5,
       [&] { Store("entries", {"theirs", "e1"}); TypeText(combo, "new"); }, true,
       {"new", "theirs", "e1"}},
      {"a fixed item's title is no entry", 5, Chosen("Automatic"), true, five},
      {"an entry in the list already", 5, Chosen("e3"), true, five},
      {"an empty field", 5, [] {}, true, five},
      {"not confirmed", 5, Typed("new"), false, five},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Store("entries", five);
    SetUpBox(WithHistory(Text(24, {}, kAutoMap), c.limit));
    c.enter();
    EXPECT_EQ(VComboBoxFinalize(&combo, c.save), noErr);
    EXPECT_EQ(History(), c.after);
    EXPECT_EQ(History("otherKey"), Strings{"kept"});
  }
}

TEST_F(HistoryComboBox, FinalizingReportsAFailedSaveAndLetsGoOfTheBoxsState) {
  const VComboBoxOptions options = WithHistory(Text(24));
  const long before = bundle.use_count();
  SetUpBox(options);
  SetUpBox(options);  // set up again: the earlier state goes
  // A folder where the file should go: the entry cannot be kept.
  TypeText(combo, "lost");
  std::filesystem::create_directories(folder / "varno" / kInputHistoryFileName);
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(VComboBoxFinalize(&combo, true), kPMIOError);
  ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(bundle.use_count(), before);
  EXPECT_EQ(VComboBoxFinalize(&combo, false), paramErr);

  Control& other = add(ControlKind::ComboBox, 4);
  ASSERT_EQ(VComboBoxInitializeWithMapAndHistory(&other, &options), noErr);
  ASSERT_EQ(other.dispose(), noErr);
  EXPECT_EQ(bundle.use_count(), before) << "disposed of without finalizing";
}

}  // namespace
}  // namespace varno::ui
