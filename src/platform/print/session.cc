// SPDX-License-Identifier: Apache-2.0
// Print sessions and their file form.
//
// A session is written as a property-list dictionary:
//
//   {
//     "Printer": { "PPD": "<path of the PPD file>" }            left out when no printer
//              | { "Queue": "<CUPS queue>", "Server": "<host[:port] or socket>" }
//                                                              Server left out for the default
//     "DataItems": { "<item name>": <ticket form, see ticket.cc>, ... }   in session order
//   }
//
// Reading is strict, as for tickets. Standard tickets missing from a file stay empty, so
// a session always has its three tickets.
#include "platform/print/session.h"

#include <unistd.h>

#include <unordered_map>
#include <utility>

#include "platform/plist/file.h"
#include "platform/print/ppd_fetch.h"

namespace varno::print {

namespace {
// Documented where declared.
Session* gCurrentSession = nullptr;
}  // namespace

Session* CurrentSession() { return gCurrentSession; }
void SetCurrentSession(Session* session) { gCurrentSession = session; }

// Data items in the order first stored, with an index so that a session file with many
// items loads in linear time.
struct Session::Items {
  std::vector<std::pair<std::string, Ticket>> entries;
  std::unordered_map<std::string, std::size_t> index;  // name -> position in entries

  // The ticket stored under name, or null.
  Ticket* find(std::string_view name) {
    auto found = index.find(std::string(name));
    return found == index.end() ? nullptr : &entries[found->second].second;
  }
  // Replaces the ticket under name in place, or appends it.
  void set(std::string_view name, const Ticket& ticket) {
    if (Ticket* present = find(name)) {
      *present = ticket;
      return;
    }
    index.emplace(std::string(name), entries.size());
    entries.emplace_back(std::string(name), ticket);
  }
};

Session::Session() : items_(std::make_unique<Items>()) {
  items_->set(kPrintSettingsTicket, Ticket());
  items_->set(kPageFormatTicket, Ticket());
  items_->set(kPrinterInfoTicket, Ticket());
}

Session::~Session() = default;

OSStatus Session::getDataItem(std::string_view name, Ticket& out) const {
  Ticket* ticket = items_->find(name);
  if (!ticket) return kPMInvalidKey;
  out = *ticket;
  return noErr;
}

void Session::setDataItem(std::string_view name, const Ticket& ticket) {
  items_->set(name, ticket);
}

std::vector<std::string> Session::dataItemNames() const {
  std::vector<std::string> names;
  for (const auto& entry : items_->entries) names.push_back(entry.first);
  return names;
}

Ticket Session::printSettings() const { return *items_->find(kPrintSettingsTicket); }
Ticket Session::pageFormat() const { return *items_->find(kPageFormatTicket); }
Ticket Session::printerInfo() const { return *items_->find(kPrinterInfoTicket); }

void Session::dropFetchedPPD() { fetchedPPD_.reset(); }

void Session::setPrinterPPD(std::string path) {
  dropFetchedPPD();
  printer_ = Printer{Printer::Kind::PPDFile, std::move(path), {}, {}};
}

void Session::setPrinterQueue(std::string queue, std::string server) {
  dropFetchedPPD();
  printer_ = Printer{Printer::Kind::Queue, {}, std::move(queue), std::move(server)};
}

std::optional<std::filesystem::path> Session::ppdPath(std::string* error) const {
  auto fail = [&](std::string text) -> std::optional<std::filesystem::path> {
    if (error) *error = std::move(text);
    return std::nullopt;
  };
  switch (printer_.kind) {
    case Printer::Kind::None:
      return fail("no printer is chosen");
    case Printer::Kind::PPDFile: {
      const std::filesystem::path path = printer_.ppdPath;
      std::error_code ec;
      if (!std::filesystem::exists(path, ec))
        return fail("PPD file \"" + printer_.ppdPath + "\" does not exist");
      if (!std::filesystem::is_regular_file(path, ec))
        return fail("PPD file \"" + printer_.ppdPath + "\" is not a regular file");
      if (::access(path.c_str(), R_OK) != 0)
        return fail("PPD file \"" + printer_.ppdPath + "\" cannot be read");
      return path;
    }
    case Printer::Kind::Queue: {
      if (!fetchedPPD_) {
        std::string message;
        fetchedPPD_ = detail::FetchQueuePPD(printer_.queue, printer_.server, &message);
        if (!fetchedPPD_) return fail(message);
      }
      return fetchedPPD_->path();
    }
  }
  return fail("unknown printer kind");
}

// ---- File form ----

namespace {

constexpr std::string_view kPrinterKey = "Printer";
constexpr std::string_view kDataItemsKey = "DataItems";
constexpr std::string_view kPPDKey = "PPD";
constexpr std::string_view kQueueKey = "Queue";
constexpr std::string_view kServerKey = "Server";

std::string KindOf(const plist::Value& value) { return plist::KindName(value.kind()); }

// Reads the "Printer" dictionary; nullopt and a message when it is malformed.
std::optional<Printer> ParsePrinter(const plist::Value& value, std::string& error) {
  const plist::Dictionary* fields = value.asDictionary();
  if (!fields) {
    error = "\"Printer\" must be a dictionary, not " + KindOf(value);
    return std::nullopt;
  }
  for (const auto& [key, unused] : *fields) {
    if (key != kPPDKey && key != kQueueKey && key != kServerKey) {
      error = "\"Printer\" has an unknown key \"" + key + "\"";
      return std::nullopt;
    }
  }
  // Each present field must be a non-empty string.
  for (std::string_view key : {kPPDKey, kQueueKey, kServerKey}) {
    const plist::Value* field = fields->find(key);
    if (field && (!field->asString() || field->asString()->empty())) {
      error = "\"Printer\" \"" + std::string(key) + "\" must be a non-empty string";
      return std::nullopt;
    }
  }
  std::optional<std::string> ppd = fields->getString(kPPDKey);
  std::optional<std::string> queue = fields->getString(kQueueKey);
  std::optional<std::string> server = fields->getString(kServerKey);
  if (ppd.has_value() == queue.has_value()) {
    error = "\"Printer\" must have exactly one of \"PPD\" and \"Queue\"";
    return std::nullopt;
  }
  if (ppd && server) {
    error = "\"Printer\" \"Server\" goes only with \"Queue\"";
    return std::nullopt;
  }
  if (ppd) return Printer{Printer::Kind::PPDFile, *ppd, {}, {}};
  return Printer{Printer::Kind::Queue, {}, *queue, server.value_or("")};
}

}  // namespace

plist::Dictionary Session::toPropertyList() const {
  plist::Dictionary form;
  if (printer_.kind == Printer::Kind::PPDFile) {
    form.set(kPrinterKey, plist::Dictionary{{std::string(kPPDKey), printer_.ppdPath}});
  } else if (printer_.kind == Printer::Kind::Queue) {
    plist::Dictionary printer{{std::string(kQueueKey), printer_.queue}};
    if (!printer_.server.empty()) printer.set(kServerKey, printer_.server);
    form.set(kPrinterKey, std::move(printer));
  }
  plist::Dictionary items;
  for (const auto& [name, ticket] : items_->entries) items.set(name, ticket.toPropertyList());
  form.set(kDataItemsKey, std::move(items));
  return form;
}

std::unique_ptr<Session> Session::fromPropertyList(const plist::Dictionary& form,
                                                   std::string* error) {
  std::string message;
  auto fail = [&](std::string text) -> std::unique_ptr<Session> {
    if (error) *error = "not a valid session: " + std::move(text);
    return nullptr;
  };
  for (const auto& [key, unused] : form) {
    if (key != kPrinterKey && key != kDataItemsKey)
      return fail("unknown key \"" + key + "\" (a session has only \"Printer\" and \"DataItems\")");
  }
  auto session = std::make_unique<Session>();
  if (const plist::Value* printer = form.find(kPrinterKey)) {
    std::optional<Printer> parsed = ParsePrinter(*printer, message);
    if (!parsed) return fail(message);
    session->printer_ = std::move(*parsed);
  }
  const plist::Value* items = form.find(kDataItemsKey);
  if (!items) return fail("no \"DataItems\" dictionary");
  if (!items->asDictionary())
    return fail("\"DataItems\" must be a dictionary, not " + KindOf(*items));
  for (const auto& [name, value] : *items->asDictionary()) {
    const std::string at = "data item \"" + name + "\": ";
    if (!value.asDictionary()) return fail(at + "must be a ticket dictionary, not " + KindOf(value));
    std::optional<Ticket> ticket = Ticket::fromPropertyList(*value.asDictionary(), &message);
    if (!ticket) return fail(at + message);
    session->items_->set(name, *ticket);
  }
  return session;
}

bool Session::save(const std::filesystem::path& path, std::string* error) const {
  plist::Dictionary form = toPropertyList();
  std::string message;
  // Never write a file that load() would refuse.
  if (!fromPropertyList(form, &message)) {
    if (error) *error = "cannot save session to " + path.string() + ": " + message;
    return false;
  }
  return plist::WriteFile(path, form, error);
}

std::unique_ptr<Session> Session::load(const std::filesystem::path& path, std::string* error) {
  std::optional<plist::Dictionary> form = plist::ReadDictionaryFile(path, error);
  if (!form) return nullptr;
  std::string message;
  std::unique_ptr<Session> session = fromPropertyList(*form, &message);
  if (!session && error) *error = path.string() + ": " + message;
  return session;
}

}  // namespace varno::print
