// SPDX-License-Identifier: Apache-2.0
// History combo boxes: an editable combo box whose list holds fixed choices from a setting
// map followed by what the user confirmed in earlier dialogs. The box restricts typing
// (numbers within a range, or text of a length and character set), converts between the
// shown text and a value, brings numbers back into their range when the user leaves the
// field, and on confirmation remembers the typed entry in the user's input history.
//
// The history is the preference file "com.varno.print.inputhistory.plist": history key ->
// array of strings, most recent first. Every dialog of every process of the user shares
// it, so a save rereads the file and changes only its own key (UpdateUserPreferences).
//
// Main thread only, as the toolkit is.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "platform/bundle/bundle.h"
#include "platform/plist/value.h"
#include "platform/toolkit/character_set.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/event_target.h"
#include "vocabulary/setting_maps.h"

namespace varno::ui {

inline constexpr const char* kInputHistoryFileName = "com.varno.print.inputhistory.plist";

// The box keeps its state as the control property ('VCMB', 'ctxt').
inline constexpr OSType kVComboBoxCreator = MakeOSType("VCMB");
inline constexpr OSType kVComboBoxContextTag = MakeOSType("ctxt");

// What may be typed into the box.
inline constexpr std::int32_t kVComboBoxNumeric = 1;  // decimal digits, a number in a range
inline constexpr std::int32_t kVComboBoxText = 2;     // text of a length and character set

// VComboBoxCopyValue: the box holds no value (empty, or no number in a numeric box).
inline constexpr OSStatus kVComboBoxNoValue = 1000;

// What the caller asks of a box; the box keeps its own copy.
struct VComboBoxOptions {
  std::int32_t kind = 0;  // kVComboBoxNumeric, kVComboBoxText, anything else: no typing rules
  bundle::BundleRef bundle;  // localizes the map's keys
  // Rows that become the fixed items, up to the first row whose value is 0; none when the
  // first row's value is 0.
  const vocabulary::SettingMap* map = nullptr;
  std::optional<std::string> historyKey;  // nullopt: no history
  std::int32_t historyLimit = 0;          // the most entries kept; 0: no limit
  std::int32_t minLength = 0;             // text length in characters; below 1: none
  std::int32_t maxLength = 0;             // text only; a numeric box computes its own
  // Text only: the characters that may be typed, as a string of them or as a set.
  std::variant<std::monostate, std::string, toolkit::CharacterSet> allowedCharacters;
  // Numeric only: the range. A maximum below 1 means none: up to 9 digits, never lowered.
  std::int32_t minValue = 0;
  std::int32_t maxValue = 0;
};

// Makes `combo` a history combo box: appends the fixed items (titles from the bundle's
// "Localizable" table, "STRING NOT FOUND" when missing), limits typing (see
// LimitInputLengthAndCharacters), then appends the valid entries stored under the history
// key, stopping at the first append that fails. A valid entry of a numeric box is a whole
// number within the range; of a text box, a text within the length limits made of the
// allowed characters. A box set up before is finalized (not saved) first. Returns the
// status of the last append: noErr when nothing was appended or an argument is null,
// memFullErr when the list is full.
OSStatus VComboBoxInitializeWithMapAndHistory(toolkit::Control* combo,
                                              const VComboBoxOptions* options);

// Shows `value`: a string as it is; a number as the title of the fixed item with that value,
// else in the locale's decimal form; another kind changes nothing. paramErr for a null
// argument or a combo box that was never set up.
OSStatus VComboBoxSetValue(toolkit::Control* combo, const plist::Value* value);

// First brings a numeric box's number into its range; then `*value` := the number of the
// fixed item whose title is shown, or for a numeric box the number shown, or else the text.
// kVComboBoxNoValue (and `*value` untouched) for an empty box or a numeric box showing no
// number; paramErr for a null argument or a combo box that was never set up.
OSStatus VComboBoxCopyValue(toolkit::Control* combo, std::optional<plist::Value>* value);

// Ends the box's life as a history combo box. With `save` and a history key, a shown text
// that is not empty and not already an item of the list goes to the front of the key's
// history (the file reread first), which is cut to the history limit and written back.
// paramErr for a null or never set-up box; kPMIOError when the history could not be
// written. A box disposed of without this call lets go of its state all the same.
OSStatus VComboBoxFinalize(toolkit::Control* combo, bool save);

// Installed on the box for kEventControlSetFocusPart; `data` is the box's state. When the
// user leaves a numeric box, a number outside the range is replaced by the nearest end of
// it (fixed items' titles are left alone). Returns eventNotHandledErr always.
OSStatus VComboBoxEventHandler(toolkit::EventHandlerCallRef call, toolkit::EventRef event,
                               void* data);

}  // namespace varno::ui
