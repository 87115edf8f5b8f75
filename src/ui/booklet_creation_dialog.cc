// SPDX-License-Identifier: Apache-2.0
#include "ui/booklet_creation_dialog.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "model/special_pages_ticket.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/character_set.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/interface_file.h"
#include "platform/toolkit/window.h"
#include "ui/stock_menus.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/setting_maps.h"

namespace varno::ui {

namespace {

using toolkit::Control;

constexpr std::int32_t kBookletCreationMode = 1;
constexpr std::int32_t kBookletOptionsMode = 2;
constexpr int kCancelled = -1;

constexpr const char* kSquareFoldPicture = "SquareFoldFinisher.gif";
constexpr const char* kTrimPicture = "TrimOuterEdgeFinisher.gif";
// The finishing menu's staple items, which a booklet fold rules out.
constexpr toolkit::MenuCommand kStapleCommands[] = {MakeOSType("Stp1"), MakeOSType("Stp2"),
                                                    MakeOSType("Stp4")};

// A number typed into a field or stepped with its spin control. The spin holds the value;
// the field shows it, in tenths when `decimals` is 1.
struct NumberField {
  Control* field = nullptr;
  Control* spin = nullptr;
  std::int32_t minimum = 0;
  std::int32_t maximum = 0;
  int decimals = 0;
  const char* outsideKey = nullptr;  // what the notice says when the text does not fit
};

struct BookletCreationDialog {
  bundle::BundleRef bundle;
  toolkit::Window* window = nullptr;
  std::int32_t mode = kBookletCreationMode;
  const print::Ticket* ticket = nullptr;
  BookletPanelState* panel = nullptr;  // booklet creation mode only
  // The values as the controls last gave them.
  BookletCreationParameters values;
  bool squareFold = false;
  bool trim = false;
  std::int32_t trimWidth = kBookletDefaultTrimWidth;
  bool cancelled = true;

  std::array<Control*, 3> finishing{};  // none, fold, fold and staple; absent in "BookletOptions"
  std::array<Control*, 2> layout{};     // none, booklet layout
  Control* outlines = nullptr;
  Control* sizeLabel = nullptr;
  Control* sizePopup = nullptr;
  Control* preview = nullptr;
  NumberField gutter, creep, trimWidthField;
  std::array<Control*, 2> gutterRow{};  // label and range
  std::array<Control*, 2> creepRow{};
  Control* squareFoldPicture = nullptr;
  Control* squareFoldBox = nullptr;
  Control* trimPicture = nullptr;
  Control* trimBox = nullptr;
  std::array<Control*, 2> trimWidthRow{};
};

std::string Localized(const bundle::BundleRef& bundle, const char* key) {
  return bundle->localizedString(key, "Localizable", "STRING NOT FOUND");
}

bool IsOn(const Control* control) { return control && control->value() != 0; }

void SetValue(Control* control, std::int32_t value) {
  if (control) control->setValue(value);
}

void SetEnabled(Control* control, bool enabled) {
  if (control) control->setEnabled(enabled);
}

void SetVisible(Control* control, bool visible) {
  if (control) control->setVisible(visible);
}

// --- Special pages ---------------------------------------------------------------------

// True when the item holds something: a page list or cover with entries, or any other value.
bool HoldsPages(const print::Ticket::Item& item) {
  if (item.nested) return item.nested->size() != 0;
  if (const plist::Array* array = item.value.asArray()) return !array->empty();
  if (const plist::Dictionary* dictionary = item.value.asDictionary()) return !dictionary->empty();
  if (const std::string* text = item.value.asString()) return !text->empty();
  return true;
}

// Whether the special pages let the job become a booklet. Each sheet of a booklet carries
// four of its pages, so a cover or an insert sheet of its own would break the order. The
// first of front cover and insert list that is there decides, even when it is empty; without
// either, an exception list allows the booklet whatever the back cover says (an exception
// only changes a page's paper), else a back cover with something in it rules it out.
bool SpecialPagesAllowBooklet(const print::Ticket* ticket) {
  if (!ticket) return true;
  const print::Ticket::Item* pages = ticket->item(model::kFrontCoverKey);
  if (!pages) pages = ticket->item(model::kInsertListKey);
  if (pages) return !HoldsPages(*pages);
  if (ticket->item(model::kExceptionListKey)) return true;
  const print::Ticket::Item* back = ticket->item(model::kBackCoverKey);
  return !back || !HoldsPages(*back);
}

// --- Number fields ---------------------------------------------------------------------

std::string NumberText(const NumberField& number, std::int32_t value) {
  if (number.decimals == 0) return std::to_string(value);
  return CreateLocalizedCFStringFromNumberWithDecimals(value / 10.0, 1);
}

// The field's number in the spin's units: digits, and with one decimal an optional point or
// comma followed by at most one digit. nullopt when the text is no such number or lies
// outside the limits.
std::optional<std::int32_t> NumberIn(const NumberField& number) {
  const std::string text = number.field ? number.field->text() : std::string();
  std::int32_t value = 0;
  int digits = 0, decimals = 0;
  bool separator = false;
  for (char c : text) {
    if ((c == '.' || c == ',') && number.decimals == 1 && !separator) {
      separator = true;
      continue;
    }
    // Far more digits than any limit has: no number the field takes.
    if (!std::isdigit(static_cast<unsigned char>(c)) || ++digits > 6) return std::nullopt;
    if (separator && ++decimals > number.decimals) return std::nullopt;
    value = value * 10 + (c - '0');
  }
  if (digits == 0) return std::nullopt;
  if (number.decimals == 1 && decimals == 0) value *= 10;
  if (value < number.minimum || value > number.maximum) return std::nullopt;
  return value;
}

void ShowNumber(const NumberField& number, std::int32_t value, bool rewrite) {
  SetValue(number.spin, value);
  if (!number.field || !number.spin) return;
  // Text that already says the value stays as typed; text that is no number stays too, so
  // OK can point at it. Stepping with the arrows always rewrites it.
  const std::optional<std::int32_t> shown = NumberIn(number);
  if (rewrite || (shown && *shown != number.spin->value()))
    number.field->setText(NumberText(number, number.spin->value()));
}

void EnableNumber(const NumberField& number, bool enabled) {
  SetEnabled(number.field, enabled);
  SetEnabled(number.spin, enabled);
}

NumberField* FieldOf(BookletCreationDialog& dialog, const Control* control, bool spin) {
  for (NumberField* number : {&dialog.gutter, &dialog.creep, &dialog.trimWidthField}) {
    if (control && control == (spin ? number->spin : number->field)) return number;
  }
  return nullptr;
}

// Checks the fields a person can type into; on the first whose text is no number within its
// limits, says so and puts the focus there.
bool NumbersAcceptable(BookletCreationDialog& dialog) {
  for (const NumberField* number : {&dialog.gutter, &dialog.creep, &dialog.trimWidthField}) {
    if (!number->field || !number->field->isReachable() || NumberIn(*number)) continue;
    toolkit::SysBeep(10);
    const std::string low = NumberText(*number, number->minimum);
    const std::string high = NumberText(*number, number->maximum);
    char header[256];
    std::snprintf(header, sizeof header, Localized(dialog.bundle, number->outsideKey).c_str(),
                  low.c_str(), high.c_str());
    toolkit::CFUserNotificationDisplayNotice(
        0, toolkit::kCFUserNotificationCautionAlertLevel, header,
        Localized(dialog.bundle, "Booklet Value Outside Advice"));
    dialog.window->setFocus(number->field);
    return false;
  }
  return true;
}

// --- Reading and showing the values ----------------------------------------------------

const char* BookletPreviewPicture(std::int32_t fold, std::int32_t layout, std::int32_t outlines) {
  struct Pictures {
    std::int32_t fold;
    const char* plain;
    const char* booklet;
    const char* outlined;
  };
  static constexpr Pictures kPictures[] = {
      {kBookletFold, "BookletCreation_Fold.gif", "BookletCreation_Booklet-Fold.gif",
       "BookletCreation_Booklet-Fold-Outlines.gif"},
      {kBookletFoldAndStaple, "BookletCreation_Fold-Staple.gif",
       "BookletCreation_Booklet-Fold-Staple.gif",
       "BookletCreation_Booklet-Fold-Staple-Outlines.gif"},
      {kBookletNoFold, "BookletCreation_None.gif", "BookletCreation_Booklet.gif",
       "BookletCreation_Booklet-Outlines.gif"},
  };
  const Pictures* pictures = &kPictures[2];
  for (const Pictures& entry : kPictures) {
    if (entry.fold == fold) pictures = &entry;
  }
  if (layout != kBookletLayoutOn) return pictures->plain;
  return outlines == kBookletOutlinesOn ? pictures->outlined : pictures->booklet;
}

void ReadValuesFromUI(BookletCreationDialog& dialog) {
  BookletCreationParameters& values = dialog.values;
  if (dialog.finishing[0]) {
    values.fold = IsOn(dialog.finishing[0])   ? kBookletNoFold
                  : IsOn(dialog.finishing[1]) ? kBookletFold
                  : IsOn(dialog.finishing[2]) ? kBookletFoldAndStaple
                                              : kBookletNoFold;
  }
  if (IsOn(dialog.layout[0]))
    values.bookletLayout = kBookletLayoutOff;
  else if (IsOn(dialog.layout[1]))
    values.bookletLayout = kBookletLayoutOn;
  if (dialog.outlines)
    values.drawOutlines = IsOn(dialog.outlines) ? kBookletOutlinesOn : kBookletOutlinesOff;
  if (dialog.sizePopup) values.paperSize = vocabulary::GetPopupButtonTicketValue(dialog.sizePopup);
  if (dialog.gutter.spin) values.gutter = dialog.gutter.spin->value();
  if (dialog.creep.spin) values.creep = dialog.creep.spin->value();
  if (dialog.squareFoldBox) dialog.squareFold = IsOn(dialog.squareFoldBox);
  if (dialog.trimBox) dialog.trim = IsOn(dialog.trimBox);
  if (dialog.trimWidthField.spin) dialog.trimWidth = dialog.trimWidthField.spin->value();
}

void WriteValuesToUI(BookletCreationDialog& dialog, bool rewriteNumbers) {
  const BookletCreationParameters& values = dialog.values;
  const bool creation = dialog.mode == kBookletCreationMode;
  BookletPanelState* panel = creation ? dialog.panel : nullptr;
  SetValue(dialog.finishing[0], values.fold == kBookletNoFold);
  SetValue(dialog.finishing[1], values.fold == kBookletFold);
  SetValue(dialog.finishing[2], values.fold == kBookletFoldAndStaple);
  SetValue(dialog.layout[0], values.bookletLayout != kBookletLayoutOn);
  SetValue(dialog.layout[1], values.bookletLayout == kBookletLayoutOn);
  SetValue(dialog.outlines, values.drawOutlines == kBookletOutlinesOn);
  if (!vocabulary::SetPopupButtonToTicketValue(dialog.sizePopup, values.paperSize))
    vocabulary::SetPopupButtonToTicketValue(dialog.sizePopup, kBookletNoNewSize);
  ShowNumber(dialog.gutter, values.gutter, rewriteNumbers);
  ShowNumber(dialog.creep, values.creep, rewriteNumbers);
  SetValue(dialog.squareFoldBox, dialog.squareFold);
  SetValue(dialog.trimBox, dialog.trim);
  ShowNumber(dialog.trimWidthField, dialog.trimWidth, rewriteNumbers);

  // A booklet needs both the special pages and the staples to allow it: a corner staple
  // cannot go through a folded booklet.
  const bool allowed = SpecialPagesAllowBooklet(dialog.ticket) && !(panel && panel->stapleChosen);
  SetEnabled(dialog.finishing[1], allowed);
  SetEnabled(dialog.finishing[2], allowed);
  SetEnabled(dialog.layout[1], allowed);
  // Outlines, size, gutter and creep are how the pages are imposed, so they need the layout.
  const bool layoutOn = values.bookletLayout == kBookletLayoutOn;
  for (Control* control : {dialog.outlines, dialog.sizeLabel, dialog.sizePopup, dialog.gutterRow[0],
                           dialog.gutterRow[1], dialog.creepRow[0], dialog.creepRow[1]})
    SetEnabled(control, layoutOn);
  EnableNumber(dialog.gutter, layoutOn);
  EnableNumber(dialog.creep, layoutOn);

  // The trimmer works on folded booklets only, and only some printers have one.
  const bool trimmer = panel && panel->squareFoldAvailable;
  const bool folded = trimmer && values.fold != kBookletNoFold;
  for (Control* control : {dialog.squareFoldPicture, dialog.squareFoldBox, dialog.trimPicture,
                           dialog.trimBox, dialog.trimWidthField.field, dialog.trimWidthField.spin,
                           dialog.trimWidthRow[0], dialog.trimWidthRow[1]})
    SetVisible(control, trimmer);
  for (Control* control :
       {dialog.squareFoldPicture, dialog.squareFoldBox, dialog.trimPicture, dialog.trimBox})
    SetEnabled(control, folded);
  for (Control* control : {dialog.trimWidthRow[0], dialog.trimWidthRow[1]})
    SetEnabled(control, folded && dialog.trim);
  EnableNumber(dialog.trimWidthField, folded && dialog.trim);

  DrawImage(dialog.bundle,
            BookletPreviewPicture(values.fold, values.bookletLayout, values.drawOutlines),
            dialog.preview);
}

// --- Events ------------------------------------------------------------------------------

// Radio buttons turn the others of their group off; a fold makes a booklet of the pages,
// no fold leaves them as they are.
void ChooseRadio(BookletCreationDialog& dialog, const Control* hit) {
  for (std::size_t i = 0; i < dialog.finishing.size(); ++i) {
    if (!hit || hit != dialog.finishing[i]) continue;
    for (std::size_t j = 0; j < dialog.finishing.size(); ++j) SetValue(dialog.finishing[j], i == j);
    SetValue(dialog.layout[0], i == 0);
    SetValue(dialog.layout[1], i != 0);
    return;
  }
  for (std::size_t i = 0; i < dialog.layout.size(); ++i) {
    if (!hit || hit != dialog.layout[i]) continue;
    SetValue(dialog.layout[i], 1);
    SetValue(dialog.layout[1 - i], 0);
  }
}

OSStatus HandleCommand(BookletCreationDialog& dialog, toolkit::MenuCommand command) {
  switch (command) {
    case toolkit::kHICommandOK:
      if (!NumbersAcceptable(dialog)) return noErr;  // the dialog stays open
      dialog.cancelled = false;
      dialog.window->quitModalLoop();
      return noErr;
    case toolkit::kHICommandCancel:
      dialog.window->quitModalLoop();
      return noErr;
    case kBookletHelpCommand:
      DisplayHelpPage(dialog.bundle, kBookletHelpPage);
      return noErr;
    default:
      return eventNotHandledErr;
  }
}

OSStatus BookletCreationEventHandler(toolkit::EventHandlerCallRef call, toolkit::EventRef event,
                                     void* dialogState) {
  auto* dialog = static_cast<BookletCreationDialog*>(dialogState);
  if (!dialog || !event) return eventNotHandledErr;
  if (event->eventClass() == toolkit::kEventClassCommand) {
    const std::optional<toolkit::HICommand> command = event->command();
    return command ? HandleCommand(*dialog, command->commandID) : eventNotHandledErr;
  }
  Control* control = event->control();
  if (event->eventClass() == kPanelUICreator) {
    // Typing: a number that fits goes into the spin at once, so the value is never older
    // than the text.
    if (NumberField* number = FieldOf(*dialog, control, false)) {
      if (const std::optional<std::int32_t> value = NumberIn(*number))
        SetValue(number->spin, *value);
    }
    return eventNotHandledErr;
  }
  if (!control || control->kind() == toolkit::ControlKind::PushButton) return eventNotHandledErr;
  ChooseRadio(*dialog, control);
  const OSStatus status = toolkit::CallNextEventHandler(call, event);
  ReadValuesFromUI(*dialog);
  WriteValuesToUI(*dialog, FieldOf(*dialog, control, true) != nullptr);
  return status;
}

// Draw events of the square-fold and trim pictures.
OSStatus SquareFoldAndTrimFinisherHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                                          void* dialogState) {
  auto* dialog = static_cast<BookletCreationDialog*>(dialogState);
  Control* view = event ? event->control() : nullptr;
  if (dialog && view)
    DrawImage(dialog->bundle, view == dialog->squareFoldPicture ? kSquareFoldPicture : kTrimPicture,
              view);
  return eventNotHandledErr;
}

// --- Set-up ------------------------------------------------------------------------------

void SetRangeText(const bundle::BundleRef& bundle, const char* key, Control* label,
                  const NumberField& number) {
  SetLocalizedStaticText(bundle, key, label, NumberText(number, number.minimum).c_str(),
                         NumberText(number, number.maximum).c_str());
}

void InitializeNumber(BookletCreationDialog& dialog, NumberField& number, std::int32_t first,
                      std::int32_t minimum, std::int32_t maximum, int decimals,
                      const char* outsideKey) {
  static const toolkit::CharacterSet kDigits("0123456789");
  static const toolkit::CharacterSet kDecimal("0123456789.,");
  number.field = dialog.window->findByID(BookletControlID(first));
  number.spin = dialog.window->findByID(BookletControlID(first + 1));
  number.minimum = minimum;
  number.maximum = maximum;
  number.decimals = decimals;
  number.outsideKey = outsideKey;
  // Room for the largest value, with its separator and decimal.
  const std::int32_t length = CountDigits(maximum) + (decimals ? 1 : 0);
  LimitInputLengthAndCharacters(number.field, 1, length, decimals ? &kDecimal : &kDigits);
  if (number.spin) {
    number.spin->setMinimum(minimum);
    number.spin->setMaximum(maximum);
  }
}

void InitializeUI(BookletCreationDialog& dialog, std::int32_t mode) {
  toolkit::Window& window = *dialog.window;
  const bundle::BundleRef& bundle = dialog.bundle;
  dialog.mode = mode;
  SetLocalizedWindowTitle(
      bundle, mode == kBookletCreationMode ? "Booklet Creation" : "Booklet Options Title", &window);
  for (std::size_t i = 0; i < dialog.finishing.size(); ++i)
    dialog.finishing[i] = window.findByID(BookletControlID(1600 + static_cast<std::int32_t>(i)));
  // A booklet maker creases the sheets; without one the finisher folds them.
  const bool maker = vocabulary::getInstalledFeature("SBBookletMaker") != 0;
  SetLocalizedControlTitle(bundle, maker ? "Booklet Crease" : "Booklet Fold", dialog.finishing[1]);
  SetLocalizedControlTitle(bundle, maker ? "Booklet Crease and Staple" : "Booklet Fold and Staple",
                           dialog.finishing[2]);
  dialog.layout = {window.findByID(kBookletLayoutNoneRadioID),
                   window.findByID(kBookletLayoutRadioID)};
  dialog.outlines = window.findByID(kBookletOutlinesCheckBoxID);

  dialog.sizeLabel = window.findByID(kBookletNewSizeLabelID);
  dialog.sizePopup = window.findByID(kBookletNewSizePopupID);
  if (dialog.sizePopup && dialog.sizePopup->menu()) {
    toolkit::Menu* menu = dialog.sizePopup->menu();
    menu->deleteAllItems();
    PopulateStockSizeMenu(menu, bundle, kJobStockContext);
    const toolkit::MenuItemIndex off =
        menu->insertItem(0, Localized(bundle, "Off"), kStockSizeCommand);
    menu->setItemRefCon(
        off, static_cast<toolkit::URefCon>(static_cast<std::uint32_t>(kBookletNoNewSize)));
  }

  InitializeNumber(dialog, dialog.gutter, 1612, 0, kBookletMaxGutter, 0, "Booklet Gutter Outside");
  InitializeNumber(dialog, dialog.creep, 1616, 0, kBookletMaxCreep, 1, "Booklet Creep Outside");
  InitializeNumber(dialog, dialog.trimWidthField, 1625, kBookletMinTrimWidth, kBookletMaxTrimWidth,
                   1, "Booklet Trim Width Outside");
  dialog.gutterRow = {window.findByID(kBookletGutterLabelID),
                      window.findByID(kBookletGutterRangeID)};
  dialog.creepRow = {window.findByID(kBookletCreepLabelID), window.findByID(kBookletCreepRangeID)};
  dialog.trimWidthRow = {window.findByID(kBookletTrimWidthLabelID),
                         window.findByID(kBookletTrimWidthRangeID)};
  SetRangeText(bundle, "Gutter Range Label", dialog.gutterRow[1], dialog.gutter);
  SetRangeText(bundle, "Creep Range Label", dialog.creepRow[1], dialog.creep);
  SetRangeText(bundle, "Trim Width Range Label", dialog.trimWidthRow[1], dialog.trimWidthField);
  DrawImage(bundle, "BookletCreation_Gutter.gif", window.findByID(kBookletGutterIconID));
  DrawImage(bundle, "BookletCreation_Creep.gif", window.findByID(kBookletCreepIconID));
  dialog.preview = window.findByID(kBookletPreviewID);

  dialog.squareFoldPicture = window.findByID(kBookletSquareFoldPictureID);
  dialog.squareFoldBox = window.findByID(kBookletSquareFoldCheckBoxID);
  dialog.trimPicture = window.findByID(kBookletTrimPictureID);
  dialog.trimBox = window.findByID(kBookletTrimCheckBoxID);
  static constexpr std::array<toolkit::EventTypeSpec, 1> kDraw{
      {{toolkit::kEventClassControl, toolkit::kEventControlDraw}}};
  for (Control* picture : {dialog.squareFoldPicture, dialog.trimPicture}) {
    if (!picture) continue;
    picture->installHandler(kDraw, SquareFoldAndTrimFinisherHandler, &dialog);
    picture->draw();
  }

  static constexpr std::array<toolkit::EventTypeSpec, 5> kEvents{{
      {toolkit::kEventClassCommand, toolkit::kEventCommandProcess},
      {toolkit::kEventClassControl, toolkit::kEventControlHit},
      {kPanelUICreator, kInputStateLongEnough},
      {kPanelUICreator, kInputStateTooShort},
      {kPanelUICreator, kInputStateEmpty},
  }};
  window.installHandler(kEvents, BookletCreationEventHandler, &dialog);
  WriteValuesToUI(dialog, true);
}

// Hands the accepted values back: the parameters, the trimmer's settings through the
// panel's pointers, and the staple items once nothing of a booklet rules them out. A
// cancelled dialog hands back nothing, so the panel's menu stays as its booklet left it.
void FinalizeUI(BookletCreationDialog& dialog, BookletCreationParameters* parameters) {
  if (dialog.cancelled) return;
  ReadValuesFromUI(dialog);
  *parameters = dialog.values;
  BookletPanelState* panel = dialog.mode == kBookletCreationMode ? dialog.panel : nullptr;
  if (!panel) return;
  if (panel->squareFoldAvailable) {
    if (panel->squareFold) *panel->squareFold = dialog.squareFold ? 1 : 0;
    if (panel->trim) *panel->trim = dialog.trim ? 1 : 0;
    if (panel->trimWidth) *panel->trimWidth = dialog.trimWidth;
  }
  const BookletCreationParameters& values = dialog.values;
  if (panel->finishingMenu && values.bookletLayout != kBookletLayoutOn &&
      values.fold != kBookletFold && values.fold != kBookletFoldAndStaple) {
    for (toolkit::MenuCommand command : kStapleCommands) {
      if (const toolkit::MenuItemIndex item = panel->finishingMenu->findCommand(command))
        panel->finishingMenu->setItemEnabled(item, true);
    }
  }
}

int RunBookletDialog(BookletCreationParameters* parameters, std::int32_t mode,
                     const char* windowName, const print::Ticket* ticket,
                     BookletPanelState* panel) {
  if (!parameters || !parameters->bundle) return paramErr;
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::unique_ptr<toolkit::Window> window;
  std::string error;
  OSStatus status =
      toolkit::InterfaceFile::open(parameters->bundle, "BookletCreation", &file, &error);
  if (status == noErr) status = file->createWindow(windowName, &window, &error);
  if (status != noErr) {
    std::fprintf(stderr, "RunModalBookletCreationDialog() failed (%d): %s\n", status,
                 error.c_str());
    return status;
  }
  BookletCreationDialog dialog;
  dialog.bundle = parameters->bundle;
  dialog.window = window.get();
  dialog.ticket = ticket;
  dialog.panel = panel;
  dialog.values = *parameters;
  if (panel && panel->squareFoldAvailable) {
    if (panel->squareFold) dialog.squareFold = *panel->squareFold != 0;
    if (panel->trim) dialog.trim = *panel->trim != 0;
    if (panel->trimWidth && *panel->trimWidth >= kBookletMinTrimWidth &&
        *panel->trimWidth <= kBookletMaxTrimWidth)
      dialog.trimWidth = *panel->trimWidth;
  }
  InitializeUI(dialog, mode);
  window->setVisible(true);
  window->runModalLoop();
  FinalizeUI(dialog, parameters);
  return dialog.cancelled ? kCancelled : noErr;
}

}  // namespace

int RunModalBookletCreationDialog(BookletCreationParameters* parameters, BookletPanelState* panel) {
  return RunBookletDialog(parameters, kBookletCreationMode, "BookletCreation",
                          panel ? panel->ticket : nullptr, panel);
}

int RunModalBookletOptionsDialog(BookletCreationParameters* parameters,
                                 const print::Ticket* ticket) {
  // Only a printer that can fold offers the finishing choices.
  const bool folds = vocabulary::getInstalledFeature("BookletFoldKey") ||
                     vocabulary::getInstalledFeature("BiFoldMultiple") ||
                     vocabulary::getInstalledFeature("BiFoldStapleMultiple");
  return RunBookletDialog(parameters, kBookletOptionsMode,
                          folds ? "BookletFinishingOptions" : "BookletOptions", ticket, nullptr);
}

}  // namespace varno::ui
