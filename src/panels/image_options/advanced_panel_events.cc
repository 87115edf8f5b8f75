// SPDX-License-Identifier: Apache-2.0
#include "panels/image_options/about_dialog.h"
#include "panels/image_options/advanced_panel.h"
#include "platform/toolkit/event.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

using vocabulary::GetPopupButtonTicketValue;

OSStatus AdvancedPanelEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                                   void* context) {
  auto* panel = static_cast<AdvancedContext*>(context);
  if (!event || !panel || !event->is({toolkit::kEventClassControl, toolkit::kEventControlHit}))
    return eventNotHandledErr;
  toolkit::Control* control = event->control();
  if (!control || control->id().signature != kAdvancedSignature) return eventNotHandledErr;
  switch (control->id().id) {
    case kBookletOrderPopupID: panel->bookletLayoutOrder = GetPopupButtonTicketValue(control); break;
    case kBannerSheetPopupID: panel->bannerSheet = GetPopupButtonTicketValue(control); break;
    case kRequestOffsetPopupID: panel->requestOffset = GetPopupButtonTicketValue(control); break;
    case kFeedEdgePopupID: panel->feedEdge = GetPopupButtonTicketValue(control); break;
    case kAboutButtonID: RunModalAboutDialog(panel->bundle); break;
    default: break;
  }
  // Others on the chain (the host) still see every hit.
  return eventNotHandledErr;
}

}  // namespace varno::panels
