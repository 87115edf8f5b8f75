// SPDX-License-Identifier: Apache-2.0
// The Paper/Output panel's finishing choices on printers with different finishers.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "panels/paper_output/finishing_menu.h"
#include "paper_output_fixture.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {
namespace {

const std::string kNoFinisher = TestPPD("Varno-NoFinisher.ppd");
const std::string kBookletFolder = TestPPD("Varno-BookletFolder.ppd");
const std::string kCoilSquareFold = TestPPD("Varno-CoilSquareFold.ppd");

std::string Commands(const toolkit::Menu* menu) {
  std::string out;
  for (toolkit::MenuItemIndex i = 1; menu && i <= menu->count(); ++i) {
    const toolkit::MenuItem& item = *menu->item(i);
    out += (out.empty() ? "" : " ") + (item.command ? toolkit::OSTypeString(item.command) : item.text);
  }
  return out;
}

class FinishingMenuTest : public PaperOutputPanel {
 protected:
  toolkit::Menu* Menu() { return Panel(kFinishingMenuButtonID)->menu(); }
  // Chooses the item of `command` where the panel offers it: the finishing menu, or the
  // staple or punch pop-up.
  void Run(toolkit::MenuCommand command) {
    for (std::int32_t id : {kFinishingMenuButtonID, kStaplePopupID, kHolePunchPopupID}) {
      Control* control = Panel(id);
      if (!control->isVisible() || !control->menu()) continue;
      if (toolkit::MenuItemIndex item = control->menu()->findCommand(command)) {
        ASSERT_EQ(toolkit::ChooseMenuItem(*control, item), noErr) << toolkit::OSTypeString(command);
        return;
      }
    }
    FAIL() << "nothing offers " << toolkit::OSTypeString(command);
  }
  bool Enabled(toolkit::MenuCommand command) {
    const toolkit::MenuItemIndex item = Menu()->findCommand(command);
    return item && Menu()->item(item)->enabled;
  }
  std::vector<std::string> Checked() {
    std::vector<std::string> out;
    for (toolkit::MenuItemIndex i = 1; i <= Menu()->count(); ++i)
      if (Menu()->item(i)->checked) out.push_back(toolkit::OSTypeString(Menu()->item(i)->command));
    return out;
  }
  std::string Summary() { return Panel(kFinishingSummaryViewID)->text(); }
};

// What each finisher offers, and where.
struct OfferCase {
  const std::string& ppd;
  bool bookletMaker;
  const char* staples;  // the pop-ups' commands
  const char* punches;
  const char* menu;
};
class Offers : public FinishingMenuTest, public ::testing::WithParamInterface<OfferCase> {};

TEST_P(Offers, EachFinisherOffersItsOwnChoices) {
  const OfferCase& c = GetParam();
  OpenWith({}, {}, 1, c.ppd);
  EXPECT_EQ(Panel(kStaplePopupID)->isVisible(), !c.bookletMaker);
  EXPECT_EQ(Panel(kFinishingSummaryViewID)->isVisible(), c.bookletMaker);
  if (!c.bookletMaker) {
    EXPECT_EQ(Commands(Panel(kStaplePopupID)->menu()), c.staples);
    EXPECT_EQ(Commands(Panel(kHolePunchPopupID)->menu()), c.punches);
  }
  EXPECT_EQ(Commands(Menu()), c.menu);
}
INSTANTIATE_TEST_SUITE_P(Printers, Offers, ::testing::Values(
    OfferCase{kNoFinisher, false, "Stp0", "Hpn0", "Pdef None"},
    OfferCase{kSamplePPD, false, "Stp0 Stp1 Stp2", "Hpn0 Hpn2 Hpn3", "Pdef None Cust - Ofsb"},
    OfferCase{kVarnoTestPPD, true, "", "", "Stp0 Stp1 Stp2 Stp4 - Hpn0 Hpn2 Hpn4 - Ofsb Cust Bkcr"},
    OfferCase{kBookletFolder, true, "", "",
              "Stp0 Stp1 Stp2 Stp4 - Hpn0 Hpn2 Hpn3 - Fld0 Bfld Cfld Zfld Zfol - Ofsb Cust Bkcr"},
    OfferCase{kCoilSquareFold, true, "", "",
              "Stp0 Stp1 Stp2 Stp4 - Hpn0 Hpn2 Hpn3 - Coil Ofsb Cust Bkcr"}),
    [](const auto& info) { return "Printer" + std::to_string(info.index); });

// Multiple staples clear the holes and holes clear multiple staples, while one or two
// staples keep them; folds clear both.
struct ChoiceCase {
  std::vector<toolkit::MenuCommand> choices;
  std::int32_t options;
  const char* staple;
  const char* punch;
  const char* fold;
  const char* summary;
};
class Choices : public FinishingMenuTest, public ::testing::WithParamInterface<ChoiceCase> {};

TEST_P(Choices, ClearWhatCannotGoWithThem) {
  const ChoiceCase& c = GetParam();
  OpenWith({}, {}, 1, kBookletFolder);
  for (toolkit::MenuCommand command : c.choices) Run(command);
  const print::Ticket ticket = Written();
  EXPECT_EQ(ticket.number<std::int32_t>("com.varno.print.FinishingOptions"), c.options);
  EXPECT_EQ(Choice(ticket, "StapleLocation"), c.staple);
  EXPECT_EQ(Choice(ticket, "VNPunch"), c.punch);
  EXPECT_EQ(Choice(ticket, "VNFold"), c.fold);
  EXPECT_EQ(Summary(), c.summary);
}
INSTANTIATE_TEST_SUITE_P(Sequences, Choices, ::testing::Values(
    ChoiceCase{{kTriplePunchCommand, kMultipleStapleCommand}, 53, "MultipleStaples", "-", "None",
               "- Multiple Staples\n- No Hole Punch\n- No Fold\n"},
    ChoiceCase{{kMultipleStapleCommand, kTriplePunchCommand}, 30, "None", "3HolePunch", "None",
               "- No Staple\n- 3-Hole Punch\n- No Fold\n"},
    ChoiceCase{{kDualPunchCommand, kSingleStapleCommand}, 4, "SinglePortrait", "2HolePunch", "None",
               "- 1 Staple\n- 2-Hole Punch\n- No Fold\n"},
    ChoiceCase{{kDualStapleCommand, kZFoldCommand}, 40, "None", "-", "Z",
               "- No Staple\n- No Hole Punch\n- Z Fold\n"},
    ChoiceCase{{kCFoldCommand, kNoFoldCommand}, 40, "None", "-", "None",
               "- No Staple\n- No Hole Punch\n- No Fold\n"}),
    [](const auto& info) { return "Sequence" + std::to_string(info.index); });

// Imposed as a booklet, the job keeps its two-sided printing whatever finishing is chosen,
// offers no staples and carries only one check mark.
TEST_F(FinishingMenuTest, BookletModeHoldsTwoSidedAndMarksOnlyBookletCreation) {
  OpenWith({{"com.varno.print.BookletLayout", plist::Value(true)},
            {"com.varno.print.FinishingOptions", plist::Value(24)}},
           {{"VNFold", plist::Value("BiFoldStaple")}}, 1, kBookletFolder);
  EXPECT_EQ(Checked(), std::vector<std::string>{"Bkcr"});
  EXPECT_EQ(Summary(), "- Booklet Crease and Staple\n- Booklet Layout\n");
  EXPECT_FALSE(Enabled(kSingleStapleCommand));
  EXPECT_FALSE(Enabled(kMultipleStapleCommand));
  for (toolkit::MenuCommand command : {kTriplePunchCommand, kCFoldCommand}) {
    Run(command);
    EXPECT_FALSE(Panel(kTwoSidedPopupID)->isEnabled());
    EXPECT_EQ(vocabulary::GetPopupButtonTicketValue(Panel(kTwoSidedPopupID)), kLongEdgeDuplex);
  }
  const print::Ticket ticket = Written();
  EXPECT_EQ(ticket.number<std::int32_t>("com.varno.print.FinishingOptions"), 40);
  EXPECT_EQ(Choice(ticket, "VNFold"), "C");
}

TEST_F(FinishingMenuTest, OutOfBookletModeTheMarksFollowEachChoice) {
  OpenWith({}, {}, 1, kBookletFolder);
  Run(kDualStapleCommand);
  Run(kTriplePunchCommand);
  EXPECT_EQ(Checked(), (std::vector<std::string>{"Stp2", "Hpn3", "Fld0"}));
}

// Without a stapler the summary says nothing of staples; without a booklet maker nothing
// of folds.
TEST_F(FinishingMenuTest, SummaryWithoutAFinisherIsEmpty) {
  OpenWith({}, {}, 1, kNoFinisher);
  EXPECT_EQ(Summary(), "");
}

TEST_F(FinishingMenuTest, SummaryWithoutABookletMakerHasNoFold) {
  OpenWith({}, {}, 1, kSamplePPD);
  Run(kSingleStapleCommand);
  Run(kDualPunchCommand);
  EXPECT_EQ(Summary(), "- 1 Staple\n- 2-Hole Punch\n");
}

// The printer's constraints: transparencies are never folded.
TEST_F(FinishingMenuTest, ConstrainedChoicesAreNotOffered) {
  OpenWith({}, {}, 1, kBookletFolder);
  EXPECT_TRUE(Enabled(kCFoldCommand));
  ChooseStock(ui::kStockTypeCommand, "Transparency");
  for (toolkit::MenuCommand fold : {kBiFoldCommand, kCFoldCommand, kZFoldCommand, kZFoldHalfSheetCommand})
    EXPECT_FALSE(Enabled(fold)) << toolkit::OSTypeString(fold);
  EXPECT_TRUE(Enabled(kTriplePunchCommand));
  EXPECT_EQ(toolkit::ChooseMenuItem(*Panel(kFinishingMenuButtonID), Menu()->findCommand(kCFoldCommand)),
            errControlHiddenOrDisabled);
  ChooseStock(ui::kStockTypeCommand, "Plain");
  EXPECT_TRUE(Enabled(kCFoldCommand));
}

// Coil binding punches paper from 80 up to 216 g/m², never labels or transparencies; a coil
// chosen before goes from the job when the paper changes.
struct CoilCase {
  const char* type;  // the PPD's paper type
  std::int32_t weight;
  bool possible;
};
class Coil : public FinishingMenuTest, public ::testing::WithParamInterface<CoilCase> {};

TEST_P(Coil, BindingFollowsThePaper) {
  const CoilCase& c = GetParam();
  {
    plist::Dictionary stock{{"Weight", plist::Value(c.weight)}};
    OpenWith({{"com.varno.print.JobLevelStock", plist::Value(stock)},
              {"com.varno.print.FinishingOptions", plist::Value(58)},
              {"com.varno.print.FinishingCoilBinding", plist::Value(plist::Dictionary{{"Edge", plist::Value(2)}})}},
             {{"MediaType", plist::Value(c.type)}}, 1, kCoilSquareFold);
    EXPECT_EQ(Enabled(kCoilCommand), c.possible);
    const print::Ticket ticket = Written();
    EXPECT_EQ(ticket.number<std::int32_t>("com.varno.print.FinishingOptions"), c.possible ? 58 : 0);
    EXPECT_EQ(ticket.contains("com.varno.print.FinishingCoilBinding"), c.possible);
  }
}
INSTANTIATE_TEST_SUITE_P(Papers, Coil,
                         ::testing::Values(CoilCase{"Standard", 80, true}, CoilCase{"Standard", 216, true},
                                           CoilCase{"Standard", 217, false}, CoilCase{"Standard", 79, false},
                                           CoilCase{"Transparency", 100, false}, CoilCase{"Labels", 100, false},
                                           CoilCase{"CardStock", 200, true}),
                         [](const auto& info) { return "Paper" + std::to_string(info.index); });

TEST_F(FinishingMenuTest, ACoilChosenBeforeGoesWhenThePaperChanges) {
  OpenWith({{"com.varno.print.FinishingOptions", plist::Value(58)},
            {"com.varno.print.FinishingCoilBinding", plist::Value(plist::Dictionary{})}},
           {}, 1, kCoilSquareFold);
  ASSERT_TRUE(Enabled(kCoilCommand));
  ChooseStock(ui::kStockTypeCommand, "Labels");
  EXPECT_FALSE(Enabled(kCoilCommand));
  EXPECT_FALSE(Written().contains("com.varno.print.FinishingCoilBinding"));
}

// Square folding presses the spine flat, which labels and transparencies do not take.
TEST_F(FinishingMenuTest, SquareFoldIsDroppedForPaperThatCannotTakeIt) {
  OpenWith({{"com.varno.print.BookletSquareFold", plist::Value(true)},
            {"com.varno.print.BookletTrimOuterEdge", plist::Value(true)}},
           {}, 1, kCoilSquareFold);
  ChooseStock(ui::kStockTypeCommand, "Card Stock");
  EXPECT_EQ(Written().boolean("com.varno.print.BookletSquareFold"), true);
  ChooseStock(ui::kStockTypeCommand, "Labels");
  const print::Ticket ticket = Written();
  EXPECT_EQ(ticket.boolean("com.varno.print.BookletSquareFold"), false);
  EXPECT_EQ(ticket.boolean("com.varno.print.BookletTrimOuterEdge"), false);
}

}  // namespace
}  // namespace varno::panels
