// SPDX-License-Identifier: Apache-2.0
// The panel's life: its context, reading and writing the ticket, opening its pane.
#include "panels/special_pages/special_pages_panel.h"

#include <array>
#include <cstdio>
#include <new>

#include "model/covers_sync.h"
#include "model/special_pages_ticket.h"
#include "platform/print/framework_keys.h"
#include "platform/print/ticket_access.h"
#include "platform/toolkit/interface_file.h"
#include "platform/toolkit/window.h"
#include "vocabulary/plugin_bundle.h"

namespace varno::panels {

SpecialPagesContext* specialPagesContext = nullptr;

namespace {

// The panel's own creator; the pane's controls carry the host's signature.
constexpr OSType kSpecialPagesCreator = MakeOSType("Vspg");
constexpr const char* kJobLevelStockKey = "com.varno.print.JobLevelStock";

SpecialPagesContext* AsSpecialPages(print::PMPDEContext context) {
  return static_cast<SpecialPagesContext*>(context);
}

OSStatus WriteToTicket(SpecialPagesContext* panel, print::Ticket& ticket) {
  model::WriteSpecialPageList(ticket, model::kInsertListKey, *panel->inserts);
  const OSStatus status = model::WriteSpecialPageList(ticket, model::kExceptionListKey, *panel->exceptions);
  model::SyncCovers(ticket, false, panel->frontCover, panel->backCover);
  panel->ticket = ticket;
  UpdateSpecialPagesUI(panel);
  return status;
}

OSStatus ReadFromTicket(SpecialPagesContext* panel, print::Ticket& ticket) {
  panel->ticket = ticket;
  panel->frontCover.reset();
  panel->backCover.reset();
  model::ReadInsertList(ticket, *panel->inserts);
  model::ReadExceptionList(ticket, *panel->exceptions);
  panel->jobLevelStock.reset();
  plist::Dictionary jobStock;
  const OSStatus status = ticket.getDictionary(kJobLevelStockKey, jobStock);
  if (status == noErr) panel->jobLevelStock = std::make_unique<model::Stock>(&jobStock);
  model::SyncCovers(ticket, true, panel->frontCover, panel->backCover);
  UpdateSpecialPagesSummary(panel->list, panel->frontCover.get(), panel->inserts.get(),
                            panel->exceptions.get(), panel->backCover.get());
  UpdateSpecialPagesUI(panel);
  // The status of the job's stock: a ticket the Paper/Output panel never wrote says so,
  // although everything else has been read.
  return status;
}

// Takes the pane out of the interface file's window and centres it in the parent.
OSStatus EmbedPane(SpecialPagesContext* panel) {
  std::unique_ptr<toolkit::InterfaceFile> file;
  std::unique_ptr<toolkit::Window> window;
  std::string error;
  if (OSStatus status = toolkit::InterfaceFile::open(panel->bundle, kSpecialPagesInterfaceFile, &file, &error);
      status != noErr) {
    std::printf("!! Failed to load nib from bundle.\n");
    return status;
  }
  if (OSStatus status = file->createWindow("Panel", &window, &error); status != noErr) {
    std::printf("!! Failed to create window from nib.\n");
    return status;
  }
  toolkit::Control* pane = window->findByID({kSpecialPagesSignature, kSpecialPagesPaneID});
  if (!pane || !panel->parent) {
    std::printf("!! Failed to get user pane control reference.\n");
    return errUnknownControl;
  }
  const toolkit::Rect area = panel->parent->bounds();
  const toolkit::Rect own = pane->bounds();
  const std::int32_t top = std::max(0, (area.height() - own.height()) / 2);
  const std::int32_t left = std::max(0, (area.width() - own.width()) / 2);
  pane->setBounds({top, left, top + own.height(), left + own.width()});
  if (OSStatus status = panel->parent->embed(*pane); status != noErr) return status;
  pane->setVisible(true);
  panel->pane = pane;
  return noErr;
}

void InitializeSpecialPages(SpecialPagesContext* panel) {
  toolkit::Control* pane = panel->pane;
  auto find = [pane](std::int32_t id) { return pane->findByID({kSpecialPagesSignature, id}); };
  panel->list = toolkit::AsListView(find(kSpecialPagesListID));
  panel->editButton = find(kEditSpecialPageButtonID);
  panel->deleteButton = find(kDeleteSpecialPagesButtonID);
  panel->deleteAllButton = find(kDeleteAllSpecialPagesButtonID);
  panel->undoButton = find(kUndoSpecialPagesButtonID);
  panel->moveUpButton = find(kMoveUpButtonID);
  panel->moveDownButton = find(kMoveDownButtonID);
  panel->addCoversLabel = find(kAddCoversLabelID);
  panel->addCoversButton = find(kAddCoversButtonID);
  panel->addInsertsLabel = find(kAddInsertsLabelID);
  panel->addInsertsButton = find(kAddInsertsButtonID);
  panel->addExceptionsLabel = find(kAddExceptionsLabelID);
  panel->addExceptionsButton = find(kAddExceptionsButtonID);
  panel->unavailableNote = find(kSpecialPagesNoteID);
  if (panel->list) InstallSpecialPagesListCallbacks(panel->list);
  static constexpr std::array<toolkit::EventTypeSpec, 3> kEvents{{
      {toolkit::kEventClassControl, toolkit::kEventControlHit},
      {toolkit::kEventClassControl, toolkit::kEventControlDraw},
      {toolkit::kEventClassCommand, toolkit::kEventCommandProcess},
  }};
  panel->handler = pane->installHandler(kEvents, SpecialPagesEventHandler, panel);
  UpdateSpecialPagesSummary(panel->list, panel->frontCover.get(), panel->inserts.get(),
                            panel->exceptions.get(), panel->backCover.get());
}

}  // namespace

OSStatus SpecialPagesPrologue(print::PMPDEContext* context, OSType* creator, std::string* kind,
                              std::string* title, std::uint32_t* maxH, std::uint32_t* maxV) {
  auto* panel = new (std::nothrow) SpecialPagesContext{};
  if (!panel) return kPMInvalidPDEContext;
  specialPagesContext = panel;
  panel->bundle = vocabulary::FindPlugInBundle();
  panel->title = host::LocalizedPanelTitle(panel->bundle, "SpecialPagesTitle");
  if (context) *context = panel;
  host::ReportPanelPrologue(kSpecialPagesCreator, panel->title, creator, kind, title, maxH, maxV);
  return noErr;
}

OSStatus SpecialPagesInitialize(print::PMPDEContext context, print::PMPDEFlags*, print::PMPDERef,
                                print::ControlRef parent, print::Session* session) {
  SpecialPagesContext* panel = AsSpecialPages(context);
  if (!panel) return kPMInvalidPDEContext;
  panel->parent = parent;
  panel->session = session;
  panel->exceptions = std::make_unique<model::ExceptionPageList>();
  panel->inserts = std::make_unique<model::InsertList>();
  panel->frontCover.reset();
  panel->backCover.reset();
  // A ticket without the job's stock is a fresh job, not a failure to start.
  SpecialPagesSync(panel, session, true);
  return noErr;
}

OSStatus SpecialPagesSync(print::PMPDEContext context, print::Session* session, bool syncDirection) {
  SpecialPagesContext* panel = AsSpecialPages(context);
  if (!panel || !panel->inserts || !panel->exceptions) return kPMInvalidPDEContext;
  print::Ticket ticket;
  if (OSStatus status = print::GetTicketFromSession(session, print::kPrintSettingsTicket, &ticket);
      status != noErr)
    return status;
  return syncDirection ? ReadFromTicket(panel, ticket) : WriteToTicket(panel, ticket);
}

OSStatus SpecialPagesGetSummaryText(print::PMPDEContext context, plist::Array* titles, plist::Array* values) {
  // The panel contributes no summary.
  if (titles) *titles = plist::Array();
  if (values) *values = plist::Array();
  return context ? noErr : kPMInvalidPDEContext;
}

OSStatus SpecialPagesOpen(print::PMPDEContext context) {
  SpecialPagesContext* panel = AsSpecialPages(context);
  if (!panel) return kPMInvalidPDEContext;
  if (!panel->opened) {
    if (OSStatus status = EmbedPane(panel); status != noErr) return status;
    panel->opened = 1;
    InitializeSpecialPages(panel);
  }
  UpdateSpecialPagesUI(panel);
  return noErr;
}

OSStatus SpecialPagesClose(print::PMPDEContext context) {
  return context ? noErr : kPMInvalidPDEContext;
}

OSStatus SpecialPagesTerminate(print::PMPDEContext context, OSStatus) {
  SpecialPagesContext* panel = AsSpecialPages(context);
  if (!panel) return kPMInvalidPDEContext;
  // The handler and the list's callbacks go with the pane, which the framework's window
  // owns; until then they find no live panel and do nothing.
  if (specialPagesContext == panel) specialPagesContext = nullptr;
  delete panel;
  return noErr;
}

}  // namespace varno::panels

extern "C" varno::OSStatus GetSpecialPagesPanelInterface(varno::host::PanelInterfaceHolder** out) {
  using namespace varno::panels;
  return varno::host::MakePanelInterfaceHolder(
      {.Prologue = SpecialPagesPrologue, .Initialize = SpecialPagesInitialize, .Sync = SpecialPagesSync,
       .GetSummaryText = SpecialPagesGetSummaryText, .Open = SpecialPagesOpen, .Close = SpecialPagesClose,
       .Terminate = SpecialPagesTerminate},
      out);
}
