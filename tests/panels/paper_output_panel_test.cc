// SPDX-License-Identifier: Apache-2.0
// The Paper/Output panel's job types, paper, two-sided printing and OK check.
#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "host/dialog_host.h"
#include "paper_output_fixture.h"

namespace varno::panels {
namespace {

TEST_F(PaperOutputPanel, JobTypesShowTheirPictureAndSetUpButton) {
  OpenWith({});
  const plist::Dictionary fresh = JobTypeOf(Written());
  EXPECT_EQ(fresh.getNumber<std::int32_t>("JobType"), 1);
  EXPECT_EQ(fresh.getBoolean("UseJobName"), true);
  EXPECT_FALSE(fresh.contains("SavedJobName")) << "an empty name is not written";
  EXPECT_EQ(Panel(kJobTypeIconID)->pictureName(), "JobType_NormalPrint.gif");

  const struct {
    const char* text;
    std::int32_t code;
    bool setup;
    const char* picture;
  } cases[] = {{"Secure Print", 6, true, "JobType_SecurePrint.gif"},
               {"Sample Set", 8, false, "JobType_SampleSet.gif"},
               {"Delayed Print", 7, true, "JobType_DelayPrint.gif"},
               {"Save to Mailbox", 3, true, "JobType_SavedJob.gif"},
               {"LAN Fax", 5, true, "JobType_Fax.gif"},
               {"Normal Print", 1, false, "JobType_NormalPrint.gif"}};
  for (const auto& c : cases) {
    Choose(kJobTypePopupID, c.text);
    EXPECT_EQ(Panel(kJobTypeSetupButtonID)->isEnabled(), c.setup) << c.text;
    EXPECT_EQ(Panel(kJobTypeIconID)->pictureName(), c.picture);
    const plist::Dictionary written = JobTypeOf(Written());
    EXPECT_EQ(written.getNumber<std::int32_t>("JobType"), c.code) << c.text;
    EXPECT_EQ(written.contains("SaveDisposition"), c.code == 3) << c.text;
  }
  EXPECT_TRUE(driver_.bundle()->resourcePath("JobType_BackgroundForm.gif"));
}

// Codes 4 and 9 are not in the menu: a ticket carrying one enables the button, which then
// does nothing, and the code goes back out unchanged.
class TicketOnlyJobType : public PaperOutputPanel, public ::testing::WithParamInterface<std::int32_t> {};

TEST_P(TicketOnlyJobType, ComesBackUnchanged) {
  plist::Dictionary jobType{{"JobType", plist::Value(GetParam())},
                            {"UseJobName", plist::Value(false)},
                            {"SavedJobName", plist::Value("Quarterly")},
                            {"SecurePrintPassword", plist::Value("1234")}};
  OpenWith({{kJobTypeKey, plist::Value(jobType)}});
  ASSERT_TRUE(Panel(kJobTypeSetupButtonID)->isEnabled());
  ASSERT_EQ(toolkit::Click(*Panel(kJobTypeSetupButtonID)), noErr);
  const plist::Dictionary written = JobTypeOf(Written());
  EXPECT_EQ(written.getNumber<std::int32_t>("JobType"), GetParam());
  EXPECT_EQ(written.getString("SavedJobName"), "Quarterly");
  EXPECT_EQ(written.getString("SecurePrintPassword"), "1234");
}
INSTANTIATE_TEST_SUITE_P(HoldAndBackgroundForm, TicketOnlyJobType, ::testing::Values(4, 9));

// The delayed print time of a fresh panel is the coming local midnight, counted from 1904.
TEST_F(PaperOutputPanel, DelayedPrintDefaultsToTheComingMidnight) {
  OpenWith({});
  const std::int64_t written =
      JobTypeOf(Written()).getNumber<std::int64_t>("DelayedPrintTime").value_or(0);
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const std::int64_t localNow1904 = now + local.tm_gmtoff + 2082844800;
  EXPECT_GT(written, localNow1904);
  EXPECT_LE(written, localNow1904 + 86400);
  EXPECT_EQ((written - 2082844800) % 86400, 0);
}

struct FinishingCase {
  std::int32_t orientation;
  const char* twoSided;
  const char* staples;
  const char* punch;
  std::int32_t duplex;
  const char* stapleChoice;
  const char* punchChoice;
};
class Finishing : public PaperOutputPanel, public ::testing::WithParamInterface<FinishingCase> {};

TEST_P(Finishing, TwoSidedStaplesAndPunchFollowTheOrientation) {
  const FinishingCase& c = GetParam();
  // The printer's punch choice stays as the ticket has it when no holes are chosen.
  OpenWith({}, {{"VNPunch", plist::Value("3HolePunch")}}, c.orientation, kSamplePPD);
  Choose(kTwoSidedPopupID, c.twoSided);
  Choose(kStaplePopupID, c.staples);
  Choose(kHolePunchPopupID, c.punch);
  const print::Ticket ticket = Written();
  EXPECT_EQ(ticket.number<std::int32_t>("com.apple.print.PrintSettings.PMDuplexing"), c.duplex);
  EXPECT_EQ(ticket.number<std::int32_t>("com.varno.print.FinishingDuplex"), c.duplex);
  EXPECT_EQ(Choice(ticket, "StapleLocation"), c.stapleChoice);
  EXPECT_EQ(Choice(ticket, "VNPunch"), c.punchChoice);
  EXPECT_EQ(Panel(kTwoSidedIconID)->pictureName(), TwoSidedPictureName(c.duplex));
}
INSTANTIATE_TEST_SUITE_P(
    ByOrientation, Finishing,
    ::testing::Values(
        FinishingCase{1, "Long Edge", "1 Staple", "2-Hole Punch", 2, "SinglePortrait", "2HolePunch"},
        FinishingCase{2, "Short Edge", "1 Staple", "3-Hole Punch", 3, "SingleLandscape", "3HolePunchLandscape"},
        FinishingCase{2, "Off", "2 Staples", "2-Hole Punch", 1, "DualLandscape", "2HolePunchLandscape"},
        FinishingCase{1, "Off", "2 Staples", "No Hole Punch", 1, "DualPortrait", "3HolePunch"}),
    [](const auto& info) { return "Case" + std::to_string(info.index); });

// A booklet is folded along its long edge: two-sided printing is forced and not offered.
TEST_F(PaperOutputPanel, BookletLayoutForcesShortEdgeDuplex) {
  OpenWith({{"com.varno.print.BookletLayout", plist::Value(true)}});
  Control* twoSided = Panel(kTwoSidedPopupID);
  EXPECT_FALSE(twoSided->isEnabled());
  EXPECT_EQ(twoSided->menu()->item(twoSided->value())->text, "Long Edge");
  const print::Ticket ticket = Written();
  EXPECT_EQ(ticket.number<std::int32_t>("com.varno.print.FinishingDuplex"), 3);
  EXPECT_EQ(Choice(ticket, "Duplex"), "DuplexTumble");
}

TEST_F(PaperOutputPanel, PaperMenuChoicesShowInTheSummaryAndTheTicket) {
  OpenWith({});
  ChooseStock(ui::kStockColorCommand, "Blue");
  EXPECT_EQ(Panel(kStockSummaryViewID)->text(), "- Blue\n- Printer Default");
  ChooseStock(ui::kStockTypeCommand, "Transparency");
  EXPECT_EQ(Panel(kStockSummaryViewID)->text(), "- Clear\n- Transparency");
  ChooseStock(ui::kStockSizeCommand, "A4");
  Choose(kOutputDestinationPopupID, "Finisher Stacker");
  const print::Ticket ticket = Written();
  const plist::Dictionary stock =
      ticket.dictionary("com.varno.print.JobLevelStock").value_or(plist::Dictionary{});
  EXPECT_EQ(stock.getNumber<std::int32_t>("Type"), 2);
  EXPECT_EQ(stock.getNumber<std::int32_t>("Color"), 6);
  EXPECT_EQ(stock.getNumber<std::int32_t>("Size"), 4);
  EXPECT_EQ(Choice(ticket, "MediaType"), "Transparency");
  EXPECT_EQ(Choice(ticket, "MediaColor"), "Clear");
  EXPECT_EQ(Choice(ticket, "OutputBin"), "Stacker");
  EXPECT_EQ(JobTypeOf(ticket).getNumber<std::int32_t>("MediaType"), 2);
}

// OK is held back for a secure job without a passcode (with a notice) and for a fax job
// without recipients (with the LAN fax set-up, which gets the panel's own options).
struct OKCase {
  const char* jobType;
  const char* passcode;  // in the ticket's job-type item, or null
  bool accepted;
};
class OKCheck : public PaperOutputPanel, public ::testing::WithParamInterface<OKCase> {};

TEST_P(OKCheck, TheHostReadsThePanel) {
  const OKCase& c = GetParam();
  plist::Dictionary jobType;
  if (c.passcode) jobType.set("SecurePrintPassword", plist::Value(c.passcode));
  // Installed before the plug-in's, this handler hears OK only when the host lets it go on.
  bool reached = false;
  window_->installHandler({{toolkit::kEventClassCommand, toolkit::kEventCommandProcess}},
                          [&reached](toolkit::EventHandlerCallRef, toolkit::Event& event) {
                            std::optional<toolkit::HICommand> command = event.command();
                            if (command && command->commandID == toolkit::kHICommandOK) reached = true;
                            return eventNotHandledErr;
                          });
  OpenWith({{kJobTypeKey, plist::Value(jobType)}});
  Choose(kJobTypePopupID, c.jobType);
  ASSERT_EQ(toolkit::SendCommand(*window_, toolkit::kHICommandOK), noErr);
  EXPECT_EQ(reached, c.accepted);
  const print::Ticket ticket = Written();
  if (std::string_view(c.jobType) == "LAN Fax") {
    EXPECT_TRUE(ticket.dictionary("com.varno.print.FaxOptions"));
    plist::Array recipients;
    EXPECT_EQ(ticket.getArray("com.varno.print.FaxRecipientList", recipients), noErr);
  } else if (!c.accepted) {
    ASSERT_EQ(toolkit::HeadlessAlerts().notices().size(), 1u);
    EXPECT_EQ(toolkit::HeadlessAlerts().notices()[0].header, "Invalid Secure Print Passcode");
  }
}
INSTANTIATE_TEST_SUITE_P(JobTypes, OKCheck,
                         ::testing::Values(OKCase{"Secure Print", nullptr, false},
                                           OKCase{"Secure Print", "2468", true},
                                           OKCase{"LAN Fax", nullptr, false},
                                           OKCase{"Sample Set", nullptr, true}),
                         [](const auto& info) { return "Case" + std::to_string(info.index); });

// Closing keeps where the summary was; opening again puts it back there, with the text.
TEST_F(PaperOutputPanel, ReopeningRestoresTheSummary) {
  OpenWith({});
  ChooseStock(ui::kStockColorCommand, "Green");
  const toolkit::Rect bounds = Panel(kStockSummaryViewID)->bounds();
  const toolkit::MenuItemIndex items[] = {Panel(kJobTypePopupID)->menu()->count(),
                                          Panel(kTwoSidedPopupID)->menu()->count(),
                                          Panel(kOutputDestinationPopupID)->menu()->count()};
  ASSERT_EQ(driver_.sync(false), noErr);
  ASSERT_EQ(driver_.close(), noErr);
  EXPECT_EQ(Panel(kStockSummaryViewID), nullptr);
  ASSERT_EQ(driver_.open(), noErr) << driver_.error();
  ASSERT_NE(Panel(kStockSummaryViewID), nullptr);
  EXPECT_EQ(Panel(kStockSummaryViewID)->bounds(), bounds);
  EXPECT_EQ(Panel(kStockSummaryViewID)->text(), "- Green\n- Printer Default");
  EXPECT_EQ(Panel(kJobTypePopupID)->menu()->count(), items[0]) << "each choice listed once";
  EXPECT_EQ(Panel(kTwoSidedPopupID)->menu()->count(), items[1]);
  EXPECT_EQ(Panel(kOutputDestinationPopupID)->menu()->count(), items[2]);
}

}  // namespace
}  // namespace varno::panels
