// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/control_kinds.h"

#include <array>

namespace varno::toolkit {
namespace {

using K = ControlKind;

// In the order of ControlKind.
constexpr std::array<KindTraits, 16> kTraits{{
    // kind             name           embeds focus  edits  menu   item   min max
    {K::Window,      "Window",      true,  false, false, false, false, 0, 0},
    {K::UserPane,    "UserPane",    true,  false, false, false, false, 0, 0},
    {K::Group,       "Group",       true,  false, false, false, false, 0, 0},
    {K::StaticText,  "StaticText",  false, false, false, false, false, 0, 0},
    {K::EditText,    "EditText",    false, true,  true,  false, false, 0, 0},
    {K::PushButton,  "PushButton",  false, false, false, false, false, 0, 0},
    {K::CheckBox,    "CheckBox",    false, false, false, false, false, 0, 1},
    {K::RadioButton, "RadioButton", false, false, false, false, false, 0, 1},
    {K::PopupButton, "PopupButton", false, false, false, true,  true,  1, 0},
    {K::BevelButton, "BevelButton", false, false, false, true,  false, 0, 1},
    {K::ComboBox,    "ComboBox",    false, true,  true,  true,  false, 0, 0},
    {K::SpinControl, "SpinControl", false, false, false, false, false, 0, 100},
    {K::Clock,       "Clock",       false, true,  false, false, false, 0, 0},
    {K::ImageView,   "ImageView",   false, false, false, false, false, 0, 0},
    {K::ListView,    "ListView",    false, true,  false, false, false, 0, 0},
    {K::TabControl,  "TabControl",  true,  false, false, true,  true,  1, 0},
}};

constexpr bool InKindOrder() {
  for (std::size_t i = 0; i < kTraits.size(); ++i) {
    if (static_cast<std::size_t>(kTraits[i].kind) != i) return false;
  }
  return true;
}
static_assert(InKindOrder(), "Traits() indexes the table by kind");

}  // namespace

const KindTraits& Traits(ControlKind kind) { return kTraits[static_cast<std::size_t>(kind)]; }

std::optional<ControlKind> KindNamed(std::string_view name) {
  for (const KindTraits& traits : kTraits) {
    if (name == traits.name) return traits.kind;
  }
  return std::nullopt;
}

}  // namespace varno::toolkit
