// SPDX-License-Identifier: Apache-2.0
// User-interface pieces every panel shares: text fields that limit what can be typed and
// announce whether their content is long enough, the modal dialog that asks for one
// custom value, localized titles with format arguments, the printer's custom paper size
// limits and a few view-geometry helpers.
//
// Main thread only, as the toolkit is.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <initializer_list>
#include <string>
#include <string_view>
#include <string_view>

#include "platform/bundle/bundle.h"
#include "platform/toolkit/character_set.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/event_target.h"
#include "platform/toolkit/menu.h"
#include "platform/toolkit/window.h"

namespace varno::ui {

// The creator of the limit properties and the class of the state events of a field.
inline constexpr OSType kPanelUICreator = MakeOSType("VPDE");
inline constexpr OSType kLimitMaxLengthTag = MakeOSType("Vlen");  // int32 maximum length
inline constexpr OSType kLimitMinLengthTag = MakeOSType("Vmln");  // int32 minimum length
inline constexpr OSType kLimitCharactersTag = MakeOSType("Vchr");  // the allowed characters
// The state a limited field announces to itself, as the kind of an event of class 'VPDE'
// with the field as direct object.
inline constexpr std::uint32_t kInputStateLongEnough = MakeOSType("ICso");
inline constexpr std::uint32_t kInputStateTooShort = MakeOSType("ICfw");
inline constexpr std::uint32_t kInputStateEmpty = MakeOSType("ICno");

// The custom value dialog's edit field and its buttons' commands.
inline constexpr toolkit::ControlID kCustomValueFieldID{kPanelUICreator, 123456};
inline constexpr toolkit::MenuCommand kCustomValueHelpCommand = MakeOSType("Vhlp");
inline constexpr const char* kCustomValueHelpPage = "image_options/db_custom_color_d.htm";

// Limits a text field: a length below 1 removes its property ('Vmln' minimum, 'Vlen'
// maximum), a null set removes the allowed characters, a set is copied into the field's
// 'Vchr' property, which the field keeps until it goes. Installs LimitInputEventHandler
// on the field (once per field) for typed text, disposal and combo-box list choices.
// Nothing happens for a null field.
void LimitInputLengthAndCharacters(toolkit::Control* field, std::int32_t minLength,
                                   std::int32_t maxLength,
                                   const toolkit::CharacterSet* allowedCharacters);
// `field` is the limited control. Drops typed text that would exceed the maximum or holds
// a character outside the allowed set (with a beep, returning 0); lets the rest edit the
// field and then announces 'ICno', 'ICfw' or 'ICso'. Disposal drops 'Vchr'; a combo-box
// list choice announces 'ICso'; both, and anything else, return eventNotHandledErr.
OSStatus LimitInputEventHandler(toolkit::EventHandlerCallRef call, toolkit::EventRef event,
                                void* field);

// What the custom value dialog's handler works on while it runs.
struct CustomValueDialogState {
  toolkit::Window* window = nullptr;
  bundle::BundleRef bundle;
  std::uint16_t result = 2;  // 1 OK, 2 Cancel
};
// Shows the window "CustomValue" of the interface file "Utilities" of `bundle` with the
// field limited to minLength..maxLength characters and preset to `*text` when it holds
// one, and runs it modally. `*result` := 1 for OK, which also puts the field's text into
// `*text`, else 2 and `*text` := nullopt. Returns the status of opening the file or the
// window (nothing else is touched then), paramErr for null outputs, else noErr.
OSStatus RunModalCustomValueDialog(const bundle::BundleRef& bundle, std::int32_t minLength,
                                   std::int32_t maxLength, std::optional<std::string>* text,
                                   std::uint16_t* result);
// Command handler of that dialog; `dialogState` is a CustomValueDialogState. "ok  " and
// "not!" set the result and end the loop (0); "Vhlp" opens the help page in the bundle's
// help book; any command returns the status of reading it from the event.
OSStatus CustomValueEventHandler(toolkit::EventHandlerCallRef call, toolkit::EventRef event,
                                 void* dialogState);

// Localized texts: `key` is looked up in the bundle's "Localizable" table ("STRING NOT
// FOUND" when missing) and the text is used as a printf format for the arguments that
// follow, so the table's conversions must match what the caller passes ("%%" for a
// percent sign). Nothing happens for a null bundle, key or target.
void SetLocalizedStaticText(const bundle::BundleRef& bundle, const char* key,
                            toolkit::Control* control, ...);  // then redraws the control
void SetLocalizedControlTitle(const bundle::BundleRef& bundle, const char* key,
                              toolkit::Control* control, ...);
void SetLocalizedWindowTitle(const bundle::BundleRef& bundle, const char* key,
                             toolkit::Window* window, ...);
void SetLocalizedMenuTitle(const bundle::BundleRef& bundle, const char* key, toolkit::Menu* menu,
                           toolkit::MenuItemIndex item, ...);

// A table's text with its conversions filled with `numbers` in order (or as "%n$" names
// them): integer conversions get the number, string conversions its decimal digits, so a
// translation may write either, and a wrong one shows wrong text, never crashes.
std::string FormatNumbers(std::string_view format, std::initializer_list<long long> numbers);

// Opens `page` of the bundle's help book (its Info.plist "CFBundleHelpBookName").
void DisplayHelpPage(const bundle::BundleRef& bundle, const char* page);

// The custom paper size limits of the shared PPD in points; 432, 432, 864, 864 without
// one. Null outputs are skipped.
void GetMediaLimits(float* minWidth, float* minHeight, float* maxWidth, float* maxHeight);

// The number of decimal digits of |n|; 1 for 0.
int CountDigits(std::int64_t n);

// Opens the private bundle `name` of the bundle's PlugIns folder and loads its code.
// `*loaded` := it, or null on any failure.
bool LoadPrivateBundle(const bundle::BundleRef& bundle, std::string_view name,
                       bundle::BundleRef* loaded);

// Moves the view by dx to the right and dy down; nothing for null.
void TranslateView(toolkit::Control* view, std::int32_t dx, std::int32_t dy);
// Moves the view `viewID` of `window` to (0, *offset) in `parent`'s coordinates, adds its
// height to `*offset`, then moves its subviews, in order, into `parent` where they keep
// their place on the page (their bounds shift by the view's new origin). Returns the
// first failing status: errUnknownControl when the window has no such view, paramErr
// for null arguments, or what embedding refused.
OSStatus AppendViewFromWindowAndUnpack(toolkit::Control* parent, toolkit::Window* window,
                                       toolkit::ControlID viewID, std::int32_t* offset);

// A panel's layout: opens the interface file `fileName` of the bundle, makes its window
// `windowName` into `*layout` and stacks the views `groupIDs` of it (signature
// `signature`), one below the other, into `pane`. When the file or window cannot be
// opened, writes "<caller>() failed (<status>): <why>" to standard error and returns the
// status.
OSStatus LoadPanelLayout(const bundle::BundleRef& bundle, const char* fileName,
                         const char* windowName, OSType signature,
                         std::span<const std::int32_t> groupIDs, toolkit::Control* pane,
                         std::unique_ptr<toolkit::Window>* layout, const char* caller);

// Alignment bits of SetControlBestRect; neither bit of a pair centres on that axis.
inline constexpr std::uint32_t kAlignTop = 1;
inline constexpr std::uint32_t kAlignBottom = 2;
inline constexpr std::uint32_t kAlignLeft = 4;
inline constexpr std::uint32_t kAlignRight = 8;
// The size a control needs for its text. Text kinds measure kBestCharWidth points per
// character plus their frame (buttons 24, check boxes and radio buttons 20, pop-ups 32,
// static text and edit text 4) at a fixed height (static text 16, check boxes and radio
// buttons 18, edit text 22, buttons and pop-ups 20). Other kinds keep their size.
inline constexpr std::int32_t kBestCharWidth = 7;
toolkit::Rect GetBestControlRect(const toolkit::Control& control);
// Gives the control its best size, anchored within its old bounds as `alignment` says;
// adds the width and height changes to `*dx` and `*dy` when given. paramErr for null.
OSStatus SetControlBestRect(toolkit::Control* control, std::uint32_t alignment, std::int32_t* dx,
                            std::int32_t* dy);
// Gives the buttons of a row, left to right, one width: the widest of their best and
// their layout widths. The row keeps its right edge and its gaps, so a longer localized
// title widens the row to the left. Null entries are skipped.
void SetButtonsToSameWidth(std::span<toolkit::Control* const> row);

// Sets the view's text between setting its one-byte data 'rdpm' to 0 and to 1, so a
// renderer redraws once. paramErr for a null view or text.
OSStatus UpdateSummaryTextView(toolkit::Control* view, const std::string* text);

// Shows, enables and activates the pane of the selected tab (value 1 is panes[0]) and
// hides, disables and deactivates the others, then redraws the tab control.
void UpdateTabControl(toolkit::Control* tabControl, std::span<toolkit::Control* const> panes);

// `value` with exactly `decimals` decimals (0 to 15), without grouping, in the locale
// `locale` (an ICU locale ID such as "de_DE"; null: the default locale). Empty on failure.
std::string CreateLocalizedCFStringFromNumberWithDecimals(double value, int decimals,
                                                          const char* locale = nullptr);

// Pictures are named, not decoded, here: a renderer paints the file of the bundle's
// resources that a view names.
// Gives an image view the picture `name`; paramErr for null or another kind.
OSStatus InitializeIcon(toolkit::Control* imageView, std::string name);
// Shows the bundle's picture `name` in the view, or none for a null name. A picture the
// bundle lacks leaves the view blank and gives fnfErr; paramErr for a null view.
OSStatus DrawImage(const bundle::BundleRef& bundle, const char* name, toolkit::Control* view);
// Draw events of a view given a picture with InitializeIcon; `bundle` is a bundle::Bundle.
// Checks that the picture is still there (DrawImage) and passes the event on.
OSStatus DrawIconEventHandler(toolkit::EventHandlerCallRef call, toolkit::EventRef event,
                              void* bundle);

}  // namespace varno::ui
