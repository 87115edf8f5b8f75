// Fetching a queue's PPD with libcups.
#include "platform/print/ppd_fetch.h"

#include <cups/cups.h>
#include <cups/ppd.h>
#include <stdlib.h>
#include <sys/socket.h>

#include "platform/print/ppd_calls.h"

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

struct HttpCloser {
  void operator()(http_t* http) const { httpClose(http); }
};
using Connection = std::unique_ptr<http_t, HttpCloser>;

struct AddressListFreer {
  void operator()(http_addrlist_t* list) const { httpAddrFreeList(list); }
};
using AddressList = std::unique_ptr<http_addrlist_t, AddressListFreer>;

// libcups' own account of the last failure, or `fallback` when it gives none.
std::string LastError(const char* fallback) {
  const char* text = cupsLastErrorString();
  return text && *text ? text : fallback;
}

struct Endpoint {
  std::string host;  // name, address or socket path, as httpConnect2 takes it
  int port = 0;
  std::string shown;  // how messages name the scheduler
};

// Splits "host", "host:port", "[v6]", "[v6]:port", a bare IPv6 address or a socket path.
std::optional<Endpoint> ParseServer(std::string_view server, std::string& error) {
  if (server.empty()) {
    // cupsServer() already honours CUPS_SERVER and client.conf and leaves the port to ippPort().
    std::string host = cupsServer();
    return Endpoint{host, ippPort(), "the default scheduler (" + host + ")"};
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

// CUPS queue names are printable characters other than space, "/", "\" and "#"; anything
// else cannot name a queue and must not reach a file or request path.
bool IsQueueName(std::string_view queue) {
  if (queue.empty() || queue.size() > 127) return false;
  for (unsigned char c : queue)
    if (c <= ' ' || c == 127 || c == '/' || c == '\\' || c == '#') return false;
  return true;
}

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

// Gives up on a silent scheduler instead of waiting for ever.
int GiveUp(http_t*, void*) { return 0; }

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

  // Resolving first tells an unknown host apart from a scheduler that does not answer.
  const std::string portText = std::to_string(endpoint->port);
  AddressList addresses(httpAddrGetList(endpoint->host.c_str(), AF_UNSPEC, portText.c_str()));
  if (!addresses)
    return fail("cannot find " + endpoint->shown + " to fetch the PPD of queue \"" +
                std::string(queue) + "\": " + LastError("unknown host"));
  Connection http(httpConnect2(endpoint->host.c_str(), endpoint->port, addresses.get(),
                               AF_UNSPEC, cupsEncryption(), 1, kConnectTimeoutMilliseconds,
                               nullptr));
  if (!http)
    return fail("cannot reach " + endpoint->shown + " to fetch the PPD of queue \"" +
                std::string(queue) + "\": " + LastError("no answer"));
  httpSetTimeout(http.get(), kReplyTimeoutSeconds, GiveUp, nullptr);

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
    const std::string why = LastError(httpStatus(status));
    if (status == HTTP_STATUS_NOT_FOUND)
      return fail("queue \"" + name + "\" is unknown to " + endpoint->shown +
                  " or has no PPD: " + why);
    return fail("cannot fetch the PPD of queue \"" + name + "\" from " + endpoint->shown + ": " +
                why);
  }
  return fetched;
}

}  // namespace varno::print::detail
