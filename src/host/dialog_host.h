// SPDX-License-Identifier: Apache-2.0
// The dialog host: the one pane the printing framework sees. It loads the built-in panels,
// fans every framework call out to them in table order, switches between them with a
// selector pop-up and previous/next buttons, adds its own ticket entries and guards OK.
//
// Process-wide state (main thread only, unlocked): currentHostContext, gCurrentPrintSession
// (the shared current session, see ticket_access.h), lastTabIndex, gCurrentPanel and the
// writable PanelInterfaces table.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fax/fax_recipient_list.h"
#include "host/image_manager.h"
#include "platform/bundle/bundle.h"
#include "platform/plist/value.h"
#include "platform/print/pde_interface.h"
#include "platform/toolkit/event_target.h"
#include "platform/toolkit/window.h"

namespace varno::host {

// The same ten entry points as the plug-in's own table; a panel fills Prologue ... Terminate.
using PanelInterface = print::PDEInterfaceTable;

// What a panel getter returns through its out parameter: a holder of the panel's table.
struct PanelInterfaceHolder {
  PanelInterface* interface;
};
using PanelInterfaceGetter = OSStatus (*)(PanelInterfaceHolder** holder);

// What every panel getter does: a new holder with a copy of `entries` (slots 4 to 10) in
// `*out`, null when allocation fails; paramErr for a null `out`, else noErr.
OSStatus MakePanelInterfaceHolder(const PanelInterface& entries, PanelInterfaceHolder** out);
// A panel's title: `key` in the bundle's "Localizable" table; the key itself without a
// bundle or a text.
std::string LocalizedPanelTitle(const bundle::BundleRef& bundle, const char* key);
// What every panel Prologue reports besides its context: its creator, the host's kind, its
// title and sizes 0. Null outputs are skipped.
void ReportPanelPrologue(OSType panelCreator, const std::string& panelTitle, OSType* creator,
                         std::string* kind, std::string* title, std::uint32_t* maxH,
                         std::uint32_t* maxV);

// One loaded panel.
struct PanelRecord {
  std::unique_ptr<PanelInterface> interface;  // the host's own copy of the entry points
  print::PMPDEContext context = nullptr;      // from the panel's Prologue
  std::string title;                          // its item in the selector
  std::string kind;
  toolkit::Control* userPane = nullptr;       // made at Initialize, owned by the window
  std::int32_t tabIndex = -1;                 // 1-based; -1: loaded but never used
};

// Where the first panel (Paper/Output) keeps what the OK check reads; the panel points the
// host at its own fields, and the check creates the fax options and recipients there.
struct FirstPanelJob {
  std::int32_t* jobType = nullptr;
  std::optional<std::string>* passcode = nullptr;
  std::optional<plist::Dictionary>* faxOptions = nullptr;
  std::unique_ptr<fax::FaxRecipientList>* recipients = nullptr;
};

struct DialogHostContext {
  std::uint32_t opened = 0;
  bundle::BundleRef bundle;
  std::string title;
  print::Session* session = nullptr;
  std::vector<PanelRecord> panels;
  toolkit::Control* parentUserPane = nullptr;
  toolkit::Control* hostPane = nullptr;
  toolkit::Control* tabPopup = nullptr;
  toolkit::Control* switchPane = nullptr;
  toolkit::Control* panelArea = nullptr;
  toolkit::Control* okButton = nullptr;
  toolkit::Control* cancelButton = nullptr;
  std::int16_t panelCount = 0;
  toolkit::EventHandlerRef tabHandlerRef = nullptr;     // on the host pane, first Open
  toolkit::EventHandlerRef windowHandlerRef = nullptr;  // on the window, each Open
  toolkit::EventHandlerRef initHandlerRef = nullptr;    // on the window, Initialize
  std::uint32_t hostPaneMade = 0;
  std::unique_ptr<ImageManager> imageManager;  // made at the first Open
  FirstPanelJob* firstPanelJob = nullptr;       // set by the first panel's Initialize
};

// Signature and numbers of the host's controls in "Dialog_Host" / "Window".
inline constexpr OSType kHostSignature = MakeOSType("Vshl");
inline constexpr std::int32_t kHostPaneID = 10;
inline constexpr std::int32_t kSwitchPaneID = 15;
inline constexpr std::int32_t kSelectorID = 16;
inline constexpr std::int32_t kPanelAreaID = 17;
inline constexpr std::int32_t kUpButtonID = 1966;
inline constexpr std::int32_t kDownButtonID = 1967;
// Panel user panes are ('VSgb', tabIndex).
inline constexpr OSType kPanelPaneSignature = MakeOSType("VSgb");
inline constexpr const char* kPDEKind = "com.varno.print.pde.varnofeatureskind";
// A table entry with this name is looked up in the colour-options plug-in installed at
// <installed bundle folder>/PDEs/ColorOptions.plugin (bundle::InstalledBundleFolder), not in ours.
inline constexpr const char* kColorOptionGetterName = "GetColorOptionPanelInterface";

inline constexpr std::size_t kPanelTableCapacity = 10;
// Getter names in selector order, null-terminated, with room for ten.
extern const char* PanelInterfaces[kPanelTableCapacity + 1];

extern DialogHostContext* currentHostContext;
extern std::int32_t lastTabIndex;
extern std::int32_t gCurrentPanel;

// The host entry points, as the plug-in's PDE table holds them.
OSStatus HostPrologue(print::PMPDEContext* context, OSType* creator, std::string* kind,
                      std::string* title, std::uint32_t* maxH, std::uint32_t* maxV);
OSStatus HostInitialize(print::PMPDEContext context, print::PMPDEFlags* flags, print::PMPDERef ref,
                        print::ControlRef parentUserPane, print::Session* session);
OSStatus HostSync(print::PMPDEContext context, print::Session* session, bool syncDirection);
OSStatus HostGetSummaryText(print::PMPDEContext context, plist::Array* titles,
                            plist::Array* values);
OSStatus HostOpen(print::PMPDEContext context);
OSStatus HostClose(print::PMPDEContext context);
OSStatus HostTerminate(print::PMPDEContext context, OSStatus status);

// Loads every panel named in PanelInterfaces in order; a name whose getter or Prologue
// fails is tried again, and left out (with a line on standard error) only after many tries.
void LoadBuiltInPanels(DialogHostContext* host);
// Writes the panel shown into the ticket, refreshes the others, shows `tabIndex`.
void selectPanel(std::int32_t tabIndex, DialogHostContext* host);
OSStatus dialogHostEventHandler(toolkit::EventHandlerCallRef call, toolkit::EventRef event,
                                void* hostContext);
// Runs the host Sync on the current host with the current session.
OSStatus PDESync(void* unused, bool syncDirection);
// Registers the help book of the host's bundle; fnfErr when the bundle's folder is gone.
OSStatus RegisterMyHelpBook(DialogHostContext* host);
// Opens the bundle's help book at a page or an anchor; -50 without a help book name.
OSStatus DisplayHelp(const bundle::BundleRef& bundle, const char* page, const char* anchor);

// Points the current host at `job` when `panel` is its first panel (the panel's
// Initialize); Detach lets go of it when the host still points there (its Terminate).
void AttachFirstPanelJob(print::PMPDEContext panel, FirstPanelJob* job);
void DetachFirstPanelJob(const FirstPanelJob* job);

// What the OK check needs from the first panel. Without that panel the accessor reports
// no job type, and OK always goes on.
struct FirstPanelJobState {
  std::int32_t jobType = 0;  // 0: none known
  std::string securePrintPasscode;
  plist::Dictionary faxOptions;
  std::size_t faxRecipientCount = 0;
};
FirstPanelJobState CopyFirstPanelJobState(DialogHostContext* host);
// The OK check on that state: -9874 lets OK go on; kOKSwallowed keeps the dialog open
// after telling the user why (a secure-print job needs a passcode) or after the LAN fax
// set-up for a fax job without recipients.
inline constexpr OSStatus kOKSwallowed = -12345678;
OSStatus CheckJobBeforeOK(DialogHostContext* host, const FirstPanelJobState& state);

}  // namespace varno::host

// PDESync exported by name, for panels in other bundles that need the whole dialog written
// to or read from the ticket.
extern "C" varno::OSStatus PDESync(void* unused, bool syncDirection);
