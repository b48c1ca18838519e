// Every member of every interface, called with a null pointer in the place of each variable that it passes something
// back in, and with null texts.
#include <tuple>
#include <utility>

#include "support/Checks.h"

namespace tavi::automation_test {
namespace {

/// Whether an argument of this type is a variable of the caller's.
template <typename Argument>
constexpr bool kIsVariable = std::is_pointer_v<Argument>;
template <>
constexpr bool kIsVariable<BSTR> = false;
template <>
constexpr bool kIsVariable<_HandiCalcSettings*> = false;

template <typename Value>
void Free(Value& /*value*/) {}
void Free(BSTR& text) {
  ::SysFreeString(std::exchange(text, nullptr));
}
void Free(VARIANT& value) {
  ::VariantClear(&value);
}
void Free(SAFEARRAY*& array) {
  if (array != nullptr) ::SafeArrayDestroy(std::exchange(array, nullptr));
}
template <typename Interface>
requires std::is_base_of_v<IUnknown, Interface>
void Free(Interface*& object) {
  if (object != nullptr) std::exchange(object, nullptr)->Release();
}

/// A variable of the caller's, or a plain argument: a zero, an empty text, no object.
template <typename Argument>
class Place {
 public:
  ~Place() {
    if constexpr (kIsVariable<Argument>) Free(value_);
  }
  Place() = default;
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;

  Argument Pass(bool isNull) {
    if constexpr (kIsVariable<Argument>) {
      return isNull ? nullptr : &value_;
    } else {
      return value_;
    }
  }

 private:
  std::conditional_t<kIsVariable<Argument>, std::remove_pointer_t<Argument>, Argument> value_{};
};

/// Calls with a null pointer for the variable `missing` and returns the result.
template <typename Interface, typename... Arguments, std::size_t... Index>
HRESULT CallWithout(Interface& object, HRESULT (STDMETHODCALLTYPE Interface::*method)(Arguments...),
                    std::size_t missing, std::index_sequence<Index...> /*indexes*/) {
  std::tuple<Place<Arguments>...> places;
  return (object.*method)(std::get<Index>(places).Pass(Index == missing)...);
}

template <typename Interface, typename... Arguments>
void CheckMethod(const std::string& name, Interface& object,
                 HRESULT (STDMETHODCALLTYPE Interface::*method)(Arguments...)) {
  const std::initializer_list<bool> isVariable = {kIsVariable<Arguments>...};
  std::size_t index = 0;
  for (bool variable : isVariable) {
    if (variable) {
      CheckResult(name + " without variable " + std::to_string(index),
                  CallWithout(object, method, index, std::index_sequence_for<Arguments...>()), E_POINTER);
    }
    ++index;
  }
}

#define CHECK_METHOD(object, interfaceName, method) CheckMethod(#method, object, &interfaceName::method)

void CheckDatabase(_MembershipDatabase& database) {
  CHECK_METHOD(database, _MembershipDatabase, get_IncludeInactiveMembers);
  CHECK_METHOD(database, _MembershipDatabase, get_DatabaseExists);
  CHECK_METHOD(database, _MembershipDatabase, get_DatabaseFolder);
  CHECK_METHOD(database, _MembershipDatabase, get_DatabaseFileName);
  CHECK_METHOD(database, _MembershipDatabase, AddNewMember);
  CHECK_METHOD(database, _MembershipDatabase, GetMemberName);
  CHECK_METHOD(database, _MembershipDatabase, GetNameAndEBUNumber);
  CHECK_METHOD(database, _MembershipDatabase, GetEBUNoAndNames);
  CHECK_METHOD(database, _MembershipDatabase, EnteredNumberToClubNumber);
  CHECK_METHOD(database, _MembershipDatabase, GetHandicap);
  CHECK_METHOD(database, _MembershipDatabase, IsValidMemberID);
  CHECK_METHOD(database, _MembershipDatabase, get_PlayersStratum);
  CHECK_METHOD(database, _MembershipDatabase, get_ClubName);
  CHECK_METHOD(database, _MembershipDatabase, get_ClubID);
  CHECK_METHOD(database, _MembershipDatabase, WasClubEverCalled);
  CHECK_METHOD(database, _MembershipDatabase, FindMember);
  CHECK_METHOD(database, _MembershipDatabase, FindNearestMatches);
  CHECK_METHOD(database, _MembershipDatabase, GetFirstMember);
  CHECK_METHOD(database, _MembershipDatabase, GetNextMember);
  CHECK_METHOD(database, _MembershipDatabase, get_Retired);
  CHECK_METHOD(database, _MembershipDatabase, GetFirstEBURecord);
  CHECK_METHOD(database, _MembershipDatabase, GetNextEBURecord);
  CHECK_METHOD(database, _MembershipDatabase, GetFirstPartnership);
  CHECK_METHOD(database, _MembershipDatabase, GetNextPartnership);
  CHECK_METHOD(database, _MembershipDatabase, get_MembersEmailAddress);
  CHECK_METHOD(database, _MembershipDatabase, get_AllEmailAddresses);
  CHECK_METHOD(database, _MembershipDatabase, SearchEBUList);
  CHECK_METHOD(database, _MembershipDatabase, CheckMembershipID);
  CHECK_METHOD(database, _MembershipDatabase, AddRegularPair);
  CHECK_METHOD(database, _MembershipDatabase, IsRegularPair);
  CHECK_METHOD(database, _MembershipDatabase, GetPairName);
  CHECK_METHOD(database, _MembershipDatabase, SetCompetitionEx);
  CHECK_METHOD(database, _MembershipDatabase, SetCompetition);
  CHECK_METHOD(database, _MembershipDatabase, get_HandicalcOptions);
  CHECK_METHOD(database, _MembershipDatabase, get_HandiCalcDisabled);
  CHECK_METHOD(database, _MembershipDatabase, CalculateHandicaps);
}

void CheckOthers() {
  const auto settings = Create<_HandiCalcSettings>(__uuidof(HandiCalcSettings));
  const auto handicaps = Create<_Handicaps>(__uuidof(Handicaps));
  const auto details = Create<_EBUMembershipDetails>(__uuidof(EBUMembershipDetails));
  if (!settings || !handicaps || !details) return;
  CHECK_METHOD(*settings.Get(), _HandiCalcSettings, get_MaxWeeks);
  CHECK_METHOD(*settings.Get(), _HandiCalcSettings, get_MaxResults);
  CHECK_METHOD(*settings.Get(), _HandiCalcSettings, get_RegularPairMultiplier);
  CHECK_METHOD(*settings.Get(), _HandiCalcSettings, get_RegularPairAdd);
  CHECK_METHOD(*settings.Get(), _HandiCalcSettings, get_UnknownPlayerHandicap);
  CHECK_METHOD(*settings.Get(), _HandiCalcSettings, get_Disabled);
  CHECK_METHOD(*settings.Get(), _HandiCalcSettings, Clone);
  CHECK_METHOD(*settings.Get(), _HandiCalcSettings, get_SamePartnerWeighting);
  CHECK_METHOD(*settings.Get(), _HandiCalcSettings, get_IncludesRegularPairAdjustment);
  CHECK_METHOD(*settings.Get(), _HandiCalcSettings, AdjustRegularPair);
  CHECK_METHOD(*handicaps.Get(), _Handicaps, get_PartnershipHandicap);
  CHECK_METHOD(*handicaps.Get(), _Handicaps, get_Player1Handicap);
  CHECK_METHOD(*handicaps.Get(), _Handicaps, get_Player2Handicap);
  CHECK_METHOD(*details.Get(), _EBUMembershipDetails, get_EBUNumber);
  CHECK_METHOD(*details.Get(), _EBUMembershipDetails, get_FirstName);
  CHECK_METHOD(*details.Get(), _EBUMembershipDetails, get_LastName);
  CHECK_METHOD(*details.Get(), _EBUMembershipDetails, get_CountyCode);
  CHECK_METHOD(*details.Get(), _EBUMembershipDetails, get_Location);
}

void CheckCollection(_MembershipDatabase& database) {
  ComPointer<_Collection> rows;
  CheckResult("SearchEBUList", database.SearchEBUList(nullptr, AutomationText("Smith").Get(), rows.Receive()), S_OK);
  if (!rows) return;
  CHECK_METHOD(*rows.Get(), _Collection, get_Count);
  CHECK_METHOD(*rows.Get(), _Collection, get_Item);
  CHECK_METHOD(*rows.Get(), _Collection, get__NewEnum);
}

#undef CHECK_METHOD

}  // namespace

void CheckNullPointers(_MembershipDatabase& database) {
  CheckDatabase(database);
  CheckOthers();
  CheckCollection(database);
  ComPointer<IErrorInfo> information;
  CheckResult("no older error's information", ::GetErrorInfo(0, information.Receive()), S_FALSE);
}

void CheckNullTexts(_MembershipDatabase& database) {
  const auto details = Create<_EBUMembershipDetails>(__uuidof(EBUMembershipDetails));
  if (!details) return;
  AutomationText text("old");
  CheckResult("a null text is taken", details->put_Location(nullptr), S_OK);
  CheckResult("and given back", details->get_Location(text.Receive()), S_OK);
  Check("as an empty one, which is there", text.Get() != nullptr && ::SysStringLen(text.Get()) == 0);
  long number = 0;
  CheckResult("FindMember of no text", database.FindMember(nullptr, VARIANT_FALSE, &number), S_OK);
  Check("is nobody", number == -1);
  SAFEARRAY* matches = nullptr;
  CheckResult("FindNearestMatches of no text", database.FindNearestMatches(nullptr, &matches), S_OK);
  Check("is the array of nobody", matches != nullptr && matches->rgsabound[0].lLbound == 0);
  Free(matches);
  CheckResult("a name with null initials", database.GetMemberName(99, 0, nullptr, text.Receive()), S_OK);
  Check("has the empty default", ::SysStringLen(text.Get()) == 0);
  VARIANT_BOOL was = VARIANT_TRUE;
  CheckResult("WasClubEverCalled of no text", database.WasClubEverCalled(nullptr, &was), S_OK);
  Check("is not the club's name", was == VARIANT_FALSE);
}

}  // namespace tavi::automation_test
