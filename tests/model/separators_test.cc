// SPDX-License-Identifier: Apache-2.0
// Separators travel only as two PPD choices of the ticket; the panel's stock carries the tray.
#include "model/separators.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/print/session.h"
#include "platform/print/ticket_access.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::model {

using vocabulary::PPDCloseCurrent;

namespace {

// The sample printer is the session's, so the printer's default choices are at hand.
class Separators : public ::testing::Test {
 protected:
  void SetUp() override {
    session_.setPrinterPPD(VARNO_TEST_DATA_DIR "/../../resources/ppd/Varno-AT120A.ppd");
    print::SetCurrentPrintSession(&session_);
    ticket_ = session_.printSettings();
  }
  void TearDown() override {
    PPDCloseCurrent();
    print::SetCurrentPrintSession(nullptr);
  }
  void Choose(const char* keyword, const char* choice) {
    ticket_.ppdDictionary().set(keyword, plist::Value(choice));
  }

  print::Session session_;
  print::Ticket ticket_;
};

TEST_F(Separators, ReadingGivesTheOptionAndAFreshStockWithTheTray) {
  std::int32_t option = 0;
  auto stock = std::make_unique<Stock>();
  stock->setSource(4);
  // The printer's default is no separators: the new stock keeps no tray.
  ASSERT_EQ(SyncSeparatorsFromTicket(&ticket_, &option, &stock), noErr);
  EXPECT_EQ(option, kNoSeparators);
  EXPECT_EQ(*stock, Stock()) << "the old stock is replaced by a default one, with no tray";

  Choose("VNSlipSheetPrint", "Printed");
  Choose("VNSlipSheetSource", "Tray2");
  ASSERT_EQ(SyncSeparatorsFromTicket(&ticket_, &option, &stock), noErr);
  EXPECT_EQ(option, kPrintedSeparators);
  EXPECT_EQ(stock->source(), 2);

  Choose("VNSlipSheetPrint", "Blank");
  ticket_.ppdDictionary().remove("VNSlipSheetSource");
  ASSERT_EQ(SyncSeparatorsFromTicket(&ticket_, &option, &stock), noErr);
  EXPECT_EQ(option, kBlankSeparators);
  EXPECT_EQ(stock->source(), 0) << "the printer's default tray, Auto";
  EXPECT_EQ(SyncSeparatorsFromTicket(&ticket_, &option, nullptr), paramErr);
}

TEST_F(Separators, WritingWithoutSeparatorsLeavesTheTrayChoiceAlone) {
  Stock stock;
  stock.setSource(3);
  ASSERT_EQ(SyncSeparatorsToTicket(&ticket_, kBlankSeparators, &stock), noErr);
  EXPECT_EQ(ticket_.ppdDictionary().getString("VNSlipSheetPrint"), "Blank");
  EXPECT_EQ(ticket_.ppdDictionary().getString("VNSlipSheetSource"), "Tray3");

  stock.setSource(1);
  ASSERT_EQ(SyncSeparatorsToTicket(&ticket_, kNoSeparators, &stock), noErr);
  EXPECT_EQ(ticket_.ppdDictionary().getString("VNSlipSheetPrint"), "None");
  EXPECT_EQ(ticket_.ppdDictionary().getString("VNSlipSheetSource"), "Tray3");
  for (std::int32_t option : {kNoSeparators, kPrintedSeparators})
    EXPECT_EQ(SyncSeparatorsToTicket(&ticket_, option, nullptr), paramErr) << option;
}

TEST_F(Separators, SummaryLineOnlyWhenThereAreSeparators) {
  bundle::BundleRef bundle = bundle::Bundle::Open(VARNO_BUILT_PLUGIN);
  ASSERT_NE(bundle, nullptr);
  const struct {
    std::int32_t option;
    std::int32_t source;
    const char* line;
  } cases[] = {
      {kNoSeparators, 100, ""},
      {kBlankSeparators, 100, "- Separators: Bypass Tray"},
      {kPrintedSeparators, 2, "- Separators: Tray 2"},
  };
  for (const auto& c : cases) {
    Stock stock;
    stock.setSource(c.source);
    std::string line = "left from before";
    ASSERT_EQ(SeparatorSummaryLine(bundle, c.option, stock, &line), noErr) << c.option;
    EXPECT_EQ(line, c.line) << c.option;
  }

  Stock stock;
  std::string line = "kept";
  EXPECT_EQ(SeparatorSummaryLine(nullptr, kBlankSeparators, stock, &line), paramErr);
  EXPECT_EQ(line, "kept");
  EXPECT_EQ(SeparatorSummaryLine(bundle, kBlankSeparators, stock, nullptr), paramErr);
}

}  // namespace
}  // namespace varno::model
