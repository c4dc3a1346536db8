#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <system_error>

#include "devhost/program/system.h"

namespace devhost {
namespace {

std::atomic<bool> g_interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal may come at any time");

}  // namespace

std::vector<std::string> start_program(std::span<char*> arguments) {
  return {arguments.begin() + 1, arguments.end()};
}

std::filesystem::path program_file() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error);
}

std::filesystem::path state_folder() {
  const char* const state = std::getenv("XDG_STATE_HOME");
  // The standard has relative paths ignored.
  if (state != nullptr && *state == '/') return state;
  const char* const home = std::getenv("HOME");
  if (home == nullptr || *home == '\0') return {};
  return std::filesystem::path(home) / ".local" / "state";
}

bool is_terminal(Channel channel) {
  switch (channel) {
    case Channel::kInput:
      return isatty(STDIN_FILENO) != 0;
    case Channel::kOutput:
      return isatty(STDOUT_FILENO) != 0;
    case Channel::kErrors:
      return isatty(STDERR_FILENO) != 0;
  }
  return false;
}

int terminal_width() {
  winsize size = {};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

void note_interrupts() {
  struct sigaction action = {};
  action.sa_handler = [](int /*signal*/) { g_interrupted = true; };
  // Without SA_RESTART: a read that waits has to end.
  sigaction(SIGINT, &action, nullptr);
}

bool was_interrupted() { return g_interrupted.exchange(false); }

}  // namespace devhost
