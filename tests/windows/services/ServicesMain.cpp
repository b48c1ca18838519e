// Shows under Windows how the automation server uses the system's services: "services_client FOLDER PART..." runs the
// parts in folders below an empty one. Changes settings of the machine: for a Wine home of its own only.
#include <exception>
#include <iostream>
#include <map>

#include "services/Services.h"

namespace {

using namespace tavi::service_test;

const std::map<std::string, void (*)(const std::string&)>& Parts() {
  static const std::map<std::string, void (*)(const std::string&)> parts{
      {"settings", CheckSettings}, {"settingsfiles", CheckSettingsFiles},
      {"folders", CheckFolders},   {"messageboxes", CheckMessageBoxes},
      {"namekeys", CheckNameKeys}, {"diagnostics", CheckDiagnostics},
      {"files", CheckFiles},       {"suddenend", CheckSuddenEnd}};
  return parts;
}

void Run(const std::string& name, void (*part)(const std::string&), const std::string& folder) {
  std::cout << name << std::endl;
  try {
    part(folder + "\\" + name);
  } catch (const std::exception& error) {
    Check(name + ": " + error.what(), false);
  }
}

}  // namespace

int main(int count, char** arguments) {
  const tavi::windows::ComApartment apartment;
  const std::vector<std::string> words(arguments + 1, arguments + count);
  if (words.size() < 2) {
    std::cout << "services_client FOLDER PART..." << std::endl;
    return 2;
  }
  const std::string& folder = words.front();
  if (words[1] == "addmembers") {
    AddMembersForEver(folder);
    return 1;
  }
  for (auto word = words.begin() + 1; word != words.end(); ++word) {
    const auto part = Parts().find(*word);
    Check("there is a part " + *word, part != Parts().end());
    if (part != Parts().end()) Run(*word, part->second, folder);
  }
  return tavi::automation_test::Summary();
}
