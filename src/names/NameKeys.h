#pragma once

#include <string>
#include <string_view>

#include "platform/Platform.h"

namespace tavi {

/// Keys of names: writings that are usually one name ("Stephen" and "Steven", "MacLeod" and "McCloud", "Smiht" and
/// "Smith") have equal keys, different names seldom do. docs/name-keys.md says what counts as the same name.
///
/// A key is at most 50 capital letters A to Z and digits, and depends on the name alone: not on case, accents, blanks,
/// hyphens or apostrophes. It is empty only for a text without any character but blanks. Any bytes will do as name.
/// Keys are stored in clubs' files and compared with fresh ones: changing a rule or a table here changes keys, so that
/// members are not found until every club's file has been brought up to date.
///
/// The first use of each makes a dictionary (some milliseconds); any number of threads may call both at once.
std::string SurnameKey(std::string_view name);
/// Also takes short and pet forms of first names for the full ones ("Bill" for "William").
std::string FirstNameKey(std::string_view name);

/// True when a first name is listed as a short or pet form of another one, or of what that is another form of: "Bill"
/// of "William", "Kate" of "Katherine", but neither "Catherine" of "Katherine" nor "Jacky" of "Jackie".
bool IsShortFormOf(std::string_view shortName, std::string_view fullName);

/// The same as the platform's name-key service.
class OwnNameKeys : public NameKeyService {
 public:
  [[nodiscard]] std::string Key(NameKeyMode mode, std::string_view name) const override {
    return mode == NameKeyMode::Surname ? SurnameKey(name) : FirstNameKey(name);
  }
};

}  // namespace tavi
