// SPDX-License-Identifier: Apache-2.0
// The saved job dialog ("store file in folder"), driven as a person would on the built
// plug-in's own window and strings, with the input history in a temporary folder.
#include "panels/paper_output/saved_job_dialog.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/bundle/test_bundle.h"
#include "platform/system/user_preferences.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/window.h"
#include "support/temp_dir.h"
#include "ui/history_combo_box.h"

namespace varno::panels {
namespace {

using Strings = std::vector<std::string>;
using toolkit::Window;

// Backspaces enough to empty any field of the dialog.
const std::string kClear(30, '\b');

// What a step saw of the open dialog: what is enabled or checked, and the focus.
std::string See(Window& window) {
  const auto on = [&](std::initializer_list<toolkit::ControlID> ids, const char* name) {
    const bool first = window.findByID(*ids.begin())->isEnabled();
    for (toolkit::ControlID id : ids)
      EXPECT_EQ(window.findByID(id)->isEnabled(), first) << "controls that go together";
    return first ? name : "";
  };
  return std::string(window.findByID(kSavedJobOKButtonID)->isEnabled() ? "OK" : "") +
         (window.findByID(kSavedJobSecureCheckBoxID)->value() ? " checked" : "") +
         on({kSavedJobPasscodeLabelID, kSavedJobPasscodeFieldID, kSavedJobPasscodeNoteID},
            " passcode") +
         on({kSavedJobConfirmLabelID, kSavedJobConfirmFieldID, kSavedJobConfirmNoteID},
            " confirm") +
         (window.focus() == window.findByID(kSavedJobPasscodeFieldID) ? " focused" : "");
}

toolkit::AutomationScript& script() { return toolkit::Application::shared().script(); }
void Type(toolkit::ControlID id, const std::string& text) { script().typeText(id, text); }
void Click(toolkit::ControlID id) { script().click(id); }
void Passcodes(const std::string& passcode, const std::string& confirmation) {
  Type(kSavedJobPasscodeFieldID, passcode);
  Type(kSavedJobConfirmFieldID, confirmation);
}

class SavedJobDialog : public ::testing::Test {
 protected:
  void TearDown() override { script().clear(); }
  // Starts each run with no notices, no help shown and the panel's fields as given.
  void start(std::optional<std::string> folder, std::int32_t hasPasscode,
             std::optional<std::string> passcode) {
    toolkit::HeadlessAlerts().clear();
    context_ = PaperOutputContext();
    context_.bundle = bundle_;
    context_.savedJobLocation = folder;
    context_.noLocation = folder ? 0 : 1;
    context_.hasPasscode = hasPasscode;
    context_.passcode = passcode;
    seen_.clear();
  }
  void look() { script().add("look", [this](auto& w) { return seen_.push_back(See(w)), noErr; }); }
  void run(std::size_t failures = 0) {
    ::testing::internal::CaptureStderr();
    ASSERT_EQ(RunModalSavedJobDialog(&context_), noErr);
    stderr_ = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(script().failures().size(), failures);
    EXPECT_EQ(script().pending(), 0u);
    script().clear();
  }
  std::string localized(const char* k) { return bundle_->localizedString(k, "Localizable", "?"); }
  static Strings History(const char* key) {
    Strings entries;
    std::optional<plist::Dictionary> file = sys::CopyUserPreferences(ui::kInputHistoryFileName);
    for (const plist::Value& entry : file->getArray(key).value_or(plist::Array()))
      entries.push_back(*entry.asString());
    return entries;
  }

  testing::TempDir home_;
  // The console log comes to standard error, where the tests read it.
  testing::ScopedEnv env_{{"XDG_CONFIG_HOME", home_.path().string()},
                          {"HOME", home_.path().string()},
                          {"VARNO_CONSOLE_LOG", "stderr"}};
  bundle::BundleRef bundle_ = bundle::Bundle::Open(VARNO_BUILT_PLUGIN);
  PaperOutputContext context_;
  Strings seen_;
  std::string stderr_;
};

TEST_F(SavedJobDialog, OKRefusesFoldersAbove200AndUnequalPasscodesAndMakesOneUpForNone) {
  const auto secure = [] { Click(kSavedJobSecureCheckBoxID); };
  struct Case {
    const char *what, *folder;           // the folder typed into the empty box
    std::optional<std::string> stored;   // the panel's passcode, with the box checked
    std::function<void()> steps;
    const char* notice;                   // its header's key; null: none
    bool accepted;                        // else refused, and nothing changes
    std::int32_t hasPasscode;             // after
    std::optional<std::string> passcode;  // after, "made" for a made-up one
  } cases[] = {
      {"folder 201", "201", {}, [] {}, "Invalid Mailbox Headline", false, 0, {}},
      {"folder 200", "200", {}, [] {}, nullptr, true, 0, {}},
      {"both passcodes empty", "5", {}, secure, "Passcode Required Header", true, 1, "made"},
      {"empty passcode, confirm still holding the old one", "5", "5678",
       [] { Type(kSavedJobPasscodeFieldID, kClear); }, "Passcode Required Header", true, 1, "made"},
      {"different", "5", {}, [=] { secure(); Passcodes("1234", "1235"); },
       "Invalid Secure Print Passcode Header", false, 0, {}},
      {"the same, at 20 digits", "5", {},
       [=] { secure(); Passcodes("123456789012345678901", "12345678901234567890"); }, nullptr,
       true, 1, "12345678901234567890"},
      {"box unchecked keeps the old passcode", "5", "5678", secure, nullptr, true, 0, "5678"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    start(std::nullopt, c.stored ? 1 : 0, c.stored);
    Type(kSavedJobFolderBoxID, c.folder);
    c.steps();
    Click(kSavedJobOKButtonID);
    if (!c.accepted) Click(kSavedJobCancelButtonID);  // refused: still open
    run();
    const std::vector<toolkit::NoticeRequest>& notices = toolkit::HeadlessAlerts().notices();
    ASSERT_EQ(notices.size(), c.notice ? 1u : 0u);
    if (c.notice) { EXPECT_EQ(notices[0].header, localized(c.notice)); }
    EXPECT_EQ(context_.savedJobLocation, c.accepted ? c.folder : std::optional<std::string>());
    EXPECT_EQ(context_.noLocation, c.accepted ? 0 : 1);
    EXPECT_EQ(context_.hasPasscode, c.hasPasscode);
    if (c.passcode != "made") {
      EXPECT_EQ(context_.passcode, c.passcode);
      continue;
    }
    ASSERT_TRUE(context_.passcode);
    EXPECT_EQ(context_.passcode->size(), 4u);
    EXPECT_GE(std::stoi(*context_.passcode), 1000);
    EXPECT_NE(notices[0].message.find(*context_.passcode), std::string::npos) << "named";
  }
}

TEST_F(SavedJobDialog, OKWaitsForANameAndAFolderAndTheBoxDecidesThePasscodeFields) {
  start(std::nullopt, 0, "12");
  context_.useJobName = 0;
  const std::string document = localized("UseJobName");
  const std::pair<std::function<void()>, const char*> steps[] = {  // and what they leave
      {[] {}, ""},
      {[] { Type(kSavedJobNameBoxID, "Report"); }, ""},
      {[] { Click(kSavedJobOKButtonID); Type(kSavedJobFolderBoxID, "12"); }, "OK"},  // OK dimmed
      {[] { Type(kSavedJobFolderBoxID, "\b\b"); }, ""},
      {[] { Type(kSavedJobFolderBoxID, "3"); Type(kSavedJobNameBoxID, kClear); }, ""},
      {[&] { script().chooseMenuItemByText(kSavedJobNameBoxID, document); }, "OK"},
      {[] { Click(kSavedJobSecureCheckBoxID); }, "OK checked passcode focused"},  // 2 digits
      {[] { Type(kSavedJobPasscodeFieldID, "3"); }, "OK checked passcode confirm focused"},
      {[] { Type(kSavedJobPasscodeFieldID, kClear); }, "OK checked passcode focused"},
      {[] { Click(kSavedJobSecureCheckBoxID); }, "OK"},
  };
  Strings expected;
  for (const auto& [step, after] : steps) {
    step();
    look();
    expected.push_back(after);
  }
  Click(kSavedJobCancelButtonID);
  run(1);  // the click on the dimmed OK
  EXPECT_EQ(seen_, expected);
}

TEST_F(SavedJobDialog, ItStartsFromThePanelAndOKStoresAndRemembersWhatItShowsCancelNothing) {
  struct Case {
    const char* what;
    bool type, useDocumentName, accept;  // a new name (or the document's), folder and passcode
    const char *name, *folder, *passcode;  // stored after
    std::int32_t useJobName;
    Strings names, folders;  // remembered after; the document name is no entry
  } cases[] = {
      {"untouched", false, false, true, "Minutes", "7", "4321", 0, {"Minutes"}, {"7"}},
      {"typed, then Cancel", true, false, false, "Minutes", "7", "4321", 0, {}, {}},
      {"typed", true, false, true, "Quarterly", "42", "9876", 0, {"Quarterly"}, {"42"}},
      {"document name", true, true, true, "Minutes", "42", "9876", 1, {}, {"42"}},
  };
  const std::string document = localized("UseJobName");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::filesystem::remove_all(home_.path() / "varno");  // no history yet
    start("7", 1, "4321");
    context_.savedJobName = "Minutes";
    context_.useJobName = 0;
    look();
    script().sendCommand(kSavedJobHelpCommand);
    if (c.type) {
      Type(kSavedJobNameBoxID, kClear + "Quarterly");
      if (c.useDocumentName) script().chooseMenuItemByText(kSavedJobNameBoxID, document);
      Type(kSavedJobFolderBoxID, kClear + "42");
      Passcodes(kClear + "9876", kClear + "9876");
    }
    Click(c.accept ? kSavedJobOKButtonID : kSavedJobCancelButtonID);
    run();
    EXPECT_EQ(seen_, Strings{"OK checked passcode confirm"});
    ASSERT_EQ(toolkit::HeadlessAlerts().helpRequests().size(), 1u);
    EXPECT_EQ(toolkit::HeadlessAlerts().helpRequests()[0].page, kSavedJobHelpPage);
    ASSERT_NE(stderr_, "") << "the log comes to standard error";
    for (const char* passcode : {"4321", "9876"})
      EXPECT_EQ(stderr_.find(passcode), std::string::npos) << "no passcode goes to the log";
    EXPECT_EQ(context_.savedJobName, c.name);
    EXPECT_EQ(context_.useJobName, c.useJobName);
    EXPECT_EQ(context_.savedJobLocation, c.folder);
    EXPECT_EQ(context_.noLocation, 0);
    EXPECT_EQ(context_.hasPasscode, 1);
    EXPECT_EQ(context_.passcode, c.passcode);
    EXPECT_EQ(History("savedJobNames"), c.names);
    EXPECT_EQ(History("mailboxNumbers"), c.folders);
  }
}

TEST_F(SavedJobDialog, AMissingWindowIsReportedAndChangesNothing) {
  testing::TempDir dir;
  dir.write("Bare.plugin/Contents/Info.plist",
            "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>");
  context_.bundle = bundle::Bundle::Open(dir / "Bare.plugin");
  context_.savedJobName = "Kept";
  EXPECT_EQ(RunModalSavedJobDialog(&context_), kInterfaceFileNotFound);
  EXPECT_EQ(context_.savedJobName, "Kept");
  EXPECT_EQ(RunModalSavedJobDialog(nullptr), paramErr);
}

}  // namespace
}  // namespace varno::panels
