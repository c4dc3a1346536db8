// The names that a calculation may use without introducing them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace devhost {

// Functions of the language, of the host and of the plug-in, constants included.
std::vector<std::u16string> known_names();

// What somebody may have meant who wrote a name that is not known; empty when nothing is near.
std::u16string nearest_name(std::u16string_view name);

}  // namespace devhost
