#include "host/general_functions.h"

#include <string>

// None of these runs the call frame, which would wipe out the error that a calculation is about to
// ask for.

namespace {

short version(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data& result) {
  return TextConstantFunction(std::string(VORNELIX_VERSION), result);
}

short version_for_updates(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data& result) {
  return TextConstantFunction(std::string(VORNELIX_VERSION_DIGITS), result);
}

short last_error_message(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data& result) {
  return TextConstantFunction(g_last_error_message, result);
}

short last_error(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data& result) {
  return code_of([&] {
    SetResult(static_cast<double>(g_last_error), result);
    return codes::kNone;
  });
}

constexpr bind::Row kRows[] = {
    {10, 0, 0, "XL_Version", version},
    {20, 0, 0, "XL_VersionAutoUpdate", version_for_updates},
    {30, 0, 0, "XL_GetLastErrorMessage", last_error_message},
    {40, 0, 0, "XL_GetLastError", last_error},
};

}  // namespace

std::span<const bind::Row> general_functions() { return kRows; }
