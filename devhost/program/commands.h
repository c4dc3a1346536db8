// What xlcalc does: one function a command. Each gives the exit status of the program.
#pragma once

#include <string>

#include "devhost/calc/evaluator.h"
#include "devhost/program/plugin_module.h"

namespace devhost {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kBadUsage = 2;

void complain(const std::string& problem);

int evaluate(Evaluator& evaluator, const std::string& calculation);
int run_script(Evaluator& evaluator, const std::string& path);
// Statements typed one by one. A mistake in one does not end the prompt.
int converse(Evaluator& evaluator, const PluginModule& plugin);
int list_functions(const std::string& word);

}  // namespace devhost
