#include "facade/DefaultPlatform.h"
#include "facade/MembershipDatabase.h"

namespace tavi {

// In a file of its own, so that only programs that use it need this machine's platform.
MembershipDatabase::MembershipDatabase() : MembershipDatabase(DefaultPlatform()) {}

}  // namespace tavi
