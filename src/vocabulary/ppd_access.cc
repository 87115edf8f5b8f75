// SPDX-License-Identifier: Apache-2.0
#include "vocabulary/ppd_access.h"

#include <iconv.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include "platform/print/ppd_calls.h"
#include "platform/print/ticket_access.h"
#include "vocabulary/choice_maps.h"
#include "vocabulary/plugin_bundle.h"

namespace varno::vocabulary {

namespace ppdcall = print::ppdcall;

namespace {

// The shared PPD of the current printer (see the header); null until opened.
ppd_file_t* gCurrentPPD = nullptr;
// The localizer plug-in that localized it, kept loaded while the PPD is open: the texts it
// wrote may point into it.
bundle::BundleRef gLocalizer;

// Calls the localizer plug-in of the plug-in bundle on `ppd`; false when there is none.
bool InvokeLocalizerPlugIn(ppd_file_t* ppd) {
  bundle::BundleRef owner = GetPDEBundle();
  if (!owner) return false;
  const std::filesystem::path path = owner->resourcesPath() / kPPDLocalizerBundle;
  std::error_code ignored;
  if (!std::filesystem::is_directory(path, ignored)) return false;
  std::string error;
  bundle::BundleRef localizer = bundle::Bundle::Open(path, &error);
  auto localize = localizer ? localizer->function<PPDLocalizer>(kPPDLocalizerFunction, &error)
                            : nullptr;
  if (!localize) {
    std::fprintf(stderr, "The PPD localizer %s could not be used (%s); the PPD's own texts are kept.\n",
                 path.c_str(), error.c_str());
    return false;
  }
  localize(ppd);
  gLocalizer = std::move(localizer);
  return true;
}

const char* IconvName(PPDEncoding encoding) {
  switch (encoding) {
    case PPDEncoding::MacRoman: return "MACINTOSH";
    case PPDEncoding::ISOLatin1: return "ISO-8859-1";
    case PPDEncoding::ISOLatin2: return "ISO-8859-2";
    case PPDEncoding::ISOLatin5: return "ISO-8859-9";
    case PPDEncoding::ShiftJIS: return "SHIFT_JIS";
    case PPDEncoding::UTF8: return "UTF-8";
  }
  return "UTF-8";
}

// `text` converted from `encoding` to UTF-8; nullopt when it is not valid in that encoding.
// UTF-8 goes through the converter too, so that a PPD that lies about its encoding cannot
// put malformed text into a menu or a ticket.
std::optional<std::string> ToUTF8(const char* text, PPDEncoding encoding) {
  iconv_t converter = iconv_open("UTF-8", IconvName(encoding));
  if (converter == reinterpret_cast<iconv_t>(-1)) return std::nullopt;
  std::size_t inLeft = std::strlen(text);
  char* in = const_cast<char*>(text);  // iconv's signature; the input is not written
  // No supported encoding turns one byte into more than three UTF-8 bytes.
  std::string out(inLeft * 3 + 4, '\0');
  char* outPtr = out.data();
  std::size_t outLeft = out.size();
  std::size_t result = iconv(converter, &in, &inLeft, &outPtr, &outLeft);
  if (result != static_cast<std::size_t>(-1))
    result = iconv(converter, nullptr, nullptr, &outPtr, &outLeft);  // flush any shift state
  iconv_close(converter);
  if (result == static_cast<std::size_t>(-1)) return std::nullopt;
  out.resize(out.size() - outLeft);
  return out;
}

}  // namespace

ppd_file_t* PPDGetCurrent() {
  if (gCurrentPPD) return gCurrentPPD;
  print::Session* session = print::GetCurrentPrintSession();
  if (!session) return nullptr;
  std::optional<std::filesystem::path> path = session->ppdPath();
  if (!path) return nullptr;
  gCurrentPPD = ppdcall::OpenFile(path->c_str());
  if (gCurrentPPD && !InvokeLocalizerPlugIn(gCurrentPPD)) ppdcall::Localize(gCurrentPPD);
  return gCurrentPPD;
}

void PPDCloseCurrent() {
  ppdcall::Close(gCurrentPPD);
  gCurrentPPD = nullptr;
  gLocalizer.reset();
}

std::optional<std::string> PPDCopyCurrentChoice(const print::Ticket* ticket,
                                                const char* keyword) {
  if (!ticket || !keyword) return std::nullopt;
  return ticket->ppdDictionary().getString(keyword);
}

void PPDSetCurrentChoice(print::Ticket* ticket, const char* keyword, const char* choice) {
  if (!ticket || !keyword || !choice) return;
  ticket->ppdDictionary().set(keyword, choice);
}

std::int32_t PPDTicketValueForChoice(const char* keyword, const char* choice) {
  if (!choice) return -1;
  const ChoiceMap* map = ChoiceMapForKeyword(keyword);
  if (!map) return -1;
  for (; map->choice; ++map)
    if (std::strcmp(map->choice, choice) == 0) return map->value;
  return -1;
}

const char* PPDChoiceForTicketValue(const char* keyword, std::int32_t value) {
  const ChoiceMap* map = ChoiceMapForKeyword(keyword);
  if (!map) return nullptr;
  for (; map->choice; ++map)
    if (map->value == value) return map->choice;
  return nullptr;
}

void PPDSetCurrentChoiceForTicketValue(print::Ticket* ticket, const char* keyword,
                                       std::int32_t value) {
  if (const char* choice = PPDChoiceForTicketValue(keyword, value))
    PPDSetCurrentChoice(ticket, keyword, choice);
}

void PPDGetTicketValueForChoiceOrDefault(ppd_file_t* ppd, const print::Ticket* ticket,
                                         const char* keyword, std::int32_t* value) {
  if (!keyword || !value) return;
  std::optional<std::string> choice = PPDCopyCurrentChoice(ticket, keyword);
  if (!choice) choice = PPDCopyDefaultChoice(ppd, keyword);
  if (!choice) return;
  *value = PPDTicketValueForChoice(keyword, choice->c_str());
}

PPDEncoding PPDGetEncoding(ppd_file_t* ppd) {
  const char* name = ppd ? ppd->lang_encoding : nullptr;
  if (!name) return PPDEncoding::MacRoman;
  if (std::strcmp(name, "ISOLatin1") == 0) return PPDEncoding::ISOLatin1;
  if (std::strcmp(name, "ISOLatin2") == 0) return PPDEncoding::ISOLatin2;
  if (std::strcmp(name, "ISOLatin5") == 0) return PPDEncoding::ISOLatin5;
  if (std::strcmp(name, "JIS83-RKSJ") == 0) return PPDEncoding::ShiftJIS;
  if (std::strcmp(name, "UTF-8") == 0 || std::strcmp(name, "UTF8") == 0) return PPDEncoding::UTF8;
  return PPDEncoding::MacRoman;
}

std::optional<std::string> PPDCopyChoiceText(ppd_file_t* ppd, const char* keyword,
                                             const char* choice) {
  if (!ppd || !keyword || !choice) return std::nullopt;
  ppd_choice_t* found = ppdcall::FindChoice(ppdcall::FindOption(ppd, keyword), choice);
  if (!found) return std::nullopt;
  return ToUTF8(found->text, PPDGetEncoding(ppd));
}

std::optional<std::string> PPDCopyDefaultChoice(ppd_file_t* ppd, const char* keyword) {
  if (!ppd || !keyword) return std::nullopt;
  ppd_option_t* option = ppdcall::FindOption(ppd, keyword);
  // An option without a *Default line has an empty default: there is none to report.
  if (!option || option->defchoice[0] == '\0') return std::nullopt;
  return std::string(option->defchoice);
}

int PPDPopulateMenuWithChoices(toolkit::Menu* menu, ppd_file_t* ppd, const char* keyword,
                               std::uint32_t commandID, bool markConflicts, const char* leftOut) {
  if (!menu || !ppd || !keyword) return 0;
  if (markConflicts) ppdcall::MarkDefaults(ppd);
  menu->deleteAllItems();
  // Keywords are ASCII in every encoding a PPD may declare, so they need no conversion.
  ppd_option_t* option = ppdcall::FindOption(ppd, keyword);
  if (!option) {
    std::fprintf(stderr, "Expected PPD option not found: %s\n", keyword);
    return menu->count();
  }
  const PPDEncoding encoding = PPDGetEncoding(ppd);
  for (int i = 0; i < option->num_choices; ++i) {
    const ppd_choice_t& choice = option->choices[i];
    if (leftOut && std::strcmp(choice.choice, leftOut) == 0) continue;
    // Marking leaves this choice marked; a positive count means it clashes with the
    // installed configuration or another marked choice, so the user cannot pick it.
    if (markConflicts && ppdcall::MarkOption(ppd, option->keyword, choice.choice) > 0) continue;
    // -1 is also the "unknown" answer, so a choice whose mapped value is -1 (Lighten1)
    // is left out as well; panels rely on -1 never being an item's value.
    std::int32_t value = PPDTicketValueForChoice(keyword, choice.choice);
    if (value == -1) {
      std::fprintf(stderr, "Skipped unrecognized choice in PPD: %s\n", choice.choice);
      continue;
    }
    // Text that is not valid in the declared encoding is shown by its keyword instead.
    std::string title = ToUTF8(choice.text, encoding).value_or(choice.choice);
    toolkit::MenuItemIndex item = menu->appendItem(std::move(title), commandID);
    if (item == 0) break;  // the menu is full
    menu->setItemRefCon(item, static_cast<toolkit::URefCon>(value));
  }
  return menu->count();
}

int PPDPopulatePopupWithChoices(toolkit::Control* popup, ppd_file_t* ppd, const char* keyword,
                                bool markConflicts, const char* leftOut) {
  if (!popup || !popup->menu() || !ppd || !keyword) return 0;
  int count = PPDPopulateMenuWithChoices(popup->menu(), ppd, keyword, 0, markConflicts, leftOut);
  popup->setMaximum(count);
  return count;
}

bool PPDChoiceConflicts(ppd_file_t* ppd, const print::Ticket* ticket, const char* keyword,
                        const char* choice) {
  if (!ppd || !keyword || !choice) return false;
  ppdcall::MarkDefaults(ppd);
  if (ticket) {
    for (const auto& [other, value] : ticket->ppdDictionary()) {
      const std::string* marked = value.asString();
      if (other != keyword && marked) ppdcall::MarkOption(ppd, other.c_str(), marked->c_str());
    }
  }
  return ppdcall::ChoiceConflicts(ppd, keyword, choice) > 0;
}

bool PPDIsFromMaker(ppd_file_t* ppd) {
  return ppd && ppd->manufacturer && std::strcmp(ppd->manufacturer, "Varno") == 0;
}

}  // namespace varno::vocabulary
