// SPDX-License-Identifier: Apache-2.0
#include "panels/special_pages/special_page_dialog.h"

#include <array>
#include <cstdio>

#include "panels/special_pages/special_pages_panel.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/character_set.h"
#include "platform/toolkit/event.h"
#include "platform/toolkit/interface_file.h"
#include "ui/panel_ui.h"

namespace varno::panels {

OSStatus CreateSpecialPageWindow(const bundle::BundleRef& bundle, const char* name, const char* caller,
                                 std::unique_ptr<toolkit::Window>* window) {
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::string error;
  OSStatus status = toolkit::InterfaceFile::open(bundle, kSpecialPagesInterfaceFile, &file, &error);
  if (status == noErr) status = file->createWindow(name, window, &error);
  if (status != noErr) std::fprintf(stderr, "%s() failed (%d): %s\n", caller, status, error.c_str());
  return status;
}

void LimitToPageCharacters(toolkit::Control* field) {
  static const toolkit::CharacterSet kPageCharacters("0123456789, -");
  ui::LimitInputLengthAndCharacters(field, 0, 0, &kPageCharacters);
}

void InstallPageStockMenu(const bundle::BundleRef& bundle, ui::JobContext jobContext, model::Stock* stock,
                          toolkit::Control* button, toolkit::Control* summary,
                          ui::StockMenuCommandEventHandlerData* data) {
  *data = {bundle, stock, nullptr, jobContext, summary, button};
  ui::PopulateStockMenu(button->menu(), bundle, jobContext, data);
  static constexpr std::array<toolkit::EventTypeSpec, 2> kMenuEvents{{
      {toolkit::kEventClassCommand, toolkit::kEventCommandProcess},
      {toolkit::kEventClassMenu, toolkit::kEventMenuEnableItems},
  }};
  button->installHandler(kMenuEvents, ui::StockMenuCommandEventHandler, data);
}

void InstallSpecialPageDialogHandler(toolkit::Window& window, toolkit::EventHandlerUPP handler, void* dialog) {
  static constexpr std::array<toolkit::EventTypeSpec, 4> kEvents{{
      {toolkit::kEventClassCommand, toolkit::kEventCommandProcess},
      {ui::kPanelUICreator, ui::kInputStateEmpty},
      {ui::kPanelUICreator, ui::kInputStateTooShort},
      {ui::kPanelUICreator, ui::kInputStateLongEnough},
  }};
  window.installHandler(kEvents, handler, dialog);
}

std::optional<OSStatus> HandleSpecialPageDialogButton(toolkit::MenuCommand command, toolkit::Window& window,
                                                      const bundle::BundleRef& bundle, const char* helpPage,
                                                      std::int16_t* result, const std::function<bool()>& accept) {
  switch (command) {
    case toolkit::kHICommandOK:
      if (toolkit::Control* ok = window.defaultButton(); ok && !ok->isEnabled()) {
        toolkit::SysBeep(10);
      } else if (accept()) {
        *result = kSpecialPageDialogOK;
        window.quitModalLoop();
      }
      return noErr;
    case toolkit::kHICommandCancel:
      *result = kSpecialPageDialogCancelled;
      window.quitModalLoop();
      return noErr;
    case kSpecialPagesHelpCommand:
      ui::DisplayHelpPage(bundle, helpPage);
      return noErr;
    default:
      return std::nullopt;
  }
}

void RebuildLiveSpecialPagesList() {
  if (SpecialPagesContext* panel = specialPagesContext)
    UpdateSpecialPagesSummary(panel->list, panel->frontCover.get(), panel->inserts.get(), panel->exceptions.get(),
                              panel->backCover.get());
}

}  // namespace varno::panels
