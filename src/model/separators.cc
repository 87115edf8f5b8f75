// SPDX-License-Identifier: Apache-2.0
#include "model/separators.h"

#include <string>

#include "vocabulary/ppd_access.h"

namespace varno::model {

using vocabulary::PPDChoiceForTicketValue;
using vocabulary::PPDCopyChoiceText;
using vocabulary::PPDGetCurrent;
using vocabulary::PPDGetTicketValueForChoiceOrDefault;
using vocabulary::PPDSetCurrentChoiceForTicketValue;

namespace {

constexpr const char* kSeparatorOptionKeyword = "VNSlipSheetPrint";
constexpr const char* kSeparatorSourceKeyword = "VNSlipSheetSource";

std::string Localized(const bundle::BundleRef& bundle, const char* key) {
  return bundle->localizedString(key, "Localizable", key);
}

}  // namespace

OSStatus SyncSeparatorsFromTicket(const print::Ticket* ticket, std::int32_t* option,
                                  std::unique_ptr<Stock>* stock) {
  if (!ticket || !option || !stock) return paramErr;
  *option = kNoSeparators;
  *stock = std::make_unique<Stock>();
  ppd_file_t* ppd = PPDGetCurrent();
  PPDGetTicketValueForChoiceOrDefault(ppd, ticket, kSeparatorOptionKeyword, option);
  if (*option == kNoSeparators) return noErr;
  std::int32_t source = -1;
  PPDGetTicketValueForChoiceOrDefault(ppd, ticket, kSeparatorSourceKeyword, &source);
  (*stock)->setSource(source);
  return noErr;
}

OSStatus SyncSeparatorsToTicket(print::Ticket* ticket, std::int32_t option, const Stock* stock) {
  if (!ticket || !stock) return paramErr;
  PPDSetCurrentChoiceForTicketValue(ticket, kSeparatorOptionKeyword, option);
  if (option != kNoSeparators)
    PPDSetCurrentChoiceForTicketValue(ticket, kSeparatorSourceKeyword, stock->source());
  return noErr;
}

OSStatus SeparatorSummaryLine(const bundle::BundleRef& bundle, std::int32_t option,
                              const Stock& stock, std::string* line) {
  if (!bundle || !line) return paramErr;
  line->clear();
  if (option != kBlankSeparators && option != kPrintedSeparators) return noErr;
  std::string tray;
  if (const char* choice = PPDChoiceForTicketValue(kSeparatorSourceKeyword, stock.source()))
    tray = PPDCopyChoiceText(PPDGetCurrent(), kSeparatorSourceKeyword, choice).value_or(choice);
  *line = "- " + Localized(bundle, "Separators") + Localized(bundle, ":") + tray;
  return noErr;
}

}  // namespace varno::model
