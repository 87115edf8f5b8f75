// SPDX-License-Identifier: Apache-2.0
#include "panels/image_options/image_options_panel.h"

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

using print::GetTicketFromSession;
using ui::LoadPanelLayout;
using ui::SetControlBestRect;
using ui::SetLocalizedControlTitle;
using ui::SetLocalizedStaticText;
using ui::kAlignBottom;
using ui::kAlignLeft;
using ui::kAlignRight;
using ui::kAlignTop;
using vocabulary::FindPlugInBundle;
using vocabulary::GetPopupButtonTicketValue;
using vocabulary::PPDGetCurrent;
using vocabulary::PPDGetTicketValueForChoiceOrDefault;
using vocabulary::PPDPopulatePopupWithChoices;
using vocabulary::PPDSetCurrentChoiceForTicketValue;
using vocabulary::SetPopupButtonToTicketValue;

namespace {

using toolkit::Control;

constexpr const char* kQualityKeyword = "VNOutputMode";
constexpr const char* kTonerSaverKeyword = "VNEconomode";
constexpr const char* kImageResolutionClient = "com.varno.printingmanager";
constexpr std::int32_t kTonerSaverOn = 1;  // "Draft"
constexpr std::array<std::int32_t, 3> kGroupIDs{1200, 1300, 2100};
// Where each control stays when it takes its best size: every one keeps its top edge; the
// labels and the toner box centre on their old width, the invert controls keep their left.
constexpr std::uint32_t kLabelAlignment = kAlignTop | kAlignBottom;
constexpr std::uint32_t kInvertLabelAlignment = kAlignTop | kAlignBottom | kAlignLeft;
constexpr std::uint32_t kInvertCheckBoxAlignment = kAlignTop | kAlignLeft | kAlignRight;
constexpr std::array<toolkit::EventTypeSpec, 2> kPanelEvents{{
    {toolkit::kEventClassControl, toolkit::kEventControlHit},
    {toolkit::kEventClassCommand, toolkit::kEventCommandProcess},
}};
constexpr std::array<toolkit::EventTypeSpec, 1> kDrawEvents{{
    {toolkit::kEventClassControl, toolkit::kEventControlDraw},
}};

ImageOptionsContext* AsImageOptions(print::PMPDEContext context) {
  return static_cast<ImageOptionsContext*>(context);
}

void Redraw(Control* picture) {
  if (picture) picture->draw();
}

void SetCheckBox(Control* box, bool on) {
  if (box) box->setValue(on ? 1 : 0);
}

}  // namespace

OSStatus ImageOptionsPrologue(print::PMPDEContext* context, OSType* creator, std::string* kind,
                              std::string* title, std::uint32_t* maxH, std::uint32_t* maxV) {
  auto* panel = new (std::nothrow) ImageOptionsContext{};
  if (!panel) return kPMInvalidPDEContext;
  panel->bundle = FindPlugInBundle();
  panel->title = host::LocalizedPanelTitle(panel->bundle, "ImageOptions");
  panel->drawHandler = ImageOptionsDrawEventHandler;
  panel->panelHandler = ImageOptionsPanelEventHandler;
  if (context) *context = panel;
  host::ReportPanelPrologue(kImageOptionsCreator, panel->title, creator, kind, title, maxH, maxV);
  return noErr;
}

OSStatus ImageOptionsInitialize(print::PMPDEContext context, print::PMPDEFlags*, print::PMPDERef,
                                print::ControlRef userPane, print::Session* session) {
  ImageOptionsContext* panel = AsImageOptions(context);
  if (!panel || !session) return kPMInvalidPDEContext;
  panel->userPane = userPane;
  InvertImageInitialize(&panel->invertControls, &panel->invert);
  panel->ppd = PPDGetCurrent();
  return ImageOptionsSync(panel, session, true);
}

OSStatus ImageOptionsSync(print::PMPDEContext context, print::Session* session,
                          bool syncDirection) {
  ImageOptionsContext* panel = AsImageOptions(context);
  if (!panel || !session) return kPMInvalidPrintSession;
  print::Ticket ticket;
  if (OSStatus status = GetTicketFromSession(session, print::kPrintSettingsTicket, &ticket);
      status != noErr)
    return status;

  if (!syncDirection) {
    SaveUIValuesToData(panel);
    SyncTonerSaverToTicket(panel, ticket);
    InvertImageSync(&panel->invertControls, &panel->invert, false, ticket);
  } else {
    PPDGetTicketValueForChoiceOrDefault(panel->ppd, &ticket, kTonerSaverKeyword, &panel->tonerSaver);
    PPDGetTicketValueForChoiceOrDefault(panel->ppd, &ticket, kQualityKeyword, &panel->imageQuality);
    // The invert flags are read before the controls are shown, so an open panel shows the
    // ticket's negative and mirror choices rather than those of the last read.
    InvertImageSync(&panel->invertControls, &panel->invert, true, ticket);
    RestoreUIValuesFromData(panel);
  }
  // Both directions leave the quality in the ticket, where the printing manager reads it.
  ticket.setValue(kImageResolutionKey, plist::Value(panel->imageQuality), kImageResolutionClient);
  PPDSetCurrentChoiceForTicketValue(&ticket, kQualityKeyword, panel->imageQuality);
  return noErr;
}

OSStatus ImageOptionsGetSummaryText(print::PMPDEContext, plist::Array*, plist::Array*) {
  return noErr;
}

OSStatus ImageOptionsOpen(print::PMPDEContext context) {
  ImageOptionsContext* panel = AsImageOptions(context);
  if (!panel || panel->opened) return kPMInvalidPDEContext;
  panel->opened = 1;

  Control* pane = panel->userPane;
  std::unique_ptr<toolkit::Window> layout;
  if (OSStatus status = LoadPanelLayout(panel->bundle, "ImageOptionsPanel", "ImageOptionsPanel",
                                        kImageOptionsSignature, kGroupIDs, pane, &layout,
                                        "ImageOptionsOpen");
      status != noErr)
    return status;
  auto find = [pane](std::int32_t id) {
    return pane ? pane->findByID({kImageOptionsSignature, id}) : nullptr;
  };

  panel->imageQualityLabel = find(kImageQualityLabelID);
  panel->imageQualityPopup = find(kImageQualityPopupID);
  panel->imageQualityPicture = find(kImageQualityPictureID);
  SetLocalizedStaticText(panel->bundle, "Image Quality:", panel->imageQualityLabel);
  PPDPopulatePopupWithChoices(panel->imageQualityPopup, panel->ppd, kQualityKeyword, false);

  panel->tonerSaverLabel = find(kTonerSaverLabelID);
  panel->tonerSaverCheckBox = find(kTonerSaverCheckBoxID);
  panel->tonerSaverPicture = find(kTonerSaverPictureID);
  SetLocalizedStaticText(panel->bundle, "Toner Saver:", panel->tonerSaverLabel);
  SetLocalizedControlTitle(panel->bundle, "Conserve Dry Ink", panel->tonerSaverCheckBox);

  InvertImageOpen(panel->bundle, layout.get(), pane, &panel->invertControls, &panel->invert);
  panel->invertLabel = find(kInvertLabelID);
  panel->negativeCheckBox = find(kNegativeCheckBoxID);
  panel->mirrorCheckBox = find(kMirrorCheckBoxID);
  panel->invertPicture = find(kInvertPictureID);
  SetLocalizedStaticText(panel->bundle, "Invert Image Label", panel->invertLabel);
  SetLocalizedControlTitle(panel->bundle, "Negative Image Title", panel->negativeCheckBox);
  SetLocalizedControlTitle(panel->bundle, "Mirror Image Title", panel->mirrorCheckBox);

  for (Control* picture : {panel->imageQualityPicture, panel->tonerSaverPicture, panel->invertPicture})
    if (picture) picture->installHandler(kDrawEvents, panel->drawHandler, panel);

  for (Control* control : {panel->imageQualityLabel, panel->tonerSaverLabel, panel->tonerSaverCheckBox})
    if (control) SetControlBestRect(control, kLabelAlignment, nullptr, nullptr);
  if (panel->invertLabel)
    SetControlBestRect(panel->invertLabel, kInvertLabelAlignment, nullptr, nullptr);
  for (Control* box : {panel->negativeCheckBox, panel->mirrorCheckBox})
    if (box) SetControlBestRect(box, kInvertCheckBoxAlignment, nullptr, nullptr);

  if (pane) pane->installHandler(kPanelEvents, panel->panelHandler, panel);
  RestoreUIValuesFromData(panel);
  return noErr;
}

OSStatus ImageOptionsClose(print::PMPDEContext) { return noErr; }

OSStatus ImageOptionsTerminate(print::PMPDEContext context, OSStatus) {
  ImageOptionsContext* panel = AsImageOptions(context);
  if (!panel) return kPMInvalidPDEContext;
  InvertImageTerminate(&panel->invertControls, &panel->invert);
  delete panel;
  return noErr;
}

void SaveUIValuesToData(ImageOptionsContext* context) {
  if (!context) return;
  if (context->imageQualityPopup)
    context->imageQuality = GetPopupButtonTicketValue(context->imageQualityPopup);
  if (context->tonerSaverCheckBox)
    context->tonerSaver = context->tonerSaverCheckBox->value() != 0 ? kTonerSaverOn : 0;
  if (context->mirrorCheckBox) context->invert.mirror = context->mirrorCheckBox->value() != 0;
  if (context->negativeCheckBox)
    context->invert.negative = context->negativeCheckBox->value() != 0;
}

void RestoreUIValuesFromData(ImageOptionsContext* context) {
  if (!context || !context->opened) return;
  SetPopupButtonToTicketValue(context->imageQualityPopup, context->imageQuality);
  Redraw(context->imageQualityPicture);
  if (Control* box = context->tonerSaverCheckBox) {
    const bool restricted = context->restriction == kTonerSaverRestricted;
    box->setEnabled(!restricted);
    SetCheckBox(box, !restricted && context->tonerSaver == kTonerSaverOn);
  }
  Redraw(context->tonerSaverPicture);
  SetCheckBox(context->mirrorCheckBox, context->invert.mirror);
  SetCheckBox(context->negativeCheckBox, context->invert.negative);
  Redraw(context->invertPicture);
}

void SyncTonerSaverToUI(ImageOptionsContext* context, const print::Ticket& ticket) {
  if (!context) return;
  PPDGetTicketValueForChoiceOrDefault(context->ppd, &ticket, kTonerSaverKeyword, &context->tonerSaver);
  RestoreUIValuesFromData(context);
}

void SyncTonerSaverToTicket(ImageOptionsContext* context, print::Ticket& ticket) {
  if (!context) return;
  if (context->tonerSaverCheckBox)
    context->tonerSaver = context->tonerSaverCheckBox->value() != 0 ? kTonerSaverOn : 0;
  // A cleared box is 0, which names no choice: the ticket keeps what it had.
  PPDSetCurrentChoiceForTicketValue(&ticket, kTonerSaverKeyword, context->tonerSaver);
}

}  // namespace varno::panels

extern "C" varno::OSStatus GetImageOptionsPanelInterface(varno::host::PanelInterfaceHolder** out) {
  using namespace varno::panels;
  return varno::host::MakePanelInterfaceHolder(
      {.Prologue = ImageOptionsPrologue, .Initialize = ImageOptionsInitialize, .Sync = ImageOptionsSync,
       .GetSummaryText = ImageOptionsGetSummaryText, .Open = ImageOptionsOpen, .Close = ImageOptionsClose,
       .Terminate = ImageOptionsTerminate},
      out);
}
