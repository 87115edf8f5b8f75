// SPDX-License-Identifier: Apache-2.0
// Fetching a CUPS queue's PPD into a private temporary file (internal to platform/print).
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace varno::print::detail {

// A private folder in the temporary directory holding one fetched PPD. The folder and
// everything in it are removed when this object is destroyed.
class FetchedPPD {
 public:
  explicit FetchedPPD(std::filesystem::path folder);
  ~FetchedPPD();
  FetchedPPD(const FetchedPPD&) = delete;
  FetchedPPD& operator=(const FetchedPPD&) = delete;

  // Where the PPD is (or is to be) written.
  std::filesystem::path path() const { return folder_ / "printer.ppd"; }

 private:
  std::filesystem::path folder_;
};

// Fetches the PPD of CUPS queue `queue` from `server` ("host", "host:port", "[v6]:port" or
// a socket path; empty for the default scheduler). Returns the file, or null with a
// message in `error` when the queue name is unusable, no scheduler answers, the queue is
// unknown or has no PPD.
std::unique_ptr<FetchedPPD> FetchQueuePPD(std::string_view queue, std::string_view server,
                                          std::string* error);

}  // namespace varno::print::detail
