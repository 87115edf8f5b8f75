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
using toolkit::ControlKind;

const std::string kVarnoPPD = testing::kVarnoTestPPD;
const std::string kOtherMakerPPD = VARNO_TEST_DATA_DIR "/ppd/Other-Maker.ppd";
const char* const kPanelTitleKeys[] = {"PaperOutput", "ImageOptions", "BookletWatermark",
                                       "Advanced"};

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
  const print::PrologueInfo& info = driver_.prologueInfo();
  EXPECT_EQ(info.creator, MakeOSType("pde "));
  EXPECT_EQ(info.userOptionKind, kPDEKind);
  EXPECT_EQ(info.title, bundle->localizedString("Dialog Host", "Localizable", "?"));
  EXPECT_EQ(info.maxH, 540u);
  EXPECT_EQ(info.maxV, 491u);

  Control* selector = HostControl(kSelectorID);
  ASSERT_NE(selector, nullptr);
  ASSERT_NE(selector->menu(), nullptr);
  ASSERT_EQ(selector->menu()->count(), 4);
  for (toolkit::MenuItemIndex item = 1; item <= 4; ++item) {
    ASSERT_NE(selector->menu()->item(item), nullptr);
    EXPECT_EQ(selector->menu()->item(item)->text,
              bundle->localizedString(kPanelTitleKeys[item - 1], "Localizable", "?"))
        << "item " << item;
  }
  EXPECT_EQ(selector->maximum(), 4);

  // One pane per panel, inside the host's panel area; the first panel shows at Open.
  Control* area = HostControl(kPanelAreaID);
  ASSERT_NE(area, nullptr);
  for (std::int32_t tab = 1; tab <= 4; ++tab) {
    ASSERT_NE(PanelPane(tab), nullptr) << tab;
    EXPECT_TRUE(area->contains(PanelPane(tab))) << tab;
  }
  EXPECT_EQ(PanelPane(5), nullptr);
  EXPECT_TRUE(parentPane_->contains(HostControl(kHostPaneID)));
  EXPECT_EQ(ShownPanels(), std::vector<std::int32_t>{1});
  EXPECT_EQ(selector->value(), 1);
  const std::vector<std::filesystem::path>& books = toolkit::HeadlessAlerts().helpBooks();
  EXPECT_NE(std::find(books.begin(), books.end(), bundle->path()), books.end())
      << "Initialize registers the bundle's help book";
}

TEST_F(DialogHost, ButtonsStepThroughThePanelsAndWrapAround) {
  OpenDialog();
  Control* next = HostControl(kDownButtonID);
  Control* previous = HostControl(kUpButtonID);
  ASSERT_NE(next, nullptr);
  ASSERT_NE(previous, nullptr);
  EXPECT_EQ(previous->pictureName(), "ButtonGraphic_MacUp.png");
  EXPECT_EQ(next->pictureName(), "ButtonGraphic_MacDown.png");
  EXPECT_TRUE(previous->isShown() && next->isShown()) << "their pictures are in the bundle";

  EXPECT_EQ(Hit(previous), noErr);
  EXPECT_EQ(ShownPanels(), std::vector<std::int32_t>{4}) << "previous from 1 shows 4";
  EXPECT_EQ(HostControl(kSelectorID)->value(), 4);
  EXPECT_EQ(Hit(next), noErr);
  EXPECT_EQ(ShownPanels(), std::vector<std::int32_t>{1}) << "next from 4 shows 1";
  for (std::int32_t expected : {2, 3, 4}) {
    EXPECT_EQ(Hit(next), noErr);
    EXPECT_EQ(ShownPanels(), std::vector<std::int32_t>{expected});
    EXPECT_EQ(HostControl(kSelectorID)->value(), expected);
  }
}

TEST_F(DialogHost, StepCommandsMoveOnePanelAndPassTheCommandOn) {
  OpenDialog();
  EXPECT_EQ(Command(MakeOSType("VFdn")), eventNotHandledErr);
  EXPECT_EQ(ShownPanels(), std::vector<std::int32_t>{4});
  EXPECT_EQ(Command(MakeOSType("VFup")), eventNotHandledErr);
  EXPECT_EQ(ShownPanels(), std::vector<std::int32_t>{1});
  EXPECT_EQ(Command(MakeOSType("VFup")), eventNotHandledErr);
  EXPECT_EQ(ShownPanels(), std::vector<std::int32_t>{2}) << "one step per command";
  EXPECT_EQ(HostControl(kSelectorID)->value(), 2);
}

TEST_F(DialogHost, SelectorShowsTheChosenPanelAndIgnoresTheShownOne) {
  OpenDialog();
  Control* selector = HostControl(kSelectorID);
  ASSERT_NE(selector, nullptr);
  EXPECT_EQ(Hit(selector), eventNotHandledErr) << "panel 1 is shown already";
  EXPECT_EQ(ShownPanels(), std::vector<std::int32_t>{1});

  selector->setValue(3);
  EXPECT_EQ(Hit(selector), noErr);
  EXPECT_EQ(ShownPanels(), std::vector<std::int32_t>{3});
  EXPECT_EQ(Hit(selector), eventNotHandledErr);
  EXPECT_EQ(ShownPanels(), std::vector<std::int32_t>{3});
}

TEST_F(DialogHost, OKGoesOnWhileThereIsNoJobTypeToCheck) {
  OpenDialog();
  toolkit::HeadlessAlerts().clear();
  EXPECT_EQ(Command(MakeOSType("ok  ")), eventNotHandledErr);
  EXPECT_TRUE(toolkit::HeadlessAlerts().notices().empty());
}

TEST_F(DialogHost, WritingTheTicketAddsTheHostEntries) {
  print::Ticket settings = session_->printSettings();
  settings.setValue(kRotateBookletKey, plist::Value(true), "V");
  plist::Dictionary jobType;
  jobType.set("JobType", plist::Value(kFaxJobType));
  settings.setValue(kJobTypeKey, plist::Value(jobType), "com.varno.printingmanager");
  OpenDialog();

  ASSERT_EQ(driver_.sync(false), noErr) << driver_.error();
  EXPECT_EQ(settings.string(kControllerFamilyKey), "Green");
  EXPECT_EQ(settings.string(kControllerVersionKey), "7.0");
  ASSERT_NE(settings.item(kControllerFamilyKey), nullptr);
  EXPECT_EQ(settings.item(kControllerFamilyKey)->client, "V");
  EXPECT_FALSE(settings.item(kControllerFamilyKey)->locked);
  std::optional<plist::Dictionary> vnif = settings.dictionary(kVNIFOptionsKey);
  ASSERT_TRUE(vnif);
  EXPECT_EQ(vnif->size(), 3u);
  for (const char* key : {"VNIFOptionCovers", "VNIFOptionExceptions", "VNIFOptionInserts"})
    EXPECT_EQ(vnif->getBoolean(key), true) << key;
  EXPECT_FALSE(settings.contains(kRotateBookletKey));
  EXPECT_EQ(settings.ppdDictionary().getString("VNOColor"), "BW") << "fax jobs print black";
}

TEST_F(DialogHost, ReadingTheTicketWritesNothingOfTheHost) {
  OpenDialog();
  print::Ticket settings = session_->printSettings();
  ASSERT_EQ(driver_.sync(true), noErr) << driver_.error();
  EXPECT_FALSE(settings.contains(kControllerFamilyKey));
  EXPECT_FALSE(settings.contains(kVNIFOptionsKey));
}

TEST_F(DialogHost, AnotherMakersPrinterIsRefused) {
  session_->setPrinterPPD(kOtherMakerPPD);
  ASSERT_EQ(driver_.prologue(), noErr);
  ::testing::internal::CaptureStderr();
  const OSStatus status = driver_.initialize(session_.get(), parentPane_);
  const std::string errors = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(status, kPMInvalidPDEContext);
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

TEST_F(DialogHost, NullContextsAreRefused) {
  const print::PDEInterfaceTable* table = driver_.pdeInterface()->vtable;
  print::PMPDEFlags flags = 0;
  EXPECT_EQ(table->Initialize(nullptr, &flags, nullptr, parentPane_, session_.get()),
            kPMInvalidPDEContext);
  EXPECT_EQ(table->Sync(nullptr, session_.get(), false), kPMInvalidPrintSession);
  EXPECT_EQ(table->Sync(nullptr, nullptr, true), kPMInvalidPrintSession);
  plist::Array titles, values;
  EXPECT_EQ(table->GetSummaryText(nullptr, &titles, &values), kPMInvalidPDEContext);
  EXPECT_EQ(table->Open(nullptr), kPMInvalidPDEContext);
  EXPECT_EQ(table->Close(nullptr), kPMInvalidPDEContext);
  EXPECT_EQ(table->Terminate(nullptr, noErr), kPMInvalidPDEContext);
  print::SetCurrentSession(nullptr);
}

// The host entries on fixed client information.

TEST(HostTicketEntries, ComputerNameNeedsAUserAndLatinOneCharacters) {
  EXPECT_TRUE(IsControllerPrintableName("Office PC"));
  EXPECT_TRUE(IsControllerPrintableName("Caf\xC3\xA9 \xC3\xBE"));       // U+00E9, U+00FE
  EXPECT_FALSE(IsControllerPrintableName("Caf\xC3\xBF"));               // U+00FF
  EXPECT_FALSE(IsControllerPrintableName("\xC4\x80"));                  // U+0100
  EXPECT_FALSE(IsControllerPrintableName("tab\there"));                 // below U+0020
  EXPECT_FALSE(IsControllerPrintableName("bad\xC3"));                   // cut sequence
  EXPECT_FALSE(IsControllerPrintableName("\xC1\x81"));                  // overlong 'A'

  print::Ticket ticket;
  ASSERT_EQ(WriteHostTicketEntries(ticket, {"ana", "Caf\xC3\xA9", "192.0.2.7"}), noErr);
  EXPECT_EQ(ticket.string(kUserNameKey), "ana");
  EXPECT_EQ(ticket.string(kComputerNameKey), "Caf\xC3\xA9");
  EXPECT_EQ(ticket.string(kIPAddressKey), "192.0.2.7");
  EXPECT_EQ(ticket.item(kUserNameKey)->client, kHostTicketClient);

  ASSERT_EQ(WriteHostTicketEntries(ticket, {"ana", "\xE5\x8F\xB0", std::nullopt}), noErr);
  EXPECT_FALSE(ticket.contains(kComputerNameKey)) << "a name above U+00FE is left out";
  EXPECT_FALSE(ticket.contains(kIPAddressKey)) << "an unknown address removes the old one";

  ASSERT_EQ(WriteHostTicketEntries(ticket, {std::nullopt, "Office", "192.0.2.7"}), noErr);
  EXPECT_FALSE(ticket.contains(kUserNameKey));
  EXPECT_FALSE(ticket.contains(kComputerNameKey)) << "no console user, no computer name";
}

TEST(HostTicketEntries, OnlyFaxJobsForceBlackAndWhite) {
  for (int type : {1, 4, 6}) {
    print::Ticket ticket;
    plist::Dictionary jobType;
    jobType.set("JobType", plist::Value(type));
    ticket.setValue(kJobTypeKey, plist::Value(jobType), "com.varno.printingmanager");
    EXPECT_EQ(WriteHostTicketEntries(ticket, {}), noErr);
    EXPECT_FALSE(ticket.ppdDictionary().contains("VNOColor")) << type;
  }
  print::Ticket malformed;
  malformed.setValue(kJobTypeKey, plist::Value("fax"), "V");
  EXPECT_EQ(WriteHostTicketEntries(malformed, {}), kPMInvalidValue)
      << "the job-type read decides the result";
  EXPECT_EQ(malformed.string(kControllerFamilyKey), "Green") << "written before the job type";
}

TEST(OKCheck, SecurePrintWithoutPasscodeIsHeldBack) {
  toolkit::HeadlessAlerts().clear();
  FirstPanelJobState state;
  state.jobType = 6;
  EXPECT_EQ(CheckJobBeforeOK(nullptr, state), kOKSwallowed);
  EXPECT_EQ(CheckJobBeforeOK(nullptr, state), kOKSwallowed);
  ASSERT_EQ(toolkit::HeadlessAlerts().notices().size(), 2u) << "the notice shows each time";
  EXPECT_EQ(toolkit::HeadlessAlerts().notices()[0].header, "Invalid Secure Print Passcode Header");

  state.securePrintPasscode = "4";
  EXPECT_EQ(CheckJobBeforeOK(nullptr, state), eventNotHandledErr);
  state = {};
  state.jobType = 1;
  EXPECT_EQ(CheckJobBeforeOK(nullptr, state), eventNotHandledErr);
  EXPECT_EQ(toolkit::HeadlessAlerts().notices().size(), 2u);
}

TEST(OKCheck, FaxWithoutRecipientsIsHeldBackForTheSetUp) {
  toolkit::HeadlessAlerts().clear();
  FirstPanelJobState state;
  state.jobType = 5;
  EXPECT_EQ(CheckJobBeforeOK(nullptr, state), kOKSwallowed);
  EXPECT_EQ(CheckJobBeforeOK(nullptr, state), kOKSwallowed) << "the set-up's outcome is not re-checked";
  state.faxRecipientCount = 1;
  EXPECT_EQ(CheckJobBeforeOK(nullptr, state), eventNotHandledErr);
  EXPECT_TRUE(toolkit::HeadlessAlerts().notices().empty()) << "a fax job gets the set-up, not the notice";
}

}  // namespace
}  // namespace varno::host
