#include "automation/ItemEnumerator.h"

#include <algorithm>

namespace tavi::automation {

STDMETHODIMP ItemEnumerator::QueryInterface(REFIID wanted, void** result) {
  if (result == nullptr) return E_POINTER;
  const bool isKnown = wanted == IID_IUnknown || wanted == IID_IEnumVARIANT;
  *result = isKnown ? static_cast<IEnumVARIANT*>(this) : nullptr;
  if (!isKnown) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) ItemEnumerator::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
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
