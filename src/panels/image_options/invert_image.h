// SPDX-License-Identifier: Apache-2.0
// The invert-image component: the negative and mirror flags of a job and their ticket
// entry "com.varno.print.InvertImageOptions", a dictionary {"NegativeImage", "MirrorImage"}
// of 1 or 0. Panels that show the choices keep the flags; the component reads and writes
// the ticket and, where a window offers them, the shared controls ('Vshl', 910..912).
#pragma once

#include <cstdint>

#include "platform/bundle/bundle.h"
#include "platform/plist/value.h"
#include "platform/print/ticket.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/window.h"

namespace varno::panels {

inline constexpr const char* kInvertImageOptionsKey = "com.varno.print.InvertImageOptions";
inline constexpr const char* kInvertImageTicketClient = "V";
inline constexpr OSType kInvertImageSignature = MakeOSType("Vshl");
inline constexpr std::int32_t kInvertImageLabelID = 910;
inline constexpr std::int32_t kInvertImageNegativeID = 911;
inline constexpr std::int32_t kInvertImageMirrorID = 912;

struct InvertImageControls {
  toolkit::Control* label = nullptr;
  toolkit::Control* negative = nullptr;
  toolkit::Control* mirror = nullptr;
};

struct InvertImageFlags {
  std::uint8_t loaded = 0;
  std::uint8_t negative = 0;
  std::uint8_t mirror = 0;
};

// loaded := 1, negative := 0 (mirror keeps its value), the control references cleared.
void InvertImageInitialize(InvertImageControls* controls, InvertImageFlags* flags);
// Takes the shared controls from `window`, embeds each in `pane` and shows it. Returns the
// status of the last embedding (paramErr when the window has no such control).
OSStatus InvertImageOpen(const bundle::BundleRef& bundle, toolkit::Window* window,
                         toolkit::Control* pane, InvertImageControls* controls,
                         InvertImageFlags* flags);
// Writing (direction false): a present negative or mirror control sets its flag (the
// control's value is not read), then the ticket entry is written from the flags. Reading:
// the flags come from the ticket entry (missing entries are 0) and set the controls.
OSStatus InvertImageSync(InvertImageControls* controls, InvertImageFlags* flags,
                         bool syncDirection, print::Ticket& ticket);
// The entry's dictionary into the flags (loaded := 1) and the flags into a new one.
void InvertImageSetOptionsFromTicket(InvertImageFlags* flags, const plist::Dictionary& options);
plist::Dictionary InvertImageCreateTicketFromOptions(const InvertImageFlags& flags);
// Disposes of the controls the component took.
void InvertImageTerminate(InvertImageControls* controls, InvertImageFlags* flags);

}  // namespace varno::panels
