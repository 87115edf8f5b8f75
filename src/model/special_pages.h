// SPDX-License-Identifier: Apache-2.0
// Special pages: pages of the job printed on a stock other than the job's own. Covers,
// inserts (blank sheets put in after a page) and exception page ranges, each with its
// ticket form. Lists of them are in special_page_lists.h.
#pragma once

#include <cstdint>
#include <memory>

#include "model/image_shift.h"
#include "model/stock.h"
#include "platform/plist/value.h"

namespace varno::model {

class SpecialPage {
 public:
  virtual ~SpecialPage() = default;

  // For an insert the page it follows (0: before the first page); for an exception the
  // first page of its range; covers ignore it.
  std::int32_t startPage() const { return startPage_; }
  void setStartPage(std::int32_t page) { startPage_ = page; }
  // The page's own stock, edited in place.
  Stock& stock() { return stock_; }
  const Stock& stock() const { return stock_; }

  // The ticket form; the caller owns it.
  virtual plist::Dictionary asTicket() const;
  virtual std::unique_ptr<SpecialPage> clone() const = 0;

 protected:
  SpecialPage() = default;
  SpecialPage(const SpecialPage&) = default;
  SpecialPage& operator=(const SpecialPage&) = default;
  // Null gives the defaults, and a stock with the null-dictionary defaults.
  explicit SpecialPage(const plist::Dictionary* ticket);

 private:
  std::int32_t startPage_ = 0;
  Stock stock_;
};

class Cover : public SpecialPage {
 public:
  Cover() = default;
  Cover(const Cover&) = default;
  Cover& operator=(const Cover&) = default;
  explicit Cover(const plist::Dictionary* ticket);

  std::int32_t sidesImaged() const { return sidesImaged_; }
  void setSidesImaged(std::int32_t sides) { sidesImaged_ = sides; }

  plist::Dictionary asTicket() const override;
  std::unique_ptr<SpecialPage> clone() const override;
  // Same printed sides and equal stocks; where a cover sits is not compared.
  bool operator==(const Cover& other) const;

 private:
  std::int32_t sidesImaged_ = 1;
};

class Insert : public SpecialPage {
 public:
  Insert() = default;
  Insert(const Insert&) = default;
  Insert& operator=(const Insert&) = default;
  explicit Insert(const plist::Dictionary* ticket);

  std::int32_t quantity() const { return quantity_; }
  void setQuantity(std::int32_t sheets) { quantity_ = sheets; }

  plist::Dictionary asTicket() const override;
  std::unique_ptr<SpecialPage> clone() const override;

 private:
  std::int32_t quantity_ = 1;
};

class ExceptionPage : public SpecialPage {
 public:
  ExceptionPage();
  ExceptionPage(const ExceptionPage&) = default;
  ExceptionPage& operator=(const ExceptionPage&) = default;
  explicit ExceptionPage(const plist::Dictionary* ticket);

  // Last page of the range, inclusive.
  std::int32_t endPage() const { return endPage_; }
  void setEndPage(std::int32_t page) { endPage_ = page; }
  // Sides imaged for the range; kUnsetValue follows the job.
  std::int32_t plex() const { return plex_; }
  void setPlex(std::int32_t plex) { plex_ = plex; }
  _IS_Options& imageShift() { return imageShift_; }
  const _IS_Options& imageShift() const { return imageShift_; }
  // Written when set but never read back; nothing in the dialogs sets it yet.
  std::int32_t halftoneScreen() const { return halftoneScreen_; }
  std::int32_t lightenDarken() const { return lightenDarken_; }
  void setLightenDarken(std::int32_t value) { lightenDarken_ = value; }

  plist::Dictionary asTicket() const override;
  std::unique_ptr<SpecialPage> clone() const override;

 private:
  std::int32_t endPage_ = 0;
  std::int32_t plex_;
  _IS_Options imageShift_;
  std::int32_t halftoneScreen_;
  std::int32_t lightenDarken_;
};

}  // namespace varno::model
