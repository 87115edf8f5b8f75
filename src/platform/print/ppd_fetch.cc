// SPDX-License-Identifier: Apache-2.0
// Fetching a queue's PPD with libcups.
#include "platform/print/ppd_fetch.h"

#include <cups/cups.h>
#include <cups/ppd.h>
#include <stdlib.h>
#include <sys/socket.h>

#include "platform/print/ppd_calls.h"
#include "platform/print/scheduler_connection.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <optional>
#include <system_error>
#include <vector>

namespace varno::print::detail {

FetchedPPD::FetchedPPD(std::filesystem::path folder) : folder_(std::move(folder)) {}

FetchedPPD::~FetchedPPD() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

namespace {

// Makes a private folder (mode 0700) for the fetched file.
std::unique_ptr<FetchedPPD> MakeFolder(std::string& error) {
  std::error_code ec;
  std::filesystem::path base = std::filesystem::temp_directory_path(ec);
  if (ec) base = "/tmp";
  std::string name = (base / "varno-ppd-XXXXXX").string();
  if (!mkdtemp(name.data())) {
    error = "cannot make a temporary folder in " + base.string() + ": " + std::strerror(errno);
    return nullptr;
  }
  return std::make_unique<FetchedPPD>(name);
}

}  // namespace

std::unique_ptr<FetchedPPD> FetchQueuePPD(std::string_view queue, std::string_view server,
                                          std::string* error) {
  std::string message;
  auto fail = [&](std::string text) -> std::unique_ptr<FetchedPPD> {
    if (error) *error = std::move(text);
    return nullptr;
  };
  if (!IsQueueName(queue)) return fail("\"" + std::string(queue) + "\" is not a CUPS queue name");
  std::optional<Endpoint> endpoint = ParseServer(server, message);
  if (!endpoint) return fail(message);

  Connection http = ConnectToScheduler(
      *endpoint, "to fetch the PPD of queue \"" + std::string(queue) + "\"", message);
  if (!http) return fail(message);

  std::unique_ptr<FetchedPPD> fetched = MakeFolder(message);
  if (!fetched) return fail(message);
  // cupsGetPPD3 writes into the file named in the buffer when it is not empty.
  const std::string target = fetched->path().string();
  std::vector<char> buffer(target.size() + 1, '\0');
  target.copy(buffer.data(), target.size());
  time_t modified = 0;
  const std::string name(queue);
  http_status_t status = ppdcall::GetPPD(http.get(), name.c_str(), &modified, buffer.data(),
                                          buffer.size());
  if (status != HTTP_STATUS_OK) {
    const std::string why = LastCupsError(httpStatus(status));
    if (status == HTTP_STATUS_NOT_FOUND)
      return fail("queue \"" + name + "\" is unknown to " + endpoint->shown +
                  " or has no PPD: " + why);
    return fail("cannot fetch the PPD of queue \"" + name + "\" from " + endpoint->shown + ": " +
                why);
  }
  return fetched;
}

}  // namespace varno::print::detail
