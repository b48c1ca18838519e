#include "automation/Objects.h"

#include <new>
#include <vector>

#include "automation/CollectionObject.h"
#include "automation/Conversion.h"

namespace tavi::automation {
namespace {

// Asked of an object, tells whether it is one of ours. It is no interface of other programs.
constexpr GUID kOwnObject = {0x64c671ca, 0x25fa, 0x488b, {0xbf, 0x95, 0x2f, 0x7a, 0x3c, 0x28, 0xbf, 0x4b}};

}  // namespace

// The answer is the object itself and no interface; QueryInterface counts a reference for it as for any other.
void* HandiCalcSettingsObject::Find(REFIID wanted) {
  return wanted == kOwnObject ? this : AutomationObject::Find(wanted);
}

std::shared_ptr<HandiCalcSettings> SettingsOf(_HandiCalcSettings* object) {
  if (object == nullptr) return nullptr;
  void* own = nullptr;
  if (SUCCEEDED(object->QueryInterface(kOwnObject, &own))) {
    const windows::ComPointer<HandiCalcSettingsObject> settings(static_cast<HandiCalcSettingsObject*>(own));
    return settings->Settings();
  }
  // Somebody else's object, or one of ours behind a proxy of another apartment, whose memory must not be touched from
  // here.
  auto copy = std::make_shared<HandiCalcSettings>();
  Copy(*object, *copy);
  return copy;
}

// The lower bound says whether anybody was found: 1, or 0 for nobody.
void Return(SAFEARRAY** result, const MatchList& list) {
  SAFEARRAY* array = ::SafeArrayCreateVector(VT_I4, list.LowerBound, static_cast<ULONG>(list.Numbers.size()));
  if (array == nullptr) throw std::bad_alloc();
  LONG index = list.LowerBound;
  for (std::int32_t number : list.Numbers) {
    ::SafeArrayPutElement(array, &index, &number);
    ++index;
  }
  *result = array;
}

void Return(_Collection** result, const std::vector<std::string>& texts) {
  std::vector<CollectionItem> items;
  // The text is the key too, as callers look for an address by itself.
  for (const std::string& text : texts) items.push_back({Variant(text), text});
  *result = MakeCollection(std::move(items)).Detach();
}

// Rows have no key; they are found by position.
void Return(_Collection** result, const std::vector<EBUMembershipDetails>& rows) {
  std::vector<CollectionItem> items;
  for (const EBUMembershipDetails& row : rows) {
    items.push_back({Variant(new EBUMembershipDetailsObject(row)), {}});
  }
  *result = MakeCollection(std::move(items)).Detach();
}

// A copy: what the caller changes in it counts only when he stores it again.
void Return(_HandiCalcSettings** result, const HandiCalcSettings& settings) {
  *result = new HandiCalcSettingsObject(std::make_shared<HandiCalcSettings>(settings));
}

void Return(_Handicaps** result, const Handicaps& handicaps) {
  *result = new HandicapsObject(handicaps);
}

void Return(_EBUMembershipDetails** result, const EBUMembershipDetails& details) {
  *result = new EBUMembershipDetailsObject(details);
}

std::optional<double> OptionalDouble(const VARIANT& value) {
  // Empty counts as left out: a script's variable that nothing was assigned to.
  const VARIANT& given = Referred(value);
  if (IsMissing(given) || given.vt == VT_EMPTY) return std::nullopt;
  Variant number;
  if (FAILED(ConvertVariant(number.Address(), given, VT_R8))) {
    throw Error(ErrorNumber::TypeMismatch, "TaviMembership", "Type mismatch: a handicap has to be a number.");
  }
  return number.Get().dblVal;
}

}  // namespace tavi::automation
