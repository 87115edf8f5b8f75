// SPDX-License-Identifier: Apache-2.0
// The Special Pages panel: the job's covers, inserts and exception page ranges in one list,
// with buttons to add, edit, delete, reorder and undo. It is not one of the dialog host's
// own panels: a printing framework loads it by its getter and shows it as a pane of its
// own. Its whole state is one context record; a pointer to the live one is kept for the
// list callbacks and the inserts and exceptions dialogs.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/dialog_host.h"
#include "model/special_page_lists.h"
#include "model/special_pages.h"
#include "model/stock.h"
#include "panels/special_pages/special_pages_ids.h"
#include "platform/bundle/bundle.h"
#include "platform/print/session.h"
#include "platform/print/ticket.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/event_target.h"
#include "platform/toolkit/list_view.h"

namespace varno::panels {

struct SpecialPagesContext {
  bundle::BundleRef bundle;
  std::string title;
  toolkit::Control* pane = nullptr;    // the panel's own pane, inside parent
  toolkit::Control* parent = nullptr;  // what the framework gave Initialize
  print::Session* session = nullptr;
  std::uint8_t opened = 0;
  std::unique_ptr<model::ExceptionPageList> exceptions;
  std::unique_ptr<model::InsertList> inserts;
  std::unique_ptr<model::Cover> frontCover;
  std::unique_ptr<model::Cover> backCover;
  // One level of undo: what the last change started from; all null when there is none.
  std::unique_ptr<model::ExceptionPageList> undoExceptions;
  std::unique_ptr<model::InsertList> undoInserts;
  std::unique_ptr<model::Cover> undoFrontCover;
  std::unique_ptr<model::Cover> undoBackCover;
  toolkit::ListView* list = nullptr;
  toolkit::Control* deleteButton = nullptr;
  toolkit::Control* deleteAllButton = nullptr;
  toolkit::Control* editButton = nullptr;
  toolkit::Control* undoButton = nullptr;
  toolkit::Control* moveUpButton = nullptr;
  toolkit::Control* moveDownButton = nullptr;
  // The job's own stock as the Paper/Output panel wrote it: new special pages start there.
  std::unique_ptr<model::Stock> jobLevelStock;
  print::Ticket ticket;  // the print-settings ticket of the last Sync
  toolkit::Control* addCoversLabel = nullptr;
  toolkit::Control* addCoversButton = nullptr;
  toolkit::Control* addInsertsLabel = nullptr;
  toolkit::Control* addInsertsButton = nullptr;
  toolkit::Control* addExceptionsLabel = nullptr;
  toolkit::Control* addExceptionsButton = nullptr;
  toolkit::Control* unavailableNote = nullptr;
  toolkit::EventHandlerRef handler = nullptr;
};

// The live panel (main thread only), or null.
extern SpecialPagesContext* specialPagesContext;

// The entry points of the panel's interface table.
OSStatus SpecialPagesPrologue(print::PMPDEContext* context, OSType* creator, std::string* kind,
                              std::string* title, std::uint32_t* maxH, std::uint32_t* maxV);
OSStatus SpecialPagesInitialize(print::PMPDEContext context, print::PMPDEFlags* flags,
                                print::PMPDERef ref, print::ControlRef parent,
                                print::Session* session);
// false: the panel's pages into the ticket; true: from it.
OSStatus SpecialPagesSync(print::PMPDEContext context, print::Session* session, bool syncDirection);
OSStatus SpecialPagesGetSummaryText(print::PMPDEContext context, plist::Array* titles,
                                    plist::Array* values);
OSStatus SpecialPagesOpen(print::PMPDEContext context);
OSStatus SpecialPagesClose(print::PMPDEContext context);
OSStatus SpecialPagesTerminate(print::PMPDEContext context, OSStatus status);

// Keeps the covers and lists as they are now as the one undo step, replacing any earlier.
void SaveUndoState(SpecialPagesContext* panel);
// Puts back what SaveUndoState kept and forgets it. paramErr without a panel, noErr
// otherwise (also when there was nothing to undo).
OSStatus PerformUndo(SpecialPagesContext* panel);
// Remove the selected items, or every special page, from the panel (no question asked).
void DeleteSelectedSpecialPages(SpecialPagesContext* panel);
void DeleteAllSpecialPages(SpecialPagesContext* panel);

// Rebuilds the list: front cover, then inserts and exceptions by page (an exception before
// an insert on its first page), then back cover; the selection is kept where its pages
// still are. The dialogs call it after changing the lists.
void UpdateSpecialPagesSummary(toolkit::ListView* list, const model::Cover* front,
                               const model::InsertList* inserts,
                               const model::ExceptionPageList* exceptions,
                               const model::Cover* back);
// Enables the edit, delete, move and undo buttons for the live panel's selection.
void UpdateSpecialPagesCommandButtons();
// Whether inserts and exceptions can be added under the layout of the last Sync.
void UpdateSpecialPagesUI(SpecialPagesContext* panel);
// The text of the list's attributes column for `page`.
std::string CopySpecialPageSummary(const model::SpecialPage* page, const bundle::BundleRef& bundle);

// The shorter one-line descriptions the dialogs show.
std::string CreateInsertAttributesDescription(const bundle::BundleRef& bundle, const model::Insert& insert);
std::string CreateExceptionAttributesDescription(const bundle::BundleRef& bundle,
                                                 const model::ExceptionPage& exception);

// Gives the list its cell texts and tells the buttons of selection changes; the callbacks
// work on the live panel.
void InstallSpecialPagesListCallbacks(toolkit::ListView* list);

// Opens the covers, inserts or exceptions dialog in edit mode on `page`, by its kind, and
// rebuilds the list unless the dialog was cancelled. Returns the dialog's status.
OSStatus EditSpecialPage(SpecialPagesContext* panel, model::SpecialPage* page);

// The pane's event handler: the buttons by control ID; see the .cc for the table.
OSStatus SpecialPagesEventHandler(toolkit::EventHandlerCallRef call, toolkit::EventRef event,
                                  void* panelContext);

}  // namespace varno::panels
