#include "host/plugin.h"

#include "host/strings.h"

KelFileMakerPlugin::KelFileMakerPlugin(fmx::QuadChar& id) { *id_ = id; }

// The host's answers no longer matter. A call that fails altogether ends the process: a host that
// kept a function of an unloaded plug-in would jump into nothing later.
// NOLINTNEXTLINE(bugprone-exception-escape): that is how it ends.
KelFileMakerPlugin::~KelFileMakerPlugin() {
  for (const short id : registered_ids_) fmx::ExprEnv::UnRegisterExternalFunction(*id_, id);
}

short KelFileMakerPlugin::RegisterPluginFunction(unsigned flags, short id,
                                                 fmx::ExternalFunction function, int min, int max) {
  const auto least = static_cast<short>(min);
  const auto most = static_cast<short>(max == 0 ? min : max);
  const auto string_id = static_cast<unsigned long>(id);
  fmx::TextUniquePtr name;
  fmx::TextUniquePtr prototype;
  fmx::TextUniquePtr description;
  Do_GetString(string_id, name, kName);
  Do_GetString(string_id, prototype, kPrototype);

  short code = 0;
  if (gFMX_ExternCallPtr->extension_version < fmx::kExtensionVersionWithDescriptions) {
    code = fmx::ExprEnv::RegisterExternalFunction(*id_, id, *name, *prototype, least, most, flags,
                                                  function);
  } else {
    Do_GetString(string_id, description, kDescription);
    code = fmx::ExprEnv::RegisterExternalFunctionEx(*id_, id, *name, *prototype, *description,
                                                    least, most, flags, function);
  }
  if (code == 0) registered_ids_.push_back(id);
  return code;
}

short KelFileMakerPlugin::RegisterFunction(short id, fmx::ExternalFunction function, int min,
                                           int max) {
  return RegisterPluginFunction(fmx::ExprEnv::kDisplayInAllDialogs, id, function, min, max);
}

short KelFileMakerPlugin::RegisterHiddenFunction(short id, fmx::ExternalFunction function, int min,
                                                 int max) {
  return RegisterPluginFunction(fmx::ExprEnv::kHidden, id, function, min, max);
}

void KelFileMakerPlugin::set_fmx_application(unsigned char kind) { application_kind_ = kind; }

bool KelFileMakerPlugin::running_on_server() const {
  return application_kind_ == 3 || application_kind_ == 4 || application_kind_ == 7;
}
