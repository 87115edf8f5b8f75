// SPDX-License-Identifier: Apache-2.0
#include "host/dialog_host.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <new>
#include <span>

#include "fax/lan_fax_setup.h"
#include "host/host_ticket_entries.h"
#include "platform/print/ticket_access.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/interface_file.h"
#include "vocabulary/device_profile.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/plugin_bundle.h"
#include "vocabulary/ppd_access.h"


namespace varno::host {

using print::GetCurrentPrintSession;
using print::GetTicketFromSession;
using print::SetCurrentPrintSession;
using vocabulary::InstalledFeatures;
using vocabulary::LoadInstallableOptions;
using vocabulary::PPDCloseCurrent;
using vocabulary::PPDGetCurrent;
using vocabulary::PPDIsFromMaker;
using vocabulary::UnloadInstallableOptions;
using vocabulary::VNPFinalize;
using vocabulary::VNPInitialize;
using vocabulary::gBundle;
using vocabulary::kPlugInBundleIdentifier;

const char* PanelInterfaces[kPanelTableCapacity + 1] = {
    "GetPaperOutputPanelInterface",
    "GetImageOptionsPanelInterface",
    "GetBookletWatermarkPanelInterface",
    "GetAdvancedPanelInterface",
    nullptr,
};

DialogHostContext* currentHostContext = nullptr;
std::int32_t lastTabIndex = 0;
std::int32_t gCurrentPanel = 0;

namespace {

using toolkit::Control;
using toolkit::ControlID;
using toolkit::EventTypeSpec;

constexpr OSType kHostCreator = MakeOSType("pde ");
constexpr std::uint32_t kMaxH = 540;
constexpr std::uint32_t kMaxV = 491;
constexpr const char* kInterfaceFileName = "Dialog_Host";
constexpr const char* kInterfaceWindowName = "Window";
constexpr OSType kHostEventClass = MakeOSType("VPDE");
constexpr std::uint32_t kHostEventBundleChanged = MakeOSType("VbdC");
constexpr OSType kBundleProperty = MakeOSType("MBND");
constexpr toolkit::MenuCommand kHelpCommand = MakeOSType("help");
constexpr toolkit::MenuCommand kNextCommand = MakeOSType("VFup");
constexpr toolkit::MenuCommand kPreviousCommand = MakeOSType("VFdn");
constexpr std::int32_t kSecurePrintJobType = 6;
constexpr int kMinPasscodeLength = 1;
constexpr int kMaxPasscodeLength = 12;
// A name that fails is tried again, as a panel may load at a later try; after this many
// tries it is left out and the next name loaded, so a missing panel can neither hang the
// dialog nor take the panels after it away.
constexpr int kPanelLoadAttempts = 100;

constexpr std::array<EventTypeSpec, 2> kInitializeEvents{{
    {toolkit::kEventClassControl, toolkit::kEventControlHit},
    {toolkit::kEventClassCommand, toolkit::kEventCommandProcess},
}};
// Commands already reach the handler installed at Initialize on the same window; taking
// them here as well would move two panels per 'VFup'. Only the host's own class is taken.
constexpr std::array<EventTypeSpec, 1> kOpenEvents{{
    {kHostEventClass, kHostEventBundleChanged},
}};
constexpr std::array<EventTypeSpec, 2> kHostPaneEvents{{
    {toolkit::kEventClassControl, toolkit::kEventControlHit},
    {toolkit::kEventClassMenu, toolkit::kEventMenuEnableItems},
}};

// The per-product hooks; this product adds nothing but the current session.
OSStatus VarnoPDEProlog() { return noErr; }
OSStatus VarnoPDEInitialize(print::Session* session) {
  SetCurrentPrintSession(session);
  return noErr;
}
OSStatus VarnoPDESync() { return noErr; }
OSStatus VarnoPDEGetSummaryText() { return noErr; }
OSStatus VarnoPDEOpen() { return noErr; }
OSStatus VarnoPDEClose() { return noErr; }
OSStatus VarnoPDETerminate() {
  SetCurrentPrintSession(nullptr);
  return noErr;
}

DialogHostContext* AsHost(print::PMPDEContext context) {
  return static_cast<DialogHostContext*>(context);
}

bool Shown(const PanelRecord& panel) { return panel.tabIndex != -1; }

void SyncPanel(PanelRecord& panel, print::Session* session, bool direction) {
  if (panel.interface && panel.interface->Sync) panel.interface->Sync(panel.context, session, direction);
}

// Next wraps from the last panel to the first, previous from the first to the last.
std::int32_t NextTab(const DialogHostContext* host) {
  const std::int32_t next = lastTabIndex + 1;
  return next > host->panelCount ? 1 : next;
}
std::int32_t PreviousTab(const DialogHostContext* host) {
  const std::int32_t previous = lastTabIndex - 1;
  return previous < 1 ? host->panelCount : previous;
}

void SelectAndShow(std::int32_t tabIndex, DialogHostContext* host) {
  selectPanel(tabIndex, host);
  if (host->tabPopup) host->tabPopup->setValue(tabIndex);
}

void RemoveHandler(toolkit::EventHandlerRef* handler, OSStatus* status = nullptr) {
  if (!*handler) return;
  const OSStatus result = toolkit::RemoveEventHandler(*handler);
  if (status) *status = result;
  *handler = nullptr;
}

// Replaces successive "%d" in `format` by the numbers, in order.
std::string FormatIntegers(std::string format, std::initializer_list<int> numbers) {
  for (int number : numbers) {
    const std::size_t at = format.find("%d");
    if (at == std::string::npos) break;
    format.replace(at, 2, std::to_string(number));
  }
  return format;
}

std::string Localized(const bundle::BundleRef& bundle, const char* key) {
  if (!bundle) return key;
  return bundle->localizedString(key, "Localizable", "STRING NOT FOUND");
}

}  // namespace

void LoadBuiltInPanels(DialogHostContext* host) {
  if (!host || !host->bundle) return;
  std::size_t position = 0;
  int attempts = 0;
  while (position < kPanelTableCapacity && host->panels.size() < kPanelTableCapacity) {
    const char* name = PanelInterfaces[position];
    if (!name) break;
    bundle::BundleRef source = host->bundle;
    if (std::strcmp(name, kColorOptionGetterName) == 0)
      if (std::optional<std::filesystem::path> installed = bundle::InstalledBundleFolder())
        source = bundle::Bundle::Open(*installed / "PDEs/ColorOptions.plugin");

    PanelRecord record;
    bool loaded = false;
    auto getter = source ? source->function<PanelInterfaceGetter>(name) : nullptr;
    PanelInterfaceHolder* holder = nullptr;
    if (getter && getter(&holder) == noErr && holder && holder->interface &&
        holder->interface->Prologue) {
      OSType creator = 0;
      std::uint32_t maxH = 0, maxV = 0;
      if (holder->interface->Prologue(&record.context, &creator, &record.kind, &record.title,
                                      &maxH, &maxV) == noErr) {
        record.interface = std::make_unique<PanelInterface>(*holder->interface);
        loaded = true;
      }
    }
    if (holder) {
      delete holder->interface;
      delete holder;
    }
    if (loaded) {
      if (host->panels.empty()) host->panels.reserve(kPanelTableCapacity);
      record.tabIndex = ++host->panelCount;
      host->panels.push_back(std::move(record));
    } else if (++attempts < kPanelLoadAttempts) {
      continue;  // the same name again: a panel may fail for a moment and then load
    } else {
      std::fprintf(stderr, "The panel %s did not load after %d tries and is left out.\n", name,
                   kPanelLoadAttempts);
    }
    ++position;
    attempts = 0;
  }
}

OSStatus HostPrologue(print::PMPDEContext* context, OSType* creator, std::string* kind,
                      std::string* title, std::uint32_t* maxH, std::uint32_t* maxV) {
  VarnoPDEProlog();
  auto* host = new (std::nothrow) DialogHostContext{};
  if (!host) return kPMInvalidPDEContext;
  host->bundle = bundle::Bundle::FindByIdentifier(kPlugInBundleIdentifier);
  gCurrentPanel = 0;
  if (context) *context = host;
  currentHostContext = host;
  gBundle = host->bundle;
  if (maxH) *maxH = kMaxH;
  if (maxV) *maxV = kMaxV;
  host->title = host->bundle ? host->bundle->localizedString("Dialog Host", "Localizable", "Dialog Host")
                             : std::string("Dialog Host");
  if (title) *title = host->title;
  if (kind) *kind = kPDEKind;
  if (creator) *creator = kHostCreator;
  LoadBuiltInPanels(host);
  return noErr;
}

OSStatus HostInitialize(print::PMPDEContext context, print::PMPDEFlags* flags, print::PMPDERef ref,
                        print::ControlRef parentUserPane, print::Session* session) {
  VarnoPDEInitialize(session);
  DialogHostContext* host = AsHost(context);
  if (!host || !session) return kPMInvalidPDEContext;

  ppd_file_t* ppd = PPDGetCurrent();
  if (!ppd || !PPDIsFromMaker(ppd)) {
    std::fputs("Initialize()::GetTicketFromSession() failed.\n", stderr);
    return kPMInvalidPDEContext;
  }
  VNPInitialize();
  LoadInstallableOptions(ppd, InstalledFeatures);

  // The panes live in the dialog window that the framework's pane belongs to.
  toolkit::Window* window = parentUserPane ? parentUserPane->window() : nullptr;
  if (!window) return paramErr;
  host->parentUserPane = parentUserPane;
  host->session = session;
  host->okButton = window->defaultButton();
  host->cancelButton = window->cancelButton();
  if (host->okButton) {
    // Lets code that only has the button find the bundle again.
    bundle::Bundle* raw = host->bundle.get();
    Control::Bytes bytes(sizeof raw);
    std::memcpy(bytes.data(), &raw, sizeof raw);
    host->okButton->setProperty(MakeOSType("VPDE"), kBundleProperty, std::move(bytes));
  }

  RegisterMyHelpBook(host);  // help stays reachable through the bundle's own pages if this fails
  host->initHandlerRef = window->installHandler(kInitializeEvents, dialogHostEventHandler, host);

  std::unique_ptr<toolkit::InterfaceFile> file;
  if (toolkit::InterfaceFile::open(host->bundle, kInterfaceFileName, &file) != noErr) {
    std::fputs("Initialize()::CreateNibReferenceWithCFBundle() failed.\n", stderr);
    return kPMInvalidPDEContext;
  }
  std::unique_ptr<toolkit::Window> layout;
  if (file->createWindow(kInterfaceWindowName, &layout) != noErr) {
    std::fputs("Initialize()::CreateWindowFromNib() failed.\n", stderr);
    return kPMInvalidPDEContext;
  }
  Control* area = layout->findByID({kHostSignature, kPanelAreaID});
  const toolkit::Rect paneBounds = area ? area->bounds() : toolkit::Rect{};

  for (PanelRecord& panel : host->panels) {
    if (!Shown(panel)) continue;
    Control* pane = window->embed(Control::create(toolkit::ControlKind::UserPane, paneBounds));
    if (!pane) continue;  // stays in the selector, but is never initialised
    pane->setID({kPanelPaneSignature, panel.tabIndex});
    pane->setVisible(false);
    panel.userPane = pane;
    if (panel.interface->Initialize)
      panel.interface->Initialize(panel.context, flags, ref, pane, session);
  }
  return HostSync(host, session, true);
}

void selectPanel(std::int32_t tabIndex, DialogHostContext* host) {
  if (!host) return;
  for (PanelRecord& panel : host->panels)
    if (panel.tabIndex == lastTabIndex) SyncPanel(panel, host->session, false);
  if (host->switchPane) host->switchPane->setVisible(false);
  for (PanelRecord& panel : host->panels) {
    if (panel.tabIndex != lastTabIndex && Shown(panel)) SyncPanel(panel, host->session, true);
    Control* pane = panel.userPane;
    if (panel.tabIndex == tabIndex) {
      if (pane) {
        pane->setActive(true);
        pane->setVisible(true);
        pane->setEnabled(true);
      }
      gCurrentPanel = tabIndex;
    } else if (pane) {
      pane->setEnabled(false);
      pane->setVisible(false);
      pane->setActive(false);
    }
  }
  lastTabIndex = tabIndex;
  if (host->switchPane) host->switchPane->setVisible(true);
}

OSStatus HostSync(print::PMPDEContext context, print::Session* session, bool syncDirection) {
  OSStatus result = VarnoPDESync();
  DialogHostContext* host = AsHost(context);
  if (!host || !session) return kPMInvalidPrintSession;
  PanelRecord* current = nullptr;
  for (PanelRecord& panel : host->panels) {
    if (!Shown(panel)) continue;
    if (panel.tabIndex == lastTabIndex) {
      current = &panel;
      continue;
    }
    SyncPanel(panel, session, syncDirection);
  }
  // The panel on screen goes last, so what the user sees wins.
  if (current) SyncPanel(*current, session, syncDirection);
  if (syncDirection) return result;

  print::Ticket ticket;
  if (GetTicketFromSession(session, print::kPrintSettingsTicket, &ticket) != noErr) return result;
  return WriteHostTicketEntries(ticket, CopyClientInformation());
}

OSStatus HostGetSummaryText(print::PMPDEContext context, plist::Array* titles,
                            plist::Array* values) {
  const OSStatus result = VarnoPDEGetSummaryText();
  DialogHostContext* host = AsHost(context);
  if (!host) return kPMInvalidPDEContext;
  for (PanelRecord& panel : host->panels)
    if (Shown(panel) && panel.interface->GetSummaryText)
      panel.interface->GetSummaryText(panel.context, titles, values);
  return result;
}

OSStatus HostOpen(print::PMPDEContext context) {
  const OSStatus result = VarnoPDEOpen();
  DialogHostContext* host = AsHost(context);
  if (!host) return kPMInvalidPDEContext;
  toolkit::Window* window = host->parentUserPane ? host->parentUserPane->window() : nullptr;
  if (window && !host->windowHandlerRef)
    host->windowHandlerRef = window->installHandler(kOpenEvents, dialogHostEventHandler, host);

  if (host->opened) {
    for (PanelRecord& panel : host->panels)
      if (Shown(panel) && panel.interface->Open) panel.interface->Open(panel.context);
  } else {
    host->opened = 1;
    if (!host->imageManager && host->bundle)
      host->imageManager = std::make_unique<ImageManager>(host->bundle->resourcesPath());
    if (!host->hostPaneMade && host->parentUserPane) {
      std::unique_ptr<toolkit::InterfaceFile> file;
      std::unique_ptr<toolkit::Window> layout;
      if (toolkit::InterfaceFile::open(host->bundle, kInterfaceFileName, &file) == noErr &&
          file->createWindow(kInterfaceWindowName, &layout) == noErr) {
        Control* pane = layout->findByID({kHostSignature, kHostPaneID});
        if (pane) {
          const toolkit::Rect parent = host->parentUserPane->bounds();
          toolkit::Rect bounds = pane->bounds();
          // Centred, but never left of the parent's edge; vertically without that clamp.
          const std::int32_t left = std::max(0, parent.width() / 2 - bounds.width() / 2);
          const std::int32_t top = parent.height() / 2 - bounds.height() / 2;
          bounds = {top, left, top + bounds.height(), left + bounds.width()};
          if (toolkit::EmbedAndShowControl(pane, host->parentUserPane) == noErr) {
            pane->setBounds(bounds);
            host->hostPane = pane;
          }
        }
      }
      host->hostPaneMade = 1;  // also after a failure: it would fail again
    }

    if (host->hostPane) {
      host->tabPopup = host->hostPane->findByID({kHostSignature, kSelectorID});
      if (toolkit::Menu* menu = host->tabPopup ? host->tabPopup->menu() : nullptr) {
        for (toolkit::MenuItemIndex i = menu->count(); i > 0; --i) menu->deleteItem(i);
        for (const PanelRecord& panel : host->panels)
          if (Shown(panel))
            menu->insertItem(static_cast<toolkit::MenuItemIndex>(panel.tabIndex - 1), panel.title);
        host->tabPopup->setMaximum(menu->count());
      }
      host->tabHandlerRef =
          host->hostPane->installHandler(kHostPaneEvents, dialogHostEventHandler, host);
      const std::pair<std::int32_t, const char*> pictures[] = {
          {kUpButtonID, "ButtonGraphic_MacUp.png"}, {kDownButtonID, "ButtonGraphic_MacDown.png"}};
      for (const auto& [id, picture] : pictures) {
        Control* button = host->hostPane->findByID({kHostSignature, id});
        if (!button) continue;
        if (host->imageManager && host->imageManager->picture(picture))
          button->setPictureName(picture);
        else
          button->setVisible(false);  // a button without its picture would be blank
      }
      host->switchPane = host->hostPane->findByID({kHostSignature, kSwitchPaneID});
      host->panelArea = host->hostPane->findByID({kHostSignature, kPanelAreaID});
    }

    for (PanelRecord& panel : host->panels) {
      if (!Shown(panel)) continue;
      if (panel.userPane && host->panelArea) {
        const toolkit::Rect area = host->panelArea->bounds();
        const toolkit::Rect own = panel.userPane->bounds();
        const std::int32_t left = area.width() / 2 - own.width() / 2;
        const std::int32_t top = area.height() / 2 - own.height() / 2;
        if (host->panelArea->embed(*panel.userPane) == noErr)
          panel.userPane->setBounds({top, left, top + own.height(), left + own.width()});
      }
      if (panel.interface->Open) panel.interface->Open(panel.context);
    }
  }

  if (gCurrentPanel == 0) gCurrentPanel = 1;
  SelectAndShow(gCurrentPanel, host);
  return result;
}

OSStatus HostClose(print::PMPDEContext context) {
  const OSStatus result = VarnoPDEClose();
  DialogHostContext* host = AsHost(context);
  if (!host) return kPMInvalidPDEContext;
  for (PanelRecord& panel : host->panels)
    if (Shown(panel) && panel.interface->Close) panel.interface->Close(panel.context);
  RemoveHandler(&host->windowHandlerRef);
  return result;
}

OSStatus HostTerminate(print::PMPDEContext context, OSStatus status) {
  OSStatus result = VarnoPDETerminate();
  DialogHostContext* host = AsHost(context);
  if (!host) return kPMInvalidPDEContext;
  for (PanelRecord& panel : host->panels)
    if (Shown(panel) && panel.interface->Terminate) panel.interface->Terminate(panel.context, status);
  RemoveHandler(&host->windowHandlerRef, &result);
  RemoveHandler(&host->tabHandlerRef, &result);
  RemoveHandler(&host->initHandlerRef, &result);
  if (currentHostContext == host) currentHostContext = nullptr;
  delete host;
  PPDCloseCurrent();
  UnloadInstallableOptions();
  VNPFinalize();
  return result;
}

void AttachFirstPanelJob(print::PMPDEContext panel, FirstPanelJob* job) {
  DialogHostContext* host = currentHostContext;
  if (host && job && !host->panels.empty() && host->panels.front().context == panel)
    host->firstPanelJob = job;
}

void DetachFirstPanelJob(const FirstPanelJob* job) {
  DialogHostContext* host = currentHostContext;
  if (host && job && host->firstPanelJob == job) host->firstPanelJob = nullptr;
}

FirstPanelJobState CopyFirstPanelJobState(DialogHostContext* host) {
  FirstPanelJobState state;
  const FirstPanelJob* job = host ? host->firstPanelJob : nullptr;
  if (!job || !job->jobType) return state;
  state.jobType = *job->jobType;
  if (job->passcode && *job->passcode) state.securePrintPasscode = **job->passcode;
  if (job->faxOptions && *job->faxOptions) state.faxOptions = **job->faxOptions;
  if (job->recipients && *job->recipients)
    state.faxRecipientCount = static_cast<std::size_t>((*job->recipients)->count());
  return state;
}

OSStatus CheckJobBeforeOK(DialogHostContext* host, const FirstPanelJobState& state) {
  if (state.jobType == kFaxJobType) {
    if (state.faxRecipientCount > 0) return eventNotHandledErr;
    // The user presses OK again once recipients are set; nothing re-checks the set-up.
    FirstPanelJob* job = host ? host->firstPanelJob : nullptr;
    if (job && job->faxOptions && job->recipients) {
      if (!*job->faxOptions) *job->faxOptions = plist::Dictionary{};
      if (!*job->recipients) *job->recipients = std::make_unique<fax::FaxRecipientList>();
      fax::RunModalLANFaxSetup(host->bundle, **job->faxOptions, job->recipients->get());
    } else {
      plist::Dictionary faxOptions = state.faxOptions;
      fax::RunModalLANFaxSetup(host ? host->bundle : nullptr, faxOptions, nullptr);
    }
    return kOKSwallowed;
  }
  if (state.jobType != kSecurePrintJobType) return eventNotHandledErr;
  if (static_cast<int>(state.securePrintPasscode.size()) >= kMinPasscodeLength)
    return eventNotHandledErr;
  const bundle::BundleRef bundle = host ? host->bundle : nullptr;
  toolkit::CFUserNotificationDisplayNotice(
      0, toolkit::kCFUserNotificationCautionAlertLevel,
      Localized(bundle, "Invalid Secure Print Passcode Header"),
      FormatIntegers(Localized(bundle, "Invalid Secure Print Passcode Message"),
                     {kMinPasscodeLength, kMaxPasscodeLength}));
  return kOKSwallowed;
}

OSStatus RegisterMyHelpBook(DialogHostContext* host) {
  if (!host || !host->bundle) return fnfErr;
  return toolkit::AHRegisterHelpBook(host->bundle->path());
}

OSStatus DisplayHelp(const bundle::BundleRef& bundle, const char* page, const char* anchor) {
  const plist::Value* name = bundle ? bundle->infoValue("CFBundleHelpBookName") : nullptr;
  const std::string* book = name ? name->asString() : nullptr;
  if (!book) return paramErr;
  if (anchor && !page) return toolkit::AHLookupAnchor(*book, anchor);
  return toolkit::AHGotoPage(*book, page ? page : "", anchor ? anchor : "");
}

OSStatus dialogHostEventHandler(toolkit::EventHandlerCallRef, toolkit::EventRef event,
                                void* hostContext) {
  auto* host = static_cast<DialogHostContext*>(hostContext);
  if (!event || !host) return eventNotHandledErr;

  if (event->is({toolkit::kEventClassControl, toolkit::kEventControlHit})) {
    Control* control = event->control();
    if (!control || control->id().signature != kHostSignature) return eventNotHandledErr;
    switch (control->id().id) {
      case kSelectorID:
        if (control->value() == lastTabIndex) return eventNotHandledErr;
        selectPanel(control->value(), host);
        return noErr;
      case kDownButtonID:
        SelectAndShow(NextTab(host), host);
        return noErr;
      case kUpButtonID:
        SelectAndShow(PreviousTab(host), host);
        return noErr;
      default:
        return eventNotHandledErr;
    }
  }
  if (event->is({toolkit::kEventClassCommand, toolkit::kEventCommandProcess})) {
    std::optional<toolkit::HICommand> command = event->command();
    if (!command) return eventNotHandledErr;
    if (command->commandID == kHelpCommand) return DisplayHelp(host->bundle, nullptr, nullptr);
    if (command->commandID == kNextCommand) {
      SelectAndShow(NextTab(host), host);
      return eventNotHandledErr;  // other handlers still hear the command
    }
    if (command->commandID == kPreviousCommand) {
      SelectAndShow(PreviousTab(host), host);
      return eventNotHandledErr;
    }
    if (command->commandID == toolkit::kHICommandOK)
      return CheckJobBeforeOK(host, CopyFirstPanelJobState(host));
    return eventNotHandledErr;
  }
  if (event->is({toolkit::kEventClassMenu, toolkit::kEventMenuEnableItems})) return noErr;
  return eventNotHandledErr;
}

OSStatus PDESync(void*, bool syncDirection) {
  return HostSync(currentHostContext, GetCurrentPrintSession(), syncDirection);
}

OSStatus MakePanelInterfaceHolder(const PanelInterface& entries, PanelInterfaceHolder** out) {
  if (!out) return paramErr;
  *out = nullptr;
  auto* holder = new (std::nothrow) PanelInterfaceHolder{};
  auto* table = holder ? new (std::nothrow) PanelInterface(entries) : nullptr;
  if (!table) {
    delete holder;
    return noErr;
  }
  holder->interface = table;
  *out = holder;
  return noErr;
}

std::string LocalizedPanelTitle(const bundle::BundleRef& bundle, const char* key) {
  return bundle ? bundle->localizedString(key, "Localizable", key) : std::string(key);
}

void ReportPanelPrologue(OSType panelCreator, const std::string& panelTitle, OSType* creator,
                         std::string* kind, std::string* title, std::uint32_t* maxH,
                         std::uint32_t* maxV) {
  if (creator) *creator = panelCreator;
  if (kind) *kind = kPDEKind;
  if (title) *title = panelTitle;
  if (maxH) *maxH = 0;
  if (maxV) *maxV = 0;
}

}  // namespace varno::host

extern "C" varno::OSStatus PDESync(void* unused, bool syncDirection) {
  return varno::host::PDESync(unused, syncDirection);
}
