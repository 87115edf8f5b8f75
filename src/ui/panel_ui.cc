// SPDX-License-Identifier: Apache-2.0
#include "ui/panel_ui.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include <unicode/unum.h>
#include <unicode/ustring.h>

#include "platform/toolkit/alerts.h"
#include "platform/toolkit/interface_file.h"
#include "platform/toolkit/text_editing.h"
#include "vocabulary/ppd_access.h"

namespace varno::ui {

using vocabulary::PPDGetCurrent;

using namespace toolkit;

namespace {

constexpr const char* kStringNotFound = "STRING NOT FOUND";
constexpr const char* kStringTable = "Localizable";
constexpr OSType kSummaryRedrawTag = MakeOSType("rdpm");

bool IsControlCharacter(std::string_view c) {
  return c.size() == 1 && (static_cast<unsigned char>(c[0]) < 0x20 || c[0] == 0x7F);
}

std::optional<std::int32_t> ReadInt32Property(const Control& control, OSType tag) {
  const Control::Bytes* bytes = control.property(kPanelUICreator, tag);
  if (!bytes || bytes->size() != sizeof(std::int32_t)) return std::nullopt;
  std::int32_t value;
  std::memcpy(&value, bytes->data(), sizeof value);
  return value;
}

void SetOrRemoveLength(Control& control, OSType tag, std::int32_t length) {
  if (length < 1) {
    control.removeProperty(kPanelUICreator, tag);
    return;
  }
  Control::Bytes bytes(sizeof length);
  std::memcpy(bytes.data(), &length, sizeof length);
  control.setProperty(kPanelUICreator, tag, std::move(bytes));
}

// Marks a field that carries the handler already, so that limiting it again changes only
// its properties and every keystroke is still checked (and announced) once.
constexpr OSType kLimitHandlerTag = MakeOSType("Vlhd");

void AnnounceState(Control& field, std::uint32_t state) {
  Event event(kPanelUICreator, state);
  Control* object = &field;
  event.set(kEventParamDirectObject, typeControlRef, object);
  field.send(event);
}

void AnnounceLengthState(Control& field) {
  const std::int32_t length = CountCharacters(field.text());
  const std::int32_t minimum = ReadInt32Property(field, kLimitMinLengthTag).value_or(1);
  if (length == 0) AnnounceState(field, kInputStateEmpty);
  else if (length < minimum) AnnounceState(field, kInputStateTooShort);
  else AnnounceState(field, kInputStateLongEnough);
}

std::string FormatV(const char* format, va_list args) {
  va_list copy;
  va_copy(copy, args);
  const int size = std::vsnprintf(nullptr, 0, format, copy);
  va_end(copy);
  if (size < 0) return {};
  std::string text(static_cast<std::size_t>(size) + 1, '\0');
  std::vsnprintf(text.data(), text.size(), format, args);
  text.resize(static_cast<std::size_t>(size));
  return text;
}

std::string LookUp(const bundle::BundleRef& bundle, const char* key) {
  return bundle->localizedString(key, kStringTable, kStringNotFound);
}

// The table's text for `key` used as a printf format for `args`.
std::string LocalizedV(const bundle::BundleRef& bundle, const char* key, va_list args) {
  const std::string format = LookUp(bundle, key);
  return FormatV(format.c_str(), args);
}

}  // namespace

// --- Limited text fields ---------------------------------------------------------------

void LimitInputLengthAndCharacters(Control* field, std::int32_t minLength, std::int32_t maxLength,
                                   const CharacterSet* allowedCharacters) {
  if (!field) return;
  SetOrRemoveLength(*field, kLimitMaxLengthTag, maxLength);
  SetOrRemoveLength(*field, kLimitMinLengthTag, minLength);
  if (allowedCharacters)
    field->setProperty(kPanelUICreator, kLimitCharactersTag, allowedCharacters->toBytes());
  else
    field->removeProperty(kPanelUICreator, kLimitCharactersTag);

  if (field->property(kPanelUICreator, kLimitHandlerTag)) return;
  field->setProperty(kPanelUICreator, kLimitHandlerTag, {1});
  static constexpr EventTypeSpec kTypes[] = {
      {kEventClassTextInput, kEventTextInputUnicodeForKeyEvent},
      {kEventClassControl, kEventControlDispose},
      {kEventClassHIComboBox, kEventComboBoxListItemSelected},
  };
  field->installHandler(kTypes, LimitInputEventHandler, field);
}

OSStatus LimitInputEventHandler(EventHandlerCallRef call, EventRef event, void* userData) {
  auto* field = static_cast<Control*>(userData);
  if (!event || !field) return eventNotHandledErr;

  if (event->is({kEventClassTextInput, kEventTextInputUnicodeForKeyEvent})) {
    const std::string typed = event->text(kEventParamTextInputSendText).value_or(std::string());
    const std::vector<std::string_view> characters = SplitCharacters(typed);
    bool onlyControls = true;
    for (std::string_view c : characters) onlyControls = onlyControls && IsControlCharacter(c);

    if (!onlyControls) {
      if (std::optional<std::int32_t> maximum = ReadInt32Property(*field, kLimitMaxLengthTag)) {
        const TextRange selection = field->selection();
        const std::int64_t after = std::int64_t{CountCharacters(field->text())} +
                                   static_cast<std::int64_t>(characters.size()) -
                                   (selection.end - selection.start);
        if (after > *maximum) {
          SysBeep(10);
          return noErr;
        }
      }
      if (const Control::Bytes* bytes = field->property(kPanelUICreator, kLimitCharactersTag)) {
        std::optional<CharacterSet> allowed = CharacterSet::fromBytes(*bytes);
        if (!allowed || !allowed->containsAll(typed)) {
          SysBeep(10);
          return noErr;
        }
      }
    }

    auto alive = field->watch();
    const OSStatus status = CallNextEventHandler(call, event);
    if (!alive.expired()) AnnounceLengthState(*field);
    return status;
  }
  if (event->is({kEventClassControl, kEventControlDispose})) {
    field->removeProperty(kPanelUICreator, kLimitCharactersTag);
    return eventNotHandledErr;
  }
  if (event->is({kEventClassHIComboBox, kEventComboBoxListItemSelected})) {
    AnnounceState(*field, kInputStateLongEnough);
    return eventNotHandledErr;
  }
  return eventNotHandledErr;
}

// --- The custom value dialog -------------------------------------------------------------

OSStatus RunModalCustomValueDialog(const bundle::BundleRef& bundle, std::int32_t minLength,
                                   std::int32_t maxLength, std::optional<std::string>* text,
                                   std::uint16_t* result) {
  if (!text || !result) return paramErr;
  std::unique_ptr<InterfaceFile> file;
  std::string error;
  OSStatus status = InterfaceFile::open(bundle, "Utilities", &file, &error);
  std::unique_ptr<Window> window;
  if (status == noErr) status = file->createWindow("CustomValue", &window, &error);
  if (status != noErr) {
    std::fprintf(stderr, "RunModalCustomValueDialog() failed (%d): %s\n", status, error.c_str());
    return status;
  }

  CustomValueDialogState state{window.get(), bundle, 2};
  static constexpr EventTypeSpec kCommand[] = {{kEventClassCommand, kEventCommandProcess}};
  window->installHandler(kCommand, CustomValueEventHandler, &state);
  Control* field = window->findByID(kCustomValueFieldID);
  LimitInputLengthAndCharacters(field, minLength, maxLength, nullptr);
  if (field && text->has_value()) field->setText(**text);

  window->setVisible(true);
  window->setFocus(field);
  window->runModalLoop();

  *result = state.result;
  if (state.result == 1 && field) *text = field->text();
  else *text = std::nullopt;
  return noErr;
}

OSStatus CustomValueEventHandler(EventHandlerCallRef, EventRef event, void* dialogState) {
  auto* state = static_cast<CustomValueDialogState*>(dialogState);
  if (!event || !state || !event->is({kEventClassCommand, kEventCommandProcess}))
    return eventNotHandledErr;
  HICommand command;
  const OSStatus status = event->getParameter(kEventParamDirectObject, typeHICommand, nullptr,
                                              sizeof command, nullptr, &command);
  if (status != noErr) return status;
  if (command.commandID == kHICommandOK || command.commandID == kHICommandCancel) {
    state->result = command.commandID == kHICommandOK ? 1 : 2;
    if (state->window) state->window->quitModalLoop();
    return noErr;
  }
  if (command.commandID == kCustomValueHelpCommand) DisplayHelpPage(state->bundle, kCustomValueHelpPage);
  return status;
}

void DisplayHelpPage(const bundle::BundleRef& bundle, const char* page) {
  if (!bundle || !page) return;
  const plist::Value* book = bundle->infoValue("CFBundleHelpBookName");
  const std::string* name = book ? book->asString() : nullptr;
  AHGotoPage(name ? *name : std::string(), page, {});
}

// --- Localized texts ---------------------------------------------------------------------

void SetLocalizedStaticText(const bundle::BundleRef& bundle, const char* key, Control* control,
                            ...) {
  if (!bundle || !key || !control) return;
  va_list args;
  va_start(args, control);
  std::string text = LocalizedV(bundle, key, args);
  va_end(args);
  control->setText(std::move(text));
  control->draw();
}

void SetLocalizedControlTitle(const bundle::BundleRef& bundle, const char* key, Control* control,
                              ...) {
  if (!bundle || !key || !control) return;
  va_list args;
  va_start(args, control);
  std::string text = LocalizedV(bundle, key, args);
  va_end(args);
  control->setText(std::move(text));
}

void SetLocalizedWindowTitle(const bundle::BundleRef& bundle, const char* key, Window* window,
                             ...) {
  if (!bundle || !key || !window) return;
  va_list args;
  va_start(args, window);
  std::string text = LocalizedV(bundle, key, args);
  va_end(args);
  window->setText(std::move(text));
}

void SetLocalizedMenuTitle(const bundle::BundleRef& bundle, const char* key, Menu* menu,
                           MenuItemIndex item, ...) {
  if (!bundle || !key || !menu) return;
  va_list args;
  va_start(args, item);
  std::string text = LocalizedV(bundle, key, args);
  va_end(args);
  menu->setItemText(item, std::move(text));
}

// --- Numbers and limits --------------------------------------------------------------------

void GetMediaLimits(float* minWidth, float* minHeight, float* maxWidth, float* maxHeight) {
  float limits[4] = {432.0f, 432.0f, 864.0f, 864.0f};
  if (ppd_file_t* ppd = PPDGetCurrent()) {
    limits[0] = ppd->custom_min[0];
    limits[1] = ppd->custom_min[1];
    limits[2] = ppd->custom_max[0];
    limits[3] = ppd->custom_max[1];
  }
  float* out[4] = {minWidth, minHeight, maxWidth, maxHeight};
  for (int i = 0; i < 4; ++i)
    if (out[i]) *out[i] = limits[i];
}

int CountDigits(std::int64_t n) {
  // Counted on the integer, not through log10: in double precision log10(999999999999999)
  // rounds up to 15 and would count 16 digits. The magnitude is unsigned so INT64_MIN fits.
  std::uint64_t magnitude = n < 0 ? 0 - static_cast<std::uint64_t>(n) : static_cast<std::uint64_t>(n);
  int digits = 1;
  while (magnitude >= 10) {
    magnitude /= 10;
    ++digits;
  }
  return digits;
}

std::string CreateLocalizedCFStringFromNumberWithDecimals(double value, int decimals,
                                                          const char* locale) {
  if (decimals < 0 || decimals > 15) return {};
  UErrorCode error = U_ZERO_ERROR;
  UNumberFormat* format = unum_open(UNUM_DECIMAL, nullptr, 0, locale, nullptr, &error);
  if (U_FAILURE(error)) return {};
  unum_setAttribute(format, UNUM_GROUPING_USED, 0);
  unum_setAttribute(format, UNUM_MIN_FRACTION_DIGITS, decimals);
  unum_setAttribute(format, UNUM_MAX_FRACTION_DIGITS, decimals);
  UChar buffer[128];
  const int32_t length = unum_formatDouble(format, value, buffer, 128, nullptr, &error);
  unum_close(format);
  if (U_FAILURE(error) || length >= 128) return {};
  char utf8[512];
  int32_t utf8Length = 0;
  u_strToUTF8(utf8, sizeof utf8, &utf8Length, buffer, length, &error);
  if (U_FAILURE(error)) return {};
  return std::string(utf8, static_cast<std::size_t>(utf8Length));
}

// --- Bundles ---------------------------------------------------------------------------------

bool LoadPrivateBundle(const bundle::BundleRef& bundle, std::string_view name,
                       bundle::BundleRef* loaded) {
  if (loaded) *loaded = nullptr;
  if (!bundle || !loaded || name.empty()) return false;
  const std::filesystem::path path = bundle->privatePlugInsPath() / name;
  std::error_code ignored;
  if (!std::filesystem::is_directory(path, ignored)) return false;
  bundle::BundleRef opened = bundle::Bundle::Open(path);
  if (!opened || !opened->load()) return false;  // a half-opened bundle goes with `opened`
  *loaded = std::move(opened);
  return true;
}

// --- View geometry -----------------------------------------------------------------------------

void TranslateView(Control* view, std::int32_t dx, std::int32_t dy) {
  if (!view) return;
  Rect r = view->bounds();
  view->setBounds({r.top + dy, r.left + dx, r.bottom + dy, r.right + dx});
}

OSStatus AppendViewFromWindowAndUnpack(Control* parent, Window* window, ControlID viewID,
                                       std::int32_t* offset) {
  if (!parent || !window || !offset) return paramErr;
  Control* view = window->findByID(viewID);
  if (!view) return errUnknownControl;
  const Rect old = view->bounds();
  view->setBounds({*offset, 0, *offset + old.height(), old.width()});
  const std::int32_t top = *offset;
  *offset += old.height();
  while (view->childCount() > 0) {
    Control* child = view->child(0);
    if (OSStatus status = parent->embed(*child); status != noErr) return status;
    TranslateView(child, 0, top);
  }
  return noErr;
}

Rect GetBestControlRect(const Control& control) {
  struct Measure {
    std::int32_t frame;
    std::int32_t height;
  };
  std::optional<Measure> measure;
  switch (control.kind()) {
    case ControlKind::StaticText: measure = Measure{4, 16}; break;
    case ControlKind::EditText: measure = Measure{4, 22}; break;
    case ControlKind::PushButton:
    case ControlKind::BevelButton: measure = Measure{24, 20}; break;
    case ControlKind::CheckBox:
    case ControlKind::RadioButton: measure = Measure{20, 18}; break;
    case ControlKind::PopupButton: measure = Measure{32, 20}; break;
    default: break;
  }
  const Rect& r = control.bounds();
  if (!measure) return r;
  const std::int32_t width = CountCharacters(control.text()) * kBestCharWidth + measure->frame;
  return {r.top, r.left, r.top + measure->height, r.left + width};
}

OSStatus LoadPanelLayout(const bundle::BundleRef& bundle, const char* fileName,
                         const char* windowName, OSType signature,
                         std::span<const std::int32_t> groupIDs, Control* pane,
                         std::unique_ptr<toolkit::Window>* layout, const char* caller) {
  if (!layout) return paramErr;
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::string error;
  OSStatus status = toolkit::InterfaceFile::open(bundle, fileName, &file, &error);
  if (status == noErr) status = file->createWindow(windowName, layout, &error);
  if (status != noErr) {
    std::fprintf(stderr, "%s() failed (%d): %s\n", caller, status, error.c_str());
    return status;
  }
  std::int32_t offset = 0;
  for (std::int32_t group : groupIDs)
    AppendViewFromWindowAndUnpack(pane, layout->get(), {signature, group}, &offset);
  return noErr;
}

OSStatus SetControlBestRect(Control* control, std::uint32_t alignment, std::int32_t* dx,
                            std::int32_t* dy) {
  if (!control) return paramErr;
  const Rect old = control->bounds();
  const Rect best = GetBestControlRect(*control);
  const std::int32_t width = best.width(), height = best.height();
  std::int32_t top, left;
  if (alignment & kAlignTop) top = old.top;
  else if (alignment & kAlignBottom) top = old.bottom - height;
  else top = old.top + (old.height() - height) / 2;
  if (alignment & kAlignLeft) left = old.left;
  else if (alignment & kAlignRight) left = old.right - width;
  else left = old.left + (old.width() - width) / 2;
  control->setBounds({top, left, top + height, left + width});
  if (dx) *dx += width - old.width();
  if (dy) *dy += height - old.height();
  return noErr;
}

void SetButtonsToSameWidth(std::span<Control* const> row) {
  std::vector<Control*> buttons;
  std::int32_t width = 0;
  for (Control* button : row) {
    if (!button) continue;
    buttons.push_back(button);
    width = std::max({width, button->bounds().width(), GetBestControlRect(*button).width()});
  }
  // From the right: each button ends where it ended, or its old gap before the next one.
  std::int32_t right = buttons.empty() ? 0 : buttons.back()->bounds().right;
  for (std::size_t i = buttons.size(); i-- > 0;) {
    const Rect old = buttons[i]->bounds();
    buttons[i]->setBounds({old.top, right - width, old.bottom, right});
    if (i > 0) right = right - width - (old.left - buttons[i - 1]->bounds().right);
  }
}

OSStatus UpdateSummaryTextView(Control* view, const std::string* text) {
  if (!view || !text) return paramErr;
  view->setData(kControlNoPart, kSummaryRedrawTag, {0});
  view->setText(*text);
  view->setData(kControlNoPart, kSummaryRedrawTag, {1});
  return noErr;
}

void UpdateTabControl(Control* tabControl, std::span<Control* const> panes) {
  if (!tabControl) return;
  const std::int32_t selected = tabControl->value();
  for (std::size_t i = 0; i < panes.size(); ++i) {
    Control* pane = panes[i];
    if (!pane) continue;
    const bool chosen = static_cast<std::int32_t>(i + 1) == selected;
    pane->setVisible(chosen);
    pane->setEnabled(chosen);
    pane->setActive(chosen);
  }
  tabControl->draw();
}

OSStatus InitializeIcon(Control* imageView, std::string name) {
  if (!imageView || imageView->kind() != ControlKind::ImageView) return paramErr;
  imageView->setPictureName(std::move(name));
  return noErr;
}

OSStatus DrawImage(const bundle::BundleRef& bundle, const char* name, Control* view) {
  if (!view) return paramErr;
  if (!name) {
    view->setPictureName({});
    return noErr;
  }
  if (!bundle || !bundle->resourcePath(name)) {
    view->setPictureName({});
    return fnfErr;
  }
  view->setPictureName(name);
  return noErr;
}

OSStatus DrawIconEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event, void* bundle) {
  Control* view = event ? event->control() : nullptr;
  auto* owner = static_cast<bundle::Bundle*>(bundle);
  if (view && owner && !view->pictureName().empty() && !owner->resourcePath(view->pictureName())) {
    std::fprintf(stderr, "DrawIconEventHandler(): no picture \"%s\" in the bundle.\n",
                 view->pictureName().c_str());
    view->setPictureName({});
  }
  return eventNotHandledErr;
}

std::string FormatNumbers(std::string_view format, std::initializer_list<long long> numbers) {
  const std::vector<long long> arguments(numbers);
  std::string out;
  std::size_t next = 0;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%') {
      out += format[i];
      continue;
    }
    std::size_t end = i + 1;
    if (end < format.size() && format[end] == '%') {
      out += '%';
      i = end;
      continue;
    }
    std::size_t argument = next;
    std::size_t digits = end;
    while (digits < format.size() && format[digits] >= '0' && format[digits] <= '9') ++digits;
    if (digits > end && digits < format.size() && format[digits] == '$') {
      const std::string position(format.substr(end, digits - end));
      argument = static_cast<std::size_t>(std::stoul(position));
      argument = argument > 0 ? argument - 1 : arguments.size();
      end = digits + 1;
    } else {
      ++next;
    }
    const std::size_t flagsStart = end;
    while (end < format.size() && std::string_view("-+ #0123456789.").find(format[end]) !=
                                      std::string_view::npos)
      ++end;
    const std::string flags(format.substr(flagsStart, end - flagsStart));
    while (end < format.size() && std::string_view("hlqLjzt").find(format[end]) !=
                                      std::string_view::npos)
      ++end;
    if (end >= format.size()) break;
    const char conversion = format[end];
    const long long value = argument < arguments.size() ? arguments[argument] : 0;
    char piece[128] = {};
    if (std::string_view("dioxXu").find(conversion) != std::string_view::npos) {
      const std::string printf = "%" + flags + "ll" + (conversion == 'i' ? 'd' : conversion);
      std::snprintf(piece, sizeof piece, printf.c_str(), value);
    } else if (conversion == 's' || conversion == '@') {
      const std::string printf = "%" + flags + "s";
      std::snprintf(piece, sizeof piece, printf.c_str(), std::to_string(value).c_str());
    } else {
      out += format.substr(i, end + 1 - i);
    }
    out += piece;
    i = end;
  }
  return out;
}

}  // namespace varno::ui
