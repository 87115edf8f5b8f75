// SPDX-License-Identifier: Apache-2.0
// Stock: one paper stock (size, type, colour, weight and the finer attributes set by the
// stock-description dialogs) and its ticket form, the dictionary in which a stock travels
// inside the print-settings ticket under whatever key its owner chooses.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "platform/plist/value.h"

namespace varno::model {

class Stock {
 public:
  // The page-size code that means "custom": width and length hold the size.
  static constexpr std::int32_t kCustomSize = 75;
  // Media types and colours that the setters tie together.
  static constexpr std::int32_t kTransparencyType = 2;
  static constexpr std::int32_t kWhiteColor = 1;
  static constexpr std::int32_t kClearColor = 6;

  // Every field at its default; `color` is White (1).
  Stock();
  // From the ticket form. Null gives the defaults except that `color` is unset, so that a
  // stock read from a ticket without "Color" writes no "Color" back.
  explicit Stock(const plist::Dictionary* ticket);
  explicit Stock(const plist::Dictionary& ticket) : Stock(&ticket) {}
  Stock(const Stock&) = default;
  virtual ~Stock() = default;

  // Copies through the setters, so the custom-size and transparency rules apply to the
  // result: a source of type Transparency always yields a Clear stock.
  Stock& operator=(const Stock& other);
  // Exact on the numbers, case-insensitive on the five strings.
  bool operator==(const Stock& other) const;

  // The ticket form; the caller owns it. Unset numbers and empty strings are left out,
  // except "Type", which is always written.
  plist::Dictionary asTicket() const;

  std::int32_t size() const { return size_; }
  std::int32_t width() const { return width_; }
  std::int32_t length() const { return length_; }
  std::int32_t type() const { return type_; }
  const std::string& customType() const { return customType_; }
  std::int32_t color() const { return color_; }
  const std::string& customColor() const { return customColor_; }
  std::int32_t modulus() const { return modulus_; }
  std::int32_t punched() const { return punched_; }
  std::int32_t weight() const { return weight_; }
  const std::string& description() const { return description_; }
  std::int32_t sidesCoated() const { return sidesCoated_; }
  std::int32_t coatingType() const { return coatingType_; }
  std::int32_t finish() const { return finish_; }
  std::int32_t grain() const { return grain_; }
  const std::string& customName() const { return customName_; }
  std::uint8_t customNameOnly() const { return customNameOnly_; }
  const std::string& comment() const { return comment_; }
  std::int32_t source() const { return source_; }

  // Any size but custom drops the custom width and length.
  void setSize(std::int32_t value);
  // A set width or length makes the stock custom-size.
  void setWidth(std::int32_t value);
  void setLength(std::int32_t value);
  // Transparencies are always Clear.
  void setType(std::int32_t value);
  void setColor(std::int32_t value) { color_ = value; }
  void setModulus(std::int32_t value) { modulus_ = value; }
  void setPunched(std::int32_t value) { punched_ = value; }
  void setWeight(std::int32_t value) { weight_ = value; }
  void setSidesCoated(std::int32_t value) { sidesCoated_ = value; }
  void setCoatingType(std::int32_t value) { coatingType_ = value; }
  void setFinish(std::int32_t value) { finish_ = value; }
  void setGrain(std::int32_t value) { grain_ = value; }
  void setSource(std::int32_t value) { source_ = value; }
  void setCustomNameOnly(std::uint8_t value) { customNameOnly_ = value; }
  void setCustomType(std::string value) { customType_ = std::move(value); }
  void setCustomColor(std::string value) { customColor_ = std::move(value); }
  void setDescription(std::string value) { description_ = std::move(value); }
  void setCustomName(std::string value) { customName_ = std::move(value); }
  void setComment(std::string value) { comment_ = std::move(value); }

 private:
  std::int32_t size_;
  std::int32_t width_;
  std::int32_t length_;
  std::int32_t type_;
  std::string customType_;
  std::int32_t color_;
  std::string customColor_;
  std::int32_t modulus_;
  std::int32_t punched_;
  std::int32_t weight_;
  std::string description_;
  std::int32_t sidesCoated_;
  std::int32_t coatingType_;
  std::int32_t finish_;
  std::int32_t grain_;
  std::string customName_;
  std::uint8_t customNameOnly_;
  std::string comment_;
  std::int32_t source_;
};

}  // namespace varno::model
