// SPDX-License-Identifier: Apache-2.0
// The Special Pages panel with long jobs: 1,000, 10,000 and 100,000 special pages, half
// inserts and half exception pages, as a framework shows the panel (the built bundle
// loaded by the framework driver, the panel's own table from its getter, its pane beside
// the plug-in's). Measured: the list rebuilt by Sync from the ticket, the list rebuilt by
// a button (moving an insert), Sync to the ticket, and pages added through the inserts and
// exceptions dialogs run by the automation script. Beside them, in the same run, what the
// panel cannot do without: reading, writing and adding the same pages with the model
// alone, the list control alone, and the same calls on an empty panel (0 pages).
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/dialog_host.h"
#include "model/special_page_lists.h"
#include "model/special_pages_ticket.h"
#include "panels/special_pages/page_ranges.h"
#include "panels/special_pages/special_pages_ids.h"
#include "platform/print/framework_driver.h"
#include "platform/print/session.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation_script.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/list_view.h"
#include "platform/toolkit/window.h"

namespace {

using namespace varno;

const std::filesystem::path kPlugIn = VARNO_BUILT_PLUGIN;
const std::string kSamplePPD = VARNO_SAMPLE_PPD;

// A job with `count` special pages: an insert after every even page and a one-page
// exception on every odd page, so the list alternates between the two kinds.
struct Job {
  explicit Job(std::int32_t count) {
    std::vector<model::Insert> insertPages;
    std::vector<model::ExceptionPage> exceptionPages;
    for (std::int32_t page = 1; page <= count; ++page) {
      if (page % 2 == 0) {
        model::Insert insert;
        insert.setStartPage(page);
        insertPages.push_back(insert);
      } else {
        model::ExceptionPage exception;
        exception.setStartPage(page);
        exception.setEndPage(page);
        exceptionPages.push_back(exception);
      }
    }
    inserts.add(View(insertPages));
    exceptions.add(View(exceptionPages));
  }
  template <typename Page>
  static std::vector<const model::SpecialPage*> View(const std::vector<Page>& pages) {
    std::vector<const model::SpecialPage*> view;
    for (const Page& page : pages) view.push_back(&page);
    return view;
  }
  void writeTo(print::Ticket& ticket) const {
    model::WriteSpecialPageList(ticket, model::kInsertListKey, inserts);
    model::WriteSpecialPageList(ticket, model::kExceptionListKey, exceptions);
  }

  model::InsertList inserts;
  model::ExceptionPageList exceptions;
};

// The headless Print dialog with the plug-in's pane open and its settings in the ticket,
// and the Special Pages pane opened beside it on a ticket holding `job`.
class SpecialPagesPane {
 public:
  explicit SpecialPagesPane(const Job& job) {
    window_ = toolkit::Window::create({0, 0, 700, 600}, "Print");
    window_->setVisible(true);
    parentPane_ = window_->embed(toolkit::Control::create(toolkit::ControlKind::UserPane, {0, 0, 500, 600}));
    session_ = std::make_unique<print::Session>();
    session_->setPrinterPPD(kSamplePPD);
    toolkit::Application::shared().script().clear();
    if (!check(driver_.loadFromPath(kPlugIn), "load") || !check(driver_.prologue(), "Prologue") ||
        !check(driver_.initialize(session_.get(), parentPane_), "Initialize") || !check(driver_.open(), "Open") ||
        !check(driver_.sync(false), "Sync of the plug-in's pane"))
      return;
    print::Ticket ticket = session_->printSettings();
    job.writeTo(ticket);

    auto get = driver_.bundle()->function<host::PanelInterfaceGetter>(panels::kSpecialPagesPanelGetter);
    host::PanelInterfaceHolder* holder = nullptr;
    if (!get || get(&holder) != noErr || !holder) {
      failure_ = "the bundle has no Special Pages panel getter";
      return;
    }
    table_.reset(holder->interface);
    delete holder;
    toolkit::Control* pane =
        window_->embed(toolkit::Control::create(toolkit::ControlKind::UserPane, {0, 0, 600, 700}));
    if (!check(table_->Prologue(&context_, nullptr, nullptr, nullptr, nullptr, nullptr), "panel Prologue") ||
        !check(table_->Initialize(context_, nullptr, nullptr, pane, session_.get()), "panel Initialize") ||
        !check(table_->Open(context_), "panel Open"))
      return;
    list_ = toolkit::AsListView(find(panels::kSpecialPagesListID));
    if (!list_) failure_ = "the panel has no list";
  }
  ~SpecialPagesPane() {
    if (table_ && context_) {
      table_->Close(context_);
      table_->Terminate(context_, noErr);
    }
    toolkit::Application::shared().script().clear();
  }

  const std::string& failure() const { return failure_; }
  // Sync as the framework calls it: true reads the ticket into the panel, false writes it.
  OSStatus sync(bool fromTicket) { return table_->Sync(context_, session_.get(), fromTicket); }
  toolkit::ListView& list() { return *list_; }
  toolkit::Control* find(std::int32_t id) { return window_->findByID({panels::kSpecialPagesSignature, id}); }
  OSStatus press(std::int32_t id) {
    toolkit::Control* button = find(id);
    return button ? toolkit::Click(*button) : errUnknownControl;
  }
  print::Ticket ticket() const { return session_->printSettings(); }

 private:
  bool check(OSStatus status, const char* step) {
    if (status == noErr) return true;
    failure_ = std::string(step) + " failed with status " + std::to_string(status) + " " + driver_.error();
    return false;
  }

  // Declared before the driver, which terminates the plug-in while they still exist; the
  // panel's table goes first.
  std::unique_ptr<toolkit::Window> window_;
  toolkit::Control* parentPane_ = nullptr;
  std::unique_ptr<print::Session> session_;
  print::FrameworkDriver driver_;
  std::unique_ptr<host::PanelInterface> table_;
  print::PMPDEContext context_ = nullptr;
  toolkit::ListView* list_ = nullptr;
  std::string failure_;
};

std::int32_t Pages(const benchmark::State& state) { return static_cast<std::int32_t>(state.range(0)); }

// False, and the benchmark stopped with the reason, when `pane` could not be opened.
bool Opened(benchmark::State& state, const SpecialPagesPane& pane) {
  if (pane.failure().empty()) return true;
  state.SkipWithError(pane.failure().c_str());
  return false;
}

void ReportRows(benchmark::State& state, SpecialPagesPane& pane) {
  state.counters["rows"] = static_cast<double>(pane.list().items().size());
}

// The panel already shows the job; the framework syncs it from the ticket again (as it
// does when another panel may have changed the ticket): the lists are read anew and every
// row is replaced.
void BM_ListRebuildBySync(benchmark::State& state) {
  SpecialPagesPane pane(Job(Pages(state)));
  if (!Opened(state, pane)) return;
  for (auto _ : state) {
    if (OSStatus status = pane.sync(true); status != noErr && status != kPMInvalidKey) {
      state.SkipWithError(("Sync from the ticket failed with status " + std::to_string(status)).c_str());
      return;
    }
  }
  ReportRows(state, pane);
}

// A person selects an insert in the middle of the list and moves it up, then down again:
// each press keeps the undo step, moves the insert and rebuilds the list.
void BM_ListRebuildByMoveButtons(benchmark::State& state) {
  SpecialPagesPane pane(Job(Pages(state)));
  if (!Opened(state, pane)) return;
  const std::vector<toolkit::DataBrowserItemID>& rows = pane.list().items();
  // Rows alternate exception, insert, exception...: an odd row is an insert.
  const toolkit::DataBrowserItemID insert = rows[rows.size() / 2 | 1];
  if (toolkit::SelectListItems(pane.list(), std::vector{insert}) != noErr) {
    state.SkipWithError("the insert could not be selected");
    return;
  }
  bool up = true;
  for (auto _ : state) {
    if (pane.press(up ? panels::kMoveUpButtonID : panels::kMoveDownButtonID) != noErr ||
        pane.list().selection() != std::vector{insert}) {
      state.SkipWithError("moving the selected insert failed");
      return;
    }
    up = !up;
  }
  ReportRows(state, pane);
}

// The framework collects the panel's settings: both lists are written into the ticket.
void BM_SyncToTicket(benchmark::State& state) {
  SpecialPagesPane pane(Job(Pages(state)));
  if (!Opened(state, pane)) return;
  for (auto _ : state) {
    if (OSStatus status = pane.sync(false); status != noErr && status != kPMInvalidKey) {
      state.SkipWithError(("Sync to the ticket failed with status " + std::to_string(status)).c_str());
      return;
    }
  }
  ReportRows(state, pane);
}

// The floor under the Sync from the ticket: the same ticket read into two lists by the
// model alone, no panel and no list control.
void BM_ModelReadsListsOnly(benchmark::State& state) {
  const Job job(Pages(state));
  print::Ticket ticket;
  job.writeTo(ticket);
  model::InsertList inserts;
  model::ExceptionPageList exceptions;
  for (auto _ : state) {
    model::ReadInsertList(ticket, inserts);
    model::ReadExceptionList(ticket, exceptions);
    benchmark::DoNotOptimize(inserts.count() + exceptions.count());
  }
}

// The floor under the Sync to the ticket: the same lists written by the model alone.
void BM_ModelWritesListsOnly(benchmark::State& state) {
  const Job job(Pages(state));
  print::Ticket ticket;
  for (auto _ : state) job.writeTo(ticket);
}

// The list control alone, as a rebuild uses it: every row removed, the same rows added.
void BM_ListViewReplaceRowsOnly(benchmark::State& state) {
  std::unique_ptr<toolkit::Window> window = toolkit::Window::create({0, 0, 700, 600}, "List");
  toolkit::ListView* list = toolkit::AsListView(
      window->embed(toolkit::Control::create(toolkit::ControlKind::ListView, {0, 0, 500, 600})));
  std::vector<toolkit::DataBrowserItemID> rows(static_cast<std::size_t>(Pages(state)));
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = i + 1;
  list->addItems(rows);
  for (auto _ : state) {
    list->removeItems({});
    list->addItems(rows);
  }
  state.counters["rows"] = static_cast<double>(list->items().size());
}

// Adding through the dialogs --------------------------------------------------------------

// "1,2,3,...,count": the pages a person enters into a dialog's page field.
std::string PageText(std::int32_t count) {
  std::string text;
  for (std::int32_t page = 1; page <= count; ++page) {
    if (page > 1) text += ',';
    text += std::to_string(page);
  }
  return text;
}

struct DialogOfKind {
  std::int32_t button, field;
};
constexpr DialogOfKind kInsertsDialog{panels::kAddInsertsButtonID, panels::kInsertPagesFieldID};
constexpr DialogOfKind kExceptionsDialog{panels::kAddExceptionsButtonID, panels::kExceptionPagesFieldID};

// Runs the dialog of `kind` from its button: `text` pasted (one event) or typed (one
// event a character) into the page field, then OK. Empty when every step was taken.
std::string AddThroughDialog(SpecialPagesPane& pane, DialogOfKind kind, const std::string& text, bool typed) {
  toolkit::AutomationScript& script = toolkit::Application::shared().script();
  script.clear();
  if (typed) {
    script.typeText({panels::kSpecialPagesSignature, kind.field}, text);
  } else {
    script.add("paste the pages", [&text, kind](toolkit::Window& window) {
      toolkit::Control* field = window.findByID({panels::kSpecialPagesSignature, kind.field});
      return field ? toolkit::PasteText(*field, text) : errUnknownControl;
    });
  }
  script.sendCommand(toolkit::kHICommandOK);
  if (pane.press(kind.button) != noErr) return "the dialog's button could not be pressed";
  if (script.pending() != 0) return "the dialog closed before its steps were taken";
  if (!script.failures().empty()) return script.failures().front();
  return {};
}

// Puts the panel back as it was before the dialog, with the panel's own Undo.
bool Undo(SpecialPagesPane& pane, std::size_t rows) {
  return pane.press(panels::kUndoSpecialPagesButtonID) == noErr && pane.list().items().size() == rows;
}

// A person prepares a long job on an empty panel: all its pages entered at once, in one
// dialog. Arguments: pages (99,999 at most: a page number has five digits), dialog (0
// inserts, 1 exceptions), entry (0 pasted, 1 typed key by key). Undo after each run
// empties the panel again, outside the timing.
void BM_AddThroughDialog(benchmark::State& state) {
  const std::int32_t pages = Pages(state);
  const DialogOfKind kind = state.range(1) == 0 ? kInsertsDialog : kExceptionsDialog;
  const bool typed = state.range(2) != 0;
  const std::string text = PageText(pages);
  SpecialPagesPane pane(Job(0));
  if (!Opened(state, pane)) return;
  for (auto _ : state) {
    if (std::string failure = AddThroughDialog(pane, kind, text, typed); !failure.empty()) {
      state.SkipWithError(failure.c_str());
      return;
    }
    state.PauseTiming();
    const bool added = pane.list().items().size() == static_cast<std::size_t>(pages);
    const bool undone = Undo(pane, 0);
    state.ResumeTiming();
    if (!added || !undone) {
      state.SkipWithError("the dialog did not add every page, or Undo did not take them out");
      return;
    }
  }
  state.counters["characters"] = static_cast<double>(text.size());
}

// What a person does next with a long job: one more insert, after page 1, on a panel
// already holding the job's pages (0: an empty panel, the dialog's own cost).
void BM_AddOneInsertThroughDialog(benchmark::State& state) {
  SpecialPagesPane pane(Job(Pages(state)));
  if (!Opened(state, pane)) return;
  const std::size_t rows = pane.list().items().size();
  const std::string text = "1";
  for (auto _ : state) {
    if (std::string failure = AddThroughDialog(pane, kInsertsDialog, text, false); !failure.empty()) {
      state.SkipWithError(failure.c_str());
      return;
    }
    state.PauseTiming();
    const bool added = pane.list().items().size() == rows + 1;
    const bool undone = Undo(pane, rows);
    state.ResumeTiming();
    if (!added || !undone) {
      state.SkipWithError("the dialog did not add the insert, or Undo did not take it out");
      return;
    }
  }
  ReportRows(state, pane);
}

// The floor under adding through the inserts dialog: the same text read by the page
// parser and the same inserts added to an empty list, with the model alone.
void BM_ModelParsesAndAddsOnly(benchmark::State& state) {
  const std::string text = PageText(Pages(state));
  for (auto _ : state) {
    std::vector<panels::PageRange> ranges;
    if (panels::CreatePageRangesBySeparatingString(text.c_str(), false, &ranges) != noErr) {
      state.SkipWithError("the page text was refused");
      return;
    }
    std::vector<model::Insert> made(ranges.size());
    std::vector<const model::SpecialPage*> added;
    for (std::size_t i = 0; i < made.size(); ++i) {
      made[i].setStartPage(ranges[i].firstPage);
      added.push_back(&made[i]);
    }
    model::InsertList inserts;
    inserts.add(added);
    benchmark::DoNotOptimize(inserts.count());
  }
}

// 1,000, 10,000 and 99,999 pages pasted into either dialog, and typed into the inserts dialog.
void DialogPageCounts(benchmark::internal::Benchmark* bench) {
  for (std::int64_t pages : {1000, 10000, 99999})
    for (std::int64_t dialog : {0, 1}) bench->Args({pages, dialog, 0});
  // Key by key costs the whole field's length a key; 99,999 pages would take minutes.
  for (std::int64_t pages : {1000, 10000}) bench->Args({pages, 0, 1});
  bench->ArgNames({"pages", "exceptions", "typed"})->Unit(benchmark::kMicrosecond);
}

// 0 (an empty panel), 1,000, 10,000 and 100,000 special pages.
void PageCounts(benchmark::internal::Benchmark* bench) {
  bench->Arg(0)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(BM_ListRebuildBySync)->Apply(PageCounts);
BENCHMARK(BM_ListRebuildByMoveButtons)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_SyncToTicket)->Apply(PageCounts);
BENCHMARK(BM_ModelReadsListsOnly)->Apply(PageCounts);
BENCHMARK(BM_ModelWritesListsOnly)->Apply(PageCounts);
BENCHMARK(BM_ListViewReplaceRowsOnly)->Apply(PageCounts);
BENCHMARK(BM_AddThroughDialog)->Apply(DialogPageCounts);
BENCHMARK(BM_AddOneInsertThroughDialog)->Apply(PageCounts);
BENCHMARK(BM_ModelParsesAndAddsOnly)->Arg(1000)->Arg(10000)->Arg(99999)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
