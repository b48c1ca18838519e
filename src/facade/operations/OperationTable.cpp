// The table is read line by line into paragraphs, and a paragraph into an operation or the head of a class. Everything
// that is wrong is refused with its line, because what is made of the table is code: a slip that went through would
// come out as a compiler's message about a file that nobody wrote.
//
// A property that is both read and written, in one paragraph, becomes two operations of one number, as the type library
// has them.
#include "facade/operations/OperationTable.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace tavi::operations {
namespace {

/// The columns are those of Type: the word, C++, automation, and what converts an argument. A conversion of null means
/// that no argument has the type: it is for results alone.
constexpr Type kTypes[] = {
    {"boolean", "bool", "VARIANT_BOOL", "ToBool"},
    {"16-bit", "std::int16_t", "short", ""},
    {"32-bit", "std::int32_t", "long", ""},
    {"double", "double", "double", ""},
    {"double or none", "std::optional<double>", "VARIANT", "OptionalDouble"},
    {"date", "Date", "DATE", "Date"},
    {"text", "std::string", "BSTR", "ToText"},
    {"variant text", "std::string", "VARIANT", nullptr},
    {"array of 32-bit", "MatchList", "SAFEARRAY(long)", nullptr},
    {"collection of text", "std::vector<std::string>", "_Collection*", nullptr},
    {"collection of EBUMembershipDetails", "std::vector<EBUMembershipDetails>", "_Collection*", nullptr},
    {"HandiCalcSettings", "HandiCalcSettings", "_HandiCalcSettings*", "SettingsOf"},
    {"Handicaps", "Handicaps", "_Handicaps*", nullptr},
};

std::string Trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// What stands before a separator, trimmed; the rest is left. All of the text where there is no separator.
/// The one tool for taking a head apart from left to right: "5 method Name(a: text): double" gives up "5", "method",
/// "Name", the arguments, and leaves the result.
std::string CutBefore(std::string& text, const std::string& separator) {
  const std::size_t place = text.find(separator);
  std::string before = Trimmed(text.substr(0, place));
  text = place == std::string::npos ? "" : Trimmed(text.substr(place + separator.size()));
  return before;
}

/// Letters and figures only, as all the languages that operations are called from take them.
bool IsName(const std::string& text) {
  const auto isPart = [](unsigned char character) { return std::isalnum(character) != 0; };
  return !text.empty() && std::isalpha(static_cast<unsigned char>(text.front())) != 0 &&
         std::all_of(text.begin(), text.end(), isPart);
}

/// Takes the lines of a table one after the other.
class TableReader {
 public:
  // A blank line ends a paragraph. Fields begin with two blanks, lines that go on with four or more, so that neither
  // can be taken for the other.
  void Read(const std::string& line) {
    ++lineNumber_;
    if (line.starts_with("#")) return;
    if (Trimmed(line).empty()) {
      EndParagraph();
    } else if (paragraph_.empty()) {
      firstLine_ = lineNumber_;
      paragraph_.push_back(line);
    } else if (StartsField(line)) {
      paragraph_.push_back(Trimmed(line));
    } else if (line.starts_with("    ")) {
      paragraph_.back() += " " + Trimmed(line);
    } else {
      Refuse(lineNumber_, "\"" + line + "\" is neither help, errors nor tests, nor goes on with the line before");
    }
  }

  // The last paragraph need not be followed by a blank line.
  std::vector<Class> End() {
    EndParagraph();
    if (classes_.empty()) Refuse(lineNumber_, "there are no operations");
    return std::move(classes_);
  }

 private:
  [[noreturn]] static void Refuse(std::size_t line, const std::string& why) {
    throw std::runtime_error(std::to_string(line) + ": " + why);
  }
  [[noreturn]] void Refuse(const std::string& why) const { Refuse(firstLine_, why); }

  static bool StartsField(const std::string& line) {
    return line.starts_with("  help ") || line.starts_with("  errors ") || line.starts_with("  tests ");
  }

  void EndParagraph() {
    if (paragraph_.empty()) return;
    if (paragraph_.front().starts_with("class ")) {
      TakeClass(paragraph_.front().substr(6));
    } else {
      TakeOperation();
    }
    paragraph_.clear();
  }

  void TakeClass(std::string head) {
    std::string name = CutBefore(head, " as ");
    if (!IsName(name) || paragraph_.size() > 1) Refuse("a class is a name, and \"as\" with another one");
    classes_.push_back({std::move(name), std::move(head), {}});
  }

  // The halves of a property share help, errors and tests when they stand in one paragraph.
  void TakeOperation() {
    if (classes_.empty()) Refuse("an operation stands before the first class");
    Operation operation;
    const std::string kind = TakeHead(operation);
    TakeFields(operation);
    // A property takes no arguments: its name and a type say all of both halves.
    if (kind != "property" && kind != "variable") return Add(std::move(operation));
    if (operation.result == nullptr || !operation.arguments.empty()) Refuse("a " + kind + " is a name and a type");
    // The value that is written has the type that is read; it is called "value" everywhere.
    Operation writing = operation;
    writing.kind = Kind::Let;
    writing.arguments = {{"value", std::exchange(writing.result, nullptr), Direction::In, ""}};
    Add(std::move(operation));
    Add(std::move(writing));
  }

  /// Returns the word for the kind.
  std::string TakeHead(Operation& operation) {
    std::string rest = paragraph_.front();
    const std::string number = CutBefore(rest, " ");
    const bool isNumber = !number.empty() && number.find_first_not_of("0123456789") == std::string::npos;
    if (!isNumber) Refuse("an operation begins with its number");
    operation.number = std::stoi(number);
    std::string kind = CutBefore(rest, " ");
    operation.kind = KindOf(kind);
    operation.isVariable = kind == "variable";
    const std::size_t bracket = rest.find('(');
    if (bracket == std::string::npos) {
      operation.name = CutBefore(rest, ":");
    } else {
      operation.name = CutBefore(rest, "(");
      std::string arguments = CutBefore(rest, ")");
      if (arguments.empty()) Refuse("there is nothing in the brackets");
      // Nothing that stands for a left-out argument has a comma in it.
      while (!arguments.empty()) operation.arguments.push_back(ArgumentOf(CutBefore(arguments, ",")));
      if (rest.starts_with(":")) rest = Trimmed(rest.substr(1));
    }
    if (!IsName(operation.name)) Refuse("\"" + operation.name + "\" is no name of an operation");
    if (!rest.empty()) operation.result = TypeOf(rest);
    return kind;
  }

  [[nodiscard]] Kind KindOf(const std::string& word) const {
    if (word == "method") return Kind::Method;
    if (word == "get" || word == "property" || word == "variable") return Kind::Get;
    if (word == "let") return Kind::Let;
    if (word == "set") return Kind::Set;
    Refuse("\"" + word + "\" is no kind of operation");
  }

  // "out Name: text = empty": direction, name, type, and what stands for it when it is left out.
  [[nodiscard]] Argument ArgumentOf(std::string text) const {
    Argument argument;
    std::string name = CutBefore(text, ":");
    if (name.starts_with("out ")) argument.direction = Direction::Out;
    if (name.starts_with("in-out ")) argument.direction = Direction::InOut;
    if (argument.direction != Direction::In) CutBefore(name, " ");
    if (!IsName(name)) Refuse("\"" + name + "\" is no name of an argument");
    argument.name = name;
    const std::string type = CutBefore(text, "=");
    argument.standard = text;
    argument.type = TypeOf(argument.standard == "none" ? type + " or none" : type);
    // Results alone: nobody passes such a value to an operation.
    if (argument.type->given == nullptr) Refuse("no argument is of the type " + type);
    return argument;
  }

  // Types are looked up by their words here and compared by their addresses afterwards.
  [[nodiscard]] const Type* TypeOf(const std::string& word) const {
    const Type* type = FindType(word);
    if (type == nullptr) Refuse("\"" + word + "\" is no type");
    return type;
  }

  void TakeFields(Operation& operation) const {
    for (std::size_t i = 1; i < paragraph_.size(); ++i) {
      std::string text = paragraph_[i];
      const std::string label = CutBefore(text, " ");
      if (label == "help") operation.help = text;
      if (label == "errors") operation.errors = text;
      // Tests are names between blanks; the other fields are sentences.
      std::istringstream words(label == "tests" ? text : "");
      for (std::string word; words >> word;) operation.tests.push_back(word);
    }
    if (operation.errors.empty()) Refuse(operation.name + " does not say what it raises (none is an answer)");
  }

  // What is said once for both halves of a property is taken over from the first one. Operations that can meet an error
  // of the database are all proved by the test that lets each call of the provider fail once, so nobody need name it.
  void Add(Operation operation) {
    std::vector<Operation>& all = classes_.back().operations;
    for (const Operation& other : all) {
      // A number is what compiled programs call by, so it must never come to mean something else.
      if ((other.number == operation.number) != (other.name == operation.name)) {
        Refuse(operation.name + " " + std::to_string(operation.number) + " and " + other.name + " " +
               std::to_string(other.number) + ": the halves of a property alone share name and number");
      }
      const bool isRepeated = other.kind == operation.kind || other.kind == Kind::Method;
      if (other.name == operation.name && isRepeated) Refuse(operation.name + " is there already");
      if (other.name == operation.name && operation.help.empty()) operation.help = other.help;
      if (operation.errors == "as `" + other.name + "`") operation.raisesDatabaseErrors |= other.raisesDatabaseErrors;
    }
    if (operation.help.empty()) Refuse(operation.name + " has no help");
    if (IsWriting(operation) && operation.arguments.empty()) Refuse(operation.name + " is given no value");
    operation.raisesDatabaseErrors |= Names(operation.errors, 'D');
    if (operation.raisesDatabaseErrors) operation.tests.emplace_back("ProviderFaultTest.EachCallMayFailOnce");
    if (operation.tests.empty()) Refuse(operation.name + " is proved by no test");
    all.push_back(std::move(operation));
  }

  /// Whether a letter that stands for errors is among them.
  // "D" alone or before a comma, but neither in a word nor before a figure.
  static bool Names(const std::string& errors, char letter) {
    const std::string padded = " " + errors + " ";
    for (std::size_t i = 1; i + 1 < padded.size(); ++i) {
      const bool isAlone = padded[i - 1] == ' ' && std::isalnum(static_cast<unsigned char>(padded[i + 1])) == 0;
      if (padded[i] == letter && isAlone) return true;
    }
    return false;
  }

  std::vector<Class> classes_;
  std::vector<std::string> paragraph_;  // its head, then its fields, each in one line
  std::size_t lineNumber_ = 0;
  std::size_t firstLine_ = 0;  // of the paragraph
};

}  // namespace

const Type* FindType(const std::string& word) {
  const auto* const found = std::ranges::find_if(kTypes, [&](const Type& type) { return word == type.word; });
  return found == std::end(kTypes) ? nullptr : found;
}

std::vector<Class> ReadTable(std::istream& in) {
  TableReader reader;
  for (std::string line; std::getline(in, line);) reader.Read(line);
  return reader.End();
}

bool HasOtherHalf(const Class& all, const Operation& half) {
  return std::ranges::any_of(all.operations, [&](const Operation& other) {
    return other.number == half.number && IsWriting(other) != IsWriting(half);
  });
}

std::string CppName(const Operation& operation) {
  return IsWriting(operation) && !operation.isVariable ? "Set" + operation.name : operation.name;
}

}  // namespace tavi::operations
