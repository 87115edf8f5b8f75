// SPDX-License-Identifier: Apache-2.0
#include "model/image_shift.h"

#include <cmath>
#include <string_view>

#include "platform/print/ticket_access.h"
#include "vocabulary/setting_maps.h"

namespace varno::model {

using print::CFDictionaryGetNumber;
using print::CFDictionarySetNumber;
using print::CFIndex;
using print::WriteTicketValue;
using vocabulary::kUnsetValue;

namespace {

constexpr const char* kOptionKey = "Option";
constexpr const char* kInchesKey = "Inches";
constexpr const char* kFullPrecisionKey = "FullPrecision";
constexpr const char* kX1Key = "X1";
constexpr const char* kY1Key = "Y1";
constexpr const char* kX2Key = "X2";
constexpr const char* kY2Key = "Y2";

// Hundredths of a millimetre per hundredth of an inch, and per tenth of a millimetre.
constexpr double kMillimetresPerInch = 25.4;
constexpr std::int64_t kTenthsPerMillimetre = 10;

std::int64_t ToFullPrecision(std::int32_t distance, bool inches) {
  if (inches) return std::llround(distance * kMillimetresPerInch);
  return distance * kTenthsPerMillimetre;
}

// Truncation, not rounding, is what every reader of these tickets does, so 0.01 inch,
// written as 25 hundredths of a millimetre, reads back as 0.
std::int32_t FromFullPrecision(std::int32_t distance, bool inches) {
  if (inches) return static_cast<std::int32_t>(distance / kMillimetresPerInch);
  return static_cast<std::int32_t>(distance / kTenthsPerMillimetre);
}

std::int32_t NumberOr(const plist::Dictionary& ticket, std::string_view key,
                      std::int32_t fallback) {
  CFIndex value = fallback;
  CFDictionaryGetNumber(ticket, key, &value);
  return value;
}

}  // namespace

void ImageShiftInitialize(const bundle::BundleRef&, void*, _IS_Options* options) {
  if (!options) return;
  options->loaded = 1;
  options->word1 = 1;
  options->word2 = kUnsetValue;
  options->option = kUnsetValue;
  options->inches = 1;
}

std::optional<plist::Dictionary> ImageShiftCreateTicketFromOptions(const _IS_Options& options,
                                                                   int) {
  if (!options.loaded || options.option == kUnsetValue) return std::nullopt;
  const bool inches = options.inches != 0;
  plist::Dictionary ticket;
  CFDictionarySetNumber<CFIndex>(ticket, kOptionKey, options.option);
  CFDictionarySetNumber<CFIndex>(ticket, kInchesKey, inches ? 1 : 0);
  ticket.set(kFullPrecisionKey, true);
  const std::pair<const char*, std::int32_t> distances[] = {
      {kX1Key, options.x1}, {kY1Key, options.y1}, {kX2Key, options.x2}, {kY2Key, options.y2}};
  for (const auto& [key, distance] : distances)
    WriteTicketValue(ticket, key, static_cast<long>(ToFullPrecision(distance, inches)));
  return ticket;
}

void ImageShiftSetOptionsFromTicket(_IS_Options* options, const plist::Dictionary& ticket) {
  if (!options) return;
  options->option = NumberOr(ticket, kOptionKey, kUnsetValue);
  options->inches = NumberOr(ticket, kInchesKey, 1) != 0 ? 1 : 0;
  const bool fullPrecision = ticket.getBoolean(kFullPrecisionKey).value_or(false);
  const std::pair<const char*, std::int32_t*> distances[] = {
      {kX1Key, &options->x1}, {kY1Key, &options->y1}, {kX2Key, &options->x2},
      {kY2Key, &options->y2}};
  for (const auto& [key, field] : distances) {
    *field = NumberOr(ticket, key, 0);
    if (fullPrecision) *field = FromFullPrecision(*field, options->inches != 0);
  }
  options->loaded = 1;
}

}  // namespace varno::model
