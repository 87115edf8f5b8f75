// SPDX-License-Identifier: Apache-2.0
// The plug-in's exported entry: the factory that the framework calls by name, the
// instance it makes (an IUnknown with its own embedded function table), and the
// reference-counted PDE interface objects that QueryInterface hands out.
#pragma once

#include <cstdint>

#include "platform/bundle/plugin.h"
#include "platform/bundle/uuid.h"
#include "platform/print/pde_interface.h"

namespace varno::host {

// The factory that Info.plist registers for the PDE plug-in type.
inline constexpr bundle::UUID kVarnoPDEFactoryID =
    bundle::MakeUUID("FD10ECA4-9139-48E2-B8BD-507DF7AA6E20");

// One plug-in instance. `interface` points at the embedded table that follows it
// (reserved word, QueryInterface, AddRef, Release), so the instance itself is what
// IUnknown callers pass as `thisPointer`.
struct VarnoPDEPlugInInstance {
  bundle::IUnknownVTbl* interface;
  bundle::IUnknownVTbl table;
  bundle::UUID* factoryID;  // owned
  std::uint32_t refCount;
};

// Answers the generic unknown interface (a new reference to the instance) and the PDE
// interface (a new PDE interface object); anything else gets null and E_NOINTERFACE.
bundle::HRESULT QueryInterface(void* thisPointer, bundle::UUID iid, void** out);
// The new reference count; 0 for a null instance.
bundle::ULONG IUnknownAddRef(void* thisPointer);
// The new reference count; at zero the instance is unregistered and freed.
bundle::ULONG IUnknownRelease(void* thisPointer);

// The PDE interface object's own entries.
OSStatus Retain(void* object);
OSStatus Release(void** object);
OSStatus GetAPIVersion(void* object, print::PMPDEVersion* version);

}  // namespace varno::host

// The factory named in Info.plist: a new instance for the PDE plug-in type, null otherwise.
extern "C" void* VarnoPDEPluginFactory(void* allocator, varno::bundle::UUID typeID);
