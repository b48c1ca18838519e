#pragma once

#include <exception>
#include <new>

#include "access/file/EngineError.h"
#include "platform/values/Error.h"

namespace tavi::access {

/// Runs what a caller of the provider asked for. All errors that leave it have the engine's source; those that are none
/// of ours (memory, the standard library) become ProviderFailure.
template <typename Work>
auto AsProvider(const Work& work) -> decltype(work()) {
  try {
    return work();
  } catch (const Error& error) {
    if (error.Source() == kErrorSource) throw;
    throw Error(error.Number(), kErrorSource, error.Description());
  } catch (const std::bad_alloc&) {
    RaiseFailure("There is not enough memory for the statement.");
  } catch (const std::exception& exception) {
    RaiseFailure(std::string("The statement failed inside the database engine: ") + exception.what() + ".");
  }
}

}  // namespace tavi::access
