// SPDX-License-Identifier: Apache-2.0
// The getters of the built-in panels still to come; the others have their own.
// Each of these only makes and frees its context (title, kind, creator); controls, ticket
// handling and summaries come with each panel's own work.
#include <new>
#include <string>

#include "host/dialog_host.h"
#include "vocabulary/plugin_bundle.h"

namespace varno::panels {

using vocabulary::FindPlugInBundle;

namespace {

struct PlaceholderPanelContext {
  std::string title;
};

template <const char* TitleKey>
OSStatus PanelPrologue(print::PMPDEContext* context, OSType* creator, std::string* kind,
                       std::string* title, std::uint32_t* maxH, std::uint32_t* maxV) {
  auto* panel = new (std::nothrow) PlaceholderPanelContext{};
  if (!panel) return kPMInvalidPDEContext;
  panel->title = host::LocalizedPanelTitle(FindPlugInBundle(), TitleKey);
  if (context) *context = panel;
  host::ReportPanelPrologue(host::kHostSignature, panel->title, creator, kind, title, maxH, maxV);
  return noErr;
}

OSStatus PanelInitialize(print::PMPDEContext, print::PMPDEFlags*, print::PMPDERef,
                         print::ControlRef, print::Session*) { return noErr; }
OSStatus PanelSync(print::PMPDEContext, print::Session*, bool) { return noErr; }
OSStatus PanelGetSummaryText(print::PMPDEContext, plist::Array*, plist::Array*) { return noErr; }
OSStatus PanelOpen(print::PMPDEContext) { return noErr; }
OSStatus PanelClose(print::PMPDEContext) { return noErr; }
OSStatus PanelTerminate(print::PMPDEContext context, OSStatus) {
  delete static_cast<PlaceholderPanelContext*>(context);
  return noErr;
}

template <const char* TitleKey>
OSStatus GetPanelInterface(host::PanelInterfaceHolder** out) {
  return host::MakePanelInterfaceHolder(
      {.Prologue = PanelPrologue<TitleKey>, .Initialize = PanelInitialize, .Sync = PanelSync,
       .GetSummaryText = PanelGetSummaryText, .Open = PanelOpen, .Close = PanelClose,
       .Terminate = PanelTerminate},
      out);
}

constexpr char kBookletWatermark[] = "BookletWatermark";
constexpr char kJobNotes[] = "JobNotes";

}  // namespace
}  // namespace varno::panels

extern "C" varno::OSStatus GetBookletWatermarkPanelInterface(
    varno::host::PanelInterfaceHolder** out) {
  return varno::panels::GetPanelInterface<varno::panels::kBookletWatermark>(out);
}
// Exported for a panel table that names it; the host's own table does not.
extern "C" varno::OSStatus GetJobNotesPanelInterface(varno::host::PanelInterfaceHolder** out) {
  return varno::panels::GetPanelInterface<varno::panels::kJobNotes>(out);
}
