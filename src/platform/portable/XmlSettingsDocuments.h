#pragma once

#include <functional>

#include "platform/Platform.h"

namespace tavi {

/// XML settings documents for systems without an XML service of their own. Files are at most 4 MB and 100 levels deep;
/// document type definitions are kept but not acted on. White space around a text is no part of it. Errors have the
/// number InvalidArgument and the source "TaviMembership", and name the file and what is wrong with it. Saving replaces
/// the file as a whole, so that a failure leaves the old one. A document is used by one thread at a time.
class XmlSettingsDocuments : public SettingsDocuments {
 public:
  /// Turns a path with backslashes into one of this system.
  using PathMapping = std::function<std::string(const std::string&)>;

  explicit XmlSettingsDocuments(PathMapping nativePath) : nativePath_(std::move(nativePath)) {}
  [[nodiscard]] std::unique_ptr<SettingsDocument> Load(const std::string& path) const override;

 private:
  PathMapping nativePath_;
};

}  // namespace tavi
