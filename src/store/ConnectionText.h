#pragma once

#include <string>

namespace tavi {

/// The text by which the database provider opens a file. Raises InvalidArgument (source "cDatabase") for a path that
/// cannot be written there.
std::string ConnectionText(const std::string& path);

}  // namespace tavi
