#pragma once

#include <istream>
#include <string>
#include <vector>

/// The table of operations (operations.txt, whose beginning says how it is written) as its makers read it. This is a
/// part of the program make_operations, which runs when the system is built.
namespace tavi::operations {

/// What a word for a type means in the languages that operations are called from.
struct Type {
  const char* word;        ///< in the table
  const char* cpp;         ///< a value in C++
  const char* automation;  ///< an argument in the interface description; its C++ is the same but for arrays
  const char* given;  ///< what makes a value in C++ of an argument that automation gives; empty: nothing need be done
};

/// The type that a word of the table means; null for others. Arguments that may be none are of a type of their own.
const Type* FindType(const std::string& word);

enum class Direction { In, Out, InOut };

struct Argument {
  std::string name;
  const Type* type = nullptr;
  Direction direction = Direction::In;
  std::string standard;  ///< the table's word for what it is when it is left out; empty: it is needed
};

enum class Kind { Method, Get, Let, Set };

/// An operation: a method, or one half of a property.
struct Operation {
  int number = 0;
  Kind kind = Kind::Method;
  bool isVariable = false;  ///< a property that is a plain variable in C++
  std::string name;
  std::vector<Argument> arguments;
  const Type* result = nullptr;  ///< null: nothing is returned
  std::string help;
  std::string errors;
  std::vector<std::string> tests;
  bool raisesDatabaseErrors = false;
};

struct Class {
  std::string name;
  std::string asArgument;  ///< what an object is called as an argument of JSON-RPC
  std::vector<Operation> operations;
};

/// Reads a table. Raises std::runtime_error, whose text begins with the number of the line, for what is not as the
/// table says of itself: unknown words, numbers or names that are there twice, missing help, errors or tests.
std::vector<Class> ReadTable(std::istream& in);

/// Writing a property, by value or by reference.
inline bool IsWriting(const Operation& operation) {
  return operation.kind == Kind::Let || operation.kind == Kind::Set;
}

/// Whether the class has the other half of a property that is read or written.
bool HasOtherHalf(const Class& all, const Operation& half);

/// The name under which C++ calls an operation.
std::string CppName(const Operation& operation);

}  // namespace tavi::operations
