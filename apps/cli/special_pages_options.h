// SPDX-License-Identifier: Apache-2.0
// The options of the Special Pages pane: inserts, exception page ranges, deleting rows of
// its list and listing it. The pane is loaded beside the plug-in's own, as a printing
// framework loads it, and each option goes through its buttons and dialogs as a person's
// clicks and typing would.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dialog_settings.h"
#include "platform/bundle/bundle.h"
#include "platform/print/session.h"
#include "platform/toolkit/control.h"

namespace varno::cli {

// One special-pages option of the command line, read but not applied yet.
struct SpecialPagesRequest {
  enum class Kind { Insert, Exception, Delete };
  Kind kind = Kind::Insert;
  std::string option;                // "--insert 5,2,5", for messages
  std::string pages;                 // typed into the dialog's page field
  bool beforePage1 = false;          // --insert before-1
  std::optional<std::string> quantity;
  std::optional<std::string> plex;   // the PPD's "Duplex" choice for --exception
  std::vector<std::string> stock;    // SIZE, COLOR, TYPE; an empty part follows the job
  std::vector<int> rows;             // --delete-special-pages: 1-based rows; none: all
};

// Whether `name` ("--insert") is one of the valued special-pages options.
bool IsSpecialPagesOption(std::string_view name);
// Reads `value` of option `name`; nullopt, with what is wrong in `error`, when it does not
// follow the option's form. The stock's names are checked against the dialog later.
std::optional<SpecialPagesRequest> ReadSpecialPagesOption(std::string_view name, std::string_view value,
                                                          std::string* error);

// Loads the Special Pages pane of `bundle` into a second pane of `plugInPane`'s window, in
// its place while it is shown; reads `session`'s ticket into it, applies `requests` in order
// and writes it back, keeping the covers the plug-in's pane wrote unless a request deleted
// them. With `list`, also the pane's list: its column titles, then a line a row. UnknownChoice for a row, size, colour
// or type that is not there; Failed, with the pane's or dialog's words, otherwise.
ApplyResult RunSpecialPagesPane(toolkit::Control& plugInPane, const bundle::BundleRef& bundle,
                                print::Session& session, const PPDDefaults& ppd,
                                std::span<const SpecialPagesRequest> requests, std::string* list,
                                std::string* error);

}  // namespace varno::cli
