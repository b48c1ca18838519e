#pragma once

#include "platform/Platform.h"

namespace tavi {

/// Message boxes of the Windows desktop, with an OK button.
class SystemMessageBoxes : public MessageBoxes {
 public:
  void Show(MessageBoxIcon icon, const std::string& title, const std::string& text) const override;
};

}  // namespace tavi
