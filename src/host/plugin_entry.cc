// SPDX-License-Identifier: Apache-2.0
#include "host/plugin_entry.h"

#include <new>

#include "host/dialog_host.h"

namespace varno::host {
namespace {

// The PDE table: the object's own entries, then the dialog host's.
constexpr print::PDEInterfaceTable kPDETable = {
    .Retain = Retain,
    .Release = Release,
    .GetAPIVersion = GetAPIVersion,
    .Prologue = HostPrologue,
    .Initialize = HostInitialize,
    .Sync = HostSync,
    .GetSummaryText = HostGetSummaryText,
    .Open = HostOpen,
    .Close = HostClose,
    .Terminate = HostTerminate,
};

VarnoPDEPlugInInstance* AsInstance(void* thisPointer) {
  return static_cast<VarnoPDEPlugInInstance*>(thisPointer);
}

}  // namespace

bundle::HRESULT QueryInterface(void* thisPointer, bundle::UUID iid, void** out) {
  if (iid == bundle::kIUnknownInterfaceID) {
    IUnknownAddRef(thisPointer);
    *out = thisPointer;
    return bundle::S_OK;
  }
  if (iid == print::kPDEInterfaceID) {
    // As the framework expects, an allocation failure still answers S_OK with null.
    *out = new (std::nothrow) print::PDEInterface{&kPDETable, 1};
    return bundle::S_OK;
  }
  *out = nullptr;
  return E_NOINTERFACE;
}

bundle::ULONG IUnknownAddRef(void* thisPointer) {
  if (!thisPointer) return 0;
  return ++AsInstance(thisPointer)->refCount;
}

bundle::ULONG IUnknownRelease(void* thisPointer) {
  if (!thisPointer) return 0;
  VarnoPDEPlugInInstance* instance = AsInstance(thisPointer);
  if (instance->refCount == 0) return 0;
  if (--instance->refCount > 0) return instance->refCount;
  bundle::CFPlugInRemoveInstanceForFactory(*instance->factoryID);
  delete instance->factoryID;
  delete instance;
  return 0;
}

OSStatus Retain(void* object) {
  if (object) ++static_cast<print::PDEInterface*>(object)->refCount;
  return noErr;
}

OSStatus Release(void** object) {
  if (!object || !*object) return noErr;
  auto* pde = static_cast<print::PDEInterface*>(*object);
  *object = nullptr;
  if (--pde->refCount <= 0) delete pde;
  return noErr;
}

OSStatus GetAPIVersion(void*, print::PMPDEVersion* version) {
  if (version) *version = print::kPDEAPIVersion;
  return noErr;
}

}  // namespace varno::host

extern "C" void* VarnoPDEPluginFactory(void*, varno::bundle::UUID typeID) {
  using namespace varno;
  if (typeID != print::kPDEPlugInType) return nullptr;
  auto* instance = new (std::nothrow) host::VarnoPDEPlugInInstance{};
  if (!instance) return nullptr;
  instance->factoryID = new (std::nothrow) bundle::UUID(host::kVarnoPDEFactoryID);
  if (!instance->factoryID) {
    delete instance;
    return nullptr;
  }
  instance->table = {nullptr, host::QueryInterface, host::IUnknownAddRef, host::IUnknownRelease};
  instance->interface = &instance->table;
  instance->refCount = 1;
  bundle::CFPlugInAddInstanceForFactory(*instance->factoryID);
  return instance;
}
