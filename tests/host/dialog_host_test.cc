// SPDX-License-Identifier: Apache-2.0
// The dialog host as the printing framework drives it: the real plug-in bundle loaded by
// the framework driver into a headless window, plus the host's ticket entries and OK
// check on fixed inputs.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/dialog_host.h"
#include "host/host_ticket_entries.h"
#include "platform/bundle/bundle.h"
#include "platform/print/framework_driver.h"
#include "platform/print/session.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/window.h"
#include "support/plugin_dialog.h"

namespace varno::host {
namespace {

using toolkit::Control;

const std::string kOtherMakerPPD = VARNO_TEST_DATA_DIR "/ppd/Other-Maker.ppd";

class DialogHost : public testing::PlugInDialogTest {
 protected:
  Control* HostControl(std::int32_t id) { return window_->findByID({kHostSignature, id}); }
  Control* PanelPane(std::int32_t tab) { return window_->findByID({kPanelPaneSignature, tab}); }

  // The tab indices of the panel panes on screen.
  std::vector<std::int32_t> ShownPanels() {
    std::vector<std::int32_t> shown;
    for (std::int32_t tab = 1; tab <= 10; ++tab)
      if (Control* pane = PanelPane(tab); pane && pane->isShown()) shown.push_back(tab);
    return shown;
  }

  OSStatus Hit(Control* control) {
    toolkit::Event event(toolkit::kEventClassControl, toolkit::kEventControlHit);
    event.set(toolkit::kEventParamDirectObject, toolkit::typeControlRef, control);
    return control->send(event);
  }

  OSStatus Command(OSType code) {
    toolkit::HICommand command;
    command.commandID = code;
    command.attributes = toolkit::kHICommandFromWindow;
    toolkit::Event event(toolkit::kEventClassCommand, toolkit::kEventCommandProcess);
    event.set(toolkit::kEventParamDirectObject, toolkit::typeHICommand, command);
    return window_->send(event);
  }
};

TEST_F(DialogHost, PrologueReportsTheHostAndLoadsTheFourPanelsInTableOrder) {
  OpenDialog();
  const bundle::BundleRef& bundle = driver_.bundle();
  EXPECT_EQ(driver_.prologueInfo().userOptionKind, kPDEKind);
  Control* selector = HostControl(kSelectorID);
  ASSERT_TRUE(selector && selector->menu());
  std::vector<std::string> titles, expected;
  for (toolkit::MenuItemIndex item = 1; item <= selector->menu()->count(); ++item)
    titles.push_back(selector->menu()->item(item)->text);
  for (const char* key : {"PaperOutput", "ImageOptions", "BookletWatermark", "Advanced"})
    expected.push_back(bundle->localizedString(key, "Localizable", "?"));
  EXPECT_EQ(titles, expected);

  // One pane per panel; the first panel shows at Open.
  EXPECT_TRUE(PanelPane(4) && !PanelPane(5));
  EXPECT_EQ(ShownPanels(), std::vector<std::int32_t>{1});
  EXPECT_EQ(selector->value(), 1);
  const std::vector<std::filesystem::path>& books = toolkit::HeadlessAlerts().helpBooks();
  EXPECT_NE(std::find(books.begin(), books.end(), bundle->path()), books.end())
      << "Initialize registers the bundle's help book";
}

// A panel that fails for a while still loads, and one that never loads costs only itself:
// the test plug-in's panel getter, with failures injected into its Prologue.
TEST(PanelLoading, AFailingNameIsRetriedAndNeverTakesTheLaterPanelsAway) {
  bundle::BundleRef testBundle = bundle::Bundle::Open(VARNO_BUILD_DIR "/tests/TestPDE.plugin");
  ASSERT_NE(testBundle, nullptr);
  auto failTimes = testBundle->function<void (*)(const char*, OSStatus, int)>("TestPDEFailTimes");
  ASSERT_NE(failTimes, nullptr);
  const std::vector<const char*> saved(std::begin(PanelInterfaces), std::end(PanelInterfaces));
  struct Case {
    std::vector<const char*> names;
    int prologueFailures;
    std::size_t loaded;
  };
  const Case cases[] = {
      {{"TestPDEPanelInterface", "TestPDEPanelInterface"}, 4, 2},
      {{"NoSuchPanelInterface", "TestPDEPanelInterface"}, 0, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.names[0]);
    std::fill(std::begin(PanelInterfaces), std::end(PanelInterfaces), nullptr);
    std::copy(c.names.begin(), c.names.end(), std::begin(PanelInterfaces));
    failTimes("Prologue", -1, c.prologueFailures);
    DialogHostContext host;
    host.bundle = testBundle;
    LoadBuiltInPanels(&host);
    ASSERT_EQ(host.panels.size(), c.loaded);
    for (std::size_t i = 0; i < host.panels.size(); ++i) {
      EXPECT_EQ(host.panels[i].tabIndex, static_cast<std::int32_t>(i + 1));
      host.panels[i].interface->Terminate(host.panels[i].context, noErr);
    }
  }
  std::copy(saved.begin(), saved.end(), std::begin(PanelInterfaces));
}

// The buttons and the step commands wrap around, the commands go on to the framework, and
// the selector ignores the panel already shown; the selector always names the shown panel.
TEST_F(DialogHost, ButtonsStepCommandsAndTheSelectorShowOnePanel) {
  OpenDialog();
  Control* next = HostControl(kDownButtonID);
  Control* previous = HostControl(kUpButtonID);
  Control* selector = HostControl(kSelectorID);
  ASSERT_TRUE(next && previous && selector);

  const struct {
    char action;  // n(ext), p(revious), u(p command), d(own command), s(elector hit)
    std::int32_t choose;  // the selector's value before a selector hit
    OSStatus status;
    std::int32_t shown;
  } steps[] = {{'s', 1, eventNotHandledErr, 1}, {'p', 0, noErr, 4}, {'n', 0, noErr, 1},
               {'n', 0, noErr, 2},  {'n', 0, noErr, 3},  {'n', 0, noErr, 4},
               {'u', 0, eventNotHandledErr, 1}, {'u', 0, eventNotHandledErr, 2},
               {'d', 0, eventNotHandledErr, 1}, {'d', 0, eventNotHandledErr, 4},
               {'s', 3, noErr, 3}, {'s', 3, eventNotHandledErr, 3}};
  int step = 0;
  for (const auto& [action, choose, status, shown] : steps) {
    if (action == 's') selector->setValue(choose);
    const OSStatus result = action == 'n'   ? Hit(next)
                            : action == 'p' ? Hit(previous)
                            : action == 's' ? Hit(selector)
                                            : Command(MakeOSType(action == 'u' ? "VFup" : "VFdn"));
    EXPECT_EQ(result, status) << "step " << step;
    EXPECT_EQ(ShownPanels(), std::vector<std::int32_t>{shown}) << "step " << step;
    EXPECT_EQ(selector->value(), shown) << "step " << step++;
  }
}

TEST_F(DialogHost, OKGoesOnWhileThereIsNoJobTypeToCheck) {
  OpenDialog();
  toolkit::HeadlessAlerts().clear();
  EXPECT_EQ(Command(MakeOSType("ok  ")), eventNotHandledErr);
  EXPECT_TRUE(toolkit::HeadlessAlerts().notices().empty());
}

TEST_F(DialogHost, WritingTheTicketAddsTheHostEntriesAndReadingItNone) {
  print::Ticket settings = session_->printSettings();
  settings.setValue(kRotateBookletKey, plist::Value(true), "V");
  settings.setValue(kJobTypeKey, plist::Value(plist::Dictionary{{"JobType", kFaxJobType}}),
                    "com.varno.printingmanager");
  OpenDialog();
  ASSERT_EQ(driver_.sync(true), noErr) << driver_.error();
  EXPECT_FALSE(settings.contains(kControllerFamilyKey) || settings.contains(kVNIFOptionsKey));

  ASSERT_EQ(driver_.sync(false), noErr) << driver_.error();
  EXPECT_EQ(settings.string(kControllerFamilyKey), "Green");
  EXPECT_EQ(settings.string(kControllerVersionKey), "7.0");
  std::optional<plist::Dictionary> vnif = settings.dictionary(kVNIFOptionsKey);
  ASSERT_TRUE(vnif);
  for (const char* key : {"VNIFOptionCovers", "VNIFOptionExceptions", "VNIFOptionInserts"})
    EXPECT_EQ(vnif->getBoolean(key), true) << key;
  EXPECT_FALSE(settings.contains(kRotateBookletKey));
  EXPECT_EQ(settings.ppdDictionary().getString("VNOColor"), "BW") << "fax jobs print black";
}

TEST_F(DialogHost, AnotherMakersPrinterIsRefused) {
  session_->setPrinterPPD(kOtherMakerPPD);
  ASSERT_EQ(driver_.prologue(), noErr);
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(driver_.initialize(session_.get(), parentPane_), kPMInvalidPDEContext);
  const std::string errors = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(errors.find("Initialize()::GetTicketFromSession() failed.\n"), std::string::npos)
      << errors;
  EXPECT_EQ(PanelPane(1), nullptr) << "no panel is initialised";
}

TEST_F(DialogHost, SessionIsCurrentFromInitializeToTerminate) {
  OpenDialog();
  EXPECT_EQ(print::CurrentSession(), session_.get());
  ASSERT_EQ(driver_.close(), noErr);
  ASSERT_EQ(driver_.terminate(noErr), noErr) << driver_.error();
  EXPECT_EQ(print::CurrentSession(), nullptr);
}

// The host entries on fixed client information.

TEST(HostTicketEntries, ComputerNameNeedsAUserAndLatinOneCharacters) {
  EXPECT_TRUE(IsControllerPrintableName("Caf\xC3\xA9 \xC3\xBE"));  // U+00E9, U+00FE
  // U+00FF, a character below U+0020, a cut sequence
  for (const char* name : {"Caf\xC3\xBF", "tab\there", "bad\xC3"})
    EXPECT_FALSE(IsControllerPrintableName(name)) << name;

  print::Ticket ticket;
  ASSERT_EQ(WriteHostTicketEntries(ticket, {"ana", "Caf\xC3\xA9", "192.0.2.7"}), noErr);
  EXPECT_EQ(ticket.string(kUserNameKey), "ana");
  EXPECT_EQ(ticket.string(kComputerNameKey), "Caf\xC3\xA9");
  EXPECT_EQ(ticket.string(kIPAddressKey), "192.0.2.7");

  ASSERT_EQ(WriteHostTicketEntries(ticket, {"ana", "\xE5\x8F\xB0", std::nullopt}), noErr);
  EXPECT_FALSE(ticket.contains(kComputerNameKey)) << "a name above U+00FE is left out";
  EXPECT_FALSE(ticket.contains(kIPAddressKey)) << "an unknown address removes the old one";

  ASSERT_EQ(WriteHostTicketEntries(ticket, {std::nullopt, "Office", "192.0.2.7"}), noErr);
  EXPECT_FALSE(ticket.contains(kUserNameKey));
  EXPECT_FALSE(ticket.contains(kComputerNameKey)) << "no console user, no computer name";
}

TEST(HostTicketEntries, OnlyFaxJobsForceBlackAndWhite) {
  print::Ticket ticket;
  ticket.setValue(kJobTypeKey, plist::Value(plist::Dictionary{{"JobType", 6}}), "V");
  EXPECT_EQ(WriteHostTicketEntries(ticket, {}), noErr);
  EXPECT_FALSE(ticket.ppdDictionary().contains("VNOColor"));
  print::Ticket malformed;
  malformed.setValue(kJobTypeKey, plist::Value("fax"), "V");
  EXPECT_EQ(WriteHostTicketEntries(malformed, {}), kPMInvalidValue)
      << "the job-type read decides the result";
  EXPECT_EQ(malformed.string(kControllerFamilyKey), "Green") << "written before the job type";
}

// Secure print without a passcode gets a notice each time; fax without recipients gets
// the set-up (not the notice), whose outcome is not re-checked.
TEST(OKCheck, JobsLackingWhatTheirTypeNeedsAreHeldBack) {
  toolkit::HeadlessAlerts().clear();
  FirstPanelJobState secure, fax, plain;
  secure.jobType = 6;
  fax.jobType = 5;
  plain.jobType = 1;
  const std::pair<const FirstPanelJobState*, std::size_t> heldBack[] = {
      {&fax, 0}, {&fax, 0}, {&secure, 1}, {&secure, 2}};  // state, notices shown so far
  for (const auto& [state, notices] : heldBack) {
    EXPECT_EQ(CheckJobBeforeOK(nullptr, *state), kOKSwallowed) << state->jobType;
    ASSERT_EQ(toolkit::HeadlessAlerts().notices().size(), notices) << state->jobType;
  }
  EXPECT_EQ(toolkit::HeadlessAlerts().notices()[0].header, "Invalid Secure Print Passcode Header");

  secure.securePrintPasscode = "4";
  fax.faxRecipientCount = 1;
  for (const FirstPanelJobState* state : {&secure, &fax, &plain})
    EXPECT_EQ(CheckJobBeforeOK(nullptr, *state), eventNotHandledErr) << state->jobType;
  EXPECT_EQ(toolkit::HeadlessAlerts().notices().size(), 2u);
}

}  // namespace
}  // namespace varno::host
