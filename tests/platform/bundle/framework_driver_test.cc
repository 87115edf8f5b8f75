// SPDX-License-Identifier: Apache-2.0
#include "platform/print/framework_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "platform/print/session.h"
#include "test_bundle.h"

namespace varno::print {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using varno::testing::kTestBundle;
using Stage = FrameworkDriver::Stage;

constexpr bundle::UUID kTestFactoryID = bundle::MakeUUID("CF57D2B6-813A-4AC7-BA2D-E8DDC9949AC8");

// Holds the test plug-in's bundle open for the whole test, so that its call log and live
// counters (see tests/fixtures/test_plugin) can be read after a driver released everything.
class FrameworkDriverTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(bundle_);
    fn<void (*)()>("TestPDEReset")();
  }
  template <typename F>
  F fn(const char* name) const {
    return bundle_->function<F>(name);
  }
  std::vector<std::string> calls() const {
    std::vector<std::string> log;
    fn<void (*)(std::vector<std::string>*)>("TestPDECopyCallLog")(&log);
    return log;
  }
  void failNext(const char* entry, OSStatus status) const {
    fn<void (*)(const char*, OSStatus)>("TestPDEFailNext")(entry, status);
  }
  int liveContexts() const { return fn<int (*)()>("TestPDELiveContexts")(); }
  // Everything the plug-in made has been freed.
  void expectNothingLive() const {
    EXPECT_EQ(bundle::InstanceCountForFactory(kTestFactoryID), 0);
    EXPECT_EQ(fn<int (*)()>("TestPDELiveInterfaceObjects")(), 0);
    EXPECT_EQ(liveContexts(), 0);
  }

  varno::testing::ScopedLocale locale_{"C"};
  bundle::BundleRef bundle_ = bundle::Bundle::Open(kTestBundle);
};

TEST_F(FrameworkDriverTest, PlugInFoundByIdentifierRunsInTheFrameworksOrder) {
  varno::testing::ScopedEnv path{
      {bundle::kBundlePathVariable, varno::testing::kTestBundleFolder.string()}};
  Session session;
  {
    FrameworkDriver driver;
    ASSERT_EQ(driver.loadByIdentifier(varno::testing::kTestBundleID), noErr) << driver.error();
    EXPECT_EQ(driver.bundle(), bundle_);
    ASSERT_EQ(driver.prologue(), noErr);
    EXPECT_EQ(driver.prologueInfo().creator, MakeOSType("VTst"));
    ASSERT_EQ(driver.initialize(&session), noErr);
    EXPECT_EQ(driver.sync(true), noErr);
    EXPECT_EQ(driver.open(), noErr);
    EXPECT_EQ(driver.close(), noErr);
    EXPECT_EQ(driver.sync(false), noErr);
    plist::Array titles, values;
    EXPECT_EQ(driver.getSummaryText(titles, values), noErr);
    EXPECT_EQ(values, plist::Array({"On"}));
    EXPECT_EQ(driver.terminate(noErr), noErr);
  }
  EXPECT_THAT(calls(), ElementsAre("QueryInterface", "Prologue", "Initialize", "Sync(true)",
                                   "Open", "Close", "Sync(false)", "GetSummaryText",
                                   "Terminate(0)"));
  // The session given at Initialize reached Sync: the plug-in wrote into its ticket.
  plist::Array written;
  EXPECT_EQ(session.printSettings().getArray("com.varno.test.CallLog", written), noErr);
  expectNothingLive();
}

TEST_F(FrameworkDriverTest, LoadingFailuresSayWhyAndLeaveNothingBehind) {
  const std::tuple<bundle::UUID, OSStatus, const char*> cases[] = {
      // Registered in Info.plist (in lower case), but the factory makes nothing for it.
      {bundle::MakeUUID("5691585C-7950-45D9-A5CD-6F0500506B82"), paramErr, "returned no instance"},
      {bundle::MakeUUID("0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0"), fnfErr, "no factory for plug-in"},
      // Registered with a factory whose function the library does not export.
      {bundle::MakeUUID("298134C5-699D-4384-AF71-2049DDFA61C9"), fnfErr, "NotExported"},
  };
  for (const auto& [type, status, message] : cases) {
    FrameworkDriver driver;
    EXPECT_EQ(driver.loadFromPath(kTestBundle, type), status) << message;
    EXPECT_THAT(driver.error(), HasSubstr(message));
    EXPECT_EQ(driver.stage(), Stage::Empty);
    EXPECT_EQ(driver.instance(), nullptr);
  }
  {
    FrameworkDriver driver;
    EXPECT_EQ(driver.loadByIdentifier("com.varno.test.absent"), fnfErr);
    EXPECT_EQ(driver.loadFromPath(kTestBundle.parent_path() / "NoSuch.plugin"), fnfErr);
    EXPECT_THAT(driver.error(), HasSubstr("bundle not found"));
    failNext("QueryInterface", E_NOINTERFACE);
    EXPECT_EQ(driver.loadBundle(bundle_), E_NOINTERFACE);
    EXPECT_THAT(driver.error(), HasSubstr("no PDE interface"));
    // The instance made before the refusal was released at once, and the driver can retry.
    EXPECT_EQ(bundle::InstanceCountForFactory(kTestFactoryID), 0);
    EXPECT_EQ(driver.loadBundle(bundle_), noErr) << driver.error();
  }
  expectNothingLive();
}

TEST_F(FrameworkDriverTest, CallsOutOfOrderAreRefusedWithoutReachingThePlugIn) {
  FrameworkDriver driver;
  Session session;
  EXPECT_EQ(driver.prologue(), kPMOutOfScope);
  ASSERT_EQ(driver.loadFromPath(kTestBundle), noErr);
  EXPECT_EQ(driver.initialize(&session), kPMOutOfScope);
  EXPECT_THAT(driver.error(), HasSubstr("Initialize"));
  ASSERT_EQ(driver.prologue(), noErr);
  EXPECT_EQ(driver.open(), kPMOutOfScope);
  ASSERT_EQ(driver.initialize(&session), noErr);
  EXPECT_EQ(driver.close(), kPMOutOfScope);
  ASSERT_EQ(driver.open(), noErr);
  EXPECT_EQ(driver.terminate(noErr), kPMOutOfScope);  // the framework closes first
  ASSERT_EQ(driver.close(), noErr);
  ASSERT_EQ(driver.terminate(noErr), noErr);
  EXPECT_EQ(driver.sync(false), kPMOutOfScope);
  EXPECT_EQ(driver.terminate(noErr), kPMOutOfScope);
  EXPECT_THAT(calls(), ElementsAre("QueryInterface", "Prologue", "Initialize", "Open", "Close",
                                   "Terminate(0)"));
}

// A failed step keeps the stage and can be retried, except Terminate, which always ends
// the context; an entry point the plug-in left empty is refused without a crash.
TEST_F(FrameworkDriverTest, AFailedStepKeepsTheStageAndCanBeRetried) {
  {
    FrameworkDriver driver;
    Session session;
    ASSERT_EQ(driver.loadFromPath(kTestBundle), noErr);
    failNext("Prologue", paramErr);
    EXPECT_EQ(driver.prologue(), paramErr);
    EXPECT_THAT(driver.error(), HasSubstr("Prologue failed: a value it was given is missing or "
                                          "out of range (status -50)"));
    EXPECT_EQ(driver.stage(), Stage::Loaded);
    EXPECT_EQ(driver.prologue(), noErr);
    EXPECT_EQ(driver.initialize(&session), noErr);
    failNext("Terminate", paramErr);
    EXPECT_EQ(driver.terminate(noErr), paramErr);
    EXPECT_EQ(driver.stage(), Stage::Terminated);
    EXPECT_EQ(liveContexts(), 0);
  }
  fn<void (*)()>("TestPDEHandOutHeaderOnlyTable")();
  FrameworkDriver empty;
  ASSERT_EQ(empty.loadFromPath(kTestBundle), noErr) << empty.error();
  EXPECT_EQ(empty.prologue(), paramErr);
  EXPECT_THAT(empty.error(), HasSubstr("no Prologue entry point"));
}

TEST_F(FrameworkDriverTest, DestroyingTheDriverClosesAndTerminatesWhatWasStarted) {
  Session session;
  for (bool failInitialize : {false, true}) {
    SCOPED_TRACE(failInitialize ? "after a failed Initialize" : "while open");
    fn<void (*)()>("TestPDEReset")();
    {
      FrameworkDriver driver;
      ASSERT_EQ(driver.loadFromPath(kTestBundle), noErr);
      ASSERT_EQ(driver.prologue(), noErr);
      if (failInitialize) failNext("Initialize", kPMInvalidPDEContext);
      if (driver.initialize(&session) == noErr) {
        ASSERT_EQ(driver.open(), noErr);
      }
    }
    std::vector<std::string> expected{"QueryInterface", "Prologue", "Initialize"};
    if (!failInitialize) expected.insert(expected.end(), {"Open", "Close"});
    expected.push_back("Terminate(128)");
    EXPECT_EQ(calls(), expected);
    expectNothingLive();
  }
}

}  // namespace
}  // namespace varno::print
