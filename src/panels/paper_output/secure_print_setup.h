// SPDX-License-Identifier: Apache-2.0
// The secure print set-up of the Paper/Output panel: the numeric passcode that holds a
// job at the printer until the person types it again there.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/bundle/bundle.h"
#include "platform/status.h"
#include "platform/toolkit/event_target.h"
#include "platform/toolkit/types.h"
#include "platform/toolkit/window.h"
#include "ui/panel_ui.h"

namespace varno::panels {

// Controls of the window "SecurePrint" of the interface file "SecurePrint".
inline constexpr toolkit::ControlID kSecurePasscodeLabelID{ui::kPanelUICreator, 20000};
inline constexpr toolkit::ControlID kSecurePasscodeFieldID{ui::kPanelUICreator, 20001};
inline constexpr toolkit::ControlID kSecurePasscodeNoteID{ui::kPanelUICreator, 20002};
inline constexpr toolkit::ControlID kSecureConfirmLabelID{ui::kPanelUICreator, 20003};
inline constexpr toolkit::ControlID kSecureConfirmFieldID{ui::kPanelUICreator, 20004};
inline constexpr toolkit::ControlID kSecureConfirmNoteID{ui::kPanelUICreator, 20005};
inline constexpr toolkit::ControlID kSecureInstructionsID{ui::kPanelUICreator, 20006};
inline constexpr toolkit::ControlID kSecureIconID{ui::kPanelUICreator, 20007};
inline constexpr toolkit::ControlID kSecureOKButtonID{ui::kPanelUICreator, 1};
inline constexpr toolkit::ControlID kSecureCancelButtonID{ui::kPanelUICreator, 2};

inline constexpr toolkit::MenuCommand kSecureHelpCommand = MakeOSType("Vhlp");
inline constexpr const char* kSecureHelpPage = "How_to/m_ht_use_Secure_Print.htm";
inline constexpr const char* kSecurePrintPicture = "JobType_SecurePrint.gif";

// A passcode is 1 to 12 decimal digits; one the dialog makes up has four.
inline constexpr std::int32_t kMinSecurePasscodeLength = 1;
inline constexpr std::int32_t kMaxSecurePasscodeLength = 12;

// What the dialog works on while it runs.
struct SecurePrintSetupDialog {
  bundle::BundleRef bundle;
  toolkit::Window* window = nullptr;
  std::int32_t result = 2;  // 1 accepted, 2 cancelled
  toolkit::Control* passcodeField = nullptr;
  toolkit::Control* confirmField = nullptr;
  toolkit::Control* okButton = nullptr;
  toolkit::Control* icon = nullptr;
  std::array<toolkit::EventHandlerRef, 2> handlers{};  // the window's, the passcode field's
};

// Runs the window "SecurePrint" on `*passcode`: both fields show a passcode there is.
// OK accepts two equal fields (case-insensitively), or makes up a four-digit passcode for
// two empty ones and tells the person; fields that differ are refused with an alert and
// the dialog stays. Accepting replaces `*passcode` with the passcode field's text; Cancel
// changes nothing. Returns paramErr for a null argument, the status of loading the window
// (nothing changes then), else noErr.
OSStatus RunModalSecurePrintSetup(const bundle::BundleRef& bundle,
                                  std::optional<std::string>* passcode);

// Fills the dialog's controls from `passcode`, limits the fields, puts the focus into the
// passcode field and installs the handlers. errUnknownControl when the window lacks a field.
OSStatus InitializeSecurePrintSetup(SecurePrintSetupDialog* dialog,
                                    const std::optional<std::string>& passcode);
// Removes the handlers that InitializeSecurePrintSetup installed.
void FinalizeSecurePrintSetup(SecurePrintSetupDialog* dialog);
// The window's commands ("ok  ", "not!", "Vhlp") and the passcode field's input states
// ('ICso' enables the confirm field, 'ICno' and 'ICfw' disable it); `dialogState` is the
// SecurePrintSetupDialog.
OSStatus SecurePrintEventHandler(toolkit::EventHandlerCallRef call, toolkit::EventRef event,
                                 void* dialogState);

}  // namespace varno::panels
