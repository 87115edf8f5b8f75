// SPDX-License-Identifier: Apache-2.0
#include "vocabulary/choice_maps.h"

#include <climits>
#include <cstring>

namespace varno::vocabulary {

// Some maps list a value or a choice twice. Lookups take the first pair, so the order of
// the pairs is part of the data: "CardStock" reads as 12 but 43 writes as "CardStock",
// and PageSize 80 writes as the first "3x5".

const ChoiceMap VNOGrayLineMap[] = {
    {"PrinterDefault", 0}, {"Automatic", 1}, {"PureBlack", 2}, {"Composite", 3}, {nullptr, 0}};

const ChoiceMap GlossLevelMap[] = {{"Normal", 1}, {"Enhanced", 2}, {nullptr, 0}};

const ChoiceMap SlipSheetMap[] = {{"None", 1}, {"Blank", 2}, {"Printed", 3}, {nullptr, 0}};

const ChoiceMap InputSlotMap[] = {{"Auto", 0},  {"Tray1", 1}, {"Tray2", 2},
                                  {"Tray3", 3}, {"Tray4", 4}, {"Tray5", 5},
                                  {"Tray6", 6}, {"Bypass", 100}, {nullptr, 0}};

const ChoiceMap FeedEdgeMap[] = {{"LongEdge", 1}, {"ShortEdge", 2}, {nullptr, 0}};

const ChoiceMap ColorModeMap[] = {{"Grayscale", 1}, {"Color", 2}, {nullptr, 0}};

const ChoiceMap PPDResolutionMap[] = {
    {"200x100dpi", 6},  {"200x200dpi", 5},   {"300x300dpi", 1},   {"600x600dpi", 2},
    {"1200x600dpi", 3}, {"1200x1200dpi", 4}, {"1800x1800dpi", 7}, {nullptr, 0}};

const ChoiceMap DraftModeMap[] = {{"None", 2}, {"Draft", 1}, {nullptr, 0}};

const ChoiceMap LightenDarkenMap[] = {
    {"Lighten5", -5}, {"Lighten4", -4}, {"Lighten3", -3}, {"Lighten2", -2},
    {"Lighten1", -1}, {"Normal", 0},    {"Darken1", 1},   {"Darken2", 2},
    {"Darken3", 3},   {"Darken4", 4},   {"Darken5", 5},   {nullptr, 0}};

const ChoiceMap JCLTrueGrayImagesMap[] = {{"False", 1}, {"True", 2}, {nullptr, 0}};

const ChoiceMap JCLTrueGrayGraphicsMap[] = {{"False", 1}, {"True", 2}, {nullptr, 0}};

const ChoiceMap JCLColorCorrectionMap[] = {{"Auto", 1},       {"sRGB", 2}, {"BlackWhite", 3},
                                           {"PressMatch", 4}, {"None", 5}, {"Standard", 6},
                                           {nullptr, 0}};

const ChoiceMap VNCMYKColorSpaceMap[] = {{"SNAP", 1},       {"SWOP", 2},       {"EuroScale", 3},
                                         {"Commercial", 4}, {"JapanColor", 5}, {nullptr, 0}};

const ChoiceMap VNRGBColorSpaceMap[] = {
    {"VarnoRGB", 1}, {"sRGB", 2}, {"AppleRGB", 3}, {"AdobeRGB", 4}, {nullptr, 0}};

const ChoiceMap JCLPrintQualityMap[] = {{"TonerSaver", 1},  {"Standard", 2},
                                        {"Enhanced", 3},    {"HighSpeed", 4},
                                        {"HighQuality", 5}, {"HighResolution", 6},
                                        {nullptr, 0}};

const ChoiceMap VNStapleMap[] = {{"None", 1},
                                 {"SinglePortrait", 5},
                                 {"DualLandscape", 10},
                                 {"MultipleStaples", 54},
                                 {nullptr, 0}};

const ChoiceMap VNFoldMap[] = {{"None", 1},           {"C", 19},      {"Z", 20},
                               {"ZFoldHalfSheet", 36}, {"BiFold", 43}, {"BiFoldStaple", 53},
                               {nullptr, 0}};

const ChoiceMap VNPunchMap[] = {{"None", 1},       {"HolePunch", 2},  {"2HolePunch", 3},
                                {"3HolePunch", 4}, {"4HolePunch", 5}, {nullptr, 0}};

const ChoiceMap OutputBinMap[] = {
    {"Auto", 1},           {"Side", 3},           {"Top", 2},
    {"TopTray", 18},       {"Stacker", 4},        {"TopTrayHCS", 16},
    {"StackerTrayHCS", 17}, {"Upper", 5},         {"Lower", 6},
    {"Booklet", 7},        {"Middle", 11},        {"Middle2", 15},
    {"PrinterDefault", INT32_MIN},                {"Center", 28},
    {"Bottom", 29},        {"EnvFolder", 13},     {"SBM", 14},
    {"CentreTray1", 24},   {"CentreTray2", 25},   {"RightTopTray", 26},
    {"RightMiddleTray", 27}, {"Finisher", 23},    {nullptr, 0}};

const ChoiceMap RequestOffsetMap[] = {{"EndOfSet", 1}, {"None", 0}, {nullptr, 0}};

const ChoiceMap BannerPageMap[] = {{"True", 1}, {"False", 0}, {nullptr, 0}};

const ChoiceMap PPDOutputOptionMap[] = {{"True", 1}, {"False", 0}, {nullptr, 0}};

const ChoiceMap PPDDuplexMap[] = {
    {"None", 1}, {"DuplexNoTumble", 2}, {"DuplexTumble", 3}, {nullptr, 0}};

const ChoiceMap PageSizeMap[] = {
    {"Letter", 1},          {"Legal", 2},           {"Tabloid", 3},
    {"A4", 4},              {"A3", 5},              {"FanFoldGermanLegal", 16},
    {"8.5x13", 12},         {"3x5", 80},            {"Officio", 78},
    {"Statement", 17},      {"A5", 18},             {"A6", 40},
    {"Executive", 21},      {"B5", 6},              {"A4Cover", 7},
    {"A4Tab", 203},         {"9x11", 8},            {"9x11L", 82},
    {"B4", 14},             {"5x7", 41},            {"B6", 42},
    {"8x10", 10},           {"GovernmentLetter", 83}, {"4x6Pcard", 43},
    {"114x152Pcard", 81},   {"EnvMonarch", 44},     {"Env9", 77},
    {"Env10", 45},          {"EnvDL", 46},          {"EnvC5", 20},
    {"JISB5", 55},          {"JISB4", 56},          {"JISB6", 57},
    {"SpanishFolio", 22},   {"EnvC4", 58},          {"4x6", 59},
    {"100x148Postcard", 60}, {"148x200Postcard", 61}, {"TabloidExtra", 11},
    {"12x19", 71},          {"13x19", 66},          {"SRA3", 15},
    {"220x330", 24},        {"815", 23},            {"16K", 29},
    {"8K1", 67},            {"16K1", 68},           {"EnvB5", 73},
    {"Env6x9", 25},         {"Env9x12", 26},        {"EnvC6", 74},
    {"VN11x15", 63},        {"EnvChou3", 69},       {"5p5x7", 76},
    {"VN6x9", 62},          {"3x5", 80},            {"Custom", 75},
    {nullptr, 0}};

const ChoiceMap MediaTypeMap[] = {
    {"SystemDefault", 23},       {"Transparency", 2},         {"Labels", 9},
    {"Punched", 11},             {"Recycled", 10},            {"PrePrinted", 3},
    {"Bond", 13},                {"Letterhead", 14},          {"TabStock", 24},
    {"Envelopes", 8},            {"Other", 22},               {"Custom1", 15},
    {"Custom2", 16},             {"Custom3", 17},             {"Custom4", 18},
    {"Custom5", 19},             {"Custom6", 20},             {"Custom7", 21},
    {"Standard", 1},             {"CardStock", 12},           {"Archive", 45},
    {"CardStock2", 26},          {"CardStock", 43},           {"CardStockF", 43},
    {"HeavyweightLabels", 25},   {"ExtraHeavyweight", 27},    {"ExtraHeavyweight2", 28},
    {"LightGlossy", 29},         {"LightGlossy2", 30},        {"LightGlossyF", 44},
    {"HeavyGlossy", 31},         {"HeavyGlossy2", 32},        {"HeavyTabStock", 33},
    {"Unspecified", 34},         {"ExtraHeavyPlus", 35},      {"ExtraHeavyPlus2", 36},
    {"ExtraHeavyGlossy", 37},    {"ExtraHeavyGlossy2", 38},   {"ExtraHeavyLabels", 39},
    {"Rough", 40},               {"Standard2", 41},           {"Light", 42},
    {"Postcard", 46},            {"GlossCoating", 47},        {"GlossCoatingReloaded", 48},
    {"HeavyWeightGlossCoating", 49}, {"HeavyWeightGlossCoatingReloaded", 51},
    {"ExtraHeavyWeightGlossReloaded", 50},
    {nullptr, 0}};

const ChoiceMap MediaColorMap[] = {
    {"PrinterDefaultColor", 23}, {"Buff", 7},    {"Blue", 2},       {"Clear", 6},
    {"Gray", 12},                {"Green", 4},   {"Ivory", 11},     {"Orange", 13},
    {"Other", 14},               {"Pink", 5},    {"Red", 9},        {"White", 1},
    {"Yellow", 3},               {"Goldenrod", 8}, {"Unspecified", 22}, {"Custom1", 15},
    {"Custom2", 16},             {"Custom3", 17}, {"Custom4", 18},  {"Custom5", 19},
    {"Custom6", 20},             {"Custom7", 21}, {nullptr, 0}};

// The three null pairs after the terminator leave room for keywords added at run time
// without moving the table.
const MainKeywordMapEntry MainKeywordMap[] = {
    {"JCLBanner", BannerPageMap},
    {"VNOGrayline", VNOGrayLineMap},
    {"Jog", RequestOffsetMap},
    {"JCLTrueGrayGraphics", JCLTrueGrayGraphicsMap},
    {"JCLTrueGrayImages", JCLTrueGrayImagesMap},
    {"VNImageQuality", LightenDarkenMap},
    {"MediaColor", MediaColorMap},
    {"MediaType", MediaTypeMap},
    {"Duplex", PPDDuplexMap},
    {"VNOutputMode", JCLPrintQualityMap},
    {"VNRGBColorSpace", VNRGBColorSpaceMap},
    {"VNCMYKColorSpace", VNCMYKColorSpaceMap},
    {"VNColorCorrection", JCLColorCorrectionMap},
    {"PageSize", PageSizeMap},
    {"OutputBin", OutputBinMap},
    {"VNFold", VNFoldMap},
    {"VNPunch", VNPunchMap},
    {"StapleLocation", VNStapleMap},
    {"VNEconomode", DraftModeMap},
    {"VNOutputOption", PPDOutputOptionMap},
    {"Resolution", PPDResolutionMap},
    {"VNColorMode", ColorModeMap},
    {"InputSlot", InputSlotMap},
    {"VNFeedEdge", FeedEdgeMap},
    {"VNFrontCoverSheet", InputSlotMap},
    {"VNBackCoverSheet", InputSlotMap},
    {"VNSlipSheetPrint", SlipSheetMap},
    {"VNSlipSheetSource", InputSlotMap},
    {"VNSlipSheetType", MediaTypeMap},
    {nullptr, nullptr},
    {nullptr, nullptr},
    {nullptr, nullptr},
    {nullptr, nullptr},
};

const ChoiceMap* ChoiceMapForKeyword(const char* keyword) {
  if (!keyword) return nullptr;
  for (const MainKeywordMapEntry* entry = MainKeywordMap; entry->keyword; ++entry)
    if (std::strcmp(entry->keyword, keyword) == 0) return entry->map;
  return nullptr;
}

}  // namespace varno::vocabulary
