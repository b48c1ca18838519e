#include "automation/Answer.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "automation/ClassFactory.h"
#include "automation/CollectionObject.h"
#include "automation/Conversion.h"
#include "automation/ModuleUse.h"
#include "facade/ThreadStore.h"

namespace tavi::automation {
namespace {

using windows::AutomationText;
using windows::ComPointer;

struct Information {
  bool isThere = false;
  std::string source;
  std::string description;
};

Information TakeInformation() {
  ComPointer<IErrorInfo> error;
  if (::GetErrorInfo(0, error.Receive()) != S_OK) return {};
  AutomationText source;
  AutomationText description;
  error->GetSource(source.Receive());
  error->GetDescription(description.Receive());
  return {true, source.ToUtf8(), description.ToUtf8()};
}

void LeaveOlderError() {
  Answer([] { throw Error(ErrorNumber::TypeMismatch, "older", "an older error"); });
}

TEST(AnswerTest, AnErrorKeepsItsNumberSourceAndDescription) {
  EXPECT_EQ(Answer([] { throw Error(-2147217900, "Microsoft JET", "Éloïse's statement"); }), -2147217900);
  const Information information = TakeInformation();
  EXPECT_EQ(information.source, "Microsoft JET");
  EXPECT_EQ(information.description, "Éloïse's statement");
}

TEST(AnswerTest, AnErrorWhoseNumberMeansSuccessIsAFailureAllTheSame) {
  EXPECT_EQ(Answer([] { throw Error(0, "x", "y"); }), E_FAIL);
  EXPECT_EQ(Answer([] { throw Error(7, "x", "y"); }), E_FAIL);
  EXPECT_EQ(TakeInformation().description, "y");
}

TEST(AnswerTest, OtherExceptionsAreFailuresWithTheirText) {
  EXPECT_EQ(Answer([] { throw std::runtime_error("unexpected"); }), E_FAIL);
  const Information information = TakeInformation();
  EXPECT_EQ(information.source, "TaviMembership");
  EXPECT_EQ(information.description, "unexpected");
}

TEST(AnswerTest, AnythingElseThatIsThrownIsAFailureToo) {
  LeaveOlderError();
  EXPECT_EQ(Answer([] { throw 42; }), E_FAIL);
  EXPECT_FALSE(TakeInformation().isThere);
}

TEST(AnswerTest, WithoutMemoryTheNumberSaysSoAndNoOlderErrorRemains) {
  LeaveOlderError();
  EXPECT_EQ(Answer([] { throw std::bad_alloc(); }), E_OUTOFMEMORY);
  EXPECT_FALSE(TakeInformation().isThere);
  EXPECT_EQ(Answer([] { throw std::bad_array_new_length(); }), E_OUTOFMEMORY);
}

TEST(AnswerTest, AMissingVariableIsRefusedBeforeAnythingIsDoneAndNoOlderErrorRemains) {
  LeaveOlderError();
  long number = 7;
  bool isDone = false;
  EXPECT_EQ(Answer([&] { isDone = true; }, &number, static_cast<short*>(nullptr)), E_POINTER);
  EXPECT_FALSE(isDone);
  EXPECT_EQ(number, 7);
  EXPECT_FALSE(TakeInformation().isThere);
}

TEST(AnswerTest, TheResultIsClearedFirstAndOtherVariablesAreNot) {
  long number = 7;
  BSTR result = AutomationText("x").Get();
  EXPECT_EQ(Answer([] { throw 42; }, &number, &result), E_FAIL);
  EXPECT_EQ(number, 7);
  EXPECT_EQ(result, nullptr);
}

TEST(PassedBackTest, AVariableKeepsItsValueWhenTheOperationFails) {
  BSTR text = ::SysAllocString(L"old");
  EXPECT_EQ(Answer([&] {
              const auto operation = [](std::string& passed) {
                passed = "new";
                throw 42;
              };
              operation(Out(&text));
            }),
            E_FAIL);
  EXPECT_EQ(AutomationText::ToUtf8(text), "old");
  EXPECT_EQ(Answer([&] {
              const auto operation = [](std::string& passed) { passed += "er"; };
              operation(Out(&text));
            }),
            S_OK);
  EXPECT_EQ(AutomationText::ToUtf8(text), "older");
  ::SysFreeString(text);
}

TEST(ThreadUseTest, TheLastUseOfAThreadReleasesItsStore) {
  const auto platform = std::make_shared<Platform>();
  auto first = std::make_unique<ThreadUse>();
  SetThreadStore(MakeStore(platform));
  auto second = std::make_unique<ThreadUse>();
  first.reset();
  EXPECT_NO_THROW(ThreadStore());
  second.reset();
  EXPECT_THROW(ThreadStore(), Error);
}

/// Keys of a collection, and the places of one that holds texts.
ComPointer<_Collection> Texts() {
  std::vector<CollectionItem> items;
  items.push_back({Variant("ann@example.org"), "ann@example.org"});
  items.push_back({Variant("Éloïse@example.org"), "Éloïse@example.org"});
  items.push_back({Variant("no key"), {}});
  return MakeCollection(std::move(items));
}

std::string ItemOf(_Collection& collection, const char* key) {
  const AutomationText text(key);
  VARIANT index{};
  index.vt = VT_BSTR;
  index.bstrVal = text.Get();
  Variant item;
  const HRESULT result = collection.get_Item(index, item.Address());
  return SUCCEEDED(result) ? AutomationText::ToUtf8(item.Get().bstrVal) : "error " + std::to_string(result & 0xFFFF);
}

TEST(CollectionTest, KeysAreFoundInAnyCaseOfLetters) {
  const auto collection = Texts();
  EXPECT_EQ(ItemOf(*collection.Get(), "ANN@EXAMPLE.ORG"), "ann@example.org");
  EXPECT_EQ(ItemOf(*collection.Get(), "ÉLOÏSE@example.org"), "Éloïse@example.org");
}

TEST(CollectionTest, ATextIsNeverAPositionNorAnItemWithoutAKey) {
  const auto collection = Texts();
  EXPECT_EQ(ItemOf(*collection.Get(), "1"), "error 5");
  EXPECT_EQ(ItemOf(*collection.Get(), ""), "error 5");
  EXPECT_EQ(ItemOf(*collection.Get(), "no key"), "error 5");
}

}  // namespace
}  // namespace tavi::automation
