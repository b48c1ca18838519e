#pragma once

#include <memory>

#include "store/cDatabase.h"

/// The store of each thread: how it comes about, and the slot in which the public objects of the thread share it.
namespace tavi {

/// A new store, without a folder, that knows what is to be brought up to date in a file at its first open.
[[nodiscard]] std::unique_ptr<cDatabase> MakeStore(std::shared_ptr<const Platform> platform);

/// Gives a new store its database folder: "Bridge\Database" in the common documents folder, else in the personal one,
/// else in "C:\My Documents"; the setting "DB Folder" overrides it, machine-wide and then per user. Never fails:
/// problems are written to the diagnostics log and the next step is taken.
void FindDatabaseFolder(cDatabase& store);

/// Puts a store into the calling thread's slot. The one that was there is released, which closes its file.
void SetThreadStore(std::shared_ptr<cDatabase> store);

/// The calling thread's store; keep it for the length of an operation. Raises NoObject on a thread that has none.
std::shared_ptr<cDatabase> ThreadStore();

}  // namespace tavi
