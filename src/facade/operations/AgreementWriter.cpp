// The proof that table and classes agree: assertions about types, which are compiled and never run. A declaration that
// differs from its row of the table fails with a sentence that names the two.
#include <set>

#include "facade/operations/Writers.h"

namespace tavi::operations {
namespace {

std::string CppType(const Argument& argument) {
  // What an object is stored in is told that it may be none.
  const bool isShared = argument.type == FindType("HandiCalcSettings");
  const std::string type = isShared ? "std::shared_ptr<HandiCalcSettings>" : argument.type->cpp;
  return argument.direction == Direction::In ? type : type + "&";
}

std::string Signature(const Operation& operation) {
  std::vector<std::string> types;
  for (const Argument& argument : operation.arguments) types.push_back(CppType(argument));
  const std::string result = operation.result == nullptr ? "void" : operation.result->cpp;
  return result + "(" + Joined(types, ", ") + ")";
}

void WriteAgreement(std::ostream& out, const std::string& className, const Operation& operation) {
  if (operation.isVariable && IsWriting(operation)) return;  // told when it is read
  const std::string member = "&" + className + "::" + CppName(operation);
  const std::string signature = Signature(operation);
  out << "static_assert(std::is_same_v<SignatureOf<decltype(" << member << ")>, " << signature << ">,\n"
      << "              \"operations.txt says something else of " << className << "::" << CppName(operation)
      << "\");\n";
}

/// That what may be left out may be left out in C++ too.
/// As an expression that the compiler tries with the needed arguments alone.
void WriteShortCall(std::ostream& out, const std::string& className, const Operation& operation) {
  std::vector<std::string> parameters{className + " object"};
  std::vector<std::string> names;
  for (const Argument& argument : operation.arguments) {
    if (!argument.standard.empty()) continue;
    parameters.push_back(CppType(argument) + " " + argument.name);
    names.push_back(argument.name);
  }
  if (names.size() == operation.arguments.size()) return;
  parameters.front() = className + "& object";
  out << "static_assert(requires(" << Joined(parameters, ", ") << ") {\n  object." << CppName(operation) << "("
      << Joined(names, ", ") << ");\n});\n";
}

/// The numbers that stand in a text, such as 0x80040000.
void TakeErrorNumbers(const std::string& text, std::set<std::string>& numbers) {
  constexpr std::size_t kLength = 10;
  for (std::size_t at = text.find("0x"); at != std::string::npos; at = text.find("0x", at + kLength)) {
    numbers.insert(text.substr(at, kLength));
  }
}

/// A number that is not among those of the system is a warning, which ends the build.
/// As cases of a switch over the error numbers, which the compiler checks.
void WriteErrorNumbers(std::ostream& out, const std::vector<Class>& classes) {
  std::set<std::string> numbers;
  for (const Class& one : classes) {
    for (const Operation& operation : one.operations) TakeErrorNumbers(operation.errors, numbers);
  }
  out << "\n[[maybe_unused]] bool IsRaised(ErrorNumber number) {\n  switch (number) {\n";
  for (const std::string& number : numbers) out << "    case ErrorNumber{" << number << "}:\n";
  out << "      return true;\n    default:\n      return false;\n  }\n}\n";
}

}  // namespace

void WriteAgreement(std::ostream& out, const std::vector<Class>& classes) {
  out << kDoNotEdit << "#include \"facade/MembershipDatabase.h\"\n#include \"facade/operations/SignatureOf.h\"\n\n"
      << "namespace tavi {\nnamespace {\n\nusing operations::SignatureOf;\n\n";
  for (const Class& one : classes) {
    for (const Operation& operation : one.operations) {
      WriteAgreement(out, one.name, operation);
      WriteShortCall(out, one.name, operation);
    }
  }
  WriteErrorNumbers(out, classes);
  out << "\n}  // namespace\n}  // namespace tavi\n";
}

}  // namespace tavi::operations
