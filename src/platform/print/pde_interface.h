// SPDX-License-Identifier: Apache-2.0
// The print-dialog-extension (PDE) plug-in interface, shared by the plug-in and every
// program that loads it.
//
// A host loads the plug-in bundle, calls the factory that its Info.plist registers for
// kPDEPlugInType, asks the instance (an IUnknown, see platform/bundle/plugin.h) for
// kPDEInterfaceID, and drives the returned PDEInterface through its table:
// Prologue, Initialize, then Open ... Sync ... Close cycles with Sync and GetSummaryText
// between them, then Terminate.
//
// The tables hold plain function pointers. Strings and summary arrays travel as pointers
// to C++ objects: the plug-in and its hosts are built by the same toolchain against the
// same libvarno-platform. No entry point lets an exception escape; each returns a status.
#pragma once

#include <cstdint>
#include <string>

#include "platform/bundle/plugin.h"
#include "platform/bundle/uuid.h"
#include "platform/four_char_code.h"
#include "platform/plist/value.h"
#include "platform/status.h"
#include "platform/toolkit/control.h"

namespace varno::print {

class Session;

using PMPDEContext = void*;  // the plug-in's own state, made by Prologue
using varno::MakeOSType;
using varno::OSType;
using PMPDEFlags = std::uint32_t;
using PMPDERef = void*;
using ControlRef = toolkit::Control*;

// The plug-in type whose factories make PDE instances.
inline constexpr bundle::UUID kPDEPlugInType =
    bundle::MakeUUID("BDB091F4-E57F-11D3-B5CC-0050E4603277");
// The interface that QueryInterface answers with a PDEInterface.
inline constexpr bundle::UUID kPDEInterfaceID =
    bundle::MakeUUID("A996FD7E-B738-11D3-8519-0050E4603277");

struct PMPDEVersion {
  std::uint32_t buildVersionMajor;
  std::uint32_t buildVersionMinor;
  std::uint32_t baseVersionMajor;
  std::uint32_t baseVersionMinor;
};

// The interface version every plug-in of this system reports: build 1.0, base 1.0.
inline constexpr PMPDEVersion kPDEAPIVersion{1, 0, 1, 0};

// The ten entry points of a PDE, in this order. Each returns a status, 0 for success.
struct PDEInterfaceTable {
  // Adds a reference to the interface object.
  OSStatus (*Retain)(void* object) = nullptr;
  // Clears *object and drops the reference; the object is freed at zero.
  OSStatus (*Release)(void** object) = nullptr;
  OSStatus (*GetAPIVersion)(void* object, PMPDEVersion* version) = nullptr;
  // Makes the context and reports the creator, option kind, title and pane size.
  OSStatus (*Prologue)(PMPDEContext* context, OSType* creator, std::string* userOptionKind,
                       std::string* title, std::uint32_t* maxH, std::uint32_t* maxV) = nullptr;
  OSStatus (*Initialize)(PMPDEContext context, PMPDEFlags* flags, PMPDERef ref,
                         ControlRef parentUserPane, Session* session) = nullptr;
  // syncDirection true: ticket to controls; false: controls to ticket.
  OSStatus (*Sync)(PMPDEContext context, Session* session, bool syncDirection) = nullptr;
  // Appends summary titles and values, one of each per line.
  OSStatus (*GetSummaryText)(PMPDEContext context, plist::Array* titles,
                             plist::Array* values) = nullptr;
  OSStatus (*Open)(PMPDEContext context) = nullptr;
  OSStatus (*Close)(PMPDEContext context) = nullptr;
  // Frees the context; `status` tells how the dialog ended.
  OSStatus (*Terminate)(PMPDEContext context, OSStatus status) = nullptr;
};

// What QueryInterface returns for kPDEInterfaceID: a new object, reference count 1.
struct PDEInterface {
  const PDEInterfaceTable* vtable;
  std::int32_t refCount;
};

}  // namespace varno::print
