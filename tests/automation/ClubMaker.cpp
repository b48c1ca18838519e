// Makes a club file for the tests of the automation server: "club_maker FOLDER" writes FOLDER\ClubMembers.mdb,
// complete, with three rows in the governing body's list and no members. The first name of the third one has letters of
// several alphabets. Two clubs of members with e-mail addresses lie in the folders "addresses" and "twice" below it; in
// the latter two members share an address.
#include <exception>
#include <filesystem>
#include <iostream>

#include "composition/Composition.h"
#include "platform/ConnectionTo.h"
#include "store/Layout.h"
#include "store/cDatabase.h"

namespace {

class NoMessages : public tavi::MessageBoxes {
 public:
  void Show(tavi::MessageBoxIcon /*icon*/, const std::string& title, const std::string& text) const override {
    std::cerr << title << ": " << text << "\n";
  }
};

void MakeFile(const tavi::Platform& platform, const std::string& folder) {
  const std::string file = folder + "\\ClubMembers.mdb";
  tavi::CreateEmptyDatabase(file, platform.clock->Now());
  const auto connection = platform.databaseProvider->Open(tavi::ConnectionTo(file));
  tavi::CreateBaseFile(*connection);
  connection->Close();
}

/// A club without members, but with rows in the governing body's list.
void MakeClub(const std::shared_ptr<const tavi::Platform>& platform, const std::string& folder) {
  MakeFile(*platform, folder);
  tavi::cDatabase store(platform, {});
  store.SetDatabaseFolder(folder);
  const std::string insert = "Insert into EBUMembershipList (EBUNumber, FirstName, LastName, CountyCode) Values ";
  store.Execute(insert + "(77, 'John', 'Smith', 'KEN')");
  store.Execute(insert + "(78, 'Jane', 'Smith', 'SUR')");
  store.Execute(insert + "(79, 'Łukasz 中文 Маша á 𝄞', 'Alphabets', 'KEN')");
}

/// A club of members with e-mail addresses, the last one with `lastAddress`.
void MakeClubOfAddresses(const std::shared_ptr<const tavi::Platform>& platform, const std::string& folder,
                         const std::string& lastAddress) {
  std::filesystem::create_directory(folder);
  MakeFile(*platform, folder);
  tavi::cDatabase store(platform, {});
  store.SetDatabaseFolder(folder);
  const std::string insert = "Insert into Members (MembershipNumber, FirstName, LastName, Active, email) Values ";
  store.Execute(insert + "(1, 'Ann', 'Smith', 1, 'ann@example.org')");
  store.Execute(insert + "(2, 'Bob', 'Jones', 0, 'bob@example.org')");
  store.Execute(insert + "(3, 'Cat', 'Brown', 1, '  Éloïse@example.org ')");
  store.Execute(insert + "(4, 'Dan', 'Green', 1, '" + lastAddress + "')");
}

void MakeClubs(const std::string& folder) {
  const auto platform = tavi::MakePlatform({.messageBoxes = std::make_shared<NoMessages>()});
  MakeClub(platform, folder);
  MakeClubOfAddresses(platform, folder + "\\addresses", "");
  MakeClubOfAddresses(platform, folder + "\\twice", "ANN@example.org");
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "club_maker FOLDER\n";
    return 2;
  }
  try {
    MakeClubs(arguments[1]);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}
