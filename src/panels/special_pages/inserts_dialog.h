// SPDX-License-Identifier: Apache-2.0
// The inserts dialog of the Special Pages panel: blank sheets of a chosen stock put in after
// the pages a person types, or before the first page.
#pragma once

#include <cstdint>

#include "model/special_page_lists.h"
#include "model/special_pages.h"
#include "model/stock.h"
#include "platform/bundle/bundle.h"
#include "platform/status.h"

namespace varno::panels {

// Runs the "Inserts" window in add or edit mode (special_pages_ids.h). OK parses the pages,
// takes the panel's undo step and adds the new inserts to `inserts` (add) or puts them in
// place of `edited` (edit), then rebuilds the live panel's list; `*itemHit` is 1. Cancel
// sets 2 and changes nothing. A page text the parser refuses is shown in an alert and the
// dialog stays open. paramErr for a null bundle, list or result, or edit mode without
// `edited`; otherwise the status of the modal loop.
OSStatus RunModalInsertsDialog(const bundle::BundleRef& bundle, std::int32_t mode,
                               const model::Stock* jobLevelStock, model::InsertList* inserts,
                               model::Insert* edited, std::int16_t* itemHit);

}  // namespace varno::panels
