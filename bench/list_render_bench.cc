// SPDX-License-Identifier: Apache-2.0
// A long list as varno-print-dialog shows it: a toolkit list view of 1,000 to 100,000 rows
// of three short columns, mirrored into a QTreeWidget by the dialog's window renderer on
// Qt's offscreen platform, each change followed by the window's pending events (layout and
// painting). Measured: replacing every row, as the Special Pages panel rebuilds its list
// (with one row or every row selected), and a person's click on a row. Beside them, in the
// same run, the same list view with no window showing it.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QItemSelectionModel>
#include <QTreeWidget>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "platform/toolkit/list_view.h"
#include "platform/toolkit/window.h"
#include "window_renderer.h"

namespace {

using namespace varno;
using toolkit::DataBrowserItemID;

constexpr OSType kPage = MakeOSType("PAGE");
constexpr OSType kType = MakeOSType("TYPE");
constexpr OSType kAttributes = MakeOSType("ATTR");

// Rows 1..n with the texts the panel's rows have, without the panel's own cost of making
// them; shown by the Qt renderer or by nothing.
class LongList {
 public:
  LongList(std::size_t count, bool rendered) : rows_(count) {
    window_ = toolkit::Window::create({0, 0, 700, 600}, "List");
    list_ = toolkit::AsListView(
        window_->embed(toolkit::Control::create(toolkit::ControlKind::ListView, {10, 10, 590, 690})));
    list_->addColumn({kPage, "Page(s)", 80});
    list_->addColumn({kType, "Type", 100});
    list_->addColumn({kAttributes, "Attributes", 450});
    list_->setCallbacks(
        [](toolkit::ListView&, DataBrowserItemID item, toolkit::DataBrowserPropertyID property,
           std::string* text) {
          if (property == kPage) *text = std::to_string(item);
          else if (property == kType) *text = item % 2 ? "Exception" : "Insert";
          else if (property == kAttributes) *text = item % 2 ? "White" : "Quantity [1]; White";
          else return errDataBrowserPropertyNotSupported;
          return noErr;
        },
        {});
    for (std::size_t i = 0; i < count; ++i) rows_[i] = i + 1;
    list_->addItems(rows_);
    window_->setVisible(true);
    if (rendered) {
      root_ = std::make_unique<QWidget>();
      renderer_ = new qt::WindowRenderer(*window_, root_.get(), nullptr);  // owned by root_
      root_->show();
      QApplication::processEvents();
    }
  }

  toolkit::ListView& list() { return *list_; }
  const std::vector<DataBrowserItemID>& rows() const { return rows_; }
  QTreeWidget* tree() const {
    return renderer_ ? qobject_cast<QTreeWidget*>(renderer_->widgetFor(list_)) : nullptr;
  }
  // The window's pending work, as the event loop would do it before the next event.
  void settle() const {
    if (root_) QApplication::processEvents();
  }

 private:
  std::vector<DataBrowserItemID> rows_;
  std::unique_ptr<toolkit::Window> window_;  // outlives the widgets that show it
  toolkit::ListView* list_ = nullptr;
  std::unique_ptr<QWidget> root_;
  qt::WindowRenderer* renderer_ = nullptr;
};

// Every row removed and added again, the selection put back: what the panel's rebuild
// asks of the list. Arguments: rows, shown (0/1), selected rows (1, or 0 for all).
void BM_ReplaceRows(benchmark::State& state) {
  LongList list(static_cast<std::size_t>(state.range(0)), state.range(1) != 0);
  std::vector<DataBrowserItemID> selected = list.rows();
  if (state.range(2) != 0 && !selected.empty()) selected = {selected[selected.size() / 2]};
  list.list().setSelection(selected, toolkit::kDataBrowserItemsAssign);
  list.settle();
  for (auto _ : state) {
    const std::vector<DataBrowserItemID> kept = list.list().selection();
    list.list().removeItems({});
    list.list().addItems(list.rows());
    list.list().setSelection(kept, toolkit::kDataBrowserItemsAssign);
    list.settle();
  }
  state.counters["selected"] = static_cast<double>(list.list().selection().size());
}

// A person clicks one row, then another, in the shown list: Qt's selection reaches the
// toolkit, and the window shows what the toolkit then holds.
void BM_ClickRow(benchmark::State& state) {
  LongList list(static_cast<std::size_t>(state.range(0)), true);
  QTreeWidget* tree = list.tree();
  if (!tree || tree->topLevelItemCount() != state.range(0)) {
    state.SkipWithError("the list is not shown as a tree of all its rows");
    return;
  }
  const int rows[2] = {tree->topLevelItemCount() / 3, tree->topLevelItemCount() * 2 / 3};
  int next = 0;
  for (auto _ : state) {
    tree->selectionModel()->select(tree->model()->index(rows[next], 0),
                                   QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    list.settle();
    if (list.list().selection() != std::vector{list.rows()[static_cast<std::size_t>(rows[next])]}) {
      state.SkipWithError("the click did not select the row in the toolkit");
      return;
    }
    next = 1 - next;
  }
}

void Sizes(benchmark::internal::Benchmark* bench) {
  for (std::int64_t rows : {1000, 10000, 100000})
    for (std::int64_t shown : {0, 1})
      for (std::int64_t one : {1, 0}) bench->Args({rows, shown, one});
  bench->ArgNames({"rows", "shown", "one_selected"})->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_ReplaceRows)->Apply(Sizes);
BENCHMARK(BM_ClickRow)->Arg(1000)->Arg(10000)->Arg(100000)->ArgName("rows")->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  // Headless unless told otherwise, as the Qt tests run.
  if (!std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  QApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
