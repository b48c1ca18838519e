#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"

namespace tavi::access {

/// Bytes of a structure that was put together from pages, read with a check of each place. A read past the end raises
/// ProviderFailure that names the structure.
class ByteReader {
 public:
  ByteReader(std::span<const std::uint8_t> bytes, std::string what) : bytes_(bytes), what_(std::move(what)) {}

  [[nodiscard]] std::size_t Size() const { return bytes_.size(); }
  template <typename Integer>
  [[nodiscard]] Integer Get(std::size_t offset) const {
    return GetLittle<Integer>(Slice(offset, sizeof(Integer)), 0);
  }
  [[nodiscard]] std::span<const std::uint8_t> Slice(std::size_t offset, std::size_t length) const {
    if (offset > bytes_.size() || length > bytes_.size() - offset) {
      RaiseDamage(what_ + " ends at byte " + std::to_string(bytes_.size()) + ", but something lies at byte " +
                  std::to_string(offset));
    }
    return bytes_.subspan(offset, length);
  }
  [[nodiscard]] const std::string& What() const { return what_; }

 private:
  std::span<const std::uint8_t> bytes_;
  std::string what_;
};

/// Bytes that grow at their end.
class ByteWriter {
 public:
  template <typename Integer>
  void Append(Integer value) {
    const std::size_t at = bytes_.size();
    bytes_.resize(at + sizeof(Integer));
    PutLittle<Integer>(bytes_, at, value);
  }
  void AppendBytes(std::span<const std::uint8_t> source) { bytes_.insert(bytes_.end(), source.begin(), source.end()); }
  void AppendZeros(std::size_t count) { bytes_.resize(bytes_.size() + count); }
  template <typename Integer>
  void Put(std::size_t offset, Integer value) {
    PutLittle<Integer>(bytes_, offset, value);
  }
  [[nodiscard]] std::size_t Size() const { return bytes_.size(); }
  [[nodiscard]] std::vector<std::uint8_t>& Bytes() { return bytes_; }

 private:
  std::vector<std::uint8_t> bytes_;
};

}  // namespace tavi::access
