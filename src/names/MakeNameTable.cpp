// Makes the table of a dictionary of the text that people keep it in, when the system is built:
//   make_name_table FUNCTION TEXT CODE
// writes the source file CODE with FUNCTION (see NameTables.h) from the families in the file TEXT, whose beginning
// says how it is written. What is wrong with the text is said with its line, and nothing is written.

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <exception>
#include <fstream>
#include <iostream>
#include <limits>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "names/NameLetters.h"
#include "names/NameSounds.h"

namespace tavi {
namespace {

struct Family {
  std::vector<std::string> forms;  // in plain letters, the head first
  std::uint32_t place = std::numeric_limits<std::uint32_t>::max();
};

/// The families of a text in its order.
class FamilyReader {
 public:
  explicit FamilyReader(bool areSurnames) : areSurnames_(areSurnames) {}

  // A line such as "William Will Bill 2" is a head, its other forms, and perhaps the family's place among the most
  // common ones. What follows a # is a remark. Lines are sorted by their heads, so that people find the place of a new
  // one.
  void Read(const std::string& line) {
    ++lineNumber_;
    std::istringstream words(line.substr(0, line.find('#')));
    Family family;
    for (std::string word; words >> word;) {
      if (family.place != Family().place) Refuse(word + " stands after the family's place");
      // A word of figures is the place, everything else a form.
      if (!TakePlace(word, family)) family.forms.push_back(NewForm(word));
    }
    if (family.forms.empty() && family.place != Family().place) Refuse("a place without a name");
    if (family.forms.empty()) return;
    if (!families.empty() && families.back().forms.front() > family.forms.front()) {
      Refuse(family.forms.front() + " stands after " + families.back().forms.front() + ": the lines are sorted");
    }
    families.push_back(std::move(family));
  }

  std::vector<Family> families;

 private:
  [[noreturn]] void Refuse(const std::string& why) const {
    throw std::runtime_error(std::to_string(lineNumber_) + ": " + why);
  }

  static bool TakePlace(const std::string& word, Family& family) {
    const char* const end = word.data() + word.size();
    return std::from_chars(word.data(), end, family.place).ptr == end;
  }

  // A form belongs to one family only, or a name would have two keys.
  std::string NewForm(const std::string& word) {
    std::string letters = PlainLetters(word);
    if (areSurnames_) letters = WithPlainPrefix(std::move(letters));
    if (letters.empty()) Refuse(word + " has no letters");
    const auto [place, isNew] = lineOf_.emplace(letters, lineNumber_);
    if (!isNew) Refuse(word + " stands in line " + std::to_string(place->second) + " already");
    return letters;
  }

  bool areSurnames_;
  std::map<std::string, std::size_t> lineOf_;
  std::size_t lineNumber_ = 0;
};

/// Writes the parts of a NameTable.
class TableWriter {
 public:
  explicit TableWriter(std::ostream& out) : out_(out) {}

  /// The texts one after the other, and where each begins.
  // As one literal, a few texts a line, so that compilers and people can take the file. Where a text begins is written
  // beside it; where the last one ends, too.
  void Texts(const std::string& name, const std::vector<std::string>& texts) {
    constexpr std::size_t kPerLine = 12;
    std::vector<std::size_t> starts{0};
    out_ << "constexpr char " << name << "[] =";
    for (std::size_t i = 0; i < texts.size(); ++i) {
      out_ << (i % kPerLine == 0 ? (i == 0 ? "\n    \"" : "\"\n    \"") : "") << texts[i];
      starts.push_back(starts.back() + texts[i].size());
    }
    out_ << "\";\n\n";
    Numbers("std::uint32_t", name + "Starts", starts);
  }

  void Numbers(const std::string& type, const std::string& name, const std::vector<std::size_t>& numbers) {
    constexpr std::size_t kPerLine = 20;
    out_ << "constexpr " << type << " " << name << "[] = {";
    for (std::size_t i = 0; i < numbers.size(); ++i) out_ << (i % kPerLine == 0 ? "\n    " : " ") << numbers[i] << ",";
    out_ << "\n};\n\n";
  }

 private:
  std::ostream& out_;
};

/// The numbers of texts in the order of these; equal ones stay in theirs.
std::vector<std::size_t> Order(const std::vector<std::string>& texts) {
  std::vector<std::size_t> numbers(texts.size());
  for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = i;
  std::ranges::stable_sort(numbers, {}, [&](std::size_t number) { return texts[number]; });
  return numbers;
}

/// Forms are numbered by families, the most common family first, so that the smaller of two numbers is the more common
/// form; 16 bits are enough for a number and keep the tables small.
void WriteTable(std::ostream& out, const std::string& function, const std::vector<Family>& families) {
  std::vector<std::string> letters;
  std::vector<std::string> sounds;
  std::vector<std::string> skeletons;
  std::vector<std::size_t> heads;
  for (const Family& family : families) {
    heads.push_back(letters.size());
    for (const std::string& form : family.forms) {
      // Sounds and skeletons are computed here, when the system is built, and not in each program that starts.
      letters.push_back(form);
      sounds.push_back(SoundsOf(form));
      skeletons.push_back(SkeletonOf(sounds.back()));
    }
  }
  heads.push_back(letters.size());
  // Numbers of forms are written with 16 bits.
  if (letters.size() > std::numeric_limits<std::uint16_t>::max()) throw std::runtime_error("1: too many names");
  out << "// Made by MakeNameTable.cpp. Do not edit.\n#include \"names/NameTables.h\"\n\nnamespace tavi {\nnamespace "
         "{\n\n";
  TableWriter writer(out);
  writer.Texts("kLetters", letters);
  writer.Texts("kSounds", sounds);
  writer.Numbers("std::uint16_t", "kHeads", heads);
  writer.Numbers("std::uint16_t", "kByLetters", Order(letters));
  writer.Numbers("std::uint16_t", "kBySkeleton", Order(skeletons));
  out << "}  // namespace\n\nNameTable " << function
      << "() {\n  return {kLetters, kSounds, kLettersStarts, kSoundsStarts, kHeads, kByLetters, kBySkeleton};\n}\n\n"
      << "}  // namespace tavi\n";
}

void MakeTable(const std::string& function, const std::string& text, const std::string& code) {
  std::ifstream in(text);
  if (!in) throw std::runtime_error(" cannot be read");
  FamilyReader reader(function == "SurnameTable");
  for (std::string line; std::getline(in, line);) reader.Read(line);
  // An empty table would build, and nobody would be found by it.
  if (reader.families.empty()) throw std::runtime_error(" holds no families");
  // Families without a place come last, in the order of the text.
  std::ranges::stable_sort(reader.families, {}, &Family::place);
  std::ofstream out(code);
  WriteTable(out, function, reader.families);
  // A full disk shows here at the latest.
  out.close();
  if (!out) throw std::runtime_error(" is read, but " + code + " cannot be written");
}

}  // namespace
}  // namespace tavi

// Ends with 2 for a wrong call and 1 for a wrong text; the build stops at either.
int main(int count, char** arguments) {
  constexpr int kArguments = 4;
  if (count != kArguments) {
    std::cerr << "usage: make_name_table FirstNameTable|SurnameTable TEXT CODE\n";
    return 2;
  }
  const std::string text = arguments[2];
  try {
    tavi::MakeTable(arguments[1], text, arguments[3]);
  } catch (const std::exception& error) {
    // As compilers write it, so that editors find the line.
    std::cerr << text << ":" << error.what() << "\n";
    return 1;
  }
  return 0;
}
