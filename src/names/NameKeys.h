#pragma once

#include <string>
#include <string_view>

namespace tavi {

/// Sound-alike keys of names: writings that are usually one name ("Stephen" and "Steven", "MacLeod" and "McCloud") have
/// equal keys, different names seldom do. A key is at most 50 ASCII characters, empty only for a name of nothing but
/// blanks, and depends on the name alone. Keys are stored in clubs' files: changing a rule here makes stored members
/// unfindable until their keys are made anew.
std::string SurnameKey(std::string_view name);
/// Also takes common short forms of English first names for the full ones ("Bill" for "William").
std::string FirstNameKey(std::string_view name);

}  // namespace tavi
