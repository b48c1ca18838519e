#pragma once

#include <memory>

#include "handicaps/HandiCalcSettings.h"
#include "store/cDatabase.h"

namespace tavi {

/// The handicap settings that a public object holds: read from the club's file when they are first needed and kept for
/// the object's life. Errors of the store pass on.
class HeldSettings {
 public:
  /// Reads the settings unless some are held. When reading fails, none are held and the next use reads them again.
  void LoadHandicalcSettings(cDatabase& database);
  /// Null while none were read or stored.
  [[nodiscard]] std::shared_ptr<const HandiCalcSettings> Held() const { return held_; }
  /// Whether the calculation is switched off in the held settings. Raises NoObject while there are none.
  [[nodiscard]] bool HeldDisabled() const;

  /// A copy of the settings.
  [[nodiscard]] HandiCalcSettings HandicalcOptions(cDatabase& database);
  /// Stores the settings; the object itself is held, and its Disabled cleared. Raises NoObject for null. After an error
  /// of the store the file has the settings from before, and the object is held all the same.
  void SetHandicalcOptions(cDatabase& database, const std::shared_ptr<HandiCalcSettings>& settings);
  [[nodiscard]] bool HandiCalcDisabled(cDatabase& database);
  /// Raises NoObject, before anything is written, while no settings were read or stored.
  void SetHandiCalcDisabled(cDatabase& database, bool disabled);

 private:
  [[nodiscard]] HandiCalcSettings& Require() const;

  std::shared_ptr<HandiCalcSettings> held_;
};

}  // namespace tavi
