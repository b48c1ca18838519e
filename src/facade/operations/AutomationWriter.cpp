// What automation needs of the table, for two readers: the members of an interface in the interface description, from
// which the type library is made, and the C++ class that implements them. The compiler holds the two together, for the
// class overrides what the description's header declares.
#include <algorithm>
#include <iomanip>

#include "facade/operations/Writers.h"

namespace tavi::operations {
namespace {

/// The type of an argument that automation gives, or of the variable that it is passed back in.
std::string AutomationType(const Argument& argument) {
  const std::string type = argument.type->automation;
  return argument.direction == Direction::In ? type : type + "*";
}

/// The same in C++ for the variable that a result goes to: arrays have a type of their own in descriptions alone.
std::string ResultPointer(const Type& type) {
  const std::string name = type.automation;
  return name.starts_with("SAFEARRAY(") ? "SAFEARRAY**" : name + "*";
}

// --- The interface description ---------------------------------------------------------------------------------------

std::string Attributes(const Argument& argument) {
  if (argument.direction != Direction::In) return "[in, out]";
  if (argument.standard.empty()) return "[in]";
  if (argument.standard == "none") return "[in, optional]";
  if (argument.standard == "empty") return "[in, defaultvalue(\"\")]";
  return "[in, defaultvalue(" + (argument.standard == "False" ? "0" : argument.standard) + ")]";
}

/// The compiler of descriptions writes no default of a double; the macro marks the place for a script of the build.
std::string DescribedArgument(const Argument& argument) {
  const bool hasDoubleDefault = argument.type == FindType("double") && !argument.standard.empty();
  if (hasDoubleDefault) return "DOUBLE_WITH_DEFAULT(\"" + argument.standard + "\", " + argument.name + ")";
  return Attributes(argument) + " " + AutomationType(argument) + " " + argument.name;
}

/// The type library tells apart whether a property takes a value or an object.
std::string KindAttribute(Kind kind) {
  if (kind == Kind::Method) return "";
  if (kind == Kind::Get) return "propget, ";
  return kind == Kind::Let ? "propput, " : "propputref, ";
}

void WriteDescription(std::ostream& out, const Operation& operation) {
  std::vector<std::string> arguments;
  for (const Argument& argument : operation.arguments) arguments.push_back(DescribedArgument(argument));
  if (operation.result != nullptr) {
    arguments.push_back("[out, retval] " + std::string(operation.result->automation) + "* result");
  }
  out << "\n    [" << KindAttribute(operation.kind) << "id(" << operation.number << "),\n     helpstring("
      << std::quoted(operation.help) << ")]\n    HRESULT " << operation.name << "(" << Joined(arguments, ", ")
      << ");\n";
}

// --- The object ------------------------------------------------------------------------------------------------------

std::string FunctionName(const Operation& operation) {
  if (operation.kind == Kind::Method) return operation.name;
  if (operation.kind == Kind::Get) return "get_" + operation.name;
  return (operation.kind == Kind::Let ? "put_" : "putref_") + operation.name;
}

/// What makes a value in C++ of one that automation gives.
/// A date is a structure of one number and is made with braces; conversions of other types are functions.
std::string Converted(const Type& type, const std::string& value) {
  const std::string conversion = type.given;
  if (conversion.empty()) return value;
  return type.word == std::string("date") ? conversion + "{" + value + "}" : conversion + "(" + value + ")";
}

std::string CalledWith(const Argument& argument) {
  return argument.direction == Direction::In ? Converted(*argument.type, argument.name) : "Out(" + argument.name + ")";
}

/// The call of the class as a statement.
std::string Statement(const Operation& operation) {
  std::vector<std::string> values;
  for (const Argument& argument : operation.arguments) values.push_back(CalledWith(argument));
  const std::string call = "Called()." + CppName(operation);
  const std::string arguments = Joined(values, ", ");
  if (operation.isVariable && IsWriting(operation)) return call + " = " + arguments + ";";
  const std::string expression = operation.isVariable ? call : call + "(" + arguments + ")";
  return operation.result == nullptr ? expression + ";" : "Return(result, " + expression + ");";
}

/// Answer is told of all variables that are passed back: it refuses a call without one of them, and clears the result's
/// first.
void WriteFunction(std::ostream& out, const Operation& operation) {
  std::vector<std::string> parameters;
  std::vector<std::string> passedBack;
  for (const Argument& argument : operation.arguments) {
    parameters.push_back(AutomationType(argument) + " " + argument.name);
    if (argument.direction != Direction::In) passedBack.push_back(argument.name);
  }
  if (operation.result != nullptr) {
    parameters.push_back(ResultPointer(*operation.result) + " result");
    passedBack.emplace_back("result");
  }
  out << "  STDMETHODIMP " << FunctionName(operation) << "(" << Joined(parameters, ", ") << ") override {\n"
      << "    return Answer([&] { " << Statement(operation) << " }" << (passedBack.empty() ? "" : ", ")
      << Joined(passedBack, ", ") << ");\n  }\n";
}

/// Of a class whose objects are arguments: a copy of what another's object says of itself.
void WriteCopy(std::ostream& out, const Class& one) {
  const std::string interface = "_" + one.name;
  out << "\n/// Sets all properties to what an object of anybody's says. Raises its error when it cannot say.\n"
      << "inline void Copy(" << interface << "& from, " << one.name << "& to) {\n";
  for (const Operation& property : one.operations) {
    // Properties that can only be read follow from the others.
    if (property.kind != Kind::Get || !HasOtherHalf(one, property)) continue;
    const std::string asked = "Ask(from, &" + interface + "::get_" + property.name + ")";
    out << "  to.Set" << property.name << "(" << Converted(*property.result, asked) << ");\n";
  }
  out << "}\n";
}

}  // namespace

void WriteInterface(std::ostream& out, const Class& one) {
  out << kDoNotEdit;
  for (const Operation& operation : one.operations) WriteDescription(out, operation);
}

void WriteObject(std::ostream& out, const Class& one) {
  out << kDoNotEdit << "#pragma once\n\n#include <TaviMembership.h>\n\n#include \"automation/AutomationObject.h\"\n"
      << "#include \"automation/Conversion.h\"\n\nnamespace tavi::automation {\n\n/// The members of _" << one.name
      << ", each a call of the tavi::" << one.name << " that an object has.\nclass " << one.name
      << "Members : public AutomationObject<_" << one.name << ", ::" << one.name << "> {\n public:\n";
  for (const Operation& operation : one.operations) WriteFunction(out, operation);
  out << "\n protected:\n  virtual tavi::" << one.name << "& Called() = 0;\n};\n";
  if (!one.asArgument.empty()) WriteCopy(out, one);
  out << "\n}  // namespace tavi::automation\n";
}

}  // namespace tavi::operations
