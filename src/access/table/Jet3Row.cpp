#include "access/table/Jet3Row.h"

#include "access/file/Format.h"

namespace tavi::access {

namespace {

namespace jet3_row = format::jet3::row;

/// Places of the trailer's parts, as offsets in the row.
struct Trailer {
  std::size_t variableCount = 0;  // columns, not a place
  std::size_t lastJump = 0;       // of the first entry of the jump table; the others lie below
  std::size_t jumpCount = 0;
  std::size_t firstOffset = 0;  // of column 0; the others lie below, the end of the data last
};

std::optional<Trailer> FindTrailer(std::span<const std::uint8_t> row, std::size_t maskSize) {
  if (row.size() < maskSize + jet3_row::kVariableCountSize + jet3_row::kColumnCountSize) return std::nullopt;
  Trailer trailer;
  const std::size_t countPlace = row.size() - maskSize - jet3_row::kVariableCountSize;
  trailer.variableCount = row[countPlace];
  const std::size_t jumps = (row.size() - 1) / jet3_row::kJumpStep;
  const std::size_t size = jumps + trailer.variableCount + 1;
  if (countPlace < size + jet3_row::kColumnCountSize) return std::nullopt;
  trailer.lastJump = countPlace - 1;
  trailer.firstOffset = countPlace - jumps - 1;
  // The last entry is a dummy where the data end before the offset that it would be for.
  const bool hasDummy = (trailer.firstOffset - trailer.variableCount) / jet3_row::kJumpStep < jumps;
  trailer.jumpCount = hasDummy ? jumps - 1 : jumps;
  return trailer;
}

std::size_t OffsetOf(std::span<const std::uint8_t> row, const Trailer& trailer, std::size_t variableIndex) {
  std::size_t offset = row[trailer.firstOffset - variableIndex];
  for (std::size_t i = 0; i < trailer.jumpCount; ++i) {
    if (row[trailer.lastJump - i] <= variableIndex) offset += jet3_row::kJumpStep;
  }
  return offset;
}

}  // namespace

std::optional<Jet3Extent> FindJet3Variable(std::span<const std::uint8_t> row, std::size_t maskSize,
                                           std::size_t variableIndex) {
  const std::optional<Trailer> trailer = FindTrailer(row, maskSize);
  if (!trailer || variableIndex >= trailer->variableCount) return std::nullopt;
  return Jet3Extent{OffsetOf(row, *trailer, variableIndex), OffsetOf(row, *trailer, variableIndex + 1)};
}

std::size_t Jet3VariableCount(std::span<const std::uint8_t> row, std::size_t maskSize) {
  const std::optional<Trailer> trailer = FindTrailer(row, maskSize);
  return trailer ? trailer->variableCount : 0;
}

}  // namespace tavi::access
