// The call block, through which the host talks to a plug-in's one entry point.
#pragma once

#include <cstdint>

namespace fmx {

// What the host wants, in CallBlock::message.
enum Message : std::uint8_t { kInit = 0, kShutdown = 4, kGetString = 7 };

// The answer to kInit by which a plug-in declares itself ready.
inline constexpr std::intptr_t kInitAnswer = 59;

// Of this version of the host's interface on, functions are registered with a description.
inline constexpr std::int16_t kExtensionVersionWithDescriptions = 56;

struct CallBlock {
  // The version of the host's plug-in interface.
  std::int16_t extension_version;
  std::uint8_t message;
  // kInit: the kind of application. kGetString: the kind of string.
  std::uint8_t parm1;
  // kGetString: the language.
  std::uintptr_t parm2;
  // kGetString: the capacity of the buffer in UTF-16 units.
  std::uintptr_t parm3;
  // kInit: takes the answer. kGetString: the address of the buffer.
  std::intptr_t result;
  // The plug-in's own bundle, a CFBundleRef. Where the system has no bundles it is the path of the
  // plug-in's file as zero-terminated UTF-8, or null; on Windows the plug-in's module, or the path.
  void* instance;
};

using EntryPoint = void (*)(CallBlock* block);

}  // namespace fmx

// Defined by the plug-in: the block of the event that is being answered.
extern fmx::CallBlock* gFMX_ExternCallPtr;

#pragma GCC visibility push(default)
// Defined by the plug-in: its only export.
extern "C" void FMExternCallProc(fmx::CallBlock* block);
#pragma GCC visibility pop
