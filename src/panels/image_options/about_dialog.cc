// SPDX-License-Identifier: Apache-2.0
#include "panels/image_options/about_dialog.h"

#include <cstdio>
#include <memory>

#include "platform/toolkit/event.h"
#include "platform/toolkit/interface_file.h"
#include "platform/toolkit/window.h"
#include "ui/panel_ui.h"

namespace varno::panels {

using ui::SetLocalizedStaticText;
using ui::kPanelUICreator;

namespace {

using toolkit::Control;
using toolkit::Window;

std::string InfoString(const bundle::BundleRef& bundle, const char* key) {
  if (!bundle) return {};
  const plist::Value* value = bundle->infoValue(key);
  const std::string* text = value ? value->asString() : nullptr;
  return text ? *text : std::string();
}

OSStatus AboutEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event, void* window) {
  if (!event || !event->is({toolkit::kEventClassCommand, toolkit::kEventCommandProcess}))
    return eventNotHandledErr;
  std::optional<toolkit::HICommand> command = event->command();
  if (!command || command->commandID != toolkit::kHICommandOK) return eventNotHandledErr;
  static_cast<Window*>(window)->quitModalLoop();
  return noErr;
}

}  // namespace

std::string AboutProductName(const bundle::BundleRef& bundle) {
  std::string name = InfoString(bundle, "CFBundleName");
  return name.empty() ? std::string("Varno Features") : name;
}

std::string AboutProductVersion(const bundle::BundleRef& bundle) {
  std::string version = InfoString(bundle, "CFBundleShortVersionString");
  return version.empty() ? InfoString(bundle, "CFBundleVersion") : version;
}

OSStatus RunModalAboutDialog(const bundle::BundleRef& bundle) {
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::string error;
  OSStatus status = toolkit::InterfaceFile::open(bundle, "AdvancedPanel", &file, &error);
  std::unique_ptr<Window> window;
  if (status == noErr) status = file->createWindow("About", &window, &error);
  if (status != noErr) {
    std::fprintf(stderr, "RunModalAboutDialog() failed (%d): %s\n", status, error.c_str());
    return status;
  }
  if (Control* name = window->findByID({kPanelUICreator, kAboutNameID}))
    name->setText(AboutProductName(bundle));
  if (Control* version = window->findByID({kPanelUICreator, kAboutVersionID}))
    SetLocalizedStaticText(bundle, "About Version", version, AboutProductVersion(bundle).c_str());

  static constexpr toolkit::EventTypeSpec kCommand[] = {
      {toolkit::kEventClassCommand, toolkit::kEventCommandProcess}};
  window->installHandler(kCommand, AboutEventHandler, window.get());
  window->setVisible(true);
  window->runModalLoop();
  return noErr;
}

}  // namespace varno::panels
