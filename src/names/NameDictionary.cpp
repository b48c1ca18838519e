#include "names/NameDictionary.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <numeric>
#include <string>

#include "names/NameSounds.h"

// One slip makes of SMITH a text that shares with it what is left when one letter goes: SMITH without T is SMIH, and
// SMIHT without its last letter is SMIH too. So each form is filed under the hashes of itself and of itself without
// each of its letters, and a name is looked up under as many. Who is found is compared letter by letter.

namespace tavi {
namespace {

/// Of 15,000 surnames some eight entries have the same upper bits, so that they are looked through one by one.
constexpr unsigned kUpperBits = 14;
constexpr unsigned kLowerBits = 32 - kUpperBits;

}  // namespace

SlipIndex::SlipIndex(const NameTable& table) {
  for (std::size_t form = 0; form < table.Size(); ++form) {
    ForEachGap(table.LettersOf(form), [&](std::uint32_t hash) {
      entries_.push_back({hash, static_cast<std::uint32_t>(form)});
    });
  }
  Sort();
}

// By the upper bits in one pass, which is several times as fast as sorting all of them by comparing.
void SlipIndex::Sort() {
  starts_.assign((std::size_t{1} << kUpperBits) + 1, 0);
  for (const Entry& entry : entries_) ++starts_[(entry.hash >> kLowerBits) + 1];
  std::partial_sum(starts_.begin(), starts_.end(), starts_.begin());
  std::vector<std::uint32_t> next = starts_;
  std::vector<Entry> sorted(entries_.size());
  for (const Entry& entry : entries_) sorted[next[entry.hash >> kLowerBits]++] = entry;
  const auto byHash = [](const Entry& left, const Entry& right) {
    return left.hash != right.hash ? left.hash < right.hash : left.form < right.form;
  };
  for (std::size_t bits = 0; bits + 1 < starts_.size(); ++bits) {
    const auto range = std::span(sorted).subspan(starts_[bits], starts_[bits + 1] - starts_[bits]);
    std::sort(range.begin(), range.end(), byHash);
  }
  entries_ = std::move(sorted);
}

std::span<const SlipIndex::Entry> SlipIndex::Find(std::uint32_t hash) const {
  const std::uint32_t bits = hash >> kLowerBits;
  std::uint32_t first = starts_[bits];
  while (first < starts_[bits + 1] && entries_[first].hash < hash) ++first;
  std::uint32_t last = first;
  while (last < starts_[bits + 1] && entries_[last].hash == hash) ++last;
  return std::span<const Entry>(entries_).subspan(first, last - first);
}

}  // namespace tavi

// The family that a name belongs to. Listed names are found by their letters in a sorted list. Any other is compared
// with two groups of forms, which are small enough for a comparison each: those that one slip of the hand may have made
// of it, and those with the same skeleton of consonants. The form at the smallest distance wins, if that is within a
// limit that grows with the number of sounds.

namespace tavi {
namespace {

/// The largest distance at which a name is still taken for a listed one, by the number of its sounds: short names need
/// to be more alike.
int LargestDistance(std::size_t sounds) {
  constexpr std::array<int, 7> kBySounds{120, 120, 120, 120, 150, 180, 200};
  return kBySounds[std::min(sounds, kBySounds.size() - 1)];
}

/// How unlike two names are that one slip makes of each other, by the number of letters: a slip hides more of a short
/// name.
int DistanceOfSlip(std::size_t letters) {
  constexpr std::array<int, 7> kByLetters{80, 80, 80, 80, 80, 70, 60};
  return kByLetters[std::min(letters, kByLetters.size() - 1)];
}

/// First letters are seldom mistyped.
constexpr int kOtherFirstLetter = 20;

constexpr std::size_t kNoForm = static_cast<std::size_t>(-1);

}  // namespace

std::size_t NameTable::HeadOf(std::size_t form) const {
  return *std::prev(std::ranges::upper_bound(heads, form));
}

/// The form most like a name so far.
struct NameDictionary::Nearest {
  const NameTable& table;
  std::string_view letters;
  std::string sounds;
  int distance = 0;
  std::size_t form = kNoForm;

  /// Takes a form that is more like the name; of equally like ones heads before others, then the more common one.
  void Offer(std::size_t other, int otherDistance) {
    if (otherDistance > distance) return;
    const bool isLikeBest = form != kNoForm && otherDistance == distance;
    if (isLikeBest && !IsBefore(other, form)) return;
    distance = otherDistance;
    form = other;
  }

 private:
  [[nodiscard]] bool IsBefore(std::size_t left, std::size_t right) const {
    const bool isLeftHead = table.HeadOf(left) == left;
    const bool isRightHead = table.HeadOf(right) == right;
    return isLeftHead != isRightHead ? isLeftHead : left < right;
  }
};

std::string_view NameDictionary::ListedHeadOf(std::string_view letters) const {
  const auto lettersOf = [this](std::size_t form) { return table_.LettersOf(form); };
  const auto found = std::ranges::lower_bound(table_.byLetters, letters, {}, lettersOf);
  if (found == table_.byLetters.end() || lettersOf(*found) != letters) return {};
  return lettersOf(table_.HeadOf(*found));
}

std::string_view NameDictionary::HeadOf(std::string_view letters) const {
  if (const std::string_view listed = ListedHeadOf(letters); !listed.empty()) return listed;
  // An initial stands for any name that begins with it.
  if (letters.size() < 2) return {};
  Nearest nearest{table_, letters, SoundsOf(letters)};
  nearest.distance = LargestDistance(nearest.sounds.size());
  // Slips first: comparing by sound stops counting at the distance of what they have found.
  CompareBySlip(nearest);
  CompareBySound(nearest);
  return nearest.form != kNoForm ? table_.LettersOf(table_.HeadOf(nearest.form)) : std::string_view();
}

void NameDictionary::CompareBySound(Nearest& nearest) const {
  // Skeletons of forms are not kept: a search in 15,000 forms computes some thirty of them.
  const auto skeletonOf = [this](std::size_t form) { return SkeletonOf(table_.SoundsOf(form)); };
  const std::string skeleton = SkeletonOf(nearest.sounds);
  for (const std::size_t form : std::ranges::equal_range(table_.bySkeleton, skeleton, {}, skeletonOf)) {
    nearest.Offer(form, SoundDistance(nearest.sounds, table_.SoundsOf(form), nearest.distance + 1));
  }
}

void NameDictionary::CompareBySlip(Nearest& nearest) const {
  std::call_once(slipsAreFiled_, [this] { bySlip_ = std::make_unique<const SlipIndex>(table_); });
  bySlip_->ForEachNear(nearest.letters, [&](std::size_t form) {
    const std::string_view letters = table_.LettersOf(form);
    if (!IsOneSlipAway(nearest.letters, letters)) return;
    int slip = DistanceOfSlip(std::max(nearest.letters.size(), letters.size()));
    if (nearest.letters.front() != letters.front()) slip += kOtherFirstLetter;
    nearest.Offer(form, std::min(slip, SoundDistance(nearest.sounds, table_.SoundsOf(form), nearest.distance + 1)));
  });
}

}  // namespace tavi
