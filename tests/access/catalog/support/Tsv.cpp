#include "access/catalog/support/Tsv.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <vector>

#include "platform/values/Convert.h"
#include "platform/values/Date.h"
#include "platform/values/Text.h"

namespace tavi::access::test {

namespace {

std::string Hex(std::span<const std::uint8_t> bytes) {
  std::string text;
  std::array<char, 3> digits{};
  for (const std::uint8_t byte : bytes) {
    std::snprintf(digits.data(), digits.size(), "%02x", byte);
    text += digits.data();
  }
  return text;
}

std::string BytesField(const Bytes& bytes) {
  return bytes.size() > 256 ? "sha256:" + Sha256(bytes) : Hex(bytes);
}

/// Whether code point `at` is a surrogate without its partner.
bool IsSurrogate(char32_t point) {
  return point >= 0xD800 && point <= 0xDFFF;
}

std::string TextField(const std::string& text) {
  std::string out;
  for (const char32_t point : ToCodePoints(text)) {
    std::array<char, 8> escaped{};
    if (point == U'\\') {
      out += "\\\\";
    } else if (point == U'\t') {
      out += "\\t";
    } else if (point == U'\n') {
      out += "\\n";
    } else if (point == U'\r') {
      out += "\\r";
    } else if (point == 0) {
      out += "\\0";
    } else if (IsSurrogate(point)) {
      std::snprintf(escaped.data(), escaped.size(), "\\u%04x", static_cast<unsigned>(point));
      out += escaped.data();
    } else {
      out += FromCodePoints(std::u32string(1, point));
    }
  }
  return out;
}

template <typename Number>
std::string FloatField(Number number) {
  if (std::isnan(number)) return "nan";
  if (std::isinf(number)) return number < 0 ? "-inf" : "inf";
  if (number == 0) return "0";
  const double size = std::abs(static_cast<double>(number));
  std::array<char, 64> buffer{};
  const auto style = size >= 1e-5 && size < 1e16 ? std::chars_format::fixed : std::chars_format::scientific;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, style).ptr;
  std::string text(buffer.data(), end);
  const std::size_t exponent = text.find('e');
  if (exponent == std::string::npos) return text;
  const int power = std::stoi(text.substr(exponent + 1));
  return text.substr(0, exponent) + "e" + std::to_string(power);
}

std::string DateField(Date date) {
  double day = std::trunc(date.days);
  auto seconds = static_cast<int>(std::floor((std::abs(date.days) - std::abs(day)) * 86400 + 0.5));
  if (seconds >= 86400) {
    seconds -= 86400;
    day += 1;
  }
  const CivilDay civil = Date{day}.Civil();
  std::array<char, 64> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02dT%02d:%02d:%02d", civil.year, civil.month, civil.day,
                seconds / 3600, seconds / 60 % 60, seconds % 60);
  return buffer.data();
}

constexpr std::array<std::uint32_t, 64> kRounds = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

void AddBlock(std::array<std::uint32_t, 8>& state, std::span<const std::uint8_t> block) {
  std::array<std::uint32_t, 64> w{};
  for (std::size_t i = 0; i < 16; ++i) {
    for (std::size_t j = 0; j < 4; ++j) w[i] = (w[i] << 8U) | block[i * 4 + j];
  }
  for (std::size_t i = 16; i < 64; ++i) {
    const std::uint32_t s0 = std::rotr(w[i - 15], 7) ^ std::rotr(w[i - 15], 18) ^ (w[i - 15] >> 3U);
    const std::uint32_t s1 = std::rotr(w[i - 2], 17) ^ std::rotr(w[i - 2], 19) ^ (w[i - 2] >> 10U);
    w[i] = w[i - 16] + s0 + w[i - 7] + s1;
  }
  std::array<std::uint32_t, 8> v = state;
  for (std::size_t i = 0; i < 64; ++i) {
    const std::uint32_t s1 = std::rotr(v[4], 6) ^ std::rotr(v[4], 11) ^ std::rotr(v[4], 25);
    const std::uint32_t t1 = v[7] + s1 + ((v[4] & v[5]) ^ (~v[4] & v[6])) + kRounds[i] + w[i];
    const std::uint32_t s0 = std::rotr(v[0], 2) ^ std::rotr(v[0], 13) ^ std::rotr(v[0], 22);
    const std::uint32_t t2 = s0 + ((v[0] & v[1]) ^ (v[0] & v[2]) ^ (v[1] & v[2]));
    v = {t1 + t2, v[0], v[1], v[2], v[3] + t1, v[4], v[5], v[6]};
  }
  for (std::size_t i = 0; i < 8; ++i) state[i] += v[i];
}

}  // namespace

std::string Sha256(std::span<const std::uint8_t> bytes) {
  std::array<std::uint32_t, 8> state = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                        0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  std::vector<std::uint8_t> padded(bytes.begin(), bytes.end());
  padded.push_back(0x80);
  while (padded.size() % 64 != 56) padded.push_back(0);
  const std::uint64_t bits = std::uint64_t{bytes.size()} * 8;
  for (unsigned shift = 64; shift > 0; shift -= 8) padded.push_back(static_cast<std::uint8_t>(bits >> (shift - 8)));
  for (std::size_t at = 0; at < padded.size(); at += 64) AddBlock(state, std::span(padded).subspan(at, 64));
  std::array<char, 65> text{};
  for (std::size_t i = 0; i < 8; ++i) std::snprintf(text.data() + i * 8, 9, "%08x", state[i]);
  return text.data();
}

std::string TsvField(const Value& value) {
  struct Visitor {
    std::string operator()(Null) const { return "\\N"; }
    std::string operator()(bool flag) const { return flag ? "true" : "false"; }
    std::string operator()(std::uint8_t number) const { return std::to_string(number); }
    std::string operator()(std::int16_t number) const { return std::to_string(number); }
    std::string operator()(std::int32_t number) const { return std::to_string(number); }
    std::string operator()(float number) const { return FloatField(number); }
    std::string operator()(double number) const { return FloatField(number); }
    std::string operator()(Currency amount) const { return CurrencyText(amount); }
    std::string operator()(const Decimal& number) const { return DecimalText(number); }
    std::string operator()(Date date) const { return DateField(date); }
    std::string operator()(const std::string& text) const { return TextField(text); }
    std::string operator()(const Bytes& bytes) const { return BytesField(bytes); }
    std::string operator()(const Guid& guid) const { return GuidText(guid); }
  };
  return std::visit(Visitor(), value);
}

}  // namespace tavi::access::test
