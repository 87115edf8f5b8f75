// SPDX-License-Identifier: Apache-2.0
// What the inserts and exceptions dialogs share: their window, the page field, the stock
// menu of the page they make, their buttons, and handing the result to the live panel.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "model/stock.h"
#include "platform/bundle/bundle.h"
#include "platform/status.h"
#include "platform/toolkit/control.h"
#include "platform/toolkit/window.h"
#include "ui/stock_menus.h"

namespace varno::panels {

inline constexpr std::int16_t kSpecialPageDialogOK = 1;
inline constexpr std::int16_t kSpecialPageDialogCancelled = 2;

// Makes the window `name` of the panel's interface file. On failure writes
// "<caller>() failed (<status>): <why>" to standard error and returns the status.
OSStatus CreateSpecialPageWindow(const bundle::BundleRef& bundle, const char* name, const char* caller,
                                 std::unique_ptr<toolkit::Window>* window);

// The page field takes only what page texts are made of: digits, commas, dashes, blanks.
void LimitToPageCharacters(toolkit::Control* field);

// Gives the stock button its menu for the page's `stock`, summed up in `summary`; `data`
// must live as long as the window.
void InstallPageStockMenu(const bundle::BundleRef& bundle, ui::JobContext jobContext, model::Stock* stock,
                          toolkit::Control* button, toolkit::Control* summary,
                          ui::StockMenuCommandEventHandlerData* data);

// Installs `handler` for the window's commands and its limited fields' input states.
void InstallSpecialPageDialogHandler(toolkit::Window& window, toolkit::EventHandlerUPP handler, void* dialog);

// OK, Cancel and Help, the same in both dialogs. OK ends the loop with kSpecialPageDialogOK
// only when the button is enabled and `accept` agrees (a key equivalent reaches here even
// while OK is dimmed: it only beeps). Returns nullopt for any other command.
std::optional<OSStatus> HandleSpecialPageDialogButton(toolkit::MenuCommand command, toolkit::Window& window,
                                                      const bundle::BundleRef& bundle, const char* helpPage,
                                                      std::int16_t* result, const std::function<bool()>& accept);

// Shows the live panel's list again after a dialog changed its pages.
void RebuildLiveSpecialPagesList();

}  // namespace varno::panels
