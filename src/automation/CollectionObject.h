#pragma once

#include <TaviMembership.h>
#include <memory>
#include <string>
#include <vector>

#include "automation/AutomationObject.h"
#include "automation/Variant.h"

namespace tavi::automation {

/// An item, and its key where it has one.
struct CollectionItem {
  Variant value;
  std::string key;
};

/// Items in their order, which never change.
using CollectionItems = std::shared_ptr<const std::vector<CollectionItem>>;

/// A collection for automation.
class CollectionObject final : public AutomationObject<_Collection, ::Collection> {
 public:
  explicit CollectionObject(CollectionItems items) : items_(std::move(items)) {}

  STDMETHODIMP get_Count(long* result) override;
  /// A text is a key, without regard to case, and raises InvalidArgument when it is none; everything else a position
  /// from 1, which raises BadSubscript when there is no such item.
  STDMETHODIMP get_Item(VARIANT Index, VARIANT* result) override;
  STDMETHODIMP get__NewEnum(IUnknown** result) override;

 private:
  [[nodiscard]] const VARIANT& ItemAt(const VARIANT& index) const;

  CollectionItems items_;
};

/// A new collection of these items.
windows::ComPointer<_Collection> MakeCollection(std::vector<CollectionItem> items);

/// Walks the items of a collection for scripts.
class ItemEnumerator final : public CountedObject<IEnumVARIANT> {
 public:
  ItemEnumerator(CollectionItems items, std::size_t position) : items_(std::move(items)), position_(position) {}

  STDMETHODIMP Next(ULONG count, VARIANT* values, ULONG* fetched) override;
  STDMETHODIMP Skip(ULONG count) override;
  STDMETHODIMP Reset() override;
  STDMETHODIMP Clone(IEnumVARIANT** result) override;

 private:
  void* Find(REFIID wanted) override;

  ModuleLock lock_;
  CollectionItems items_;
  std::size_t position_;
};

}  // namespace tavi::automation
