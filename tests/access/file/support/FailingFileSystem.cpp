#include "access/file/support/FailingFileSystem.h"

#include <utility>

#include "access/file/EngineError.h"

namespace tavi::access::test {

void FailingFileSystem::FailCall(std::size_t number, std::set<Operation> operations, bool andAllLater) {
  operations_ = std::move(operations);
  failingCall_ = number;
  andAllLater_ = andAllLater;
  calls_ = 0;
  hasFailed_ = false;
}

void FailingFileSystem::FailNothing() {
  operations_.clear();
}

void FailingFileSystem::Before(Operation operation, const std::string& path, const std::function<void()>& partDone) {
  if (operation == Operation::Read) ++reads_;
  const bool changesNothing =
      operation == Operation::Read || operation == Operation::Lock || operation == Operation::Open;
  if (!changesNothing) ++changingCalls_;
  if (!operations_.contains(operation)) return;
  const std::size_t call = calls_++;
  if (call != failingCall_ && !(andAllLater_ && call > failingCall_)) return;
  hasFailed_ = true;
  partDone();
  RaiseFailure("Could not use '" + path + "': Input/output error.");
}

}  // namespace tavi::access::test
