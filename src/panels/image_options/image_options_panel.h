// SPDX-License-Identifier: Apache-2.0
// The Image Options panel: image quality ("VNOutputMode"), the toner saver ("VNEconomode",
// the "Conserve Dry Ink" check box) and the invert-image choices, each with a picture
// that follows the current choice.
#pragma once

#include <cstdint>
#include <string>

#include <cups/ppd.h>

#include "host/dialog_host.h"
#include "panels/image_options/invert_image.h"
#include "platform/bundle/bundle.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/event_target.h"

namespace varno::panels {

inline constexpr OSType kImageOptionsSignature = MakeOSType("VPDE");
inline constexpr OSType kImageOptionsCreator = MakeOSType("Vshl");
inline constexpr std::int32_t kImageQualityLabelID = 1201;
inline constexpr std::int32_t kImageQualityPopupID = 1202;
inline constexpr std::int32_t kImageQualityPictureID = 1203;
inline constexpr std::int32_t kTonerSaverLabelID = 1301;
inline constexpr std::int32_t kTonerSaverCheckBoxID = 1302;
inline constexpr std::int32_t kTonerSaverPictureID = 1303;
inline constexpr std::int32_t kInvertLabelID = 2101;
inline constexpr std::int32_t kNegativeCheckBoxID = 2102;
inline constexpr std::int32_t kMirrorCheckBoxID = 2103;
inline constexpr std::int32_t kInvertPictureID = 2104;
inline constexpr const char* kImageResolutionKey = "com.varno.print.ImageResolution";
// The restriction under which the toner saver may not be chosen.
inline constexpr std::int32_t kTonerSaverRestricted = 3;

struct ImageOptionsContext {
  std::uint32_t opened = 0;
  bundle::BundleRef bundle;
  std::string title;
  toolkit::Control* userPane = nullptr;
  ppd_file_t* ppd = nullptr;  // the shared PPD, not owned
  std::int32_t restriction = 0;
  std::int32_t imageQuality = 0;  // JCLPrintQualityMap value
  toolkit::Control* imageQualityLabel = nullptr;
  toolkit::Control* imageQualityPopup = nullptr;
  toolkit::Control* imageQualityPicture = nullptr;
  toolkit::Control* tonerSaverLabel = nullptr;
  toolkit::Control* tonerSaverCheckBox = nullptr;
  toolkit::Control* tonerSaverPicture = nullptr;
  toolkit::Control* invertLabel = nullptr;
  toolkit::Control* negativeCheckBox = nullptr;
  toolkit::Control* mirrorCheckBox = nullptr;
  toolkit::Control* invertPicture = nullptr;
  std::int32_t tonerSaver = 0;  // DraftModeMap value: 1 "Draft"; 0 for a cleared box
  InvertImageControls invertControls;
  InvertImageFlags invert;
  toolkit::EventHandlerUPP drawHandler = nullptr;
  toolkit::EventHandlerUPP panelHandler = nullptr;
};

OSStatus ImageOptionsPrologue(print::PMPDEContext* context, OSType* creator, std::string* kind,
                              std::string* title, std::uint32_t* maxH, std::uint32_t* maxV);
OSStatus ImageOptionsInitialize(print::PMPDEContext context, print::PMPDEFlags* flags,
                                print::PMPDERef ref, print::ControlRef userPane,
                                print::Session* session);
OSStatus ImageOptionsSync(print::PMPDEContext context, print::Session* session,
                          bool syncDirection);
OSStatus ImageOptionsGetSummaryText(print::PMPDEContext context, plist::Array* titles,
                                    plist::Array* values);
OSStatus ImageOptionsOpen(print::PMPDEContext context);
OSStatus ImageOptionsClose(print::PMPDEContext context);
OSStatus ImageOptionsTerminate(print::PMPDEContext context, OSStatus status);

// Controls into the context's fields, and the fields back into the controls (the latter
// only once the panel is open).
void SaveUIValuesToData(ImageOptionsContext* context);
void RestoreUIValuesFromData(ImageOptionsContext* context);
// The toner-saver half of Sync on its own: the ticket's (or PPD default) "VNEconomode"
// into the check box, and the check box's choice into the ticket.
void SyncTonerSaverToUI(ImageOptionsContext* context, const print::Ticket& ticket);
void SyncTonerSaverToTicket(ImageOptionsContext* context, print::Ticket& ticket);

// The picture each of the three picture controls shows for the context's state, or null
// for none.
const char* ImageQualityPictureName(std::int32_t imageQuality);
const char* TonerSaverPictureName(std::int32_t tonerSaver);
const char* InvertPictureName(const InvertImageFlags& flags);

// Control hits on the pane: a changed choice is saved and shown again so the pictures
// follow it. Always passes the event on.
OSStatus ImageOptionsPanelEventHandler(toolkit::EventHandlerCallRef call, toolkit::EventRef event,
                                       void* context);
// Draw events of the three pictures: chooses the picture for the current state.
OSStatus ImageOptionsDrawEventHandler(toolkit::EventHandlerCallRef call, toolkit::EventRef event,
                                      void* context);

}  // namespace varno::panels

extern "C" varno::OSStatus GetImageOptionsPanelInterface(varno::host::PanelInterfaceHolder** out);
