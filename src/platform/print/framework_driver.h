// SPDX-License-Identifier: Apache-2.0
// The framework driver: plays the printing framework's part towards a PDE plug-in.
//
// It loads the plug-in bundle, makes an instance with the factory registered for the PDE
// plug-in type, asks it for the PDE interface, and calls the entry points in the order
// the framework uses:
//
//   load -> Prologue -> Initialize -> { Open -> (Sync | GetSummaryText)* -> Close }*
//        -> Terminate
//
// with Sync and GetSummaryText also allowed between the Open/Close cycles. A call out of
// that order is refused with kPMOutOfScope and never reaches the plug-in. The destructor
// finishes what was started (Close if open, Terminate with kPMCancel if the plug-in has a
// context), then releases the PDE interface object and the instance, then the bundle, so
// no plug-in code runs after its library is closed.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/bundle/bundle.h"
#include "platform/bundle/plugin.h"
#include "platform/print/pde_interface.h"
#include "platform/status.h"

namespace varno::print {

// What the plug-in reported from Prologue.
struct PrologueInfo {
  OSType creator = 0;
  std::string userOptionKind;
  std::string title;
  std::uint32_t maxH = 0;
  std::uint32_t maxV = 0;
};

class FrameworkDriver {
 public:
  enum class Stage {
    Empty,        // nothing loaded, or loading failed
    Loaded,       // the PDE interface is at hand; Prologue is next
    Prologued,    // the plug-in has a context; Initialize is next
    Initialized,  // closed: Open, Sync, GetSummaryText or Terminate
    Opened,       // Sync, GetSummaryText or Close
    Terminated,   // the context is gone; only destruction remains
  };

  FrameworkDriver() = default;
  FrameworkDriver(const FrameworkDriver&) = delete;
  FrameworkDriver& operator=(const FrameworkDriver&) = delete;
  // Closes and terminates a plug-in left open, then releases everything.
  ~FrameworkDriver();

  // Finds the bundle by identifier (Bundle::FindByIdentifier) and loads it as loadBundle
  // does. fnfErr when no such bundle exists.
  OSStatus loadByIdentifier(std::string_view identifier, const bundle::UUID& type = kPDEPlugInType);
  // Opens the bundle folder and loads it as loadBundle does. fnfErr when it is no bundle.
  OSStatus loadFromPath(const std::filesystem::path& folder,
                        const bundle::UUID& type = kPDEPlugInType);
  // Makes an instance with the first factory that the bundle registers for `type` and
  // asks it for the PDE interface. noErr and stage Loaded on success. Otherwise:
  // fnfErr when no factory is registered for the type or its function is not exported,
  // paramErr when the factory made nothing or the interface object has no Release,
  // E_NOINTERFACE when the instance has no PDE interface; error() says which, and the
  // stage stays Empty. kPMOutOfScope when something is loaded already.
  OSStatus loadBundle(bundle::BundleRef bundle, const bundle::UUID& type = kPDEPlugInType);

  // The entry points. Each returns the plug-in's status, kPMOutOfScope without calling it
  // when the stage does not allow the call, or paramErr when the plug-in left that entry
  // point empty. A call that fails leaves the stage as it was, except Terminate, after
  // which the context is gone whatever it returned.
  OSStatus prologue();
  // Stores `session` for the later Sync calls; the driver does not own it.
  OSStatus initialize(Session* session, ControlRef parentUserPane = nullptr,
                      PMPDERef ref = nullptr);
  OSStatus sync(bool syncDirection);
  OSStatus open();
  OSStatus close();
  // Appends the plug-in's summary lines to `titles` and `values`.
  OSStatus getSummaryText(plist::Array& titles, plist::Array& values);
  OSStatus terminate(OSStatus status);
  // Asks the interface object for its version; kPMOutOfScope before loading, paramErr
  // when the plug-in has no GetAPIVersion.
  OSStatus getAPIVersion(PMPDEVersion& version) const;

  Stage stage() const { return stage_; }
  // Why the last failed step failed; empty after a success.
  const std::string& error() const { return error_; }
  // What Prologue reported; zeros and empty strings before it.
  const PrologueInfo& prologueInfo() const { return prologue_; }
  // The flags Initialize returned.
  PMPDEFlags flags() const { return flags_; }
  // The loaded bundle, or null.
  const bundle::BundleRef& bundle() const { return bundle_; }
  // The plug-in instance (its first word is the IUnknown table), or null. Still owned by
  // the driver.
  bundle::IUnknownVTbl** instance() const { return instance_; }
  // The PDE interface object, or null. Still owned by the driver.
  PDEInterface* pdeInterface() const { return pde_; }

 private:
  // False, with error() set, unless the stage is one of `allowed`.
  bool allowed(std::initializer_list<Stage> allowed, const char* call);
  // False, with error() set, when the plug-in left the entry point empty.
  bool present(bool hasEntry, const char* call);
  OSStatus fail(OSStatus status, std::string text);
  void release();

  // Declared first so it is destroyed last: the library outlives every object from it.
  bundle::BundleRef bundle_;
  bundle::IUnknownVTbl** instance_ = nullptr;
  PDEInterface* pde_ = nullptr;
  PMPDEContext context_ = nullptr;
  Session* session_ = nullptr;
  PMPDEFlags flags_ = 0;
  PrologueInfo prologue_;
  Stage stage_ = Stage::Empty;
  std::string error_;
};

// A name for a stage, for diagnostics ("Loaded", "Opened" ...).
const char* StageName(FrameworkDriver::Stage stage);

}  // namespace varno::print
