// The plug-in object: what the host has registered of the plug-in.
#pragma once

#include <vector>

#include "platform/fmwrapper/fmwrapper.h"

// Lives from the host's start message to its shutdown message.
class KelFileMakerPlugin {
 public:
  explicit KelFileMakerPlugin(fmx::QuadChar& id);
  KelFileMakerPlugin(const KelFileMakerPlugin&) = delete;
  KelFileMakerPlugin& operator=(const KelFileMakerPlugin&) = delete;
  // Takes back what the host has accepted.
  ~KelFileMakerPlugin();

  // Registers under the name, prototype and description that the localized strings have for the id.
  // Returns the host's code; a function that the host refuses is simply not there. A maximum of 0
  // means the minimum.
  short RegisterPluginFunction(unsigned flags, short id, fmx::ExternalFunction function, int min,
                               int max);
  // Listed among the host's functions.
  short RegisterFunction(short id, fmx::ExternalFunction function, int min, int max);
  // Callable by name, not listed.
  short RegisterHiddenFunction(short id, fmx::ExternalFunction function, int min, int max);

  void set_fmx_application(unsigned char kind);
  bool running_on_server() const;

 private:
  fmx::QuadCharUniquePtr id_;
  // In the order of registration.
  std::vector<short> registered_ids_;
  unsigned char application_kind_ = 0;
};
