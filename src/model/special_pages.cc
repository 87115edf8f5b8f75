// SPDX-License-Identifier: Apache-2.0
#include "model/special_pages.h"

#include "platform/print/ticket_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::model {

using print::CFDictionarySetNumber;
using print::CFIndex;
using print::GetCFIndexFromCFDictionary;
using print::WriteTicketValue;
using vocabulary::kUnsetValue;

namespace {

constexpr const char* kStartPageKey = "StartPage";
constexpr const char* kStockKey = "Stock";
// Covers and exception ranges share this key for their printed sides.
constexpr const char* kSidesImagedKey = "SidesImaged";
constexpr const char* kQuantityKey = "Quantity";
constexpr const char* kEndPageKey = "EndPage";
constexpr const char* kImageShiftKey = "com.varno.print.ImageShiftOptionsPage";
constexpr const char* kHalftoneScreenKey = "HalftoneScreen";
constexpr const char* kLightenDarkenKey = "LightenDarken";

void ReadNumber(const plist::Dictionary* ticket, const char* key, std::int32_t* field) {
  GetCFIndexFromCFDictionary(ticket, key, field);
}

void WriteNumberIfSet(plist::Dictionary& ticket, const char* key, std::int32_t value) {
  if (value != kUnsetValue) WriteTicketValue(ticket, key, value);
}

Stock StockFrom(const plist::Dictionary* ticket) {
  std::optional<plist::Dictionary> stock;
  if (ticket) stock = ticket->getDictionary(kStockKey);
  return Stock(stock ? &*stock : nullptr);
}

}  // namespace

SpecialPage::SpecialPage(const plist::Dictionary* ticket) : stock_(StockFrom(ticket)) {
  ReadNumber(ticket, kStartPageKey, &startPage_);
}

plist::Dictionary SpecialPage::asTicket() const {
  plist::Dictionary ticket;
  WriteTicketValue(ticket, kStartPageKey, startPage_);
  ticket.set(kStockKey, stock_.asTicket());
  return ticket;
}

Cover::Cover(const plist::Dictionary* ticket) : SpecialPage(ticket) {
  ReadNumber(ticket, kSidesImagedKey, &sidesImaged_);
}

plist::Dictionary Cover::asTicket() const {
  plist::Dictionary ticket = SpecialPage::asTicket();
  WriteTicketValue(ticket, kSidesImagedKey, sidesImaged_);
  return ticket;
}

std::unique_ptr<SpecialPage> Cover::clone() const { return std::make_unique<Cover>(*this); }

bool Cover::operator==(const Cover& other) const {
  return sidesImaged_ == other.sidesImaged_ && stock() == other.stock();
}

Insert::Insert(const plist::Dictionary* ticket) : SpecialPage(ticket) {
  ReadNumber(ticket, kQuantityKey, &quantity_);
}

plist::Dictionary Insert::asTicket() const {
  plist::Dictionary ticket = SpecialPage::asTicket();
  CFDictionarySetNumber<CFIndex>(ticket, kQuantityKey, quantity_);
  return ticket;
}

std::unique_ptr<SpecialPage> Insert::clone() const { return std::make_unique<Insert>(*this); }

ExceptionPage::ExceptionPage()
    : plex_(kUnsetValue), halftoneScreen_(kUnsetValue), lightenDarken_(kUnsetValue) {
  ImageShiftInitialize(nullptr, nullptr, &imageShift_);
}

ExceptionPage::ExceptionPage(const plist::Dictionary* ticket)
    : SpecialPage(ticket),
      plex_(kUnsetValue),
      halftoneScreen_(kUnsetValue),
      lightenDarken_(kUnsetValue) {
  ImageShiftInitialize(nullptr, nullptr, &imageShift_);
  if (!ticket) return;
  ReadNumber(ticket, kEndPageKey, &endPage_);
  if (std::optional<plist::Dictionary> shift = ticket->getDictionary(kImageShiftKey))
    ImageShiftSetOptionsFromTicket(&imageShift_, *shift);
  ReadNumber(ticket, kSidesImagedKey, &plex_);
  ReadNumber(ticket, kLightenDarkenKey, &lightenDarken_);
}

plist::Dictionary ExceptionPage::asTicket() const {
  plist::Dictionary ticket = SpecialPage::asTicket();
  WriteTicketValue(ticket, kEndPageKey, endPage_);
  if (std::optional<plist::Dictionary> shift =
          ImageShiftCreateTicketFromOptions(imageShift_, kImageShiftPageTicket))
    ticket.set(kImageShiftKey, std::move(*shift));
  WriteNumberIfSet(ticket, kSidesImagedKey, plex_);
  WriteNumberIfSet(ticket, kHalftoneScreenKey, halftoneScreen_);
  WriteNumberIfSet(ticket, kLightenDarkenKey, lightenDarken_);
  return ticket;
}

std::unique_ptr<SpecialPage> ExceptionPage::clone() const {
  return std::make_unique<ExceptionPage>(*this);
}

}  // namespace varno::model
