#include "devhost/program/plugin_module.h"

#include <system_error>
#include <vector>

#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

// The kind of application that starts plug-ins with a user in front of it.
constexpr std::uint8_t kDeveloperApplication = 0;

constexpr std::uint16_t kLanguageEnglish = 1;

constexpr std::size_t kStringCapacity = 4096;

std::filesystem::path whole_path(const std::filesystem::path& file) {
  std::error_code error;
  std::filesystem::path path = std::filesystem::canonical(file, error);
  if (error) throw PluginError("plug-in \"" + utf8_from_path(file) + "\": " + error.message());
  return path;
}

std::unique_ptr<Library> load(const std::filesystem::path& file) {
  try {
    return std::make_unique<Library>(file);
  } catch (const LibraryError& error) {
    throw PluginError(std::string("the plug-in does not load: ") + error.what());
  }
}

}  // namespace

PluginModule::PluginModule(const std::filesystem::path& file, std::int16_t extension_version)
    : extension_version_(extension_version) {
  const std::filesystem::path whole = whole_path(file);
  path_ = utf8_from_path(whole);
  library_ = load(whole);
  entry_ = library_->find<fmx::EntryPoint>("FMExternCallProc");
  if (entry_ == nullptr)
    throw PluginError("\"" + path_ + "\" is no plug-in: it has no entry point");
  fmx::CallBlock init = block(fmx::kInit);
  init.parm1 = kDeveloperApplication;
  entry_(&init);
  if (init.result != fmx::kInitAnswer) {
    throw PluginError("plug-in \"" + path_ + "\" refuses to start: it answers " +
                      std::to_string(init.result) + ", not 59");
  }
}

PluginModule::~PluginModule() {
  fmx::CallBlock shutdown = block(fmx::kShutdown);
  entry_(&shutdown);
}

std::string PluginModule::string(std::uint8_t kind) const {
  std::vector<char16_t> buffer(kStringCapacity, u'\0');
  fmx::CallBlock request = block(fmx::kGetString);
  request.parm1 = kind;
  request.parm2 = kLanguageEnglish;
  request.parm3 = buffer.size();
  request.result = reinterpret_cast<std::intptr_t>(buffer.data());
  entry_(&request);
  buffer.back() = u'\0';
  return utf8_from_utf16(buffer.data());
}

fmx::CallBlock PluginModule::block(fmx::Message message) const {
  fmx::CallBlock result = {};
  result.extension_version = extension_version_;
  result.message = message;
  result.instance = library_->instance(path_);
  return result;
}

}  // namespace devhost
