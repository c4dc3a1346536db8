// One plug-in, loaded from its file and started.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "devhost/program/library.h"
#include "platform/fmwrapper/call_block.h"

namespace devhost {

class PluginError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Its functions are registered from construction to destruction.
class PluginModule {
 public:
  // Throws PluginError when the file cannot be loaded, has no entry point or does not answer the
  // start-up message as a plug-in does.
  PluginModule(const std::filesystem::path& file, std::int16_t extension_version);
  ~PluginModule();
  PluginModule(const PluginModule&) = delete;
  PluginModule& operator=(const PluginModule&) = delete;

  // The kinds of text that a plug-in is asked for.
  static constexpr std::uint8_t kNameString = 128;
  static constexpr std::uint8_t kDescriptionString = 129;

  // Empty when the plug-in has none of the kind.
  std::string string(std::uint8_t kind) const;

 private:
  fmx::CallBlock block(fmx::Message message) const;

  // With all its folders: the plug-in finds its own files beside it.
  std::string path_;
  std::int16_t extension_version_;
  std::unique_ptr<Library> library_;
  fmx::EntryPoint entry_ = nullptr;
};

}  // namespace devhost
