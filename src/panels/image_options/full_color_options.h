// SPDX-License-Identifier: Apache-2.0
// The colour adjustments of a job and their ticket form, a dictionary that the colour-options
// panel keeps in the ticket. Every number field starts as kUnsetValue and is left out of the
// dictionary until it is set; setters that check a range refuse with paramErr and change
// nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/plist/value.h"
#include "platform/status.h"
#include "vocabulary/setting_maps.h"

namespace varno::panels {

// The profile kinds whose ticket form is the profile's name rather than the kind.
inline constexpr std::int32_t kRGBNamedProfileKind = 5;
inline constexpr std::int32_t kCMYKNamedProfileKind = 3;
inline constexpr std::int32_t kDestinationNamedProfileKind = 2;
inline constexpr std::size_t kMaxDestinationProfileNameLength = 255;  // characters

class FullColorOptions {
 public:
  struct ColorCast {
    std::int32_t cyanRed = vocabulary::kUnsetValue;
    std::int32_t magentaGreen = vocabulary::kUnsetValue;
    std::int32_t yellowBlue = vocabulary::kUnsetValue;
  };
  struct TrappingAdjustment {
    std::int32_t fastDirection = vocabulary::kUnsetValue;
    std::int32_t slowDirection = vocabulary::kUnsetValue;
  };
  // A profile chosen by kind; the name counts only for the named kind of its colour space.
  struct Profile {
    std::int32_t kind = vocabulary::kUnsetValue;
    std::optional<std::string> name;
  };

  FullColorOptions() = default;
  explicit FullColorOptions(const plist::Dictionary& ticket) { fromTicket(ticket); }
  // Copies share the curve's containers, as a retained curve would be shared.
  FullColorOptions(const FullColorOptions&) = default;
  FullColorOptions& operator=(const FullColorOptions&) = default;

  // -100 ... 100 or kUnsetValue.
  std::int32_t lightness() const { return lightness_; }
  OSStatus setLightness(std::int32_t value);
  std::int32_t contrast() const { return contrast_; }
  OSStatus setContrast(std::int32_t value);
  std::int32_t saturation() const { return saturation_; }
  OSStatus setSaturation(std::int32_t value);
  // Each -100 ... 100 or kUnsetValue; the three are stored together or not at all.
  ColorCast colorCast() const { return colorCast_; }
  OSStatus setColorCast(std::int32_t cyanRed, std::int32_t magentaGreen, std::int32_t yellowBlue);

  // 1 is on. Not checked.
  std::int32_t trapping() const { return trapping_; }
  OSStatus setTrapping(std::int32_t value);
  TrappingAdjustment trappingAdjustment() const { return trappingAdjustment_; }
  // Each 0 ... 20 or kUnsetValue. The first is the slow direction and the second the fast
  // one, the reverse of how the fields are listed; the colour-options panel calls it that
  // way, so the crossing stays.
  OSStatus setTrappingAdjustment(std::int32_t first, std::int32_t second);
  std::int32_t blackOverprint() const { return blackOverprint_; }
  OSStatus setBlackOverprint(std::int32_t value);

  // The tone reproduction curve, any property-list value; nullopt for none.
  const std::optional<plist::Value>& trc() const { return trc_; }
  OSStatus setTRC(std::optional<plist::Value> curve);

  // Not checked: the kind and the name are stored as given.
  Profile rgbImagesProfile() const { return rgbImagesProfile_; }
  OSStatus setRGBImagesProfile(std::int32_t kind, std::optional<std::string> name);
  Profile rgbTextAndGraphicsProfile() const { return rgbTextAndGraphicsProfile_; }
  OSStatus setRGBTextAndGraphicsProfile(std::int32_t kind, std::optional<std::string> name);
  Profile cmykImagesProfile() const { return cmykImagesProfile_; }
  OSStatus setCMYKImagesProfile(std::int32_t kind, std::optional<std::string> name);
  Profile cmykTextAndGraphicsProfile() const { return cmykTextAndGraphicsProfile_; }
  OSStatus setCMYKTextAndGraphicsProfile(std::int32_t kind, std::optional<std::string> name);
  const std::optional<std::string>& grayImagesProfile() const { return grayImagesProfile_; }
  OSStatus setGrayImagesProfile(std::optional<std::string> name);
  const std::optional<std::string>& grayTextAndGraphicsProfile() const {
    return grayTextAndGraphicsProfile_;
  }
  OSStatus setGrayTextAndGraphicsProfile(std::optional<std::string> name);
  Profile destinationProfile() const { return destinationProfile_; }
  // The named kind needs a name of at most kMaxDestinationProfileNameLength characters;
  // any other kind is stored alone and the name is left as it was.
  OSStatus setDestinationProfile(std::int32_t kind, std::optional<std::string> name);

  // Rendering intents, not checked.
  std::int32_t imageObjectRendering() const { return imageObjectRendering_; }
  OSStatus setImageObjectRendering(std::int32_t value);
  std::int32_t textObjectRendering() const { return textObjectRendering_; }
  OSStatus setTextObjectRendering(std::int32_t value);
  std::int32_t graphicObjectRendering() const { return graphicObjectRendering_; }
  OSStatus setGraphicObjectRendering(std::int32_t value);

  // A new dictionary of the fields that are set.
  plist::Dictionary asTicket() const;
  // Reads the keys asTicket writes; missing keys leave their fields as they were. Values
  // pass through the setters, so one that a setter would refuse (lightness 300, a
  // destination name of 300 characters) is ignored like a missing key.
  void fromTicket(const plist::Dictionary& ticket);

 private:
  std::int32_t lightness_ = vocabulary::kUnsetValue;
  std::int32_t contrast_ = vocabulary::kUnsetValue;
  std::int32_t saturation_ = vocabulary::kUnsetValue;
  ColorCast colorCast_;
  std::int32_t trapping_ = vocabulary::kUnsetValue;
  TrappingAdjustment trappingAdjustment_;
  std::int32_t blackOverprint_ = vocabulary::kUnsetValue;
  std::optional<plist::Value> trc_;
  Profile rgbImagesProfile_;
  Profile rgbTextAndGraphicsProfile_;
  Profile cmykImagesProfile_;
  Profile cmykTextAndGraphicsProfile_;
  std::optional<std::string> grayImagesProfile_;
  std::optional<std::string> grayTextAndGraphicsProfile_;
  Profile destinationProfile_;
  std::int32_t imageObjectRendering_ = vocabulary::kUnsetValue;
  std::int32_t textObjectRendering_ = vocabulary::kUnsetValue;
  std::int32_t graphicObjectRendering_ = vocabulary::kUnsetValue;
};

}  // namespace varno::panels
