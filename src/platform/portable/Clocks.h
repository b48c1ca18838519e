#pragma once

#include "platform/Platform.h"

namespace tavi {

/// The machine's local time.
class SystemClock : public Clock {
 public:
  [[nodiscard]] Date Now() const override;
};

/// A clock that stands still at one moment.
class FixedClock : public Clock {
 public:
  explicit FixedClock(Date moment) : moment_(moment) {}
  [[nodiscard]] Date Now() const override { return moment_; }

 private:
  Date moment_;
};

}  // namespace tavi
