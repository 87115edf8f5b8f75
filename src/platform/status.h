// SPDX-License-Identifier: Apache-2.0
// Status codes shared by every layer. Zero is success; the values are those the panels and
// hosts have always used, so a status read in a log means the same thing everywhere.
#pragma once

#include <cstdint>

namespace varno {

using OSStatus = std::int32_t;

inline constexpr OSStatus noErr = 0;
inline constexpr OSStatus paramErr = -50;                  // a bad parameter
inline constexpr OSStatus fnfErr = -43;                    // a file or folder is missing
inline constexpr OSStatus memFullErr = -108;               // out of memory
inline constexpr OSStatus kPMInvalidPDEContext = -9530;    // missing context at an entry point
inline constexpr OSStatus eventNotHandledErr = -9874;      // pass the event on
inline constexpr OSStatus kPMInvalidTicket = -30873;       // the ticket is missing or damaged
inline constexpr OSStatus kPMInvalidKey = -30875;          // no item under that key
inline constexpr OSStatus kPMInvalidValue = -30876;        // the item holds another kind
inline constexpr OSStatus kPMItemIsLocked = -30877;        // a locked item cannot be replaced
inline constexpr OSStatus kPMInvalidPrintSession = -30879; // missing session or context in Sync
inline constexpr OSStatus kPMOutOfScope = -30880;       // a call out of the framework's order
inline constexpr OSStatus kPMIOError = -30881;             // a file could not be read or written
inline constexpr OSStatus kPMPrinterNotFound = -30882;     // no printer, or its PPD is unavailable
inline constexpr OSStatus kPMCancel = 128;              // the dialog was cancelled

// Toolkit: controls, events, menus, list views and interface files.
inline constexpr OSStatus userCanceledErr = -128;             // a modal loop ended as cancelled
inline constexpr OSStatus errDataBrowserNotConfigured = -4970;  // a list view without callbacks
inline constexpr OSStatus errDataBrowserItemNotFound = -4971;   // no such row in the list view
inline constexpr OSStatus errDataBrowserPropertyNotSupported = -4979;  // a list view cannot give that property
inline constexpr OSStatus controlPropertyNotFoundErr = -5604;   // no control property under (creator, tag)
inline constexpr OSStatus menuItemNotFoundErr = -5622;          // no such menu item
inline constexpr OSStatus eventParameterNotFoundErr = -9870;    // the event lacks that parameter
inline constexpr OSStatus kInterfaceFileNotFound = -10960;      // no interface file of that name
inline constexpr OSStatus kInterfaceFileDamaged = -10961;       // the interface file cannot be read as one
inline constexpr OSStatus kInterfaceObjectNotFound = -10962;    // the file has no window of that name
inline constexpr OSStatus errDataNotSupported = -30581;         // the control keeps no data under that tag
inline constexpr OSStatus errControlDoesntSupportFocus = -30582;  // the kind never takes the keyboard focus
inline constexpr OSStatus errUnknownControl = -30584;           // no control with that ID
inline constexpr OSStatus errControlIsNotEmbedder = -30590;     // the kind cannot hold other controls
inline constexpr OSStatus errDataSizeMismatch = -30591;         // a buffer of the wrong size
inline constexpr OSStatus errControlHiddenOrDisabled = -30592;  // a person could not reach the control
inline constexpr OSStatus errCantEmbedIntoSelf = -30594;        // a control cannot hold its ancestor
inline constexpr OSStatus errCantEmbedRoot = -30595;            // a window cannot be embedded

inline constexpr OSStatus E_NOINTERFACE = static_cast<OSStatus>(0x80000004);

}  // namespace varno
