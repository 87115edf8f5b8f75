// SPDX-License-Identifier: Apache-2.0
#include "platform/print/job_options.h"

#include <cups/cups.h>

#include <cstdint>
#include <map>
#include <set>

#include "platform/plist/file.h"

namespace varno::print {
namespace {

using Entries = std::vector<std::pair<std::string, plist::Value>>;

// Base64 characters per part: the rest of an option value is the "<part>/<parts>:" prefix.
constexpr std::size_t kPartText = 240;
constexpr std::size_t kMaxParts = (kMaxTicketEntriesText + kPartText - 1) / kPartText;
static_assert(kMaxParts < 100000 && kPartText + 2 * 5 + 2 <= kMaxJobOptionValueLength,
              "a part's prefix and text must fit one option value");

constexpr std::string_view kBase64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Standard padded base64 of `bytes`.
std::string Base64(std::string_view bytes) {
  std::string text;
  text.reserve(4 * ((bytes.size() + 2) / 3));
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t left = bytes.size() - i;
    std::uint32_t n = std::uint32_t(static_cast<unsigned char>(bytes[i])) << 16;
    if (left > 1) n |= std::uint32_t(static_cast<unsigned char>(bytes[i + 1])) << 8;
    if (left > 2) n |= static_cast<unsigned char>(bytes[i + 2]);
    text += kBase64Alphabet[(n >> 18) & 63];
    text += kBase64Alphabet[(n >> 12) & 63];
    text += left > 1 ? kBase64Alphabet[(n >> 6) & 63] : '=';
    text += left > 2 ? kBase64Alphabet[n & 63] : '=';
  }
  return text;
}

// The value of one base64 digit, or -1.
int Base64Digit(char c) {
  const std::size_t at = kBase64Alphabet.find(c);
  return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

// True when `text` holds only base64 digits and padding.
bool IsBase64Text(std::string_view text) {
  for (char c : text)
    if (c != '=' && Base64Digit(c) < 0) return false;
  return true;
}

// The bytes of strict padded base64 text, or nullopt for anything else.
std::optional<std::string> FromBase64(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3);
  for (std::size_t i = 0; i < text.size(); i += 4) {
    const bool last = i + 4 == text.size();
    const int pad = text[i + 3] != '=' ? 0 : text[i + 2] == '=' ? 2 : 1;
    if (pad > 0 && !last) return std::nullopt;
    std::uint32_t n = 0;
    for (int j = 0; j < 4; ++j) {
      const int digit = j >= 4 - pad ? 0 : Base64Digit(text[i + j]);
      if (digit < 0) return std::nullopt;
      n = (n << 6) | static_cast<std::uint32_t>(digit);
    }
    bytes += static_cast<char>(n >> 16);
    if (pad < 2) bytes += static_cast<char>((n >> 8) & 0xFF);
    if (pad < 1) bytes += static_cast<char>(n & 0xFF);
  }
  return bytes;
}

// A decimal number from 1 to `max` without sign or leading zero, or nullopt.
std::optional<std::size_t> ParseCount(std::string_view text, std::size_t max) {
  if (text.empty() || text.size() > 9 || text[0] == '0') return std::nullopt;
  std::size_t n = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    n = n * 10 + static_cast<std::size_t>(c - '0');
  }
  if (n > max) return std::nullopt;
  return n;
}

char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// True when the name is reserved for the ticket entries (libcups matches names in any case).
bool IsReservedName(std::string_view name) {
  if (name.size() < kTicketEntriesOption.size()) return false;
  for (std::size_t i = 0; i < kTicketEntriesOption.size(); ++i)
    if (LowerAscii(name[i]) != kTicketEntriesOption[i]) return false;
  return true;
}

// True for a name IPP and libcups carry unchanged: letters, digits, '-', '.' and '_'.
bool IsOptionName(std::string_view name) {
  if (name.empty() || name.size() > kMaxJobOptionValueLength) return false;
  for (char c : name) {
    const bool alnum = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    if (!alnum && c != '-' && c != '.' && c != '_') return false;
  }
  return true;
}

std::string Quoted(std::string_view s) { return "\"" + std::string(s) + "\""; }

// The dictionary of entries held in a binary property list's base64 text.
std::optional<Entries> EntriesFromText(std::string_view text, std::string& why) {
  std::optional<std::string> binary = FromBase64(text);
  if (!binary) {
    why = "the joined parts are no base64 text";
    return std::nullopt;
  }
  std::string parseError;
  std::optional<plist::Value> value = plist::Parse(*binary, &parseError);
  if (!value) {
    why = "the joined parts hold no property list (" + parseError + ")";
    return std::nullopt;
  }
  const plist::Dictionary* dictionary = value->asDictionary();
  if (!dictionary) {
    why = "the joined parts hold a " + std::string(plist::KindName(value->kind())) +
          ", not a dictionary of entries";
    return std::nullopt;
  }
  Entries entries;
  for (const auto& [key, entry] : *dictionary) entries.emplace_back(key, entry);
  return entries;
}

// One part of the current form, read from its option.
struct Part {
  std::size_t number = 0, count = 0;
  std::string_view text;
};

// Reads option "ticket-entries-<n>" = "<n>/<count>:<text>"; nullopt and `why` when damaged.
std::optional<Part> ReadPart(const JobOption& option, std::string& why) {
  const std::string_view name = option.name, value = option.value;
  const std::string_view suffix = name.substr(kTicketEntriesOption.size());
  std::optional<std::size_t> number;
  if (suffix.size() > 1 && suffix[0] == '-') number = ParseCount(suffix.substr(1), kMaxParts);
  if (!number) {
    why = "option " + Quoted(name) + " is no part name (parts are " +
          std::string(kTicketEntriesOption) + "-1 to -" + std::to_string(kMaxParts) + ")";
    return std::nullopt;
  }
  const std::string part = "part " + std::to_string(*number);
  const std::size_t slash = value.find('/'), colon = value.find(':');
  if (slash == std::string_view::npos || colon == std::string_view::npos || colon < slash) {
    why = part + " does not read \"<part>/<parts>:<base64>\"";
    return std::nullopt;
  }
  std::optional<std::size_t> said = ParseCount(value.substr(0, slash), kMaxParts);
  std::optional<std::size_t> count = ParseCount(value.substr(slash + 1, colon - slash - 1), kMaxParts);
  const std::string_view text = value.substr(colon + 1);
  if (!said || !count) {
    why = part + " gives no part number and count from 1 to " + std::to_string(kMaxParts);
  } else if (*said != *number) {
    why = "option " + Quoted(name) + " holds part " + std::to_string(*said);
  } else if (*number > *count) {
    why = part + " lies beyond the " + std::to_string(*count) + " parts it announces";
  } else if (text.empty() || text.size() > kPartText || !IsBase64Text(text)) {
    why = part + " holds no base64 text of 1 to " + std::to_string(kPartText) + " characters";
  } else {
    return Part{*number, *count, text};
  }
  return std::nullopt;
}

// The entries of the current form: nullopt with `why` when damaged, an empty list when
// `options` holds no reserved option (`found` false).
std::optional<Entries> DecodeParts(const std::vector<JobOption>& options, bool& found,
                                   std::string& why) {
  std::vector<Part> parts;
  for (const JobOption& option : options) {
    if (!IsReservedName(option.name)) continue;
    found = true;
    // Bounded before anything grows: at most kMaxParts parts are ever kept.
    if (parts.size() == kMaxParts) {
      why = "more than " + std::to_string(kMaxParts) + " parts";
      return std::nullopt;
    }
    std::optional<Part> part = ReadPart(option, why);
    if (!part) return std::nullopt;
    if (!parts.empty() && part->count != parts.front().count) {
      why = "part " + std::to_string(part->number) + " announces " + std::to_string(part->count) +
            " parts, part " + std::to_string(parts.front().number) + " " +
            std::to_string(parts.front().count);
      return std::nullopt;
    }
    parts.push_back(*part);
  }
  if (parts.empty()) return Entries{};
  const std::size_t count = parts.front().count;
  std::vector<std::string_view> texts(count);
  for (const Part& part : parts) {
    if (!texts[part.number - 1].empty()) {
      why = "part " + std::to_string(part.number) + " appears twice";
      return std::nullopt;
    }
    texts[part.number - 1] = part.text;
  }
  std::string text;
  text.reserve(count * kPartText);
  for (std::size_t i = 0; i < count; ++i) {
    if (texts[i].empty()) {
      why = "part " + std::to_string(i + 1) + " of " + std::to_string(count) + " is missing";
      return std::nullopt;
    }
    text += texts[i];
  }
  return EntriesFromText(text, why);
}

// ---- The older per-key form ----

// "<number>*<base64 text>" of the older form: the number and the text, or nullopt.
std::optional<std::pair<std::size_t, std::string_view>> SplitOldPart(std::string_view value) {
  const std::size_t star = value.find('*');
  if (star == std::string_view::npos) return std::nullopt;
  std::optional<std::size_t> number = ParseCount(value.substr(0, star), kMaxParts);
  const std::string_view text = value.substr(star + 1);
  if (!number || !IsBase64Text(text)) return std::nullopt;
  return std::pair{*number, text};
}

// True for an option the older form wrote: a key with a "." and an encoded value.
bool IsOldFormOption(const JobOption& option) {
  return option.name.find('.') != std::string::npos && SplitOldPart(option.value).has_value();
}

// The entries of the older form. A name "<key>--<n>" is a later part only when "<key>" is
// an entry of at least n parts and the value is numbered n; otherwise it is an entry of
// its own. Options of other shapes (a PPD choice whose keyword has a ".") are left out.
std::optional<Entries> DecodeOldForm(const std::vector<JobOption>& options, std::string& why) {
  // As libcups does, a name given twice keeps its last value.
  std::map<std::string_view, std::string_view, std::less<>> byName;
  for (const JobOption& option : options)
    if (IsOldFormOption(option)) byName[option.name] = option.value;
  auto partsOf = [&](std::string_view name) -> std::size_t {
    auto found = byName.find(name);
    return found == byName.end() ? 0 : SplitOldPart(found->second)->first;
  };

  Entries entries;
  std::set<std::string_view> done;
  for (const JobOption& option : options) {
    if (!IsOldFormOption(option) || !done.insert(option.name).second) continue;
    const std::string_view name = option.name, value = byName[name];
    const std::size_t separator = name.rfind("--");
    if (separator != std::string_view::npos && separator > 0) {
      std::optional<std::size_t> n = ParseCount(name.substr(separator + 2), kMaxParts);
      if (n && *n >= 2 && partsOf(name.substr(0, separator)) >= *n &&
          SplitOldPart(value)->first == *n)
        continue;
    }
    const auto [count, first] = *SplitOldPart(value);
    std::string text(first);
    for (std::size_t part = 2; part <= count; ++part) {
      const std::string partName = option.name + "--" + std::to_string(part);
      auto found = byName.find(partName);
      std::optional<std::pair<std::size_t, std::string_view>> next;
      if (found != byName.end()) next = SplitOldPart(found->second);
      if (!next || next->first != part) {
        why = "option " + Quoted(name) + ": part " + std::to_string(part) + " of " +
              std::to_string(count) + (next ? " is misnumbered" : " is missing");
        return std::nullopt;
      }
      text += next->second;
    }
    std::optional<std::string> binary = FromBase64(text);
    std::string parseError;
    std::optional<plist::Value> decoded = binary ? plist::Parse(*binary, &parseError) : std::nullopt;
    if (!decoded) {
      why = "option " + Quoted(name) + " holds " +
            (binary ? "no property list (" + parseError + ")" : "damaged base64 text");
      return std::nullopt;
    }
    entries.emplace_back(option.name, std::move(*decoded));
  }
  return entries;
}

}  // namespace

std::optional<std::vector<JobOption>> EncodeTicketEntries(const plist::Dictionary& entries,
                                                          std::string* error) {
  std::vector<JobOption> options;
  if (entries.empty()) return options;
  std::string why;
  std::optional<std::string> binary = plist::ToBinary(plist::Value(entries), &why);
  if (!binary) {
    if (error) *error = "the ticket entries cannot be encoded: " + why;
    return std::nullopt;
  }
  // Checked before the text is made, so a huge ticket costs no second copy.
  const std::size_t size = 4 * ((binary->size() + 2) / 3);
  if (size > kMaxTicketEntriesText) {
    if (error)
      *error = "the ticket entries take " + std::to_string(size / 1024) + " KiB as job options, " +
               "more than the " + std::to_string(kMaxTicketEntriesText / 1024) +
               " KiB a job carries; remove special pages, inserts or notes and try again";
    return std::nullopt;
  }
  // A value the property-list writer cannot keep exactly (text that is not UTF-8, say)
  // is refused here rather than reaching the driver shortened or unreadable.
  std::optional<plist::Value> back = plist::Parse(*binary, &why);
  if (!back || !(*back == plist::Value(entries))) {
    if (error)
      *error = "the ticket entries cannot be encoded exactly (" +
               (back ? std::string("a value changed on the way, such as text that is not UTF-8")
                     : why) +
               "); correct or remove the damaged setting and try again";
    return std::nullopt;
  }
  const std::string text = Base64(*binary);
  const std::size_t count = (text.size() + kPartText - 1) / kPartText;
  const std::string total = "/" + std::to_string(count) + ":";
  options.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::string number = std::to_string(i + 1);
    options.push_back({std::string(kTicketEntriesOption) + "-" + number,
                       number + total + text.substr(i * kPartText, kPartText)});
  }
  return options;
}

std::optional<std::vector<JobOption>> EncodeTicketEntry(std::string_view key,
                                                        const plist::Value& value,
                                                        std::string* error) {
  plist::Dictionary entries;
  entries.set(key, value);
  return EncodeTicketEntries(entries, error);
}

std::optional<std::vector<JobOption>> TicketToJobOptions(const Ticket& printSettings,
                                                         std::string* error) {
  auto fail = [error](std::string why) -> std::optional<std::vector<JobOption>> {
    if (error) *error = std::move(why);
    return std::nullopt;
  };
  std::vector<JobOption> options;
  const plist::Dictionary ppd = printSettings.ppdDictionary();
  for (const auto& [keyword, choice] : ppd) {
    if (!IsOptionName(keyword))
      return fail("PPD option " + Quoted(keyword) + " cannot travel as a job option: an option " +
                  "name has 1 to 255 letters, digits, '-', '.' or '_'; remove it from the ticket");
    if (IsReservedName(keyword))
      return fail("PPD option " + Quoted(keyword) + " has a name reserved for the ticket " +
                  "entries (\"" + std::string(kTicketEntriesOption) + "...\"); rename it in the PPD");
    const std::string* text = choice.asString();
    if (!text)
      return fail("the choice of PPD option " + Quoted(keyword) + " is a " +
                  plist::KindName(choice.kind()) + ", not a keyword; choose it again");
    options.push_back({keyword, *text});
  }
  plist::Dictionary entries;
  for (const std::string& key : printSettings.keys()) {
    const Ticket::Item* item = printSettings.item(key);
    entries.set(key, item->nested ? plist::Value(item->nested->toPropertyList()) : item->value);
  }
  std::optional<std::vector<JobOption>> parts = EncodeTicketEntries(entries, error);
  if (!parts) return std::nullopt;
  options.insert(options.end(), parts->begin(), parts->end());
  return options;
}

std::optional<std::vector<std::pair<std::string, plist::Value>>> DecodeTicketEntries(
    const std::vector<JobOption>& options, std::string* error) {
  std::string why;
  bool current = false;
  std::optional<Entries> entries = DecodeParts(options, current, why);
  // The current form wins: older per-key options beside it are stale defaults.
  if (entries && !current) entries = DecodeOldForm(options, why);
  if (!entries && error)
    *error = "the ticket entries in the job options cannot be read: " + why +
             "; send or save the settings again";
  return entries;
}

bool IsTicketEntryOption(const JobOption& option) {
  return IsReservedName(option.name) || IsOldFormOption(option);
}

std::vector<JobOption> PlainJobOptions(const std::vector<JobOption>& options) {
  std::vector<JobOption> plain;
  for (const JobOption& option : options)
    if (!IsTicketEntryOption(option)) plain.push_back(option);
  return plain;
}

std::vector<JobOption> ParseJobOptionsArgument(std::string_view argument) {
  cups_option_t* parsed = nullptr;
  const std::string text(argument);
  const int count = cupsParseOptions(text.c_str(), 0, &parsed);
  std::vector<JobOption> options;
  for (int i = 0; i < count; ++i) options.push_back({parsed[i].name, parsed[i].value});
  cupsFreeOptions(count, parsed);
  return options;
}

}  // namespace varno::print
