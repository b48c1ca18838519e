#include "host/rpc/Server.h"

#include <algorithm>
#include <istream>
#include <ostream>

#include "host/rpc/RequestText.h"
#include "host/text/Table.h"
#include "platform/values/Error.h"

// The protocol: lines in, lines out, one after the other. Whatever a request is, one of three things becomes of it: a
// reply with its result, a reply with an error, or, for a notification, nothing. No error ends the session, since a
// program that made one mistake should not lose its open walk. The component's errors keep their numbers; -326xx are
// the protocol's own.
namespace tavi::host {
namespace {

/// Flushed at once: the caller waits for it before it writes the next request.
void WriteLine(std::ostream& out, const Json& json) {
  out << PrintableJson(json.Compact()) << '\n' << std::flush;
}

/// The members in the order in which the protocol's own examples have them.
Json ErrorReply(const Json& id, int code, const std::string& message) {
  return {{"jsonrpc", "2.0"}, {"error", {{"code", code}, {"message", message}}}, {"id", id}};
}

Json ErrorReply(const Json& id, RpcCode code, const std::string& message) {
  return ErrorReply(id, static_cast<int>(code), message);
}

/// A component's error: its number is the code, its source the data.
Json ErrorReply(const Json& id, const Error& error) {
  Json reply = ErrorReply(id, error.Number(), error.Description());
  reply["error"]["data"] = error.Source();
  return reply;
}

// An object or an array is no id, and would be sent back at whatever length.
bool IsId(const Json& id) {
  return id.IsText() || id.IsNumber() || id.IsNull();
}

/// The request's id, as far as it has a proper one.
Json IdOf(const Json& request) {
  if (!request.IsObject()) return nullptr;
  const Json* id = request.Find("id");
  return id == nullptr || !IsId(*id) ? Json() : *id;
}

[[noreturn]] void RefuseRequest(const std::string& problem) {
  throw RpcError(RpcCode::InvalidRequest, "Invalid request: " + problem);
}

/// What makes a request one, asked before its method is: the first that is missing is told.
void RequireRequest(const Json& request) {
  if (!request.IsObject()) RefuseRequest("a JSON object is expected");
  const Json* version = request.Find("jsonrpc");
  if (version == nullptr || *version != "2.0") RefuseRequest(R"("jsonrpc" must be "2.0")");
  const Json* method = request.Find("method");
  if (method == nullptr || !method->IsText()) RefuseRequest("\"method\" must be the name of an operation");
  const Json* id = request.Find("id");
  if (id != nullptr && !IsId(*id)) RefuseRequest("\"id\" must be a text, a number or null");
  const Json* params = request.Find("params");
  const bool isGiven = params != nullptr && !params->IsNull();
  if (isGiven && !params->IsObject() && !params->IsArray()) RefuseRequest("\"params\" must be an object or an array");
}

/// The number of the object that a request is for.
/// Beside the protocol's members, so that no operation needs an argument for it.
std::int32_t ObjectOf(const Json& request) {
  const Json* object = request.Find("object");
  std::int32_t number = 1;
  if (object == nullptr || object->IsNull()) return number;
  try {
    ReadJson(*object, number);
  } catch (const RpcError& problem) {
    throw RpcError(problem.Code(), std::string("object: ") + problem.what());
  }
  return number;
}

const char* IconName(MessageBoxIcon icon) {
  switch (icon) {
    case MessageBoxIcon::Information:
      return "Information";
    case MessageBoxIcon::Exclamation:
      return "Exclamation";
    case MessageBoxIcon::Critical:
      return "Critical";
  }
  return "Information";
}

bool IsBlankLine(const std::string& line) {
  return line.find_first_not_of(" \t\r\n") == std::string::npos;
}

}  // namespace

void MessageBoxNotifications::Show(MessageBoxIcon icon, const std::string& title, const std::string& text) const {
  try {
    WriteLine(out_, {{"jsonrpc", "2.0"},
                     {"method", "MessageBox"},
                     {"params", {{"icon", IconName(icon)}, {"title", title}, {"text", text}}}});
  } catch (const std::exception&) {
    // A message that cannot be written must not end the operation that shows it.
  }
}

void Server::Take(const std::string& line) {
  // Some programs end their output with one.
  if (IsBlankLine(line)) return;
  std::optional<Json> reply;
  try {
    const Json json = ParseRequest(line);
    reply = json.IsArray() ? AnswerAll(json) : Answer(json);
  } catch (const RpcError& problem) {
    // The whole line is no request, so there is no id to answer.
    reply = ErrorReply(nullptr, problem.Code(), problem.what());
  } catch (const std::exception& problem) {
    reply = ErrorReply(nullptr, RpcCode::InternalError, std::string("Internal error: ") + problem.what());
  }
  if (reply) WriteLine(out_, *reply);
}

void Server::Serve(std::istream& in) {
  std::string line;
  // Ends with the input, or when nobody reads the replies any more: nothing is carried out then of which nobody would
  // know.
  for (LineRead read = ReadLine(in, line); read != LineRead::AtEnd && out_.good(); read = ReadLine(in, line)) {
    if (read == LineRead::Read) {
      Take(line);
    } else {
      const std::string limit = std::to_string(kLongestLine);
      WriteLine(out_,
                ErrorReply(nullptr, RpcCode::ParseError, "Parse error: a line has more than " + limit + " bytes"));
    }
  }
}

std::optional<Json> Server::AnswerAll(const Json& batch) {
  if (batch.empty()) return ErrorReply(nullptr, RpcCode::InvalidRequest, "Invalid request: the batch is empty");
  Json replies = Json::Array();
  for (const Json& request : batch) {
    if (std::optional<Json> reply = Answer(request)) replies.Add(std::move(*reply));
  }
  // Notifications only: the protocol wants no empty array.
  if (replies.empty()) return std::nullopt;
  return replies;
}

std::optional<Json> Server::Answer(const Json& request) {
  const Json id = IdOf(request);
  Json reply;
  try {
    RequireRequest(request);
    reply = {{"jsonrpc", "2.0"}, {"result", CallFor(request)}, {"id", id}};
  } catch (const RpcError& problem) {
    // What is no request at all is answered, as nobody can tell that it is a notification.
    if (problem.Code() == RpcCode::InvalidRequest) return ErrorReply(id, problem.Code(), problem.what());
    reply = ErrorReply(id, problem.Code(), problem.what());
  } catch (const Error& problem) {
    reply = ErrorReply(id, problem);
  } catch (const std::exception& problem) {
    reply = ErrorReply(id, RpcCode::InternalError, std::string("Internal error: ") + problem.what());
  }
  // It was carried out all the same.
  if (request.Find("id") == nullptr) return std::nullopt;
  return reply;
}

Json Server::CallFor(const Json& request) {
  const Json* params = request.Find("params");
  return session_.Call(request.at("method").Text(), params == nullptr ? Json() : *params, ObjectOf(request));
}

int RunRpc(const Context& context) {
  // As ever, but that message boxes go to the caller: on standard output everything has to be JSON.
  auto platform = std::make_shared<Platform>(*context.platform);
  platform->messageBoxes = std::make_shared<MessageBoxNotifications>(context.out);
  Context club = context;
  club.platform = platform;
  Session session([&] { return club.OpenClub(); });
  Server server(session, context.out);
  server.Serve(context.in);
  // Errors of closing are the command's; the objects' own end would hide them.
  session.Close();
  return kSucceeded;
}

}  // namespace tavi::host
