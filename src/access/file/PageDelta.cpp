#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <utility>

#include "access/file/Bytes.h"
#include "access/file/LogStatement.h"

// Most statements change few bytes of a page: a row is put in, which pushes others, a count goes up. A delta tells the
// bytes that differ, and of stretches that have only moved where they came from. It is found without looking at how a
// page is built: pages are compared in blocks of 32 bytes, blocks that differ and touch each other are a stretch, and
// in a long stretch one piece is looked for in the old page, up to 512 bytes away in either direction. So an entry that
// is put into a full index page takes a few hundred bytes, mostly of its mask, and not two thousand.
//
// It need not be the shortest delta: a page that has changed too much is logged whole. The cost is a comparison of the
// page, and for long stretches two searches of 1,024 places each.

namespace tavi::access {

namespace {

using Content = std::span<const std::uint8_t, kPageSize>;

constexpr std::size_t kPieceHeadSize = 4;
constexpr std::size_t kSourceSize = 2;
constexpr std::uint16_t kMoved = 0x8000;

// Differences nearer to each other than this are looked at together.
constexpr std::size_t kBlock = 32;
// Equal bytes that are cheaper said again than left out: a new piece costs 4 bytes of its own.
constexpr std::size_t kShortGap = kPieceHeadSize;
// A shorter stretch is not worth looking for elsewhere; rows and index entries move by less than the reach.
constexpr std::size_t kShortestSearched = 48;
constexpr std::size_t kNeedle = 16;
constexpr std::size_t kReach = 512;

struct Stretch {
  std::size_t begin;
  std::size_t end;
};

/// A stretch of the new page whose bytes stood at `from` in the old one.
struct Move {
  Stretch to;
  std::size_t from;
};

void PutHead(std::vector<std::uint8_t>& delta, std::size_t offset, std::size_t length, std::uint16_t kind) {
  const std::size_t at = delta.size();
  delta.resize(at + kPieceHeadSize);
  PutLittle(delta, at, static_cast<std::uint16_t>(offset));
  PutLittle(delta, at + 2, static_cast<std::uint16_t>(length | kind));
}

// The parts of a stretch in which bytes differ, each with its bytes.
void PutBytes(Content before, Content after, Stretch stretch, std::vector<std::uint8_t>& delta) {
  for (std::size_t at = stretch.begin; at < stretch.end;) {
    if (before[at] == after[at]) {
      ++at;
      continue;
    }
    std::size_t last = at;
    for (std::size_t next = at + 1; next < stretch.end && next - last <= kShortGap + 1; ++next) {
      if (before[next] != after[next]) last = next;
    }
    PutHead(delta, at, last + 1 - at, 0);
    delta.insert(delta.end(), after.begin() + static_cast<std::ptrdiff_t>(at),
                 after.begin() + static_cast<std::ptrdiff_t>(last + 1));
    at = last + 1;
  }
}

/// Where the bytes of a place stand in the page as it was, such that as many as can be of the stretch around them stand
/// there too. 16 bytes have to be the same before it is looked further; `needle` itself is left out, as bytes that have
/// not moved are no news.
std::optional<Move> FindMove(Content before, Content after, Stretch stretch, std::size_t needle) {
  std::optional<Move> best;
  const std::size_t first = needle - std::min(needle, kReach);
  const std::size_t last = std::min(needle + kReach, kPageSize - kNeedle);
  for (std::size_t from = first; from <= last; ++from) {
    if (from == needle || std::memcmp(&before[from], &after[needle], kNeedle) != 0) continue;
    std::size_t below = 0;
    while (needle - below > stretch.begin && from > below && after[needle - below - 1] == before[from - below - 1])
      ++below;
    std::size_t above = kNeedle;
    while (needle + above < stretch.end && from + above < kPageSize && after[needle + above] == before[from + above])
      ++above;
    if (!best || above + below > best->to.end - best->to.begin)
      best = Move{{needle - below, needle + above}, from - below};
  }
  return best;
}

/// What is told by bytes: the parts of the stretch before and behind the one that moved.
std::vector<std::uint8_t> WithMove(Content before, Content after, Stretch stretch, const Move& move) {
  std::vector<std::uint8_t> delta;
  PutBytes(before, after, {stretch.begin, move.to.begin}, delta);
  PutHead(delta, move.to.begin, move.to.end - move.to.begin, kMoved);
  delta.resize(delta.size() + kSourceSize);
  PutLittle(delta, delta.size() - kSourceSize, static_cast<std::uint16_t>(move.from));
  PutBytes(before, after, {move.to.end, stretch.end}, delta);
  return delta;
}

// What was put in pushes what follows it up, what was taken out lets it come down; so it is looked for from the end of
// the stretch, and from its beginning.
void PutStretch(Content before, Content after, Stretch stretch, std::vector<std::uint8_t>& delta) {
  // Blocks are wider than what differs in them. Some byte does, so this ends.
  while (before[stretch.begin] == after[stretch.begin]) ++stretch.begin;
  while (before[stretch.end - 1] == after[stretch.end - 1]) --stretch.end;
  std::vector<std::uint8_t> shortest;
  PutBytes(before, after, stretch, shortest);
  if (shortest.size() >= kShortestSearched && stretch.end - stretch.begin >= kShortestSearched) {
    for (const std::size_t needle : {stretch.end - kNeedle, stretch.begin}) {
      const std::optional<Move> move = FindMove(before, after, stretch, needle);
      if (!move) continue;
      std::vector<std::uint8_t> moved = WithMove(before, after, stretch, *move);
      if (moved.size() < shortest.size()) shortest = std::move(moved);
    }
  }
  delta.insert(delta.end(), shortest.begin(), shortest.end());
}

struct Piece {
  std::size_t offset;
  std::size_t length;
  bool isMoved;
  std::span<const std::uint8_t> content;
};

/// The piece at the start of the bytes, which are cut off there; nothing when none stands there that lies in the page.
/// Deltas come from files, so every number is held against the page and against the bytes that are left.
std::optional<Piece> TakePiece(std::span<const std::uint8_t>& delta) {
  if (delta.size() < kPieceHeadSize) return std::nullopt;
  const auto word = GetLittle<std::uint16_t>(delta, 2);
  Piece piece{GetLittle<std::uint16_t>(delta, 0), static_cast<std::size_t>(word & ~kMoved), (word & kMoved) != 0, {}};
  const std::size_t size = piece.isMoved ? kSourceSize : piece.length;
  delta = delta.subspan(kPieceHeadSize);
  if (piece.length == 0 || piece.offset + piece.length > kPageSize || size > delta.size()) return std::nullopt;
  piece.content = delta.first(size);
  delta = delta.subspan(size);
  if (piece.isMoved && GetLittle<std::uint16_t>(piece.content, 0) + piece.length > kPageSize) return std::nullopt;
  return piece;
}

}  // namespace

// Blocks first: memcmp of 32 bytes passes over what is equal, nearly all of a page, many times as fast as byte by byte.
std::vector<std::uint8_t> DeltaBetween(Content before, Content after) {
  std::vector<std::uint8_t> delta;
  const auto differs = [&](std::size_t at) { return std::memcmp(&before[at], &after[at], kBlock) != 0; };
  for (std::size_t at = 0; at < kPageSize; at += kBlock) {
    if (!differs(at)) continue;
    const std::size_t begin = at;
    while (at < kPageSize && differs(at)) at += kBlock;
    PutStretch(before, after, {begin, at}, delta);
  }
  return delta;
}

bool IsDelta(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    if (!TakePiece(bytes)) return false;
  }
  return true;
}

void ApplyDelta(std::span<const std::uint8_t> delta, std::span<std::uint8_t, kPageSize> page) {
  std::array<std::uint8_t, kPageSize> before{};
  // Moved pieces are taken from the page as it was: pieces before them may have been written over their source.
  std::copy(page.begin(), page.end(), before.begin());
  while (const std::optional<Piece> piece = TakePiece(delta)) {
    std::span<const std::uint8_t> content = piece->content;
    if (piece->isMoved) content = std::span(before).subspan(GetLittle<std::uint16_t>(content, 0), piece->length);
    std::copy(content.begin(), content.end(), page.begin() + static_cast<std::ptrdiff_t>(piece->offset));
  }
}

}  // namespace tavi::access
