// A small plug-in that registers its functions in both ways and offers what tests look at.
#include <bit>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

#include "platform/fmwrapper/fmwrapper.h"

fmx::CallBlock* gFMX_ExternCallPtr = nullptr;

namespace {

std::string refusals;
std::string last_message;
int last_error = 0;

void set_text(fmx::Data& result, const std::string& text) {
  const fmx::TextUniquePtr host_text;
  host_text->Assign(text.c_str(), fmx::Text::kEncoding_UTF8);
  const fmx::LocaleUniquePtr locale(fmx::Locale::kSystem);
  result.SetAsText(*host_text, *locale);
}

void set_number(fmx::Data& result, double number) {
  const fmx::FixPtUniquePtr host_number(0, 16);
  host_number->AssignDouble(number);
  result.SetAsNumber(*host_number);
}

short add(short, const fmx::ExprEnv&, const fmx::DataVect& parameters, fmx::Data& result) {
  double second = 100;
  try {
    second = parameters.AtAsNumber(1).AsFloat();
  } catch (const std::exception&) {
    // Left out: the default counts.
  }
  set_number(result, parameters.AtAsNumber(0).AsFloat() + second);
  return 0;
}

short count(short, const fmx::ExprEnv&, const fmx::DataVect& parameters, fmx::Data& result) {
  set_number(result, parameters.Size());
  return 0;
}

short fail(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data&) {
  last_error = 42;
  last_message = "made to fail: ß";
  return -1;
}

short get_last_error(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data& result) {
  set_number(result, last_error);
  return 0;
}

short get_last_message(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data& result) {
  set_text(result, last_message);
  return 0;
}

// A file of three bytes, named by the parameter.
short make_file(short, const fmx::ExprEnv&, const fmx::DataVect& parameters, fmx::Data& result) {
  const fmx::BinaryDataUniquePtr container;
  container->AddFNAMData(parameters.AtAsText(0));
  const fmx::QuadCharUniquePtr type('F', 'I', 'L', 'E');
  container->Add(*type, 3, "abc");
  result.SetBinaryData(*container, true);
  return 0;
}

short own_id(short id, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data& result) {
  set_number(result, id);
  return 0;
}

short told_refusals(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data& result) {
  set_text(result, refusals);
  return 0;
}

struct Row {
  const char* name = "";
  fmx::ExternalFunction function = nullptr;
  short id = 0;
  short minimum = 0;
  short maximum = 0;
  std::uint32_t flags = fmx::ExprEnv::kDisplayInAllDialogs;
};

constexpr Row kRows[] = {
    {"Fake_Add", add, 1, 1, 2},
    {"Fake_Count", count, 2, 0, -1},
    {"Fake_Fail", fail, 3, 0, 0},
    {"Fake_GetLastError", get_last_error, 4, 0, 0},
    {"Fake_GetLastErrorMessage", get_last_message, 5, 0, 0},
    {"Fake_File", make_file, 6, 1, 1},
    {"Fake_Constant", own_id, 7, 0, 0, fmx::ExprEnv::kHidden},
    {"Fake_Refusals", told_refusals, 8, 0, 0},
    // From here on each has something that the host refuses.
    {"Fake_SameId", own_id, 8, 0, 0},
    {"FAKE_ADD", own_id, 9, 0, 0},
    {"Fake Blank", own_id, 10, 0, 0},
    {"", own_id, 11, 0, 0},
    {"Fake_Counts", own_id, 12, 2, 1},
    {"Fake_Negative", own_id, 13, -1, 1},
    {"Fake_Nothing", nullptr, 14, 0, 0},
};

fmx::errcode register_row(const Row& row, const fmx::QuadChar& plugin) {
  const fmx::TextUniquePtr name;
  const fmx::TextUniquePtr prototype;
  const fmx::TextUniquePtr description;
  name->Assign(row.name, fmx::Text::kEncoding_UTF8);
  prototype->Assign((std::string(row.name) + " ( … )").c_str(), fmx::Text::kEncoding_UTF8);
  description->Assign("Described.", fmx::Text::kEncoding_UTF8);
  if (gFMX_ExternCallPtr->extension_version < fmx::kExtensionVersionWithDescriptions) {
    return fmx::ExprEnv::RegisterExternalFunction(plugin, row.id, *name, *prototype, row.minimum,
                                                  row.maximum, row.flags, row.function);
  }
  return fmx::ExprEnv::RegisterExternalFunctionEx(plugin, row.id, *name, *prototype, *description,
                                                  row.minimum, row.maximum, row.flags,
                                                  row.function);
}

void start() {
  const fmx::QuadCharUniquePtr plugin('F', 'a', 'k', 'e');
  refusals.clear();
  for (const Row& row : kRows) {
    const fmx::errcode answer = register_row(row, *plugin);
    if (answer != 0) refusals += std::to_string(row.id) + ":" + std::to_string(answer) + " ";
  }
}

void stop() {
  const fmx::QuadCharUniquePtr plugin('F', 'a', 'k', 'e');
  for (const Row& row : kRows) fmx::ExprEnv::UnRegisterExternalFunction(*plugin, row.id);
}

// 128 is the name, 129 the path that the host gave; other kinds have no text.
void answer_string(const fmx::CallBlock& block) {
  std::string_view text;
  if (block.parm1 == 128) text = "Fake plug-in";
  if (block.parm1 == 129) text = static_cast<const char*>(block.instance);
  auto* buffer = std::bit_cast<std::uint16_t*>(block.result);
  if (text.empty() || text.size() >= block.parm3) return;
  for (const char letter : text) *buffer++ = static_cast<unsigned char>(letter);
  *buffer = 0;
}

}  // namespace

void FMExternCallProc(fmx::CallBlock* block) {
  gFMX_ExternCallPtr = block;
  if (block->message == fmx::kInit) {
    start();
    block->result = INIT_ANSWER;
  }
  if (block->message == fmx::kShutdown) stop();
  if (block->message == fmx::kGetString) answer_string(*block);
}
