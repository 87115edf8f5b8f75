#include "platform/bundle/plugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/print/pde_interface.h"
#include "test_bundle.h"

namespace varno::bundle {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using varno::testing::kTestBundle;
using varno::testing::kTestFactoryID;
using varno::testing::kTypeTheFactoryRefuses;
using varno::testing::kTypeWithUnexportedFactory;
using varno::testing::kUnexportedFactoryID;
using varno::testing::kUnregisteredUUID;

TEST(PlugInInstanceCount, CountsPerFactoryAndNeverDropsBelowZero) {
  const UUID a = MakeUUID("11111111-2222-3333-4444-555555555555");
  const UUID b = MakeUUID("11111111-2222-3333-4444-555555555556");
  CFPlugInAddInstanceForFactory(a);
  CFPlugInAddInstanceForFactory(a);
  CFPlugInAddInstanceForFactory(b);
  EXPECT_EQ(InstanceCountForFactory(a), 2);
  EXPECT_EQ(InstanceCountForFactory(b), 1);

  CFPlugInRemoveInstanceForFactory(a);
  EXPECT_EQ(InstanceCountForFactory(a), 1);
  CFPlugInRemoveInstanceForFactory(a);
  CFPlugInRemoveInstanceForFactory(a);
  EXPECT_EQ(InstanceCountForFactory(a), 0);
  CFPlugInAddInstanceForFactory(a);
  EXPECT_EQ(InstanceCountForFactory(a), 1);

  CFPlugInRemoveInstanceForFactory(a);
  CFPlugInRemoveInstanceForFactory(b);
  EXPECT_EQ(InstanceCountForFactory(b), 0);
}

class PlugInTest : public ::testing::Test {
 protected:
  void SetUp() override {
    bundle_ = Bundle::Open(kTestBundle);
    ASSERT_TRUE(bundle_);
  }
  BundleRef bundle_;
};

TEST_F(PlugInTest, FactoriesAreFoundByTypeAndNamedByInfoPlist) {
  EXPECT_THAT(FactoriesForPlugInType(*bundle_, print::kPDEPlugInType),
              ElementsAre(kTestFactoryID));
  // That key is written in lower case in Info.plist.
  EXPECT_THAT(FactoriesForPlugInType(*bundle_, kTypeTheFactoryRefuses),
              ElementsAre(kTestFactoryID));
  EXPECT_TRUE(FactoriesForPlugInType(*bundle_, kUnregisteredUUID).empty());

  EXPECT_EQ(FactoryFunctionName(*bundle_, kTestFactoryID), "TestPDEFactory");
  EXPECT_EQ(FactoryFunctionName(*bundle_, kUnregisteredUUID), "");
}

TEST_F(PlugInTest, CreateInstanceReportsEachWayOfFailing) {
  void* instance = &instance;
  std::string error;

  EXPECT_EQ(CreateInstance(*bundle_, kTestFactoryID, kTypeTheFactoryRefuses, &instance, &error),
            paramErr);
  EXPECT_EQ(instance, nullptr);
  EXPECT_THAT(error, HasSubstr("returned no instance"));

  EXPECT_EQ(CreateInstance(*bundle_, kUnexportedFactoryID, kTypeWithUnexportedFactory,
                           &instance, &error),
            fnfErr);
  EXPECT_THAT(error, HasSubstr("TestPDEFactoryThatIsNotExported"));

  EXPECT_EQ(CreateInstance(*bundle_, kUnregisteredUUID, print::kPDEPlugInType, &instance,
                           &error),
            fnfErr);
  EXPECT_THAT(error, HasSubstr(kUnregisteredUUID.toString()));
  EXPECT_EQ(InstanceCountForFactory(kTestFactoryID), 0);
}

// The instance and PDE-object protocol as any host sees it through the ABI.
TEST_F(PlugInTest, InstanceAnswersKnownInterfacesAndCountsReferences) {
  void* made = nullptr;
  ASSERT_EQ(CreateInstance(*bundle_, kTestFactoryID, print::kPDEPlugInType, &made), noErr);
  auto** instance = static_cast<IUnknownVTbl**>(made);
  EXPECT_EQ(InstanceCountForFactory(kTestFactoryID), 1);
  EXPECT_EQ((*instance)->reserved, nullptr);

  void* unknown = nullptr;
  EXPECT_EQ((*instance)->QueryInterface(instance, kIUnknownInterfaceID, &unknown), S_OK);
  EXPECT_EQ(unknown, made);
  EXPECT_EQ((*instance)->AddRef(instance), 3u);
  EXPECT_EQ((*instance)->Release(instance), 2u);
  EXPECT_EQ((*instance)->Release(instance), 1u);

  void* refused = &refused;
  HRESULT result = (*instance)->QueryInterface(instance, kUnregisteredUUID, &refused);
  EXPECT_EQ(static_cast<std::uint32_t>(result), 0x80000004u);
  EXPECT_EQ(refused, nullptr);

  void* answer = nullptr;
  ASSERT_EQ((*instance)->QueryInterface(instance, print::kPDEInterfaceID, &answer), S_OK);
  auto* pde = static_cast<print::PDEInterface*>(answer);
  ASSERT_TRUE(pde && pde->vtable);
  EXPECT_EQ(pde->refCount, 1);
  auto liveObjects = bundle_->function<int (*)()>("TestPDELiveInterfaceObjects");
  ASSERT_TRUE(liveObjects);
  EXPECT_EQ(liveObjects(), 1);

  print::PMPDEVersion version{};
  EXPECT_EQ(pde->vtable->GetAPIVersion(pde, &version), noErr);
  EXPECT_EQ(version.buildVersionMajor, 1u);
  EXPECT_EQ(version.buildVersionMinor, 0u);
  EXPECT_EQ(version.baseVersionMajor, 1u);
  EXPECT_EQ(version.baseVersionMinor, 0u);

  EXPECT_EQ(pde->vtable->Retain(pde), noErr);
  EXPECT_EQ(pde->refCount, 2);
  void* held = pde;
  EXPECT_EQ(pde->vtable->Release(&held), noErr);
  EXPECT_EQ(held, nullptr);  // Release clears the caller's pointer
  EXPECT_EQ(pde->refCount, 1);
  held = pde;
  EXPECT_EQ(pde->vtable->Release(&held), noErr);
  EXPECT_EQ(held, nullptr);
  EXPECT_EQ(liveObjects(), 0);

  // The instance stays registered until its last reference goes.
  EXPECT_EQ(InstanceCountForFactory(kTestFactoryID), 1);
  EXPECT_EQ((*instance)->Release(instance), 0u);
  EXPECT_EQ(InstanceCountForFactory(kTestFactoryID), 0);
}

}  // namespace
}  // namespace varno::bundle
