// SPDX-License-Identifier: Apache-2.0
#include "panels/image_options/full_color_options.h"

#include <utility>

#include "platform/plist/text.h"
#include "platform/print/ticket_access.h"

namespace varno::panels {

using print::CFDictionaryGetNumber;
using print::CFDictionarySetNumber;
using print::CFIndex;
using vocabulary::kUnsetValue;

namespace {

constexpr const char* kLightnessKey = "FCLightness";
constexpr const char* kContrastKey = "FCContrast";
constexpr const char* kSaturationKey = "FCSaturation";
constexpr const char* kColorCastKey = "FCColorCast";
constexpr const char* kCyanRedKey = "FCCyanRed";
constexpr const char* kMagentaGreenKey = "FCMagentaGreen";
constexpr const char* kYellowBlueKey = "FCYellowBlue";
constexpr const char* kTrappingKey = "FCTrapping";
constexpr const char* kTrappingFastKey = "FCTrappingFastDirection";
constexpr const char* kTrappingSlowKey = "FCTrappingSlowDirection";
constexpr const char* kBlackOverprintKey = "FCBlackOverprint";
constexpr const char* kTRCKey = "FCTRC";
constexpr const char* kRGBImagesKey = "RGBImagesProfile";
constexpr const char* kRGBTextAndGraphicsKey = "RGBTextAndGraphicsProfile";
constexpr const char* kCMYKImagesKey = "CMYKImagesProfile";
constexpr const char* kCMYKTextAndGraphicsKey = "CMYKTextAndGraphicsProfile";
constexpr const char* kGrayImagesKey = "GrayImagesProfile";
constexpr const char* kGrayTextAndGraphicsKey = "GrayTextAndGraphicsProfile";
constexpr const char* kDestinationKey = "DestinationProfile";
constexpr const char* kImageRenderingKey = "ImageRendering";
constexpr const char* kTextRenderingKey = "TextRendering";
constexpr const char* kGraphicRenderingKey = "GraphicRendering";

bool IsAdjustment(std::int32_t value) {
  return value == kUnsetValue || (value >= -100 && value <= 100);
}

bool IsTrappingDirection(std::int32_t value) {
  return value == kUnsetValue || (value >= 0 && value <= 20);
}

void PutIfSet(plist::Dictionary& ticket, const char* key, std::int32_t value) {
  if (value != kUnsetValue) CFDictionarySetNumber(ticket, key, static_cast<CFIndex>(value));
}

// The named kind is written as its name, any other kind as the number. A named kind
// without a name has nothing to write and is left out.
void PutProfile(plist::Dictionary& ticket, const char* key,
                const FullColorOptions::Profile& profile, std::int32_t namedKind) {
  if (profile.kind == kUnsetValue) return;
  if (profile.kind != namedKind)
    CFDictionarySetNumber(ticket, key, static_cast<CFIndex>(profile.kind));
  else if (profile.name)
    ticket.set(key, plist::Value(*profile.name));
}

void PutName(plist::Dictionary& ticket, const char* key, const std::optional<std::string>& name) {
  if (name) ticket.set(key, plist::Value(*name));
}

// Hands a number stored under `key` to `set`; other kinds and missing keys do nothing.
template <typename Setter>
void TakeNumber(const plist::Dictionary& ticket, const char* key, Setter set) {
  CFIndex value = 0;
  if (CFDictionaryGetNumber(ticket, key, &value)) set(value);
}

// A number is a kind; a string is a name of the named kind. Anything else is ignored.
template <typename Setter>
void TakeProfile(const plist::Dictionary& ticket, const char* key,
                 const FullColorOptions::Profile& current, std::int32_t namedKind, Setter set) {
  const plist::Value* value = ticket.find(key);
  if (!value) return;
  if (const std::string* name = value->asString())
    set(namedKind, *name);
  else if (std::optional<CFIndex> kind = value->toNumber<CFIndex>())
    set(*kind, current.name);
}

}  // namespace

OSStatus FullColorOptions::setLightness(std::int32_t value) {
  if (!IsAdjustment(value)) return paramErr;
  lightness_ = value;
  return noErr;
}

OSStatus FullColorOptions::setContrast(std::int32_t value) {
  if (!IsAdjustment(value)) return paramErr;
  contrast_ = value;
  return noErr;
}

OSStatus FullColorOptions::setSaturation(std::int32_t value) {
  if (!IsAdjustment(value)) return paramErr;
  saturation_ = value;
  return noErr;
}

OSStatus FullColorOptions::setColorCast(std::int32_t cyanRed, std::int32_t magentaGreen,
                                        std::int32_t yellowBlue) {
  if (!IsAdjustment(cyanRed) || !IsAdjustment(magentaGreen) || !IsAdjustment(yellowBlue))
    return paramErr;
  colorCast_ = {cyanRed, magentaGreen, yellowBlue};
  return noErr;
}

OSStatus FullColorOptions::setTrapping(std::int32_t value) {
  trapping_ = value;
  return noErr;
}

OSStatus FullColorOptions::setTrappingAdjustment(std::int32_t first, std::int32_t second) {
  if (!IsTrappingDirection(first) || !IsTrappingDirection(second)) return paramErr;
  trappingAdjustment_.slowDirection = first;
  trappingAdjustment_.fastDirection = second;
  return noErr;
}

OSStatus FullColorOptions::setBlackOverprint(std::int32_t value) {
  blackOverprint_ = value;
  return noErr;
}

OSStatus FullColorOptions::setTRC(std::optional<plist::Value> curve) {
  trc_ = std::move(curve);
  return noErr;
}

OSStatus FullColorOptions::setRGBImagesProfile(std::int32_t kind, std::optional<std::string> name) {
  rgbImagesProfile_ = {kind, std::move(name)};
  return noErr;
}

OSStatus FullColorOptions::setRGBTextAndGraphicsProfile(std::int32_t kind,
                                                        std::optional<std::string> name) {
  rgbTextAndGraphicsProfile_ = {kind, std::move(name)};
  return noErr;
}

OSStatus FullColorOptions::setCMYKImagesProfile(std::int32_t kind,
                                                std::optional<std::string> name) {
  cmykImagesProfile_ = {kind, std::move(name)};
  return noErr;
}

OSStatus FullColorOptions::setCMYKTextAndGraphicsProfile(std::int32_t kind,
                                                         std::optional<std::string> name) {
  cmykTextAndGraphicsProfile_ = {kind, std::move(name)};
  return noErr;
}

OSStatus FullColorOptions::setGrayImagesProfile(std::optional<std::string> name) {
  grayImagesProfile_ = std::move(name);
  return noErr;
}

OSStatus FullColorOptions::setGrayTextAndGraphicsProfile(std::optional<std::string> name) {
  grayTextAndGraphicsProfile_ = std::move(name);
  return noErr;
}

OSStatus FullColorOptions::setDestinationProfile(std::int32_t kind,
                                                 std::optional<std::string> name) {
  if (kind == kDestinationNamedProfileKind) {
    if (!name || plist::CharacterCount(*name) > kMaxDestinationProfileNameLength)
      return paramErr;
    destinationProfile_.name = std::move(name);
  }
  destinationProfile_.kind = kind;
  return noErr;
}

OSStatus FullColorOptions::setImageObjectRendering(std::int32_t value) {
  imageObjectRendering_ = value;
  return noErr;
}

OSStatus FullColorOptions::setTextObjectRendering(std::int32_t value) {
  textObjectRendering_ = value;
  return noErr;
}

OSStatus FullColorOptions::setGraphicObjectRendering(std::int32_t value) {
  graphicObjectRendering_ = value;
  return noErr;
}

plist::Dictionary FullColorOptions::asTicket() const {
  plist::Dictionary ticket;
  PutIfSet(ticket, kLightnessKey, lightness_);
  PutIfSet(ticket, kContrastKey, contrast_);
  PutIfSet(ticket, kSaturationKey, saturation_);
  if (colorCast_.cyanRed != kUnsetValue && colorCast_.magentaGreen != kUnsetValue &&
      colorCast_.yellowBlue != kUnsetValue) {
    plist::Dictionary cast;
    PutIfSet(cast, kCyanRedKey, colorCast_.cyanRed);
    PutIfSet(cast, kMagentaGreenKey, colorCast_.magentaGreen);
    PutIfSet(cast, kYellowBlueKey, colorCast_.yellowBlue);
    ticket.set(kColorCastKey, plist::Value(std::move(cast)));
  }
  PutIfSet(ticket, kTrappingKey, trapping_);
  // The directions mean something only while trapping is on.
  if (trapping_ == 1) {
    PutIfSet(ticket, kTrappingFastKey, trappingAdjustment_.fastDirection);
    PutIfSet(ticket, kTrappingSlowKey, trappingAdjustment_.slowDirection);
  }
  PutIfSet(ticket, kBlackOverprintKey, blackOverprint_);
  if (trc_) ticket.set(kTRCKey, *trc_);
  PutProfile(ticket, kRGBImagesKey, rgbImagesProfile_, kRGBNamedProfileKind);
  PutProfile(ticket, kRGBTextAndGraphicsKey, rgbTextAndGraphicsProfile_, kRGBNamedProfileKind);
  PutProfile(ticket, kCMYKImagesKey, cmykImagesProfile_, kCMYKNamedProfileKind);
  PutProfile(ticket, kCMYKTextAndGraphicsKey, cmykTextAndGraphicsProfile_, kCMYKNamedProfileKind);
  PutName(ticket, kGrayImagesKey, grayImagesProfile_);
  PutName(ticket, kGrayTextAndGraphicsKey, grayTextAndGraphicsProfile_);
  PutProfile(ticket, kDestinationKey, destinationProfile_, kDestinationNamedProfileKind);
  PutIfSet(ticket, kImageRenderingKey, imageObjectRendering_);
  PutIfSet(ticket, kTextRenderingKey, textObjectRendering_);
  PutIfSet(ticket, kGraphicRenderingKey, graphicObjectRendering_);
  return ticket;
}

void FullColorOptions::fromTicket(const plist::Dictionary& ticket) {
  TakeNumber(ticket, kLightnessKey, [this](CFIndex v) { setLightness(v); });
  TakeNumber(ticket, kContrastKey, [this](CFIndex v) { setContrast(v); });
  TakeNumber(ticket, kSaturationKey, [this](CFIndex v) { setSaturation(v); });
  if (std::optional<plist::Dictionary> cast = ticket.getDictionary(kColorCastKey)) {
    CFIndex cyanRed = 0, magentaGreen = 0, yellowBlue = 0;
    if (CFDictionaryGetNumber(*cast, kCyanRedKey, &cyanRed) &&
        CFDictionaryGetNumber(*cast, kMagentaGreenKey, &magentaGreen) &&
        CFDictionaryGetNumber(*cast, kYellowBlueKey, &yellowBlue))
      setColorCast(cyanRed, magentaGreen, yellowBlue);
  }
  TakeNumber(ticket, kTrappingKey, [this](CFIndex v) { setTrapping(v); });
  // Each direction on its own, through the setter's crossed order (slow first).
  TakeNumber(ticket, kTrappingFastKey, [this](CFIndex v) {
    setTrappingAdjustment(trappingAdjustment_.slowDirection, v);
  });
  TakeNumber(ticket, kTrappingSlowKey, [this](CFIndex v) {
    setTrappingAdjustment(v, trappingAdjustment_.fastDirection);
  });
  TakeNumber(ticket, kBlackOverprintKey, [this](CFIndex v) { setBlackOverprint(v); });
  if (const plist::Value* curve = ticket.find(kTRCKey)) setTRC(*curve);
  TakeProfile(ticket, kRGBImagesKey, rgbImagesProfile_, kRGBNamedProfileKind,
              [this](std::int32_t k, std::optional<std::string> n) {
                setRGBImagesProfile(k, std::move(n));
              });
  TakeProfile(ticket, kRGBTextAndGraphicsKey, rgbTextAndGraphicsProfile_, kRGBNamedProfileKind,
              [this](std::int32_t k, std::optional<std::string> n) {
                setRGBTextAndGraphicsProfile(k, std::move(n));
              });
  TakeProfile(ticket, kCMYKImagesKey, cmykImagesProfile_, kCMYKNamedProfileKind,
              [this](std::int32_t k, std::optional<std::string> n) {
                setCMYKImagesProfile(k, std::move(n));
              });
  TakeProfile(ticket, kCMYKTextAndGraphicsKey, cmykTextAndGraphicsProfile_,
              kCMYKNamedProfileKind, [this](std::int32_t k, std::optional<std::string> n) {
                setCMYKTextAndGraphicsProfile(k, std::move(n));
              });
  if (std::optional<std::string> name = ticket.getString(kGrayImagesKey))
    setGrayImagesProfile(std::move(name));
  if (std::optional<std::string> name = ticket.getString(kGrayTextAndGraphicsKey))
    setGrayTextAndGraphicsProfile(std::move(name));
  TakeProfile(ticket, kDestinationKey, destinationProfile_, kDestinationNamedProfileKind,
              [this](std::int32_t k, std::optional<std::string> n) {
                setDestinationProfile(k, std::move(n));
              });
  TakeNumber(ticket, kImageRenderingKey, [this](CFIndex v) { setImageObjectRendering(v); });
  TakeNumber(ticket, kTextRenderingKey, [this](CFIndex v) { setTextObjectRendering(v); });
  TakeNumber(ticket, kGraphicRenderingKey, [this](CFIndex v) { setGraphicObjectRendering(v); });
}

}  // namespace varno::panels
