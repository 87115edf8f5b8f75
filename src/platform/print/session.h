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

  // Reads the ticket stored as session data item `name`. noErr and `out` set when there
  // is one; kPMInvalidKey with `out` untouched when there is not.
  OSStatus getDataItem(std::string_view name, Ticket& out) const;
  // Stores (or replaces) a ticket under a data-item name.
  void setDataItem(std::string_view name, const Ticket& ticket);
  std::vector<std::string> dataItemNames() const;

  Ticket printSettings() const;
  Ticket pageFormat() const;
  Ticket printerInfo() const;

  const Printer& printer() const { return printer_; }
  void setPrinterPPD(std::string path);
  void setPrinterQueue(std::string queue, std::string server = {});

  // The path of the current printer's PPD file. For a queue the PPD is fetched from the
  // scheduler once into a temporary file that lives as long as the session. On failure
  // returns nullopt and says why (no printer, missing file, unknown queue, no scheduler).
  std::optional<std::filesystem::path> ppdPath(std::string* error = nullptr) const;

  // Sessions save as one XML property list: the printer and every data item, with the
  // tickets' values, clients, locks, nested tickets and PPD dictionaries.
  bool save(const std::string& path, std::string* error = nullptr) const;
  static std::unique_ptr<Session> load(const std::string& path, std::string* error = nullptr);

  plist::Dictionary toPropertyList() const;
  static std::unique_ptr<Session> fromPropertyList(const plist::Dictionary& form,
                                                   std::string* error = nullptr);

 private:
  struct Items;
  std::unique_ptr<Items> items_;
  Printer printer_;
  // The PPD fetched for a queue, removed with the session.
  mutable std::optional<std::filesystem::path> fetchedPPD_;
};

}  // namespace varno::print
