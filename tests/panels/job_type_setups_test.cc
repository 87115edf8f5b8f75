// SPDX-License-Identifier: Apache-2.0
// The secure print and delayed print set-ups, driven as a person would on the built
// plug-in's own windows and strings.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "panels/paper_output/delayed_print_setup.h"
#include "panels/paper_output/secure_print_setup.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/event.h"
#include "support/temp_dir.h"

namespace varno::panels {
namespace {

using toolkit::Window;

const std::string kClear(13, '\b');
constexpr std::int64_t kDay = 86400;
// 2 January 2024, 00:00 local time, in seconds since 1904.
constexpr std::int64_t kMidnight = 3786998400;
constexpr std::int64_t At(int hour, int minute, int second = 0) {
  return hour * 3600 + minute * 60 + second;
}

class JobTypeSetups : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(bundle_); }
  void TearDown() override {
    script().clear();
    toolkit::HeadlessAlerts().clear();
  }
  static toolkit::AutomationScript& script() { return toolkit::Application::shared().script(); }
  std::string text(const char* key) { return bundle_->localizedString(key, "Localizable", "?"); }
  // Queues a look at the open dialog.
  void peek(std::function<void(Window&)> see) {
    script().add("peek", [see](Window& window) {
      see(window);
      return noErr;
    });
  }
  // Queues a handler that looks at the dialog once its own handler has run a command.
  void peekAfterCommands(std::function<void(Window&)> see) {
    script().add("watch commands", [see](Window& window) {
      window.installHandler({{toolkit::kEventClassCommand, toolkit::kEventCommandProcess}},
                            [see, &window](toolkit::EventHandlerCallRef call, toolkit::Event& e) {
                              const OSStatus status = toolkit::CallNextEventHandler(call, &e);
                              see(window);
                              return status;
                            });
      return noErr;
    });
  }

  bundle::BundleRef bundle_ = bundle::Bundle::Open(VARNO_BUILT_PLUGIN);
};

// --- Secure print -----------------------------------------------------------------------

std::string Field(Window& window, toolkit::ControlID id) { return window.findByID(id)->text(); }

void PressOK() { toolkit::Application::shared().script().sendCommand(toolkit::kHICommandOK); }

TEST_F(JobTypeSetups, SecureOKTakesEqualFieldsMakesAPasscodeForEmptyOnesRefusesOthers) {
  struct Case {
    const char* what;
    std::optional<std::string> before;
    std::function<void()> steps;  // they end the dialog
    std::vector<std::string> headers;  // of the notices, by key
    std::optional<std::string> after;  // "made": a made-up passcode
  } cases[] = {
      {"equal", std::nullopt,
       [] {
         script().typeText(kSecurePasscodeFieldID, "0420");
         script().typeText(kSecureConfirmFieldID, "0420");
         PressOK();
       },
       {}, "0420"},
      {"both empty", std::nullopt, PressOK, {"Passcode Required Header"}, "made"},
      {"an empty passcode with a confirmation differs", "77",
       [] {
         script().typeText(kSecureConfirmFieldID, kClear + "5");
         script().typeText(kSecurePasscodeFieldID, kClear);
         PressOK();
         script().sendCommand(toolkit::kHICommandCancel);
       },
       {"Invalid Secure Print Passcode Header"}, "77"},
      {"different, then put right", std::nullopt,
       [] {
         script().typeText(kSecurePasscodeFieldID, "1234");
         script().typeText(kSecureConfirmFieldID, "1243");
         PressOK();
         script().typeText(kSecureConfirmFieldID, kClear + "1234");
         PressOK();
       },
       {"Invalid Secure Print Passcode Header"}, "1234"},
      {"a stored passcode is kept", "987", PressOK, {}, "987"},
      {"Cancel keeps the passcode", "55",
       [] {
         script().typeText(kSecurePasscodeFieldID, "66");
         script().typeText(kSecureConfirmFieldID, "66");
         script().sendCommand(toolkit::kHICommandCancel);
       },
       {}, "55"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    toolkit::HeadlessAlerts().clear();
    std::vector<std::string> shown;  // both fields, at the start and after each command
    const auto look = [&shown](Window& w) {
      shown.push_back(Field(w, kSecurePasscodeFieldID) + "/" + Field(w, kSecureConfirmFieldID));
    };
    peek(look);
    peekAfterCommands(look);
    c.steps();
    std::optional<std::string> passcode = c.before;
    ASSERT_EQ(RunModalSecurePrintSetup(bundle_, &passcode), noErr);
    EXPECT_EQ(script().failures(), std::vector<std::string>{});
    EXPECT_EQ(script().pending(), 0u) << "a refused OK leaves the dialog open";
    ASSERT_TRUE(passcode);
    const std::string before = c.before.value_or("");
    EXPECT_EQ(shown.front(), before + "/" + before) << "a stored passcode shows in both fields";

    std::vector<std::string> headers;
    for (const toolkit::NoticeRequest& notice : toolkit::HeadlessAlerts().notices()) {
      headers.push_back(notice.header);
      EXPECT_NE(notice.message.find("1 to 12 digits"), std::string::npos) << notice.message;
    }
    std::vector<std::string> expected;
    for (const std::string& key : c.headers) expected.push_back(text(key.c_str()));
    EXPECT_EQ(headers, expected);
    if (c.after != "made") {
      EXPECT_EQ(passcode, c.after);
      script().clear();
      continue;
    }
    EXPECT_EQ(passcode->size(), 4u);
    EXPECT_GE(std::stoi(*passcode), 1000);
    EXPECT_LE(std::stoi(*passcode), 9999);
    EXPECT_EQ(shown.back(), *passcode + "/" + *passcode);
    EXPECT_NE(toolkit::HeadlessAlerts().notices()[0].message.find(*passcode), std::string::npos);
    script().clear();
  }
}

struct Seen {
  std::string passcode, confirmation;
  bool confirmEnabled, passcodeFocused;
  bool operator==(const Seen&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Seen& s) {
  return out << "{\"" << s.passcode << "\", \"" << s.confirmation << "\""
             << (s.confirmEnabled ? ", confirm enabled" : ", confirm dimmed")
             << (s.passcodeFocused ? ", focused}" : "}");
}

TEST_F(JobTypeSetups, SecureFieldsTakeUpToTwelveDigitsAndConfirmingFollowsThePasscode) {
  std::vector<Seen> seen;
  const auto look = [&] {
    peek([&seen](Window& w) {
      seen.push_back({Field(w, kSecurePasscodeFieldID), Field(w, kSecureConfirmFieldID),
                      w.findByID(kSecureConfirmFieldID)->isEnabled(),
                      w.focus() == w.findByID(kSecurePasscodeFieldID)});
      EXPECT_TRUE(w.findByID(kSecurePasscodeFieldID)->isPassword());
      EXPECT_TRUE(w.findByID(kSecureConfirmFieldID)->isPassword());
    });
  };
  look();
  script().typeText(kSecureConfirmFieldID, "1");  // refused: dimmed
  script().typeText(kSecurePasscodeFieldID, "1a2-3 ");
  look();
  script().typeText(kSecurePasscodeFieldID, "4567890123456");
  script().typeText(kSecureConfirmFieldID, "98765432109876");
  look();
  script().typeText(kSecurePasscodeFieldID, kClear);
  look();
  script().sendCommand(toolkit::kHICommandCancel);
  std::optional<std::string> passcode;
  ASSERT_EQ(RunModalSecurePrintSetup(bundle_, &passcode), noErr);
  EXPECT_EQ(script().failures().size(), 1u);
  EXPECT_FALSE(passcode);
  const std::vector<Seen> expected = {
      {"", "", false, true},
      {"123", "", true, true},
      {"123456789012", "987654321098", true, false},
      {"", "987654321098", false, true},
  };
  EXPECT_EQ(seen, expected);
}

// --- Delayed print ----------------------------------------------------------------------

TEST_F(JobTypeSetups, DelayedOKHoldsTheJobUntilTheClocksTimeOfDayNextComes) {
  constexpr std::int64_t kMarch2001 = 3066249600;  // another day's midnight
  struct Case {
    const char* what;
    std::int64_t now;                   // seconds into 2 January
    std::optional<std::int64_t> clock;  // a time of day set on 1 March 2001; nullopt: untouched
    std::int64_t after;                 // seconds from 2 January, 00:00
  } cases[] = {
      {"a minute before now: tomorrow", At(14, 30), At(14, 29), kDay + At(14, 29)},
      {"a minute after now: today", At(14, 30), At(14, 31), At(14, 31)},
      {"now itself: today", At(14, 30), At(14, 30), At(14, 30)},
      {"after midnight, for late tonight", At(0, 0, 10), At(23, 59), At(23, 59)},
      {"before midnight, for early tomorrow", At(23, 59, 30), At(0, 10), kDay + At(0, 10)},
      {"the stored time of day, untouched", At(14, 30), std::nullopt, kDay + At(9, 15)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::int64_t stored = kMarch2001 - 20 * kDay + At(9, 15);
    std::int64_t shown = 0;
    peek([&shown](Window& w) { shown = w.findByID(kDelayedClockID)->dateTime(); });
    if (c.clock) script().setDateTime(kDelayedClockID, kMarch2001 + *c.clock);
    script().sendCommand(toolkit::kHICommandOK);
    std::int64_t time = stored;
    ASSERT_EQ(RunModalDelayedPrintSetup(bundle_, &time, kMidnight + c.now), noErr);
    EXPECT_EQ(script().failures(), std::vector<std::string>{});
    EXPECT_EQ(shown, stored) << "the clock starts at the stored time";
    EXPECT_EQ(time - kMidnight, c.after);
    script().clear();
  }

  std::int64_t time = kMarch2001;
  script().setDateTime(kDelayedClockID, kMarch2001 + At(18, 0));
  script().sendCommand(toolkit::kHICommandCancel);
  ASSERT_EQ(RunModalDelayedPrintSetup(bundle_, &time, kMidnight), noErr);
  EXPECT_EQ(time, kMarch2001) << "Cancel keeps the time";
}

// --- Both -------------------------------------------------------------------------------

TEST_F(JobTypeSetups, EachOpensItsHelpPageShowsItsPictureAndTextsAndSizesItsButtonsAlike) {
  struct Dialog {
    const char* page;
    toolkit::ControlID icon;
    const char* picture;
    std::function<OSStatus()> run;
  } dialogs[] = {
      {kSecureHelpPage, kSecureIconID, kSecurePrintPicture,
       [this] {
         std::optional<std::string> passcode;
         return RunModalSecurePrintSetup(bundle_, &passcode);
       }},
      {kDelayedHelpPage, kDelayedIconID, kDelayedPrintPicture,
       [this] {
         std::int64_t time = kMidnight;
         return RunModalDelayedPrintSetup(bundle_, &time);
       }},
  };
  for (const Dialog& d : dialogs) {
    SCOPED_TRACE(d.page);
    toolkit::HeadlessAlerts().clear();
    peek([&d](Window& w) {
      EXPECT_EQ(w.text().find("STRING NOT FOUND"), std::string::npos);
      for (std::size_t i = 0; i < w.childCount(); ++i)
        EXPECT_EQ(w.child(i)->text().find("STRING NOT FOUND"), std::string::npos) << i;
      EXPECT_EQ(w.findByID(d.icon)->pictureName(), d.picture);
      const toolkit::Rect ok = w.findByID({ui::kPanelUICreator, 1})->bounds();
      const toolkit::Rect cancel = w.findByID({ui::kPanelUICreator, 2})->bounds();
      EXPECT_EQ(ok.width(), cancel.width());
      EXPECT_LT(cancel.right, ok.left);
    });
    script().sendCommand(MakeOSType("Vhlp"));
    script().sendCommand(toolkit::kHICommandCancel);
    EXPECT_EQ(d.run(), noErr);
    EXPECT_EQ(script().pending(), 0u);
    ASSERT_EQ(toolkit::HeadlessAlerts().helpRequests().size(), 1u);
    EXPECT_EQ(toolkit::HeadlessAlerts().helpRequests()[0].page, d.page);
  }
  EXPECT_NE(text("Min-Max Digits"), "?");
  EXPECT_NE(text("Passcode Required Message"), "?");
}

TEST_F(JobTypeSetups, AMissingWindowIsReportedAndChangesNothing) {
  testing::TempDir dir;
  dir.write("Bare.plugin/Contents/Info.plist",
            "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>");
  const bundle::BundleRef bare = bundle::Bundle::Open(dir / "Bare.plugin");
  ASSERT_TRUE(bare);
  std::optional<std::string> passcode = "12";
  std::int64_t time = kMidnight;
  EXPECT_EQ(RunModalSecurePrintSetup(bare, &passcode), kInterfaceFileNotFound);
  EXPECT_EQ(RunModalDelayedPrintSetup(bare, &time), kInterfaceFileNotFound);
  EXPECT_EQ(passcode, "12");
  EXPECT_EQ(time, kMidnight);
  EXPECT_EQ(RunModalSecurePrintSetup(bundle_, nullptr), paramErr);
  EXPECT_EQ(RunModalDelayedPrintSetup(bundle_, nullptr), paramErr);
}

}  // namespace
}  // namespace varno::panels
