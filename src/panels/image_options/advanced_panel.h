// SPDX-License-Identifier: Apache-2.0
// The Advanced panel: booklet image order, banner sheet, request offset and bypass-tray
// feed edge, each a pop-up menu, plus an "About..." button.
#pragma once

#include <cstdint>
#include <string>

#include <cups/ppd.h>

#include "host/dialog_host.h"
#include "platform/bundle/bundle.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/event_target.h"

namespace varno::panels {

inline constexpr OSType kAdvancedSignature = MakeOSType("VPDE");
inline constexpr std::int32_t kBookletOrderLabelID = 601;
inline constexpr std::int32_t kBookletOrderPopupID = 602;
inline constexpr std::int32_t kBannerSheetLabelID = 613;
inline constexpr std::int32_t kBannerSheetPopupID = 614;
inline constexpr std::int32_t kRequestOffsetLabelID = 615;
inline constexpr std::int32_t kRequestOffsetPopupID = 616;
inline constexpr std::int32_t kAboutButtonID = 670;
inline constexpr std::int32_t kFeedEdgeLabelID = 701;
inline constexpr std::int32_t kFeedEdgePopupID = 702;
inline constexpr const char* kBookletLayoutOrderKey =
    "com.varno.print.AdvancedBookletLayoutOrderStr";
inline constexpr const char* kAdvancedTicketClient = "com.varno.printingmanager";

struct AdvancedContext {
  std::uint32_t opened = 0;
  bundle::BundleRef bundle;
  std::string title;
  toolkit::Control* userPane = nullptr;
  ppd_file_t* ppd = nullptr;  // the shared PPD, not owned
  std::int32_t bookletLayoutOrder = 0;
  std::int32_t bannerSheet = 0;
  std::int32_t requestOffset = 0;
  std::int32_t feedEdge = 0;
  toolkit::Control* bookletOrderLabel = nullptr;
  toolkit::Control* bookletOrderPopup = nullptr;
  toolkit::Control* bannerSheetLabel = nullptr;
  toolkit::Control* bannerSheetPopup = nullptr;
  toolkit::Control* requestOffsetLabel = nullptr;
  toolkit::Control* requestOffsetPopup = nullptr;
  toolkit::Control* feedEdgeLabel = nullptr;
  toolkit::Control* feedEdgePopup = nullptr;
  toolkit::Control* aboutButton = nullptr;
  toolkit::EventHandlerRef handlerRef = nullptr;
};

OSStatus AdvancedPrologue(print::PMPDEContext* context, OSType* creator, std::string* kind,
                          std::string* title, std::uint32_t* maxH, std::uint32_t* maxV);
OSStatus AdvancedInitialize(print::PMPDEContext context, print::PMPDEFlags* flags,
                            print::PMPDERef ref, print::ControlRef userPane,
                            print::Session* session);
OSStatus AdvancedSync(print::PMPDEContext context, print::Session* session, bool syncDirection);
OSStatus AdvancedGetSummaryText(print::PMPDEContext context, plist::Array* titles,
                                plist::Array* values);
OSStatus AdvancedOpen(print::PMPDEContext context);
OSStatus AdvancedClose(print::PMPDEContext context);
OSStatus AdvancedTerminate(print::PMPDEContext context, OSStatus status);

// Selects the booklet-order and feed-edge items for the context's values.
void setControls(AdvancedContext* context);

// Control hits on the pane: stores the chosen pop-up values, opens the About dialog.
// Always passes the event on.
OSStatus AdvancedPanelEventHandler(toolkit::EventHandlerCallRef call, toolkit::EventRef event,
                                   void* context);

}  // namespace varno::panels

extern "C" varno::OSStatus GetAdvancedPanelInterface(varno::host::PanelInterfaceHolder** out);
