// SPDX-License-Identifier: Apache-2.0
#include "special_pages_options.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <memory>

#include "common/pane_driver.h"
#include "model/special_pages_ticket.h"
#include "panels/special_pages/special_pages_ids.h"
#include "paper_dialogs.h"
#include "platform/plist/text.h"
#include "platform/status_text.h"
#include "platform/toolkit/alerts.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/list_view.h"

namespace varno::cli {
namespace {

using toolkit::Control;
using Kind = SpecialPagesRequest::Kind;

// What the dialogs' page fields let a person type.
constexpr std::string_view kPageCharacters = "0123456789, -";
constexpr std::string_view kBeforePage1 = "before-1";
constexpr std::size_t kMaxQuantityDigits = 7;  // the quantity arrows go up to 9999999
constexpr NamedChoice kPlexWords[] = {{"one", 0}, {"long", 1}, {"short", 2}};
constexpr const char* kPlexChoices[] = {"None", "DuplexNoTumble", "DuplexTumble"};

// The pane and what the requests work on; one per run of the pane.
struct SpecialPagesPane {
  Control* pane = nullptr;  // the second pane of the window; the panel's controls inside
  toolkit::ListView* list = nullptr;
  const PPDDefaults& ppd;
  std::string* error;
};

Control* Find(const SpecialPagesPane& pane, std::int32_t id) {
  return pane.pane->findByID({panels::kSpecialPagesSignature, id});
}

toolkit::ControlID DialogControl(std::int32_t id) { return {panels::kSpecialPagesSignature, id}; }

ApplyResult Refuse(const SpecialPagesPane& pane, const SpecialPagesRequest& request, ApplyResult result,
                   const std::string& why) {
  if (pane.error) *pane.error = request.option + ": " + why;
  return result;
}

std::string Syntax(std::string_view name) {
  if (name == "--insert") return "PAGES|before-1[:qty=N][:SIZE,COLOR,TYPE]";
  if (name == "--exception") return "RANGES[:one|long|short][:SIZE,COLOR,TYPE]";
  return "all|N[,N...]";
}

bool AllDigits(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// A script step that chooses `word` in the submenu of the dialog's stock menu that
// `setting` (--paper-size, --paper-color or --paper-type) chooses from for the job. A
// word the submenu lacks cancels the dialog, and `unknown` says what it offers.
void ScriptChooseStock(toolkit::AutomationScript& script, const PPDDefaults& ppd, std::int32_t buttonID,
                       const char* setting, std::string word, std::shared_ptr<std::string> unknown) {
  SettingOption option = *FindSettingOption(setting);
  option.control = DialogControl(buttonID);
  script.add("choose " + word, [&ppd, option, word, unknown](toolkit::Window& window) {
    std::string error;
    const std::optional<SettingState> offered = DialogSettings(window, ppd).state(option, &error);
    Control* button = window.findByID(option.control);
    if (!offered || !button) return errUnknownControl;
    std::string names;
    for (std::size_t i = 0; i < offered->choices.size(); ++i) {
      const SettingChoice& choice = offered->choices[i];
      // A custom size has a dialog of its own, which nothing here fills in.
      if (plist::EqualCaseInsensitive(choice.keyword, "Custom")) continue;
      if (plist::EqualCaseInsensitive(word, choice.keyword) || plist::EqualCaseInsensitive(word, choice.text))
        return toolkit::ChooseSubmenuItem(*button, ItemWithCommand(*button->menu(), option.command),
                                          static_cast<toolkit::MenuItemIndex>(i + 1));
      names += (names.empty() ? "" : ", ") + choice.keyword;
    }
    std::string what = option.label;
    what.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(what.front())));
    *unknown = "no " + what + " \"" + word + "\" here; the choices are: " + names;
    return toolkit::SendCommand(window, toolkit::kHICommandCancel);
  });
}

void ScriptStock(toolkit::AutomationScript& script, const SpecialPagesPane& pane, const SpecialPagesRequest& request,
                 std::int32_t buttonID, const std::shared_ptr<std::string>& unknown) {
  static constexpr const char* kSettings[] = {"paper-size", "paper-color", "paper-type"};
  for (std::size_t i = 0; i < request.stock.size(); ++i)
    if (!request.stock[i].empty()) ScriptChooseStock(script, pane.ppd, buttonID, kSettings[i], request.stock[i], unknown);
}

// Presses the pane's button `buttonID`, whose dialog the queued script fills in and
// confirms with OK; the Cancel queued after OK is reached only when the dialog refused.
ApplyResult PressAndRunDialog(const SpecialPagesPane& pane, const SpecialPagesRequest& request,
                              std::int32_t buttonID, const char* dialog, const std::shared_ptr<std::string>& unknown) {
  toolkit::AutomationScript& script = toolkit::Application::shared().script();
  script.sendCommand(toolkit::kHICommandOK);
  script.sendCommand(toolkit::kHICommandCancel);
  const std::size_t noticesBefore = toolkit::HeadlessAlerts().notices().size();
  Control* button = Find(pane, buttonID);
  const OSStatus status = button ? toolkit::Click(*button) : errUnknownControl;
  const std::size_t left = script.pending();
  const std::vector<std::string> failures = script.failures();
  script.clear();
  if (!unknown->empty()) return Refuse(pane, request, ApplyResult::UnknownChoice, *unknown);
  const auto& notices = toolkit::HeadlessAlerts().notices();
  if (notices.size() > noticesBefore)
    return Refuse(pane, request, ApplyResult::Failed, notices.back().header + ". " + notices.back().message);
  if (status == errControlHiddenOrDisabled) {
    const Control* note = Find(pane, panels::kSpecialPagesNoteID);
    return Refuse(pane, request, ApplyResult::Failed,
                  note && note->isVisible() ? note->text()
                                            : std::string("the Special Pages pane does not offer this now"));
  }
  if (status != noErr)
    return Refuse(pane, request, ApplyResult::Failed, "the Special Pages pane could not open the " +
                  std::string(dialog) + " dialog: " + StatusMessage(status));
  if (!failures.empty())
    return Refuse(pane, request, ApplyResult::Failed, "the " + std::string(dialog) +
                  " dialog refused a step: " + failures.front());
  if (left > 1)
    return Refuse(pane, request, ApplyResult::Failed, "the " + std::string(dialog) +
                  " dialog did not open; reinstall the Varno printing package");
  if (left == 0)
    return Refuse(pane, request, ApplyResult::Failed, "the " + std::string(dialog) +
                  " dialog did not take the pages; check them with --list-special-pages");
  return ApplyResult::Applied;
}

ApplyResult AddInserts(const SpecialPagesPane& pane, const SpecialPagesRequest& request) {
  toolkit::AutomationScript& script = toolkit::Application::shared().script();
  script.clear();
  auto unknown = std::make_shared<std::string>();
  script.chooseMenuItemByRefCon(DialogControl(panels::kInsertOptionPopupID),
                                request.beforePage1 ? panels::kInsertBeforePage1 : panels::kInsertAfterPage);
  if (!request.beforePage1) ScriptRetype(script, DialogControl(panels::kInsertPagesFieldID), request.pages);
  if (request.quantity) ScriptRetype(script, DialogControl(panels::kInsertQuantityFieldID), *request.quantity);
  ScriptStock(script, pane, request, panels::kInsertStockButtonID, unknown);
  return PressAndRunDialog(pane, request, panels::kAddInsertsButtonID, "inserts", unknown);
}

ApplyResult AddExceptions(const SpecialPagesPane& pane, const SpecialPagesRequest& request) {
  std::optional<std::string> plexText;
  if (request.plex) {
    if (!pane.ppd.choicesOf("Duplex"))
      return Refuse(pane, request, ApplyResult::UnknownChoice,
                    "this printer has no 2-sided printing (its PPD has no \"Duplex\" option)");
    std::string error;
    plexText = ChoiceText(pane.ppd, "Duplex", *request.plex, request.option, &error);
    if (!plexText) return Refuse(pane, request, ApplyResult::UnknownChoice, error);
  }
  toolkit::AutomationScript& script = toolkit::Application::shared().script();
  script.clear();
  auto unknown = std::make_shared<std::string>();
  ScriptRetype(script, DialogControl(panels::kExceptionPagesFieldID), request.pages);
  if (plexText) script.chooseMenuItemByText(DialogControl(panels::kExceptionPlexPopupID), *plexText);
  ScriptStock(script, pane, request, panels::kExceptionStockButtonID, unknown);
  const ApplyResult result = PressAndRunDialog(pane, request, panels::kAddExceptionsButtonID, "exceptions", unknown);
  // A lone word after the ranges may have been meant as the 2-sided printing.
  if (result == ApplyResult::UnknownChoice && request.stock.size() == 1 && pane.error)
    *pane.error += "; 2-sided printing is one, long or short";
  return result;
}

// Selects the rows and presses Delete, or presses Delete All, and answers "Yes".
ApplyResult DeleteRows(const SpecialPagesPane& pane, const SpecialPagesRequest& request) {
  const std::vector<toolkit::DataBrowserItemID> rows = pane.list->items();
  // An empty list has nothing to delete: Delete All is greyed, and nothing is left to do.
  if (request.rows.empty() && rows.empty()) return ApplyResult::Applied;
  std::vector<toolkit::DataBrowserItemID> chosen;
  for (int row : request.rows) {
    if (static_cast<std::size_t>(row) > rows.size())
      return Refuse(pane, request, ApplyResult::UnknownChoice,
                    "there is no row " + std::to_string(row) + "; the list has " + std::to_string(rows.size()) +
                        " row(s), as --list-special-pages shows them");
    chosen.push_back(rows[static_cast<std::size_t>(row) - 1]);
  }
  if (!chosen.empty()) {
    if (OSStatus status = toolkit::SelectListItems(*pane.list, chosen); status != noErr)
      return Refuse(pane, request, ApplyResult::Failed, "the list refused the selection: " + StatusMessage(status));
  }
  Control* button = Find(pane, chosen.empty() ? panels::kDeleteAllSpecialPagesButtonID
                                              : panels::kDeleteSpecialPagesButtonID);
  // The answer is queued only for a button that will ask, so no other alert takes it.
  if (!button || !button->isReachable())
    return Refuse(pane, request, ApplyResult::Failed, "the pane's delete button cannot be pressed");
  toolkit::AnswerNextAlert(toolkit::kAlertStdAlertOtherButton);
  const OSStatus status = toolkit::Click(*button);
  if (status != noErr || pane.list->items().size() != rows.size() - (chosen.empty() ? rows.size() : chosen.size()))
    return Refuse(pane, request, ApplyResult::Failed,
                  "the pane did not delete the rows" + (status != noErr ? ": " + StatusMessage(status) : std::string()));
  return ApplyResult::Applied;
}

// The list as the pane shows it: its column titles, then one line a row, in columns.
std::string ListText(toolkit::ListView& list) {
  static constexpr OSType kColumns[] = {panels::kPageColumn, panels::kTypeColumn, panels::kAttributesColumn};
  std::vector<std::array<std::string, 3>> lines(1);
  for (std::size_t c = 0; c < 3; ++c)
    for (const toolkit::ListColumn& column : list.columns())
      if (column.property == kColumns[c]) lines[0][c] = column.title;
  for (toolkit::DataBrowserItemID item : list.items()) {
    std::array<std::string, 3>& line = lines.emplace_back();
    for (std::size_t c = 0; c < 3; ++c) list.cellText(item, kColumns[c], &line[c]);
  }
  std::array<std::size_t, 2> widths{};
  for (const auto& line : lines)
    for (std::size_t c = 0; c < 2; ++c) widths[c] = std::max(widths[c], plist::CharacterCount(line[c]));
  std::string text;
  for (const auto& line : lines) {
    std::string row;
    for (std::size_t c = 0; c < 2; ++c)
      row += line[c] + std::string(widths[c] + 2 - plist::CharacterCount(line[c]), ' ');
    row += line[2];
    text += row.substr(0, row.find_last_not_of(' ') + 1) + "\n";
  }
  return text;
}

// A cover as the plug-in's pane wrote it: its dictionary and its tray's PPD choice.
struct WrittenCover {
  const char* key;
  const char* trayKeyword;
  std::optional<print::TicketItem> item = {};
  std::optional<std::string> tray = {};
};

// The Special Pages pane reads a cover back from its tray alone; its paper and printed
// sides are the Paper/Output panel's. So what the pane writes for a cover it still holds is
// the poorer copy, and the plug-in's is put back; a cover deleted in the pane stays deleted.
std::array<WrittenCover, 2> CoversOf(const print::Ticket& ticket) {
  std::array<WrittenCover, 2> covers{{{model::kFrontCoverKey, "VNFrontCoverSheet"},
                                      {model::kBackCoverKey, "VNBackCoverSheet"}}};
  for (WrittenCover& cover : covers) {
    if (const print::TicketItem* item = ticket.item(cover.key)) cover.item = *item;
    cover.tray = ticket.ppdDictionary().getString(cover.trayKeyword);
  }
  return covers;
}

void PutBackCovers(const std::array<WrittenCover, 2>& covers, print::Ticket& ticket) {
  for (const WrittenCover& cover : covers) {
    if (!cover.item || !ticket.contains(cover.key)) continue;
    if (cover.item->nested)
      ticket.setTicket(cover.key, *cover.item->nested, cover.item->client, cover.item->locked);
    else
      ticket.setValue(cover.key, cover.item->value, cover.item->client, cover.item->locked);
    if (cover.tray) ticket.ppdDictionary().set(cover.trayKeyword, *cover.tray);
  }
}

ApplyResult Apply(const SpecialPagesPane& pane, const SpecialPagesRequest& request) {
  switch (request.kind) {
    case Kind::Insert: return AddInserts(pane, request);
    case Kind::Exception: return AddExceptions(pane, request);
    case Kind::Delete: return DeleteRows(pane, request);
  }
  return ApplyResult::Failed;
}

ApplyResult DrivePane(SpecialPagesPane context, const bundle::BundleRef& bundle, print::Session& session,
                      std::span<const SpecialPagesRequest> requests, std::string* list) {
  hosts::PaneDriver driver;
  auto failed = [&] {
    if (context.error) *context.error = "the Special Pages pane could not be used: " + driver.error();
    return ApplyResult::Failed;
  };
  if (driver.load(bundle, panels::kSpecialPagesPanelGetter) != noErr || driver.prologue() != noErr ||
      driver.initialize(&session, context.pane) != noErr || driver.open() != noErr || driver.sync(true) != noErr)
    return failed();
  context.list = toolkit::AsListView(Find(context, panels::kSpecialPagesListID));
  if (!context.list) {
    if (context.error) *context.error = "the Special Pages pane shows no list; reinstall the Varno printing package";
    return ApplyResult::Failed;
  }
  for (const SpecialPagesRequest& request : requests)
    if (const ApplyResult result = Apply(context, request); result != ApplyResult::Applied) return result;
  if (list) *list = ListText(*context.list);
  // Written last, after the plug-in's pane, so nothing writes over the pages.
  print::Ticket ticket = session.printSettings();
  const std::array<WrittenCover, 2> covers = CoversOf(ticket);
  if (driver.sync(false) != noErr) return failed();
  PutBackCovers(covers, ticket);
  if (driver.close() != noErr || driver.terminate(noErr) != noErr) return failed();
  return ApplyResult::Applied;
}

}  // namespace

bool IsSpecialPagesOption(std::string_view name) {
  return name == "--insert" || name == "--exception" || name == "--delete-special-pages";
}

std::optional<SpecialPagesRequest> ReadSpecialPagesOption(std::string_view name, std::string_view value,
                                                          std::string* error) {
  SpecialPagesRequest request;
  // Messages repeat the value; a long page list is cut short there.
  constexpr std::size_t kShownLength = 40;
  const std::string shown =
      value.size() > kShownLength ? std::string(value.substr(0, kShownLength)) + "..." : std::string(value);
  request.option = std::string(name) + " " + shown;
  auto wrong = [&](const std::string& why) {
    if (error) *error = std::string(name) + ": \"" + shown + "\" is not " + Syntax(name) + "; " + why;
    return std::nullopt;
  };
  if (name == "--delete-special-pages") {
    request.kind = Kind::Delete;
    if (plist::EqualCaseInsensitive(value, "all")) return request;
    for (std::string_view part : Split(value, ',')) {
      int row = 0;
      const auto [end, fault] = std::from_chars(part.data(), part.data() + part.size(), row);
      if (fault != std::errc() || end != part.data() + part.size() || row < 1)
        return wrong("give all, or the numbers of the rows that --list-special-pages shows, e.g. 1,3");
      request.rows.push_back(row);
    }
    std::sort(request.rows.begin(), request.rows.end());
    request.rows.erase(std::unique(request.rows.begin(), request.rows.end()), request.rows.end());
    return request;
  }
  request.kind = name == "--insert" ? Kind::Insert : Kind::Exception;
  const std::vector<std::string_view> parts = Split(value, ':');
  request.pages = std::string(parts[0]);
  if (request.kind == Kind::Insert && plist::EqualCaseInsensitive(parts[0], kBeforePage1)) {
    request.beforePage1 = true;
  } else if (parts[0].empty()) {
    return wrong("give the pages as numbers and ranges separated by commas, e.g. 1,3,5-12");
  } else if (const std::size_t bad = parts[0].find_first_not_of(kPageCharacters); bad != std::string_view::npos) {
    return wrong("the dialog's page field takes digits, commas, dashes and blanks, not \"" +
                 std::string(1, parts[0][bad]) + "\"");
  }
  bool stockGiven = false;
  for (std::size_t i = 1; i < parts.size(); ++i) {
    const std::string_view part = parts[i];
    const NamedChoice* plex = nullptr;
    for (const NamedChoice& word : kPlexWords)
      if (plist::EqualCaseInsensitive(part, word.word)) plex = &word;
    if (request.kind == Kind::Insert && part.starts_with("qty=")) {
      const std::string_view digits = part.substr(4);
      if (request.quantity || !AllDigits(digits) || digits.size() > kMaxQuantityDigits ||
          digits.find_first_not_of('0') == std::string_view::npos)
        return wrong("the quantity is a number of sheets from 1 to 9999999, given once");
      request.quantity = std::string(digits);
    } else if (request.kind == Kind::Exception && plex) {
      if (request.plex) return wrong("give the 2-sided printing once");
      request.plex = kPlexChoices[plex->value];
    } else {
      if (stockGiven) return wrong("give the paper once, as SIZE,COLOR,TYPE");
      stockGiven = true;
      for (std::string_view stock : Split(part, ',')) request.stock.emplace_back(stock);
      if (request.stock.size() > 3) return wrong("give the paper as SIZE,COLOR,TYPE");
    }
  }
  return request;
}

ApplyResult RunSpecialPagesPane(Control& plugInPane, const bundle::BundleRef& bundle, print::Session& session,
                                const PPDDefaults& ppd, std::span<const SpecialPagesRequest> requests,
                                std::string* list, std::string* error) {
  toolkit::Window* window = plugInPane.window();
  if (!window) return ApplyResult::Failed;
  // The pane takes the place of the plug-in's, as the framework's pane chooser shows one
  // pane at a time.
  Control* pane = window->embed(Control::create(toolkit::ControlKind::UserPane, plugInPane.bounds()));
  plugInPane.setVisible(false);
  const ApplyResult result = DrivePane({pane, nullptr, ppd, error}, bundle, session, requests, list);
  plugInPane.setVisible(true);
  return result;
}

}  // namespace varno::cli
