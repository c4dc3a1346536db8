#include "devhost/calc/evaluator.h"

#include <optional>
#include <utility>

#include "devhost/calc/operators.h"
#include "devhost/fm/unicode.h"

namespace devhost {
namespace {

std::optional<Value> call_plainly(std::u16string_view name) {
  const RegisteredFunction* function = FunctionRegistry::instance().find(name);
  if (function == nullptr || !function->accepts(0)) return std::nullopt;
  const ValueList none;
  const EnvironmentObject environment;
  Value result;
  if (function->function(function->id, environment, none, result) != 0) return std::nullopt;
  return result;
}

// Plug-ins tell more about their last failure through two functions of their own, named after the
// prefix that all their functions share. Without these the answer to the call is all there is.
Failure describe(const RegisteredFunction& function, int answer) {
  const std::u16string prefix = function.name.substr(0, function.name.find(u'_'));
  Failure failure = {function.name, answer, {}};
  if (const auto code = call_plainly(prefix + u"_GetLastError")) {
    failure.code = static_cast<int>(code->number().value);
  }
  if (const auto message = call_plainly(prefix + u"_GetLastErrorMessage")) {
    failure.message = message->units();
  }
  return failure;
}

}  // namespace

Value Evaluator::evaluate(const Calculation& calculation) {
  frame_.assign(calculation.slots, Value());
  return value_of(*calculation.root);
}

void Evaluator::set_variable(std::u16string_view name, Value value) {
  variables_.insert_or_assign(to_lower(name), std::move(value));
}

Value Evaluator::value_of(const Node& node) {
  switch (node.kind) {
    case Node::Kind::kConstant:
      return node.constant;
    case Node::Kind::kLocal:
      return frame_[node.slot];
    case Node::Kind::kVariable:
      return variable(node.variable);
    case Node::Kind::kNegate:
      return number_value(-value_of(*node.children[0]).number().value);
    case Node::Kind::kNot:
      return Value::truth(!holds(*node.children[0]));
    case Node::Kind::kOperators:
      return operators(node);
    case Node::Kind::kBuiltin:
      return builtin(node);
    case Node::Kind::kExternal:
      return external(node);
    case Node::Kind::kCase:
      return first_that_holds(node);
    case Node::Kind::kLet:
      bind(node.bindings);
      return value_of(*node.children[0]);
    case Node::Kind::kWhile:
      return while_loop(node);
  }
  return {};
}

// The right side of "and" and "or" is left alone when the left side decides.
Value Evaluator::operators(const Node& node) {
  Value result = value_of(*node.children[0]);
  for (std::size_t i = 0; i < node.operators.size(); ++i) {
    const Node& right = *node.children[i + 1];
    switch (node.operators[i]) {
      case Symbol::kAnd:
        result = Value::truth(result.boolean() && holds(right));
        break;
      case Symbol::kOr:
        result = Value::truth(result.boolean() || holds(right));
        break;
      default:
        result = apply(node.operators[i], result, value_of(right));
    }
  }
  return result;
}

std::vector<Value> Evaluator::arguments(const Node& node) {
  std::vector<Value> result;
  result.reserve(node.children.size());
  for (const NodePtr& child : node.children) result.push_back(value_of(*child));
  return result;
}

Value Evaluator::builtin(const Node& node) {
  const std::vector<Value> values = arguments(node);
  try {
    return node.builtin->function(values);
  } catch (const FunctionFailure& failure) {
    report_({std::u16string(node.builtin->name), failure.code(), utf16_from_utf8(failure.what())});
  }
  return failed_value();
}

Value Evaluator::external(const Node& node) {
  ValueList parameters;
  parameters.values = arguments(node);
  const EnvironmentObject environment;
  Value result;
  const fmx::errcode answer =
      node.external->function(node.external->id, environment, parameters, result);
  if (answer == 0) return result;
  report_(describe(*node.external, answer));
  return failed_value();
}

Value Evaluator::first_that_holds(const Node& node) {
  const auto& children = node.children;
  for (std::size_t i = 0; i + 1 < children.size(); i += 2) {
    if (holds(*children[i])) return value_of(*children[i + 1]);
  }
  return children.size() % 2 == 1 ? value_of(*children.back()) : Value();
}

Value Evaluator::while_loop(const Node& node) {
  bind(node.bindings);
  for (int rounds = 0; holds(*node.children[0]); ++rounds) {
    if (rounds == kMaxIterations) {
      report_({u"While", 0, u"has not ended after 50000 rounds"});
      return failed_value();
    }
    bind(node.repeated);
  }
  return value_of(*node.children[1]);
}

Value Evaluator::variable(const std::u16string& name) const {
  const auto known = variables_.find(name);
  return known != variables_.end() ? known->second : Value();
}

void Evaluator::bind(const std::vector<Binding>& bindings) {
  for (const Binding& binding : bindings) {
    Value value = value_of(*binding.value);
    if (binding.variable.empty()) {
      frame_[binding.slot] = std::move(value);
    } else {
      variables_.insert_or_assign(binding.variable, std::move(value));
    }
  }
}

}  // namespace devhost
