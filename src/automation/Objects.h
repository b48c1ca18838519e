#pragma once

#include <memory>
#include <utility>

#include "automation/EBUMembershipDetailsMembers.h"
#include "automation/HandiCalcSettingsMembers.h"
#include "automation/HandicapsMembers.h"
#include "automation/MembershipDatabaseMembers.h"
#include "automation/ModuleUse.h"

/// The component's classes for automation. What their members do stands in their bases, which are made of the table of
/// operations: each is a call of the operation of its name. Here is what an object consists of.
namespace tavi::automation {

class MembershipDatabaseObject final : public MembershipDatabaseMembers {
 private:
  MembershipDatabase& Called() override { return database_; }

  // Before the database, which it outlives.
  ThreadUse use_;
  MembershipDatabase database_;
};

/// The settings themselves are shared, because a database that they are stored in holds them and not a copy.
class HandiCalcSettingsObject final : public HandiCalcSettingsMembers {
 public:
  explicit HandiCalcSettingsObject(std::shared_ptr<HandiCalcSettings> settings) : settings_(std::move(settings)) {}
  [[nodiscard]] const std::shared_ptr<HandiCalcSettings>& Settings() const { return settings_; }

 private:
  HandiCalcSettings& Called() override { return *settings_; }
  void* Find(REFIID wanted) override;

  std::shared_ptr<HandiCalcSettings> settings_;
};

class HandicapsObject final : public HandicapsMembers {
 public:
  explicit HandicapsObject(const Handicaps& values) : handicaps_(values) {}

 private:
  Handicaps& Called() override { return handicaps_; }

  Handicaps handicaps_;
};

class EBUMembershipDetailsObject final : public EBUMembershipDetailsMembers {
 public:
  explicit EBUMembershipDetailsObject(EBUMembershipDetails values) : details_(std::move(values)) {}

 private:
  EBUMembershipDetails& Called() override { return details_; }

  EBUMembershipDetails details_;
};

}  // namespace tavi::automation
