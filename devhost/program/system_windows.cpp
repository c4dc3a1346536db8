#include <fcntl.h>
#include <io.h>
#include <windows.h>
// After the header above, which it needs.
#include <shellapi.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "devhost/fm/unicode.h"
#include "devhost/program/system.h"

namespace devhost {
namespace {

std::atomic<bool> g_interrupted = false;

struct FreeLocal {
  void operator()(void* memory) const { LocalFree(memory); }
};

HANDLE handle_of(Channel channel) {
  switch (channel) {
    case Channel::kInput:
      return GetStdHandle(STD_INPUT_HANDLE);
    case Channel::kOutput:
      return GetStdHandle(STD_OUTPUT_HANDLE);
    case Channel::kErrors:
      return GetStdHandle(STD_ERROR_HANDLE);
  }
  return INVALID_HANDLE_VALUE;
}

}  // namespace

// The words that a program is started with are in an encoding that lacks most characters, so they
// are taken from the command line anew.
std::vector<std::string> start_program(std::span<char*> /*arguments*/) {
  for (std::FILE* const channel : {stdin, stdout, stderr}) _setmode(_fileno(channel), _O_BINARY);
  SetConsoleCP(CP_UTF8);
  SetConsoleOutputCP(CP_UTF8);
  int count = 0;
  const std::unique_ptr<wchar_t*[], FreeLocal> words(CommandLineToArgvW(GetCommandLineW(), &count));
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(utf8_from_path(words[i]));
  return arguments;
}

std::filesystem::path program_file() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (size < path.size()) return path.substr(0, size);
    path.resize(2 * path.size());
  }
}

std::filesystem::path state_folder() {
  const wchar_t* const folder = _wgetenv(L"LOCALAPPDATA");
  return folder == nullptr ? L"" : folder;
}

bool is_terminal(Channel channel) {
  DWORD mode = 0;
  return GetConsoleMode(handle_of(channel), &mode) != 0;
}

int terminal_width() {
  CONSOLE_SCREEN_BUFFER_INFO about{};
  if (GetConsoleScreenBufferInfo(handle_of(Channel::kOutput), &about) == 0) return 0;
  return about.srWindow.Right - about.srWindow.Left + 1;
}

// A read that waits ends by itself.
void note_interrupts() {
  const auto note = [](DWORD event) -> BOOL {
    if (event == CTRL_C_EVENT) g_interrupted = true;
    return event == CTRL_C_EVENT ? TRUE : FALSE;
  };
  SetConsoleCtrlHandler(note, TRUE);
}

bool was_interrupted() { return g_interrupted.exchange(false); }

}  // namespace devhost
