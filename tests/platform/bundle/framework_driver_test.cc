#include "platform/print/framework_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/print/session.h"
#include "test_bundle.h"

namespace varno::print {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using varno::testing::kTestBundle;
using varno::testing::kTestBundleFolder;
using varno::testing::kTestBundleID;
using varno::testing::kTestFactoryID;
using varno::testing::kTypeTheFactoryRefuses;
using varno::testing::kTypeWithUnexportedFactory;
using varno::testing::kUnregisteredUUID;
using varno::testing::ScopedEnv;
using varno::testing::ScopedLocale;
using Stage = FrameworkDriver::Stage;

// Holds the test plug-in's bundle open for the whole test, so that its call log and live
// counters can still be read after a driver has released everything.
class FrameworkDriverTest : public ::testing::Test {
 protected:
  void SetUp() override {
    bundle_ = bundle::Bundle::Open(kTestBundle);
    ASSERT_TRUE(bundle_);
    reset_ = bundle_->function<void (*)()>("TestPDEReset");
    copyLog_ = bundle_->function<void (*)(std::vector<std::string>*)>("TestPDECopyCallLog");
    failNext_ = bundle_->function<void (*)(const char*, OSStatus)>("TestPDEFailNext");
    liveObjects_ = bundle_->function<int (*)()>("TestPDELiveInterfaceObjects");
    liveContexts_ = bundle_->function<int (*)()>("TestPDELiveContexts");
    ASSERT_TRUE(reset_ && copyLog_ && failNext_ && liveObjects_ && liveContexts_);
    reset_();
  }

  std::vector<std::string> calls() const {
    std::vector<std::string> log;
    copyLog_(&log);
    return log;
  }

  // Everything the plug-in made has been freed.
  void expectNothingLive() const {
    EXPECT_EQ(bundle::InstanceCountForFactory(kTestFactoryID), 0);
    EXPECT_EQ(liveObjects_(), 0);
    EXPECT_EQ(liveContexts_(), 0);
  }

  ScopedLocale locale_{"C"};
  bundle::BundleRef bundle_;
  void (*reset_)() = nullptr;
  void (*copyLog_)(std::vector<std::string>*) = nullptr;
  void (*failNext_)(const char*, OSStatus) = nullptr;
  int (*liveObjects_)() = nullptr;
  int (*liveContexts_)() = nullptr;
};

TEST_F(FrameworkDriverTest, ADialogRunsInTheFrameworksOrderAndReleasesEverything) {
  Session session;
  {
    FrameworkDriver driver;
    ASSERT_EQ(driver.loadFromPath(kTestBundle), noErr) << driver.error();
    EXPECT_EQ(driver.stage(), Stage::Loaded);
    EXPECT_EQ(bundle::InstanceCountForFactory(kTestFactoryID), 1);
    PMPDEVersion version{};
    EXPECT_EQ(driver.getAPIVersion(version), noErr);
    EXPECT_EQ(version.baseVersionMajor, 1u);

    ASSERT_EQ(driver.prologue(), noErr);
    EXPECT_EQ(driver.prologueInfo().creator, MakeOSType("VTst"));
    EXPECT_EQ(driver.prologueInfo().userOptionKind, "com.varno.test.pde.kind");
    EXPECT_EQ(driver.prologueInfo().title, "Test Options");  // from the plug-in's own table
    EXPECT_EQ(driver.prologueInfo().maxH, 320u);
    EXPECT_EQ(driver.prologueInfo().maxV, 240u);

    ASSERT_EQ(driver.initialize(&session), noErr);
    EXPECT_EQ(driver.flags(), 1u);
    EXPECT_EQ(driver.sync(true), noErr);
    EXPECT_EQ(driver.open(), noErr);
    EXPECT_EQ(driver.stage(), Stage::Opened);
    EXPECT_EQ(driver.close(), noErr);
    EXPECT_EQ(driver.sync(false), noErr);
    plist::Array titles, values;
    EXPECT_EQ(driver.getSummaryText(titles, values), noErr);
    EXPECT_EQ(titles, plist::Array({"Test Setting"}));
    EXPECT_EQ(values, plist::Array({"On"}));
    EXPECT_EQ(driver.terminate(noErr), noErr);
    EXPECT_EQ(driver.stage(), Stage::Terminated);
  }
  EXPECT_THAT(calls(), ElementsAre("QueryInterface", "Prologue", "Initialize", "Sync(true)",
                                   "Open", "Close", "Sync(false)", "GetSummaryText",
                                   "Terminate(0)"));
  // The session given at Initialize reached Sync: the plug-in wrote into its ticket.
  plist::Array written;
  ASSERT_EQ(session.printSettings().getArray("com.varno.test.CallLog", written), noErr);
  EXPECT_EQ(written.size(), 7u);
  expectNothingLive();
}

TEST_F(FrameworkDriverTest, PlugInIsFoundByIdentifierOnTheSearchPath) {
  ScopedEnv path(bundle::kBundlePathVariable, kTestBundleFolder.string());
  FrameworkDriver driver;
  EXPECT_EQ(driver.loadByIdentifier(kTestBundleID), noErr) << driver.error();
  EXPECT_EQ(driver.bundle(), bundle_);

  FrameworkDriver missing;
  EXPECT_EQ(missing.loadByIdentifier("com.varno.test.absent"), fnfErr);
  EXPECT_THAT(missing.error(), HasSubstr("bundle not found"));
  EXPECT_EQ(missing.stage(), Stage::Empty);
}

TEST_F(FrameworkDriverTest, LoadingFailuresSayWhatIsMissingAndLeaveNothingBehind) {
  {
    FrameworkDriver driver;
    EXPECT_EQ(driver.loadFromPath(kTestBundle, kTypeTheFactoryRefuses), paramErr);
    EXPECT_THAT(driver.error(), HasSubstr("returned no instance"));
    EXPECT_EQ(driver.stage(), Stage::Empty);
    EXPECT_EQ(driver.instance(), nullptr);
  }
  {
    FrameworkDriver driver;
    EXPECT_EQ(driver.loadFromPath(kTestBundle, kUnregisteredUUID), fnfErr);
    EXPECT_THAT(driver.error(), HasSubstr("no factory for plug-in type"));
  }
  {
    FrameworkDriver driver;
    EXPECT_EQ(driver.loadFromPath(kTestBundle, kTypeWithUnexportedFactory), fnfErr);
    EXPECT_THAT(driver.error(), HasSubstr("TestPDEFactoryThatIsNotExported"));
  }
  {
    FrameworkDriver driver;
    EXPECT_EQ(driver.loadFromPath(kTestBundleFolder / "NoSuch.plugin"), fnfErr);
    EXPECT_THAT(driver.error(), HasSubstr("bundle not found"));
  }
  {
    FrameworkDriver driver;
    failNext_("QueryInterface", E_NOINTERFACE);
    EXPECT_EQ(driver.loadBundle(bundle_), E_NOINTERFACE);
    EXPECT_THAT(driver.error(), HasSubstr("no PDE interface"));
    EXPECT_EQ(driver.pdeInterface(), nullptr);
    // The instance made before the refusal was released at once.
    EXPECT_EQ(bundle::InstanceCountForFactory(kTestFactoryID), 0);
    // A driver whose load failed can load again.
    EXPECT_EQ(driver.loadBundle(bundle_), noErr) << driver.error();
  }
  expectNothingLive();
}

TEST_F(FrameworkDriverTest, CallsOutOfOrderAreRefusedWithoutReachingThePlugIn) {
  FrameworkDriver driver;
  EXPECT_EQ(driver.prologue(), kPMOutOfScope);
  PMPDEVersion version{};
  EXPECT_EQ(driver.getAPIVersion(version), kPMOutOfScope);

  ASSERT_EQ(driver.loadFromPath(kTestBundle), noErr);
  EXPECT_EQ(driver.loadFromPath(kTestBundle), kPMOutOfScope);
  EXPECT_EQ(driver.initialize(nullptr), kPMOutOfScope);
  EXPECT_THAT(driver.error(), HasSubstr("Initialize"));
  EXPECT_EQ(driver.sync(true), kPMOutOfScope);
  EXPECT_EQ(driver.open(), kPMOutOfScope);
  EXPECT_EQ(driver.terminate(noErr), kPMOutOfScope);

  ASSERT_EQ(driver.prologue(), noErr);
  EXPECT_EQ(driver.prologue(), kPMOutOfScope);
  plist::Array titles, values;
  EXPECT_EQ(driver.getSummaryText(titles, values), kPMOutOfScope);
  EXPECT_EQ(driver.close(), kPMOutOfScope);

  Session session;
  ASSERT_EQ(driver.initialize(&session), noErr);
  EXPECT_EQ(driver.close(), kPMOutOfScope);
  ASSERT_EQ(driver.open(), noErr);
  EXPECT_EQ(driver.open(), kPMOutOfScope);
  EXPECT_EQ(driver.terminate(noErr), kPMOutOfScope);  // the framework closes first
  ASSERT_EQ(driver.close(), noErr);
  ASSERT_EQ(driver.terminate(noErr), noErr);
  EXPECT_EQ(driver.sync(false), kPMOutOfScope);
  EXPECT_EQ(driver.open(), kPMOutOfScope);
  EXPECT_EQ(driver.terminate(noErr), kPMOutOfScope);

  EXPECT_THAT(calls(), ElementsAre("QueryInterface", "Prologue", "Initialize", "Open", "Close",
                                   "Terminate(0)"));
}

TEST_F(FrameworkDriverTest, AFailedStepKeepsTheStageAndCanBeRetried) {
  FrameworkDriver driver;
  ASSERT_EQ(driver.loadFromPath(kTestBundle), noErr);
  failNext_("Prologue", paramErr);
  EXPECT_EQ(driver.prologue(), paramErr);
  EXPECT_THAT(driver.error(), HasSubstr("Prologue failed"));
  EXPECT_EQ(driver.stage(), Stage::Loaded);
  EXPECT_EQ(driver.prologue(), noErr);
  EXPECT_TRUE(driver.error().empty());

  Session session;
  failNext_("Initialize", kPMInvalidPDEContext);
  EXPECT_EQ(driver.initialize(&session), kPMInvalidPDEContext);
  EXPECT_EQ(driver.stage(), Stage::Prologued);
  EXPECT_EQ(driver.initialize(&session), noErr);

  failNext_("Sync", kPMInvalidPrintSession);
  EXPECT_EQ(driver.sync(true), kPMInvalidPrintSession);
  EXPECT_EQ(driver.stage(), Stage::Initialized);

  // Terminate ends the context even when it reports a failure.
  failNext_("Terminate", paramErr);
  EXPECT_EQ(driver.terminate(noErr), paramErr);
  EXPECT_EQ(driver.stage(), Stage::Terminated);
  EXPECT_EQ(liveContexts_(), 0);
}

TEST_F(FrameworkDriverTest, EmptyEntryPointsAreRefusedOneByOne) {
  auto headerOnly = bundle_->function<void (*)()>("TestPDEHandOutHeaderOnlyTable");
  ASSERT_TRUE(headerOnly);
  headerOnly();
  {
    FrameworkDriver driver;
    ASSERT_EQ(driver.loadFromPath(kTestBundle), noErr) << driver.error();
    PMPDEVersion version{};
    EXPECT_EQ(driver.getAPIVersion(version), noErr);
    EXPECT_EQ(driver.prologue(), paramErr);
    EXPECT_THAT(driver.error(), HasSubstr("no Prologue entry point"));
    EXPECT_EQ(driver.stage(), Stage::Loaded);
  }
  EXPECT_THAT(calls(), ElementsAre("QueryInterface"));
  expectNothingLive();
}

TEST_F(FrameworkDriverTest, DestroyingTheDriverClosesAndTerminatesAnOpenPlugIn) {
  Session session;
  {
    FrameworkDriver driver;
    ASSERT_EQ(driver.loadFromPath(kTestBundle), noErr);
    ASSERT_EQ(driver.prologue(), noErr);
    ASSERT_EQ(driver.initialize(&session), noErr);
    ASSERT_EQ(driver.open(), noErr);
    EXPECT_EQ(liveContexts_(), 1);
  }
  EXPECT_THAT(calls(), ElementsAre("QueryInterface", "Prologue", "Initialize", "Open", "Close",
                                   "Terminate(128)"));
  expectNothingLive();
}

TEST_F(FrameworkDriverTest, DestroyingTheDriverAfterAFailedInitializeStillTerminates) {
  {
    FrameworkDriver driver;
    ASSERT_EQ(driver.loadFromPath(kTestBundle), noErr);
    ASSERT_EQ(driver.prologue(), noErr);
    failNext_("Initialize", kPMInvalidPDEContext);
    EXPECT_NE(driver.initialize(nullptr), noErr);
  }
  EXPECT_THAT(calls(), ElementsAre("QueryInterface", "Prologue", "Initialize", "Terminate(128)"));
  expectNothingLive();
}

}  // namespace
}  // namespace varno::print
