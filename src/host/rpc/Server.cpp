#include "host/rpc/Server.h"

#include <algorithm>
#include <ostream>

#include "host/rpc/RequestText.h"
#include "host/rpc/RpcError.h"
#include "host/text/Table.h"
#include "platform/values/Error.h"

namespace tavi::host {
namespace {

void WriteLine(std::ostream& out, const Json& json) {
  out << PrintableJson(json.dump(-1, ' ', false, Json::error_handler_t::replace)) << '\n' << std::flush;
}

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

bool IsId(const Json& id) {
  return id.is_string() || id.is_number() || id.is_null();
}

/// The request's id, as far as it has a proper one.
Json IdOf(const Json& request) {
  if (!request.is_object()) return nullptr;
  const auto id = request.find("id");
  return id == request.end() || !IsId(*id) ? Json() : *id;
}

[[noreturn]] void RefuseRequest(const std::string& problem) {
  throw RpcError(RpcCode::InvalidRequest, "Invalid request: " + problem);
}

void RequireRequest(const Json& request) {
  if (!request.is_object()) RefuseRequest("a JSON object is expected");
  const auto version = request.find("jsonrpc");
  if (version == request.end() || *version != "2.0") RefuseRequest(R"("jsonrpc" must be "2.0")");
  const auto method = request.find("method");
  if (method == request.end() || !method->is_string()) RefuseRequest("\"method\" must be the name of an operation");
  const auto id = request.find("id");
  if (id != request.end() && !IsId(*id)) RefuseRequest("\"id\" must be a text, a number or null");
  const auto params = request.find("params");
  const bool isGiven = params != request.end() && !params->is_null();
  if (isGiven && !params->is_structured()) RefuseRequest("\"params\" must be an object or an array");
}

/// The number of the object that a request is for.
std::int32_t ObjectOf(const Json& request) {
  const auto object = request.find("object");
  std::int32_t number = 1;
  if (object == request.end() || object->is_null()) return number;
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
  if (IsBlankLine(line)) return;
  std::optional<Json> reply;
  try {
    const Json json = ParseRequest(line);
    reply = json.is_array() ? AnswerAll(json) : Answer(json);
  } catch (const RpcError& problem) {
    reply = ErrorReply(nullptr, problem.Code(), problem.what());
  } catch (const std::exception& problem) {
    reply = ErrorReply(nullptr, RpcCode::InternalError, std::string("Internal error: ") + problem.what());
  }
  if (reply) WriteLine(out_, *reply);
}

void Server::Serve(std::istream& in) {
  std::string line;
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
  Json replies = Json::array();
  for (const Json& request : batch) {
    if (std::optional<Json> reply = Answer(request)) replies.push_back(std::move(*reply));
  }
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
  if (!request.contains("id")) return std::nullopt;
  return reply;
}

Json Server::CallFor(const Json& request) {
  const auto params = request.find("params");
  return session_.Call(request.at("method").get<std::string>(), params == request.end() ? Json() : *params,
                       ObjectOf(request));
}

}  // namespace tavi::host
