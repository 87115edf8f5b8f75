// SPDX-License-Identifier: Apache-2.0
// A second pane of the Print dialog: a panel of the loaded plug-in that the framework shows
// beside the plug-in's own pane (the Special Pages panel), reached through the panel getter
// the bundle exports, as the framework reaches any pane:
//
//   load -> Prologue -> Initialize -> { Open -> Sync* -> Close }* -> Terminate
//
// A call out of that order is refused with kPMOutOfScope and never reaches the panel. The
// destructor closes and terminates what is still open. The bundle must outlive the driver.
#pragma once

#include <memory>
#include <string>

#include "host/dialog_host.h"
#include "platform/bundle/bundle.h"
#include "platform/print/session.h"
#include "platform/status.h"
#include "platform/toolkit/control.h"

namespace varno::hosts {

class PaneDriver {
 public:
  PaneDriver() = default;
  PaneDriver(const PaneDriver&) = delete;
  PaneDriver& operator=(const PaneDriver&) = delete;
  ~PaneDriver();

  // Takes the panel's table from the function `getter` of `bundle`. fnfErr when the bundle
  // has no such function, the getter's status when it fails, paramErr when it gives no table.
  OSStatus load(const bundle::BundleRef& bundle, const char* getter);
  OSStatus prologue();
  // The panel draws into `parent` and keeps its pages in `session`'s ticket.
  OSStatus initialize(print::Session* session, toolkit::Control* parent);
  OSStatus open();
  // Writes the pane into the ticket (false) or reads it back (true). A key the pane found
  // missing (a fresh ticket, an empty list removed) is no failure.
  OSStatus sync(bool syncDirection);
  OSStatus close();
  OSStatus terminate(OSStatus status);

  bool loaded() const { return table_ != nullptr; }
  bool isOpen() const { return opened_; }
  // The pane's title from Prologue, for the framework's pane chooser.
  const std::string& title() const { return title_; }
  // What the last failed call went wrong on, in words; empty after a success.
  const std::string& error() const { return error_; }

 private:
  bool allowed(bool inOrder, const char* call);
  OSStatus result(OSStatus status, const char* call);

  std::unique_ptr<host::PanelInterface> table_;
  print::PMPDEContext context_ = nullptr;
  print::Session* session_ = nullptr;
  bool prologued_ = false;
  bool initialized_ = false;
  bool opened_ = false;
  std::string title_;
  std::string error_;
};

}  // namespace varno::hosts
