#include "access/provider/support/EveningWorker.h"

#include <iostream>

#include "access/provider/AccessProvider.h"
#include "platform/ConnectionTo.h"

namespace tavi::access::test {

namespace {

// Small, so that checkpoints come often.
constexpr std::uint64_t kCheckpointBytes = std::uint64_t{120} << 10U;

}  // namespace

EveningWorker::EveningWorker(const std::vector<std::string>& arguments)
    : path_(arguments.at(1)),
      steps_(MakeEvening(static_cast<std::uint32_t>(std::stoul(arguments.at(2))), std::stoul(arguments.at(3)))),
      next_(std::stoul(arguments.at(4))) {
  Open();
}

void EveningWorker::Run() {
  for (; next_ < steps_.size(); Report()) {
    if (steps_[next_].kind == EveningStep::Kind::Reopen) {
      connection_->Close();
      Open();
    } else {
      RunStep(*connection_, steps_[next_]);
    }
  }
  connection_->Close();
}

void EveningWorker::Open() {
  ProviderOptions options;
  options.pager.checkpointBytes = kCheckpointBytes;
  connection_ =
      MakeAccessProvider(NativeFileSystem(), std::make_shared<EveningClock>(), options)->Open(ConnectionTo(path_));
}

void EveningWorker::Report() {
  std::cout << ++next_ << std::endl;
}

}  // namespace tavi::access::test
