// SPDX-License-Identifier: Apache-2.0
// The Special Pages panel of the built plug-in, loaded by its getter as a framework loads a
// second pane, beside the plug-in's own pane in a headless Print dialog.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "panels/special_pages/special_pages_ids.h"
#include "platform/print/ticket_access.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/list_view.h"
#include "support/plugin_dialog.h"

namespace varno::testing {

class SpecialPagesPane : public PlugInDialogTest {
 protected:
  void TearDown() override {
    if (table_ && context_) {
      table_->Close(context_);
      table_->Terminate(context_, noErr);
    }
    toolkit::HeadlessAlerts().clear();
    PlugInDialogTest::TearDown();
  }

  // Opens the plug-in's pane, writes it into the ticket (`prepare` may change the ticket
  // first), then opens the Special Pages pane beside it.
  void OpenPane(const std::function<void(print::Ticket&)>& prepare = {}) {
    OpenDialog();
    ASSERT_EQ(driver_.sync(false), noErr);
    if (prepare) {
      print::Ticket ticket = session_->printSettings();
      prepare(ticket);
    }
    table_ = PanelTable(panels::kSpecialPagesPanelGetter);
    ASSERT_TRUE(table_);
    pane_ = window_->embed(toolkit::Control::create(toolkit::ControlKind::UserPane, {0, 0, 600, 700}));
    ASSERT_EQ(table_->Prologue(&context_, nullptr, nullptr, nullptr, nullptr, nullptr), noErr);
    ASSERT_EQ(table_->Initialize(context_, nullptr, nullptr, pane_, session_.get()), noErr);
    ASSERT_EQ(table_->Open(context_), noErr);
    list_ = toolkit::AsListView(Find(panels::kSpecialPagesListID));
    ASSERT_NE(list_, nullptr);
  }

  toolkit::Control* Find(std::int32_t id) { return window_->findByID({panels::kSpecialPagesSignature, id}); }
  bool Enabled(std::int32_t id) {
    toolkit::Control* control = Find(id);
    return control && control->isEffectivelyEnabled();
  }
  OSStatus Sync(bool fromTicket) { return table_->Sync(context_, session_.get(), fromTicket); }

  // The list as rows of its three columns, "PAGE|TYPE|ATTR".
  std::vector<std::string> Rows() {
    std::vector<std::string> rows;
    for (toolkit::DataBrowserItemID item : list_->items()) {
      std::string row;
      for (OSType column : {panels::kPageColumn, panels::kTypeColumn, panels::kAttributesColumn}) {
        std::string text;
        list_->cellText(item, column, &text);
        row += (row.empty() ? "" : "|") + text;
      }
      rows.push_back(row);
    }
    return rows;
  }
  // Selects the rows at these positions, in this order.
  void Select(std::initializer_list<std::size_t> rows) {
    std::vector<toolkit::DataBrowserItemID> items;
    for (std::size_t row : rows) items.push_back(list_->items().at(row));
    ASSERT_EQ(toolkit::SelectListItems(*list_, items, toolkit::kDataBrowserItemsAssign), noErr);
  }
  OSStatus Press(std::int32_t id) {
    toolkit::Control* button = Find(id);
    return button ? toolkit::Click(*button) : errUnknownControl;
  }

  std::unique_ptr<host::PanelInterface> table_;
  print::PMPDEContext context_ = nullptr;
  toolkit::Control* pane_ = nullptr;
  toolkit::ListView* list_ = nullptr;
};

}  // namespace varno::testing
