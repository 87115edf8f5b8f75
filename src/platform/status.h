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
inline constexpr OSStatus E_NOINTERFACE = static_cast<OSStatus>(0x80000004);

}  // namespace varno
