// SPDX-License-Identifier: Apache-2.0
// The component plug-in model: a bundle's Info.plist maps plug-in types to factories
// (CFPlugInTypes: type UUID -> [factory UUID ...]) and factories to exported function
// names (CFPlugInFactories: factory UUID -> "FunctionName"). A factory makes an instance
// whose first word points to an IUnknown-style function table; the host asks it for
// interfaces by UUID and releases it by reference counting.
//
// Everything here crosses the plug-in boundary as plain structs and function pointers,
// and nothing throws.
//
// Process-wide state: the live-instance count per factory, guarded by a mutex. Plug-ins
// report their instances through CFPlugInAddInstanceForFactory and
// CFPlugInRemoveInstanceForFactory; hosts read the count to see that everything they made
// was released. The bundle that made an instance must stay open (its BundleRef held)
// until that instance is released, since the instance's code lives in its library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/bundle/bundle.h"
#include "platform/bundle/uuid.h"
#include "platform/status.h"

namespace varno::bundle {

using HRESULT = std::int32_t;
using ULONG = std::uint32_t;

// Results of QueryInterface; the refusal is varno::E_NOINTERFACE (0x80000004).
inline constexpr HRESULT S_OK = 0;

// The interface every plug-in instance answers.
inline constexpr UUID kIUnknownInterfaceID = MakeUUID("00000000-0000-0000-C000-000000000046");

// The function table at the start of every plug-in instance. An instance is laid out as
// { IUnknownVTbl* interface; ... }, and every call passes the instance as `thisPointer`.
struct IUnknownVTbl {
  void* reserved;  // always null
  // Stores a referenced interface in *out and returns S_OK, or stores null and returns
  // E_NOINTERFACE.
  HRESULT (*QueryInterface)(void* thisPointer, UUID iid, void** out);
  // Return the new reference count.
  ULONG (*AddRef)(void* thisPointer);
  ULONG (*Release)(void* thisPointer);
};

// The exported factory: a new instance for `typeID` (reference count 1), or null when the
// factory does not make that type. `allocator` is unused and passed as null.
using PlugInFactoryFunction = void* (*)(void* allocator, UUID typeID);

// Counts one more live instance made by `factoryID`.
void CFPlugInAddInstanceForFactory(const UUID& factoryID);
// Counts one instance of `factoryID` fewer; a count already at zero stays at zero.
void CFPlugInRemoveInstanceForFactory(const UUID& factoryID);
// The number of live instances of `factoryID`.
int InstanceCountForFactory(const UUID& factoryID);

// The factories that the bundle's CFPlugInTypes lists for `typeID`, in listed order.
// Keys and entries that are not well-formed UUID strings are skipped.
std::vector<UUID> FactoriesForPlugInType(const Bundle& bundle, const UUID& typeID);

// The name CFPlugInFactories gives the function of `factoryID`; empty when none.
std::string FactoryFunctionName(const Bundle& bundle, const UUID& factoryID);

// Looks up the factory function of `factoryID` in the bundle's library (loading it) and
// calls it for `typeID`. noErr with the new instance in *instance; otherwise *instance is
// null and `error` says why: fnfErr when the factory is not registered or its function is
// not exported, paramErr when the factory made nothing for the type.
OSStatus CreateInstance(const Bundle& bundle, const UUID& factoryID, const UUID& typeID,
                        void** instance, std::string* error = nullptr);

}  // namespace varno::bundle
