#include "names/NameDictionary.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "names/NameSounds.h"
#include "names/SoundDistance.h"

namespace tavi {
namespace {

constexpr unsigned kUpperBits = 14;
constexpr unsigned kLowerBits = 32 - kUpperBits;

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

std::uint32_t HashOf(std::string_view text, std::uint32_t hash = 2166136261U) {
  for (const char character : text) hash = (hash ^ static_cast<unsigned char>(character)) * 16777619U;
  return hash;
}

/// Calls `visit` with the hash of the text and of the text without one of its letters, for each of them.
template <typename Visitor>
void ForEachGap(std::string_view text, const Visitor& visit) {
  visit(HashOf(text));
  std::uint32_t before = HashOf({});
  for (std::size_t position = 0; position < text.size(); ++position) {
    // Without the first or the second of a double letter is the same.
    if (position == 0 || text[position] != text[position - 1]) visit(HashOf(text.substr(position + 1), before));
    before = HashOf(text.substr(position, 1), before);
  }
}

/// Calls `visit` for each piece between separators that is not empty.
template <typename Visitor>
void ForEachPiece(std::string_view text, char separator, const Visitor& visit) {
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find(separator, start), text.size());
    if (end > start) visit(text.substr(start, end - start));
    start = end + 1;
  }
}

}  // namespace

void NameDictionary::Index::Add(std::uint32_t hash, std::size_t form) {
  entries_.push_back({hash, static_cast<std::uint32_t>(form)});
}

void NameDictionary::Index::Sort() {
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

std::span<const NameDictionary::Index::Entry> NameDictionary::Index::Find(std::uint32_t hash) const {
  const std::uint32_t bits = hash >> kLowerBits;
  std::uint32_t first = starts_[bits];
  while (first < starts_[bits + 1] && entries_[first].hash < hash) ++first;
  std::uint32_t last = first;
  while (last < starts_[bits + 1] && entries_[last].hash == hash) ++last;
  return std::span<const Entry>(entries_).subspan(first, last - first);
}

/// The form most like a name so far.
struct NameDictionary::Nearest {
  std::string_view letters;
  std::string sounds;
  int distance = 0;
  const Form* form = nullptr;

  /// Takes a form that is more like the name; of equally like ones heads before others, then the more common one.
  void Offer(const Form& other, int otherDistance) {
    if (otherDistance > distance) return;
    const bool isLikeBest = form != nullptr && otherDistance == distance;
    if (isLikeBest && !IsBefore(other, *form)) return;
    distance = otherDistance;
    form = &other;
  }

 private:
  static bool IsBefore(const Form& left, const Form& right) {
    return left.isHead != right.isHead ? left.isHead : &left < &right;
  }
};

NameDictionary::NameDictionary(std::span<const std::span<const std::string_view>> tables, Letters letters) {
  for (const auto& table : tables) {
    for (const std::string_view row : table) {
      ForEachPiece(row, ' ', [&](std::string_view family) { ReadFamily(family, letters); });
    }
  }
  FileForms();
}

void NameDictionary::ReadFamily(std::string_view family, Letters letters) {
  const auto number = static_cast<std::uint32_t>(heads_.size());
  ForEachPiece(family, '/', [&](std::string_view name) {
    std::string plain = letters(name);
    const bool isHead = heads_.size() == number;
    if (isHead) heads_.push_back(plain);
    std::string sounds = SoundsOf(plain);
    forms_.push_back({std::move(plain), std::move(sounds), number, isHead});
  });
}

void NameDictionary::FileForms() {
  for (std::size_t number = 0; number < forms_.size(); ++number) {
    const Form& form = forms_[number];
    byLetters_.Add(HashOf(form.letters), number);
    bySkeleton_.Add(HashOf(SkeletonOf(form.sounds)), number);
    ForEachGap(form.letters, [&](std::uint32_t hash) { bySlip_.Add(hash, number); });
  }
  byLetters_.Sort();
  bySkeleton_.Sort();
  bySlip_.Sort();
}

std::string_view NameDictionary::ListedHeadOf(std::string_view letters) const {
  for (const Index::Entry& entry : byLetters_.Find(HashOf(letters))) {
    const Form& form = forms_[entry.form];
    if (form.letters == letters) return heads_[form.family];
  }
  return {};
}

std::string_view NameDictionary::HeadOf(std::string_view letters) const {
  if (const std::string_view listed = ListedHeadOf(letters); !listed.empty()) return listed;
  // An initial stands for any name that begins with it.
  if (letters.size() < 2) return {};
  Nearest nearest{letters, SoundsOf(letters), 0, nullptr};
  nearest.distance = LargestDistance(nearest.sounds.size());
  CompareBySlip(nearest);
  CompareBySound(nearest);
  return nearest.form != nullptr ? std::string_view(heads_[nearest.form->family]) : std::string_view();
}

void NameDictionary::CompareBySound(Nearest& nearest) const {
  for (const Index::Entry& entry : bySkeleton_.Find(HashOf(SkeletonOf(nearest.sounds)))) {
    const Form& form = forms_[entry.form];
    nearest.Offer(form, SoundDistance(nearest.sounds, form.sounds, nearest.distance + 1));
  }
}

void NameDictionary::CompareBySlip(Nearest& nearest) const {
  ForEachGap(nearest.letters, [&](std::uint32_t hash) { CompareBySlip(nearest, hash); });
}

void NameDictionary::CompareBySlip(Nearest& nearest, std::uint32_t hash) const {
  for (const Index::Entry& entry : bySlip_.Find(hash)) {
    const Form& form = forms_[entry.form];
    if (!IsOneSlipAway(nearest.letters, form.letters)) continue;
    int slip = DistanceOfSlip(std::max(nearest.letters.size(), form.letters.size()));
    if (nearest.letters.front() != form.letters.front()) slip += kOtherFirstLetter;
    nearest.Offer(form, std::min(slip, SoundDistance(nearest.sounds, form.sounds, nearest.distance + 1)));
  }
}

}  // namespace tavi
