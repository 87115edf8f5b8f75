// SPDX-License-Identifier: Apache-2.0
// The product plug-in as a host meets it: loaded from its bundle with dlopen, made by the
// factory its Info.plist registers, asked for interfaces through its own function table.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "host/dialog_host.h"
#include "host/plugin_entry.h"
#include "platform/bundle/bundle.h"
#include "platform/bundle/plugin.h"
#include "platform/print/framework_driver.h"
#include "vocabulary/plugin_bundle.h"

namespace varno::host {

using vocabulary::kPlugInBundleIdentifier;

namespace {

const std::filesystem::path kPlugIn = VARNO_BUILT_PLUGIN;

class VarnoPlugIn : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    bundle_ = bundle::Bundle::Open(kPlugIn, &error);
    ASSERT_TRUE(bundle_) << error;
  }

  // A new instance made through the factory the bundle registers for `type`.
  bundle::IUnknownVTbl** Create(const bundle::UUID& type) {
    void* instance = nullptr;
    std::string error;
    bundle::CreateInstance(*bundle_, kVarnoPDEFactoryID, type, &instance, &error);
    return static_cast<bundle::IUnknownVTbl**>(instance);
  }

  bundle::BundleRef bundle_;
};

TEST_F(VarnoPlugIn, WrongPlugInTypeYieldsNoInstance) {
  const int before = bundle::InstanceCountForFactory(kVarnoPDEFactoryID);
  EXPECT_EQ(Create(print::kPDEInterfaceID), nullptr);
  EXPECT_EQ(Create(bundle::kIUnknownInterfaceID), nullptr);
  EXPECT_EQ(bundle::InstanceCountForFactory(kVarnoPDEFactoryID), before);
}

TEST_F(VarnoPlugIn, InstanceCountsReferencesAndUnregistersAtZero) {
  const int before = bundle::InstanceCountForFactory(kVarnoPDEFactoryID);
  bundle::IUnknownVTbl** instance = Create(print::kPDEPlugInType);
  ASSERT_NE(instance, nullptr);
  EXPECT_EQ(bundle::InstanceCountForFactory(kVarnoPDEFactoryID), before + 1);
  EXPECT_EQ((*instance)->AddRef(instance), 2u);
  EXPECT_EQ((*instance)->AddRef(nullptr), 0u);
  EXPECT_EQ((*instance)->Release(instance), 1u);
  EXPECT_EQ(bundle::InstanceCountForFactory(kVarnoPDEFactoryID), before + 1);
  EXPECT_EQ((*instance)->Release(instance), 0u);
  EXPECT_EQ(bundle::InstanceCountForFactory(kVarnoPDEFactoryID), before);
}

TEST_F(VarnoPlugIn, QueryInterfaceAnswersUnknownAndPDEAndRefusesOthers) {
  bundle::IUnknownVTbl** instance = Create(print::kPDEPlugInType);
  ASSERT_NE(instance, nullptr);
  bundle::IUnknownVTbl* table = *instance;

  void* out = reinterpret_cast<void*>(0x1);
  EXPECT_EQ(table->QueryInterface(instance, bundle::kIUnknownInterfaceID, &out), bundle::S_OK);
  EXPECT_EQ(out, instance) << "the unknown interface is the instance itself";
  EXPECT_EQ(table->Release(instance), 1u) << "QueryInterface added a reference";

  out = reinterpret_cast<void*>(0x1);
  EXPECT_EQ(table->QueryInterface(instance, print::kPDEPlugInType, &out), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);

  void* pdeObject = nullptr;
  ASSERT_EQ(table->QueryInterface(instance, print::kPDEInterfaceID, &pdeObject), bundle::S_OK);
  auto* pde = static_cast<print::PDEInterface*>(pdeObject);
  ASSERT_NE(pde, nullptr);
  EXPECT_EQ(pde->vtable->Retain(pde), noErr);
  EXPECT_EQ(pde->refCount, 2);
  for (int refCount : {1, 0}) {  // the last Release frees it; ASan would see a leak otherwise
    void* ref = pde;
    EXPECT_EQ(pde->vtable->Release(&ref), noErr);
    EXPECT_EQ(ref, nullptr) << "Release clears the caller's pointer";
    if (refCount) {
      EXPECT_EQ(pde->refCount, refCount);
    }
  }

  EXPECT_EQ(table->Release(instance), 0u);
}

TEST_F(VarnoPlugIn, FrameworkDriverFindsAndLoadsItByIdentifier) {
  const int before = bundle::InstanceCountForFactory(kVarnoPDEFactoryID);
  {
    print::FrameworkDriver driver;
    ASSERT_EQ(driver.loadByIdentifier(kPlugInBundleIdentifier), noErr) << driver.error();
    print::PMPDEVersion version{};
    EXPECT_EQ(driver.getAPIVersion(version), noErr);
    EXPECT_EQ(version.buildVersionMajor, 1u);
    EXPECT_EQ(bundle::InstanceCountForFactory(kVarnoPDEFactoryID), before + 1);
  }
  EXPECT_EQ(bundle::InstanceCountForFactory(kVarnoPDEFactoryID), before)
      << "the driver releases the instance it made";
}

TEST_F(VarnoPlugIn, ExportsThePanelGettersAndTheHostCallsByName) {
  for (const char* name : {"PDESync", "GetPDEBundle"})
    EXPECT_NE(bundle_->functionPointer(name), nullptr) << name;
  for (const char* panel : {"PaperOutput", "ImageOptions", "BookletWatermark", "Advanced",
                            "SpecialPages", "JobNotes"}) {
    const std::string name = std::string("Get") + panel + "PanelInterface";
    auto getter = bundle_->function<PanelInterfaceGetter>(name.c_str());
    ASSERT_NE(getter, nullptr) << name;
    PanelInterfaceHolder* holder = nullptr;
    ASSERT_EQ(getter(&holder), noErr) << name;
    ASSERT_TRUE(holder && holder->interface) << name;
    std::unique_ptr<PanelInterface> table(holder->interface);
    delete holder;
    print::PMPDEContext context = nullptr;
    ASSERT_EQ(table->Prologue(&context, nullptr, nullptr, nullptr, nullptr, nullptr), noErr) << name;
    EXPECT_EQ(table->Terminate(context, noErr), noErr) << name;
  }
}

}  // namespace
}  // namespace varno::host
