// varno-print printing through a real CUPS scheduler: a private cupsd whose queue's only
// filter records the options argument and PPD it is given. What the filter records must
// decode to the very ticket varno-print saved, and its PPD choices must be the ones a
// driver marks.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "fax/fax_recipient_list.h"
#include "model/special_page_lists.h"
#include "model/special_pages_ticket.h"
#include "platform/plist/file.h"
#include "platform/plist/text.h"
#include "platform/print/job_options.h"
#include "platform/print/ppd_calls.h"
#include "platform/print/ticket.h"
#include "support/private_scheduler.h"

// libcups 2.4.2 loses the "sides" strings of the PPD cache that cupsMarkOptions builds
// when a job carries a standard option such as print-color-mode (lp sends it); ppdClose
// cannot free them. Read by LeakSanitizer in the sanitized build, unused otherwise.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:_ppdCacheCreateWithPPD\n"; }

namespace varno {
namespace {

namespace fs = std::filesystem;
using testing::PrivateScheduler;
using testing::ProgramRun;
using Entries = std::map<std::string, plist::Value>;

const std::string kVarnoPrint = VARNO_BUILD_DIR "/bin/varno-print";
constexpr const char* kQueue = "varno";
constexpr const char* kClient = "com.varno.print";

std::string Xml(const plist::Value& value) { return plist::ToXML(value).value_or("(no XML form)"); }

// A ticket holding an entry of every kind a filter must get back exactly: a passcode
// whose leading zeros make it text, not a number; recipients with names beyond ASCII;
// both booleans, a real, an empty string and an empty array. With `specialPages` also
// 200 inserts and 200 exception ranges, each list many times one option's length.
print::Ticket InputTicket(bool specialPages) {
  print::Ticket ticket;
  ticket.setValue("com.varno.print.JobType",
                  plist::Dictionary{{"JobType", 6}, {"SecurePrintPassword", "000123"}}, kClient);
  fax::FaxRecipientList recipients;
  for (const auto& [first, last, number] :
       {std::tuple{"Zoë", "Brontë", "+44 20 7946 0018"}, std::tuple{"Łukasz", "Wójcik", "0048 22 555"},
        std::tuple{"渡辺", "健", "03-1234-5678"}}) {
    fax::FaxRecipientRef recipient = fax::FaxRecipientRef::Adopt(new fax::FaxRecipient(first, last, number));
    recipients.append(recipient.get());
  }
  ticket.setValue(fax::kFaxRecipientListKey, recipients.toTicket(), kClient);
  ticket.setValue("com.varno.print.Test.Collate", true, kClient);
  ticket.setValue("com.varno.print.Test.Reverse", false, kClient);
  ticket.setValue("com.varno.print.Test.Scale", 0.875, kClient);
  ticket.setValue("com.varno.print.Test.Title", "", kClient);
  ticket.setValue("com.varno.print.Test.Stamps", plist::Array{}, kClient);
  if (specialPages) {
    std::vector<std::unique_ptr<model::SpecialPage>> pages;
    std::vector<const model::SpecialPage*> inserts, exceptions;
    for (int i = 0; i < 200; ++i) {
      auto insert = std::make_unique<model::Insert>();
      insert->setStartPage(3 * i);
      insert->setQuantity(1 + i % 3);
      auto exception = std::make_unique<model::ExceptionPage>();
      exception->setStartPage(3 * i + 1);
      exception->setEndPage(3 * i + 2);
      inserts.push_back(pages.emplace_back(std::move(insert)).get());
      exceptions.push_back(pages.emplace_back(std::move(exception)).get());
    }
    model::InsertList insertList;
    model::ExceptionPageList exceptionList;
    EXPECT_EQ(insertList.add(inserts), noErr);
    EXPECT_EQ(exceptionList.add(exceptions), noErr);
    EXPECT_EQ(exceptionList.count(), 200) << "the ranges do not touch, so none merge";
    EXPECT_EQ(model::WriteSpecialPageList(ticket, model::kInsertListKey, insertList), noErr);
    EXPECT_EQ(model::WriteSpecialPageList(ticket, model::kExceptionListKey, exceptionList), noErr);
  }
  return ticket;
}

// A ticket's entries as they travel: a nested ticket in its property-list form.
Entries EntriesOf(const print::Ticket& ticket) {
  Entries entries;
  for (const std::string& key : ticket.keys()) {
    const print::Ticket::Item* item = ticket.item(key);
    entries[key] = item->nested ? plist::Value(item->nested->toPropertyList()) : item->value;
  }
  return entries;
}

Entries DecodedEntries(const std::vector<print::JobOption>& options) {
  std::string error;
  auto decoded = print::DecodeTicketEntries(options, &error);
  EXPECT_TRUE(decoded) << error;
  Entries entries;
  if (decoded) {
    for (auto& [key, value] : *decoded)
      EXPECT_TRUE(entries.emplace(key, std::move(value)).second) << key << " arrived twice";
  }
  return entries;
}

// Same keys with equal values; plist::Value equality is typed, so "000123" does not equal
// 123 nor true 1.
void ExpectSameEntries(const Entries& expected, const Entries& actual) {
  EXPECT_FALSE(expected.empty());
  for (const auto& [key, value] : expected) {
    auto found = actual.find(key);
    if (found == actual.end())
      ADD_FAILURE() << "missing entry " << key;
    else
      EXPECT_TRUE(found->second == value)
          << key << "\nexpected:\n" << Xml(value) << "got:\n" << Xml(found->second);
  }
  for (const auto& [key, value] : actual)
    EXPECT_TRUE(expected.contains(key)) << "extra entry " << key << ":\n" << Xml(value);
}

// CUPS sends the choices "True" and "False" as IPP booleans, and the scheduler hands
// them to the filter as "true" and "false"; PPD choice keywords are matched regardless of
// case, so for those two the case carries nothing.
bool SameChoice(const std::string& arrived, const std::string& chosen) {
  if (plist::EqualCaseInsensitive(chosen, "True") || plist::EqualCaseInsensitive(chosen, "False"))
    return plist::EqualCaseInsensitive(arrived, chosen);
  return arrived == chosen;
}

// What the queue's filter was given for one job.
struct RecordedJob {
  std::vector<print::JobOption> options;  // argv[5], parsed
  fs::path ppd;

  bool has(const std::string& name) const {
    for (const print::JobOption& option : options)
      if (option.name == name) return true;
    return false;
  }
};

// Every PPD choice of the ticket is in the job's options and is what a driver marks when
// it applies them to the job's PPD.
void ExpectChoicesReachTheDriver(const print::Ticket& ticket, const RecordedJob& job) {
  ppdcall::FilePtr ppd = ppdcall::Open(job.ppd);
  ASSERT_TRUE(ppd) << job.ppd << ": " << ppdcall::LastErrorText();
  ppdcall::MarkDefaults(ppd.get());
  cups_option_t* options = nullptr;
  int count = 0;
  for (const print::JobOption& option : job.options)
    count = cupsAddOption(option.name.c_str(), option.value.c_str(), count, &options);
  ppdcall::MarkOptions(ppd.get(), count, options);
  cupsFreeOptions(count, options);

  const plist::Dictionary choices = ticket.ppdDictionary();
  EXPECT_GT(choices.size(), 10u);
  std::map<std::string, std::string> sent;
  for (const print::JobOption& option : print::PlainJobOptions(job.options)) sent[option.name] = option.value;
  for (const auto& [keyword, value] : choices) {
    const std::string chosen = value.asString() ? *value.asString() : "(not a string)";
    EXPECT_TRUE(sent.contains(keyword) && SameChoice(sent[keyword], chosen))
        << keyword << ": chose " << chosen << ", the filter got " << sent[keyword];
    const ppd_choice_t* marked = ppdcall::FindMarkedChoice(ppd.get(), keyword.c_str());
    EXPECT_TRUE(marked && SameChoice(marked->choice, chosen))
        << keyword << ": chose " << chosen << ", the driver marks " << (marked ? marked->choice : "nothing");
  }
}

print::Ticket LoadTicket(const fs::path& file) {
  std::string error;
  std::optional<print::Ticket> ticket = print::Ticket::load(file, &error);
  EXPECT_TRUE(ticket) << error;
  return ticket ? *ticket : print::Ticket();
}

class CupsPrint : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists(testing::kCupsd))
      GTEST_FAIL() << testing::kCupsd << " is missing: these tests need the CUPS scheduler "
                      "(package cups-daemon, installed by scripts/setup) and root";
    std::string error;
    ASSERT_TRUE(scheduler_.start(&error)) << error;
    ASSERT_TRUE(scheduler_.addQueue(kQueue, VARNO_SAMPLE_PPD, &error)) << error;
    document_ = file("doc.ps", "%!PS\nshowpage\n");
  }
  // Runs even when the test failed: no scheduler outlives its test.
  void TearDown() override { scheduler_.stop(); }

  fs::path file(const std::string& name, std::string_view text) const {
    const fs::path path = scheduler_.root() / name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  fs::path savedTicket(const std::string& name, const print::Ticket& ticket) const {
    const fs::path path = scheduler_.root() / name;
    std::string error;
    EXPECT_TRUE(ticket.save(path, &error)) << error;
    return path;
  }

  ProgramRun varnoPrint(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), kVarnoPrint);
    return scheduler_.run(arguments);
  }

  // What the filter recorded for the job `run` submitted; nullopt (and a failure that
  // shows the scheduler's log) when no job or no record came.
  std::optional<RecordedJob> recorded(const ProgramRun& run) const {
    const int job = testing::RequestId(run.out + run.err, kQueue);
    EXPECT_GT(job, 0) << "no request id:\n" << run.out << run.err;
    if (job <= 0) return std::nullopt;
    if (!scheduler_.waitForJob(job)) {
      ADD_FAILURE() << "the filter did not record job " << job << " within 30 s\n"
                    << scheduler_.errorLogDigest();
      return std::nullopt;
    }
    std::ifstream in(scheduler_.recordedOptions(job), std::ios::binary);
    const std::string argument((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    return RecordedJob{print::ParseJobOptionsArgument(argument), scheduler_.recordedPPD(job)};
  }

  // A failure of varno-print: status 1, nothing on standard output, and a last line on
  // standard error that names `culprit`.
  static void ExpectFailure(const ProgramRun& run, const std::string& culprit) {
    EXPECT_EQ(run.status, 1) << run.err;
    EXPECT_EQ(run.out, "");
    std::string err = run.err;
    if (err.ends_with('\n')) err.pop_back();
    const std::string last = err.substr(err.rfind('\n') + 1);
    EXPECT_TRUE(last.starts_with("varno-print: ") && last.find(culprit) != std::string::npos)
        << "last line: " << last << "\nall of it:\n" << run.err;
  }

  PrivateScheduler scheduler_;
  fs::path document_;
};

TEST_F(CupsPrint, JobCarriesTheWholeTicketAndItsChoices) {
  const print::Ticket input = InputTicket(true);
  const fs::path saved = scheduler_.root() / "saved.plist";
  const ProgramRun run = varnoPrint({"-P", kQueue, "--image-quality", "HighQuality", "--mirror-image",
                                     "on", "--ticket", savedTicket("in.plist", input).string(),
                                     "--save-ticket", saved.string(), document_.string()});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "");
  const print::Ticket ticket = LoadTicket(saved);

  // The dialog kept what it was given and made the choices asked for.
  const Entries kept = EntriesOf(ticket);
  for (const auto& [key, value] : EntriesOf(input))
    EXPECT_TRUE(kept.contains(key) && kept.at(key) == value) << key << " changed in the dialog";
  EXPECT_EQ(ticket.ppdDictionary().getString("VNOutputMode"), "HighQuality");
  ASSERT_TRUE(ticket.dictionary("com.varno.print.InvertImageOptions"));
  EXPECT_EQ(ticket.dictionary("com.varno.print.InvertImageOptions")->getNumber<int>("MirrorImage"), 1);

  std::optional<RecordedJob> job = recorded(run);
  ASSERT_TRUE(job);
  for (const char* key : {model::kInsertListKey, model::kExceptionListKey})
    EXPECT_TRUE(job->has(key) && job->has(key + std::string("--2")) && job->has(key + std::string("--20")))
        << key << " should arrive in many parts";
  ExpectSameEntries(EntriesOf(ticket), DecodedEntries(job->options));
  ExpectChoicesReachTheDriver(ticket, *job);
}

TEST_F(CupsPrint, SavedDefaultsReachPlainLpJobsAndReadBack) {
  const fs::path saved = scheduler_.root() / "defaults.plist";
  const ProgramRun save = varnoPrint({"-P", kQueue, "--save-defaults", "--image-quality", "HighSpeed",
                                      "--ticket", savedTicket("in.plist", InputTicket(false)).string(),
                                      "--save-ticket", saved.string()});
  ASSERT_EQ(save.status, 0) << save.err;
  const print::Ticket ticket = LoadTicket(saved);
  EXPECT_EQ(ticket.ppdDictionary().getString("VNOutputMode"), "HighSpeed");
  // Kept in the test's folder ($HOME/.cups, or CUPS_SERVERROOT for a libcups that writes
  // root's there), never in /etc/cups or the real home.
  EXPECT_TRUE(fs::exists(scheduler_.root() / "home/.cups/lpoptions") ||
              fs::exists(scheduler_.root() / "conf/lpoptions"));

  const ProgramRun lp = scheduler_.run({"lp", "-d", kQueue, file("other.ps", "%!PS\nshowpage\nshowpage\n").string()});
  ASSERT_EQ(lp.status, 0) << lp.err;
  std::optional<RecordedJob> job = recorded(lp);
  ASSERT_TRUE(job);
  ExpectSameEntries(EntriesOf(ticket), DecodedEntries(job->options));
  ExpectChoicesReachTheDriver(ticket, *job);

  const fs::path back = scheduler_.root() / "back.plist";
  const ProgramRun read = varnoPrint({"-P", kQueue, "--ticket-from-defaults", "--save-ticket", back.string()});
  ASSERT_EQ(read.status, 0) << read.err;
  const print::Ticket reread = LoadTicket(back);
  ExpectSameEntries(EntriesOf(ticket), EntriesOf(reread));
  EXPECT_TRUE(reread.ppdDictionary() == ticket.ppdDictionary())
      << Xml(reread.ppdDictionary()) << "differs from\n" << Xml(ticket.ppdDictionary());
}

TEST_F(CupsPrint, FailuresAreReportedInOneLineWithStatusOne) {
  ExpectFailure(varnoPrint({"-P", "nosuchqueue", document_.string()}), "nosuchqueue");

  const std::string closed = "127.0.0.1:" + std::to_string(PrivateScheduler::FreePort());
  ExpectFailure(varnoPrint({"-P", kQueue, "-h", closed, document_.string()}), closed);

  // The ticket is saved before the job is tried, so a job that fails loses no settings.
  const fs::path missing = scheduler_.root() / "no-such-file.ps";
  const fs::path saved = scheduler_.root() / "kept.plist";
  ExpectFailure(varnoPrint({"-P", kQueue, "--save-ticket", saved.string(), missing.string()}),
                missing.string());
  ASSERT_TRUE(fs::exists(saved));
  EXPECT_GT(LoadTicket(saved).ppdDictionary().size(), 10u);
}

}  // namespace
}  // namespace varno
