// Makes what stands on the table of operations, when the system is built:
//   make_operations WHAT [CLASS] TABLE RESULT
// reads TABLE (operations.txt) and writes the file RESULT. What is wrong with the table is said with its line, and
// nothing is written. WHAT is one of
//   page         docs/operations.md: RESULT is there already; its beginning, up to the first class, stays
//   agreement    C++ that compiles only if the classes agree with the table
//   json-rpc     C++ with the operations of the JSON-RPC server
//   interface    of CLASS: the members of its interface, for the type library's description
//   object       of CLASS: C++ with the base of its objects for automation

#include <algorithm>
#include <exception>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "facade/operations/Writers.h"

namespace tavi::operations {
namespace {

/// Read before the page is opened for writing, which empties it.
std::string BeginningOfPage(const std::string& page) {
  std::ifstream in(page);
  std::string text;
  for (std::string line; std::getline(in, line) && !line.starts_with("## ");) text += line + "\n";
  if (text.empty()) throw std::runtime_error(" is read, but " + page + " has no beginning");
  return text;
}

const Class& Named(const std::string& name, const std::vector<Class>& classes) {
  const auto found = std::ranges::find(classes, name, &Class::name);
  if (found == classes.end()) throw std::runtime_error(" has no class \"" + name + "\"");
  return *found;
}

/// What is to be made: the words of the command line.
struct Order {
  std::string what;
  std::string className;
  std::string table;
  std::string result;
};

void Write(std::ostream& out, const Order& order, const std::vector<Class>& classes) {
  if (order.what == "page") return WritePage(out, classes, BeginningOfPage(order.result));
  if (order.what == "agreement") return WriteAgreement(out, classes);
  if (order.what == "json-rpc") return WriteJsonRpc(out, classes);
  if (order.what == "interface") return WriteInterface(out, Named(order.className, classes));
  if (order.what == "object") return WriteObject(out, Named(order.className, classes));
  throw std::runtime_error(" is read, but nobody knows how to make \"" + order.what + "\"");
}

void Make(const Order& order) {
  std::ifstream in(order.table);
  if (!in) throw std::runtime_error(" cannot be read");
  // Everything is written in memory first, so that a table with a slip leaves the old file as it is.
  std::ostringstream text;
  Write(text, order, ReadTable(in));
  std::ofstream out(order.result);
  out << text.str();
  out.close();
  if (!out) throw std::runtime_error(" is read, but " + order.result + " cannot be written");
}

}  // namespace
}  // namespace tavi::operations

int main(int count, char** arguments) {
  std::vector<std::string> words(arguments + 1, arguments + count);
  // Without a class.
  if (words.size() == 3) words.insert(words.begin() + 1, "");
  if (words.size() != 4) {
    std::cerr << "usage: make_operations page|agreement|json-rpc TABLE RESULT\n"
                 "       make_operations interface|object CLASS TABLE RESULT\n";
    return 2;
  }
  try {
    tavi::operations::Make({words[0], words[1], words[2], words[3]});
  } catch (const std::exception& error) {
    std::cerr << words[2] << ":" << error.what() << "\n";
    return 1;
  }
  return 0;
}
