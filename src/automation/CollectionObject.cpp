#include "automation/CollectionObject.h"

#include <algorithm>

#include "automation/Conversion.h"
#include "platform/values/Text.h"

namespace tavi::automation {

// Shared and constant: enumerators go on with the same items after the collection has been given back.
windows::ComPointer<_Collection> MakeCollection(std::vector<CollectionItem> items) {
  auto shared = std::make_shared<const std::vector<CollectionItem>>(std::move(items));
  return windows::ComPointer<_Collection>(new CollectionObject(std::move(shared)));
}

STDMETHODIMP CollectionObject::get_Count(long* result) {
  return Answer([&] { *result = static_cast<long>(items_->size()); }, result);
}

STDMETHODIMP CollectionObject::get_Item(VARIANT Index, VARIANT* result) {
  // What is in a caller's result is nothing that would have to be cleared; copying into it would clear it.
  if (result != nullptr) ::VariantInit(result);
  return Answer([&] { windows::Require(CopyVariant(result, ItemAt(Index)), "The item cannot be copied"); }, result);
}

STDMETHODIMP CollectionObject::get__NewEnum(IUnknown** result) {
  return Answer([&] { *result = new ItemEnumerator(items_, 0); }, result);
}

const VARIANT& CollectionObject::ItemAt(const VARIANT& index) const {
  const VARIANT& given = Referred(index);
  // A text that spells a number is a key all the same; scripts say which one they mean by its type.
  const bool isText = given.vt == VT_BSTR || (given.vt == (VT_BYREF | VT_BSTR) && given.pbstrVal != nullptr);
  if (isText) {
    const std::string key = LowerCase(ToText(given.vt == VT_BSTR ? given.bstrVal : *given.pbstrVal));
    // One after the other: collections are a club's addresses or the rows of one search.
    for (const CollectionItem& item : *items_) {
      if (!item.key.empty() && LowerCase(item.key) == key) return item.value.Get();
    }
    throw Error(ErrorNumber::InvalidArgument, "TaviMembership",
                "Invalid procedure call or argument: the collection has no item \"" + key + "\".");
  }
  Variant position;
  if (FAILED(ConvertVariant(position.Address(), given, VT_I4))) {
    throw Error(ErrorNumber::TypeMismatch, "TaviMembership", "Type mismatch: an item is found by position or key.");
  }
  const LONG number = position.Get().lVal;
  if (number < 1 || static_cast<std::size_t>(number) > items_->size()) {
    throw Error(ErrorNumber::BadSubscript, "TaviMembership",
                "Subscript out of range: the collection has the items 1 to " + std::to_string(items_->size()) +
                    ", not " + std::to_string(number) + ".");
  }
  return (*items_)[static_cast<std::size_t>(number) - 1].value.Get();
}

void* ItemEnumerator::Find(REFIID wanted) {
  const bool isKnown = wanted == IID_IUnknown || wanted == IID_IEnumVARIANT;
  return isKnown ? static_cast<IEnumVARIANT*>(this) : nullptr;
}

STDMETHODIMP ItemEnumerator::Next(ULONG count, VARIANT* values, ULONG* fetched) {
  // Who asks for one value may do without the count: the result says whether there was one.
  if (values == nullptr || (fetched == nullptr && count != 1)) return E_POINTER;
  if (fetched != nullptr) *fetched = 0;
  const auto given = static_cast<ULONG>(std::min<std::size_t>(count, items_->size() - position_));
  // The caller's array may hold anything; copying clears what a value held before.
  std::for_each_n(values, given, [](VARIANT& value) { ::VariantInit(&value); });
  for (ULONG done = 0; done < given; ++done) {
    const HRESULT result = CopyVariant(&values[done], (*items_)[position_ + done].value.Get());
    if (FAILED(result)) {
      // All of them or none, so that the caller need not guess which ones are to be cleared.
      std::for_each_n(values, done, [](VARIANT& value) { ::VariantClear(&value); });
      return result;
    }
  }
  position_ += given;
  if (fetched != nullptr) *fetched = given;
  // Fewer than asked for is the end of the walk and no failure.
  return given == count ? S_OK : S_FALSE;
}

STDMETHODIMP ItemEnumerator::Skip(ULONG count) {
  const std::size_t left = items_->size() - position_;
  position_ += std::min<std::size_t>(count, left);
  return count <= left ? S_OK : S_FALSE;
}

STDMETHODIMP ItemEnumerator::Reset() {
  position_ = 0;
  return S_OK;
}

STDMETHODIMP ItemEnumerator::Clone(IEnumVARIANT** result) {
  return Answer([&] { *result = new ItemEnumerator(items_, position_); }, result);
}

}  // namespace tavi::automation
