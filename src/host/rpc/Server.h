#pragma once

#include <iosfwd>
#include <string>

#include "host/commands/Context.h"
#include "host/rpc/Session.h"
#include "platform/Platform.h"

namespace tavi::host {

/// Hands message boxes to the caller: a notification "MessageBox" with icon, title and text, a line of its own.
class MessageBoxNotifications final : public MessageBoxes {
 public:
  explicit MessageBoxNotifications(std::ostream& out) : out_(out) {}
  void Show(MessageBoxIcon icon, const std::string& title, const std::string& text) const override;

 private:
  std::ostream& out_;
};

/// JSON-RPC 2.0 with one JSON value a line, in and out. A request may have the member "object" beside those of the
/// protocol: the number of the object that is meant, 1 when it is missing.
class Server {
 public:
  Server(Session& session, std::ostream& out) : session_(session), out_(out) {}

  /// Takes all lines up to the end of the input. Lines longer than kLongestLine are refused and passed over.
  void Serve(std::istream& in);

  /// Takes one line: a request, a notification, or a batch of them. Writes the reply, if there is one, and flushes.
  void Take(const std::string& line);

 private:
  /// The reply to a request; nothing for a notification, whatever becomes of it.
  [[nodiscard]] std::optional<Json> Answer(const Json& request);
  [[nodiscard]] Json CallFor(const Json& request);
  [[nodiscard]] std::optional<Json> AnswerAll(const Json& batch);

  Session& session_;
  std::ostream& out_;
};

/// `tavi rpc`: serves JSON-RPC on standard input and output until the input ends; then all objects end and the file is
/// closed. With a club's folder named, every object starts with it.
int RunRpc(const Context& context);

}  // namespace tavi::host
