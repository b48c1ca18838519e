#include "host/tools/Connect.h"

#include "store/cDatabase.h"

namespace tavi::host {

std::unique_ptr<ado::Connection> Connect(const Context& context, const std::string& file) {
  return context.platform->databaseProvider->Open(ConnectionText(file));
}

}  // namespace tavi::host
