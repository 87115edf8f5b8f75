// SPDX-License-Identifier: Apache-2.0
// The Paper/Output panel: the job type and its set-ups, the job's paper stock with its
// menu and summary, transparency separators, covers, two-sided printing, staples and hole
// punching, and where the job comes out. Its whole state is one context record; Sync
// moves that record between the panel and the print-settings ticket either way.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "fax/fax_recipient_list.h"
#include "host/dialog_host.h"
#include "model/special_pages.h"
#include "model/stock.h"
#include "panels/paper_output/coil_binding_dialog.h"
#include "platform/bundle/bundle.h"
#include "platform/plist/value.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/event_target.h"
#include "ui/covers_dialog.h"
#include "ui/stock_menus.h"

namespace varno::panels {

inline constexpr OSType kPaperOutputSignature = MakeOSType("VPDE");
inline constexpr OSType kPaperOutputCreator = MakeOSType("Vshl");

// Controls of the window "Panel" in the interface file "Paper_Output".
inline constexpr std::int32_t kJobTypeLabelID = 101;
inline constexpr std::int32_t kJobTypePopupID = 102;
inline constexpr std::int32_t kJobTypeSetupButtonID = 103;
inline constexpr std::int32_t kJobTypeIconID = 104;
inline constexpr std::int32_t kPaperSummaryLabelID = 105;
inline constexpr std::int32_t kStockSummaryViewID = 106;
inline constexpr std::int32_t kStockMenuButtonID = 107;
inline constexpr std::int32_t kStockIconID = 108;
inline constexpr std::int32_t kTwoSidedLabelID = 109;
inline constexpr std::int32_t kTwoSidedPopupID = 110;
inline constexpr std::int32_t kTwoSidedIconID = 111;
inline constexpr std::int32_t kStaplingLabelID = 112;
inline constexpr std::int32_t kStaplePopupID = 113;
inline constexpr std::int32_t kHolePunchLabelID = 115;
inline constexpr std::int32_t kHolePunchPopupID = 116;
inline constexpr std::int32_t kFinishingLabelID = 118;
inline constexpr std::int32_t kFinishingSummaryViewID = 119;
inline constexpr std::int32_t kFinishingIconID = 122;
inline constexpr std::int32_t kFinishingMenuButtonID = 123;
inline constexpr std::int32_t kOutputDestinationLabelID = 124;
inline constexpr std::int32_t kDestinationIconID = 125;
inline constexpr std::int32_t kOutputDestinationPopupID = 126;

// Commands of the stock menu button beyond the stock menus' own.
inline constexpr toolkit::MenuCommand kCoversCommand = MakeOSType("SPac");
inline constexpr toolkit::MenuCommand kSeparatorsCommand = MakeOSType("Vsep");

// Job type codes (_JobTypeMap, plus those a ticket may carry).
inline constexpr std::int32_t kNormalPrintJob = 1;
inline constexpr std::int32_t kSavedJob = 3;
inline constexpr std::int32_t kFaxJob = 5;
inline constexpr std::int32_t kSecurePrintJob = 6;
inline constexpr std::int32_t kDelayedPrintJob = 7;
inline constexpr std::int32_t kSampleSetJob = 8;

inline constexpr int kSquareFoldPossible = 0;
inline constexpr int kSquareFoldChosen = 1;
inline constexpr int kTrimChosen = 2;

inline constexpr std::int32_t kBookletOn = 1;
inline constexpr std::int32_t kBookletOff = 2;
inline constexpr std::int32_t kLongEdgeDuplex = 2;
inline constexpr std::int32_t kShortEdgeDuplex = 3;

struct PaperOutputContext {
  std::uint8_t opened = 0;
  bundle::BundleRef bundle;
  std::string title;
  std::uint32_t hostWord = 0;
  print::Session* session = nullptr;
  std::uint8_t duplexCapable = 0;  // nothing about two-sided printing is written without it
  std::int32_t jobType = kNormalPrintJob;
  std::int32_t orientation = 1;  // 1 portrait, 2 landscape, 3 and 4 reversed
  // Square folding: possible (installed, and the stock can take it), chosen, and trimming
  // of the outer edge chosen; see kSquareFoldPossible and the next two.
  std::uint8_t finishingDialogFlags[3] = {};
  std::int32_t separatorOption = 1;
  std::unique_ptr<model::Stock> separatorStock;

  toolkit::Control* userPane = nullptr;
  toolkit::Control* bookletControl = nullptr;
  toolkit::Control* sparePane = nullptr;
  toolkit::Control* jobTypePopup = nullptr;
  toolkit::Control* jobTypeSetupButton = nullptr;
  toolkit::Control* stockSummaryView = nullptr;
  toolkit::Control* stockMenuButton = nullptr;
  toolkit::Control* twoSidedPopup = nullptr;
  toolkit::Control* twoSidedLabel = nullptr;
  toolkit::Control* staplePopup = nullptr;
  toolkit::Control* staplingLabel = nullptr;
  toolkit::Control* holePunchPopup = nullptr;
  toolkit::Control* holePunchLabel = nullptr;
  toolkit::Control* outputDestinationPopup = nullptr;
  toolkit::Control* finishingSummaryView = nullptr;
  toolkit::Control* finishingMenuButton = nullptr;
  toolkit::Control* finishingLabel = nullptr;
  // Kept by Close so that the next Open puts the summary views back where they were.
  std::optional<toolkit::Rect> stockSummaryBounds;
  std::optional<toolkit::Rect> finishingSummaryBounds;
  toolkit::Control* jobTypeIcon = nullptr;
  toolkit::Control* stockIcon = nullptr;
  toolkit::Control* twoSidedIcon = nullptr;
  toolkit::Control* finishingIcon = nullptr;
  toolkit::Control* destinationIcon = nullptr;
  toolkit::EventHandlerRef panelHandlerRef = nullptr;
  toolkit::EventHandlerRef drawHandlerRef = nullptr;

  ui::StockMenuCommandEventHandlerData stockMenu;
  std::uint8_t stockMenuBuilt = 0;

  std::unique_ptr<model::Stock> jobLevelStock;
  std::unique_ptr<model::Stock> dialogStock;  // what the stock dialogs start from

  // Mirrored from the job-type dictionary.
  std::int32_t jobMediaType = 1;
  std::string savedJobName;
  std::string jobRepositoryURL = "file:///job-repository/";
  std::optional<std::string> savedJobLocation;
  std::uint8_t useJobName = 1;
  std::uint8_t noLocation = 1;
  std::int32_t hasPasscode = 0;
  std::int32_t saveDisposition = 1;
  std::optional<plist::Dictionary> faxOptions;
  std::unique_ptr<fax::FaxRecipientList> recipients;
  std::optional<std::string> passcode;
  std::int64_t delayedPrintTime = 0;  // seconds since 1 January 1904, local time

  // Finishing.
  std::int32_t finishingOptions = 0;
  std::int32_t singleStaple = 1;    // 1 none, else 5 to 8
  std::int32_t dualStaple = 1;      // 1 none, else 10 to 13
  std::int32_t multipleStaple = 1;  // 1 none, else 54 to 57
  std::int32_t finishingCode = 0;
  std::int32_t fold = 1;
  std::int32_t bindValue = 0;
  std::int32_t punchGroup = 1;
  std::int32_t holePunch = 1;  // 1 none, 3 two holes, 2 or 4 three holes, 5 four holes
  std::int32_t punchCode = 0;
  std::int32_t offset = 1;
  std::int32_t offsetEnableSubset = 0;
  std::int32_t offsetPagesPerSubset = 1;
  std::int32_t slipSheet = 0;
  std::string customFinishing;
  // What Open found installed, and whether any staple is chosen.
  std::uint8_t stapleInstalled = 0;
  std::uint8_t punchInstalled = 0;
  std::uint8_t bookletMaker = 0;
  std::uint8_t stapleChosen = 0;
  std::int32_t coilSelected = 0;  // cleared when the stock cannot be coil bound
  CoilBinding coil;
  std::int32_t trimWidth = 50;  // tenths of a millimetre

  // Two-sided printing.
  std::int32_t duplex = 1;
  std::int32_t duplexPopupValue = 1;
  std::int32_t duplexCode = 0;
  // What two-sided printing goes back to when booklet layout is turned off.
  std::int32_t rememberedDuplex = 1;

  std::int32_t outputBin = 1;  // "Auto"

  // Booklet layout.
  std::int32_t bookletLayout = kBookletOff;
  std::int32_t drawOutlines = 0;
  std::int32_t gutter = 24;
  std::int32_t creep = 0;
  std::int32_t bookletSize = INT32_MIN;  // not set
  std::int32_t bookletCode = 0;

  plist::Dictionary jobTypeDictionary;

  // The finishing menu's flags and values for the finishing dialogs.
  std::uint8_t padPrinting = 0;
  std::uint8_t finishingMenuFlags[3] = {};
  std::int32_t finishingValues[2] = {64, 68};
  double finishingReals[2] = {0.0, 0.0};

  // Covers: the slots the ticket holds, and what the covers dialog can revert to.
  std::unique_ptr<model::Cover> frontCover;
  std::unique_ptr<model::Cover> backCover;
  std::unique_ptr<ui::CoversUndoState> coversUndo;

  // What the host's OK check reads.
  host::FirstPanelJob okCheck;
};

OSStatus PaperOutputPrologue(print::PMPDEContext* context, OSType* creator, std::string* kind,
                             std::string* title, std::uint32_t* maxH, std::uint32_t* maxV);
OSStatus PaperOutputInitialize(print::PMPDEContext context, print::PMPDEFlags* flags,
                               print::PMPDERef ref, print::ControlRef userPane,
                               print::Session* session);
OSStatus PaperOutputSync(print::PMPDEContext context, print::Session* session, bool syncDirection);
OSStatus PaperOutputGetSummaryText(print::PMPDEContext context, plist::Array* titles,
                                   plist::Array* values);
OSStatus PaperOutputOpen(print::PMPDEContext context);
OSStatus PaperOutputClose(print::PMPDEContext context);
OSStatus PaperOutputTerminate(print::PMPDEContext context, OSStatus status);

// The two halves of Sync; the session's ticket is given.
OSStatus SyncPaperOutputToTicket(PaperOutputContext* context, print::Ticket& ticket);
OSStatus SyncPaperOutputFromTicket(PaperOutputContext* context, const print::Ticket& ticket,
                                   const print::Ticket* pageFormat);

// The set-up button is enabled exactly for codes 3, 4, 5, 6, 7 and 9.
bool JobTypeHasSetup(std::int32_t jobType);
void EnableDisableJobTypeSetupButton(PaperOutputContext* context);
// The pictures of the job type and of the two-sided choice; null for none.
const char* JobTypePictureName(std::int32_t jobType);
const char* TwoSidedPictureName(std::int32_t duplex);
// The stock summary, with the separators line under a transparency.
void ShowPaperSummary(PaperOutputContext* context);
// The start of the next day, in seconds since 1 January 1904, local time.
std::int64_t NextMidnightSince1904();

OSStatus dialogHostPaperOutputEventHandler(toolkit::EventHandlerCallRef call,
                                           toolkit::EventRef event, void* context);
OSStatus PaperOutputDrawEventHandler(toolkit::EventHandlerCallRef call, toolkit::EventRef event,
                                     void* context);

}  // namespace varno::panels

extern "C" varno::OSStatus GetPaperOutputPanelInterface(varno::host::PanelInterfaceHolder** out);
