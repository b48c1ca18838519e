#pragma once

#include "platform/Platform.h"

namespace tavi {

/// The outside automation class that makes name keys, for machines where it is registered. Every computation takes a
/// new object of it, which is asked for the numbers of its two modes.
class OutsideNameKeys : public NameKeyService {
 public:
  /// True when programs like this one can create objects of the class on this machine: from a library or a program that
  /// the registry names, or from a class object that this program has registered itself. An entry whose library or
  /// program is missing counts.
  [[nodiscard]] static bool IsRegistered();
  /// Raises an error with the number, and where it tells them the source and the description, of the class's own when
  /// it cannot be created or called.
  [[nodiscard]] std::string Key(NameKeyMode mode, std::string_view name) const override;
  /// Both keys by one object. Raises the same errors.
  [[nodiscard]] NameKeys Keys(std::string_view surname, std::string_view firstName) const override;
};

}  // namespace tavi
