// SPDX-License-Identifier: Apache-2.0
// The printing framework's own entries in the print-settings ticket: what it records of
// every job besides the plug-ins' entries. Panels read them (a saved job is named after
// the job), and the hosts fill them from what the person asked for.
#pragma once

namespace varno::print {

// The job's name, as the application or the person gave it (a string).
inline constexpr const char* kJobNameKey = "com.apple.print.JobInfo.PMJobName";
// How many copies to print (an integer, 1 or more).
inline constexpr const char* kCopiesKey = "com.apple.print.PrintSettings.PMCopies";
// The pages to print, first and last (integers from 1); absent: all pages.
inline constexpr const char* kFirstPageKey = "com.apple.print.PrintSettings.PMFirstPage";
inline constexpr const char* kLastPageKey = "com.apple.print.PrintSettings.PMLastPage";
// In the page-format ticket: 1 portrait, 2 landscape, 3 reverse portrait, 4 reverse
// landscape.
inline constexpr const char* kOrientationKey = "com.apple.print.PageFormat.PMOrientation";
// The client that writes them.
inline constexpr const char* kFrameworkClient = "com.apple.print";

}  // namespace varno::print
