// SPDX-License-Identifier: Apache-2.0
// Choice maps: the numbers the panels store for the choice keywords of PPD options, and the
// main-keyword map that tells which choice map serves which PPD option. Constant data.
#pragma once

#include <cstdint>

namespace varno::vocabulary {

// One pair; a null choice ends the map.
struct ChoiceMap {
  const char* choice;
  std::int32_t value;
};

extern const ChoiceMap VNOGrayLineMap[];
extern const ChoiceMap GlossLevelMap[];
extern const ChoiceMap SlipSheetMap[];
extern const ChoiceMap InputSlotMap[];
extern const ChoiceMap FeedEdgeMap[];
extern const ChoiceMap ColorModeMap[];
extern const ChoiceMap PPDResolutionMap[];
extern const ChoiceMap DraftModeMap[];
extern const ChoiceMap LightenDarkenMap[];
extern const ChoiceMap JCLTrueGrayImagesMap[];
extern const ChoiceMap JCLTrueGrayGraphicsMap[];
extern const ChoiceMap JCLColorCorrectionMap[];
extern const ChoiceMap VNCMYKColorSpaceMap[];
extern const ChoiceMap VNRGBColorSpaceMap[];
extern const ChoiceMap JCLPrintQualityMap[];
extern const ChoiceMap VNStapleMap[];
extern const ChoiceMap VNFoldMap[];
extern const ChoiceMap VNPunchMap[];
extern const ChoiceMap OutputBinMap[];
extern const ChoiceMap RequestOffsetMap[];
extern const ChoiceMap BannerPageMap[];
extern const ChoiceMap PPDOutputOptionMap[];
extern const ChoiceMap PPDDuplexMap[];
extern const ChoiceMap PageSizeMap[];
extern const ChoiceMap MediaTypeMap[];
extern const ChoiceMap MediaColorMap[];

// One pair of the main-keyword map; a null keyword ends it.
struct MainKeywordMapEntry {
  const char* keyword;
  const ChoiceMap* map;
};
// In the order given, with room for three more pairs after the terminator.
extern const MainKeywordMapEntry MainKeywordMap[];

// The choice map of a PPD main keyword, or null.
const ChoiceMap* ChoiceMapForKeyword(const char* keyword);

}  // namespace varno::vocabulary
