// SPDX-License-Identifier: Apache-2.0
// Sync: the panel's context into the print-settings ticket, and the ticket back into the
// context and, when the panel is open, its controls.
#include <cstdint>
#include <string>

#include "model/covers_sync.h"
#include "model/separators.h"
#include "panels/paper_output/finishing_menu.h"
#include "panels/paper_output/paper_output_panel.h"
#include "vocabulary/installable_options.h"
#include "platform/print/framework_keys.h"
#include "platform/print/ticket.h"
#include "ui/panel_ui.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

using toolkit::Control;
using vocabulary::PPDChoiceForTicketValue;
using vocabulary::PPDCopyCurrentChoice;
using vocabulary::PPDGetCurrent;
using vocabulary::PPDGetTicketValueForChoiceOrDefault;
using vocabulary::PPDSetCurrentChoice;
using vocabulary::PPDSetCurrentChoiceForTicketValue;
using vocabulary::SetPopupButtonToTicketValue;
using vocabulary::kUnsetValue;

namespace {

constexpr const char* kClient = "com.varno.printingmanager";
// Readers look these three up by key alone, so they keep the one-letter creator they
// have always had.
constexpr const char* kBookletClient = "V";

constexpr const char* kJobLevelStockKey = "com.varno.print.JobLevelStock";
constexpr const char* kJobTypeKey = "com.varno.print.JobType";
constexpr const char* kFaxOptionsKey = "com.varno.print.FaxOptions";
constexpr const char* kFaxRecipientListKey = "com.varno.print.FaxRecipientList";
constexpr const char* kBookletDrawOutlinesKey = "com.varno.print.BookletDrawOutlines";
constexpr const char* kBookletForceNewSizeKey = "com.varno.print.BookletForceNewSize";
constexpr const char* kGutterKey = "com.varno.print.Gutter";
constexpr const char* kCreepKey = "com.varno.print.Creep";
constexpr const char* kFinishingDuplexKey = "com.varno.print.FinishingDuplex";
constexpr const char* kDuplexingKey = "com.apple.print.PrintSettings.PMDuplexing";
constexpr const char* kFinishingOptionsKey = "com.varno.print.FinishingOptions";
constexpr const char* kFinishingOffsetKey = "com.varno.print.FinishingOffset";
constexpr const char* kEnableSubsetKey = "com.varno.print.FinishingOffsetEnableSubset";
constexpr const char* kPagesPerSubsetKey = "com.varno.print.FinishingOffsetPagesPerSubset";
constexpr const char* kSlipSheetKey = "com.varno.print.FinishingSlipSheet";
constexpr const char* kBindValueKey = "com.varno.print.FinishingBindValue";
constexpr const char* kFinishingCustomKey = "com.varno.print.FinishingCustom";
constexpr const char* kCoilBindingKey = "com.varno.print.FinishingCoilBinding";
constexpr const char* kSquareFoldKey = "com.varno.print.BookletSquareFold";
constexpr const char* kTrimOuterEdgeKey = "com.varno.print.BookletTrimOuterEdge";
constexpr const char* kTrimWidthKey = "com.varno.print.BookletTrimWidth";
constexpr const char* kSpecialPageKeys[] = {
    "com.varno.print.SpecialPages.InsertList", "com.varno.print.SpecialPages.ExceptionList",
    "com.varno.print.SpecialPages.FrontCover", "com.varno.print.SpecialPages.BackCover"};

bool Landscape(std::int32_t orientation) { return orientation == 2 || orientation == 4; }

// Remembers the first failing write, as Sync returns it.
struct Writes {
  print::Ticket& ticket;
  OSStatus first = noErr;
  void set(const char* key, plist::Value value, const char* client = kClient) {
    const OSStatus status = ticket.setValue(key, std::move(value), client);
    if (first == noErr) first = status;
  }
};

// The PPD's value of `keyword` through its choice map; kUnsetValue when the ticket and
// the printer name no choice the map knows.
std::int32_t PPDValueOrUnset(const print::Ticket& ticket, const char* keyword) {
  std::int32_t value = kUnsetValue;
  PPDGetTicketValueForChoiceOrDefault(PPDGetCurrent(), &ticket, keyword, &value);
  return value == -1 ? kUnsetValue : value;
}

std::string PunchChoice(std::int32_t punch, std::int32_t orientation) {
  const char* holes = punch == 3 ? "2" : punch == 4 ? "3" : punch == 5 ? "4" : nullptr;
  if (!holes) return {};
  return std::string(holes) + (Landscape(orientation) ? "HolePunchLandscape" : "HolePunch");
}

void WriteJobTypeDictionary(PaperOutputContext* panel, Writes& writes) {
  plist::Dictionary& dict = panel->jobTypeDictionary;
  panel->jobMediaType = panel->jobLevelStock->type();
  dict.set("MediaType", plist::Value(panel->jobMediaType));
  dict.set("UseJobName", plist::Value(panel->useJobName != 0));
  dict.set("JobType", plist::Value(panel->jobType));
  if (panel->useJobName)
    dict.remove("SavedJobName");
  else if (!panel->savedJobName.empty())
    dict.set("SavedJobName", plist::Value(panel->savedJobName));
  if (panel->noLocation)
    dict.remove("SavedJobLocation");
  else if (panel->savedJobLocation)
    dict.set("SavedJobLocation", plist::Value(*panel->savedJobLocation));
  // Never removed here: a passcode once given stays for every later job type.
  if (panel->passcode) dict.set("SecurePrintPassword", plist::Value(*panel->passcode));
  dict.set("DelayedPrintTime", plist::Value(panel->delayedPrintTime));
  if (panel->jobType == kSavedJob)
    dict.set("SaveDisposition", plist::Value(panel->saveDisposition));
  else
    dict.remove("SaveDisposition");
  writes.set(kJobTypeKey, plist::Value(dict.deepCopy()));
}

void ReadJobTypeDictionary(PaperOutputContext* panel, const print::Ticket& ticket) {
  if (std::optional<plist::Dictionary> dict = ticket.dictionary(kJobTypeKey)) {
    panel->jobTypeDictionary = dict->deepCopy();
  } else {
    panel->jobTypeDictionary = plist::Dictionary{{"MediaType", plist::Value(1)},
                                                 {"JobType", plist::Value(1)},
                                                 {"UseJobName", plist::Value(true)},
                                                 {"SavedJobName", plist::Value("")}};
    panel->savedJobName.clear();
  }
  const plist::Dictionary& dict = panel->jobTypeDictionary;
  panel->jobMediaType = dict.getNumber<std::int32_t>("MediaType").value_or(1);
  panel->useJobName = dict.getBoolean("UseJobName").value_or(true) ? 1 : 0;
  panel->jobType = dict.getNumber<std::int32_t>("JobType").value_or(kNormalPrintJob);
  if (std::optional<std::string> name = dict.getString("SavedJobName")) panel->savedJobName = *name;
  panel->savedJobLocation = dict.getString("SavedJobLocation");
  panel->noLocation = panel->savedJobLocation ? 0 : 1;
  panel->passcode = dict.getString("SecurePrintPassword");
  panel->hasPasscode = panel->passcode ? 1 : 0;
  if (std::optional<std::int64_t> time = dict.getNumber<std::int64_t>("DelayedPrintTime"))
    panel->delayedPrintTime = *time;
  panel->saveDisposition = dict.getNumber<std::int32_t>("SaveDisposition").value_or(1);
}

void ReadStaples(PaperOutputContext* panel, const print::Ticket& ticket) {
  panel->singleStaple = panel->dualStaple = panel->multipleStaple = 1;
  std::int32_t staple = PPDValueOrUnset(ticket, "StapleLocation");
  if (staple == kUnsetValue) {
    const std::string choice = PPDCopyCurrentChoice(&ticket, "StapleLocation").value_or("");
    if (choice == "SingleLandscape") staple = 5;
    if (choice == "DualPortrait") staple = 10;
  }
  if (staple >= 5 && staple <= 8) panel->singleStaple = staple;
  if (staple >= 10 && staple <= 13) panel->dualStaple = staple;
  if (staple >= 54 && staple <= 57) panel->multipleStaple = staple;
}

void WriteStaples(const PaperOutputContext* panel, print::Ticket& ticket) {
  std::int32_t staple = 1;
  for (std::int32_t position : {panel->singleStaple, panel->dualStaple, panel->multipleStaple}) {
    if (position != 1) {
      staple = position;
      break;
    }
  }
  const char* choice = PPDChoiceForTicketValue("StapleLocation", staple);
  if (!choice) return;
  std::string adjusted = choice;
  if (adjusted == "SinglePortrait" && Landscape(panel->orientation)) adjusted = "SingleLandscape";
  if (adjusted == "DualLandscape" && !Landscape(panel->orientation)) adjusted = "DualPortrait";
  PPDSetCurrentChoice(&ticket, "StapleLocation", adjusted.c_str());
}

// The coil binding punch's and the square fold and trimmer unit's choices.
void WriteFinisherUnits(const PaperOutputContext* panel, Writes& writes) {
  if (panel->finishingOptions == kCoilFinishing && panel->coilSelected) {
    const CoilBinding& coil = panel->coil;
    writes.set(kCoilBindingKey, plist::Value(plist::Dictionary{{"Edge", plist::Value(coil.edge)},
                                                               {"Pitch", plist::Value(coil.pitch)},
                                                               {"Margin", plist::Value(coil.margin)}}));
  } else if (writes.ticket.contains(kCoilBindingKey)) {
    writes.ticket.releaseItem(kCoilBindingKey);
  }
  if (!vocabulary::getInstalledFeature("SquareFoldTrimmerKey")) return;
  const std::uint8_t* flags = panel->finishingDialogFlags;
  writes.set(kSquareFoldKey, plist::Value(flags[kSquareFoldChosen] != 0));
  writes.set(kTrimOuterEdgeKey, plist::Value(flags[kTrimChosen] != 0));
  writes.set(kTrimWidthKey, plist::Value(panel->trimWidth));
}

void ReadFinisherUnits(PaperOutputContext* panel, const print::Ticket& ticket) {
  panel->coilSelected = 0;
  if (std::optional<plist::Dictionary> coil = ticket.dictionary(kCoilBindingKey)) {
    panel->coil.edge = coil->getNumber<std::int32_t>("Edge").value_or(1);
    panel->coil.pitch = coil->getNumber<std::int32_t>("Pitch").value_or(1);
    panel->coil.margin = coil->getNumber<std::int32_t>("Margin").value_or(panel->coil.margin);
    panel->coilSelected = panel->finishingOptions == kCoilFinishing ? 1 : 0;
  }
  std::uint8_t* flags = panel->finishingDialogFlags;
  flags[kSquareFoldChosen] = ticket.boolean(kSquareFoldKey).value_or(false) ? 1 : 0;
  flags[kTrimChosen] = ticket.boolean(kTrimOuterEdgeKey).value_or(false) ? 1 : 0;
  panel->trimWidth = ticket.number<std::int32_t>(kTrimWidthKey).value_or(panel->trimWidth);
}

// The popups, icons and summary from the context, once the panel is open.
void RestoreControls(PaperOutputContext* panel) {
  if (!panel->opened) return;
  SetPopupButtonToTicketValue(panel->jobTypePopup, panel->jobType);
  EnableDisableJobTypeSetupButton(panel);
  if (panel->jobTypeIcon) panel->jobTypeIcon->draw();
  SetPopupButtonToTicketValue(panel->outputDestinationPopup, panel->outputBin);
  const std::int32_t staple = panel->singleStaple != 1 ? panel->singleStaple
                              : panel->dualStaple != 1 ? panel->dualStaple
                                                       : panel->multipleStaple;
  if (!SetPopupButtonToTicketValue(panel->staplePopup, staple))
    SetPopupButtonToTicketValue(panel->staplePopup, 1);
  if (!SetPopupButtonToTicketValue(panel->holePunchPopup, panel->holePunch))
    SetPopupButtonToTicketValue(panel->holePunchPopup, 1);
  if (Control* popup = panel->twoSidedPopup) {
    const bool booklet = panel->bookletLayout == kBookletOn;
    SetPopupButtonToTicketValue(popup, booklet ? kLongEdgeDuplex : panel->duplexPopupValue);
    popup->setEnabled(!booklet && panel->duplexCapable);
  }
  if (panel->twoSidedIcon) panel->twoSidedIcon->draw();
  ShowPaperSummary(panel);
  // A ticket may bring a coil or square fold that its own paper cannot take.
  CheckFinisherAgainstStock(panel);
  FinishingChanged(panel);
}

}  // namespace

void ShowPaperSummary(PaperOutputContext* panel) {
  if (!panel || !panel->stockSummaryView) return;
  ui::ShowStockSummary(panel->bundle, panel->stockSummaryView, panel->jobLevelStock.get(),
                       ui::kJobStockContext);
  if (panel->jobLevelStock->type() != model::Stock::kTransparencyType) return;
  std::string line;
  model::SeparatorSummaryLine(panel->bundle, panel->separatorOption, *panel->separatorStock, &line);
  if (line.empty()) return;
  const std::string text = panel->stockSummaryView->text() + "\n" + line;
  ui::UpdateSummaryTextView(panel->stockSummaryView, &text);
}

OSStatus SyncPaperOutputToTicket(PaperOutputContext* panel, print::Ticket& ticket) {
  Writes writes{ticket};
  const model::Stock& stock = *panel->jobLevelStock;
  plist::Dictionary stockDict = stock.asTicket();

  PPDSetCurrentChoiceForTicketValue(&ticket, "MediaColor", stock.color());
  PPDSetCurrentChoiceForTicketValue(&ticket, "MediaType", stock.type());
  PPDSetCurrentChoiceForTicketValue(&ticket, "OutputBin", panel->outputBin);
  model::SyncSeparatorsToTicket(&ticket, panel->separatorOption, panel->separatorStock.get());
  WriteJobTypeDictionary(panel, writes);
  if (panel->faxOptions) writes.set(kFaxOptionsKey, plist::Value(panel->faxOptions->deepCopy()));
  if (panel->recipients) writes.set(kFaxRecipientListKey, plist::Value(panel->recipients->toTicket()));

  if (panel->bookletControl && panel->bookletControl->isActive()) {
    const bool booklet = panel->bookletLayout == kBookletOn;
    writes.set(model::kBookletLayoutKey, plist::Value(booklet));
    if (booklet) {
      writes.set(kBookletDrawOutlinesKey, plist::Value(panel->drawOutlines));
      const bool newSize = panel->bookletSize != kUnsetValue;
      if (newSize)
        stockDict.set("Size", plist::Value(panel->bookletSize));
      else
        stockDict.remove("Size");
      writes.set(kBookletForceNewSizeKey, plist::Value(newSize), kBookletClient);
      writes.set(kGutterKey, plist::Value(panel->gutter), kBookletClient);
      writes.set(kCreepKey, plist::Value(panel->creep), kBookletClient);
    }
  }
  writes.set(kJobLevelStockKey, plist::Value(std::move(stockDict)));

  if (panel->duplexCapable) {
    if (panel->bookletLayout == kBookletOn) panel->duplex = kShortEdgeDuplex;
    PPDSetCurrentChoiceForTicketValue(&ticket, "Duplex", panel->duplex);
    writes.set(kFinishingDuplexKey, plist::Value(panel->duplex));
    writes.set(kDuplexingKey, plist::Value(panel->duplex));
  }
  writes.set(kFinishingOptionsKey, plist::Value(panel->finishingOptions));
  writes.set(kFinishingOffsetKey, plist::Value(panel->offset));
  writes.set(kEnableSubsetKey, plist::Value(panel->offsetEnableSubset));
  if (panel->offsetEnableSubset)
    writes.set(kPagesPerSubsetKey, plist::Value(panel->offsetPagesPerSubset));
  writes.set(kSlipSheetKey, plist::Value(panel->slipSheet));
  PPDSetCurrentChoiceForTicketValue(&ticket, "VNFold", panel->fold);
  // Without holes the printer's punch choice stays as it is.
  if (const std::string punch = PunchChoice(panel->holePunch, panel->orientation); !punch.empty())
    PPDSetCurrentChoice(&ticket, "VNPunch", punch.c_str());
  WriteStaples(panel, ticket);
  writes.set(kBindValueKey, plist::Value(panel->bindValue));
  writes.set(kFinishingCustomKey, plist::Value(panel->customFinishing));
  WriteFinisherUnits(panel, writes);
  model::SyncCovers(ticket, false, panel->frontCover, panel->backCover);
  return writes.first;
}

OSStatus SyncPaperOutputFromTicket(PaperOutputContext* panel, const print::Ticket& ticket,
                                   const print::Ticket* pageFormat) {
  panel->orientation = 1;
  if (pageFormat)
    panel->orientation = pageFormat->number<std::int32_t>(print::kOrientationKey).value_or(1);

  std::optional<plist::Dictionary> stockDict = ticket.dictionary(kJobLevelStockKey);
  if (stockDict) {
    panel->jobLevelStock = std::make_unique<model::Stock>(*stockDict);
  } else {
    panel->jobLevelStock = std::make_unique<model::Stock>();
    ui::DefaultStock(panel->jobLevelStock.get(), ui::kJobStockContext);
  }
  panel->jobLevelStock->setColor(PPDValueOrUnset(ticket, "MediaColor"));
  panel->jobLevelStock->setType(PPDValueOrUnset(ticket, "MediaType"));
  panel->stockMenu.stock = panel->jobLevelStock.get();

  panel->outputBin = PPDValueOrUnset(ticket, "OutputBin");
  model::SyncSeparatorsFromTicket(&ticket, &panel->separatorOption, &panel->separatorStock);
  ReadJobTypeDictionary(panel, ticket);
  std::optional<plist::Dictionary> fax = ticket.dictionary(kFaxOptionsKey);
  panel->faxOptions = fax ? std::optional(fax->deepCopy()) : std::nullopt;
  plist::Array recipients;
  if (ticket.getArray(kFaxRecipientListKey, recipients) == noErr)
    panel->recipients = std::make_unique<fax::FaxRecipientList>(recipients);
  else
    panel->recipients.reset();

  // What the covers dialog could go back to belongs to the covers just replaced.
  if (panel->coversUndo) panel->coversUndo->clear();
  const std::optional<bool> booklet = ticket.boolean(model::kBookletLayoutKey);
  panel->bookletLayout = booklet.value_or(false) ? kBookletOn : kBookletOff;
  if (panel->bookletLayout == kBookletOn) {
    panel->drawOutlines = ticket.number<std::int32_t>(kBookletDrawOutlinesKey).value_or(0);
    if (ticket.boolean(kBookletForceNewSizeKey).value_or(false) && stockDict)
      panel->bookletSize = stockDict->getNumber<std::int32_t>("Size").value_or(kUnsetValue);
    panel->gutter = ticket.number<std::int32_t>(kGutterKey).value_or(24);
    panel->creep = ticket.number<std::int32_t>(kCreepKey).value_or(0);
  }

  std::optional<std::int32_t> duplex = ticket.number<std::int32_t>(kFinishingDuplexKey);
  if (!duplex) duplex = ticket.number<std::int32_t>(kDuplexingKey);
  if (!duplex) {
    std::int32_t value = 1;
    PPDGetTicketValueForChoiceOrDefault(PPDGetCurrent(), &ticket, "Duplex", &value);
    duplex = value;
  }
  panel->duplex = panel->duplexPopupValue = *duplex;

  panel->finishingOptions = ticket.number<std::int32_t>(kFinishingOptionsKey).value_or(0);
  panel->offset = ticket.number<std::int32_t>(kFinishingOffsetKey).value_or(1);
  panel->offsetEnableSubset = ticket.number<std::int32_t>(kEnableSubsetKey).value_or(0);
  panel->offsetPagesPerSubset =
      panel->offsetEnableSubset ? ticket.number<std::int32_t>(kPagesPerSubsetKey).value_or(1) : 1;
  panel->slipSheet = ticket.number<std::int32_t>(kSlipSheetKey).value_or(0);
  panel->fold = PPDValueOrUnset(ticket, "VNFold");
  panel->holePunch = PPDValueOrUnset(ticket, "VNPunch");
  if (panel->holePunch == kUnsetValue) {
    const std::string choice = PPDCopyCurrentChoice(&ticket, "VNPunch").value_or("");
    panel->holePunch = choice == "2HolePunchLandscape"   ? 3
                       : choice == "3HolePunchLandscape" ? 4
                       : choice == "4HolePunchLandscape" ? 5
                                                         : kUnsetValue;
  }
  ReadStaples(panel, ticket);
  panel->customFinishing = ticket.string(kFinishingCustomKey).value_or("");
  ReadFinisherUnits(panel, ticket);
  bool specialPages = false;
  for (const char* key : kSpecialPageKeys) specialPages = specialPages || ticket.contains(key);
  // Pads are glued at one edge, which pages of another stock would break.
  if (specialPages) panel->padPrinting = 0;
  EnableFinishingItems(panel, kPadPrintingCommand, !specialPages);

  print::Ticket writable = ticket;
  model::SyncCovers(writable, true, panel->frontCover, panel->backCover);
  RestoreControls(panel);
  return noErr;
}

}  // namespace varno::panels
