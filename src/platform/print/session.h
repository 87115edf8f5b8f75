// SPDX-License-Identifier: Apache-2.0
// The print session: the three tickets of one Print dialog and the current printer.
//
// The tickets are session data items under the names the panels use; reading an item
// gives a shared Ticket handle. The printer is either a PPD file on disk or a CUPS queue
// whose PPD is fetched from the scheduler on demand.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/print/ticket.h"
#include "platform/status.h"

namespace varno::print {

namespace detail {
class FetchedPPD;
}

inline constexpr std::string_view kPrintSettingsTicket = "PMPrintSettingsTicket";
inline constexpr std::string_view kPageFormatTicket = "PMPageFormatTicket";
inline constexpr std::string_view kPrinterInfoTicket = "PMPrinterInfoTicket";

// The printer a session prints to.
struct Printer {
  enum class Kind { None, PPDFile, Queue };
  Kind kind = Kind::None;
  std::string ppdPath;  // Kind::PPDFile
  std::string queue;    // Kind::Queue: the CUPS destination name
  std::string server;   // Kind::Queue: scheduler "host[:port]" or socket; empty for the default
  friend bool operator==(const Printer&, const Printer&) = default;
};

class Session {
 public:
  // A new session with three empty tickets and no printer.
  Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  // Reads the ticket stored as session data item `name`. noErr and `out` set to a handle
  // of the stored ticket when there is one; kPMInvalidKey with `out` untouched when not.
  OSStatus getDataItem(std::string_view name, Ticket& out) const;
  // Stores a handle to `ticket` under a data-item name, replacing any ticket stored there
  // (the name keeps its place).
  void setDataItem(std::string_view name, const Ticket& ticket);
  // Data-item names in the order they were first stored; the three ticket names first.
  std::vector<std::string> dataItemNames() const;

  // Handles of the three standard tickets (whatever is stored under their names now).
  Ticket printSettings() const;
  Ticket pageFormat() const;
  Ticket printerInfo() const;

  // The current printer; Kind::None until one is set.
  const Printer& printer() const { return printer_; }
  // Makes the PPD file at `path` the current printer. The path is kept as given.
  void setPrinterPPD(std::string path);
  // Makes CUPS queue `queue` on `server` (empty: the default scheduler) the current printer.
  void setPrinterQueue(std::string queue, std::string server = {});

  // The path of the current printer's PPD file. For a queue the PPD is fetched from the
  // scheduler once into a private temporary file, removed when the printer changes or the
  // session ends; a scheduler that does not answer fails after about two seconds. On
  // failure returns nullopt and says why (no printer, missing file, unknown queue, no
  // scheduler).
  std::optional<std::filesystem::path> ppdPath(std::string* error = nullptr) const;

  // Sessions save as one XML property list: the printer and every data item, with the
  // tickets' values, clients, locks, nested tickets and PPD dictionaries. save() replaces
  // the file atomically and returns false with a message on failure; load() returns null
  // with a message for a missing, unreadable or malformed file.
  bool save(const std::filesystem::path& path, std::string* error = nullptr) const;
  static std::unique_ptr<Session> load(const std::filesystem::path& path,
                                       std::string* error = nullptr);

  // The session as a property list (the form is described in session.cc), independent
  // of the session, and a new session from that form (null and a message when malformed).
  plist::Dictionary toPropertyList() const;
  static std::unique_ptr<Session> fromPropertyList(const plist::Dictionary& form,
                                                   std::string* error = nullptr);

 private:
  struct Items;
  void dropFetchedPPD();

  std::unique_ptr<Items> items_;
  Printer printer_;
  // The PPD fetched for a queue: a private temporary file removed with the session or
  // when the printer changes.
  mutable std::unique_ptr<detail::FetchedPPD> fetchedPPD_;
};

// Process-wide state: the session of the Print dialog now running, or null. It lives in
// the shared platform library so that a host and the plug-in it loads see the same one.
// Not owned and not locked: every caller runs on the dialog's main thread.
//
// Returns the current session, or null when no dialog is running.
Session* CurrentSession();
// Makes `session` (may be null) the current session; the caller keeps ownership.
void SetCurrentSession(Session* session);

}  // namespace varno::print
