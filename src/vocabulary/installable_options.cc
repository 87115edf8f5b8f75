// SPDX-License-Identifier: Apache-2.0
#include "vocabulary/installable_options.h"

#include <cstring>
#include <map>

#include "platform/print/ppd_calls.h"

namespace varno::vocabulary {

namespace ppdcall = print::ppdcall;

// Punch units come in combinations, so one PPD choice can satisfy several features and
// one feature can be satisfied by several choices: HolePunch24 gives 2 and 4 holes.
const InstalledFeatureMap InstalledFeatures[] = {
    {"DualPunchKey", "VNHolePunchUnit", "HolePunch23", "2HolePunch", 0},
    {"DualPunchKey", "VNHolePunchUnit", "HolePunch24", "2HolePunch", 0},
    {"TriplePunchKey", "VNHolePunchUnit", "HolePunch23", "3HolePunch", 0},
    {"QuadruplePunchKey", "VNHolePunchUnit", "HolePunch24", "4HolePunch", 0},
    {"QuadruplePunchKey", "VNHolePunchUnit", "HolePunch4", "4HolePunch", 0},
    {"FaxKey", "VNFax", "True", nullptr, 0},
    {"Offset", "VNFinisher", "OCT", nullptr, 0},
    {"Offset", "VNFinisher", "AClass", nullptr, 0},
    {"Offset", "VNFinisher", "SBClass", nullptr, 0},
    {"SingleStapleKey", "VNFinisher", "AClass", "1 Staple", 0},
    {"SingleStapleKey", "VNFinisher", "SBClass", "1 Staple", 0},
    {"DualStapleKey", "VNFinisher", "SBClass", "2 Staples", 0},
    {"SingleStapleKey", "VNFinisher", "SBClassBooklet", "1 Staple", 0},
    {"DualStapleKey", "VNFinisher", "SBClassBooklet", "2 Staples", 0},
    {"MultipleStapleKey", "VNFinisher", "SBClassBooklet", "Multiple Staples", 0},
    {"BookletFoldKey", "VNFinisher", "SBClassBooklet", nullptr, 0},
    {"SBBookletMaker", "VNFinisher", "SBClassBooklet", nullptr, 0},
    {"Offset", "VNFinisher", "SBClassBooklet", nullptr, 0},
    // A custom instruction goes to the operator at any finisher.
    {"Custom", "VNFinisher", "AClass", nullptr, 0},
    {"Custom", "VNFinisher", "SBClass", nullptr, 0},
    {"Custom", "VNFinisher", "SBClassBooklet", nullptr, 0},
    {"CFoldKey", "VNCZFoldUnit", "CZFold", nullptr, 0},
    {"ZFoldKey", "VNCZFoldUnit", "CZFold", nullptr, 0},
    {"ZFoldHalfSheetKey", "VNCZFoldUnit", "CZFold", nullptr, 0},
    {"GBCAdvancedPunchKey", "VNCoilPunch", "True", nullptr, 0},
    {"SquareFoldTrimmerKey", "VNSquareFoldTrimmer", "True", nullptr, 0},
    // Inserts can come from a post-print inserter: its stock source is 10.
    {"PostPrintInserterKey", "VNPostPrintInserter", "True", "Post-Print Inserter", 10},
    // Finisher configurations, which decide the output destinations. The single modules
    // are what "VNFinisher" installs; combinations of several modules, the finisher
    // transports and the inserter in front of them are separate installable options.
    {"BasicFinisherModule", "VNFinisher", "AClass", nullptr, 0},
    {"MultifunctionFinisher", "VNFinisher", "SBClass", nullptr, 0},
    {"MultifunctionProPlusFinisher", "VNFinisher", "SBClassBooklet", nullptr, 0},
    {"FinisherTransportModule", "VNFinishingModules", "FTM", nullptr, 0},
    {"FinisherTransportWithStacker", "VNFinishingModules", "FTMStacker", nullptr, 0},
    {"BFMPlusBFMKey", "VNFinishingModules", "BFMBFM", nullptr, 0},
    {"BFMFTMKey", "VNFinishingModules", "BFMFTM", nullptr, 0},
    {"BFMBFMFTMKey", "VNFinishingModules", "BFMBFMFTM", nullptr, 0},
    {"BFMFTMStackerKey", "VNFinishingModules", "BFMFTMStacker", nullptr, 0},
    {"FTMSFTMSKey", "VNFinishingModules", "FTMSFTMS", nullptr, 0},
    {"BFMFTMSFTMSKey", "VNFinishingModules", "BFMFTMSFTMS", nullptr, 0},
    {"BFMBFMFTMSKey", "VNFinishingModules", "BFMBFMFTMS", nullptr, 0},
    // An inserter ahead of the finishers takes the first module letter.
    {"OrbisInserter", "VNInserter", "True", nullptr, 0},
    {"AutoSwitchTrayKey", "VNAutoSwitchTray", "True", "Auto-Switch Tray", 11},
    // The trays of finisher modules A to D, by their position along the paper path. A
    // tray's output bin code and label are the same whichever configuration has it, so
    // these rows need no option; the configuration decides whether a tray is offered.
    {"FinisherATopTrayKey", nullptr, nullptr, "Finisher Top Tray", 18},
    {"FinisherAMainStacker", nullptr, nullptr, "Finisher Stacker", 4},
    {"FinisherBTopTrayKey", nullptr, nullptr, "Finisher B Top Tray", 16},
    {"FinisherBMainStacker", nullptr, nullptr, "Finisher B Stacker", 17},
    {"FinisherCTopTrayKey", nullptr, nullptr, "Finisher C Top Tray", 26},
    {"FinisherCMainStacker", nullptr, nullptr, "Finisher C Stacker", 27},
    {"FinisherDTopTrayKey", nullptr, nullptr, "Finisher D Top Tray", 24},
    {"FinisherDMainStacker", nullptr, nullptr, "Finisher D Stacker", 25},
    {nullptr, nullptr, nullptr, nullptr, 0},
};

namespace {

// Option keyword -> marked choice keyword; empty until loaded. The optional tells "loaded"
// apart from "loaded, but the PPD had no installable options".
std::optional<std::map<std::string, std::string, std::less<>>> gOptions;
// The feature table passed to the load that made gOptions.
const InstalledFeatureMap* gFeatures = nullptr;

// True when the row names no PPD option (always present), or the recorded choice of its
// option is the row's choice.
bool IsSatisfied(const InstalledFeatureMap& row) {
  if (!row.ppdKeyword) return true;
  std::string choice;
  return getInstallableOptionValue(row.ppdKeyword, &choice) && row.choice && choice == row.choice;
}

// The first row for `featureKey` that is satisfied, or null.
const InstalledFeatureMap* FirstSatisfiedRow(const char* featureKey) {
  if (!featureKey || !gFeatures) return nullptr;
  for (const InstalledFeatureMap* row = gFeatures; row->featureKey; ++row)
    if (std::strcmp(row->featureKey, featureKey) == 0 && IsSatisfied(*row)) return row;
  return nullptr;
}

}  // namespace

bool LoadInstallableOptions(ppd_file_t* ppd, const InstalledFeatureMap* featureMap) {
  if (gOptions || gFeatures || !ppd) return false;
  gFeatures = featureMap;
  ppdcall::MarkDefaults(ppd);
  gOptions.emplace();
  for (int g = 0; g < ppd->num_groups; ++g) {
    const ppd_group_t& group = ppd->groups[g];
    if (std::strcmp(group.name, "InstallableOptions") != 0) continue;
    for (int o = 0; o < group.num_options; ++o) {
      const ppd_option_t& option = group.options[o];
      if (ppd_choice_t* marked = ppdcall::FindMarkedChoice(ppd, option.keyword))
        gOptions->emplace(option.keyword, marked->choice);
    }
    break;
  }
  return !gOptions->empty();
}

void UnloadInstallableOptions() {
  gOptions.reset();
  gFeatures = nullptr;
}

bool getInstallableOptionValue(const char* keyword, std::string* choice) {
  if (!keyword || !choice || !gOptions) return false;
  auto found = gOptions->find(keyword);
  if (found == gOptions->end()) return false;
  *choice = found->second;
  return true;
}

int getInstalledFeature(const char* featureKey) {
  return FirstSatisfiedRow(featureKey) ? 1 : 0;
}

bool getInstallableOptionTicketValue(const char* featureKey, std::int32_t* value) {
  if (!value) return false;
  const InstalledFeatureMap* row = FirstSatisfiedRow(featureKey);
  if (!row) return false;
  *value = row->ticketValue;
  return true;
}

std::optional<std::string> CopyLocalizedStringForInstalledFeatureFromPlugin(
    const char* featureKey, const bundle::BundleRef& bundle) {
  if (!featureKey || !bundle || !gFeatures) return std::nullopt;
  for (const InstalledFeatureMap* row = gFeatures; row->featureKey; ++row) {
    if (std::strcmp(row->featureKey, featureKey) != 0 || !IsSatisfied(*row)) continue;
    if (row->displayNameKey)
      return bundle->localizedString(row->displayNameKey, "Localizable", "STRING NOT FOUND");
    // A feature that is always present and has no name of its own is not labelled by a
    // later row either.
    if (!row->ppdKeyword) return std::nullopt;
  }
  return std::nullopt;
}

std::string CopyDeviceMimicFilename() {
  std::string name = "Mimic_GR_QTMZ_";
  std::string choice;
  if (getInstallableOptionValue("VNPaperTrays", &choice)) {
    if (choice == "FiveTraysHiCap") name += "5TrayHcap";
    else if (choice == "FiveTrays") name += "5Tray";
    else if (choice == "ThreeTrays") name += "3Tray";
  }
  if (getInstallableOptionValue("VNHighCapacityFeeder", &choice) && choice == "True")
    name += "+HCF";
  if (getInstallableOptionValue("VNFinisher", &choice)) {
    if (choice == "SCT" || choice == "OCT") name += "_CT";
    else if (choice == "AClass") name += "_AFin";
    else if (choice == "SBClass") name += "_SBFin";
    else if (choice == "SBClassBooklet") name += "_SBFinBK";
  }
  return name + ".gif";
}

}  // namespace varno::vocabulary
