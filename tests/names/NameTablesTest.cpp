#include "names/NameTables.h"

#include <gtest/gtest.h>

#include <map>

#include "names/NameLetters.h"
#include "names/SurnamePrefix.h"

namespace tavi {
namespace {

/// The forms of a table that stand in it twice or have no letters.
class Faults {
 public:
  explicit Faults(std::string (*letters)(std::string_view)) : letters_(letters) {}

  void Read(std::span<const std::string_view> rows) {
    for (const std::string_view row : rows) {
      std::string form;
      for (const char character : std::string(row) + " ") {
        if (character != ' ' && character != '/') {
          form.push_back(character);
          continue;
        }
        Check(form);
        form.clear();
      }
    }
  }

  [[nodiscard]] const std::string& Text() const { return faults_; }
  [[nodiscard]] std::size_t Count() const { return places_.size(); }

 private:
  void Check(const std::string& form) {
    const std::string letters = letters_(form);
    if (letters.empty()) faults_ += "a form without letters after " + last_ + "\n";
    if (!places_.emplace(letters, form).second) faults_ += form + " and " + places_[letters] + "\n";
    last_ = form;
  }

  std::string (*letters_)(std::string_view);
  std::map<std::string, std::string> places_;
  std::string last_;
  std::string faults_;
};

TEST(NameTables, ListEachFirstNameOnce) {
  Faults faults(PlainLetters);
  faults.Read(FirstNames());
  EXPECT_EQ(faults.Text(), "");
  EXPECT_GT(faults.Count(), 4000U);
}

TEST(NameTables, ListEachSurnameOnce) {
  Faults faults([](std::string_view name) { return WithPlainPrefix(PlainLetters(name)); });
  for (const auto rows : {CommonSurnames(), SurnamesAToG(), SurnamesHToO(), SurnamesPToZ()}) faults.Read(rows);
  EXPECT_EQ(faults.Text(), "");
  EXPECT_GT(faults.Count(), 15000U);
}

}  // namespace
}  // namespace tavi
