// SPDX-License-Identifier: Apache-2.0
#include "panels/image_options/image_options_panel.h"
#include "platform/toolkit/event.h"
#include "ui/panel_ui.h"

namespace varno::panels {

using ui::DrawImage;

namespace {

// The panel's own IDs plus those of the shared quality and colour controls other layouts
// place on this pane; a hit on any of them changes what the pictures show.
constexpr std::int32_t kSaveAndRestoreIDs[] = {1109, 1202, 1302, 1402, 1502, 1602,
                                                1802, 1902, 2002, 2102, 2103};
constexpr std::int32_t kRestoreOnlyID = 1004;

}  // namespace

const char* ImageQualityPictureName(std::int32_t imageQuality) {
  switch (imageQuality) {
    case 1: case 4: return "ImageOptions_ImgQual_TonerSaver.gif";
    case 2: case 5: return "ImageOptions_ImgQual_Standard.gif";
    case 3: case 6: return "ImageOptions_ImgQual_Enhanced.gif";
    default: return nullptr;
  }
}

const char* TonerSaverPictureName(std::int32_t tonerSaver) {
  return tonerSaver == 1 ? "ImageOptions_TonerSaver_On.gif" : "ImageOptions_TonerSaver_Off.gif";
}

const char* InvertPictureName(const InvertImageFlags& flags) {
  if (flags.negative && flags.mirror) return "ImageOptions_InvertImage_Negative&Mirror.gif";
  if (flags.negative) return "ImageOptions_InvertImage_Negative.gif";
  if (flags.mirror) return "ImageOptions_InvertImage_Mirror.gif";
  return "ImageOptions_InvertImage_Off.gif";
}

OSStatus ImageOptionsPanelEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                                       void* context) {
  auto* panel = static_cast<ImageOptionsContext*>(context);
  toolkit::Control* control = event ? event->control() : nullptr;
  if (!panel || !control || control->id().signature != kImageOptionsSignature)
    return eventNotHandledErr;
  const std::int32_t id = control->id().id;
  if (id == kRestoreOnlyID) {
    RestoreUIValuesFromData(panel);
  } else {
    for (std::int32_t changing : kSaveAndRestoreIDs) {
      if (id != changing) continue;
      SaveUIValuesToData(panel);
      RestoreUIValuesFromData(panel);
      break;
    }
  }
  // The host and the standard behaviours still need every hit.
  return eventNotHandledErr;
}

OSStatus ImageOptionsDrawEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                                      void* context) {
  auto* panel = static_cast<ImageOptionsContext*>(context);
  toolkit::Control* picture = event ? event->control() : nullptr;
  if (!panel || !picture) return eventNotHandledErr;
  const char* name = nullptr;
  if (picture == panel->imageQualityPicture) name = ImageQualityPictureName(panel->imageQuality);
  else if (picture == panel->tonerSaverPicture) name = TonerSaverPictureName(panel->tonerSaver);
  else if (picture == panel->invertPicture) name = InvertPictureName(panel->invert);
  else return eventNotHandledErr;
  return DrawImage(panel->bundle, name, picture);
}

}  // namespace varno::panels
