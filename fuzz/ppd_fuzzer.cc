// SPDX-License-Identifier: Apache-2.0
// The PPD layer on mutated PPD text: the file is opened as the vocabulary layer opens a
// printer's PPD, its installable options loaded and a menu filled for every option the
// panels use; the command-line host reads its defaults and choices from the same file.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/print/ppd_calls.h"
#include "platform/toolkit/menu.h"
#include "common/ppd_defaults.h"
#include "support.h"
#include "vocabulary/choice_maps.h"
#include "vocabulary/installable_options.h"
#include "vocabulary/ppd_access.h"

using namespace varno;
using vocabulary::CopyDeviceMimicFilename;
using vocabulary::InstalledFeatures;
using vocabulary::LoadInstallableOptions;
using vocabulary::MainKeywordMap;
using vocabulary::MainKeywordMapEntry;
using vocabulary::PPDCopyChoiceText;
using vocabulary::PPDCopyDefaultChoice;
using vocabulary::PPDIsFromMaker;
using vocabulary::PPDPopulateMenuWithChoices;
using vocabulary::UnloadInstallableOptions;
namespace ppdcall = print::ppdcall;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::filesystem::path file = fuzz::WriteScratchFile("input.ppd", fuzz::AsText(data, size));

  hosts::PPDDefaults defaults;
  std::string error;
  if (!hosts::ReadPPDDefaults(file, defaults, error))
    fuzz::Check(!error.empty(), "a refused PPD comes without a reason");

  ppdcall::FilePtr ppd = ppdcall::Open(file);
  if (!ppd) return 0;
  PPDIsFromMaker(ppd.get());
  LoadInstallableOptions(ppd.get(), InstalledFeatures);
  CopyDeviceMimicFilename();
  for (const MainKeywordMapEntry* entry = MainKeywordMap; entry->keyword; ++entry) {
    ppd_option_t* option = ppdcall::FindOption(ppd.get(), entry->keyword);
    if (!option) continue;
    for (bool markConflicts : {false, true}) {
      toolkit::MenuPtr menu = toolkit::Menu::create();
      const int count = PPDPopulateMenuWithChoices(menu.get(), ppd.get(), entry->keyword, 0, markConflicts);
      fuzz::Check(count <= option->num_choices, "a menu with more items than the option has choices");
    }
    if (std::optional<std::string> choice = PPDCopyDefaultChoice(ppd.get(), entry->keyword))
      PPDCopyChoiceText(ppd.get(), entry->keyword, choice->c_str());
  }
  UnloadInstallableOptions();
  return 0;
}
