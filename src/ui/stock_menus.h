// SPDX-License-Identifier: Apache-2.0
// Stock menus and the stock summary: how a person picks a paper stock wherever one is
// picked (the job's stock, a cover's, an insert's, an exception's), and the short text
// that shows the stock beside the menu.
//
// Every call takes a job context: 0 for the job's own stock; 2 to 4 for a special page's
// stock (3 inserts, 4 exceptions), which may follow the job's setting instead (an item
// whose reference value is kUnsetValue).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "model/stock.h"
#include "platform/bundle/bundle.h"
#include "platform/toolkit/event_target.h"
#include "platform/toolkit/menu.h"

namespace varno::ui {

using JobContext = std::int32_t;
inline constexpr JobContext kJobStockContext = 0;
inline constexpr JobContext kInsertStockContext = 3;
inline constexpr JobContext kExceptionStockContext = 4;

inline constexpr toolkit::MenuCommand kStockSizeCommand = MakeOSType("Ssiz");
inline constexpr toolkit::MenuCommand kStockColorCommand = MakeOSType("Sclr");
inline constexpr toolkit::MenuCommand kStockTypeCommand = MakeOSType("Styp");
inline constexpr toolkit::MenuCommand kStockSourceCommand = MakeOSType("Ssrc");
inline constexpr toolkit::MenuCommand kDefaultStockCommand = MakeOSType("Sdef");
inline constexpr toolkit::MenuCommand kAdvancedStockCommand = MakeOSType("Sadv");
// The stock source that means "from the post-print inserter".
inline constexpr std::int32_t kPostPrintInserterSource = 10;
inline constexpr const char* kPostPrintInserterFeature = "PostPrintInserterKey";

// What StockMenuCommandEventHandler works on.
struct StockMenuCommandEventHandlerData {
  bundle::BundleRef bundle;
  model::Stock* stock = nullptr;  // not owned
  void* reserved = nullptr;       // passed on to the advanced stock selection
  JobContext jobContext = kJobStockContext;
  toolkit::Control* summaryView = nullptr;
  toolkit::Control* redrawControl = nullptr;
};

// Empties `menu` and fills it: for a special page's stock, "Other Size", "Other Color" and
// "Other Type" with their submenus and two separators; for inserts, the post-print
// inserter when it is installed. The menu's reference value becomes `handlerData`.
// paramErr for a null menu.
OSStatus PopulateStockMenu(toolkit::Menu* menu, const bundle::BundleRef& bundle,
                           JobContext jobContext, StockMenuCommandEventHandlerData* handlerData);
// Fill one submenu from the printer's "PageSize", "MediaColor" or "MediaType" choices; a
// special page's menus begin with "Use Job Setting" and leave out the choices that mean
// "unspecified". paramErr for a null menu.
OSStatus PopulateStockSizeMenu(toolkit::Menu* menu, const bundle::BundleRef& bundle, JobContext jobContext);
OSStatus PopulateStockColorMenu(toolkit::Menu* menu, const bundle::BundleRef& bundle, JobContext jobContext);
OSStatus PopulateStockTypeMenu(toolkit::Menu* menu, const bundle::BundleRef& bundle, JobContext jobContext);

// Applies a stock command ("Ssiz", "Sclr", "Styp", "Ssrc", "Sdef", "Sadv") chosen from those
// menus to the handler data's stock, shows the summary again and redraws. Returns -9874 so
// the menu's own handling goes on, 0 after a cancelled custom size; menu-enabling events
// are answered 0, anything else -9874.
OSStatus StockMenuCommandEventHandler(toolkit::EventHandlerCallRef call, toolkit::EventRef event,
                                      void* handlerData);

// Resets a stock: the job's to Letter, White, Standard; a special page's to follow the job.
// Punching, weight, modulus, coated sides and the custom texts are cleared; coating,
// finish, grain, comment and source stay.
void DefaultStock(model::Stock* stock, JobContext jobContext);

// The summary's parts joined by `separator`; nullopt for a null stock.
std::optional<std::string> GenerateStockSummary(const bundle::BundleRef& bundle, JobContext jobContext,
                                                const model::Stock* stock, std::string_view separator);
// Writes the summary, one part a line, into `view` ("Use Job Setting" or "Printer Default"
// when it is empty; nothing for a null stock). paramErr for a null bundle or view.
OSStatus ShowStockSummary(const bundle::BundleRef& bundle, toolkit::Control* view,
                          const model::Stock* stock, JobContext jobContext);

}  // namespace varno::ui
