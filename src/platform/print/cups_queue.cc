// SPDX-License-Identifier: Apache-2.0
#include "platform/print/cups_queue.h"

#include <cups/cups.h>
#include <strings.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>

#include "platform/print/scheduler_connection.h"

namespace varno::print {
namespace {

using detail::Connection;

// Options as libcups takes them, freed with the object.
class CupsOptions {
 public:
  CupsOptions() = default;
  explicit CupsOptions(const std::vector<JobOption>& options) {
    for (const JobOption& option : options) add(option.name, option.value);
  }
  ~CupsOptions() { cupsFreeOptions(count_, options_); }
  CupsOptions(const CupsOptions&) = delete;
  CupsOptions& operator=(const CupsOptions&) = delete;

  void add(const std::string& name, const std::string& value) {
    count_ = cupsAddOption(name.c_str(), value.c_str(), count_, &options_);
  }
  int count() const { return count_; }
  cups_option_t* get() const { return options_; }

 private:
  int count_ = 0;
  cups_option_t* options_ = nullptr;
};

// The user's destinations (queues with their saved options), freed with the object.
class Destinations {
  static const char* Instance(const Destination& name) {
    return name.instance.empty() ? nullptr : name.instance.c_str();
  }

 public:
  explicit Destinations(http_t* http) { count_ = cupsGetDests2(http, &dests_); }
  ~Destinations() { cupsFreeDests(count_, dests_); }
  Destinations(const Destinations&) = delete;
  Destinations& operator=(const Destinations&) = delete;

  cups_dest_t* find(const Destination& name) const {
    return cupsGetDest(name.queue.c_str(), Instance(name), count_, dests_);
  }
  // A new instance starts as a copy of its queue's options (libcups copies them).
  cups_dest_t* findOrAdd(const Destination& name) {
    if (cups_dest_t* dest = find(name)) return dest;
    count_ = cupsAddDest(name.queue.c_str(), Instance(name), count_, &dests_);
    return find(name);
  }
  int save(http_t* http) { return cupsSetDests2(http, count_, dests_); }
  std::span<const cups_dest_t> all() const {
    return {dests_, static_cast<std::size_t>(std::max(count_, 0))};
  }

 private:
  int count_ = 0;
  cups_dest_t* dests_ = nullptr;
};

Connection Connect(std::string_view queue, std::string_view server, std::string_view purpose,
                   std::string* error) {
  std::string message;
  if (!detail::IsQueueName(queue)) message = "\"" + std::string(queue) + "\" is not a CUPS queue name";
  std::optional<detail::Endpoint> endpoint;
  if (message.empty()) endpoint = detail::ParseServer(server, message);
  Connection http;
  if (endpoint) http = detail::ConnectToScheduler(*endpoint, purpose, message);
  if (!http && error) *error = message;
  return http;
}

bool SendFile(http_t* http, const std::string& queue, int job, const std::filesystem::path& file,
              bool last, std::string* error) {
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    if (error) *error = "cannot read " + file.string() + ": " + std::strerror(errno);
    return false;
  }
  const std::string name = file.filename().string();
  if (cupsStartDocument(http, queue.c_str(), job, name.c_str(), CUPS_FORMAT_AUTO, last ? 1 : 0) !=
      HTTP_STATUS_CONTINUE) {
    if (error) *error = "queue \"" + queue + "\" refused " + file.string() + ": " +
                        detail::LastCupsError("no reason given");
    return false;
  }
  char buffer[65536];
  bool written = true;
  while (written && in) {
    in.read(buffer, sizeof buffer);
    if (in.gcount() > 0)
      written = cupsWriteRequestData(http, buffer, static_cast<std::size_t>(in.gcount())) ==
                HTTP_STATUS_CONTINUE;
  }
  const bool readAll = in.eof();
  const ipp_status_t status = cupsFinishDocument(http, queue.c_str());
  if (!written || !readAll || status > IPP_STATUS_OK_CONFLICTING) {
    if (error)
      *error = !readAll ? "reading " + file.string() + " failed"
                        : "sending " + file.string() + " to queue \"" + queue + "\" failed: " +
                              detail::LastCupsError("no reason given");
    return false;
  }
  return true;
}

// The Create-Job request made here rather than by cupsCreateJob, which looks the queue
// up on the default scheduler whatever connection it is given.
int CreateJob(http_t* http, const std::string& queue, const std::vector<JobOption>& options,
              std::string_view title) {
  const std::string resource = "/printers/" + queue;
  char uri[HTTP_MAX_URI];
  httpAssembleURI(HTTP_URI_CODING_ALL, uri, sizeof uri, "ipp", nullptr, "localhost", ippPort(),
                  resource.c_str());
  ipp_t* request = ippNewRequest(IPP_OP_CREATE_JOB);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, uri);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr,
               cupsUser());
  const std::string jobName(title);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "job-name", nullptr, jobName.c_str());
  CupsOptions cupsOptions(options);
  cupsEncodeOptions2(request, cupsOptions.count(), cupsOptions.get(), IPP_TAG_OPERATION);
  cupsEncodeOptions2(request, cupsOptions.count(), cupsOptions.get(), IPP_TAG_JOB);
  // cupsDoRequest frees the request.
  std::unique_ptr<ipp_t, decltype(&ippDelete)> response(
      cupsDoRequest(http, request, resource.c_str()), &ippDelete);
  if (!response || cupsLastError() > IPP_STATUS_OK_CONFLICTING) return 0;
  ipp_attribute_t* id = ippFindAttribute(response.get(), "job-id", IPP_TAG_INTEGER);
  return id ? ippGetInteger(id, 0) : 0;
}

}  // namespace

int SubmitJob(std::string_view queue, std::string_view server,
              std::span<const std::filesystem::path> files, const std::vector<JobOption>& options,
              std::string_view title, std::string* error) {
  for (const std::filesystem::path& file : files) {
    std::ifstream in(file, std::ios::binary);
    std::error_code ec;
    if (!in || std::filesystem::is_directory(file, ec)) {
      if (error) *error = "cannot read " + file.string() + ": " +
                          (in ? "it is a folder" : std::strerror(errno));
      return 0;
    }
  }
  const std::string name(queue);
  Connection http = Connect(queue, server, "to print on queue \"" + name + "\"", error);
  if (!http) return 0;

  const int job = CreateJob(http.get(), name, options, title);
  if (job == 0) {
    if (error) *error = "queue \"" + name + "\" refused the job: " +
                        detail::LastCupsError("no reason given");
    return 0;
  }
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (!SendFile(http.get(), name, job, files[i], i + 1 == files.size(), error)) {
      cupsCancelJob2(http.get(), name.c_str(), job, 0);
      return 0;
    }
  }
  return job;
}

Destination SplitDestination(std::string_view name) {
  const std::size_t slash = name.find('/');
  if (slash == std::string_view::npos) return {std::string(name), {}};
  return {std::string(name.substr(0, slash)), std::string(name.substr(slash + 1))};
}

std::optional<std::vector<DestinationInfo>> ListDestinations(std::string_view server,
                                                             std::string* error) {
  std::string message;
  std::optional<detail::Endpoint> endpoint = detail::ParseServer(server, message);
  Connection http;
  if (endpoint) http = detail::ConnectToScheduler(*endpoint, "to list its printers", message);
  if (!http) {
    if (error) *error = message;
    return std::nullopt;
  }
  const Destinations dests(http.get());
  std::vector<DestinationInfo> list;
  for (const cups_dest_t& dest : dests.all()) {
    DestinationInfo info{{dest.name, dest.instance ? dest.instance : ""}, {}, dest.is_default != 0};
    const char* text = cupsGetOption("printer-info", dest.num_options, dest.options);
    if (!text || !*text) text = cupsGetOption("printer-make-and-model", dest.num_options, dest.options);
    if (text) info.description = text;
    list.push_back(std::move(info));
  }
  return list;
}

bool SaveQueueDefaults(std::string_view queue, std::string_view server,
                       const std::vector<JobOption>& options, std::string* error) {
  const std::string name(queue);
  const Destination destination = SplitDestination(queue);
  Connection http = Connect(destination.queue, server,
                            "to save the defaults of queue \"" + name + "\"", error);
  if (!http) return false;
  Destinations dests(http.get());
  cups_dest_t* dest = dests.findOrAdd(destination);
  if (!dest) {
    if (error) *error = "cannot keep defaults for queue \"" + name + "\"";
    return false;
  }
  // Every saved ticket-entry option goes, in either form, so a smaller ticket leaves no
  // stale part behind; so does every option named again (libcups matches names in any case).
  for (int i = dest->num_options - 1; i >= 0; --i) {
    const JobOption saved{dest->options[i].name, dest->options[i].value};
    bool replaced = IsTicketEntryOption(saved);
    for (const JobOption& mine : options)
      replaced = replaced || strcasecmp(mine.name.c_str(), saved.name.c_str()) == 0;
    if (replaced)
      dest->num_options = cupsRemoveOption(saved.name.c_str(), dest->num_options, &dest->options);
  }
  for (const JobOption& option : options)
    dest->num_options = cupsAddOption(option.name.c_str(), option.value.c_str(), dest->num_options,
                                      &dest->options);
  if (dests.save(http.get()) != 0) {
    if (error) *error = "cannot save the defaults of queue \"" + name + "\": " +
                        detail::LastCupsError("the options file could not be written");
    return false;
  }
  return true;
}

std::optional<std::vector<JobOption>> ReadQueueDefaults(std::string_view queue,
                                                        std::string_view server,
                                                        std::string* error) {
  const std::string name(queue);
  const Destination destination = SplitDestination(queue);
  Connection http = Connect(destination.queue, server,
                            "to read the defaults of queue \"" + name + "\"", error);
  if (!http) return std::nullopt;
  Destinations dests(http.get());
  cups_dest_t* dest = dests.find(destination);
  if (!dest) {
    if (error)
      *error = destination.instance.empty()
                   ? "queue \"" + name + "\" is unknown to the scheduler"
                   : "queue \"" + destination.queue + "\" has no saved instance \"" +
                         destination.instance + "\"; make one with --save-defaults -P " + name;
    return std::nullopt;
  }
  std::vector<JobOption> options;
  for (int i = 0; i < dest->num_options; ++i)
    options.push_back({dest->options[i].name, dest->options[i].value});
  return options;
}

}  // namespace varno::print
