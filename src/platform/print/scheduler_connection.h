// SPDX-License-Identifier: Apache-2.0
// A connection to a CUPS scheduler, named as users name one (internal to platform/print).
#pragma once

#include <cups/cups.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace varno::print::detail {

struct HttpCloser {
  void operator()(http_t* http) const { httpClose(http); }
};
using Connection = std::unique_ptr<http_t, HttpCloser>;

// How long to wait for a scheduler to accept a connection, and for each reply after it.
inline constexpr int kConnectTimeoutMilliseconds = 2000;
inline constexpr double kReplyTimeoutSeconds = 10.0;

struct Endpoint {
  std::string host;   // name, address or socket path, as httpConnect2 takes it
  int port = 0;
  std::string shown;  // how messages name the scheduler
};

// Splits "host", "host:port", "[v6]", "[v6]:port", a bare IPv6 address or a socket path;
// empty means the default scheduler (CUPS_SERVER, client.conf).
std::optional<Endpoint> ParseServer(std::string_view server, std::string& error);

// Connects to the scheduler; null with a message ("cannot find ..." for an unknown host,
// "cannot reach ..." when nothing answers) that ends with `purpose`.
Connection ConnectToScheduler(const Endpoint& endpoint, std::string_view purpose,
                              std::string& error);

// libcups' own account of the last failure, or `fallback` when it gives none.
std::string LastCupsError(const char* fallback);

// CUPS queue names are printable characters other than space, "/", "\" and "#".
bool IsQueueName(std::string_view queue);

}  // namespace varno::print::detail
