// The operations of the JSON-RPC server, as C++: for each a function that reads its arguments from JSON, calls the
// class and writes what comes back, the list of its arguments, and a row of the table by which the server finds it.
// Classes other than the MembershipDatabase itself have no objects that a client could hold; theirs are values:
//
//   Handicaps                 {"PartnershipHandicap": 52.5, ...}, written by WriteJson
//   a method of such a value  "HandiCalcSettings.AdjustRegularPair", with the value as its first argument
#include <algorithm>

#include "facade/operations/Writers.h"

namespace tavi::operations {
namespace {

/// Objects are values in JSON. Their properties are its members; the operations on them take the object as an argument.
struct Call {
  const Class& owner;
  const Operation& operation;
  bool isOfAValue;  ///< not of the MembershipDatabase itself
};

bool IsPassedBack(const Argument& argument) {
  return argument.direction != Direction::In;
}

/// The names that automation gives to the halves of a property.
std::string PropertyName(const Operation& operation) {
  if (operation.kind == Kind::Method) return operation.name;
  return (IsWriting(operation) ? "put_" : "get_") + operation.name;
}

std::string FunctionName(const Call& call) {
  return (call.isOfAValue ? call.owner.name + "_" : "") + PropertyName(call.operation);
}

std::string JsonName(const Call& call) {
  return (call.isOfAValue ? call.owner.name + "." : "") + PropertyName(call.operation);
}

/// A method of a value that returns nothing is called on a new one, which is what it returns in JSON.
bool GivesNewValue(const Call& call) {
  return call.isOfAValue && call.operation.result == nullptr;
}

/// The arguments of the operation, and before them the value that it belongs to.
std::vector<Argument> ArgumentsOf(const Call& call) {
  std::vector<Argument> arguments = call.operation.arguments;
  // The value comes as an argument by the class's own word, such as "settings".
  if (call.isOfAValue && !GivesNewValue(call)) {
    arguments.insert(arguments.begin(), {call.owner.asArgument, FindType(call.owner.name), Direction::In, ""});
  }
  return arguments;
}

/// The types in JSON's words, as the server tells its clients of them.
std::string TypeWord(const Type* type) {
  std::string word = type == nullptr ? "nothing" : type->word;
  if (word == "variant text") return "text";
  if (word == "double or none") return "double";
  // JSON has one kind of list.
  for (const std::string list : {"array of ", "collection of "}) {
    if (word.starts_with(list)) return "list of " + word.substr(list.size());
  }
  return word;
}

/// What stands for an argument that is left out, as JSON in quotes.
/// What is passed back may always be left out; then the operation gets an empty value to fill.
std::string StandardText(const Argument& argument) {
  if (argument.standard.empty()) return IsPassedBack(argument) ? "\"null\"" : "nullptr";
  if (argument.standard == "empty") return R"("\"\"")";
  if (argument.standard == "none") return "\"null\"";
  if (argument.standard == "False") return "\"false\"";
  return "\"" + argument.standard + "\"";
}

/// Settings that are stored are kept by the object, so it gets an owner of them.
std::string CppType(const Call& call, const Argument& argument) {
  const bool isStored = argument.type == FindType("HandiCalcSettings") && !call.isOfAValue;
  return isStored ? "std::shared_ptr<HandiCalcSettings>" : argument.type->cpp;
}

/// The call itself in C++, as an expression.
/// Arguments have been read into variables of their names, so they can be passed back by reference.
std::string Expression(const Call& call) {
  const Operation& operation = call.operation;
  const std::string object = call.isOfAValue ? (GivesNewValue(call) ? "value" : call.owner.asArgument) : "club";
  std::vector<std::string> names;
  for (const Argument& argument : operation.arguments) names.push_back(argument.name);
  const std::string arguments = Joined(names, ", ");
  if (!operation.isVariable) return object + "." + CppName(operation) + "(" + arguments + ")";
  return object + "." + operation.name + (arguments.empty() ? "" : " = " + arguments);
}

/// The names of unused parameters are written as comments: warnings are errors in what is made, too.
void WriteFunction(std::ostream& out, const Call& call) {
  const std::vector<Argument> arguments = ArgumentsOf(call);
  const bool hasArguments = !arguments.empty();
  out << "Json " << FunctionName(call) << "(const Operation& " << (hasArguments ? "self" : "/*self*/")
      << ", MembershipDatabase& " << (call.isOfAValue ? "/*club*/" : "club") << ", const std::vector<Json>& "
      << (hasArguments ? "given" : "/*given*/") << ") {\n";
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    out << "  " << (IsPassedBack(arguments[i]) ? "auto " : "const auto ") << arguments[i].name << " = ReadArgument<"
        << CppType(call, arguments[i]) << ">(self, given, " << i << ");\n";
  }
  if (GivesNewValue(call)) {
    out << "  " << call.owner.name << " value;\n  " << Expression(call) << ";\n  return Reply(value);\n}\n\n";
    return;
  }
  if (call.operation.result == nullptr) {
    out << "  " << Expression(call) << ";\n  return Reply();\n}\n\n";
    return;
  }
  const bool passesBack = std::ranges::any_of(arguments, IsPassedBack);
  out << (passesBack ? "  Json reply = Reply(" : "  return Reply(") << Expression(call) << ");\n";
  for (const Argument& argument : arguments) {
    if (IsPassedBack(argument)) out << "  reply[\"" << argument.name << "\"] = WriteJson(" << argument.name << ");\n";
  }
  out << (passesBack ? "  return reply;\n}\n\n" : "}\n\n");
}

void WriteArguments(std::ostream& out, const Call& call) {
  const std::vector<Argument> arguments = ArgumentsOf(call);
  if (arguments.empty()) return;
  out << "constexpr Argument kArgumentsOf_" << FunctionName(call) << "[] = {\n";
  for (const Argument& argument : arguments) {
    out << "    {\"" << argument.name << "\", \"" << TypeWord(argument.type) << "\", "
        << (IsPassedBack(argument) ? "true" : "false") << ", " << StandardText(argument) << "},\n";
  }
  out << "};\n";
}

void WriteRow(std::ostream& out, const Call& call) {
  const std::string arguments = ArgumentsOf(call).empty() ? "{}" : "kArgumentsOf_" + FunctionName(call);
  const std::string result = TypeWord(GivesNewValue(call) ? FindType(call.owner.name) : call.operation.result);
  out << "    {\"" << JsonName(call) << "\", " << arguments << ", \"" << result << "\", "
      << (IsWriting(call.operation) ? "true" : "false") << ", " << FunctionName(call) << "},\n";
}

std::vector<const Operation*> ReadProperties(const Class& one) {
  std::vector<const Operation*> properties;
  for (const Operation& operation : one.operations) {
    if (operation.kind == Kind::Get) properties.push_back(&operation);
  }
  return properties;
}

/// A value as an object with its properties as members.
void WriteToJson(std::ostream& out, const Class& one) {
  out << "Json WriteJson(const " << one.name << "& value) {\n  Json json = Json::Object();\n";
  for (const Operation* property : ReadProperties(one)) {
    out << "  json[\"" << property->name << "\"] = WriteJson(value." << property->name << "());\n";
  }
  out << "  return json;\n}\n\n";
}

/// A value from an object; a member that can only be told is looked at all the same.
void WriteFromJson(std::ostream& out, const Class& one) {
  const std::vector<const Operation*> properties = ReadProperties(one);
  std::vector<std::string> names;
  for (const Operation* property : properties) names.push_back("\"" + property->name + "\"");
  out << "void ReadJson(const Json& json, " << one.name << "& value) {\n  RequireMembers(json, \"" << one.asArgument
      << "\", {" << Joined(names, ", ") << "});\n  value = " << one.name << "();\n";
  for (const Operation* property : properties) {
    const std::string& name = property->name;
    out << "  auto " << name << " = value." << name << "();\n  ReadMember(json, \"" << name << "\", " << name << ");\n";
    if (HasOtherHalf(one, *property)) out << "  value.Set" << name << "(" << name << ");\n";
  }
  out << "}\n\n";
}

/// What is called with JSON: all of the MembershipDatabase; of values what is no member of their JSON, or derived.
std::vector<Call> Calls(const std::vector<Class>& classes) {
  std::vector<Call> calls;
  for (const Class& one : classes) {
    const bool isOfAValue = &one != &classes.front();
    for (const Operation& operation : one.operations) {
      const bool isMember = operation.kind != Kind::Method && HasOtherHalf(one, operation);
      if (!isOfAValue || !isMember) calls.push_back({one, operation, isOfAValue});
    }
  }
  return calls;
}

}  // namespace

void WriteJsonRpc(std::ostream& out, const std::vector<Class>& classes) {
  const std::vector<Call> calls = Calls(classes);
  out << kDoNotEdit << "#include \"host/rpc/Operations.h\"\n\nnamespace tavi::host {\n\n";
  for (const Class& one : classes) {
    if (&one != &classes.front()) WriteToJson(out, one);
    if (!one.asArgument.empty()) WriteFromJson(out, one);
  }
  out << "namespace {\n\n";
  for (const Call& call : calls) WriteFunction(out, call);
  for (const Call& call : calls) WriteArguments(out, call);
  out << "\nconstexpr Operation kOperations[] = {\n";
  for (const Call& call : calls) WriteRow(out, call);
  out << "};\n\n}  // namespace\n\nstd::span<const Operation> AllOperations() {\n  return kOperations;\n}\n\n"
      << "}  // namespace tavi::host\n";
}

}  // namespace tavi::operations
