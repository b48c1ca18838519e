// Makes the table of the sort order of the text that it is kept in, when the system is built:
//   make_collation_table TEXT CODE
// writes the source file CODE (see CollationTable.h) from the file TEXT, whose beginning says how it is written. What
// is wrong with the text is said with its line, and nothing is written.
#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

namespace {

constexpr std::size_t kCodeUnits = 65536;
constexpr std::size_t kBlock = 256;
constexpr unsigned kDefaultWeight = 2;
constexpr unsigned kFirstLowByte = 2;  // of a code of two bytes
constexpr unsigned kByteMask = 0xFF;

/// As CollationTrait; the kind by the letter that stands for it in the code. What a unit has that the text says nothing
/// of is the most common case: one element of default weight.
struct Trait {
  char kind = 'E';
  unsigned elements = 1;
  std::array<unsigned, 2> weights = {kDefaultWeight, kDefaultWeight};
  std::array<unsigned, 2> furtherBytes = {};
  unsigned value = 0;
  unsigned kanaFlag = 0;

  auto operator<=>(const Trait&) const = default;
};

/// What a code unit does: its first two primary bytes, and the rest.
struct Unit {
  unsigned code = 0;
  Trait trait;
};

/// All faults of the text end here; ReadUnits puts file and line before the words.
[[noreturn]] void Refuse(const std::string& why) {
  throw std::runtime_error(why);
}

/// The whole word has to be the number: "4A," is a slip that would go unnoticed otherwise.
unsigned Number(const std::string& text, int base, unsigned most) {
  std::size_t end = 0;
  unsigned long number = 0;
  try {
    number = std::stoul(text, &end, base);
  } catch (const std::exception&) {
    end = 0;
  }
  if (end == 0 || end != text.size() || number > most) Refuse("'" + text + "' is no number that can stand here");
  return static_cast<unsigned>(number);
}

/// The code `step` behind another: two bytes count without the last bytes 00 and 01, which mean the ends of a key's
/// parts (2BFF is followed by 2C02).
unsigned Next(unsigned code, unsigned step) {
  const unsigned next = code + step;
  if (code <= kByteMask || (next >> 8U) == (code >> 8U)) return next;
  return next + kFirstLowByte;
}

/// The words of one line behind its code units.
class LineReader {
 public:
  explicit LineReader(std::istringstream& words) : words_(words) { Take(); }

  /// What the first code unit of the line does.
  // The words come in a fixed order, so that each fact has one way to be written; a word that is left over is refused.
  Unit ReadUnit() {
    const std::string kind = word_;
    Take();
    Unit unit;
    if (kind == "element") {
      ReadElement(unit);
    } else if (kind == "special" || kind == "combining" || kind == "ignored") {
      unit.trait.elements = 0;
      unit.trait.kind = kind == "special" ? 'S' : kind == "combining" ? 'C' : 'I';
      if (kind != "ignored") unit.trait.value = Number(Taken(), 16, kByteMask);
      if (kind != "ignored") ReadStep();
    } else {
      Refuse("'" + kind + "' is none of element, special, combining, ignored");
    }
    if (!word_.empty()) Refuse("'" + word_ + "' has no meaning here");
    return unit;
  }
  [[nodiscard]] unsigned Step() const { return step_; }

 private:
  void ReadElement(Unit& unit) {
    ReadCode(Taken(), unit);
    ReadStep();
    Trait& trait = unit.trait;
    // Next counts in the first two bytes only.
    if (step_ != 0 && trait.furtherBytes[0] != 0) Refuse("a code of more than two bytes takes no steps");
    if (TakeWord("elements")) trait.elements = Number(Taken(), 10, 3);
    if (TakeWord("weights")) {
      trait.weights[0] = Number(Taken(), 16, kByteMask);
      if (trait.elements > 1) trait.weights[1] = Number(Taken(), 16, kByteMask);
    }
    if (TakeWord("kana")) trait.kanaFlag = Number(Taken(), 10, 3);
  }

  // The first two bytes are the number that the table holds in line, the others stand in the trait: codes that long are
  // few, those of letters that stand for several.
  static void ReadCode(const std::string& text, Unit& unit) {
    if (text == "-") return;
    constexpr std::size_t kDigitsOfByte = 2;
    constexpr std::size_t kLongest = 4 * kDigitsOfByte;
    if (text.size() % kDigitsOfByte != 0 || text.size() > kLongest) Refuse("'" + text + "' is no code of 1 to 4 bytes");
    const std::size_t first = std::min(text.size(), 2 * kDigitsOfByte);
    unit.code = Number(text.substr(0, first), 16, kCodeUnits - 1);
    for (std::size_t place = first; place < text.size(); place += kDigitsOfByte)
      unit.trait.furtherBytes[place / kDigitsOfByte - 2] = Number(text.substr(place, kDigitsOfByte), 16, kByteMask);
  }

  void ReadStep() {
    if (word_.starts_with('+')) step_ = Number(Taken().substr(1), 10, kByteMask);
  }
  bool TakeWord(const std::string& word) {
    if (word_ != word) return false;
    Take();
    return true;
  }
  /// The current word; the next one takes its place.
  std::string Taken() {
    if (word_.empty()) Refuse("something is missing at its end");
    std::string word = word_;
    Take();
    return word;
  }
  void Take() {
    word_.clear();
    words_ >> word_;
  }

  std::istringstream& words_;
  std::string word_;
  unsigned step_ = 0;
};

void ReadLine(const std::string& line, std::vector<Unit>& units) {
  std::istringstream words(line);
  std::string range;
  words >> range;
  const std::size_t dash = range.find('-');
  // Each line begins where the one before it ended: a unit that is forgotten or given twice shows at once.
  const unsigned first = Number(range.substr(0, dash), 16, kCodeUnits - 1);
  const unsigned last = dash == std::string::npos ? first : Number(range.substr(dash + 1), 16, kCodeUnits - 1);
  if (first != units.size() || last < first) Refuse("'" + range + "' does not follow what stands before it");
  LineReader reader(words);
  Unit unit = reader.ReadUnit();
  for (unsigned place = first; place <= last; ++place) {
    units.push_back(unit);
    // Special and combining characters count in their value, elements in their code.
    unsigned& counted = unit.trait.kind == 'E' ? unit.code : unit.trait.value;
    counted = unit.trait.kind == 'E' ? Next(counted, reader.Step()) : counted + reader.Step();
  }
}

std::vector<Unit> ReadUnits(const std::string& path) {
  std::ifstream text(path);
  std::vector<Unit> units;
  std::string line;
  for (std::size_t number = 1; std::getline(text, line); ++number) {
    if (line.empty() || line.starts_with('#')) continue;
    try {
      ReadLine(line, units);
    } catch (const std::exception& error) {
      Refuse(path + ":" + std::to_string(number) + ": " + error.what());
    }
  }
  if (units.size() != kCodeUnits) Refuse(path + ": it ends before the last code unit, FFFF");
  return units;
}

/// A list in blocks of equal length, equal ones held once. Many blocks of 256 units are alike, so that the table takes
/// a fraction of the memory, for one more look-up.
struct Blocks {
  std::vector<std::size_t> numbers;  ///< of the block at each place
  std::vector<std::size_t> values;   ///< of the different blocks
};

Blocks ShareBlocks(const std::vector<std::size_t>& values) {
  Blocks blocks;
  std::map<std::vector<std::size_t>, std::size_t> known;
  for (auto start = values.begin(); start != values.end(); start += kBlock) {
    const std::vector<std::size_t> block(start, start + kBlock);
    const auto [place, isNew] = known.emplace(block, known.size());
    if (isNew) blocks.values.insert(blocks.values.end(), block.begin(), block.end());
    blocks.numbers.push_back(place->second);
  }
  return blocks;
}

/// Numbers without blanks: the file is read by the compiler alone.
void WriteNumbers(std::ostream& code, const std::string& declaration, const std::vector<std::size_t>& numbers) {
  constexpr std::size_t kNumbersOfALine = 24;
  code << "\nconst " << declaration << "[" << numbers.size() << "] = {";
  for (std::size_t i = 0; i < numbers.size(); ++i) code << (i % kNumbersOfALine == 0 ? "\n" : "") << numbers[i] << ",";
  code << "\n};\n";
}

void WriteTraits(std::ostream& code, const std::vector<Trait>& traits) {
  code << "\nconst CollationTrait kTraits[" << traits.size() << "] = {\n";
  for (const Trait& trait : traits) {
    code << "{" << trait.kind << "," << trait.elements << ",{" << trait.weights[0] << "," << trait.weights[1] << "},{"
         << trait.furtherBytes[0] << "," << trait.furtherBytes[1] << "}," << trait.value << "," << trait.kanaFlag
         << "},\n";
  }
  code << "};\n";
}

void WriteTable(std::ostream& code, const std::vector<Unit>& units) {
  // The plain trait is the first one: CollationTable.h knows it by that.
  std::vector<Trait> traits = {Trait{}};
  // Units with the same trait share it: there are few different ones.
  std::map<Trait, std::size_t> numbers = {{Trait{}, 0}};
  std::vector<std::size_t> codes;
  std::vector<std::size_t> traitNumbers;
  for (const Unit& unit : units) {
    const auto [place, isNew] = numbers.emplace(unit.trait, traits.size());
    if (isNew) traits.push_back(unit.trait);
    codes.push_back(unit.code);
    traitNumbers.push_back(place->second);
  }
  const Blocks codeBlocks = ShareBlocks(codes);
  const Blocks traitBlocks = ShareBlocks(traitNumbers);
  code << "#include \"access/index/CollationTable.h\"\n\nnamespace tavi::access::collation_table {\n\nnamespace {\n";
  code << "constexpr CollationKind E = CollationKind::Element;\nconstexpr CollationKind S = CollationKind::Special;\n"
          "constexpr CollationKind C = CollationKind::Combining;\nconstexpr CollationKind I = CollationKind::Ignored;\n"
          "}  // namespace\n";
  WriteNumbers(code, "std::uint8_t kInlineBlockOf", codeBlocks.numbers);
  WriteNumbers(code, "std::uint8_t kTraitBlockOf", traitBlocks.numbers);
  WriteTraits(code, traits);
  WriteNumbers(code, "std::uint16_t kTraitBlocks", traitBlocks.values);
  WriteNumbers(code, "std::uint16_t kInlineBlocks", codeBlocks.values);
  code << "\n}  // namespace tavi::access::collation_table\n";
}

}  // namespace

int main(int count, char** arguments) {
  try {
    if (count != 3) Refuse("what is wanted is: make_collation_table TEXT CODE");
    // The whole code first, then the file: a fault in the text leaves no half-written one, which the build would take.
    std::ostringstream code;
    WriteTable(code, ReadUnits(arguments[1]));
    std::ofstream file(arguments[2]);
    file << code.str();
    file.close();
    if (!file) Refuse(std::string(arguments[2]) + " cannot be written");
    return 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}
