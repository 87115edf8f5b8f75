// SPDX-License-Identifier: Apache-2.0
#include "platform/print/scheduler_connection.h"

#include <cerrno>
#include <charconv>
#include <cstring>

namespace varno::print::detail {
namespace {

struct AddressListFreer {
  void operator()(http_addrlist_t* list) const { httpAddrFreeList(list); }
};
using AddressList = std::unique_ptr<http_addrlist_t, AddressListFreer>;

// Gives up on a silent scheduler instead of waiting for ever.
int GiveUp(http_t*, void*) { return 0; }

}  // namespace

std::string LastCupsError(const char* fallback) {
  const char* text = cupsLastErrorString();
  return text && *text ? text : fallback;
}

std::optional<Endpoint> ParseServer(std::string_view server, std::string& error) {
  if (server.empty()) {
    // cupsServer() already honours CUPS_SERVER and client.conf and leaves the port to ippPort().
    std::string host = cupsServer();
    const std::string shown = host.starts_with("/") ? host : host + ":" + std::to_string(ippPort());
    return Endpoint{host, ippPort(), "the default scheduler (" + shown + ")"};
  }
  const std::string shown = "the scheduler at \"" + std::string(server) + "\"";
  if (server.front() == '/') return Endpoint{std::string(server), 0, shown};

  std::string_view host = server;
  std::optional<std::string_view> port;
  if (server.front() == '[') {
    std::size_t close = server.find(']');
    if (close == std::string_view::npos ||
        (close + 1 < server.size() && server[close + 1] != ':')) {
      error = "malformed scheduler address \"" + std::string(server) + "\"";
      return std::nullopt;
    }
    host = server.substr(1, close - 1);
    if (close + 1 < server.size()) port = server.substr(close + 2);
  } else if (std::size_t colon = server.find(':');
             colon != std::string_view::npos &&
             server.find(':', colon + 1) == std::string_view::npos) {
    // Exactly one colon separates a port; more than one is a bare IPv6 address.
    host = server.substr(0, colon);
    port = server.substr(colon + 1);
  }
  int number = ippPort();
  if (port) {
    auto [end, ec] = std::from_chars(port->data(), port->data() + port->size(), number);
    if (port->empty() || ec != std::errc() || end != port->data() + port->size() || number < 1 ||
        number > 65535) {
      error = "malformed port in scheduler address \"" + std::string(server) + "\"";
      return std::nullopt;
    }
  }
  if (host.empty()) {
    error = "no host in scheduler address \"" + std::string(server) + "\"";
    return std::nullopt;
  }
  return Endpoint{std::string(host), number, shown};
}

Connection ConnectToScheduler(const Endpoint& endpoint, std::string_view purpose,
                              std::string& error) {
  // Resolving first tells an unknown host apart from a scheduler that does not answer.
  const std::string portText = std::to_string(endpoint.port);
  AddressList addresses(httpAddrGetList(endpoint.host.c_str(), AF_UNSPEC, portText.c_str()));
  if (!addresses) {
    error = "cannot find " + endpoint.shown + " " + std::string(purpose) + ": " +
            LastCupsError("unknown host");
    return nullptr;
  }
  // Made without connecting (a time limit of 0), then connected here, so the connection
  // keeps the socket's own reason ("Connection refused") when the connect fails: the
  // errno left after httpConnect2 comes from its clean-up, not from the connect.
  Connection http(httpConnect2(endpoint.host.c_str(), endpoint.port, addresses.get(), AF_UNSPEC,
                               cupsEncryption(), 1, 0, nullptr));
  if (!http || httpReconnect2(http.get(), kConnectTimeoutMilliseconds, nullptr) != 0) {
    const int reason = http ? httpError(http.get()) : ENOMEM;
    // libcups reports a connection that every address refused as EHOSTDOWN.
    const std::string why = reason == EHOSTDOWN ? "nothing accepts connections there"
                            : reason            ? std::strerror(reason)
                                                : LastCupsError("no answer");
    error = "cannot reach " + endpoint.shown + " " + std::string(purpose) + ": " + why +
            "; is the CUPS scheduler running there, and is the address right?";
    return nullptr;
  }
  httpSetTimeout(http.get(), kReplyTimeoutSeconds, GiveUp, nullptr);
  return http;
}

bool IsQueueName(std::string_view queue) {
  if (queue.empty() || queue.size() > 127) return false;
  for (unsigned char c : queue)
    if (c <= ' ' || c == 127 || c == '/' || c == '\\' || c == '#') return false;
  return true;
}

}  // namespace varno::print::detail
