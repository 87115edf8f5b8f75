// SPDX-License-Identifier: Apache-2.0
// Image shift options: how far the image is moved on the front and back of the sheet. The
// record lives inside every exception page and is written under
// "com.varno.print.ImageShiftOptionsPage" in the page's ticket form.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/bundle/bundle.h"
#include "platform/plist/value.h"

namespace varno::model {

// The field order is the record's stored layout; the three unnamed words are kept as
// they are written, their meaning belongs to the image-shift dialog.
struct _IS_Options {
  std::uint8_t loaded = 0;     // 1 once initialised or read from a ticket
  std::int32_t word1 = 0;      // 1 after initialisation
  std::int32_t word2 = 0;      // kUnsetValue after initialisation
  std::int32_t option = 0;     // the shift option; kUnsetValue when there is none
  std::int32_t word4 = 0;
  std::int32_t inches = 0;     // 1: distances in 1/100 inch; 0: in 1/10 mm
  std::int32_t x1 = 0;
  std::int32_t x2 = 0;
  std::int32_t y1 = 0;
  std::int32_t y2 = 0;

  friend bool operator==(const _IS_Options&, const _IS_Options&) = default;
};

// The job context of an exception page's ticket form.
inline constexpr int kImageShiftPageTicket = 1;

// Marks the record loaded with no shift option, distances in inches. `dialogContext` is
// the image-shift dialog's context; no dialog is bound yet, so it is not used.
void ImageShiftInitialize(const bundle::BundleRef& bundle, void* dialogContext,
                          _IS_Options* options);

// The ticket form, with the distances in 1/100 mm ("FullPrecision" true); nullopt unless
// the record is loaded and has an option. A distance whose converted value does not fit a
// signed 32-bit number is left out and so reads back as 0.
std::optional<plist::Dictionary> ImageShiftCreateTicketFromOptions(const _IS_Options& options,
                                                                   int jobContext);

// Reads the ticket form into the record, converting full-precision distances back to the
// record's unit with truncation; a missing option is unset, missing distances are 0.
void ImageShiftSetOptionsFromTicket(_IS_Options* options, const plist::Dictionary& ticket);

}  // namespace varno::model
