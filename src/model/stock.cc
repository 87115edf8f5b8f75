// SPDX-License-Identifier: Apache-2.0
#include "model/stock.h"

#include <string_view>

#include "platform/plist/text.h"
#include "platform/print/ticket_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::model {

using print::CFDictionaryGetNumber;
using print::CFDictionarySetNumber;
using print::CFIndex;
using vocabulary::kUnsetValue;

namespace {

// Tab stocks of these types come in sets, so only they carry a modulus.
constexpr std::int32_t kModulusTypes[] = {4, 6};

// "kCoatingType" and "kGrain" are spelled with the "k" in stored tickets; the driver and
// every saved setting look them up that way.
constexpr const char* kSizeKey = "Size";
constexpr const char* kWidthKey = "Width";
constexpr const char* kLengthKey = "Length";
constexpr const char* kTypeKey = "Type";
constexpr const char* kCustomTypeKey = "CustomType";
constexpr const char* kModulusKey = "Modulus";
constexpr const char* kColorKey = "Color";
constexpr const char* kCustomColorKey = "CustomColor";
constexpr const char* kWeightKey = "Weight";
constexpr const char* kPunchedKey = "Punched";
constexpr const char* kDescriptionKey = "Description";
constexpr const char* kSidesCoatedKey = "SidesCoated";
constexpr const char* kCoatingTypeKey = "kCoatingType";
constexpr const char* kFinishKey = "Finish";
constexpr const char* kGrainKey = "kGrain";
constexpr const char* kCustomNameKey = "CustomName";
constexpr const char* kCustomNameOnlyKey = "CustomNameOnly";
constexpr const char* kCommentKey = "CustomComment";
constexpr const char* kSourceKey = "Source";

bool ReadNumber(const plist::Dictionary& ticket, std::string_view key, std::int32_t* field) {
  return CFDictionaryGetNumber<CFIndex>(ticket, key, field);
}

// A present key that holds no string is skipped: the field keeps its default rather than
// holding something that is not text.
void ReadString(const plist::Dictionary& ticket, std::string_view key, std::string* field) {
  if (std::optional<std::string> text = ticket.getString(key)) *field = std::move(*text);
}

void WriteNumberIfSet(plist::Dictionary& ticket, std::string_view key, std::int32_t value) {
  if (value != kUnsetValue) CFDictionarySetNumber<CFIndex>(ticket, key, value);
}

void WriteStringIfAny(plist::Dictionary& ticket, std::string_view key, const std::string& text) {
  if (!text.empty()) ticket.set(key, text);
}

}  // namespace

Stock::Stock()
    : size_(kUnsetValue),
      width_(kUnsetValue),
      length_(kUnsetValue),
      type_(kUnsetValue),
      color_(kWhiteColor),
      modulus_(kUnsetValue),
      punched_(kUnsetValue),
      weight_(kUnsetValue),
      sidesCoated_(kUnsetValue),
      coatingType_(1),
      finish_(kUnsetValue),
      grain_(kUnsetValue),
      customNameOnly_(0),
      source_(kUnsetValue) {}

Stock::Stock(const plist::Dictionary* ticket) : Stock() {
  color_ = kUnsetValue;
  if (!ticket) return;
  // Fields are set directly, not through the setters: the ticket form is taken as it
  // stands, and width and length are only believed for a custom size.
  std::int32_t size = kUnsetValue;
  if (ReadNumber(*ticket, kSizeKey, &size)) {
    size_ = size;
    if (size == kCustomSize) {
      ReadNumber(*ticket, kWidthKey, &width_);
      ReadNumber(*ticket, kLengthKey, &length_);
    }
  }
  ReadNumber(*ticket, kTypeKey, &type_);
  ReadString(*ticket, kCustomTypeKey, &customType_);
  for (std::int32_t type : kModulusTypes)
    if (type_ == type) ReadNumber(*ticket, kModulusKey, &modulus_);
  ReadNumber(*ticket, kColorKey, &color_);
  ReadString(*ticket, kCustomColorKey, &customColor_);
  ReadNumber(*ticket, kWeightKey, &weight_);
  ReadNumber(*ticket, kPunchedKey, &punched_);
  ReadString(*ticket, kDescriptionKey, &description_);
  if (ReadNumber(*ticket, kSidesCoatedKey, &sidesCoated_))
    ReadNumber(*ticket, kCoatingTypeKey, &coatingType_);
  ReadNumber(*ticket, kFinishKey, &finish_);
  ReadNumber(*ticket, kGrainKey, &grain_);
  ReadString(*ticket, kCustomNameKey, &customName_);
  if (std::optional<bool> only = ticket->getBoolean(kCustomNameOnlyKey))
    customNameOnly_ = *only ? 1 : 0;
  ReadString(*ticket, kCommentKey, &comment_);
  ReadNumber(*ticket, kSourceKey, &source_);
}

Stock& Stock::operator=(const Stock& other) {
  if (this == &other) return *this;
  // The order matters: size before width and length, colour before type.
  setSize(other.size_);
  setWidth(other.width_);
  setLength(other.length_);
  color_ = other.color_;
  customColor_ = other.customColor_;
  setType(other.type_);
  customType_ = other.customType_;
  modulus_ = other.modulus_;
  weight_ = other.weight_;
  punched_ = other.punched_;
  description_ = other.description_;
  sidesCoated_ = other.sidesCoated_;
  coatingType_ = other.coatingType_;
  finish_ = other.finish_;
  grain_ = other.grain_;
  customName_ = other.customName_;
  customNameOnly_ = other.customNameOnly_;
  comment_ = other.comment_;
  source_ = other.source_;
  return *this;
}

bool Stock::operator==(const Stock& other) const {
  // coatingType is compared even while sidesCoated is unset, though it is then never
  // written: two such stocks differ here yet have the same ticket form.
  if (size_ != other.size_ || width_ != other.width_ || length_ != other.length_ ||
      color_ != other.color_ || type_ != other.type_ || modulus_ != other.modulus_ ||
      weight_ != other.weight_ || punched_ != other.punched_ ||
      sidesCoated_ != other.sidesCoated_ || coatingType_ != other.coatingType_ ||
      finish_ != other.finish_ || grain_ != other.grain_ ||
      customNameOnly_ != other.customNameOnly_)
    return false;
  if (!plist::EqualCaseInsensitive(customColor_, other.customColor_) ||
      !plist::EqualCaseInsensitive(customType_, other.customType_) ||
      !plist::EqualCaseInsensitive(description_, other.description_) ||
      !plist::EqualCaseInsensitive(customName_, other.customName_) ||
      !plist::EqualCaseInsensitive(comment_, other.comment_))
    return false;
  return source_ == other.source_;
}

plist::Dictionary Stock::asTicket() const {
  plist::Dictionary ticket;
  if (size_ != kUnsetValue) {
    CFDictionarySetNumber<CFIndex>(ticket, kSizeKey, size_);
    if (size_ == kCustomSize) {
      CFDictionarySetNumber<CFIndex>(ticket, kWidthKey, width_);
      CFDictionarySetNumber<CFIndex>(ticket, kLengthKey, length_);
    }
  }
  // Always present, unset or not: readers of the ticket expect a type in every stock.
  CFDictionarySetNumber<CFIndex>(ticket, kTypeKey, type_);
  WriteStringIfAny(ticket, kCustomTypeKey, customType_);
  WriteNumberIfSet(ticket, kModulusKey, modulus_);
  WriteNumberIfSet(ticket, kColorKey, color_);
  WriteStringIfAny(ticket, kCustomColorKey, customColor_);
  WriteNumberIfSet(ticket, kWeightKey, weight_);
  WriteNumberIfSet(ticket, kPunchedKey, punched_);
  WriteStringIfAny(ticket, kDescriptionKey, description_);
  if (sidesCoated_ != kUnsetValue) {
    CFDictionarySetNumber<CFIndex>(ticket, kSidesCoatedKey, sidesCoated_);
    CFDictionarySetNumber<CFIndex>(ticket, kCoatingTypeKey, coatingType_);
  }
  WriteNumberIfSet(ticket, kFinishKey, finish_);
  WriteNumberIfSet(ticket, kGrainKey, grain_);
  WriteStringIfAny(ticket, kCustomNameKey, customName_);
  if (customNameOnly_) ticket.set(kCustomNameOnlyKey, true);
  WriteStringIfAny(ticket, kCommentKey, comment_);
  WriteNumberIfSet(ticket, kSourceKey, source_);
  return ticket;
}

void Stock::setSize(std::int32_t value) {
  size_ = value;
  if (value != kCustomSize) {
    width_ = kUnsetValue;
    length_ = kUnsetValue;
  }
}

void Stock::setWidth(std::int32_t value) {
  width_ = value;
  if (value != kUnsetValue) size_ = kCustomSize;
}

void Stock::setLength(std::int32_t value) {
  length_ = value;
  if (value != kUnsetValue) size_ = kCustomSize;
}

void Stock::setType(std::int32_t value) {
  type_ = value;
  if (value == kTransparencyType) color_ = kClearColor;
}

}  // namespace varno::model
