#include "platform/print/job_options.h"

#include <cups/cups.h>

#include <charconv>
#include <map>

#include "platform/plist/file.h"

namespace varno::print {
namespace {

constexpr std::string_view kPartSeparator = "--";

std::string Base64(const std::string& bytes) {
  std::string text(4 * ((bytes.size() + 2) / 3) + 1, '\0');
  httpEncode64_2(text.data(), static_cast<int>(text.size()), bytes.data(),
                 static_cast<int>(bytes.size()));
  text.resize(std::char_traits<char>::length(text.c_str()));
  return text;
}

std::optional<std::string> FromBase64(const std::string& text) {
  // Base64 only letters, digits, "+", "/" and "=": anything else means a damaged part.
  for (char c : text)
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '+' && c != '/' && c != '=')
      return std::nullopt;
  std::string bytes(text.size(), '\0');
  int length = static_cast<int>(bytes.size());
  if (!httpDecode64_2(bytes.data(), &length, text.c_str())) return std::nullopt;
  bytes.resize(static_cast<std::size_t>(length));
  return bytes;
}

bool IsTicketKey(std::string_view name) { return name.find('.') != std::string_view::npos; }

// "<number>*<text>": the number and the text, or nullopt.
std::optional<std::pair<int, std::string_view>> SplitPart(std::string_view value) {
  const std::size_t star = value.find('*');
  if (star == std::string_view::npos || star == 0) return std::nullopt;
  int number = 0;
  auto [end, ec] = std::from_chars(value.data(), value.data() + star, number);
  if (ec != std::errc() || end != value.data() + star || number < 1) return std::nullopt;
  return std::pair{number, value.substr(star + 1)};
}

}  // namespace

std::optional<std::vector<JobOption>> EncodeTicketEntry(std::string_view key,
                                                        const plist::Value& value,
                                                        std::string* error) {
  std::optional<std::string> binary = plist::ToBinary(value, error);
  if (!binary) return std::nullopt;
  const std::string text = Base64(*binary);
  // Room for the "<n>*" prefix; parts are counted first so the first can say how many.
  const std::size_t room = kMaxJobOptionValueLength - 8;
  const std::size_t parts = (text.size() + room - 1) / room;
  std::vector<JobOption> options;
  for (std::size_t i = 0; i < parts; ++i) {
    std::string name(key);
    if (i > 0) name += std::string(kPartSeparator) + std::to_string(i + 1);
    const std::size_t number = i == 0 ? parts : i + 1;
    options.push_back({std::move(name), std::to_string(number) + "*" + text.substr(i * room, room)});
  }
  return options;
}

std::optional<std::vector<JobOption>> TicketToJobOptions(const Ticket& printSettings,
                                                         std::string* error) {
  std::vector<JobOption> options;
  const plist::Dictionary ppd = printSettings.ppdDictionary();
  for (const auto& [keyword, choice] : ppd)
    if (const std::string* text = choice.asString()) options.push_back({keyword, *text});
  for (const std::string& key : printSettings.keys()) {
    const Ticket::Item* item = printSettings.item(key);
    const plist::Value value =
        item->nested ? plist::Value(item->nested->toPropertyList()) : item->value;
    std::optional<std::vector<JobOption>> parts = EncodeTicketEntry(key, value, error);
    if (!parts) {
      if (error) *error = key + ": " + *error;
      return std::nullopt;
    }
    options.insert(options.end(), parts->begin(), parts->end());
  }
  return options;
}

std::optional<std::vector<std::pair<std::string, plist::Value>>> DecodeTicketEntries(
    const std::vector<JobOption>& options, std::string* error) {
  auto fail = [error](const std::string& key, const std::string& why)
      -> std::optional<std::vector<std::pair<std::string, plist::Value>>> {
    if (error) *error = "job option \"" + key + "\": " + why;
    return std::nullopt;
  };
  std::map<std::string, std::string_view, std::less<>> byName;
  for (const JobOption& option : options) byName[option.name] = option.value;

  std::vector<std::pair<std::string, plist::Value>> entries;
  for (const JobOption& option : options) {
    if (!IsTicketKey(option.name)) continue;
    const std::size_t separator = option.name.rfind(kPartSeparator);
    if (separator != std::string::npos && separator > 0) {
      // A later part: it belongs to the entry named before the separator, if any.
      const std::string_view rest = std::string_view(option.name).substr(separator + 2);
      int number = 0;
      auto [end, ec] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
      if (ec == std::errc() && end == rest.data() + rest.size() && number >= 2 &&
          byName.contains(option.name.substr(0, separator)))
        continue;
    }
    std::optional<std::pair<int, std::string_view>> first = SplitPart(option.value);
    if (!first) return fail(option.name, "not an encoded ticket value");
    std::string text(first->second);
    for (int part = 2; part <= first->first; ++part) {
      const std::string name = option.name + std::string(kPartSeparator) + std::to_string(part);
      auto found = byName.find(name);
      if (found == byName.end()) return fail(option.name, "part " + std::to_string(part) + " is missing");
      std::optional<std::pair<int, std::string_view>> next = SplitPart(found->second);
      if (!next || next->first != part) return fail(option.name, "part " + std::to_string(part) + " is damaged");
      text += next->second;
    }
    std::optional<std::string> binary = FromBase64(text);
    std::string why;
    std::optional<plist::Value> value = binary ? plist::Parse(*binary, &why) : std::nullopt;
    if (!value) return fail(option.name, binary ? "value " + why : "damaged base64 text");
    entries.emplace_back(option.name, std::move(*value));
  }
  return entries;
}

std::vector<JobOption> PlainJobOptions(const std::vector<JobOption>& options) {
  std::vector<JobOption> plain;
  for (const JobOption& option : options)
    if (!IsTicketKey(option.name)) plain.push_back(option);
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
