#pragma once

#include <string>

namespace tavi::host {

/// A text as a field of comma-separated output: between quotes where it needs them, with its line breaks and tabs;
/// other characters that steer a terminal are written as Printable does. What a spreadsheet would run as a formula
/// (IsFormula) has an apostrophe before it, so that it is shown instead.
std::string CsvField(const std::string& text);

/// True for a text that spreadsheets take for a formula: it begins, after any blanks, with = + - @ or a wide form of
/// these, or with a tab or a line break.
bool IsFormula(const std::string& text);

}  // namespace tavi::host
