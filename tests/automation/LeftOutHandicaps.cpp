// The handicap that a club without the calculation gives with a result: a double that may be left out in a call by
// number, by name and by position, and that changes no stored handicap then.
#include <array>
#include <vector>

#include "support/Checks.h"

namespace tavi::automation_test {
namespace {

constexpr DISPID kNoteCompetitorResult = 42;
constexpr DISPID kUpdateResult = 44;
constexpr double kStored = 61.0;

/// A competition that counts for handicaps, with one player, whose handicap is kStored before each call.
class Event {
 public:
  explicit Event(_MembershipDatabase& database) : database_(database) {
    player_ = AddMember(database, "Zoe", "Applied");
    CheckResult("a competition",
                database.SetCompetition(AutomationText("Applied").Get(), 45446, VARIANT_FALSE, 0, 0, 0, 8, 1, 1,
                                        VARIANT_TRUE, 0, &competition_),
                S_OK);
  }

  /// The arguments of NoteCompetitorResult but the last one.
  [[nodiscard]] std::vector<VARIANT> Result() const {
    return {Of(competition_), Of(player_), Of(name_), Of(-1L), Of(name_), Of(55.0), Of(56.0)};
  }
  /// Those of UpdateResult.
  [[nodiscard]] std::vector<VARIANT> Update() const {
    return {Of(competition_), Of(0L), Of(player_), Of(name_), Of(-1L), Of(name_), Of(55.0), Of(56.0), Of(0L)};
  }

  HRESULT Call(DISPID member, const std::vector<VARIANT>& arguments, std::vector<DISPID> names = {}) {
    database_.SetHandicap(player_, kStored);
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    DISPPARAMS parameters{reversed.data(), names.data(), static_cast<UINT>(reversed.size()),
                          static_cast<UINT>(names.size())};
    return database_.Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                            nullptr);
  }

  HRESULT NoteThroughInterface(double handicap) {
    database_.SetHandicap(player_, kStored);
    return database_.NoteCompetitorResult(competition_, player_, name_.Get(), -1, name_.Get(), 55, 56, handicap);
  }
  HRESULT UpdateThroughInterface(double handicap) {
    database_.SetHandicap(player_, kStored);
    return database_.UpdateResult(competition_, VARIANT_FALSE, player_, name_.Get(), -1, name_.Get(), 55, 56, 0,
                                  handicap);
  }

  void CheckHandicap(const std::string& what, HRESULT result, double wanted) {
    CheckResult(what, result, S_OK);
    double handicap = 0;
    database_.GetHandicap(player_, &handicap);
    Check(what + ": the handicap is " + std::to_string(handicap), handicap == wanted);
  }

 private:
  _MembershipDatabase& database_;
  AutomationText name_{"Zoe Applied"};
  long player_ = 0;
  long competition_ = 0;
};

std::vector<VARIANT> With(std::vector<VARIANT> arguments, VARIANT last) {
  arguments.push_back(last);
  return arguments;
}

void CheckLeftOut(Event& event, const std::string& what, DISPID member, const std::vector<VARIANT>& others) {
  event.CheckHandicap(what + " without the argument", event.Call(member, others), kStored);
  event.CheckHandicap(what + " with a comma", event.Call(member, With(others, LeftOut())), kStored);
  VARIANT leftOut = LeftOut();
  event.CheckHandicap(what + " with a variable of a missing one",
                      event.Call(member, With(others, ReferenceTo(leftOut))), kStored);
  event.CheckHandicap(what + " with nothing in it", event.Call(member, With(others, OfType(VT_EMPTY))), kStored);
  event.CheckHandicap(what + " with -1", event.Call(member, With(others, Of(-1L))), kStored);
  // All by name; the last given one is the first argument.
  std::vector<DISPID> names;
  for (std::size_t place = others.size(); place > 0; --place) names.push_back(static_cast<DISPID>(place - 1));
  event.CheckHandicap(what + " by names", event.Call(member, others, names), kStored);
}

void CheckGiven(Event& event, const std::string& what, DISPID member, const std::vector<VARIANT>& others) {
  const AutomationText text("52.5");
  const AutomationText word("word");
  double variable = 48.25;
  event.CheckHandicap(what + " with a double", event.Call(member, With(others, Of(52.25))), 52.25);
  event.CheckHandicap(what + " with a whole number", event.Call(member, With(others, Of(53L))), 53);
  event.CheckHandicap(what + " with a variable", event.Call(member, With(others, ReferenceTo(VT_R8, &variable))),
                      48.25);
  CheckResult(what + " with a word", event.Call(member, With(others, Of(word))), DISP_E_TYPEMISMATCH);
  CheckResult(what + " with a null", event.Call(member, With(others, OfType(VT_NULL))), DISP_E_TYPEMISMATCH);
  std::vector<VARIANT> handicapFirst = others;
  handicapFirst.push_back(Of(47.5));
  event.CheckHandicap(what + " with the handicap by name",
                      event.Call(member, handicapFirst, {static_cast<DISPID>(others.size())}), 47.5);
}

void CheckDescription(_MembershipDatabase& database, const wchar_t* name) {
  ComPointer<ITypeInfo> information;
  std::wstring text = name;
  std::array<LPOLESTR, 1> names = {text.data()};
  MEMBERID member = MEMBERID_NIL;
  CheckResult("the description", database.GetTypeInfo(0, 0, information.Receive()), S_OK);
  CheckResult("the number", information->GetIDsOfNames(names.data(), 1, &member), S_OK);
  FUNCDESC* function = nullptr;
  for (UINT index = 0; SUCCEEDED(information->GetFuncDesc(index, &function)); ++index) {
    if (function->memid == member) break;
    information->ReleaseFuncDesc(function);
    function = nullptr;
  }
  Check("the operation is described", function != nullptr);
  if (function == nullptr) return;
  const ELEMDESC& handicap = function->lprgelemdescParam[function->cParams - 1];
  const USHORT flags = handicap.paramdesc.wParamFlags;
  Check("the handicap is a double", handicap.tdesc.vt == VT_R8);
  Check("is passed in and has a default", flags == (PARAMFLAG_FIN | PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT));
  if ((flags & PARAMFLAG_FHASDEFAULT) != 0) {
    const VARIANT& value = handicap.paramdesc.pparamdescex->varDefaultValue;
    Check("the default is -1.0", value.vt == VT_R8 && value.dblVal == -1.0);
  }
  information->ReleaseFuncDesc(function);
}

}  // namespace

void CheckLeftOutHandicaps(_MembershipDatabase& database) {
  CheckDescription(database, L"NoteCompetitorResult");
  CheckDescription(database, L"UpdateResult");
  Event event(database);
  // After the registration, which reads the settings from the file.
  CheckResult("the calculation is switched off", database.put_HandiCalcDisabled(VARIANT_TRUE), S_OK);
  CheckLeftOut(event, "NoteCompetitorResult", kNoteCompetitorResult, event.Result());
  CheckGiven(event, "NoteCompetitorResult", kNoteCompetitorResult, event.Result());
  CheckLeftOut(event, "UpdateResult", kUpdateResult, event.Update());
  CheckGiven(event, "UpdateResult", kUpdateResult, event.Update());
  event.CheckHandicap("through the interface, -1", event.NoteThroughInterface(-1), kStored);
  event.CheckHandicap("through the interface", event.NoteThroughInterface(46.75), 46.75);
  event.CheckHandicap("the older form, -1", event.UpdateThroughInterface(-1), kStored);
  event.CheckHandicap("the older form", event.UpdateThroughInterface(45.75), 45.75);
  CheckResult("and on again", database.put_HandiCalcDisabled(VARIANT_FALSE), S_OK);
}

}  // namespace tavi::automation_test
