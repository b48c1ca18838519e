#include "host/text/CsvField.h"

#include <string_view>

#include "host/text/Table.h"
#include "platform/values/Text.h"

namespace tavi::host {
namespace {

constexpr std::u32string_view kFormulaBegins = U"=+-@\uFF1D\uFF0B\uFF0D\uFF20";
constexpr std::u32string_view kLayout = U"\t\r\n";

}  // namespace

bool IsFormula(const std::string& text) {
  for (const char32_t c : ToCodePoints(text)) {
    if (c != U' ') return kFormulaBegins.find(c) != kFormulaBegins.npos || kLayout.find(c) != kLayout.npos;
  }
  return false;
}

std::string CsvField(const std::string& text) {
  std::string field = IsFormula(text) ? "'" : "";
  bool needsQuotes = text.starts_with(' ') || text.ends_with(' ');
  for (const char32_t c : ToCodePoints(text)) {
    const std::string character = FromCodePoints(std::u32string(1, c));
    const bool isLayout = kLayout.find(c) != kLayout.npos;
    needsQuotes = needsQuotes || isLayout || c == U',' || c == U'"';
    field += c == U'"' ? "\"\"" : isLayout ? character : Printable(character);
  }
  return needsQuotes ? "\"" + field + "\"" : field;
}

}  // namespace tavi::host
