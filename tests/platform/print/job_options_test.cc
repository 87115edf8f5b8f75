// SPDX-License-Identifier: Apache-2.0
// A ticket as CUPS job options and back: what a filter decodes must equal what was sent,
// whatever the keys, and damaged or foreign options must never be misread.
#include "platform/print/job_options.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "platform/plist/file.h"

namespace varno::print {
namespace {

using Entries = std::vector<std::pair<std::string, plist::Value>>;

plist::Value Pages(int count) {
  plist::Array pages;
  for (int i = 0; i < count; ++i)
    pages.append(plist::Dictionary{{"StartPage", plist::Value(i)},
                                   {"Name", plist::Value("Insert " + std::to_string(i))},
                                   {"Stock", plist::Dictionary{{"Type", plist::Value(INT32_MIN)},
                                                               {"Color", plist::Value("Blue")}}}});
  return pages;
}

// As the scheduler hands options to a filter: one string, options separated by blanks.
std::vector<JobOption> ThroughScheduler(const std::vector<JobOption>& options) {
  std::string argument = "job-uuid=urn:uuid:1 number-up=1";
  for (const JobOption& option : options) {
    argument += " " + option.name + "=";
    for (char c : option.value) {
      if (c == ' ' || c == '"' || c == '\'' || c == '\\') argument += '\\';
      argument += c;
    }
  }
  return ParseJobOptionsArgument(argument);
}

// Padded base64 of a value's binary property list, made here independently of the encoder.
std::string Base64Of(const plist::Value& value) {
  static const char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const std::string bytes = *plist::ToBinary(value);
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t n = 0;
    for (std::size_t j = 0; j < 3; ++j)
      n = n << 8 | (i + j < bytes.size() ? static_cast<unsigned char>(bytes[i + j]) : 0u);
    for (std::size_t j = 0; j < 4; ++j)
      text += j <= bytes.size() - i ? kDigits[(n >> (18 - 6 * j)) & 63] : '=';
  }
  return text;
}

// The older per-key form, as jobs and saved defaults written before hold it.
std::vector<JobOption> OldForm(const std::string& key, const plist::Value& value) {
  const std::string text = Base64Of(value);
  const std::size_t room = 247, parts = (text.size() + room - 1) / room;
  std::vector<JobOption> options;
  for (std::size_t i = 0; i < parts; ++i)
    options.push_back({i == 0 ? key : key + "--" + std::to_string(i + 1),
                       std::to_string(i == 0 ? parts : i + 1) + "*" + text.substr(i * room, room)});
  return options;
}

void ExpectEntries(const Entries& decoded, const Entries& sent) {
  ASSERT_EQ(decoded.size(), sent.size());
  for (std::size_t i = 0; i < sent.size(); ++i) {
    EXPECT_EQ(decoded[i].first, sent[i].first);
    EXPECT_EQ(decoded[i].second, sent[i].second) << sent[i].first;
  }
}

TEST(JobOptions, EveryKeyAndValueComesBackExactly) {
  const std::string longKey = "com.varno.print." + std::string(100000, 'k');
  const Entries sent = {
      {"com.varno.print.Notes", plist::Value("first")},
      {"com.varno.print.Notes--2", plist::Value("second")},
      {"com.varno.print.Notes--3", plist::Value(3)},
      {"nodot", plist::Value("third")},
      {"", plist::Value(true)},
      {longKey, plist::Value(std::string(200000, 'v'))},
      {"Zoë.Łukasz.渡辺", plist::Value("Zoë \"quoted\" back\\slash, comma")},
      {"ticket-entries-1", plist::Value("1/1:AAAA")},
      {"a b=c 'q'", plist::Array{}},
      {"com.varno.print.SpecialPages.InsertList", Pages(200)},
      {"com.varno.print.SpecialPages.ExceptionList", Pages(200)},
      {"Mixed", plist::Dictionary{{"Big", plist::Value(std::int64_t{1} << 40)},
                                  {"Ratio", plist::Value(0.1)},
                                  {"Bytes", plist::Value(plist::Data{0, 255, 10})}}}};
  plist::Dictionary dictionary;
  for (const auto& [key, value] : sent) dictionary.set(key, value);
  std::string error;
  std::optional<std::vector<JobOption>> options = EncodeTicketEntries(dictionary, &error);
  ASSERT_TRUE(options) << error;
  for (const JobOption& option : *options) {
    EXPECT_LE(option.value.size(), kMaxJobOptionValueLength) << option.name;
    EXPECT_TRUE(option.name.starts_with("ticket-entries-")) << option.name;
  }
  std::vector<JobOption> arrived = ThroughScheduler(*options);
  arrived.push_back({"VN.Tray", "Auto"});
  std::optional<Entries> decoded = DecodeTicketEntries(arrived, &error);
  ASSERT_TRUE(decoded) << error;
  ExpectEntries(*decoded, sent);
  EXPECT_EQ(PlainJobOptions(arrived),
            (std::vector<JobOption>{{"job-uuid", "urn:uuid:1"}, {"number-up", "1"}, {"VN.Tray", "Auto"}}));

  // Text that is not UTF-8 is refused, never shortened on its way to the driver.
  plist::Dictionary latin1{{"com.varno.print.JobName", plist::Value("Bericht f\xFCr Kunden")}};
  error.clear();
  EXPECT_FALSE(EncodeTicketEntries(latin1, &error));
  EXPECT_NE(error.find("not valid UTF-8"), std::string::npos) << error;
}

TEST(JobOptions, PPDChoicesStayPlainAndBadOnesAreRefused) {
  Ticket ticket;
  ticket.ppdDictionary().set("VN.Tray", plist::Value("Auto"));
  ticket.ppdDictionary().set("JCLBanner", plist::Value("True"));
  ticket.setValue("com.varno.print.ImageResolution", plist::Value(5), "c");
  Ticket nested;
  nested.setValue("Inner", plist::Value("x"), "c");
  ticket.setTicket("com.varno.print.Nested", nested, "c");
  std::string error;
  std::optional<std::vector<JobOption>> options = TicketToJobOptions(ticket, &error);
  ASSERT_TRUE(options) << error;
  EXPECT_EQ(PlainJobOptions(*options),
            (std::vector<JobOption>{{"VN.Tray", "Auto"}, {"JCLBanner", "True"}}));
  std::optional<Entries> decoded = DecodeTicketEntries(*options, &error);
  ASSERT_TRUE(decoded) << error;
  ExpectEntries(*decoded, {{"com.varno.print.ImageResolution", plist::Value(5)},
                           {"com.varno.print.Nested", nested.toPropertyList()}});

  const std::pair<std::string, plist::Value> refused[] = {
      {"ticket-entries-2", plist::Value("Auto")}, {"Ticket-Entries", plist::Value("Auto")},
      {"Two words", plist::Value("Auto")},        {"", plist::Value("Auto")},
      {"Tray", plist::Value(2)}};
  for (const auto& [keyword, choice] : refused) {
    Ticket bad;
    bad.ppdDictionary().set(keyword, choice);
    error.clear();
    EXPECT_FALSE(TicketToJobOptions(bad, &error)) << keyword;
    EXPECT_NE(error.find("PPD option \"" + keyword + "\""), std::string::npos) << error;
  }
  Ticket huge;
  huge.setValue("com.varno.print.Huge", plist::Value(plist::Data(kMaxTicketEntriesText, 7)), "c");
  EXPECT_FALSE(TicketToJobOptions(huge, &error));
  EXPECT_NE(error.find("more than the 4096 KiB a job carries"), std::string::npos) << error;
}

TEST(JobOptions, OlderPerKeyFormStillDecodesAndTheCurrentFormWins) {
  std::vector<JobOption> old = OldForm("com.varno.print.SpecialPages.InsertList", Pages(80));
  ASSERT_GT(old.size(), 10u);
  for (const JobOption& option : OldForm("com.varno.print.Notes", plist::Value("first")))
    old.push_back(option);
  // Written by the older encoder for a key that itself ends in "--2": one part of its own.
  for (const JobOption& option : OldForm("com.varno.print.Notes--2", plist::Value("second")))
    old.push_back(option);
  old.push_back({"VN.Tray", "Auto"});
  std::string error;
  std::optional<Entries> decoded = DecodeTicketEntries(ThroughScheduler(old), &error);
  ASSERT_TRUE(decoded) << error;
  std::sort(decoded->begin(), decoded->end(),
            [](const auto& a, const auto& b) { return a.first < b.first; });
  ExpectEntries(*decoded, {{"com.varno.print.Notes", plist::Value("first")},
                           {"com.varno.print.Notes--2", plist::Value("second")},
                           {"com.varno.print.SpecialPages.InsertList", Pages(80)}});
  const std::vector<JobOption> plain = PlainJobOptions(old);
  EXPECT_EQ(plain, (std::vector<JobOption>{{"VN.Tray", "Auto"}}));

  std::vector<JobOption> missing = old;
  missing.erase(missing.begin() + 3);
  EXPECT_FALSE(DecodeTicketEntries(missing, &error));
  EXPECT_NE(error.find("part 4 of"), std::string::npos) << error;

  std::vector<JobOption> both = old;
  const std::vector<JobOption> current = *EncodeTicketEntry("com.varno.print.New", plist::Value(1));
  both.insert(both.end(), current.begin(), current.end());
  decoded = DecodeTicketEntries(both, &error);
  ASSERT_TRUE(decoded) << error;
  ExpectEntries(*decoded, {{"com.varno.print.New", plist::Value(1)}});
}

TEST(JobOptions, TamperedPartsAreRefusedWithTheProblemNamed) {
  const std::vector<JobOption> parts = *EncodeTicketEntry("com.varno.print.List", Pages(60));
  ASSERT_GT(parts.size(), 5u);
  const std::string count = std::to_string(parts.size());
  auto with = [&](std::size_t at, JobOption replacement) {
    std::vector<JobOption> options = parts;
    options[at] = std::move(replacement);
    return options;
  };
  std::vector<JobOption> dropped = parts;
  dropped.erase(dropped.begin() + 1);
  std::vector<JobOption> twice = parts;
  twice.push_back(parts[2]);
  const std::pair<std::vector<JobOption>, std::string> cases[] = {
      {dropped, "part 2 of " + count + " is missing"},
      {twice, "part 3 appears twice"},
      {with(1, {"ticket-entries-2", "3/" + count + ":" + parts[1].value.substr(parts[1].value.find(':') + 1)}),
       "holds part 3"},
      {with(1, {"ticket-entries-2", "2/99:AAAA"}), "announces 99 parts"},
      {with(1, {"ticket-entries-2", "2/1:AAAA"}), "beyond the 1 parts"},
      {with(1, {"ticket-entries-02", parts[1].value}), "no part name"},
      {with(1, {"ticket-entries-x", parts[1].value}), "no part name"},
      {with(1, {"ticket-entries-2", "AAAA"}), "does not read"},
      {with(1, {"ticket-entries-2", "2/99999999:AAAA"}), "no part number and count"},
      {with(1, {"ticket-entries-2", "2/" + count + ":" + std::string(241, 'A')}), "no base64 text"},
      {with(1, {"ticket-entries-2", "2/" + count + ":AA!A"}), "no base64 text"},
      {{{"ticket-entries-1", "1/1:aGVsbG8="}}, "no property list"},
      {{{"ticket-entries-1", "1/1:AAA"}}, "no base64 text"},
      {{{"ticket-entries-1", "1/1:AA=A"}}, "no base64 text"},
      {{{"ticket-entries-1", "1/1:" + Base64Of(plist::Array{plist::Value(1)})}}, "not a dictionary"},
  };
  for (const auto& [options, problem] : cases) {
    std::string error;
    EXPECT_FALSE(DecodeTicketEntries(options, &error)) << problem;
    EXPECT_NE(error.find(problem), std::string::npos) << error;
  }
}

}  // namespace
}  // namespace varno::print
