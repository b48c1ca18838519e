#include "facade/operations/OperationTable.h"

#include <gtest/gtest.h>

#include <sstream>

namespace tavi::operations {
namespace {

std::vector<Class> Read(const std::string& text) {
  std::istringstream in(text);
  return ReadTable(in);
}

/// The operation of a table that has one.
Operation Only(const std::string& text) {
  return Read("class Club\n\n" + text).at(0).operations.at(0);
}

std::string Refusal(const std::string& text) {
  try {
    Read(text);
  } catch (const std::runtime_error& problem) {
    return problem.what();
  }
  return "it was taken";
}

/// What is said of an operation whose head is in the third line.
std::string HeadRefusal(const std::string& head) {
  return Refusal("class Club\n\n" + head + "\n  help Does it.\n  errors none\n  tests Test.Name\n");
}

TEST(OperationTable, AnOperationHasArgumentsWithDirectionsAndDefaultsAndAResult) {
  const Operation operation = Only(
      "7 method Find(Name: text, out Number: 32-bit, in-out Par: double,\n"
      "    Exact: boolean = False, Handicap: double = none): array of 32-bit\n"
      "  help   Finds somebody. Or\n         nobody.\n"
      "  errors T, F\n"
      "  tests  FindTest.Finds\n         FindTest.FindsNobody\n");
  EXPECT_EQ(operation.number, 7);
  EXPECT_EQ(operation.kind, Kind::Method);
  EXPECT_EQ(operation.name, "Find");
  ASSERT_EQ(operation.arguments.size(), 5U);
  EXPECT_EQ(operation.arguments[0].name, "Name");
  EXPECT_EQ(operation.arguments[0].type, FindType("text"));
  EXPECT_EQ(operation.arguments[0].direction, Direction::In);
  EXPECT_EQ(operation.arguments[1].direction, Direction::Out);
  EXPECT_EQ(operation.arguments[2].direction, Direction::InOut);
  EXPECT_EQ(operation.arguments[3].standard, "False");
  EXPECT_EQ(operation.arguments[4].type, FindType("double or none"));
  EXPECT_EQ(operation.result, FindType("array of 32-bit"));
  EXPECT_EQ(operation.help, "Finds somebody. Or nobody.");
  EXPECT_EQ(operation.errors, "T, F");
  EXPECT_EQ(operation.tests, (std::vector<std::string>{"FindTest.Finds", "FindTest.FindsNobody"}));
}

TEST(OperationTable, APropertyIsReadAndWrittenWithOneHelp) {
  const Class whole = Read("class Club\n\n1 property Name: text\n  help The name.\n  errors T\n  tests A.B\n").at(0);
  const Class halves = Read(
                           "class Club\n\n1 get Name: text\n  help The name.\n  errors T\n  tests A.B\n\n"
                           "1 let Name(value: text)\n  errors T\n  tests A.B\n")
                           .at(0);
  for (const Class& one : {whole, halves}) {
    ASSERT_EQ(one.operations.size(), 2U);
    EXPECT_EQ(one.operations[0].kind, Kind::Get);
    EXPECT_EQ(one.operations[0].result, FindType("text"));
    EXPECT_EQ(one.operations[1].kind, Kind::Let);
    EXPECT_EQ(one.operations[1].result, nullptr);
    EXPECT_EQ(one.operations[1].arguments.at(0).name, "value");
    EXPECT_EQ(one.operations[1].help, "The name.");
    EXPECT_EQ(CppName(one.operations[1]), "SetName");
    EXPECT_TRUE(HasOtherHalf(one, one.operations[0]));
  }
}

TEST(OperationTable, WhatRaisesErrorsOfTheDatabaseIsProvedByTheTestOfThem) {
  const auto tests = [](const std::string& errors) {
    return Only("1 method Do\n  help Does it.\n  errors " + errors + "\n  tests A.B\n").tests.size();
  };
  EXPECT_EQ(tests("T, F, D"), 2U);
  EXPECT_EQ(tests("T, D while the file is closed"), 2U);
  EXPECT_EQ(tests("T, F"), 1U);
  EXPECT_EQ(tests("T, `0x800A000D` of a Date"), 1U);
  const auto asTheOther = Read(
      "class Club\n\n1 method Do\n  help Does it.\n  errors D\n  tests A.B\n\n"
      "2 method Redo\n  help Does it.\n  errors as `Do`\n  tests A.B\n");
  EXPECT_TRUE(asTheOther.at(0).operations.at(1).raisesDatabaseErrors);
}

TEST(OperationTable, WhatIsWrongIsSaidWithItsLine) {
  EXPECT_EQ(HeadRefusal("method Do"), "3: an operation begins with its number");
  EXPECT_EQ(HeadRefusal("1 function Do"), "3: \"function\" is no kind of operation");
  EXPECT_EQ(HeadRefusal("1 method Do it"), "3: \"Do it\" is no name of an operation");
  EXPECT_EQ(HeadRefusal("1 method Do()"), "3: there is nothing in the brackets");
  EXPECT_EQ(HeadRefusal("1 method Do(Name)"), "3: \"\" is no type");
  EXPECT_EQ(HeadRefusal("1 method Do(Name: word)"), "3: \"word\" is no type");
  EXPECT_EQ(HeadRefusal("1 method Do(Name: text = none)"), "3: \"text or none\" is no type");
  EXPECT_EQ(HeadRefusal("1 method Do(All: collection of text)"), "3: no argument is of the type collection of text");
  EXPECT_EQ(HeadRefusal("1 method Do(ref Name: text)"), "3: \"ref Name\" is no name of an argument");
  EXPECT_EQ(HeadRefusal("1 method Do: number"), "3: \"number\" is no type");
  EXPECT_EQ(HeadRefusal("1 let Name"), "3: Name is given no value");
  EXPECT_EQ(HeadRefusal("1 property Name(value: text)"), "3: a property is a name and a type");
  EXPECT_EQ(Refusal("# nothing\n"), "1: there are no operations");
  EXPECT_EQ(Refusal("\n1 method Do\n  help Does it.\n  errors none\n  tests A.B\n"),
            "2: an operation stands before the first class");
  EXPECT_EQ(Refusal("class Club\n  help A club.\n"), "1: a class is a name, and \"as\" with another one");
  EXPECT_EQ(Refusal("class Club\n\n1 method Do\n  hint Does it.\n"),
            "4: \"  hint Does it.\" is neither help, errors nor tests, nor goes on with the line before");
}

TEST(OperationTable, HelpErrorsAndTestsAreThere) {
  EXPECT_EQ(Refusal("class Club\n\n1 method Do\n  errors none\n  tests A.B\n"), "3: Do has no help");
  EXPECT_EQ(Refusal("class Club\n\n1 method Do\n  help Does it.\n  tests A.B\n"),
            "3: Do does not say what it raises (none is an answer)");
  EXPECT_EQ(Refusal("class Club\n\n1 method Do\n  help Does it.\n  errors none\n"), "3: Do is proved by no test");
}

TEST(OperationTable, NumbersAndNamesAreThereOnce) {
  const std::string rest = "\n  help Does it.\n  errors none\n  tests A.B\n\n";
  const auto two = [&](const std::string& first, const std::string& second) {
    return Refusal("class Club\n\n" + first + rest + second + rest);
  };
  EXPECT_EQ(two("1 method Do", "1 method Undo"),
            "8: Undo 1 and Do 1: the halves of a property alone share name and number");
  EXPECT_EQ(two("1 method Do", "2 method Do"),
            "8: Do 2 and Do 1: the halves of a property alone share name and number");
  EXPECT_EQ(two("1 method Do", "1 method Do"), "8: Do is there already");
  EXPECT_EQ(two("1 get Name: text", "1 get Name: text"), "8: Name is there already");
}

}  // namespace
}  // namespace tavi::operations
