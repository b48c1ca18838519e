// The rows of docs/operations.md: what people look up, with the tests that prove each operation. Both halves of a
// property have a row, since each has its own errors and tests.
#include "facade/operations/Writers.h"

namespace tavi::operations {
namespace {

std::string KindWord(Kind kind) {
  if (kind == Kind::Method) return "method";
  return kind == Kind::Get ? "get" : "let";
}

std::string DirectionWord(Direction direction) {
  if (direction == Direction::In) return "in";
  return direction == Direction::Out ? "out" : "in-out";
}

/// What readers call a type: whether automation gives a variant, or may give none, is said elsewhere.
std::string TypeWord(const Type* type) {
  if (type == nullptr) return "-";
  if (type == FindType("variant text")) return "text";
  if (type == FindType("double or none")) return "double";
  return type->word;
}

/// "`Name` text out", "`Handicap` double in optional (none)".
std::string ArgumentText(const Argument& argument) {
  const std::string text =
      "`" + argument.name + "` " + TypeWord(argument.type) + " " + DirectionWord(argument.direction);
  return argument.standard.empty() ? text : text + " optional (" + argument.standard + ")";
}

void WriteRow(std::ostream& out, const Operation& operation) {
  std::vector<std::string> arguments;
  for (const Argument& argument : operation.arguments) arguments.push_back(ArgumentText(argument));
  out << "| `" << operation.name << "` | " << KindWord(operation.kind) << " | "
      << (arguments.empty() ? "-" : Joined(arguments, "; ")) << " | " << TypeWord(operation.result) << " | "
      << operation.errors << " | `" << Joined(operation.tests, "`, `") << "` |\n";
}

}  // namespace

void WritePage(std::ostream& out, const std::vector<Class>& classes, const std::string& before) {
  out << before;
  for (const Class& one : classes) {
    out << (&one == &classes.front() ? "" : "\n") << "## " << one.name << "\n\n"
        << "| Operation | Kind | Arguments | Result | Errors | Proved by |\n|---|---|---|---|---|---|\n";
    for (const Operation& operation : one.operations) WriteRow(out, operation);
  }
}

}  // namespace tavi::operations
