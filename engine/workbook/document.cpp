#include "engine/workbook/document.h"

#include "engine/workbook/workbook.h"

namespace engine {

std::unique_ptr<OutsideRows> Document::read_outside(const Workbook& book,
                                                    const Sheet& /*sheet*/) const {
  return std::make_unique<OutsideRows>(book);
}

}  // namespace engine
