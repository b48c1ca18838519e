#pragma once

#include <atomic>

#include "automation/CollectionObject.h"

namespace tavi::automation {

/// Walks the items of a collection for scripts.
class ItemEnumerator final : public IEnumVARIANT {
 public:
  ItemEnumerator(CollectionItems items, std::size_t position) : items_(std::move(items)), position_(position) {}
  ItemEnumerator(const ItemEnumerator&) = delete;
  ItemEnumerator& operator=(const ItemEnumerator&) = delete;

  STDMETHODIMP QueryInterface(REFIID wanted, void** result) override;
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override;

  STDMETHODIMP Next(ULONG count, VARIANT* values, ULONG* fetched) override;
  STDMETHODIMP Skip(ULONG count) override;
  STDMETHODIMP Reset() override;
  STDMETHODIMP Clone(IEnumVARIANT** result) override;

 private:
  // Only the last Release destroys it.
  virtual ~ItemEnumerator() = default;

  ModuleLock lock_;
  std::atomic<ULONG> references_{1};
  CollectionItems items_;
  std::size_t position_;
};

}  // namespace tavi::automation
