// The plug-in's one export, which the host calls for every event.
#include "host/function_table.h"
#include "host/named_constants.h"
#include "host/plugin.h"
#include "host/strings.h"

fmx::CallBlock* gFMX_ExternCallPtr = nullptr;

namespace {

KelFileMakerPlugin* g_plugin = nullptr;
// A shutdown leaves the pointer as it is, so this tells whether there is an object behind it.
bool g_plugin_lives = false;

// What the host refuses to register is not reported: the rest of the functions are of use.
void start(const fmx::CallBlock& block) {
  const fmx::QuadCharUniquePtr id('W', 'n', 'q', 't');
  g_plugin = new KelFileMakerPlugin(*id);
  g_plugin_lives = true;
  g_plugin->set_fmx_application(block.parm1);
  for (const bind::Row& row : function_table())
    g_plugin->RegisterFunction(row.id, row.function, row.min, row.max);
  for (short constant = kFirstConstant; constant <= kLastConstant; ++constant)
    if (constant != kUnregisteredConstant)
      g_plugin->RegisterHiddenFunction(constant, XL_NamedConstant, 0, 0);
}

void stop() {
  if (!g_plugin_lives) return;
  g_plugin_lives = false;
  delete g_plugin;
}

void answer(const fmx::CallBlock& block) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the host passes the buffer's address as a number.
  auto* const buffer = reinterpret_cast<unsigned short*>(block.result);
  Do_GetString(block.parm1, static_cast<unsigned long>(block.parm2),
               static_cast<unsigned long>(block.parm3), buffer);
}

}  // namespace

void FMExternCallProc(fmx::CallBlock* block) {
  gFMX_ExternCallPtr = block;
  switch (block->message) {
    case fmx::kInit:
      start(*block);
      block->result = fmx::kInitAnswer;
      break;
    case fmx::kShutdown:
      stop();
      break;
    case fmx::kGetString:
      answer(*block);
      break;
    default:
      break;
  }
}
