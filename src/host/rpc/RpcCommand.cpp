#include "host/rpc/RpcCommand.h"

#include <istream>
#include <ostream>

#include "host/rpc/Server.h"

namespace tavi::host {

int RunRpc(const Context& context) {
  auto platform = std::make_shared<Platform>(*context.platform);
  platform->messageBoxes = std::make_shared<MessageBoxNotifications>(context.out);
  Context club = context;
  club.platform = platform;
  Session session([&] { return club.OpenClub(); });
  Server server(session, context.out);
  server.Serve(context.in);
  session.Close();
  return kSucceeded;
}

}  // namespace tavi::host
