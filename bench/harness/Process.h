#pragma once

#include <string>

namespace tavi::bench {

/// Runs a command of the shell to its end and returns the seconds of processor time that it and its children used.
/// Raises std::runtime_error when it fails.
double RunProcess(const std::string& command);

/// A file's name as the shell takes it.
std::string Quoted(const std::string& path);

/// A program that this build made, beside the one that runs.
std::string BuiltProgram(const std::string& name);

}  // namespace tavi::bench
