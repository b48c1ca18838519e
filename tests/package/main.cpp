#include <tavi/DatabaseTransaction.h>
#include <tavi/MembershipDatabase.h>

#include <cstdio>

// Shows that the installed headers and archives are enough for a program of somebody else.
int main() {
  tavi::MembershipDatabase club;
  club.SetDatabaseFolder("no such folder");
  try {
    club.OpenDatabase();
  } catch (const tavi::Error& error) {
    std::puts(error.Description().c_str());
    return error.Is(tavi::ErrorNumber::Component) ? 0 : 1;
  }
  return 1;
}
