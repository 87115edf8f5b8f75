// SPDX-License-Identifier: Apache-2.0
// The exceptions dialog of the Special Pages panel: page ranges printed on another stock or
// with other 2-sided printing than the rest of the job.
#pragma once

#include <cstdint>

#include "model/special_page_lists.h"
#include "model/special_pages.h"
#include "model/stock.h"
#include "platform/bundle/bundle.h"
#include "platform/print/ticket.h"
#include "platform/status.h"

namespace varno::panels {

// Runs the "Exceptions" window in add or edit mode (special_pages_ids.h). OK parses the
// ranges; one that starts below page 1 is refused. When all are valid it takes the panel's
// undo step and merges them into `exceptions` (add) or puts them in place of `edited`
// (edit), then rebuilds the live panel's list; `*itemHit` is 1. Cancel sets 2 and changes
// nothing. A refused text is shown in an alert and the dialog stays open. paramErr for a
// null bundle, list or result, or edit mode without `edited`; otherwise the status of the
// modal loop.
OSStatus RunModalExceptionsDialog(const bundle::BundleRef& bundle, std::int32_t mode,
                                  const model::Stock* jobLevelStock, const print::Ticket* ticket,
                                  model::ExceptionPageList* exceptions, model::ExceptionPage* edited,
                                  std::int16_t* itemHit);

}  // namespace varno::panels
