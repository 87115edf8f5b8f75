// SPDX-License-Identifier: Apache-2.0
// The covers in the ticket: their dictionaries and the PPD options "VNFrontCoverSheet" and
// "VNBackCoverSheet", which tell the printer which tray each cover comes from.
#pragma once

#include <memory>

#include "model/special_pages.h"
#include "platform/print/ticket.h"
#include "platform/status.h"

namespace varno::model {

inline constexpr const char* kBookletLayoutKey = "com.varno.print.BookletLayout";

// syncDirection false writes the two cover slots into the ticket and returns the status
// of the last ticket call. True empties both slots and rebuilds them from the PPD options
// alone, so a cover read back knows only its paper source; under booklet layout the back
// cover is a copy of the front one. Returns noErr when reading.
OSStatus SyncCovers(print::Ticket& ticket, bool syncDirection, std::unique_ptr<Cover>& frontCover,
                    std::unique_ptr<Cover>& backCover);

}  // namespace varno::model
