// SPDX-License-Identifier: Apache-2.0
// varno-print and lp printing through a private CUPS scheduler whose queue's only filter
// records the options argument and PPD it is given: they must carry the very ticket
// varno-print saved, and the PPD choices a driver marks must be the ticket's.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <tuple>

#include "fax/fax_recipient_list.h"
#include "model/special_page_lists.h"
#include "model/special_pages_ticket.h"
#include "platform/plist/file.h"
#include "platform/plist/text.h"
#include "platform/print/job_options.h"
#include "platform/print/ppd_calls.h"
#include "platform/print/ticket.h"
#include "support/private_scheduler.h"
#include "support/temp_dir.h"

// libcups 2.4.2 loses the "sides" strings of the PPD cache that cupsMarkOptions builds
// when a job carries a standard option such as print-color-mode (lp sends it); ppdClose
// cannot free them. Read by LeakSanitizer in the sanitized build, unused otherwise.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:_ppdCacheCreateWithPPD\n"; }

namespace varno {

namespace ppdcall = print::ppdcall;

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
        std::tuple{"渡辺", "健", "03-1234-5678"}})
    recipients.append(fax::FaxRecipientRef::Adopt(new fax::FaxRecipient(first, last, number)).get());
  ticket.setValue(fax::kFaxRecipientListKey, recipients.toTicket(), kClient);
  for (const auto& [key, value] : plist::Dictionary{{"Collate", true}, {"Reverse", false}, {"Scale", 0.875},
                                                    {"Title", ""}, {"Stamps", plist::Array{}}})
    ticket.setValue("com.varno.print.Test." + key, value, kClient);
  if (specialPages) {
    model::InsertList inserts;
    model::ExceptionPageList exceptions;
    for (int i = 0; i < 200; ++i) {
      model::Insert insert;
      model::ExceptionPage range;
      insert.setStartPage(3 * i);
      insert.setQuantity(1 + i % 3);
      range.setStartPage(3 * i + 1);
      range.setEndPage(3 * i + 2);
      const model::SpecialPage *insertPage[] = {&insert}, *rangePage[] = {&range};
      EXPECT_EQ(inserts.add(insertPage), noErr);
      EXPECT_EQ(exceptions.add(rangePage), noErr);
    }
    EXPECT_EQ(exceptions.count(), 200) << "the ranges do not touch, so none merge";
    EXPECT_EQ(model::WriteSpecialPageList(ticket, model::kInsertListKey, inserts), noErr);
    EXPECT_EQ(model::WriteSpecialPageList(ticket, model::kExceptionListKey, exceptions), noErr);
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

// Same keys with equal values; plist::Value equality is typed, so "000123" does not equal
// 123 nor true 1.
void ExpectSameEntries(const Entries& expected, const Entries& actual) {
  EXPECT_FALSE(expected.empty());
  for (const auto& [key, value] : expected)
    EXPECT_TRUE(actual.contains(key) && actual.at(key) == value)
        << key << "\nexpected:\n" << Xml(value) << "got:\n"
        << (actual.contains(key) ? Xml(actual.at(key)) : "nothing");
  for (const auto& [key, value] : actual)
    EXPECT_TRUE(expected.contains(key)) << "extra entry " << key << ":\n" << Xml(value);
}

print::Ticket LoadTicket(const fs::path& file) {
  std::string error;
  const std::optional<print::Ticket> ticket = print::Ticket::load(file, &error);
  EXPECT_TRUE(ticket) << error;
  return ticket.value_or(print::Ticket());
}

class CupsPrint : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string error;  // a missing cupsd fails here, with a message that says so
    ASSERT_TRUE(scheduler_.start(&error) && scheduler_.addQueue(kQueue, VARNO_SAMPLE_PPD, &error)) << error;
    document_ = file("doc.ps", "%!PS\nshowpage\n");
  }

  std::string file(const std::string& name, std::string_view text) const {
    std::ofstream(scheduler_.root() / name, std::ios::binary) << text;
    return scheduler_.root() / name;
  }
  std::string savedTicket(const print::Ticket& ticket) const {
    std::string error;
    EXPECT_TRUE(ticket.save(scheduler_.root() / "in.plist", &error)) << error;
    return scheduler_.root() / "in.plist";
  }
  ProgramRun varnoPrint(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), kVarnoPrint);
    return scheduler_.run(arguments);
  }

  // The job `run` submitted reached the filter with every entry of `ticket`, decoded
  // exactly, and with every PPD choice of it, which a driver then marks on the job's PPD.
  // With `multiPart`, the special page lists came split into many options.
  void ExpectJobCarries(const ProgramRun& run, const print::Ticket& ticket, bool multiPart) {
    const std::string said = run.out + run.err, marker = std::string("request id is ") + kQueue + "-";
    ASSERT_NE(said.find(marker), std::string::npos) << "no request id:\n" << said;
    const int job = std::atoi(said.c_str() + said.find(marker) + marker.size());
    const std::optional<std::string> argument = scheduler_.recordedOptions(job);
    ASSERT_TRUE(argument) << "the filter did not record job " << job << " within 30 s\n"
                          << scheduler_.errorLogDigest();
    const std::vector<print::JobOption> options = print::ParseJobOptionsArgument(*argument);
    std::map<std::string, std::string> sent;
    for (const print::JobOption& option : options) sent[option.name] = option.value;
    const std::string part = std::string(print::kTicketEntriesOption) + "-";
    EXPECT_TRUE(!multiPart || (sent.contains(part + "1") && sent.contains(part + "20")))
        << "the special page lists should arrive in many parts";
    for (const char* key : {model::kInsertListKey, model::kExceptionListKey})
      EXPECT_FALSE(sent.contains(key)) << key << " should travel inside the ticket entries";

    std::string error;
    auto decoded = print::DecodeTicketEntries(options, &error);
    ASSERT_TRUE(decoded) << error;
    Entries entries;
    for (auto& [key, value] : *decoded)
      EXPECT_TRUE(entries.emplace(key, std::move(value)).second) << key << " arrived twice";
    ExpectSameEntries(EntriesOf(ticket), entries);

    ppdcall::FilePtr ppd = ppdcall::Open(scheduler_.recordedPPD(job));
    ASSERT_TRUE(ppd) << ppdcall::LastErrorText();
    ppdcall::MarkDefaults(ppd.get());
    cups_option_t* marks = nullptr;
    int count = 0;
    for (const print::JobOption& option : options)
      count = cupsAddOption(option.name.c_str(), option.value.c_str(), count, &marks);
    ppdcall::MarkOptions(ppd.get(), count, marks);
    cupsFreeOptions(count, marks);
    // CUPS sends the choices "True" and "False" as IPP booleans, which reach the filter as
    // "true" and "false"; PPD choice keywords are matched regardless of case, so for those
    // two the case carries nothing.
    auto same = [](const std::string& arrived, const std::string& chosen) {
      const bool boolean = plist::EqualCaseInsensitive(chosen, "True") ||
                           plist::EqualCaseInsensitive(chosen, "False");
      return boolean ? plist::EqualCaseInsensitive(arrived, chosen) : arrived == chosen;
    };
    const plist::Dictionary choices = ticket.ppdDictionary();
    EXPECT_GT(choices.size(), 10u);
    for (const auto& [keyword, value] : choices) {
      const std::string chosen = value.asString() ? *value.asString() : "(not a string)";
      EXPECT_TRUE(sent.contains(keyword) && same(sent[keyword], chosen))
          << keyword << ": chose " << chosen << ", the filter got " << sent[keyword];
      const ppd_choice_t* marked = ppdcall::FindMarkedChoice(ppd.get(), keyword.c_str());
      EXPECT_TRUE(marked && same(marked->choice, chosen))
          << keyword << ": chose " << chosen << ", the driver marks " << (marked ? marked->choice : "nothing");
    }
  }

  PrivateScheduler scheduler_;
  std::string document_;
};

TEST_F(CupsPrint, JobCarriesTheWholeTicketAndItsChoices) {
  const print::Ticket input = InputTicket(true);
  const fs::path saved = scheduler_.root() / "saved.plist";
  const ProgramRun run = varnoPrint({"-P", kQueue, "--image-quality", "HighQuality", "--mirror-image", "on",
                                     "--ticket", savedTicket(input), "--save-ticket", saved, document_});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(run.out.starts_with(std::string("request id is ") + kQueue + "-")) << run.out;
  EXPECT_EQ(run.err, "") << "quiet without -v, as lp is";
  const print::Ticket ticket = LoadTicket(saved);

  // The dialog kept what it was given and made the choices asked for; the Paper/Output
  // panel fills in the rest of the job-type item around the given type and passcode.
  const Entries kept = EntriesOf(ticket);
  for (const auto& [key, value] : EntriesOf(input))
    if (key != "com.varno.print.JobType")
      EXPECT_TRUE(kept.contains(key) && kept.at(key) == value) << key << " changed in the dialog";
  const plist::Dictionary jobType = ticket.dictionary("com.varno.print.JobType").value_or(plist::Dictionary{});
  EXPECT_EQ(jobType.getNumber<int>("JobType"), 6);
  EXPECT_EQ(jobType.getString("SecurePrintPassword"), "000123");
  EXPECT_EQ(ticket.ppdDictionary().getString("VNOutputMode"), "HighQuality");
  ASSERT_TRUE(ticket.dictionary("com.varno.print.InvertImageOptions"));
  EXPECT_EQ(ticket.dictionary("com.varno.print.InvertImageOptions")->getNumber<int>("MirrorImage"), 1);
  ExpectJobCarries(run, ticket, true);
}

// 200 inserts and 200 exception ranges typed into the Special Pages pane's dialogs reach the
// filter as the ticket varno-print saved, in many parts.
TEST_F(CupsPrint, SpecialPagesMadeInThePaneTravelWithTheJob) {
  std::string pages, ranges;
  for (int i = 0; i < 200; ++i) {
    pages += (i ? "," : "") + std::to_string(3 * i + 1);
    ranges += (i ? "," : "") + std::to_string(3 * i + 2) + "-" + std::to_string(3 * i + 3);
  }
  const fs::path saved = scheduler_.root() / "special.plist";
  const ProgramRun run = varnoPrint({"-P", kQueue, "--insert", pages + ":qty=2:,Blue,", "--exception", ranges + ":long",
                                     "--save-ticket", saved, document_});
  ASSERT_EQ(run.status, 0) << run.err;
  const print::Ticket ticket = LoadTicket(saved);
  model::InsertList inserts;
  model::ExceptionPageList exceptions;
  ASSERT_EQ(model::ReadInsertList(ticket, inserts), noErr);
  ASSERT_EQ(model::ReadExceptionList(ticket, exceptions), noErr);
  ASSERT_EQ(inserts.count(), 200);
  ASSERT_EQ(exceptions.count(), 200);
  EXPECT_EQ(inserts.pageAtIndex(199)->startPage(), 598);
  EXPECT_EQ(exceptions.pageAtIndex(199)->endPage(), 600);
  ExpectJobCarries(run, ticket, true);
}

// A secure job's passcode reaches the printer inside the job-type item, and no log of the
// run holds it: not varno-print's words (with -v), not the scheduler's logs.
TEST_F(CupsPrint, APasscodeTravelsInTheJobAndInNoLog) {
  const std::string passcode = "86420975";
  const fs::path saved = scheduler_.root() / "secure.plist";
  const ProgramRun run = varnoPrint({"-P", kQueue, "-v", "--job-type", "secure", "--passcode", passcode,
                                     "--save-ticket", saved, document_});
  ASSERT_EQ(run.status, 0) << run.err;
  const print::Ticket ticket = LoadTicket(saved);
  const plist::Dictionary jobType = ticket.dictionary("com.varno.print.JobType").value_or(plist::Dictionary{});
  EXPECT_EQ(jobType.getNumber<int>("JobType"), 6);
  EXPECT_EQ(jobType.getString("SecurePrintPassword"), passcode);
  ExpectJobCarries(run, ticket, false);
  EXPECT_EQ((run.out + run.err).find(passcode), std::string::npos) << run.out << run.err;
  for (const auto& entry : fs::directory_iterator(scheduler_.root() / "log")) {
    std::ifstream in(entry.path(), std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(text.find(passcode), std::string::npos) << entry.path() << " holds the passcode";
  }
}

TEST_F(CupsPrint, SavedDefaultsReachPlainLpJobsAndReadBack) {
  // Larger defaults saved first: the smaller ones below must leave none of their parts.
  const ProgramRun large = varnoPrint({"-P", kQueue, "--save-defaults", "--ticket",
                                       savedTicket(InputTicket(true))});
  ASSERT_EQ(large.status, 0) << large.err;
  const fs::path saved = scheduler_.root() / "defaults.plist";
  const ProgramRun save = varnoPrint({"-P", kQueue, "--save-defaults", "--image-quality", "HighSpeed",
                                      "--ticket", savedTicket(InputTicket(false)), "--save-ticket", saved});
  ASSERT_EQ(save.status, 0) << save.err;
  const print::Ticket ticket = LoadTicket(saved);
  EXPECT_EQ(ticket.ppdDictionary().getString("VNOutputMode"), "HighSpeed");
  // Kept in the test's folder ($HOME/.cups, or CUPS_SERVERROOT for a libcups that writes
  // root's there), never in /etc/cups or the real home.
  EXPECT_TRUE(fs::exists(scheduler_.root() / "home/.cups/lpoptions") ||
              fs::exists(scheduler_.root() / "conf/lpoptions"));

  const ProgramRun lp = scheduler_.run({"lp", "-d", kQueue, file("other.ps", "%!PS\nshowpage\nshowpage\n")});
  ASSERT_EQ(lp.status, 0) << lp.err;
  ExpectJobCarries(lp, ticket, false);

  const fs::path back = scheduler_.root() / "back.plist";
  const ProgramRun read = varnoPrint({"-P", kQueue, "--ticket-from-defaults", "--save-ticket", back});
  ASSERT_EQ(read.status, 0) << read.err;
  const print::Ticket reread = LoadTicket(back);
  ExpectSameEntries(EntriesOf(ticket), EntriesOf(reread));
  EXPECT_TRUE(reread.ppdDictionary() == ticket.ppdDictionary())
      << Xml(reread.ppdDictionary()) << "differs from\n" << Xml(ticket.ppdDictionary());
}

// A preset as lp users keep one: an lpoptions instance of the queue that every application
// lists as a printer, made by --save-defaults, used by plain lp jobs and by varno-print.
TEST_F(CupsPrint, SavedInstancesAreQueuesOfTheirOwnForLpAndVarnoPrint) {
  const std::string preset = std::string(kQueue) + "/booklet";
  const fs::path saved = scheduler_.root() / "preset.plist";
  const ProgramRun save = varnoPrint({"--save-defaults", "-P", preset, "--image-quality=HighSpeed",
                                      "--save-ticket", saved});
  ASSERT_EQ(save.status, 0) << save.err;
  const print::Ticket ticket = LoadTicket(saved);
  const ProgramRun lpstat = scheduler_.run({"lpstat", "-p"});
  EXPECT_NE(lpstat.out.find(std::string("printer ") + kQueue + " "), std::string::npos) << lpstat.out;
  const ProgramRun lpoptions = scheduler_.run({"lpoptions", "-p", preset});
  EXPECT_NE(lpoptions.out.find("VNOutputMode=HighSpeed"), std::string::npos) << lpoptions.out;
  EXPECT_NE(lpoptions.out.find("ticket-entries-1="), std::string::npos) << lpoptions.out;
  EXPECT_EQ(scheduler_.run({"lpoptions", "-p", kQueue}).out.find("VNOutputMode=HighSpeed"), std::string::npos)
      << "the queue itself keeps its own defaults";

  const ProgramRun lp = scheduler_.run({"lp", "-d", preset, document_});
  ASSERT_EQ(lp.status, 0) << lp.err;
  ExpectJobCarries(lp, ticket, false);

  // varno-print on the preset starts from it; -n and -t reach the job and the ticket.
  const fs::path used = scheduler_.root() / "used.plist";
  const ProgramRun run = varnoPrint({"-d", preset, "-n", "2", "-t", "Preset job", "--save-ticket", used, document_});
  ASSERT_EQ(run.status, 0) << run.err;
  const print::Ticket usedTicket = LoadTicket(used);
  EXPECT_EQ(usedTicket.ppdDictionary().getString("VNOutputMode"), "HighSpeed");
  EXPECT_EQ(usedTicket.string("com.apple.print.JobInfo.PMJobName"), "Preset job");
  ExpectJobCarries(run, usedTicket, false);
  const int job = std::atoi(run.out.c_str() + run.out.find('-', run.out.find(kQueue)) + 1);
  EXPECT_EQ(testing::ReadAll(scheduler_.recordedTitleAndCopies(job)), "Preset job\n2");
}

// Status 1, nothing on standard output and a last line on standard error naming the culprit;
// the ticket is saved before the job is tried, so a job that fails loses no settings.
TEST_F(CupsPrint, FailuresAreReportedInOneLineWithStatusOne) {
  const std::string closed = "127.0.0.1:" + std::to_string(PrivateScheduler::FreePort());
  const std::string missing = scheduler_.root() / "no-such-file.ps";
  const std::string saved = scheduler_.root() / "kept.plist";
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"-P", "nosuchqueue", document_}, "nosuchqueue"},
      {{"-P", kQueue, "-h", closed, document_}, closed},
      {{"-P", kQueue, "--save-ticket", saved, missing}, missing}};
  for (const auto& [arguments, culprit] : cases) {
    const ProgramRun run = varnoPrint(arguments);
    EXPECT_EQ(run.status, 1) << run.err;
    EXPECT_EQ(run.out, "");
    const std::string last = run.err.substr(run.err.rfind('\n', run.err.size() - 2) + 1);
    EXPECT_TRUE(last.starts_with("varno-print: ") && last.find(culprit) != std::string::npos)
        << culprit << " is not named on the last line:\n" << run.err;
  }
  ASSERT_TRUE(fs::exists(saved));
  EXPECT_GT(LoadTicket(saved).ppdDictionary().size(), 10u);
}

}  // namespace
}  // namespace varno
