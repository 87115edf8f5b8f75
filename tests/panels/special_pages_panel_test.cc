// SPDX-License-Identifier: Apache-2.0
// The Special Pages panel driven as a person uses it: its list, its buttons and their
// enabling, deleting and undoing, moving inserts, and what reaches the ticket.
#include <gtest/gtest.h>

#include "model/special_page_lists.h"
#include "model/special_pages_ticket.h"
#include "vocabulary/setting_maps.h"
#include "special_pages_fixture.h"

namespace varno::testing {
namespace {

using namespace panels;

model::Insert InsertAfter(std::int32_t page, std::int32_t quantity = 1) {
  model::Insert insert;
  insert.setStartPage(page);
  insert.setQuantity(quantity);
  return insert;
}

model::ExceptionPage Exception(std::int32_t first, std::int32_t last, std::int32_t plex = vocabulary::kUnsetValue) {
  model::ExceptionPage page;
  page.setStartPage(first);
  page.setEndPage(last);
  page.setPlex(plex);
  return page;
}

// Puts inserts and exceptions into the ticket, as an earlier dialog left them.
auto WithPages(std::vector<model::Insert> inserts, std::vector<model::ExceptionPage> exceptions) {
  return [=](print::Ticket& ticket) {
    model::InsertList insertList;
    model::ExceptionPageList exceptionList;
    for (const model::Insert& insert : inserts) {
      const model::SpecialPage* page = &insert;
      insertList.add({&page, 1});
    }
    for (const model::ExceptionPage& exception : exceptions) {
      const model::SpecialPage* page = &exception;
      exceptionList.add({&page, 1});
    }
    model::WriteSpecialPageList(ticket, model::kInsertListKey, insertList);
    model::WriteSpecialPageList(ticket, model::kExceptionListKey, exceptionList);
  };
}

using SpecialPagesPanel = SpecialPagesPane;

TEST_F(SpecialPagesPanel, ListsPagesInPageOrderWithExceptionsBeforeInsertsOnTheirFirstPage) {
  OpenPane(WithPages({InsertAfter(3, 2), InsertAfter(0)}, {Exception(3, 4, 2), Exception(7, 7)}));
  EXPECT_EQ(Rows(), (std::vector<std::string>{"Before Page 1|Insert|Quantity [1]; White",
                                              "3-4|Exception|2-Sided (Long Edge); White",
                                              "3|Insert|Quantity [2]; White", "7|Exception|White"}));
  EXPECT_FALSE(Enabled(kEditSpecialPageButtonID));
  EXPECT_TRUE(Enabled(kDeleteAllSpecialPagesButtonID));
  EXPECT_FALSE(Enabled(kUndoSpecialPagesButtonID));
}

}  // namespace
}  // namespace varno::testing
