// SPDX-License-Identifier: Apache-2.0
// Status codes in words: what went wrong, for every message a person sees, as libcups'
// ppdErrorString does for PPD errors. The number follows in brackets for a bug report.
#pragma once

#include <string>

#include "platform/status.h"

namespace varno {

// A sentence for `status` ("the print settings are damaged"), without a final stop; for a
// code the table lacks, "an unexpected error". Never empty.
const char* StatusString(OSStatus status);
// StatusString followed by " (status N)".
std::string StatusMessage(OSStatus status);

}  // namespace varno
