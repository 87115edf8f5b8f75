// SPDX-License-Identifier: Apache-2.0
#include "common/pane_driver.h"

#include <utility>

#include "platform/status_text.h"

namespace varno::hosts {

PaneDriver::~PaneDriver() {
  if (opened_) close();
  if (prologued_) terminate(userCanceledErr);
}

bool PaneDriver::allowed(bool inOrder, const char* call) {
  if (inOrder) return true;
  error_ = std::string(call) + " of the pane \"" + title_ + "\" is out of order";
  return false;
}

OSStatus PaneDriver::result(OSStatus status, const char* call) {
  if (status == noErr) {
    error_.clear();
  } else {
    error_ = std::string(call) + " of the pane \"" + title_ + "\" failed: " + StatusMessage(status);
  }
  return status;
}

OSStatus PaneDriver::load(const bundle::BundleRef& bundle, const char* getter) {
  if (!allowed(!table_ && bundle, "Loading")) return kPMOutOfScope;
  auto get = bundle->function<host::PanelInterfaceGetter>(getter);
  if (!get) {
    error_ = std::string("the plug-in has no pane getter ") + getter + "; reinstall the Varno printing package";
    return fnfErr;
  }
  host::PanelInterfaceHolder* holder = nullptr;
  if (OSStatus status = get(&holder); status != noErr) return result(status, "Loading");
  if (!holder || !holder->interface) {
    delete holder;
    error_ = std::string(getter) + " gave no pane";
    return paramErr;
  }
  table_.reset(holder->interface);
  delete holder;
  error_.clear();
  return noErr;
}

OSStatus PaneDriver::prologue() {
  if (!allowed(table_ && !prologued_ && table_->Prologue, "Prologue")) return kPMOutOfScope;
  OSType creator = 0;
  std::string kind;
  std::uint32_t maxH = 0, maxV = 0;
  const OSStatus status = table_->Prologue(&context_, &creator, &kind, &title_, &maxH, &maxV);
  prologued_ = status == noErr;
  return result(status, "Prologue");
}

OSStatus PaneDriver::initialize(print::Session* session, toolkit::Control* parent) {
  if (!allowed(prologued_ && !initialized_ && table_->Initialize, "Initialize")) return kPMOutOfScope;
  print::PMPDEFlags flags = 0;
  const OSStatus status = table_->Initialize(context_, &flags, nullptr, parent, session);
  initialized_ = status == noErr;
  if (initialized_) session_ = session;
  return result(status, "Initialize");
}

OSStatus PaneDriver::open() {
  if (!allowed(initialized_ && !opened_ && table_->Open, "Open")) return kPMOutOfScope;
  const OSStatus status = table_->Open(context_);
  opened_ = status == noErr;
  return result(status, "Open");
}

OSStatus PaneDriver::sync(bool syncDirection) {
  if (!allowed(initialized_ && table_->Sync, "Sync")) return kPMOutOfScope;
  OSStatus status = table_->Sync(context_, session_, syncDirection);
  // A pane reports a key it found missing: reading a ticket without some of its keys, or
  // removing an empty list's key that was never written. Neither leaves anything undone.
  if (status == kPMInvalidKey) status = noErr;
  return result(status, "Sync");
}

OSStatus PaneDriver::close() {
  if (!allowed(opened_ && table_->Close, "Close")) return kPMOutOfScope;
  opened_ = false;
  return result(table_->Close(context_), "Close");
}

OSStatus PaneDriver::terminate(OSStatus status) {
  if (!allowed(prologued_ && !opened_ && table_->Terminate, "Terminate")) return kPMOutOfScope;
  prologued_ = initialized_ = false;
  return result(table_->Terminate(std::exchange(context_, nullptr), status), "Terminate");
}

}  // namespace varno::hosts
