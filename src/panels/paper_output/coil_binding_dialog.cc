// SPDX-License-Identifier: Apache-2.0
#include "panels/paper_output/coil_binding_dialog.h"

#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/dialog_host.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/character_set.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/interface_file.h"
#include "platform/toolkit/window.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

namespace {

using toolkit::Control;

// A value of a pop-up: its menu item and the shorter word of the summary line.
struct Named {
  std::int32_t value;
  const char* labelKey;
  const char* summaryKey;
};

constexpr Named kEdges[] = {
    {kCoilLeftEdge, "Coil Left Edge", "Coil Left Edge"},
    {kCoilTopEdge, "Coil Top Edge", "Coil Top Edge"},
    {kCoilRightEdge, "Coil Right Edge", "Coil Right Edge"},
};
constexpr Named kPitches[] = {
    {kCoilPitch4To1, "Coil Pitch 4:1", "Coil Pitch 4:1 Short"},
    {kCoilPitch5mm, "Coil Pitch 5 mm", "Coil Pitch 5 mm Short"},
};

constexpr std::int32_t kMaxMarginCharacters = 4;  // "6.50"

// One run of the dialog.
struct CoilDialog {
  bundle::BundleRef bundle;
  toolkit::Window* window = nullptr;
  Control* edgePopup = nullptr;
  Control* pitchPopup = nullptr;
  Control* marginField = nullptr;
  Control* picture = nullptr;
  std::optional<CoilBinding> accepted = std::nullopt;
};

std::string Localized(const bundle::BundleRef& bundle, const char* key) {
  return bundle->localizedString(key, "Localizable", "STRING NOT FOUND");
}

// `format` with its two "%s" filled in; the table's text decides their order.
std::string Format(const std::string& format, const std::string& first, const std::string& second) {
  const int size = std::snprintf(nullptr, 0, format.c_str(), first.c_str(), second.c_str());
  if (size < 0) return {};
  std::string text(static_cast<std::size_t>(size) + 1, '\0');
  std::snprintf(text.data(), text.size(), format.c_str(), first.c_str(), second.c_str());
  text.resize(static_cast<std::size_t>(size));
  return text;
}

template <std::size_t N>
const Named* Find(const Named (&table)[N], std::int32_t value) {
  for (const Named& entry : table)
    if (entry.value == value) return &entry;
  return nullptr;
}

// Millimetres with one decimal, as the person's locale writes them.
std::string ShownMargin(std::int32_t tenths) {
  return ui::CreateLocalizedCFStringFromNumberWithDecimals(tenths / 10.0, 1);
}

// The margin typed, in tenths of a millimetre: digits with an optional decimal point or
// comma and decimals after it that end in tenths ("4", "4.5", "4,50"); nullopt else.
std::optional<std::int32_t> MarginIn(std::string_view text) {
  std::int32_t whole = 0, tenths = 0;
  std::size_t i = 0;
  bool digits = false;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i, digits = true) {
    if (whole > 1000) return std::nullopt;
    whole = whole * 10 + (text[i] - '0');
  }
  if (i < text.size() && (text[i] == '.' || text[i] == ',')) {
    for (std::size_t decimal = 0; ++i < text.size(); ++decimal, digits = true) {
      if (text[i] < '0' || text[i] > '9') return std::nullopt;
      if (decimal == 0)
        tenths = text[i] - '0';
      else if (text[i] != '0')
        return std::nullopt;  // finer than the punch is set
    }
  }
  if (!digits || i != text.size()) return std::nullopt;
  return whole * 10 + tenths;
}

void FillPopup(const bundle::BundleRef& bundle, Control& popup, std::span<const Named> table,
               std::int32_t value) {
  toolkit::Menu& menu = *popup.menu();
  for (const Named& entry : table) {
    const toolkit::MenuItemIndex item = menu.appendItem(Localized(bundle, entry.labelKey));
    menu.setItemRefCon(item,
                       static_cast<toolkit::URefCon>(static_cast<std::intptr_t>(entry.value)));
  }
  popup.setMaximum(static_cast<std::int32_t>(menu.count()));
  popup.setValue(1);
  vocabulary::SetPopupButtonToTicketValue(&popup, value);
}

void ShowPicture(CoilDialog& dialog) {
  if (dialog.picture)
    ui::DrawImage(dialog.bundle,
                  CoilBindingPicture(vocabulary::GetPopupButtonTicketValue(dialog.edgePopup)),
                  dialog.picture);
}

// OK's check of the margin; says what is wrong and keeps the dialog open when it fails.
std::optional<std::int32_t> AcceptableMargin(CoilDialog& dialog) {
  const std::optional<std::int32_t> margin = MarginIn(dialog.marginField->text());
  if (margin && *margin >= kMinCoilMargin && *margin <= kMaxCoilMargin) return margin;
  toolkit::SysBeep(10);
  toolkit::CFUserNotificationDisplayNotice(
      0, toolkit::kCFUserNotificationCautionAlertLevel,
      Localized(dialog.bundle, "Coil Margin Outside"),
      Format(Localized(dialog.bundle, "Coil Margin Outside Text"), ShownMargin(kMinCoilMargin),
             ShownMargin(kMaxCoilMargin)));
  dialog.window->setFocus(dialog.marginField);
  return std::nullopt;
}

OSStatus CoilBindingEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                                 void* dialogState) {
  auto* dialog = static_cast<CoilDialog*>(dialogState);
  const std::optional<toolkit::HICommand> command = event ? event->command() : std::nullopt;
  if (!dialog || !command) return eventNotHandledErr;
  switch (command->commandID) {
    case kCoilEdgeCommand: ShowPicture(*dialog); return noErr;
    case toolkit::kHICommandOK:
      if (std::optional<std::int32_t> margin = AcceptableMargin(*dialog)) {
        dialog->accepted =
            CoilBinding{vocabulary::GetPopupButtonTicketValue(dialog->edgePopup),
                        vocabulary::GetPopupButtonTicketValue(dialog->pitchPopup), *margin};
        dialog->window->quitModalLoop();
      }
      return noErr;
    case toolkit::kHICommandCancel: dialog->window->quitModalLoop(); return noErr;
    case kCoilHelpCommand: host::DisplayHelp(dialog->bundle, kCoilHelpPage, nullptr); return noErr;
    default: return eventNotHandledErr;
  }
}

void InitializeCoilDialog(CoilDialog& dialog, const CoilBinding& coil) {
  const bundle::BundleRef& bundle = dialog.bundle;
  toolkit::Window& window = *dialog.window;
  FillPopup(bundle, *dialog.edgePopup, kEdges, coil.edge);
  FillPopup(bundle, *dialog.pitchPopup, kPitches, coil.pitch);
  static const toolkit::CharacterSet kDecimal("0123456789.,");
  ui::LimitInputLengthAndCharacters(dialog.marginField, 0, kMaxMarginCharacters, &kDecimal);
  dialog.marginField->setText(ShownMargin(coil.margin));
  ui::SetLocalizedStaticText(bundle, "Coil Margin Limits", window.findByID(kCoilMarginLimitsID),
                             ShownMargin(kMinCoilMargin).c_str(),
                             ShownMargin(kMaxCoilMargin).c_str());
  ui::SetLocalizedStaticText(bundle, "Coil Binding Note", window.findByID(kCoilNoteID),
                             kMinCoilPaperWeight, kMaxCoilPaperWeight);
  dialog.picture = window.findByID(kCoilPictureID);
  ShowPicture(dialog);
  static constexpr std::array<toolkit::EventTypeSpec, 1> kCommands{
      {{toolkit::kEventClassCommand, toolkit::kEventCommandProcess}}};
  window.installHandler(kCommands, CoilBindingEventHandler, &dialog);
}

}  // namespace

const char* CoilBindingPicture(std::int32_t edge) {
  switch (edge) {
    case kCoilLeftEdge: return "Finishing_CoilBinding_LeftEdge.gif";
    case kCoilTopEdge: return "Finishing_CoilBinding_TopEdge.gif";
    case kCoilRightEdge: return "Finishing_CoilBinding_RightEdge.gif";
    default: return nullptr;
  }
}

bool RunModalCoilBindingDialog(const bundle::BundleRef& bundle, CoilBinding* coil) {
  if (!bundle || !coil) return false;
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::unique_ptr<toolkit::Window> window;
  std::string error;
  OSStatus status = toolkit::InterfaceFile::open(bundle, "Finishing", &file, &error);
  if (status == noErr) status = file->createWindow("Coil", &window, &error);
  CoilDialog dialog{bundle, window.get()};
  if (status == noErr) {
    dialog.edgePopup = window->findByID(kCoilEdgePopupID);
    dialog.pitchPopup = window->findByID(kCoilPitchPopupID);
    dialog.marginField = window->findByID(kCoilMarginFieldID);
    if (!dialog.edgePopup || !dialog.edgePopup->menu() || !dialog.pitchPopup ||
        !dialog.pitchPopup->menu() || !dialog.marginField) {
      status = errUnknownControl;
      error = "the window \"Coil\" lacks its edge or pitch pop-up or its margin field";
    }
  }
  if (status != noErr) {
    std::fprintf(stderr, "RunModalCoilBindingDialog() failed (%d): %s\n", status, error.c_str());
    return false;
  }
  InitializeCoilDialog(dialog, *coil);
  window->setVisible(true);
  window->setFocus(dialog.marginField);
  window->runModalLoop();
  if (!dialog.accepted) return false;
  *coil = *dialog.accepted;
  return true;
}

std::string CoilBindingSummary(const bundle::BundleRef& bundle, const CoilBinding& coil) {
  if (!bundle) return {};
  const Named* edge = Find(kEdges, coil.edge);
  const Named* pitch = Find(kPitches, coil.pitch);
  return Format(Localized(bundle, "Coil Binding Summary"),
                Localized(bundle, edge ? edge->summaryKey : "Unknown"),
                Localized(bundle, pitch ? pitch->summaryKey : "Unknown"));
}

}  // namespace varno::panels
