#include "config/values/class_factory.h"

#include <gtest/gtest.h>

#include "config/values/factories.h"
#include "config/values/integer_value.h"
#include "config/values/presets_param_vector.h"
#include "config/values/vector.h"
#include "test_stderr.h"

namespace {

// Puts the registry back into its built-in state for the next test.
class ClassFactoryTest : public testing::Test {
 protected:
  void TearDown() override {
    ClassFactory::DestroyFactories();
    ClassFactory::InitFactories();
  }
};

}  // namespace

TEST_F(ClassFactoryTest, WhatCreateHandsOutAndHandRegisteredFactories) {
  for (eClassID_t id :
       {eClassID_IntegerValue, eClassID_StringValue, eClassID_SectorHeader, eClassID_Checkpoint}) {
    Serializable* first = ClassFactory::Create(id);
    ASSERT_NE(nullptr, first) << id;
    EXPECT_EQ(first, ClassFactory::Create(id)) << "class " << id << " must be shared";
    EXPECT_EQ(id, first->GetClassID());
    EXPECT_TRUE(ClassFactory::IsSharedClass(id));
  }
  // The other classes are made new for each caller, who owns them.
  Serializable* a = nullptr;
  Serializable* b = nullptr;
  std::string err = Stderr([&] {
    a = ClassFactory::Create(eClassID_Vector);
    b = ClassFactory::Create(eClassID_Vector);
  });
  EXPECT_NE(a, b);
  EXPECT_EQ(
      "VectorFactory::Create - return new Vector()\nVectorFactory::Create - return new Vector()\n",
      err);
  EXPECT_NE(nullptr, dynamic_cast<zyn::config::values::Vector*>(a));
  delete a;
  delete b;

  Serializable* header = nullptr;
  err = Stderr([&] { header = ClassFactory::Create(eClassID_PackageHeader); });
  EXPECT_EQ("PackageHeaderFactory::Create - return new Vector()\n", err);
  EXPECT_EQ(eClassID_PackageHeader, header->GetClassID());
  delete header;

  Serializable* presets = ClassFactory::Create(eClassID_Presets);
  EXPECT_NE(nullptr, dynamic_cast<zyn::config::values::PresetsParamVector*>(presets));
  EXPECT_EQ(eClassID_Presets, presets->GetClassID());
  delete presets;

  Serializable* none = nullptr;
  err = Stderr([&] { none = ClassFactory::Create(static_cast<eClassID_t>(2)); });
  EXPECT_EQ(nullptr, none);
  EXPECT_EQ("Unable to find class factory for classID = 2\n", err);

  // A factory of our own, registered by hand under the empty entry.
  struct Two : ClassFactory {
    Two() : ClassFactory(static_cast<eClassID_t>(2)) { Register(this); }
    Serializable* Create() override { return new Serializable(); }
  };
  new Two();
  Serializable* made = ClassFactory::Create(static_cast<eClassID_t>(2));
  ASSERT_NE(nullptr, made);
  EXPECT_EQ(2, made->GetClassID());
  delete made;

  ClassFactory::DestroyFactories();
  new zyn::config::values::VectorFactory();
  ClassFactory::InitFactories();
  err = Stderr([] { EXPECT_EQ(nullptr, ClassFactory::Create(eClassID_IntegerValue)); });
  EXPECT_EQ("Unable to find class factory for classID = 0\n", err);

  // A presets factory with a policy it does not know makes nothing.
  ClassFactory::DestroyFactories();
  new zyn::config::values::PresetsFactory(static_cast<zyn::config::values::ePresetsPolicy>(5));
  err = Stderr([] { EXPECT_EQ(nullptr, ClassFactory::Create(eClassID_Presets)); });
  EXPECT_EQ("PresetsFactory::Create - unknown policy 5, unable to create Presets instance\n", err);
}
