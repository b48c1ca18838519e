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
  if (values == nullptr || (fetched == nullptr && count != 1)) return E_POINTER;
  ULONG done = 0;
  HRESULT result = S_OK;
  for (; done < count && position_ < items_->size(); ++done, ++position_) {
    ::VariantInit(&values[done]);
    result = CopyVariant(&values[done], (*items_)[position_].value.Get());
    if (FAILED(result)) break;
  }
  if (fetched != nullptr) *fetched = done;
  if (FAILED(result)) return result;
  return done == count ? S_OK : S_FALSE;
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
