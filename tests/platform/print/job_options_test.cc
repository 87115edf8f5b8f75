// A ticket as CUPS job options and back: what a filter decodes must equal what was sent.
#include "platform/print/job_options.h"

#include <gtest/gtest.h>

#include <string>

namespace varno::print {
namespace {

plist::Value Sample() {
  plist::Array pages;
  for (int i = 0; i < 300; ++i)
    pages.append(plist::Dictionary{{"StartPage", plist::Value(i)},
                                   {"Stock", plist::Dictionary{{"Type", plist::Value(INT32_MIN)}}}});
  return plist::Dictionary{
      {"Pages", pages},
      {"Passcode", plist::Value("000123")},
      {"Name", plist::Value("Zoë Łukasz 渡辺 \"quoted\" back\\slash, comma")},
      {"Empty", plist::Value("")},
      {"EmptyArray", plist::Array{}},
      {"On", plist::Value(true)},
      {"Off", plist::Value(false)},
      {"Ratio", plist::Value(0.1)},
      {"Big", plist::Value(std::int64_t{1} << 40)},
      {"Bytes", plist::Value(plist::Data{0, 255, 10})}};
}

TEST(JobOptions, TicketEntriesSurviveTheSchedulersOptionStringExactly) {
  Ticket ticket;
  ticket.ppdDictionary().set("VNOutputMode", plist::Value("HighQuality"));
  ticket.ppdDictionary().set("JCLBanner", plist::Value("True"));
  ticket.setValue("com.varno.print.Record", Sample(), "V");
  ticket.setValue("com.varno.print.ImageResolution", plist::Value(5), "V");
  ticket.setValue("com.varno.print.Nothing", plist::Value(""), "V");

  std::optional<std::vector<JobOption>> options = TicketToJobOptions(ticket);
  ASSERT_TRUE(options);
  EXPECT_EQ((*options)[0], (JobOption{"VNOutputMode", "HighQuality"})) << "PPD choices travel as they are";
  std::size_t parts = 0;
  for (const JobOption& option : *options) {
    EXPECT_LE(option.value.size(), kMaxJobOptionValueLength) << option.name;
    if (option.name.starts_with("com.varno.print.Record")) ++parts;
  }
  EXPECT_GT(parts, 10u) << "a long value is cut into parts";

  // As the scheduler hands them to a filter: one string, options separated by blanks.
  std::string argument = "job-uuid=urn:uuid:1 number-up=1";
  for (const JobOption& option : *options) argument += " " + option.name + "=" + option.value;
  const std::vector<JobOption> parsed = ParseJobOptionsArgument(argument);
  std::string error;
  std::optional<std::vector<std::pair<std::string, plist::Value>>> entries =
      DecodeTicketEntries(parsed, &error);
  ASSERT_TRUE(entries) << error;
  ASSERT_EQ(entries->size(), 3u);
  for (const auto& [key, value] : *entries) {
    plist::Value sent;
    ASSERT_EQ(ticket.getValue(key, sent), noErr) << key;
    EXPECT_EQ(value, sent) << key;
  }
  const std::vector<JobOption> plain = PlainJobOptions(parsed);
  EXPECT_NE(std::find(plain.begin(), plain.end(), JobOption{"JCLBanner", "True"}), plain.end());
  EXPECT_NE(std::find(plain.begin(), plain.end(), JobOption{"number-up", "1"}), plain.end());
}

TEST(JobOptions, MissingOrDamagedPartsAreReportedByEntry) {
  std::optional<std::vector<JobOption>> parts = EncodeTicketEntry("com.varno.print.Record", Sample());
  ASSERT_TRUE(parts && parts->size() > 3);
  std::string error;

  std::vector<JobOption> missing = *parts;
  missing.erase(missing.begin() + 2);
  EXPECT_FALSE(DecodeTicketEntries(missing, &error));
  EXPECT_EQ(error, "job option \"com.varno.print.Record\": part 3 is missing");

  std::vector<JobOption> damaged = *parts;
  damaged[1].value = "7*" + damaged[1].value.substr(2);
  EXPECT_FALSE(DecodeTicketEntries(damaged, &error));
  EXPECT_EQ(error, "job option \"com.varno.print.Record\": part 2 is damaged");

  EXPECT_FALSE(DecodeTicketEntries({{"com.varno.print.Plain", "HighQuality"}}, &error));
  EXPECT_NE(error.find("not an encoded ticket value"), std::string::npos);
  EXPECT_FALSE(DecodeTicketEntries({{"com.varno.print.Bad", "1*!!!"}}, &error));
  EXPECT_FALSE(DecodeTicketEntries({{"com.varno.print.Bad", "1*aGVsbG8="}}, &error))
      << "base64 of bytes that are no property list";
  // Options without a "." are never ticket entries.
  std::optional<std::vector<std::pair<std::string, plist::Value>>> none =
      DecodeTicketEntries({{"PageSize", "1*x"}, {"copies", "2"}}, &error);
  ASSERT_TRUE(none);
  EXPECT_TRUE(none->empty());
}

}  // namespace
}  // namespace varno::print
