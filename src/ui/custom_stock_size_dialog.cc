// SPDX-License-Identifier: Apache-2.0
#include "ui/custom_stock_size_dialog.h"

#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "platform/toolkit/alerts.h"
#include "platform/toolkit/character_set.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/interface_file.h"
#include "platform/toolkit/window.h"
#include "ui/panel_ui.h"
#include "vocabulary/setting_maps.h"

namespace varno::ui {

namespace {

using toolkit::Control;

constexpr toolkit::ControlID kWidthField = kCustomStockWidthFieldID;
constexpr toolkit::ControlID kLengthField = kCustomStockLengthFieldID;
constexpr toolkit::ControlID kUnitPopup = kCustomStockUnitPopupID;
constexpr toolkit::ControlID kLimitsText = kCustomStockLimitsTextID;
// Points per unit of the unit pop-up's items: points, millimetres, inches.
constexpr double kPointsPerUnit[] = {1.0, 72.0 / 25.4, 72.0};

struct DialogState {
  toolkit::Window* window;
  bundle::BundleRef bundle;
  float limits[4];  // min width, min length, max width, max length, in points
  std::optional<std::int32_t> width, length;
};

double PointsPerUnit(toolkit::Window& window) {
  const Control* unit = window.findByID(kUnitPopup);
  const std::int32_t item = unit ? unit->value() : 1;
  return kPointsPerUnit[item >= 1 && item <= 3 ? item - 1 : 0];
}

// The field's value in points, or nullopt when it is no positive number.
std::optional<double> PointsIn(const Control* field, double pointsPerUnit) {
  if (!field) return std::nullopt;
  char* end = nullptr;
  const std::string text = field->text();
  const double value = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0' || !(value > 0)) return std::nullopt;
  return value * pointsPerUnit;
}

std::string Shown(double points, double pointsPerUnit) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", std::round(points / pointsPerUnit * 100) / 100);
  return text;
}

void ShowLimits(DialogState& state) {
  const double unit = PointsPerUnit(*state.window);
  const std::string suffix = " " + state.bundle->localizedString(
      unit == 1.0 ? "UnitPoints" : unit == 72.0 ? "UnitInches" : "UnitMillimeters", "Localizable", "");
  SetLocalizedStaticText(state.bundle, "CustomStockSizeLimits", state.window->findByID(kLimitsText),
                         Shown(state.limits[0], unit).c_str(), (Shown(state.limits[2], unit) + suffix).c_str(),
                         Shown(state.limits[1], unit).c_str(), (Shown(state.limits[3], unit) + suffix).c_str());
}

OSStatus CustomStockSizeEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event, void* dialogState) {
  auto* state = static_cast<DialogState*>(dialogState);
  const std::optional<toolkit::HICommand> command = event ? event->command() : std::nullopt;
  if (!state || !command) return eventNotHandledErr;
  if (command->commandID == toolkit::kHICommandCancel) {
    state->window->quitModalLoop();
    return noErr;
  }
  if (command->commandID != toolkit::kHICommandOK) {
    // A new unit: the limits are said in it.
    if (command->control && command->control->id() == kUnitPopup) ShowLimits(*state);
    return eventNotHandledErr;
  }
  const double unit = PointsPerUnit(*state->window);
  const std::optional<double> width = PointsIn(state->window->findByID(kWidthField), unit);
  const std::optional<double> length = PointsIn(state->window->findByID(kLengthField), unit);
  const auto inside = [](std::optional<double> v, float low, float high) { return v && *v >= low && *v <= high; };
  if (!inside(width, state->limits[0], state->limits[2]) || !inside(length, state->limits[1], state->limits[3])) {
    toolkit::SysBeep(10);
    ShowLimits(*state);
    toolkit::CFUserNotificationDisplayNotice(
        0, toolkit::kCFUserNotificationCautionAlertLevel,
        state->bundle->localizedString("CustomStockSizeOutside", "Localizable", "STRING NOT FOUND"),
        state->window->findByID(kLimitsText)->text());
    return noErr;  // the dialog stays open
  }
  state->width = static_cast<std::int32_t>(std::lround(*width));
  state->length = static_cast<std::int32_t>(std::lround(*length));
  state->window->quitModalLoop();
  return noErr;
}

}  // namespace

OSStatus RunModalCustomStockSizeDialog(const bundle::BundleRef& bundle, std::int32_t* width,
                                       std::int32_t* length, bool* confirmed) {
  if (!width || !length || !confirmed || !bundle) return paramErr;
  *confirmed = false;
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::unique_ptr<toolkit::Window> window;
  std::string error;
  OSStatus status = toolkit::InterfaceFile::open(bundle, "Utilities", &file, &error);
  if (status == noErr) status = file->createWindow("CustomStockSize", &window, &error);
  if (status != noErr) {
    std::fprintf(stderr, "RunModalCustomStockSizeDialog() failed (%d): %s\n", status, error.c_str());
    return status;
  }
  DialogState state{window.get(), bundle, {}, std::nullopt, std::nullopt};
  GetMediaLimits(&state.limits[0], &state.limits[1], &state.limits[2], &state.limits[3]);
  static constexpr toolkit::EventTypeSpec kCommand[] = {{toolkit::kEventClassCommand, toolkit::kEventCommandProcess}};
  window->installHandler(kCommand, CustomStockSizeEventHandler, &state);
  static const toolkit::CharacterSet kDecimal("0123456789.");
  Control* widthField = window->findByID(kWidthField);
  LimitInputLengthAndCharacters(widthField, 1, 8, &kDecimal);
  LimitInputLengthAndCharacters(window->findByID(kLengthField), 1, 8, &kDecimal);
  if (*width != vocabulary::kUnsetValue) widthField->setText(std::to_string(*width));
  if (*length != vocabulary::kUnsetValue) window->findByID(kLengthField)->setText(std::to_string(*length));
  ShowLimits(state);
  window->setVisible(true);
  window->setFocus(widthField);
  window->runModalLoop();
  if (state.width && state.length) {
    *width = *state.width;
    *length = *state.length;
    *confirmed = true;
  }
  return noErr;
}

}  // namespace varno::ui
