// SPDX-License-Identifier: Apache-2.0
#include "panels/image_options/invert_image.h"

#include <optional>

#include "platform/print/ticket_access.h"

namespace varno::panels {

using print::CFIndex;

namespace {

constexpr const char* kNegativeKey = "NegativeImage";
constexpr const char* kMirrorKey = "MirrorImage";

std::uint8_t FlagFrom(const plist::Dictionary& options, const char* key) {
  std::optional<CFIndex> value = options.getNumber<CFIndex>(key);
  return value && *value != 0 ? 1 : 0;
}

}  // namespace

void InvertImageInitialize(InvertImageControls* controls, InvertImageFlags* flags) {
  if (flags) {
    flags->loaded = 1;
    flags->negative = 0;
  }
  if (controls) *controls = {};
}

OSStatus InvertImageOpen(const bundle::BundleRef&, toolkit::Window* window, toolkit::Control* pane,
                         InvertImageControls* controls, InvertImageFlags*) {
  if (!controls) return paramErr;
  OSStatus status = paramErr;
  const std::pair<std::int32_t, toolkit::Control**> parts[] = {
      {kInvertImageLabelID, &controls->label},
      {kInvertImageNegativeID, &controls->negative},
      {kInvertImageMirrorID, &controls->mirror}};
  for (const auto& [id, slot] : parts) {
    *slot = window ? window->findByID({kInvertImageSignature, id}) : nullptr;
    status = toolkit::EmbedAndShowControl(*slot, pane);
  }
  return status;
}

OSStatus InvertImageSync(InvertImageControls* controls, InvertImageFlags* flags,
                         bool syncDirection, print::Ticket& ticket) {
  if (!controls || !flags) return paramErr;
  if (!syncDirection) {
    // Only the presence of the shared controls counts here, as it always has: a window
    // that offers them means the user is shown both effects.
    if (controls->negative) flags->negative = 1;
    if (controls->mirror) flags->mirror = 1;
    return ticket.setValue(kInvertImageOptionsKey,
                           plist::Value(InvertImageCreateTicketFromOptions(*flags)),
                           kInvertImageTicketClient);
  }
  plist::Dictionary options;
  const OSStatus status = ticket.getDictionary(kInvertImageOptionsKey, options);
  InvertImageSetOptionsFromTicket(flags, status == noErr ? options : plist::Dictionary());
  if (controls->negative) controls->negative->setValue(flags->negative);
  if (controls->mirror) controls->mirror->setValue(flags->mirror);
  return noErr;
}

void InvertImageSetOptionsFromTicket(InvertImageFlags* flags, const plist::Dictionary& options) {
  if (!flags) return;
  flags->negative = FlagFrom(options, kNegativeKey);
  flags->mirror = FlagFrom(options, kMirrorKey);
  flags->loaded = 1;
}

plist::Dictionary InvertImageCreateTicketFromOptions(const InvertImageFlags& flags) {
  plist::Dictionary options;
  options.set(kNegativeKey, plist::Value(static_cast<CFIndex>(flags.negative ? 1 : 0)));
  options.set(kMirrorKey, plist::Value(static_cast<CFIndex>(flags.mirror ? 1 : 0)));
  return options;
}

void InvertImageTerminate(InvertImageControls* controls, InvertImageFlags*) {
  if (!controls) return;
  for (toolkit::Control* control : {controls->label, controls->negative, controls->mirror})
    if (control) control->dispose();
  *controls = {};
}

}  // namespace varno::panels
