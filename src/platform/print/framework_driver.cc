// SPDX-License-Identifier: Apache-2.0
#include "platform/print/framework_driver.h"

#include "platform/status_text.h"

#include <cstdio>
#include <utility>

namespace varno::print {
namespace {

std::string StatusText(std::int32_t status) { return StatusMessage(status); }

}  // namespace

const char* StageName(FrameworkDriver::Stage stage) {
  switch (stage) {
    case FrameworkDriver::Stage::Empty: return "Empty";
    case FrameworkDriver::Stage::Loaded: return "Loaded";
    case FrameworkDriver::Stage::Prologued: return "Prologued";
    case FrameworkDriver::Stage::Initialized: return "Initialized";
    case FrameworkDriver::Stage::Opened: return "Opened";
    case FrameworkDriver::Stage::Terminated: return "Terminated";
  }
  return "?";
}

FrameworkDriver::~FrameworkDriver() {
  // The framework always closes and terminates a PDE, also when the dialog is abandoned;
  // without it the plug-in's context would leak. Failures no longer matter here.
  if (stage_ == Stage::Opened) {
    close();
    stage_ = Stage::Initialized;
  }
  if (stage_ == Stage::Prologued || stage_ == Stage::Initialized) terminate(kPMCancel);
  release();
}

OSStatus FrameworkDriver::fail(OSStatus status, std::string text) {
  error_ = std::move(text);
  return status;
}

bool FrameworkDriver::allowed(std::initializer_list<Stage> stages, const char* call) {
  for (Stage stage : stages) {
    if (stage == stage_) return true;
  }
  error_ = std::string(call) + " is out of order: the plug-in is " + StageName(stage_);
  return false;
}

bool FrameworkDriver::present(bool hasEntry, const char* call) {
  if (hasEntry) return true;
  error_ = std::string("the plug-in has no ") + call + " entry point";
  return false;
}

void FrameworkDriver::release() {
  if (pde_) {
    void* object = std::exchange(pde_, nullptr);
    if (auto releaseObject = static_cast<PDEInterface*>(object)->vtable->Release) {
      releaseObject(&object);
    }
  }
  if (instance_) {
    bundle::IUnknownVTbl** instance = std::exchange(instance_, nullptr);
    (*instance)->Release(instance);
  }
  context_ = nullptr;
}

OSStatus FrameworkDriver::loadByIdentifier(std::string_view identifier,
                                           const bundle::UUID& type) {
  if (stage_ != Stage::Empty) return fail(kPMOutOfScope, "a plug-in is loaded already");
  std::string why;
  bundle::BundleRef found = bundle::Bundle::FindByIdentifier(identifier, &why);
  if (!found) return fail(fnfErr, "plug-in bundle not found: " + why);
  return loadBundle(std::move(found), type);
}

OSStatus FrameworkDriver::loadFromPath(const std::filesystem::path& folder,
                                       const bundle::UUID& type) {
  if (stage_ != Stage::Empty) return fail(kPMOutOfScope, "a plug-in is loaded already");
  std::string why;
  bundle::BundleRef opened = bundle::Bundle::Open(folder, &why);
  if (!opened) return fail(fnfErr, "plug-in bundle not found: " + why);
  return loadBundle(std::move(opened), type);
}

OSStatus FrameworkDriver::loadBundle(bundle::BundleRef loaded, const bundle::UUID& type) {
  if (stage_ != Stage::Empty) return fail(kPMOutOfScope, "a plug-in is loaded already");
  if (!loaded) return fail(paramErr, "no bundle given");

  std::vector<bundle::UUID> factories = bundle::FactoriesForPlugInType(*loaded, type);
  if (factories.empty()) {
    return fail(fnfErr, "bundle \"" + loaded->path().string() +
                            "\" has no factory for plug-in type " + type.toString());
  }
  void* made = nullptr;
  std::string why;
  OSStatus status = bundle::CreateInstance(*loaded, factories.front(), type, &made, &why);
  if (status != noErr) return fail(status, why);

  // From here on the instance is ours to release, and the bundle must outlive it.
  bundle_ = std::move(loaded);
  instance_ = static_cast<bundle::IUnknownVTbl**>(made);
  void* answer = nullptr;
  bundle::HRESULT result = (*instance_)->QueryInterface(instance_, kPDEInterfaceID, &answer);
  if (result != bundle::S_OK || !answer || !static_cast<PDEInterface*>(answer)->vtable) {
    release();
    bundle_.reset();
    return fail(E_NOINTERFACE, "the plug-in instance has no PDE interface (QueryInterface: " +
                                   StatusText(result) + ")");
  }
  pde_ = static_cast<PDEInterface*>(answer);
  // Without Release the object could never be freed. Empty entry points are allowed: a
  // plug-in under construction may lack some, and each call checks its own slot.
  if (!pde_->vtable->Release) {
    pde_ = nullptr;
    release();
    bundle_.reset();
    return fail(paramErr, "the plug-in's PDE interface object has no Release entry");
  }
  stage_ = Stage::Loaded;
  error_.clear();
  return noErr;
}

OSStatus FrameworkDriver::prologue() {
  if (!allowed({Stage::Loaded}, "Prologue")) return kPMOutOfScope;
  if (!present(pde_->vtable->Prologue != nullptr, "Prologue")) return paramErr;
  PrologueInfo info;
  PMPDEContext context = nullptr;
  OSStatus status = pde_->vtable->Prologue(&context, &info.creator, &info.userOptionKind,
                                           &info.title, &info.maxH, &info.maxV);
  if (status != noErr) return fail(status, "Prologue failed: " + StatusText(status));
  context_ = context;
  prologue_ = std::move(info);
  stage_ = Stage::Prologued;
  error_.clear();
  return noErr;
}

OSStatus FrameworkDriver::initialize(Session* session, ControlRef parentUserPane,
                                     PMPDERef ref) {
  if (!allowed({Stage::Prologued}, "Initialize")) return kPMOutOfScope;
  if (!present(pde_->vtable->Initialize != nullptr, "Initialize")) return paramErr;
  PMPDEFlags flags = 0;
  OSStatus status = pde_->vtable->Initialize(context_, &flags, ref, parentUserPane, session);
  if (status != noErr) return fail(status, "Initialize failed: " + StatusText(status));
  session_ = session;
  flags_ = flags;
  stage_ = Stage::Initialized;
  error_.clear();
  return noErr;
}

OSStatus FrameworkDriver::sync(bool syncDirection) {
  if (!allowed({Stage::Initialized, Stage::Opened}, "Sync")) return kPMOutOfScope;
  if (!present(pde_->vtable->Sync != nullptr, "Sync")) return paramErr;
  OSStatus status = pde_->vtable->Sync(context_, session_, syncDirection);
  if (status != noErr) return fail(status, "Sync failed: " + StatusText(status));
  error_.clear();
  return noErr;
}

OSStatus FrameworkDriver::open() {
  if (!allowed({Stage::Initialized}, "Open")) return kPMOutOfScope;
  if (!present(pde_->vtable->Open != nullptr, "Open")) return paramErr;
  OSStatus status = pde_->vtable->Open(context_);
  if (status != noErr) return fail(status, "Open failed: " + StatusText(status));
  stage_ = Stage::Opened;
  error_.clear();
  return noErr;
}

OSStatus FrameworkDriver::close() {
  if (!allowed({Stage::Opened}, "Close")) return kPMOutOfScope;
  if (!present(pde_->vtable->Close != nullptr, "Close")) return paramErr;
  OSStatus status = pde_->vtable->Close(context_);
  if (status != noErr) return fail(status, "Close failed: " + StatusText(status));
  stage_ = Stage::Initialized;
  error_.clear();
  return noErr;
}

OSStatus FrameworkDriver::getSummaryText(plist::Array& titles, plist::Array& values) {
  if (!allowed({Stage::Initialized, Stage::Opened}, "GetSummaryText")) return kPMOutOfScope;
  if (!present(pde_->vtable->GetSummaryText != nullptr, "GetSummaryText")) return paramErr;
  OSStatus status = pde_->vtable->GetSummaryText(context_, &titles, &values);
  if (status != noErr) return fail(status, "GetSummaryText failed: " + StatusText(status));
  error_.clear();
  return noErr;
}

OSStatus FrameworkDriver::terminate(OSStatus dialogStatus) {
  if (!allowed({Stage::Prologued, Stage::Initialized}, "Terminate")) return kPMOutOfScope;
  if (!present(pde_->vtable->Terminate != nullptr, "Terminate")) return paramErr;
  OSStatus status = pde_->vtable->Terminate(context_, dialogStatus);
  // Terminate frees the context whatever it returns, so there is no going back.
  context_ = nullptr;
  stage_ = Stage::Terminated;
  if (status != noErr) return fail(status, "Terminate failed: " + StatusText(status));
  error_.clear();
  return noErr;
}

OSStatus FrameworkDriver::getAPIVersion(PMPDEVersion& version) const {
  if (!pde_) return kPMOutOfScope;
  if (!pde_->vtable->GetAPIVersion) return paramErr;
  return pde_->vtable->GetAPIVersion(pde_, &version);
}

}  // namespace varno::print
