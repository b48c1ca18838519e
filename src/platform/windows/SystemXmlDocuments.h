#pragma once

#include "platform/Platform.h"

namespace tavi {

/// Settings documents on the XML document service of Windows. White space around a text is no part of it; entities of
/// other files are not read. A document is used on the thread that loaded it. Errors carry the service's number and
/// name the file.
class SystemXmlDocuments : public SettingsDocuments {
 public:
  [[nodiscard]] std::unique_ptr<SettingsDocument> Load(const std::string& path) const override;
};

}  // namespace tavi
