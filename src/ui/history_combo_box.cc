// SPDX-License-Identifier: Apache-2.0
#include "ui/history_combo_box.h"

#include <unicode/uloc.h>
#include <unicode/unum.h>
#include <unicode/ustring.h>

#include <cmath>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/system/user_preferences.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/text_editing.h"
#include "ui/panel_ui.h"

namespace varno::ui {

namespace {

using toolkit::CharacterSet;
using toolkit::Control;

constexpr const char* kStringTable = "Localizable";
constexpr const char* kStringNotFound = "STRING NOT FOUND";
// A numeric box without a maximum takes this many digits, the most an int32 always holds.
constexpr std::int32_t kUnboundedDigits = 9;

struct FormatCloser {
  void operator()(UNumberFormat* format) const { unum_close(format); }
};
using NumberFormat = std::unique_ptr<UNumberFormat, FormatCloser>;

// Everything a box keeps between its calls. Owned by the handler installed on the box, so
// it goes with the box even when nobody calls VComboBoxFinalize.
struct VComboBoxContext {
  VComboBoxOptions options;
  plist::Array history;  // the entries under the history key, most recent first
  std::string locale;    // ICU locale ID of the number formatter
  NumberFormat formatter;
  std::optional<CharacterSet> allowedSet;
  std::map<std::string, std::int64_t> titleToValue;
  std::map<std::int64_t, std::string> valueToTitle;
  Control* combo = nullptr;
  toolkit::EventHandlerRef handler = nullptr;
};

VComboBoxContext* ContextOf(const Control* combo) {
  const Control::Bytes* bytes = combo ? combo->property(kVComboBoxCreator, kVComboBoxContextTag)
                                      : nullptr;
  if (!bytes || bytes->size() != sizeof(VComboBoxContext*)) return nullptr;
  VComboBoxContext* context = nullptr;
  std::memcpy(&context, bytes->data(), sizeof context);
  return context;
}

void StoreContext(Control& combo, VComboBoxContext* context) {
  Control::Bytes bytes(sizeof context);
  std::memcpy(bytes.data(), &context, sizeof context);
  combo.setProperty(kVComboBoxCreator, kVComboBoxContextTag, std::move(bytes));
}

// --- Numbers in the user's locale ---------------------------------------------------------

// The user's locale with Latin digits: the box takes only the digits 0 to 9, so the numbers
// it shows must be made of them too.
std::string NumberLocale() {
  char id[ULOC_FULLNAME_CAPACITY] = {};
  std::strncpy(id, uloc_getDefault(), sizeof id - 1);
  UErrorCode error = U_ZERO_ERROR;
  uloc_setKeywordValue("numbers", "latn", id, sizeof id, &error);
  return U_FAILURE(error) ? std::string(uloc_getDefault()) : std::string(id);
}

NumberFormat MakeFormatter(const std::string& locale) {
  UErrorCode error = U_ZERO_ERROR;
  NumberFormat format(unum_open(UNUM_DECIMAL, nullptr, 0, locale.c_str(), nullptr, &error));
  if (U_FAILURE(error)) return nullptr;
  // Group separators could never be typed back into the box.
  unum_setAttribute(format.get(), UNUM_GROUPING_USED, 0);
  return format;
}

std::u16string ToUTF16(std::string_view text) {
  std::u16string out(text.size(), u'\0');
  std::int32_t length = 0;
  UErrorCode error = U_ZERO_ERROR;
  u_strFromUTF8(out.data(), static_cast<std::int32_t>(out.size()), &length, text.data(),
                static_cast<std::int32_t>(text.size()), &error);
  out.resize(U_FAILURE(error) ? 0 : static_cast<std::size_t>(length));
  return out;
}

std::string ToUTF8(const UChar* text, std::int32_t length) {
  std::string out(static_cast<std::size_t>(length) * 3, '\0');
  std::int32_t written = 0;
  UErrorCode error = U_ZERO_ERROR;
  u_strToUTF8(out.data(), static_cast<std::int32_t>(out.size()), &written, text, length, &error);
  out.resize(U_FAILURE(error) ? 0 : static_cast<std::size_t>(written));
  return out;
}

std::string FormatNumber(const VComboBoxContext& context, const plist::Value& number) {
  std::optional<std::int64_t> whole = number.toNumber<std::int64_t>();
  if (!context.formatter) return whole ? std::to_string(*whole) : std::to_string(*number.asReal());
  UChar buffer[64];
  UErrorCode error = U_ZERO_ERROR;
  const std::int32_t length =
      whole ? unum_formatInt64(context.formatter.get(), *whole, buffer, 64, nullptr, &error)
            : unum_formatDouble(context.formatter.get(), *number.asReal(), buffer, 64, nullptr,
                                &error);
  if (U_FAILURE(error) || length > 64) return {};
  return ToUTF8(buffer, length);
}

// The whole number the text spells in the box's locale, all of the text; nullopt for
// anything else (empty, letters, decimals, out of range).
std::optional<std::int64_t> ParseWholeNumber(const VComboBoxContext& context,
                                             std::string_view text) {
  if (text.empty() || !context.formatter) return std::nullopt;
  const std::u16string utf16 = ToUTF16(text);
  if (utf16.empty()) return std::nullopt;
  std::int32_t position = 0;
  UErrorCode error = U_ZERO_ERROR;
  const double number = unum_parseDouble(context.formatter.get(), utf16.data(),
                                         static_cast<std::int32_t>(utf16.size()), &position,
                                         &error);
  if (U_FAILURE(error) || position != static_cast<std::int32_t>(utf16.size())) return std::nullopt;
  if (number != std::trunc(number) || std::fabs(number) > 9.0e15) return std::nullopt;
  return static_cast<std::int64_t>(number);
}

// --- Rules ----------------------------------------------------------------------------------

bool HasMaximum(const VComboBoxOptions& options) { return options.maxValue >= 1; }

bool InRange(const VComboBoxOptions& options, std::int64_t number) {
  return number >= options.minValue && (!HasMaximum(options) || number <= options.maxValue);
}

// Whether a stored entry may be offered again: what the box's typing rules let through.
bool IsValidEntry(const VComboBoxContext& context, const std::string& entry) {
  const VComboBoxOptions& options = context.options;
  if (options.kind == kVComboBoxNumeric) {
    std::optional<std::int64_t> number = ParseWholeNumber(context, entry);
    return number && InRange(options, *number);
  }
  if (options.kind == kVComboBoxText) {
    const std::int32_t length = toolkit::CountCharacters(entry);
    if (options.minLength >= 1 && length < options.minLength) return false;
    if (options.maxLength >= 1 && length > options.maxLength) return false;
    return !context.allowedSet || context.allowedSet->containsAll(entry);
  }
  return true;
}

OSStatus AppendListItem(Control& combo, std::string text) {
  return combo.menu()->appendItem(std::move(text)) != 0 ? noErr : memFullErr;
}

// Appends the map's rows as fixed items and records their titles and values. A row whose
// value is 0 ends them: such maps open with a "none" row that is no choice here.
OSStatus AppendFixedItems(VComboBoxContext& context, Control& combo) {
  const VComboBoxOptions& options = context.options;
  const vocabulary::SettingMap* map = options.map;
  OSStatus status = noErr;
  if (!options.bundle || !map) return status;
  for (int row = 0; map[row].key && map[row].ticketValue != 0 && status == noErr; ++row) {
    std::string title = options.bundle->localizedString(map[row].key, kStringTable,
                                                        kStringNotFound);
    context.titleToValue.emplace(title, map[row].ticketValue);
    context.valueToTitle.emplace(map[row].ticketValue, title);
    status = AppendListItem(combo, std::move(title));
  }
  return status;
}

void LimitTyping(VComboBoxContext& context, Control& combo) {
  VComboBoxOptions& options = context.options;
  if (options.kind == kVComboBoxNumeric) {
    options.maxLength = HasMaximum(options) ? CountDigits(options.maxValue) : kUnboundedDigits;
    const CharacterSet digits = CharacterSet::Range(U'0', U'9');
    LimitInputLengthAndCharacters(&combo, options.minLength, options.maxLength, &digits);
  } else if (options.kind == kVComboBoxText) {
    if (const std::string* characters = std::get_if<std::string>(&options.allowedCharacters))
      context.allowedSet = CharacterSet(*characters);
    else if (const CharacterSet* set = std::get_if<CharacterSet>(&options.allowedCharacters))
      context.allowedSet = *set;
    LimitInputLengthAndCharacters(&combo, options.minLength, options.maxLength,
                                  context.allowedSet ? &*context.allowedSet : nullptr);
  } else if (combo.property(kPanelUICreator, kLimitMaxLengthTag) ||
             combo.property(kPanelUICreator, kLimitMinLengthTag) ||
             combo.property(kPanelUICreator, kLimitCharactersTag)) {
    // Set up again without typing rules: the earlier ones go.
    LimitInputLengthAndCharacters(&combo, 0, 0, nullptr);
  }
}

OSStatus AppendHistory(VComboBoxContext& context, Control& combo) {
  if (!context.options.historyKey) return noErr;
  std::optional<plist::Dictionary> file = sys::CopyUserPreferences(kInputHistoryFileName);
  if (std::optional<plist::Array> stored = file ? file->getArray(*context.options.historyKey)
                                                : std::nullopt)
    context.history = stored->mutableCopy();
  OSStatus status = noErr;
  for (const plist::Value& entry : context.history) {
    const std::string* text = entry.asString();
    if (!text || !IsValidEntry(context, *text)) continue;
    if ((status = AppendListItem(combo, *text)) != noErr) break;
  }
  return status;
}

void ShowNumber(const VComboBoxContext& context, Control& combo, const plist::Value& number) {
  if (std::optional<std::int64_t> whole = number.toNumber<std::int64_t>()) {
    if (auto title = context.valueToTitle.find(*whole); title != context.valueToTitle.end()) {
      combo.setText(title->second);
      return;
    }
  }
  combo.setText(FormatNumber(context, number));
}

// A number outside a numeric box's range becomes the nearest end of it.
void ValidateContents(const VComboBoxContext& context, Control& combo) {
  const VComboBoxOptions& options = context.options;
  if (options.kind != kVComboBoxNumeric || context.titleToValue.contains(combo.text())) return;
  std::optional<std::int64_t> number = ParseWholeNumber(context, combo.text());
  if (!number || InRange(options, *number)) return;
  const std::int64_t nearest = *number < options.minValue ? options.minValue : options.maxValue;
  ShowNumber(context, combo, plist::Value(nearest));
}

// Puts `entry` at the front of the key's history as the file holds it now, cut to the limit.
bool SaveEntry(VComboBoxContext& context, const std::string& entry) {
  const std::string& key = *context.options.historyKey;
  const std::int32_t limit = context.options.historyLimit;
  return sys::UpdateUserPreferences(kInputHistoryFileName, [&](plist::Dictionary& file) {
    plist::Array entries;
    if (std::optional<plist::Array> stored = file.getArray(key)) entries = stored->mutableCopy();
    for (std::size_t i = entries.size(); i-- > 0;) {
      const std::string* text = entries[i].asString();
      if (text && *text == entry) entries.remove(i);
    }
    entries.insert(0, plist::Value(entry));
    while (limit > 0 && entries.size() > static_cast<std::size_t>(limit))
      entries.remove(entries.size() - 1);
    file.set(key, plist::Value(entries));
    context.history = entries;
  });
}

}  // namespace

OSStatus VComboBoxInitializeWithMapAndHistory(Control* combo, const VComboBoxOptions* options) {
  if (!combo || !options) return noErr;
  if (!combo->menu()) return paramErr;
  if (ContextOf(combo)) VComboBoxFinalize(combo, false);

  auto owned = std::make_shared<VComboBoxContext>();
  VComboBoxContext& context = *owned;
  context.options = *options;
  context.locale = NumberLocale();
  context.formatter = MakeFormatter(context.locale);
  context.combo = combo;
  static constexpr toolkit::EventTypeSpec kFocus[] = {
      {toolkit::kEventClassControl, toolkit::kEventControlSetFocusPart}};
  context.handler = combo->installHandler(
      {std::begin(kFocus), std::end(kFocus)},
      [owned](toolkit::EventHandlerCallRef call, toolkit::Event& event) {
        return VComboBoxEventHandler(call, &event, owned.get());
      });
  StoreContext(*combo, &context);

  OSStatus status = AppendFixedItems(context, *combo);
  LimitTyping(context, *combo);
  if (status == noErr) status = AppendHistory(context, *combo);
  return status;
}

OSStatus VComboBoxSetValue(Control* combo, const plist::Value* value) {
  const VComboBoxContext* context = ContextOf(combo);
  if (!context || !value) return paramErr;
  if (const std::string* text = value->asString()) combo->setText(*text);
  else if (value->isNumber()) ShowNumber(*context, *combo, *value);
  return noErr;
}

OSStatus VComboBoxCopyValue(Control* combo, std::optional<plist::Value>* value) {
  const VComboBoxContext* context = ContextOf(combo);
  if (!context || !value) return paramErr;
  ValidateContents(*context, *combo);
  const std::string& text = combo->text();
  if (auto fixed = context->titleToValue.find(text); fixed != context->titleToValue.end()) {
    *value = plist::Value(fixed->second);
    return noErr;
  }
  if (text.empty()) return kVComboBoxNoValue;
  if (context->options.kind == kVComboBoxNumeric) {
    std::optional<std::int64_t> number = ParseWholeNumber(*context, text);
    if (!number) return kVComboBoxNoValue;
    *value = plist::Value(*number);
    return noErr;
  }
  *value = plist::Value(text);
  return noErr;
}

OSStatus VComboBoxFinalize(Control* combo, bool save) {
  VComboBoxContext* context = ContextOf(combo);
  if (!context) return paramErr;
  OSStatus status = noErr;
  const std::string& text = combo->text();
  if (save && context->options.historyKey && !text.empty() && combo->menu()->findText(text) == 0)
    status = SaveEntry(*context, text) ? noErr : kPMIOError;
  combo->removeProperty(kVComboBoxCreator, kVComboBoxContextTag);
  // The handler owns the context: removing it lets go of everything the box held.
  combo->removeHandler(context->handler);
  return status;
}

OSStatus VComboBoxEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event, void* data) {
  auto* context = static_cast<VComboBoxContext*>(data);
  if (!event || !context || !context->combo ||
      !event->is({toolkit::kEventClassControl, toolkit::kEventControlSetFocusPart}))
    return eventNotHandledErr;
  const auto part = event->get<toolkit::ControlPartCode>(toolkit::kEventParamControlPart,
                                                         toolkit::typeControlPartCode);
  if (part == toolkit::kControlFocusNoPart) ValidateContents(*context, *context->combo);
  return eventNotHandledErr;
}

}  // namespace varno::ui
