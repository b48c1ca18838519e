#pragma once

#include <TaviMembership.h>

#include <string>

#include "platform/windows/Com.h"

/// What the programs that drive the automation server have in common.
namespace tavi::automation_test {

using windows::AutomationText;
using windows::ComPointer;

/// Notes a check, and prints its name when it does not hold. Safe on any thread.
void Check(const std::string& what, bool holds);

/// The same for two results of calls; prints both when they differ.
void CheckResult(const std::string& what, HRESULT got, HRESULT wanted);

/// Prints the counts as the last line; the exit code of the program, which is 1 when a check failed.
int Summary();

/// A new object of a registered class; none when that fails, which is a failed check.
template <typename Interface>
ComPointer<Interface> Create(REFCLSID identifier) {
  ComPointer<Interface> object;
  CheckResult(
      "a class can be created",
      ::CoCreateInstance(identifier, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface), object.ReceiveUntyped()),
      S_OK);
  return object;
}

/// What stands in the place of an argument that is left out.
VARIANT LeftOut();

/// A value of the automation type that a C++ value has.
VARIANT Of(long value);
VARIANT Of(double value);
/// A text; borrowed, so that the variant must not be cleared.
VARIANT Of(const AutomationText& text);
/// An object; borrowed as well.
VARIANT Of(IDispatch* object);
VARIANT OfType(VARTYPE type);
/// A reference to a caller's variable.
VARIANT ReferenceTo(VARIANT& variable);
VARIANT ReferenceTo(VARTYPE type, void* variable);

/// Adds a member without initials and handicap; its number, 0 when that fails.
long AddMember(_MembershipDatabase& database, const char* first, const char* last);

// The parts of the early-bound client. Each takes a database whose folder holds a club.
void CheckNullPointers(_MembershipDatabase& database);
void CheckNullTexts(_MembershipDatabase& database);
void CheckCallsByNumber(_MembershipDatabase& database);
void CheckPassedBackByNumber(_MembershipDatabase& database);
void CheckEveryArgument(_MembershipDatabase& database);
void CheckObjectRules(_MembershipDatabase& database);
void CheckCollections(_MembershipDatabase& database);
void CheckLeftOutHandicaps(_MembershipDatabase& database);
void CheckMemory(_MembershipDatabase& database);

}  // namespace tavi::automation_test
