// SPDX-License-Identifier: Apache-2.0
#include "panels/paper_output/finishing_menu.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>

#include "model/covers_sync.h"
#include "panels/paper_output/coil_binding_dialog.h"
#include "panels/paper_output/custom_finishing_dialog.h"
#include "panels/paper_output/offset_dialog.h"
#include "platform/print/ticket_access.h"
#include "ui/booklet_creation_dialog.h"
#include "ui/panel_ui.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/ppd_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

using toolkit::Control;
using toolkit::Menu;
using toolkit::MenuCommand;
using vocabulary::getInstalledFeature;

namespace {

// A finishing item: its command, the code it stores and, for a staple or punch, the
// installed feature that offers it (and names it).
struct FinishingItem {
  MenuCommand command;
  std::int32_t refCon;
  const char* featureKey;
  const char* labelKey;
};
constexpr FinishingItem kStapleItems[] = {
    {kSingleStapleCommand, 5, "SingleStapleKey", nullptr},
    {kDualStapleCommand, 10, "DualStapleKey", nullptr},
    {kMultipleStapleCommand, 54, "MultipleStapleKey", nullptr}};
constexpr FinishingItem kGenericPunchItem = {kGenericPunchCommand, 2, "GenericPunchKey", nullptr};
constexpr FinishingItem kPunchItems[] = {{kDualPunchCommand, 3, "DualPunchKey", nullptr},
                                         {kTriplePunchCommand, 4, "TriplePunchKey", nullptr},
                                         {kQuadruplePunchCommand, 5, "QuadruplePunchKey", nullptr}};
constexpr FinishingItem kFoldItems[] = {{kNoFoldCommand, 1, nullptr, "No Fold"},
                                        {kBiFoldCommand, kBookletFold, nullptr, "BiFoldNoStaple"},
                                        {kCFoldCommand, 19, "CFoldKey", "FoldCFold"},
                                        {kZFoldCommand, 20, "ZFoldKey", "FoldZFold"},
                                        {kZFoldHalfSheetCommand, 36, "ZFoldHalfSheetKey", "Z Fold Half Sheet"}};
constexpr const char* kFolderKeys[] = {"CFoldKey", "ZFoldKey", "ZFoldHalfSheetKey"};

// The code a command stores when it arrives without a menu item to tell.
std::int32_t DefaultRefCon(MenuCommand command) {
  if (command == kNoStapleCommand || command == kNoPunchCommand || command == kNoFoldCommand) return 1;
  for (std::span<const FinishingItem> items :
       {std::span<const FinishingItem>(kStapleItems), std::span<const FinishingItem>(kPunchItems),
        std::span<const FinishingItem>(kFoldItems), std::span<const FinishingItem>(&kGenericPunchItem, 1)})
    for (const FinishingItem& item : items)
      if (item.command == command) return item.refCon;
  return 0;
}

std::string Localized(const bundle::BundleRef& bundle, const char* key) {
  return bundle ? bundle->localizedString(key, "Localizable", "STRING NOT FOUND") : key;
}

bool AnyInstalled(std::span<const char* const> keys) {
  return std::any_of(keys.begin(), keys.end(), [](const char* key) { return getInstalledFeature(key); });
}

void AppendItem(Menu* menu, std::string text, MenuCommand command, std::int32_t refCon) {
  const toolkit::MenuItemIndex item = menu->appendItem(std::move(text), command);
  menu->setItemRefCon(item, static_cast<toolkit::URefCon>(refCon));
}

void AppendSeparator(Menu* menu) { menu->setItemEnabled(menu->appendItem("-"), false); }

// The installed staplers; true when any was added.
bool AppendStapleItems(const bundle::BundleRef& bundle, Menu* menu) {
  bool any = false;
  for (const FinishingItem& item : kStapleItems) {
    if (!getInstalledFeature(item.featureKey)) continue;
    AppendItem(menu,
               vocabulary::CopyLocalizedStringForInstalledFeatureFromPlugin(item.featureKey, bundle)
                   .value_or(item.featureKey),
               item.command, item.refCon);
    any = true;
  }
  return any;
}

// The installed punches after their "none" item; a generic punch stands for all.
bool AppendPunchItems(const bundle::BundleRef& bundle, Menu* menu, const char* noneKey) {
  std::vector<FinishingItem> installed;
  if (getInstalledFeature(kGenericPunchItem.featureKey)) {
    installed.push_back(kGenericPunchItem);
  } else {
    for (const FinishingItem& item : kPunchItems)
      if (getInstalledFeature(item.featureKey)) installed.push_back(item);
  }
  if (installed.empty()) return false;
  AppendItem(menu, Localized(bundle, noneKey), kNoPunchCommand, 1);
  for (const FinishingItem& item : installed)
    AppendItem(menu,
               vocabulary::CopyLocalizedStringForInstalledFeatureFromPlugin(item.featureKey, bundle)
                   .value_or(item.featureKey),
               item.command, item.refCon);
  return true;
}

// The choices beyond staples, holes and folds that this printer offers: coil binding,
// offsetting and a custom instruction, each with its dialog.
void AppendDialogItems(const bundle::BundleRef& bundle, Menu* menu) {
  if (getInstalledFeature("GBCAdvancedPunchKey"))
    menu->appendItem(Localized(bundle, "Coil Binding..."), kCoilCommand);
  if (getInstalledFeature("Offset")) menu->appendItem(Localized(bundle, "Offset/Subset..."), kOffsetCommand);
  if (getInstalledFeature("Custom")) menu->appendItem(Localized(bundle, "Custom..."), kCustomCommand);
}

// The booklet maker's one menu for every finishing choice.
toolkit::MenuPtr BookletMakerMenu(PaperOutputContext* panel) {
  const bundle::BundleRef& bundle = panel->bundle;
  toolkit::MenuPtr menu = Menu::create();
  AppendItem(menu.get(), Localized(bundle, "No Staple Value"), kNoStapleCommand, 1);
  panel->stapleInstalled = AppendStapleItems(bundle, menu.get());
  AppendSeparator(menu.get());
  panel->punchInstalled = AppendPunchItems(bundle, menu.get(), "NoHolePunch");
  if (AnyInstalled(kFolderKeys)) {
    AppendSeparator(menu.get());
    for (const FinishingItem& item : kFoldItems)
      if (!item.featureKey || getInstalledFeature(item.featureKey))
        AppendItem(menu.get(), Localized(bundle, item.labelKey), item.command, item.refCon);
  }
  AppendSeparator(menu.get());
  AppendDialogItems(bundle, menu.get());
  menu->appendItem(Localized(bundle, "Booklet Creation..."), kBookletCreationCommand);
  return menu;
}

// A pop-up of installed staples or punches; one without any is disabled at "None".
void FillPopup(PaperOutputContext* panel, Control* popup, bool staples) {
  if (!popup) return;
  const bundle::BundleRef& bundle = panel->bundle;
  toolkit::MenuPtr menu = Menu::create();
  bool any = false;
  if (staples) {
    AppendItem(menu.get(), Localized(bundle, "No Staple Value"), kNoStapleCommand, 1);
    any = AppendStapleItems(bundle, menu.get());
    panel->stapleInstalled = any;
  } else {
    any = AppendPunchItems(bundle, menu.get(), "NoHolePunch");
    panel->punchInstalled = any;
  }
  if (!any) {
    menu = Menu::create();
    AppendItem(menu.get(), Localized(bundle, "None"), staples ? kNoStapleCommand : kNoPunchCommand, 1);
  }
  const auto count = static_cast<std::int32_t>(menu->count());
  popup->setMenu(std::move(menu));
  popup->setMaximum(count);
  popup->setValue(1);
  popup->setEnabled(any);
}

void SetVisible(std::initializer_list<Control*> controls, bool visible) {
  for (Control* control : controls)
    if (control) control->setVisible(visible);
}

void ResetFinishing(PaperOutputContext* panel, std::int32_t offset) {
  panel->finishingOptions = kNoFinishing;
  panel->singleStaple = panel->dualStaple = panel->multipleStaple = 1;
  panel->punchGroup = panel->holePunch = panel->fold = 1;
  panel->offset = offset;
  panel->offsetEnableSubset = 0;
  panel->customFinishing.clear();
  panel->coilSelected = 0;
}

void ShowTwoSided(PaperOutputContext* panel, std::int32_t shown, bool enabled) {
  if (Control* popup = panel->twoSidedPopup) {
    vocabulary::SetPopupButtonToTicketValue(popup, shown);
    popup->setEnabled(enabled && panel->duplexCapable);
  }
  if (panel->twoSidedIcon) panel->twoSidedIcon->draw();
}

std::int32_t PPDDuplexDefault() {
  std::int32_t value = 1;
  vocabulary::PPDGetTicketValueForChoiceOrDefault(vocabulary::PPDGetCurrent(), nullptr, "Duplex", &value);
  return value == -1 ? 1 : value;
}

void RunBookletCreation(PaperOutputContext* panel) {
  ui::BookletCreationParameters parameters{panel->bundle,      panel->fold,  panel->bookletLayout,
                                           panel->drawOutlines, panel->bookletSize,
                                           panel->gutter,       panel->creep};
  print::Ticket ticket;
  const bool haveTicket =
      panel->session &&
      print::GetTicketFromSession(panel->session, print::kPrintSettingsTicket, &ticket) == noErr;
  ui::BookletPanelState state{haveTicket ? &ticket : nullptr,
                              panel->stapleChosen != 0,
                              panel->finishingDialogFlags[kSquareFoldPossible] != 0,
                              &panel->finishingDialogFlags[kSquareFoldChosen],
                              &panel->finishingDialogFlags[kTrimChosen],
                              &panel->trimWidth,
                              FinishingMenu(panel)};
  if (ui::RunModalBookletCreationDialog(&parameters, &state) != 0) return;
  panel->fold = parameters.fold;
  panel->bookletLayout = parameters.bookletLayout;
  panel->drawOutlines = parameters.drawOutlines;
  panel->bookletSize = parameters.paperSize;
  panel->gutter = parameters.gutter;
  panel->creep = parameters.creep;

  // Written at once: the other panels read it before this one syncs again.
  if (haveTicket)
    ticket.setValue(model::kBookletLayoutKey, plist::Value(panel->bookletLayout == kBookletOn),
                    "com.varno.printingmanager");
  if (panel->bookletLayout != kBookletOn) {
    panel->duplex = panel->rememberedDuplex;
    panel->rememberedDuplex = PPDDuplexDefault();
    ShowTwoSided(panel, panel->duplexPopupValue, true);
  } else {
    panel->rememberedDuplex = PPDDuplexDefault();
    ShowTwoSided(panel, kLongEdgeDuplex, false);
    panel->duplexCode = kLongEdgeDuplex;
    if (panel->coversUndo && panel->coversUndo->front)
      panel->coversUndo->back = std::make_unique<model::Cover>(*panel->coversUndo->front);
  }
  if (panel->fold == kBookletFold || panel->fold == kBookletFoldStaple) {
    panel->finishingOptions = kBookletFinishing;
    panel->singleStaple = panel->dualStaple = panel->multipleStaple = 1;
    panel->bindValue = panel->punchGroup = panel->holePunch = 1;
    panel->finishingCode = panel->punchCode = 1;
  }
  if (panel->finishingOptions == kBookletFinishing) {
    panel->offset = 1;
    panel->offsetEnableSubset = 0;
    panel->offsetPagesPerSubset = 0;
  }
}

void RunCoilBinding(PaperOutputContext* panel) {
  if (!RunModalCoilBindingDialog(panel->bundle, &panel->coil)) return;
  // The coil's holes are the binding: no staples, other holes or folds beside them.
  panel->finishingOptions = kCoilFinishing;
  panel->coilSelected = 1;
  panel->singleStaple = panel->dualStaple = panel->multipleStaple = 1;
  panel->punchGroup = panel->holePunch = panel->fold = 1;
}

void ShowFinishingSummary(PaperOutputContext* panel) {
  if (panel->finishingSummaryView) {
    std::string text;
    CreateFinishingString(panel, &text);
    ui::UpdateSummaryTextView(panel->finishingSummaryView, &text);
  }
  if (panel->finishingIcon) panel->finishingIcon->draw();
}

// The menus that hold finishing items: the finishing menu and the two pop-ups.
std::vector<Menu*> FinishingMenus(const PaperOutputContext* panel) {
  std::vector<Menu*> menus;
  for (Control* control : {panel->finishingMenuButton, panel->staplePopup, panel->holePunchPopup})
    if (control && control->menu()) menus.push_back(control->menu());
  return menus;
}

// The PPD option a finishing command chooses in, or null.
const char* PPDKeywordOf(MenuCommand c) {
  if (c == kSingleStapleCommand || c == kDualStapleCommand || c == kMultipleStapleCommand)
    return "StapleLocation";
  if (c == kGenericPunchCommand || c == kDualPunchCommand || c == kTriplePunchCommand ||
      c == kQuadruplePunchCommand)
    return "VNPunch";
  if (c == kBiFoldCommand || c == kCFoldCommand || c == kZFoldCommand || c == kZFoldHalfSheetCommand)
    return "VNFold";
  return nullptr;
}

// Offers only what the printer's constraints allow with every other choice of the job
// (this panel's included); staples also wait while the pages are imposed as a booklet.
void EnableFinishingChoices(PaperOutputContext* panel) {
  ppd_file_t* ppd = vocabulary::PPDGetCurrent();
  std::optional<print::Ticket> job;
  print::Ticket session;
  if (panel->session &&
      print::GetTicketFromSession(panel->session, print::kPrintSettingsTicket, &session) == noErr)
    job = print::Ticket::fromPropertyList(session.toPropertyList());
  if (job) SyncPaperOutputToTicket(panel, *job);
  for (Menu* menu : FinishingMenus(panel)) {
    for (toolkit::MenuItemIndex index = 1; index <= menu->count(); ++index) {
      const toolkit::MenuItem& item = *menu->item(index);
      const char* keyword = PPDKeywordOf(item.command);
      if (!keyword) continue;
      bool enabled = true;
      if (const char* choice =
              vocabulary::PPDChoiceForTicketValue(keyword, static_cast<std::int32_t>(item.refCon)))
        enabled = !vocabulary::PPDChoiceConflicts(ppd, job ? &*job : nullptr, keyword, choice);
      if (std::string_view(keyword) == "StapleLocation" && panel->bookletLayout == kBookletOn)
        enabled = false;
      menu->setItemEnabled(index, enabled);
    }
  }
}

}  // namespace

toolkit::Menu* FinishingMenu(const PaperOutputContext* panel) {
  return panel && panel->finishingMenuButton ? panel->finishingMenuButton->menu() : nullptr;
}

void BuildFinishingControls(PaperOutputContext* panel) {
  panel->bookletMaker = getInstalledFeature("BookletFoldKey") ? 1 : 0;
  const bool booklet = panel->bookletMaker != 0;
  Control* button = panel->finishingMenuButton;
  if (booklet) {
    if (button) button->setMenu(BookletMakerMenu(panel));
    // Booklet creation lives in this menu, so the menu is what a booklet is made with.
    panel->bookletControl = button;
  } else {
    FillPopup(panel, panel->staplePopup, true);
    FillPopup(panel, panel->holePunchPopup, false);
    if (button) InitializeFinishingMenuButton(button, panel->bundle);
  }
  if (button) {
    ui::SetLocalizedControlTitle(panel->bundle, "Finishing Menu Title", button);
    // "Printer Default" and "None" alone offer nothing the pop-ups do not.
    button->setEnabled(FinishingMenu(panel) && FinishingMenu(panel)->count() > 2);
  }
  SetVisible({panel->finishingLabel, panel->finishingSummaryView}, booklet);
  SetVisible({panel->staplingLabel, panel->staplePopup, panel->holePunchLabel, panel->holePunchPopup},
             !booklet);
  if (panel->holePunchPopup && !vocabulary::SetPopupButtonToTicketValue(panel->holePunchPopup, panel->holePunch))
    panel->holePunchPopup->setValue(1);
}

void UnselectBooklet(PaperOutputContext* panel) {
  if (panel->bookletLayout == kBookletOn) {
    panel->duplex = kLongEdgeDuplex;
    ShowTwoSided(panel, kLongEdgeDuplex, false);
  }
  if (panel->finishingOptions == kBookletFinishing) {
    panel->finishingOptions = kNoFinishing;
    panel->fold = 1;
  }
}

bool RunFinishingCommand(PaperOutputContext* panel, const toolkit::HICommand& command) {
  const MenuCommand id = command.commandID;
  std::int32_t refCon = DefaultRefCon(id);
  if (command.menu && command.menu->item(command.menuItemIndex))
    refCon = static_cast<std::int32_t>(command.menu->item(command.menuItemIndex)->refCon);
  static constexpr MenuCommand kCommands[] = {
      kNoStapleCommand,   kSingleStapleCommand, kDualStapleCommand,     kMultipleStapleCommand,
      kNoPunchCommand,    kGenericPunchCommand, kDualPunchCommand,      kTriplePunchCommand,
      kQuadruplePunchCommand, kNoFoldCommand,   kBiFoldCommand,         kCFoldCommand,
      kZFoldCommand,      kZFoldHalfSheetCommand, kBookletCreationCommand, kCoilCommand,
      kOffsetCommand,     kCustomCommand,       kPrinterDefaultCommand, kNoFinishingCommand};
  if (std::find(std::begin(kCommands), std::end(kCommands), id) == std::end(kCommands)) return false;
  if (id != kBookletCreationCommand) UnselectBooklet(panel);

  // The asymmetries are deliberate: multiple staples clear the holes, one or two staples
  // keep them, and holes clear only multiple staples.
  if (id == kNoStapleCommand) {
    panel->singleStaple = panel->dualStaple = panel->multipleStaple = 1;
  } else if (id == kSingleStapleCommand || id == kDualStapleCommand) {
    const bool single = id == kSingleStapleCommand;
    panel->finishingOptions = single ? kSingleStapleFinishing : kDualStapleFinishing;
    panel->singleStaple = single ? refCon : 1;
    panel->dualStaple = single ? 1 : refCon;
    panel->multipleStaple = 1;
    panel->fold = 1;
  } else if (id == kMultipleStapleCommand) {
    panel->finishingOptions = kMultipleStapleFinishing;
    panel->singleStaple = panel->dualStaple = 1;
    panel->multipleStaple = 54;
    panel->fold = 1;
    panel->punchGroup = panel->holePunch = 1;
  } else if (id == kNoPunchCommand) {
    panel->punchGroup = 1;
    panel->holePunch = refCon;
  } else if (id == kGenericPunchCommand || id == kDualPunchCommand || id == kTriplePunchCommand ||
             id == kQuadruplePunchCommand) {
    panel->finishingOptions = kPunchFinishing;
    panel->punchGroup = 32;
    panel->fold = 1;
    panel->multipleStaple = 1;
    panel->holePunch = refCon;
  } else if (id == kBiFoldCommand || id == kCFoldCommand || id == kZFoldCommand ||
             id == kZFoldHalfSheetCommand) {
    panel->finishingOptions = kFoldFinishing;
    panel->singleStaple = panel->dualStaple = panel->multipleStaple = 1;
    panel->punchGroup = panel->holePunch = 1;
    panel->fold = refCon;
  } else if (id == kNoFoldCommand) {
    panel->fold = refCon;
  } else if (id == kBookletCreationCommand) {
    RunBookletCreation(panel);
  } else if (id == kCoilCommand) {
    RunCoilBinding(panel);
  } else if (id == kOffsetCommand) {
    RunModalOffsetFinishingDialog(panel);
  } else if (id == kCustomCommand) {
    RunModalCustomFinishingDialog(panel);
  } else if (id == kPrinterDefaultCommand || id == kNoFinishingCommand) {
    ResetFinishing(panel, id == kPrinterDefaultCommand ? 1 : 2);
  }
  return true;
}

void FinishingChanged(PaperOutputContext* panel) {
  panel->stapleChosen =
      panel->singleStaple != 1 || panel->dualStaple != 1 || panel->multipleStaple != 1 ? 1 : 0;
  MarkFinishingMenu(panel);
  EnableFinishingChoices(panel);
  ShowFinishingSummary(panel);
}

void MarkFinishingMenu(PaperOutputContext* panel) {
  Menu* menu = FinishingMenu(panel);
  if (!menu) return;
  const bool bookletMode =
      panel->finishingOptions == kBookletFinishing || panel->bookletLayout == kBookletOn;
  const bool noStaple = panel->singleStaple == 1 && panel->dualStaple == 1 && panel->multipleStaple == 1;
  for (toolkit::MenuItemIndex index = 1; index <= menu->count(); ++index) {
    const toolkit::MenuItem& item = *menu->item(index);
    const auto refCon = static_cast<std::int32_t>(item.refCon);
    const MenuCommand c = item.command;
    bool checked = false;
    if (bookletMode) {
      checked = c == kBookletCreationCommand;
    } else if (c == kNoStapleCommand) {
      checked = noStaple;
    } else if (c == kSingleStapleCommand) {
      checked = panel->singleStaple == refCon;
    } else if (c == kDualStapleCommand) {
      checked = panel->dualStaple == refCon;
    } else if (c == kMultipleStapleCommand) {
      checked = panel->multipleStaple == refCon;
    } else if (c == kNoPunchCommand || c == kGenericPunchCommand || c == kDualPunchCommand ||
               c == kTriplePunchCommand || c == kQuadruplePunchCommand) {
      checked = panel->holePunch == refCon;
    } else if (c == kNoFoldCommand || c == kBiFoldCommand || c == kCFoldCommand ||
               c == kZFoldCommand || c == kZFoldHalfSheetCommand) {
      checked = panel->fold == refCon;
    }
    menu->setItemChecked(index, checked);
  }
}

void CreateFinishingString(const PaperOutputContext* panel, std::string* text) {
  if (!panel || !text) return;
  text->clear();
  auto line = [&](const char* key) { *text += "- " + Localized(panel->bundle, key) + "\n"; };
  const bool creaser = getInstalledFeature("SBBookletMaker");
  auto bookletLine = [&] {
    if (panel->fold == kBookletFold)
      line(creaser ? "Booklet Crease" : "Booklet Fold");
    else if (panel->fold == kBookletFoldStaple)
      line(creaser ? "Booklet CreaseStaple" : "Booklet FoldStaple");
    else
      line("No Fold");
  };
  if (panel->finishingOptions == kBookletFinishing || panel->bookletLayout == kBookletOn) {
    bookletLine();
    if (panel->bookletLayout == kBookletOn) line("Booklet Layout");
    return;
  }
  if (panel->stapleInstalled)
    line(panel->singleStaple != 1   ? "1 Staple"
         : panel->dualStaple != 1   ? "2 Staples"
         : panel->multipleStaple != 1 ? "Multiple Staples"
                                      : "No Staple Value");
  if (panel->punchInstalled) {
    switch (panel->holePunch) {
      case 2: line("HolePunch"); break;
      case 3: line("2 Hole Punch"); break;
      case 4: line("3 Hole Punch"); break;
      case 5: line("4 Hole Punch"); break;
      default: line("NoHolePunch"); break;
    }
  }
  if (panel->bookletMaker) {
    switch (panel->fold) {
      case 19: line("FoldCFold"); break;
      case 20: line("FoldZFold"); break;
      case 36: line("Z Fold Half Sheet"); break;
      case kBookletFold: line("BiFoldNoStaple"); break;
      default: line("No Fold"); break;
    }
  }
  if (panel->finishingOptions == kCoilFinishing && panel->coilSelected)
    *text += "- " + CoilBindingSummary(panel->bundle, panel->coil) + "\n";
}

void EnableFinishingItems(PaperOutputContext* panel, MenuCommand command, bool enabled) {
  for (Menu* menu : FinishingMenus(panel))
    if (const toolkit::MenuItemIndex item = menu->findCommand(command)) menu->setItemEnabled(item, enabled);
}

void CheckFinisherAgainstStock(PaperOutputContext* panel) {
  if (!panel || !panel->jobLevelStock) return;
  const plist::Dictionary stock = panel->jobLevelStock->asTicket();
  const std::int32_t type = stock.getNumber<std::int32_t>("Type").value_or(0);
  const std::int32_t weight = stock.getNumber<std::int32_t>("Weight").value_or(80);
  bool changed = false;
  Menu* menu = FinishingMenu(panel);
  const toolkit::MenuItemIndex coil = menu ? menu->findCommand(kCoilCommand) : 0;
  if (getInstalledFeature("GBCAdvancedPunchKey") && coil) {
    // Coil binding punches paper of ordinary weight; transparencies and labels tear.
    const bool possible =
        type != 9 && type != 2 && weight >= kMinCoilPaperWeight && weight <= kMaxCoilPaperWeight;
    const bool wasEnabled = menu->item(coil)->enabled;
    menu->setItemEnabled(coil, possible);
    if (!possible) menu->setItemChecked(coil, false);
    // A coil chosen for paper that can no longer take it goes from the job.
    if ((!possible || !wasEnabled) && panel->finishingOptions == kCoilFinishing) {
      panel->finishingOptions = kNoFinishing;
      changed = true;
    }
    if (!possible && panel->coilSelected) {
      panel->coilSelected = 0;
      changed = true;
    }
  }
  if (getInstalledFeature("SquareFoldTrimmerKey")) {
    // Labels and transparencies, and the stock types 4 and 5, do not take a pressed spine.
    const bool forbidden = type == 9 || type == 2 || type == 4 || type == 5;
    std::uint8_t* flags = panel->finishingDialogFlags;
    if (forbidden) {
      changed = changed || flags[kSquareFoldChosen] || flags[kTrimChosen];
      flags[kSquareFoldPossible] = flags[kSquareFoldChosen] = flags[kTrimChosen] = 0;
    } else {
      flags[kSquareFoldPossible] = 1;
    }
  }
  if (changed) ShowFinishingSummary(panel);
}

void PopulateFinishingMenu(Menu* menu, const bundle::BundleRef& bundle) {
  if (!menu) return;
  menu->deleteAllItems();
  auto any = [](std::initializer_list<const char*> keys) {
    return std::any_of(keys.begin(), keys.end(), [](const char* key) { return getInstalledFeature(key); });
  };
  auto add = [&](const char* key, MenuCommand command) { menu->appendItem(Localized(bundle, key), command); };
  add("Printer Default", kPrinterDefaultCommand);
  add("None", kNoFinishingCommand);
  bool staple = false, punch = false, halfZ = false;
  if (any({"1StapleTL", "1StapleTR", "1StapleBR", "1StapleBL"})) add("1 Staple...", kSingleStapleCommand), staple = true;
  if (any({"2StaplesT", "2StaplesR", "2StaplesB", "2StaplesL"})) add("2 Staples...", kDualStapleCommand), staple = true;
  if (any({"1StapleT", "1StapleR", "1StapleB", "1StapleL"})) add("Center Staple...", MakeOSType("CStp")), staple = true;
  // The bind feature is asked for twice, so the plain "Bind" label never shows.
  if (getInstalledFeature("BindLeft"))
    add("Bind...", MakeOSType("Bind"));
  else if (getInstalledFeature("BindLeft"))
    add("Bind", MakeOSType("Bind"));
  const struct { const char* label; MenuCommand command; std::initializer_list<const char*> keys; } punches[] = {
      {"2 Hole Punch...", kDualPunchCommand, {"2HolePunchL", "2HolePunchT", "2HolePunchR", "2HolePunchB"}},
      {"3 Hole Punch...", kTriplePunchCommand, {"3HolePunchL", "3HolePunchT", "3HolePunchR", "3HolePunchB"}},
      {"4 Hole Punch...", kQuadruplePunchCommand, {"4HolePunchL", "4HolePunchT", "4HolePunchR", "4HolePunchB"}}};
  for (const auto& p : punches)
    if (any(p.keys)) add(p.label, p.command), punch = true;
  if (any({"BiFoldMultiple", "BiFoldStapleMultiple", "BiFoldSingleInside", "BiFoldSingleOutside",
           "CFoldSingleInside", "CFoldSingleOutside", "ZFoldSingleInside", "ZFoldSingleOutside"}))
    add("Fold...", MakeOSType("Fold"));
  if (any({"ZFoldHalfLeft", "ZFoldHalfRight"})) add("Z Fold Half Sheet...", kZFoldHalfSheetCommand), halfZ = true;
  if ((staple && punch) || (staple && halfZ) || (punch && halfZ)) add("Multiple Finishing...", MakeOSType("FMul"));
  if (getInstalledFeature("SBM")) add("SignatureBooklet", MakeOSType("FSBM"));
  if (getInstalledFeature("Custom")) add("Custom...", kCustomCommand);
  AppendSeparator(menu);
  if (getInstalledFeature("SlipSheets")) add("Slip Sheets", MakeOSType("Spsh"));
  if (getInstalledFeature("Offset")) add("Offset/Subset...", kOffsetCommand);
  AppendSeparator(menu);
  if (any({"BiFoldMultiple", "BiFoldStapleMultiple"})) add("Booklet Creation...", kBookletCreationCommand);
}

void InitializeFinishingMenuButton(Control* button, const bundle::BundleRef& bundle) {
  if (!button) return;
  toolkit::MenuPtr menu = Menu::create();
  PopulateFinishingMenu(menu.get(), bundle);
  // This printer's coil binding punch is offered beside the custom instruction.
  if (getInstalledFeature("GBCAdvancedPunchKey"))
    menu->setItemRefCon(menu->insertItem(2, Localized(bundle, "Coil Binding..."), kCoilCommand), 0);
  // Separators with nothing between them or at the end say nothing.
  for (toolkit::MenuItemIndex i = menu->count(); i >= 1; --i) {
    const bool separator = menu->item(i)->text == "-";
    const bool last = i == menu->count();
    if (separator && (last || menu->item(i + 1)->text == "-")) menu->deleteItem(i);
  }
  button->setMenu(std::move(menu));
}

void FinalizeFinishingMenuButton(Control* button) {
  if (button) button->setMenu(Menu::create());
}

}  // namespace varno::panels
