#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "access/provider/support/Evening.h"
#include "platform/ado/Provider.h"

namespace tavi::access::test {

/// Runs an evening on a file of the system, and prints the number of finished steps after each.
class EveningWorker {
 public:
  /// `arguments`: a task's name, then PATH SEED STEPS FIRST as in WorkerMain.cpp.
  explicit EveningWorker(const std::vector<std::string>& arguments);

  void Run();

 protected:
  void Open();
  void Report();

  std::string path_;
  std::vector<EveningStep> steps_;
  std::size_t next_;
  std::unique_ptr<ado::Connection> connection_;
};

}  // namespace tavi::access::test
