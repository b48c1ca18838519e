// Makes a club file for the tests of the automation server: "club_maker FOLDER" writes FOLDER\ClubMembers.mdb,
// complete, with three rows in the governing body's list and no members. The first name of the third one has letters of
// several alphabets.
#include <exception>
#include <iostream>

#include "composition/Composition.h"
#include "store/BaseFile.h"
#include "store/cDatabase.h"

namespace {

class NoMessages : public tavi::MessageBoxes {
 public:
  void Show(tavi::MessageBoxIcon /*icon*/, const std::string& title, const std::string& text) const override {
    std::cerr << title << ": " << text << "\n";
  }
};

void MakeClub(const std::string& folder) {
  const auto platform = tavi::MakePlatform({.messageBoxes = std::make_shared<NoMessages>()});
  const std::string file = folder + "\\ClubMembers.mdb";
  tavi::CreateEmptyDatabase(file, platform->clock->Now());
  const auto connection = platform->databaseProvider->Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file);
  tavi::CreateBaseFile(*connection);
  connection->Close();
  tavi::cDatabase store(platform);
  store.SetDatabaseFolder(folder);
  const std::string insert = "Insert into EBUMembershipList (EBUNumber, FirstName, LastName, CountyCode) Values ";
  store.Execute(insert + "(77, 'John', 'Smith', 'KEN')");
  store.Execute(insert + "(78, 'Jane', 'Smith', 'SUR')");
  store.Execute(insert + "(79, 'Łukasz 中文 Маша á 𝄞', 'Alphabets', 'KEN')");
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "club_maker FOLDER\n";
    return 2;
  }
  try {
    MakeClub(arguments[1]);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}
