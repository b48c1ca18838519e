#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "facade/operations/OperationTable.h"

/// What is made of the table of operations. Each writer makes one file.
namespace tavi::operations {

/// The first line of what is made: nobody should change it there.
inline constexpr const char* kDoNotEdit = "// Made from src/facade/operations/operations.txt. Do not edit.\n";

/// The page of operations: its beginning, up to the first class, is `before`, which people write.
void WritePage(std::ostream& out, const std::vector<Class>& classes, const std::string& before);

/// C++ that compiles only if the classes have the operations of the table, with these arguments and results.
void WriteAgreement(std::ostream& out, const std::vector<Class>& classes);

/// The JSON-RPC server's operations (host/rpc/Operations.h).
void WriteJsonRpc(std::ostream& out, const std::vector<Class>& classes);

/// The members of a class's interface, for TaviMembership.idl.
void WriteInterface(std::ostream& out, const Class& one);

/// C++ with the base of a class's objects for automation (automation/Objects.h).
void WriteObject(std::ostream& out, const Class& one);

/// Words with something between them.
inline std::string Joined(const std::vector<std::string>& words, const std::string& between) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
  return text;
}

}  // namespace tavi::operations
