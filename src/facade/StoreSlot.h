#pragma once

#include <memory>

#include "store/cDatabase.h"

/// The store of each thread: one slot, which the public objects of the thread share.
namespace tavi {

/// Puts a store into the calling thread's slot. The one that was there is released, which closes its file.
void SetThreadStore(std::shared_ptr<cDatabase> store);

/// The calling thread's store; keep it for the length of an operation. Raises NoObject on a thread that has none.
std::shared_ptr<cDatabase> ThreadStore();

}  // namespace tavi
