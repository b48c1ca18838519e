// The words for types. Access knows several for each, from its own tables, from its provider and from standard SQL;
// INTEGER is the 32-bit one, FLOAT the double one. Sizes that are left out:
//
//   Text 255 characters, Binary 510 bytes, Decimal 18 digits without decimals
#include <algorithm>

#include "access/sql/parse/Parser.h"

namespace tavi::access::sql {
namespace {

/// What may stand in brackets behind the word.
enum class Size { None, Length, Digits, Seed };

struct TypeWord {
  std::string_view word;
  ColumnType type;
  Size size = Size::None;
};

// CHAR is a text like all others, of which only what is written is stored.
constexpr TypeWord kTypeWords[] = {
    {"BIT", ColumnType::Boolean},
    {"YESNO", ColumnType::Boolean},
    {"BOOLEAN", ColumnType::Boolean},
    {"LOGICAL", ColumnType::Boolean},
    {"BYTE", ColumnType::Byte},
    {"TINYINT", ColumnType::Byte},
    {"INTEGER1", ColumnType::Byte},
    {"SHORT", ColumnType::Integer},
    {"SMALLINT", ColumnType::Integer},
    {"INTEGER2", ColumnType::Integer},
    {"LONG", ColumnType::Long},
    {"INTEGER", ColumnType::Long},
    {"INT", ColumnType::Long},
    {"INTEGER4", ColumnType::Long},
    {"COUNTER", ColumnType::Long, Size::Seed},
    {"AUTOINCREMENT", ColumnType::Long, Size::Seed},
    {"IDENTITY", ColumnType::Long, Size::Seed},
    {"CURRENCY", ColumnType::Currency},
    {"MONEY", ColumnType::Currency},
    {"SINGLE", ColumnType::Single},
    {"REAL", ColumnType::Single},
    {"FLOAT4", ColumnType::Single},
    {"DOUBLE", ColumnType::Double},
    {"FLOAT", ColumnType::Double},
    {"NUMBER", ColumnType::Double},
    {"FLOAT8", ColumnType::Double},
    {"DATE", ColumnType::Date},
    {"TIME", ColumnType::Date},
    {"DATETIME", ColumnType::Date},
    {"TIMESTAMP", ColumnType::Date},
    {"TEXT", ColumnType::Text, Size::Length},
    {"CHAR", ColumnType::Text, Size::Length},
    {"CHARACTER", ColumnType::Text, Size::Length},
    {"VARCHAR", ColumnType::Text, Size::Length},
    {"NCHAR", ColumnType::Text, Size::Length},
    {"NVARCHAR", ColumnType::Text, Size::Length},
    {"STRING", ColumnType::Text, Size::Length},
    {"ALPHANUMERIC", ColumnType::Text, Size::Length},
    {"MEMO", ColumnType::Memo},
    {"LONGTEXT", ColumnType::Memo},
    {"NOTE", ColumnType::Memo},
    {"LONGCHAR", ColumnType::Memo},
    {"BINARY", ColumnType::Binary, Size::Length},
    {"VARBINARY", ColumnType::Binary, Size::Length},
    {"LONGBINARY", ColumnType::Ole},
    {"OLEOBJECT", ColumnType::Ole},
    {"IMAGE", ColumnType::Ole},
    {"GENERAL", ColumnType::Ole},
    {"GUID", ColumnType::Guid},
    {"UNIQUEIDENTIFIER", ColumnType::Guid},
    {"DECIMAL", ColumnType::Numeric, Size::Digits},
    {"DEC", ColumnType::Numeric, Size::Digits},
    {"NUMERIC", ColumnType::Numeric, Size::Digits},
};

// The most that the file's format has room for.
constexpr std::int32_t kLongestText = 255;
constexpr std::int32_t kLongestBinary = 510;
constexpr std::int32_t kMaximumPrecision = 28;

/// DOUBLE PRECISION is the one type of two words.
const TypeWord& ReadTypeWord(TokenStream& stream) {
  const auto* word = std::find_if(std::begin(kTypeWords), std::end(kTypeWords),
                                  [&](const TypeWord& known) { return stream.Peek().IsWord(known.word); });
  if (word == std::end(kTypeWords)) stream.FailExpecting("a data type (such as TEXT, LONG, DOUBLE or DATE)");
  stream.Take();
  if (word->word == "DOUBLE") stream.TakeWord("PRECISION");
  return *word;
}

/// A length that is left out is the greatest. Of texts it counts characters, of bytes bytes.
void ReadLength(TokenStream& stream, ColumnDesign& column) {
  const std::int32_t highest = column.type == ColumnType::Text ? kLongestText : kLongestBinary;
  column.length = static_cast<std::uint16_t>(highest);
  if (!stream.TakeSymbol("(")) return;
  column.length = static_cast<std::uint16_t>(stream.ExpectNumber("the column's length", 1, highest));
  stream.ExpectSymbol(")");
}

/// The decimals are some of the digits, and cannot be more.
void ReadDigits(TokenStream& stream, ColumnDesign& column) {
  if (!stream.TakeSymbol("(")) return;
  column.precision = static_cast<std::uint8_t>(stream.ExpectNumber("the number of digits", 1, kMaximumPrecision));
  if (stream.TakeSymbol(",")) {
    column.scale = static_cast<std::uint8_t>(stream.ExpectNumber("the number of decimals", 0, column.precision));
  }
  stream.ExpectSymbol(")");
}

/// COUNTER (1, 1): the only start and step there are.
void ReadSeed(TokenStream& stream) {
  if (!stream.TakeSymbol("(")) return;
  stream.ExpectNumber("the first automatic number", 1, 1);
  if (stream.TakeSymbol(",")) stream.ExpectNumber("the step of automatic numbers", 1, 1);
  stream.ExpectSymbol(")");
}

}  // namespace

// Raises at the word or number that does not fit. Types without sizes leave a bracket behind them to whoever reads on,
// who refuses it.
void ReadColumnType(TokenStream& stream, ColumnDesign& column) {
  const TypeWord& word = ReadTypeWord(stream);
  column.type = word.type;
  if (word.size == Size::Length) ReadLength(stream, column);
  if (word.size == Size::Digits) ReadDigits(stream, column);
  if (word.size == Size::Seed) {
    column.autoNumber = true;
    ReadSeed(stream);
  }
}

}  // namespace tavi::access::sql
