#include "access/file/support/CrashingFileSystem.h"

namespace tavi::access::test {

void CrashingFileSystem::StopAt(std::size_t number, bool halfWritten) {
  isArmed_ = true;
  left_ = number;
  halfWritten_ = halfWritten;
}

void CrashingFileSystem::Before(Operation operation, const std::string& /*path*/,
                                const std::function<void()>& partDone) {
  if (hasStopped_) throw SimulatedCrash();
  const bool changesNothing =
      operation == Operation::Read || operation == Operation::Lock || operation == Operation::Open;
  if (changesNothing || !isArmed_ || left_-- > 0) return;
  hasStopped_ = true;
  if (halfWritten_) partDone();
  throw SimulatedCrash();
}

}  // namespace tavi::access::test
