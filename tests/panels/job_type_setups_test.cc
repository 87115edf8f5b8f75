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
using Strings = std::vector<std::string>;

const std::string kClear(13, '\b');
constexpr std::int64_t kDay = 86400;
// 2 January 2024, 00:00 local time, in seconds since 1904.
constexpr std::int64_t kMidnight = 3786998400;
constexpr std::int64_t At(int hour, int minute) { return hour * 3600 + minute * 60; }

toolkit::AutomationScript& script() { return toolkit::Application::shared().script(); }
void Type(toolkit::ControlID id, const std::string& text) { script().typeText(id, text); }
void OK() { script().sendCommand(toolkit::kHICommandOK); }
void Cancel() { script().sendCommand(toolkit::kHICommandCancel); }
void Both(const std::string& passcode, const std::string& confirmation) {
  Type(kSecurePasscodeFieldID, passcode);
  Type(kSecureConfirmFieldID, confirmation);
}

// Both passcode fields as "passcode/confirmation".
std::string Fields(Window& w) {
  return w.findByID(kSecurePasscodeFieldID)->text() + "/" +
         w.findByID(kSecureConfirmFieldID)->text();
}

class JobTypeSetups : public ::testing::Test {
 protected:
  void TearDown() override {
    script().clear();
    toolkit::HeadlessAlerts().clear();
  }
  // Queues a look at the open dialog.
  static void peek(std::function<void(Window&)> see) {
    script().add("peek", [see](Window& window) { return see(window), noErr; });
  }

  bundle::BundleRef bundle_ = bundle::Bundle::Open(VARNO_BUILT_PLUGIN);
};

TEST_F(JobTypeSetups, SecureOKTakesEqualFieldsMakesAPasscodeForEmptyOnesRefusesOthers) {
  struct Case {
    const char* what;
    std::optional<std::string> before;
    std::function<void()> steps;       // they end the dialog
    const char* header;                // of the one notice, by key; null: none
    std::optional<std::string> after;  // "made": a made-up passcode
  } cases[] = {
      {"equal", std::nullopt, [] { Both("0420", "0420"); OK(); }, nullptr, "0420"},
      {"both empty", std::nullopt, OK, "Passcode Required Header", "made"},
      {"an empty passcode with a confirmation differs", "77",
       [] { Type(kSecureConfirmFieldID, kClear + "5"); Type(kSecurePasscodeFieldID, kClear);
            OK(); Cancel(); },
       "Invalid Secure Print Passcode Header", "77"},
      {"different, then put right", std::nullopt,
       [] { Both("1234", "1243"); OK(); Type(kSecureConfirmFieldID, kClear + "1234"); OK(); },
       "Invalid Secure Print Passcode Header", "1234"},
      {"a stored passcode is kept", "987", OK, nullptr, "987"},
      {"Cancel keeps the passcode", "55", [] { Both("6", "6"); Cancel(); }, nullptr, "55"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    toolkit::HeadlessAlerts().clear();
    std::string shown;
    peek([&shown](Window& w) { shown = Fields(w); });
    c.steps();
    std::optional<std::string> passcode = c.before;
    ASSERT_EQ(RunModalSecurePrintSetup(bundle_, &passcode), noErr);
    EXPECT_EQ(script().failures(), Strings{});
    EXPECT_EQ(script().pending(), 0u) << "a refused OK leaves the dialog open";
    script().clear();
    ASSERT_TRUE(passcode);
    EXPECT_EQ(shown, c.before.value_or("") + "/" + c.before.value_or(""));
    const std::vector<toolkit::NoticeRequest>& notices = toolkit::HeadlessAlerts().notices();
    ASSERT_EQ(notices.size(), c.header ? 1u : 0u);
    if (c.header) {
      EXPECT_EQ(notices[0].header, bundle_->localizedString(c.header, "Localizable", "?"));
      EXPECT_NE(notices[0].message.find("1 to 12 digits"), std::string::npos) << "the limits";
    }
    if (c.after != "made") {
      EXPECT_EQ(passcode, c.after);
      continue;
    }
    EXPECT_EQ(passcode->size(), 4u);
    EXPECT_GE(std::stoi(*passcode), 1000);
    EXPECT_NE(notices[0].message.find(*passcode), std::string::npos) << "the notice names it";
  }
}

TEST_F(JobTypeSetups, SecureFieldsTakeUpToTwelveDigitsAndConfirmingFollowsThePasscode) {
  Strings seen;  // both fields, then whether confirm is enabled and passcode focused
  const auto look = [&seen] {
    peek([&seen](Window& w) {
      const bool on = w.findByID(kSecureConfirmFieldID)->isEnabled();
      const bool focused = w.focus() == w.findByID(kSecurePasscodeFieldID);
      seen.push_back(Fields(w) + (on ? " on" : " off") + (focused ? " focused" : ""));
    });
  };
  look();
  Type(kSecureConfirmFieldID, "1");  // refused: dimmed
  Type(kSecurePasscodeFieldID, "1a2-3 ");
  look();
  Both("4567890123456", "98765432109876");
  look();
  Type(kSecurePasscodeFieldID, kClear);
  look();
  Cancel();
  std::optional<std::string> passcode;
  ASSERT_EQ(RunModalSecurePrintSetup(bundle_, &passcode), noErr);
  EXPECT_EQ(script().failures().size(), 1u);
  EXPECT_FALSE(passcode);
  EXPECT_EQ(seen, (Strings{"/ off focused", "123/ on focused", "123456789012/987654321098 on",
                           "/987654321098 off focused"}));
}

TEST_F(JobTypeSetups, DelayedOKHoldsTheJobUntilTheClocksTimeOfDayNextComesAndCancelKeepsIt) {
  constexpr std::int64_t kMarch2001 = 3066249600;  // another day's midnight
  constexpr std::int64_t kStored = kMarch2001 - 20 * kDay + At(9, 15);
  struct Case {
    const char* what;
    std::int64_t now;                   // seconds into 2 January
    std::optional<std::int64_t> clock;  // a time of day set on 1 March 2001; nullopt: untouched
    bool ok;
    std::int64_t after;  // seconds from 2 January, 00:00
  } cases[] = {
      {"a minute before now: tomorrow", At(14, 30), At(14, 29), true, kDay + At(14, 29)},
      {"a minute after now: today", At(14, 30), At(14, 31), true, At(14, 31)},
      {"now itself: today", At(14, 30), At(14, 30), true, At(14, 30)},
      {"the stored time of day, untouched", At(14, 30), std::nullopt, true, kDay + At(9, 15)},
      {"Cancel keeps the stored time", At(14, 30), At(18, 0), false, kStored - kMidnight},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::int64_t shown = 0;
    peek([&shown](Window& w) { shown = w.findByID(kDelayedClockID)->dateTime(); });
    if (c.clock) script().setDateTime(kDelayedClockID, kMarch2001 + *c.clock);
    c.ok ? OK() : Cancel();
    std::int64_t time = kStored;
    ASSERT_EQ(RunModalDelayedPrintSetup(bundle_, &time, kMidnight + c.now), noErr);
    EXPECT_EQ(script().failures(), Strings{});
    script().clear();
    EXPECT_EQ(shown, kStored) << "the clock starts at the stored time";
    EXPECT_EQ(time - kMidnight, c.after);
  }
}

TEST_F(JobTypeSetups, EachOpensItsHelpPage) {
  std::optional<std::string> passcode;
  std::int64_t time = kMidnight;
  for (const char* page : {kSecureHelpPage, kDelayedHelpPage}) {
    SCOPED_TRACE(page);
    toolkit::HeadlessAlerts().clear();
    script().sendCommand(MakeOSType("Vhlp"));
    Cancel();
    EXPECT_EQ(page == kSecureHelpPage ? RunModalSecurePrintSetup(bundle_, &passcode)
                                      : RunModalDelayedPrintSetup(bundle_, &time),
              noErr);
    ASSERT_EQ(toolkit::HeadlessAlerts().helpRequests().size(), 1u);
    EXPECT_EQ(toolkit::HeadlessAlerts().helpRequests()[0].page, page);
  }
}

TEST_F(JobTypeSetups, AMissingWindowIsReportedAndChangesNothing) {
  testing::TempDir dir;
  dir.write("Bare.plugin/Contents/Info.plist",
            "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>");
  const bundle::BundleRef bare = bundle::Bundle::Open(dir / "Bare.plugin");
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
