#include "composition/Composition.h"
#include "facade/MembershipDatabase.h"

namespace tavi {

// Defined here and not beside the class, which knows its platform only by its interfaces.
MembershipDatabase::MembershipDatabase() : MembershipDatabase(DefaultPlatform()) {}

}  // namespace tavi
