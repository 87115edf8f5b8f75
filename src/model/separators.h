// SPDX-License-Identifier: Apache-2.0
// Transparency separators: the sheet put between transparencies (none, blank or printed)
// and the tray it comes from. The choice travels only as the PPD options
// "VNSlipSheetPrint" and "VNSlipSheetSource" of the print-settings ticket; the panel keeps
// it as an option value and a stock of which only `source` is used.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "model/stock.h"
#include "platform/bundle/bundle.h"
#include "platform/print/ticket.h"

namespace varno::model {

// The values of "VNSlipSheetPrint" through its choice map.
inline constexpr std::int32_t kNoSeparators = 1;
inline constexpr std::int32_t kBlankSeparators = 2;
inline constexpr std::int32_t kPrintedSeparators = 3;

// `*option` := the ticket's (or the printer's default) separator option; `*stock` := a new
// default stock whose `source` is the separator tray when there are separators. paramErr
// for a null argument.
OSStatus SyncSeparatorsFromTicket(const print::Ticket* ticket, std::int32_t* option,
                                  std::unique_ptr<Stock>* stock);
// Writes the option's choice and, when there are separators, the tray of `stock`; without
// separators the tray choice is left as it stands. paramErr for a null ticket or stock,
// with or without separators.
OSStatus SyncSeparatorsToTicket(print::Ticket* ticket, std::int32_t option, const Stock* stock);
// `*line` := "- Separators: <tray>" with blank or printed separators, empty otherwise; the
// caller adds a non-empty line to its summary. paramErr for a null bundle or output, which
// is then left alone.
OSStatus SeparatorSummaryLine(const bundle::BundleRef& bundle, std::int32_t option,
                              const Stock& stock, std::string* line);

}  // namespace varno::model
