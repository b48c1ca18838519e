#pragma once

#include <stdexcept>
#include <string>

namespace tavi::host {

/// The error codes of JSON-RPC 2.0 itself.
enum class RpcCode : int {
  ParseError = -32700,
  InvalidRequest = -32600,
  MethodNotFound = -32601,
  InvalidParams = -32602,
  InternalError = -32603,
};

/// A request that cannot be carried out as it was put. (Errors of the component are tavi::Error.)
class RpcError : public std::runtime_error {
 public:
  RpcError(RpcCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
  [[nodiscard]] RpcCode Code() const { return code_; }

 private:
  RpcCode code_;
};

}  // namespace tavi::host
