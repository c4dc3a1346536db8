#include "host/named_constants.h"

#include <algorithm>
#include <iterator>

#include "platform/libxl/libxl.h"
#include "runtime/error_state.h"
#include "runtime/results.h"

namespace {

// Constants of rising ids. Their values rise by one, or double when they are flags.
struct Run {
  short first_id = 0;
  int first_value = 0;
  short count = 0;
  bool doubles = false;
};

// In the order of the enumerations; one that has gaps is several runs.
constexpr Run kRuns[] = {
    {5000, libxl::ColorBlack, 58},
    {5058, libxl::ColorTooltip, 1},
    {5059, libxl::ColorAuto, 1},
    {5060, libxl::NumGeneral, 23},
    {5083, libxl::NumAccount, 13},
    {5096, libxl::AlignHGeneral, 8},
    {5104, libxl::AlignVTop, 5},
    {5109, libxl::BorderNone, 14},
    {5123, libxl::DiagonalNone, 4},
    {5127, libxl::FillNone, 19},
    {5146, libxl::ScriptNormal, 3},
    {5149, libxl::UnderlineNone, 3},
    {5152, libxl::UnderlineSingleAccounting, 2},
    {5154, libxl::PaperDefault, 48},
    {5202, libxl::PaperLetterExtra, 69},
    {5271, libxl::SheetWorksheet, 3},
    {5274, libxl::CellEmpty, 6},
    {5280, libxl::ErrorNull, 1},
    {5281, libxl::ErrorDiv0, 1},
    {5282, libxl::ErrorValue, 1},
    {5283, libxl::ErrorRef, 1},
    {5284, libxl::ErrorName, 1},
    {5285, libxl::ErrorNum, 1},
    {5286, libxl::ErrorNA, 1},
    {5287, libxl::ErrorNone, 1},
    {5288, libxl::PicturePng, 2},
    {5290, libxl::PictureWmf, 5},
    {5295, libxl::PictureError, 1},
    {5296, libxl::StateVisible, 3},
    {5299, libxl::ScopeUndefined, 2},
    {5301, libxl::PositionMoveAndSize, 3},
    {5304, libxl::FilterValues, 8},
    {5312, libxl::OperatorEqual, 6},
    {5318, libxl::ProtectDefault, 2},
    {5320, libxl::ProtectObjects, 15, true},
    {5335, libxl::IgnoreEvalError, 8, true},
    {5343, libxl::ValidationNone, 8},
    {5351, libxl::ValidationBetween, 8},
    {5359, libxl::ErrorStyleStop, 3},
};

double value_of(short id) {
  const auto* run = std::find_if(std::begin(kRuns), std::end(kRuns), [id](const Run& candidate) {
    return id >= candidate.first_id && id < candidate.first_id + candidate.count;
  });
  if (run == std::end(kRuns)) return id;
  const int offset = id - run->first_id;
  return run->doubles ? run->first_value << offset : run->first_value + offset;
}

}  // namespace

short XL_NamedConstant(short funcId, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data& result) {
  NoError();
  const short code = code_of([&] {
    SetResult(value_of(funcId), result);
    return codes::kNone;
  });
  return MapError(code, false);
}
