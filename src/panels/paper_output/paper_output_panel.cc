// SPDX-License-Identifier: Apache-2.0
// The panel's life: its context, opening its controls and closing them.
#include "panels/paper_output/paper_output_panel.h"

#include <array>
#include <ctime>
#include <new>

#include "panels/paper_output/finishing_menu.h"
#include "panels/paper_output/output_destination.h"
#include "platform/print/framework_keys.h"
#include "platform/print/ppd_calls.h"
#include "platform/print/session.h"
#include "platform/print/ticket_access.h"
#include "platform/toolkit/window.h"
#include "ui/panel_ui.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/plugin_bundle.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

using toolkit::Control;
using ui::SetControlBestRect;
using ui::SetLocalizedStaticText;
using ui::kAlignBottom;
using ui::kAlignRight;
using ui::kAlignTop;
using vocabulary::CopyLocalizedStringForInstalledFeatureFromPlugin;
using vocabulary::getInstalledFeature;

namespace {

constexpr std::array<std::int32_t, 1> kGroupIDs{100};
constexpr std::array<toolkit::EventTypeSpec, 2> kPanelEvents{{
    {toolkit::kEventClassControl, toolkit::kEventControlHit},
    {toolkit::kEventClassCommand, toolkit::kEventCommandProcess},
}};
constexpr std::array<toolkit::EventTypeSpec, 2> kStockMenuEvents{{
    {toolkit::kEventClassCommand, toolkit::kEventCommandProcess},
    {toolkit::kEventClassMenu, toolkit::kEventMenuEnableItems},
}};
constexpr std::array<toolkit::EventTypeSpec, 1> kDrawEvents{{
    {toolkit::kEventClassControl, toolkit::kEventControlDraw},
}};
// Seconds from 1 January 1904 to 1 January 1970.
constexpr std::int64_t kSecondsFrom1904To1970 = 2082844800;

PaperOutputContext* AsPaperOutput(print::PMPDEContext context) {
  return static_cast<PaperOutputContext*>(context);
}

std::string Localized(const bundle::BundleRef& bundle, const char* key) {
  return bundle ? bundle->localizedString(key, "Localizable", key) : key;
}

// The job's stock menu: the printer's sizes, colours and types, the default and advanced
// stock, then covers and separators.
void BuildStockMenu(PaperOutputContext* panel) {
  Control* button = panel->stockMenuButton;
  if (!button) return;
  toolkit::MenuPtr menu = toolkit::Menu::create();
  ui::PopulateStockMenu(menu.get(), panel->bundle, ui::kJobStockContext, &panel->stockMenu);
  struct Submenu {
    const char* key;
    toolkit::MenuCommand command;
    OSStatus (*populate)(toolkit::Menu*, const bundle::BundleRef&, ui::JobContext);
  };
  static constexpr Submenu kSubmenus[] = {
      {"Paper Size Menu", ui::kStockSizeCommand, ui::PopulateStockSizeMenu},
      {"Paper Color Menu", ui::kStockColorCommand, ui::PopulateStockColorMenu},
      {"Paper Type Menu", ui::kStockTypeCommand, ui::PopulateStockTypeMenu}};
  for (const Submenu& entry : kSubmenus) {
    const toolkit::MenuItemIndex item = menu->appendItem(Localized(panel->bundle, entry.key), entry.command);
    toolkit::MenuPtr submenu = toolkit::Menu::create();
    entry.populate(submenu.get(), panel->bundle, ui::kJobStockContext);
    menu->setItemSubmenu(item, std::move(submenu));
  }
  menu->appendItem(Localized(panel->bundle, "Default Paper Menu"), ui::kDefaultStockCommand);
  menu->appendItem(Localized(panel->bundle, "Advanced Paper Menu"), ui::kAdvancedStockCommand);
  menu->setItemEnabled(menu->appendItem("-"), false);
  menu->appendItem(Localized(panel->bundle, "Covers Menu Option"), kCoversCommand);
  menu->appendItem(Localized(panel->bundle, "Separators Option"), kSeparatorsCommand);
  button->setMenu(std::move(menu));
  // Runs before the pane's handler, which adds the separators line to the summary.
  button->installHandler(kStockMenuEvents, ui::StockMenuCommandEventHandler, &panel->stockMenu);
  panel->stockMenuBuilt = 1;
}

}  // namespace

std::int64_t NextMidnightSince1904() {
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  local.tm_hour = local.tm_min = local.tm_sec = 0;
  local.tm_isdst = -1;
  const std::time_t midnight = std::mktime(&local);
  // Local time, as the job's clock on the printer reads it.
  return static_cast<std::int64_t>(midnight) + local.tm_gmtoff + kSecondsFrom1904To1970 + 86400;
}

bool JobTypeHasSetup(std::int32_t jobType) {
  switch (jobType) {
    case 3: case 4: case 5: case 6: case 7: case 9: return true;
    default: return false;
  }
}

void EnableDisableJobTypeSetupButton(PaperOutputContext* context) {
  if (context && context->jobTypeSetupButton)
    context->jobTypeSetupButton->setEnabled(JobTypeHasSetup(context->jobType));
}

const char* JobTypePictureName(std::int32_t jobType) {
  switch (jobType) {
    case 1: return "JobType_NormalPrint.gif";
    case 2: return "JobType_HoldJob.gif";
    case 3: return "JobType_SavedJob.gif";
    case 5: return "JobType_Fax.gif";
    case 6: return "JobType_SecurePrint.gif";
    case 7: return "JobType_DelayPrint.gif";
    case 8: return "JobType_SampleSet.gif";
    case 9: return "JobType_BackgroundForm.gif";
    default: return nullptr;
  }
}

const char* TwoSidedPictureName(std::int32_t duplex) {
  switch (duplex) {
    case kLongEdgeDuplex: return "2SidedPrinting_2Sided.gif";
    case kShortEdgeDuplex: return "2SidedPrinting_2SidedFlip.gif";
    default: return "2SidedPrinting_1Sided.gif";
  }
}

OSStatus PaperOutputPrologue(print::PMPDEContext* context, OSType* creator, std::string* kind,
                             std::string* title, std::uint32_t* maxH, std::uint32_t* maxV) {
  auto* panel = new (std::nothrow) PaperOutputContext{};
  if (!panel) return kPMInvalidPDEContext;
  panel->bundle = vocabulary::FindPlugInBundle();
  panel->title = host::LocalizedPanelTitle(panel->bundle, "PaperOutput");
  panel->separatorStock = std::make_unique<model::Stock>();
  panel->jobLevelStock = std::make_unique<model::Stock>();
  ui::DefaultStock(panel->jobLevelStock.get(), ui::kJobStockContext);
  panel->dialogStock = std::make_unique<model::Stock>();
  ui::DefaultStock(panel->dialogStock.get(), ui::kJobStockContext);
  panel->delayedPrintTime = NextMidnightSince1904();
  panel->stockMenu = {panel->bundle, panel->jobLevelStock.get(), nullptr, ui::kJobStockContext,
                      nullptr, nullptr};
  panel->okCheck = {&panel->jobType, &panel->passcode, &panel->faxOptions, &panel->recipients};
  if (context) *context = panel;
  host::ReportPanelPrologue(kPaperOutputCreator, panel->title, creator, kind, title, maxH, maxV);
  return noErr;
}

OSStatus PaperOutputInitialize(print::PMPDEContext context, print::PMPDEFlags*, print::PMPDERef,
                               print::ControlRef userPane, print::Session* session) {
  PaperOutputContext* panel = AsPaperOutput(context);
  if (!panel || !session) return kPMInvalidPDEContext;
  panel->session = session;
  panel->userPane = userPane;
  ppd_file_t* ppd = vocabulary::PPDGetCurrent();
  panel->duplexCapable = ppd && print::ppdcall::FindOption(ppd, "Duplex") ? 1 : 0;
  std::int32_t duplexDefault = 1;
  vocabulary::PPDGetTicketValueForChoiceOrDefault(ppd, nullptr, "Duplex", &duplexDefault);
  if (duplexDefault != -1) panel->rememberedDuplex = duplexDefault;
  print::Ticket ticket;
  if (OSStatus status = print::GetTicketFromSession(session, print::kPrintSettingsTicket, &ticket);
      status != noErr)
    return status;
  panel->savedJobName = ticket.string(print::kJobNameKey).value_or(Localized(panel->bundle, "Unknown"));
  host::AttachFirstPanelJob(panel, &panel->okCheck);
  return PaperOutputSync(panel, session, true);
}

OSStatus PaperOutputSync(print::PMPDEContext context, print::Session* session, bool syncDirection) {
  PaperOutputContext* panel = AsPaperOutput(context);
  if (!panel || !session) return kPMInvalidPrintSession;
  print::Ticket ticket;
  if (OSStatus status = print::GetTicketFromSession(session, print::kPrintSettingsTicket, &ticket);
      status != noErr)
    return status;
  if (!syncDirection) return SyncPaperOutputToTicket(panel, ticket);
  print::Ticket pageFormat;
  const bool hasPageFormat =
      print::GetTicketFromSession(session, print::kPageFormatTicket, &pageFormat) == noErr;
  return SyncPaperOutputFromTicket(panel, ticket, hasPageFormat ? &pageFormat : nullptr);
}

OSStatus PaperOutputGetSummaryText(print::PMPDEContext context, plist::Array*, plist::Array*) {
  // The panel offers the host no summary of its own.
  return context ? noErr : kPMInvalidPDEContext;
}

OSStatus PaperOutputOpen(print::PMPDEContext context) {
  PaperOutputContext* panel = AsPaperOutput(context);
  if (!panel) return kPMInvalidPDEContext;
  Control* pane = panel->userPane;
  auto find = [pane](std::int32_t id) {
    return pane ? pane->findByID({kPaperOutputSignature, id}) : nullptr;
  };
  if (!find(kJobTypePopupID)) {
    std::unique_ptr<toolkit::Window> layout;
    if (OSStatus status = ui::LoadPanelLayout(panel->bundle, "Paper_Output", "Panel",
                                              kPaperOutputSignature, kGroupIDs, pane, &layout,
                                              "PaperOutputOpen");
        status != noErr)
      return status;
  } else if (pane) {
    // Reopened after Close: the summary views come back where they were.
    const std::pair<std::int32_t, const std::optional<toolkit::Rect>*> views[] = {
        {kStockSummaryViewID, &panel->stockSummaryBounds},
        {kFinishingSummaryViewID, &panel->finishingSummaryBounds}};
    for (const auto& [id, bounds] : views) {
      if (find(id) || !*bounds) continue;
      auto view = Control::create(toolkit::ControlKind::StaticText, **bounds);
      view->setID({kPaperOutputSignature, id});
      pane->embed(std::move(view));
    }
  }
  panel->opened = 1;
  const bundle::BundleRef& bundle = panel->bundle;
  ppd_file_t* ppd = vocabulary::PPDGetCurrent();

  panel->jobTypePopup = find(kJobTypePopupID);
  panel->jobTypeSetupButton = find(kJobTypeSetupButtonID);
  panel->jobTypeIcon = find(kJobTypeIconID);
  panel->stockSummaryView = find(kStockSummaryViewID);
  panel->stockMenuButton = find(kStockMenuButtonID);
  panel->stockIcon = find(kStockIconID);
  panel->twoSidedLabel = find(kTwoSidedLabelID);
  panel->twoSidedPopup = find(kTwoSidedPopupID);
  panel->twoSidedIcon = find(kTwoSidedIconID);
  panel->staplingLabel = find(kStaplingLabelID);
  panel->staplePopup = find(kStaplePopupID);
  panel->holePunchLabel = find(kHolePunchLabelID);
  panel->holePunchPopup = find(kHolePunchPopupID);
  panel->outputDestinationPopup = find(kOutputDestinationPopupID);
  panel->destinationIcon = find(kDestinationIconID);
  panel->finishingLabel = find(kFinishingLabelID);
  panel->finishingSummaryView = find(kFinishingSummaryViewID);
  panel->finishingMenuButton = find(kFinishingMenuButtonID);
  panel->finishingIcon = find(kFinishingIconID);
  panel->stockMenu.summaryView = panel->stockSummaryView;

  const std::pair<std::int32_t, const char*> labels[] = {
      {kJobTypeLabelID, "Job Type:"},         {kPaperSummaryLabelID, "Paper Summary:"},
      {kTwoSidedLabelID, "Two Sided Printing:"}, {kStaplingLabelID, "Stapling:"},
      {kHolePunchLabelID, "Hole Punch:"},     {kOutputDestinationLabelID, "Output Destination:"},
      {kFinishingLabelID, "Finishing Label"}};
  for (const auto& [id, key] : labels) {
    if (Control* label = find(id)) {
      SetLocalizedStaticText(bundle, key, label);
      SetControlBestRect(label, kAlignTop | kAlignBottom | kAlignRight, nullptr, nullptr);
    }
  }
  ui::SetLocalizedControlTitle(bundle, "Setup...", panel->jobTypeSetupButton);
  ui::SetLocalizedControlTitle(bundle, "Paper Menu Title", panel->stockMenuButton);

  // Filled afresh on every Open, so a reopened panel lists each choice once.
  for (Control* popup : {panel->jobTypePopup, panel->twoSidedPopup, panel->outputDestinationPopup})
    if (popup) popup->setMenu(toolkit::Menu::create());
  vocabulary::PopulatePopupButtonFromMap(bundle, panel->jobTypePopup, vocabulary::JobTypeMap, false, 0);
  if (panel->twoSidedPopup) {
    if (panel->duplexCapable)
      vocabulary::PPDPopulatePopupWithChoices(panel->twoSidedPopup, ppd, "Duplex", false);
    panel->twoSidedPopup->setEnabled(panel->duplexCapable);
  }
  // The finisher's trays when the printer says which finisher it has; else the PPD's bins.
  if (AnyFinisherConfigurationInstalled())
    PopulateOutputDestination(panel->outputDestinationPopup, bundle);
  else
    vocabulary::PPDPopulatePopupWithChoices(panel->outputDestinationPopup, ppd, "OutputBin", false);
  if (!panel->stockMenuBuilt) BuildStockMenu(panel);
  BuildFinishingControls(panel);

  if (pane && !panel->panelHandlerRef)
    panel->panelHandlerRef = pane->installHandler(kPanelEvents, dialogHostPaperOutputEventHandler, panel);
  if (!panel->drawHandlerRef)
    for (Control* icon : {panel->jobTypeIcon, panel->twoSidedIcon})
      if (icon) panel->drawHandlerRef = icon->installHandler(kDrawEvents, PaperOutputDrawEventHandler, panel);
  return PaperOutputSync(panel, panel->session, true);
}

OSStatus PaperOutputClose(print::PMPDEContext context) {
  PaperOutputContext* panel = AsPaperOutput(context);
  if (!panel) return kPMInvalidPDEContext;
  if (panel->stockSummaryView) {
    panel->stockSummaryBounds = panel->stockSummaryView->bounds();
    panel->stockSummaryView->dispose();
  }
  if (panel->finishingSummaryView) {
    panel->finishingSummaryBounds = panel->finishingSummaryView->bounds();
    panel->finishingSummaryView->dispose();
  }
  panel->stockSummaryView = panel->finishingSummaryView = nullptr;
  panel->stockMenu.summaryView = nullptr;
  return noErr;
}

OSStatus PaperOutputTerminate(print::PMPDEContext context, OSStatus) {
  PaperOutputContext* panel = AsPaperOutput(context);
  if (!panel) return kPMInvalidPDEContext;
  host::DetachFirstPanelJob(&panel->okCheck);
  // The handlers go with the pane and the icons, which the host's window owns and may
  // already have freed.
  delete panel;
  return noErr;
}

}  // namespace varno::panels

extern "C" varno::OSStatus GetPaperOutputPanelInterface(varno::host::PanelInterfaceHolder** out) {
  using namespace varno::panels;
  return varno::host::MakePanelInterfaceHolder(
      {.Prologue = PaperOutputPrologue, .Initialize = PaperOutputInitialize, .Sync = PaperOutputSync,
       .GetSummaryText = PaperOutputGetSummaryText, .Open = PaperOutputOpen, .Close = PaperOutputClose,
       .Terminate = PaperOutputTerminate},
      out);
}
