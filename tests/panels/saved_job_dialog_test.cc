// SPDX-License-Identifier: Apache-2.0
// The saved job dialog ("store file in folder"), driven as a person would on the built
// plug-in's own window and strings, with the input history in a temporary folder.
#include "panels/paper_output/saved_job_dialog.h"

#include <gtest/gtest.h>

#include <cstdlib>

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

// What a step saw of the open dialog.
struct Seen {
  bool ok;
  std::int32_t secure;
  bool passcode;  // the passcode label, field and note alike
  bool confirm;   // the confirm label, field and note alike
  bool passcodeFocused;
  bool operator==(const Seen&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Seen& s) {
  return out << "{OK " << (s.ok ? "on" : "off") << ", box " << s.secure << ", passcode "
             << (s.passcode ? "on" : "off") << ", confirm " << (s.confirm ? "on" : "off")
             << (s.passcodeFocused ? ", focused}" : "}");
}

Seen See(Window& window) {
  const auto enabled = [&](std::initializer_list<toolkit::ControlID> ids) {
    bool first = window.findByID(*ids.begin())->isEnabled();
    for (toolkit::ControlID id : ids)
      EXPECT_EQ(window.findByID(id)->isEnabled(), first) << "controls that go together";
    return first;
  };
  return {window.findByID(kSavedJobOKButtonID)->isEnabled(),
          window.findByID(kSavedJobSecureCheckBoxID)->value(),
          enabled({kSavedJobPasscodeLabelID, kSavedJobPasscodeFieldID, kSavedJobPasscodeNoteID}),
          enabled({kSavedJobConfirmLabelID, kSavedJobConfirmFieldID, kSavedJobConfirmNoteID}),
          window.focus() == window.findByID(kSavedJobPasscodeFieldID)};
}

class SavedJobDialog : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(bundle_);
    // The console log comes to standard error, where the tests read it.
    ::setenv("VARNO_CONSOLE_LOG", "stderr", 1);
    context_.bundle = bundle_;
    context_.jobType = kSavedJob;
  }
  void TearDown() override {
    script().clear();
    toolkit::HeadlessAlerts().clear();
  }
  static toolkit::AutomationScript& script() { return toolkit::Application::shared().script(); }
  void look() {
    script().add("look", [this](Window& window) {
      seen_.push_back(See(window));
      return noErr;
    });
  }
  void run(std::size_t failures = 0) {
    ::testing::internal::CaptureStderr();
    ASSERT_EQ(RunModalSavedJobDialog(&context_), noErr);
    stderr_ = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(script().failures().size(), failures);
    EXPECT_EQ(script().pending(), 0u);
    script().clear();
  }
  std::string localized(const char* key) const {
    return bundle_->localizedString(key, "Localizable", "STRING NOT FOUND");
  }
  static Strings History(const char* key) {
    Strings entries;
    std::optional<plist::Dictionary> file = sys::CopyUserPreferences(ui::kInputHistoryFileName);
    for (const plist::Value& entry : file->getArray(key).value_or(plist::Array()))
      entries.push_back(*entry.asString());
    return entries;
  }
  const std::vector<toolkit::NoticeRequest>& notices() const {
    return toolkit::HeadlessAlerts().notices();
  }

  testing::TempDir home_;
  testing::ScopedEnv env_{{"XDG_CONFIG_HOME", home_.path().string()},
                          {"HOME", home_.path().string()}};
  bundle::BundleRef bundle_ = bundle::Bundle::Open(VARNO_BUILT_PLUGIN);
  PaperOutputContext context_;
  std::vector<Seen> seen_;
  std::string stderr_;
};

TEST_F(SavedJobDialog, FoldersAbove200AreRefusedWithTheMailboxNotice) {
  struct Case {
    const char* folder;
    bool accepted;
  } cases[] = {{"201", false}, {"999", false}, {"0", true}, {"200", true}, {"007", true}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.folder);
    toolkit::HeadlessAlerts().clear();
    context_.savedJobLocation.reset();
    context_.noLocation = 1;
    script().typeText(kSavedJobFolderBoxID, c.folder);
    script().click(kSavedJobOKButtonID);
    if (!c.accepted) script().click(kSavedJobCancelButtonID);  // refused: still open
    run();
    if (c.accepted) {
      EXPECT_TRUE(notices().empty());
      EXPECT_EQ(context_.savedJobLocation, c.folder);
      EXPECT_EQ(context_.noLocation, 0);
    } else {
      ASSERT_EQ(notices().size(), 1u);
      EXPECT_EQ(notices()[0].header, localized("Invalid Mailbox Headline"));
      EXPECT_NE(notices()[0].message.find("200"), std::string::npos) << notices()[0].message;
      EXPECT_FALSE(context_.savedJobLocation);
      EXPECT_EQ(context_.noLocation, 1);
    }
  }
}

TEST_F(SavedJobDialog, OKChecksThePasscodesAndMakesOneUpWhenNoneIsTyped) {
  struct Case {
    const char* what;
    std::optional<std::string> stored;  // the panel's passcode, with the box checked
    std::function<void()> steps;
    const char* noticeHeader;  // null: none
    bool accepted;
    std::int32_t hasPasscode;             // after
    std::optional<std::string> passcode;  // after; "made" for a made-up one
  } cases[] = {
      {"both empty", std::nullopt, [] { script().click(kSavedJobSecureCheckBoxID); },
       "Passcode Required Header", true, 1, "made"},
      {"empty passcode, confirm still holding the old one", "5678",
       [] { script().typeText(kSavedJobPasscodeFieldID, kClear); }, "Passcode Required Header",
       true, 1, "made"},
      {"different", std::nullopt,
       [] {
         script().click(kSavedJobSecureCheckBoxID);
         script().typeText(kSavedJobPasscodeFieldID, "1234");
         script().typeText(kSavedJobConfirmFieldID, "1235");
       },
       "Invalid Secure Print Passcode Header", false, 0, std::nullopt},
      {"the same", std::nullopt,
       [] {
         script().click(kSavedJobSecureCheckBoxID);
         script().typeText(kSavedJobPasscodeFieldID, "12345678901234567890");
         script().typeText(kSavedJobConfirmFieldID, "12345678901234567890");
       },
       nullptr, true, 1, "12345678901234567890"},
      {"box unchecked keeps the old passcode", "5678",
       [] { script().click(kSavedJobSecureCheckBoxID); }, nullptr, true, 0, "5678"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    toolkit::HeadlessAlerts().clear();
    context_.savedJobLocation = "5";
    context_.noLocation = 0;
    context_.passcode = c.stored;
    context_.hasPasscode = c.stored ? 1 : 0;
    c.steps();
    script().click(kSavedJobOKButtonID);
    if (!c.accepted) script().click(kSavedJobCancelButtonID);
    run();
    EXPECT_EQ(notices().size(), c.noticeHeader ? 1u : 0u);
    if (c.noticeHeader && !notices().empty()) {
      EXPECT_EQ(notices()[0].header, localized(c.noticeHeader));
    }
    EXPECT_EQ(context_.hasPasscode, c.hasPasscode);
    if (!c.accepted) {
      EXPECT_EQ(context_.passcode, c.stored) << "refused: nothing changes";
      continue;
    }
    ASSERT_TRUE(context_.passcode);
    if (std::string(c.passcode.value_or("")) != "made") {
      EXPECT_EQ(context_.passcode, c.passcode);
      continue;
    }
    const int made = std::stoi(*context_.passcode);
    EXPECT_GE(made, 1000);
    EXPECT_LE(made, 9999);
    EXPECT_EQ(context_.passcode->size(), 4u);
    // The notice names the passcode wherever its text has room for it.
    if (localized("Passcode Required Message").find('%') != std::string::npos) {
      EXPECT_NE(notices()[0].message.find(*context_.passcode), std::string::npos);
    }
  }
  EXPECT_EQ(stderr_.find("5678"), std::string::npos) << "no passcode goes to the log";
}

TEST_F(SavedJobDialog, OKWaitsForANameAndAFolderAndTheBoxDecidesThePasscodeFields) {
  context_.useJobName = 0;
  context_.savedJobName.clear();
  context_.passcode = "12";
  look();
  script().typeText(kSavedJobNameBoxID, "Report");
  look();
  script().click(kSavedJobOKButtonID);  // refused: OK is dimmed
  script().typeText(kSavedJobFolderBoxID, "12");
  look();
  script().typeText(kSavedJobFolderBoxID, "\b\b");
  look();
  script().typeText(kSavedJobFolderBoxID, "3");
  script().typeText(kSavedJobNameBoxID, kClear);
  look();
  script().chooseMenuItemByText(kSavedJobNameBoxID, localized("UseJobName"));
  look();
  script().click(kSavedJobSecureCheckBoxID);  // a passcode of two digits: no confirm yet
  look();
  script().typeText(kSavedJobPasscodeFieldID, "3");
  look();
  script().typeText(kSavedJobPasscodeFieldID, kClear);
  look();
  script().click(kSavedJobSecureCheckBoxID);
  look();
  script().click(kSavedJobCancelButtonID);
  run(1);
  const std::vector<Seen> expected = {
      {false, 0, false, false, false},  // neither name nor folder
      {false, 0, false, false, false},  // a name only
      {true, 0, false, false, false},   // both
      {false, 0, false, false, false},  // folder emptied
      {false, 0, false, false, false},  // name emptied
      {true, 0, false, false, false},   // "Use Document Name" is a name
      {true, 1, true, false, true},
      {true, 1, true, true, true},    // typing into the passcode opens the confirm field
      {true, 1, true, false, true},   // emptying it closes it
      {true, 0, false, false, false},
  };
  EXPECT_EQ(seen_, expected);
}

TEST_F(SavedJobDialog, TheDialogStartsFromThePanelAndOKStoresWhatItShows) {
  context_.useJobName = 0;
  context_.savedJobName = "Minutes";
  context_.savedJobLocation = "7";
  context_.noLocation = 0;
  context_.hasPasscode = 1;
  context_.passcode = "4321";
  std::vector<std::string> shown;
  script().add("look at the fields", [&shown](Window& window) {
    for (toolkit::ControlID id : {kSavedJobNameBoxID, kSavedJobFolderBoxID,
                                  kSavedJobPasscodeFieldID, kSavedJobConfirmFieldID})
      shown.push_back(window.findByID(id)->text());
    EXPECT_TRUE(window.findByID(kSavedJobPasscodeFieldID)->isPassword());
    EXPECT_TRUE(window.findByID(kSavedJobConfirmFieldID)->isPassword());
    EXPECT_FALSE(window.findByID(kSavedJobFolderNameLabelID));
    EXPECT_FALSE(window.findByID(kSavedJobFolderNamePopupID));
    return noErr;
  });
  look();
  script().sendCommand(kSavedJobHelpCommand);
  script().click(kSavedJobOKButtonID);
  run();
  EXPECT_EQ(shown, (Strings{"Minutes", "7", "4321", "4321"}));
  EXPECT_EQ(seen_, (std::vector<Seen>{{true, 1, true, true, false}}));
  EXPECT_NE(stderr_.find("Values restored."), std::string::npos);
  EXPECT_EQ(stderr_.find("4321"), std::string::npos) << "no passcode goes to the log";
  ASSERT_EQ(toolkit::HeadlessAlerts().helpRequests().size(), 1u);
  EXPECT_EQ(toolkit::HeadlessAlerts().helpRequests()[0].page, kSavedJobHelpPage);
  EXPECT_EQ(context_.savedJobName, "Minutes");
  EXPECT_EQ(context_.useJobName, 0);
  EXPECT_EQ(context_.passcode, "4321");
  // What the boxes showed is remembered, typed now or not.
  EXPECT_EQ(History("savedJobNames"), Strings{"Minutes"});
  EXPECT_EQ(History("mailboxNumbers"), Strings{"7"});
}

TEST_F(SavedJobDialog, AcceptStoresAndRemembersWhatWasTypedAndCancelNeither) {
  struct Case {
    const char* what;
    bool useDocumentName;
    bool accept;
  } cases[] = {{"cancelled", false, false},
               {"typed name", false, true},
               {"document name", true, true}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    context_ = PaperOutputContext();
    context_.bundle = bundle_;
    context_.useJobName = 1;
    context_.savedJobName = "Old";
    script().typeText(kSavedJobNameBoxID, kClear + "Quarterly");
    if (c.useDocumentName)
      script().chooseMenuItemByText(kSavedJobNameBoxID, localized("UseJobName"));
    script().typeText(kSavedJobFolderBoxID, "42");
    script().click(kSavedJobSecureCheckBoxID);
    script().typeText(kSavedJobPasscodeFieldID, "9876");
    script().typeText(kSavedJobConfirmFieldID, "9876");
    script().click(c.accept ? kSavedJobOKButtonID : kSavedJobCancelButtonID);
    run();
    const PaperOutputContext before;
    if (!c.accept) {
      EXPECT_EQ(context_.savedJobName, "Old");
      EXPECT_EQ(context_.useJobName, 1);
      EXPECT_EQ(context_.savedJobLocation, before.savedJobLocation);
      EXPECT_EQ(context_.noLocation, before.noLocation);
      EXPECT_EQ(context_.hasPasscode, before.hasPasscode);
      EXPECT_EQ(context_.passcode, before.passcode);
      EXPECT_TRUE(History("savedJobNames").empty());
      EXPECT_TRUE(History("mailboxNumbers").empty());
      continue;
    }
    EXPECT_EQ(context_.savedJobName, c.useDocumentName ? "Old" : "Quarterly");
    EXPECT_EQ(context_.useJobName, c.useDocumentName ? 1 : 0);
    EXPECT_EQ(context_.savedJobLocation, "42");
    EXPECT_EQ(context_.noLocation, 0);
    EXPECT_EQ(context_.hasPasscode, 1);
    EXPECT_EQ(context_.passcode, "9876");
    // The document name is no entry of the history, and a folder offered already is not
    // added again.
    EXPECT_EQ(History("savedJobNames"), Strings{"Quarterly"});
    EXPECT_EQ(History("mailboxNumbers"), Strings{"42"});
  }
}

TEST_F(SavedJobDialog, AMissingWindowIsReportedAndChangesNothing) {
  testing::TempDir dir;
  dir.write("Bare.plugin/Contents/Info.plist",
            "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>");
  context_.bundle = bundle::Bundle::Open(dir / "Bare.plugin");
  ASSERT_TRUE(context_.bundle);
  context_.savedJobName = "Kept";
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(RunModalSavedJobDialog(&context_), kInterfaceFileNotFound);
  EXPECT_NE(::testing::internal::GetCapturedStderr().find("RunModalSavedJobDialog() failed"),
            std::string::npos);
  EXPECT_EQ(context_.savedJobName, "Kept");
  EXPECT_EQ(RunModalSavedJobDialog(nullptr), paramErr);
}

}  // namespace
}  // namespace varno::panels
