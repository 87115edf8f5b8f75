// SPDX-License-Identifier: Apache-2.0
#include "panels/image_options/advanced_panel.h"

#include <array>
#include <memory>
#include <new>

#include "platform/print/session.h"
#include "platform/print/ticket_access.h"
#include "platform/toolkit/window.h"
#include "ui/panel_ui.h"
#include "vocabulary/plugin_bundle.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

using print::CFIndex;
using print::GetTicketFromSession;
using ui::LoadPanelLayout;
using ui::SetControlBestRect;
using ui::SetLocalizedControlTitle;
using ui::SetLocalizedStaticText;
using ui::kAlignLeft;
using ui::kAlignTop;
using vocabulary::BookletLayoutOrderMap;
using vocabulary::FindPlugInBundle;
using vocabulary::PPDGetCurrent;
using vocabulary::PPDGetTicketValueForChoiceOrDefault;
using vocabulary::PPDPopulatePopupWithChoices;
using vocabulary::PPDSetCurrentChoiceForTicketValue;
using vocabulary::PopulatePopupButtonFromMap;
using vocabulary::SetPopupButtonToTicketValue;

namespace {

using toolkit::Control;

constexpr const char* kBannerKeyword = "JCLBanner";
constexpr const char* kJogKeyword = "Jog";
constexpr const char* kFeedEdgeKeyword = "VNFeedEdge";
// Before any ticket is read, and whenever the PPD gives no default, offsets are requested.
constexpr std::int32_t kDefaultRequestOffset = 1;
// A ticket without the booklet order selects no item: the map has no row for it.
constexpr std::int32_t kMissingBookletLayoutOrder = 2;
// The groups of the layout window, stacked in this order.
constexpr std::array<std::int32_t, 5> kGroupIDs{1, 7, 8, 700, 13};
constexpr std::array<toolkit::EventTypeSpec, 1> kPanelEvents{{
    {toolkit::kEventClassControl, toolkit::kEventControlHit},
}};

AdvancedContext* AsAdvanced(print::PMPDEContext context) {
  return static_cast<AdvancedContext*>(context);
}

Control* Find(toolkit::Control* pane, std::int32_t id) {
  return pane ? pane->findByID({kAdvancedSignature, id}) : nullptr;
}

void SetLabel(const bundle::BundleRef& bundle, const char* key, Control* label) {
  if (!label) return;
  SetLocalizedStaticText(bundle, key, label);
  SetControlBestRect(label, kAlignTop | kAlignLeft, nullptr, nullptr);
}

}  // namespace

OSStatus AdvancedPrologue(print::PMPDEContext* context, OSType* creator, std::string* kind,
                          std::string* title, std::uint32_t* maxH, std::uint32_t* maxV) {
  auto* panel = new (std::nothrow) AdvancedContext{};
  if (!panel) return kPMInvalidPDEContext;
  panel->requestOffset = kDefaultRequestOffset;
  panel->bundle = FindPlugInBundle();
  panel->title = host::LocalizedPanelTitle(panel->bundle, "Advanced");
  if (context) *context = panel;
  // Unlike the other panels, this one reports the creator code of its controls.
  host::ReportPanelPrologue(kAdvancedSignature, panel->title, creator, kind, title, maxH, maxV);
  return noErr;
}

OSStatus AdvancedInitialize(print::PMPDEContext context, print::PMPDEFlags*, print::PMPDERef,
                            print::ControlRef userPane, print::Session* session) {
  AdvancedContext* panel = AsAdvanced(context);
  if (!panel || !session) return kPMInvalidPDEContext;
  panel->userPane = userPane;
  panel->ppd = PPDGetCurrent();
  return AdvancedSync(panel, session, true);
}

OSStatus AdvancedSync(print::PMPDEContext context, print::Session* session, bool syncDirection) {
  AdvancedContext* panel = AsAdvanced(context);
  if (!panel || !session) return kPMInvalidPrintSession;
  print::Ticket ticket;
  if (OSStatus status = GetTicketFromSession(session, print::kPrintSettingsTicket, &ticket);
      status != noErr)
    return status;

  if (!syncDirection) {
    ticket.setValue(kBookletLayoutOrderKey, plist::Value(static_cast<CFIndex>(panel->bookletLayoutOrder)),
                    kAdvancedTicketClient);
    PPDSetCurrentChoiceForTicketValue(&ticket, kBannerKeyword, panel->bannerSheet);
    PPDSetCurrentChoiceForTicketValue(&ticket, kJogKeyword, panel->requestOffset);
    PPDSetCurrentChoiceForTicketValue(&ticket, kFeedEdgeKeyword, panel->feedEdge);
    return noErr;
  }

  CFIndex order = 0;
  OSStatus result = ticket.getNumber(kBookletLayoutOrderKey, order);
  panel->bookletLayoutOrder = result == noErr ? order : kMissingBookletLayoutOrder;
  PPDGetTicketValueForChoiceOrDefault(panel->ppd, &ticket, kBannerKeyword, &panel->bannerSheet);
  PPDGetTicketValueForChoiceOrDefault(panel->ppd, &ticket, kJogKeyword, &panel->requestOffset);
  PPDGetTicketValueForChoiceOrDefault(panel->ppd, &ticket, kFeedEdgeKeyword, &panel->feedEdge);

  SetPopupButtonToTicketValue(panel->bookletOrderPopup, panel->bookletLayoutOrder);
  SetPopupButtonToTicketValue(panel->bannerSheetPopup, panel->bannerSheet);
  SetPopupButtonToTicketValue(panel->requestOffsetPopup, panel->requestOffset);
  SetPopupButtonToTicketValue(panel->feedEdgePopup, panel->feedEdge);
  if (panel->userPane) panel->userPane->draw();
  return result;
}

OSStatus AdvancedGetSummaryText(print::PMPDEContext, plist::Array*, plist::Array*) {
  return noErr;
}

OSStatus AdvancedOpen(print::PMPDEContext context) {
  AdvancedContext* panel = AsAdvanced(context);
  if (!panel || panel->opened) return kPMInvalidPDEContext;
  panel->opened = 1;

  std::unique_ptr<toolkit::Window> layout;
  if (OSStatus status = LoadPanelLayout(panel->bundle, "AdvancedPanel", "Advanced",
                                        kAdvancedSignature, kGroupIDs, panel->userPane, &layout,
                                        "AdvancedOpen");
      status != noErr)
    return status;

  Control* pane = panel->userPane;
  panel->bookletOrderLabel = Find(pane, kBookletOrderLabelID);
  panel->bookletOrderPopup = Find(pane, kBookletOrderPopupID);
  panel->bannerSheetLabel = Find(pane, kBannerSheetLabelID);
  panel->bannerSheetPopup = Find(pane, kBannerSheetPopupID);
  panel->requestOffsetLabel = Find(pane, kRequestOffsetLabelID);
  panel->requestOffsetPopup = Find(pane, kRequestOffsetPopupID);
  panel->feedEdgeLabel = Find(pane, kFeedEdgeLabelID);
  panel->feedEdgePopup = Find(pane, kFeedEdgePopupID);
  panel->aboutButton = Find(pane, kAboutButtonID);

  SetLabel(panel->bundle, "Booklet Image Order:", panel->bookletOrderLabel);
  SetLabel(panel->bundle, "Banner Sheet:", panel->bannerSheetLabel);
  SetLabel(panel->bundle, "Request Offset:", panel->requestOffsetLabel);
  SetLabel(panel->bundle, "Bypass Feed Edge Label", panel->feedEdgeLabel);
  if (panel->aboutButton) {
    SetLocalizedControlTitle(panel->bundle, "About...", panel->aboutButton);
    SetControlBestRect(panel->aboutButton, kAlignTop | kAlignLeft, nullptr, nullptr);
  }

  PopulatePopupButtonFromMap(panel->bundle, panel->bookletOrderPopup, BookletLayoutOrderMap,
                             false, 0);
  PPDPopulatePopupWithChoices(panel->bannerSheetPopup, panel->ppd, kBannerKeyword, false);
  PPDPopulatePopupWithChoices(panel->requestOffsetPopup, panel->ppd, kJogKeyword, false);
  PPDPopulatePopupWithChoices(panel->feedEdgePopup, panel->ppd, kFeedEdgeKeyword, false);

  if (pane) panel->handlerRef = pane->installHandler(kPanelEvents, AdvancedPanelEventHandler, panel);
  setControls(panel);
  return noErr;
}

OSStatus AdvancedClose(print::PMPDEContext) { return noErr; }

OSStatus AdvancedTerminate(print::PMPDEContext context, OSStatus) {
  AdvancedContext* panel = AsAdvanced(context);
  if (!panel) return kPMInvalidPDEContext;
  // The pane may already be gone with its window; its handlers go with it.
  delete panel;
  return noErr;
}

void setControls(AdvancedContext* context) {
  if (!context) return;
  SetPopupButtonToTicketValue(context->bookletOrderPopup, context->bookletLayoutOrder);
  SetPopupButtonToTicketValue(context->feedEdgePopup, context->feedEdge);
}

}  // namespace varno::panels

extern "C" varno::OSStatus GetAdvancedPanelInterface(varno::host::PanelInterfaceHolder** out) {
  using namespace varno::panels;
  return varno::host::MakePanelInterfaceHolder(
      {.Prologue = AdvancedPrologue, .Initialize = AdvancedInitialize, .Sync = AdvancedSync,
       .GetSummaryText = AdvancedGetSummaryText, .Open = AdvancedOpen, .Close = AdvancedClose,
       .Terminate = AdvancedTerminate},
      out);
}
