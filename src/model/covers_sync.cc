// SPDX-License-Identifier: Apache-2.0
#include "model/covers_sync.h"

#include <cstdint>

#include "model/special_pages_ticket.h"
#include "vocabulary/ppd_access.h"

namespace varno::model {

using vocabulary::PPDGetCurrent;
using vocabulary::PPDGetTicketValueForChoiceOrDefault;
using vocabulary::PPDSetCurrentChoice;
using vocabulary::PPDSetCurrentChoiceForTicketValue;

namespace {

constexpr const char* kFrontCoverSheet = "VNFrontCoverSheet";
constexpr const char* kBackCoverSheet = "VNBackCoverSheet";
constexpr const char* kNoCoverChoice = "None";
// What the choice lookup gives for "None" and for any choice without a tray.
constexpr std::int32_t kNoTray = -1;

void WriteCoverSheet(print::Ticket& ticket, const char* keyword, const Cover* cover) {
  if (cover)
    PPDSetCurrentChoiceForTicketValue(&ticket, keyword, cover->stock().source());
  else
    PPDSetCurrentChoice(&ticket, keyword, kNoCoverChoice);
}

std::unique_ptr<Cover> CoverFromSheet(const print::Ticket& ticket, const char* keyword) {
  std::int32_t tray = kNoTray;
  PPDGetTicketValueForChoiceOrDefault(PPDGetCurrent(), &ticket, keyword, &tray);
  if (tray == kNoTray) return nullptr;
  auto cover = std::make_unique<Cover>();
  cover->stock().setSource(tray);
  return cover;
}

}  // namespace

OSStatus SyncCovers(print::Ticket& ticket, bool syncDirection, std::unique_ptr<Cover>& frontCover,
                    std::unique_ptr<Cover>& backCover) {
  const bool booklet = ticket.boolean(kBookletLayoutKey).value_or(false);
  if (!syncDirection) {
    WriteCoverSheet(ticket, kFrontCoverSheet, frontCover.get());
    WriteCover(ticket, kFrontCoverKey, frontCover.get());
    // A booklet's back cover is the other half of its front cover's sheet, so the front
    // cover's tray serves both.
    if (!booklet) WriteCoverSheet(ticket, kBackCoverSheet, backCover.get());
    return WriteCover(ticket, kBackCoverKey, backCover.get());
  }

  frontCover.reset();
  backCover.reset();
  frontCover = CoverFromSheet(ticket, kFrontCoverSheet);
  if (booklet) {
    if (frontCover) backCover = std::make_unique<Cover>(*frontCover);
    return noErr;
  }
  backCover = CoverFromSheet(ticket, kBackCoverSheet);
  return noErr;
}

}  // namespace varno::model
