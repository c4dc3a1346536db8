// What the program asks the system that it runs on.
#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace devhost {

enum class Channel { kInput, kOutput, kErrors };

// Makes the three channels carry bytes as they are, UTF-8, and gives the words of the command line
// in UTF-8, the program's name left out.
std::vector<std::string> start_program(std::span<char*> arguments);

// The program's own file, links resolved.
std::filesystem::path program_file();

// The folder for what a program keeps between its runs, without the program's name; empty when
// there is none.
std::filesystem::path state_folder();

bool is_terminal(Channel channel);

// In columns; 0 when the output is no terminal.
int terminal_width();

// From here on a request to stop, Ctrl-C, is only noted and ends a wait for input.
void note_interrupts();

// Whether there was a request since the last time this was asked.
bool was_interrupted();

}  // namespace devhost
