// SPDX-License-Identifier: Apache-2.0
// Files written here must be read by other property-list readers, and theirs by us.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "platform/plist/file.h"
#include "platform/print/session.h"
#include "support/temp_dir.h"

namespace varno::plist {
namespace {

using varno::testing::TempDir;

const std::string kPeer = std::string(VARNO_TEST_DATA_DIR) + "/plist/plistlib_peer.py";

int RunCommand(const std::string& command) {
  int status = std::system((command + " 2>&1").c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string Quote(const std::filesystem::path& p) { return "'" + p.string() + "'"; }

// plistlib_peer.py with `verb` on the given files.
int Peer(const char* verb, const std::filesystem::path& a, const std::filesystem::path& b = {}) {
  return RunCommand("python3 " + kPeer + " " + verb + " " + Quote(a) +
                    (b.empty() ? "" : " " + Quote(b)));
}

// plistutil converting `from` to the binary form in `to`.
int ToBinary(const std::filesystem::path& from, const std::filesystem::path& to) {
  return RunCommand("plistutil -i " + Quote(from) + " -o " + Quote(to) + " -f bin");
}

Dictionary Sample() {
  return Dictionary{
      {"PMPrintSettingsTicket", Dictionary{{"com.varno.print.JobType",
                                            Dictionary{{"JobType", 6}, {"Code", "0042"}}}}},
      {"Copies", 2},
      {"Min", INT64_MIN},
      {"Ratio", 0.3},
      {"Flag", true},
      {"When", Date{700000000}},
      {"Bytes", Data{0, 0xfe, 0x7f}},
      {"List", Array{Array{}, Dictionary{}, "é", -1.25e-7}},
  };
}

TEST(Interoperability, PlistlibFilesAreReadAndWrittenBackEqual) {
  TempDir dir;
  ASSERT_EQ(Peer("make", dir / "theirs.plist"), 0);
  std::string error;
  std::optional<Value> value = ReadFile(dir / "theirs.plist", &error);
  ASSERT_TRUE(value) << error;
  ASSERT_TRUE(WriteFile(dir / "ours.plist", *value, &error)) << error;
  EXPECT_EQ(Peer("compare", dir / "theirs.plist", dir / "ours.plist"), 0);
  // Spot checks that the values arrived as the right kinds.
  const Dictionary& d = *value->asDictionary();
  EXPECT_EQ(d.getNumber<std::int64_t>("Large"), std::int64_t{1} << 40);
  EXPECT_EQ(d.find("Scale")->asReal(), 0.875);
  EXPECT_EQ(d.getData("Blob")->size(), 256u);
  EXPECT_TRUE(d.getDate("Created").has_value());
}

// Writes `bytes` to `file`; false when it could not.
bool WriteBytes(const std::filesystem::path& file, const std::string& bytes) {
  return ReplaceFileContents(file, bytes);
}

TEST(Interoperability, BinaryFilesTravelBothWaysWithPlistlib) {
  TempDir dir;
  // Theirs to ours: plistlib's binary file read, written back in binary, equal to plistlib.
  ASSERT_EQ(Peer("makebinary", dir / "theirs.bplist"), 0);
  std::string error;
  std::optional<Value> value = ReadFile(dir / "theirs.bplist", &error);
  ASSERT_TRUE(value) << error;
  const Dictionary& d = *value->asDictionary();
  EXPECT_EQ(d.getDate("After")->seconds, 3124182605.0) << "2100-01-01T12:30:05Z";
  EXPECT_EQ(d.getDate("Before")->seconds, -3187296000.0) << "1900-01-01T00:00:00Z";
  EXPECT_EQ(d.getNumber<std::int64_t>("Min"), INT64_MIN);
  std::optional<std::string> binary = ToBinary(*value, &error);
  ASSERT_TRUE(binary) << error;
  ASSERT_TRUE(WriteBytes(dir / "ours.bplist", *binary));
  EXPECT_EQ(Peer("compare", dir / "theirs.bplist", dir / "ours.bplist"), 0);

  // Ours to theirs: our binary file of our sample, rewritten by plistlib in binary, reads
  // back equal.
  Dictionary sample = *value->asDictionary();
  sample.set("Sample", Sample());
  ASSERT_TRUE(WriteBytes(dir / "mine.bplist", ToBinary(sample).value_or("")));
  ASSERT_EQ(Peer("tobinary", dir / "mine.bplist", dir / "back.bplist"), 0);
  std::optional<Value> back = ReadFile(dir / "back.bplist", &error);
  ASSERT_TRUE(back) << error;
  EXPECT_EQ(*back, Value(sample));
}

TEST(Interoperability, SavedSessionSurvivesPlistlibAndPlistutil) {
  TempDir dir;
  print::Session session;
  session.setPrinterQueue("Varno_AT120A", "127.0.0.1:8631");
  print::Ticket settings = session.printSettings();
  for (const auto& [key, value] : Sample()) settings.setValue(key, value, "com.varno.printingmanager");
  settings.setValue("com.varno.print.VNIFOptions", Dictionary{{"VNIFOptionCovers", true}}, "V", true);
  print::Ticket paper;
  paper.setRect("com.apple.print.PaperInfo.PMUnadjustedPaperRect", {-18, -18, 774, 594}, "V");
  session.pageFormat().setTicket("com.apple.print.PaperInfoTicket", paper, "V");
  settings.ppdDictionary().set("VNOColor", "BW");
  std::string error;
  ASSERT_TRUE(session.save(dir / "ours.session", &error)) << error;

  // Through plistlib (XML) and plistutil (binary) and back: the same session.
  ASSERT_EQ(Peer("roundtrip", dir / "ours.session", dir / "plistlib.session"), 0);
  ASSERT_EQ(ToBinary(dir / "plistlib.session", dir / "binary.session"), 0);
  std::unique_ptr<print::Session> back = print::Session::load(dir / "binary.session", &error);
  ASSERT_TRUE(back) << error;
  EXPECT_EQ(back->toPropertyList(), session.toPropertyList());
  EXPECT_EQ(back->printer(), session.printer());
  EXPECT_TRUE(back->printSettings().item("com.varno.print.VNIFOptions")->locked);
}

}  // namespace
}  // namespace varno::plist
