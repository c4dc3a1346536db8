// Random numbers that nobody can guess.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace engine::system {

// Throws std::runtime_error when the system gives none.
void fill_random(std::span<char> bytes);

// Letters and digits for a name that nobody else has.
inline std::string random_letters(std::size_t count) {
  constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz012345";
  std::string letters(count, '\0');
  fill_random(letters);
  for (char& letter : letters)
    letter = kLetters[static_cast<unsigned char>(letter) % kLetters.size()];
  return letters;
}

}  // namespace engine::system
