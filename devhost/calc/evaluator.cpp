#include "devhost/calc/evaluator.h"

#include <utility>

#include "devhost/calc/external.h"
#include "devhost/calc/operators.h"
#include "devhost/fm/unicode.h"

namespace devhost {

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
    report_({std::u16string(node.builtin->name), failure.code(), utf16_from_utf8(failure.what()),
             node.position});
  }
  return failed_value();
}

Value Evaluator::external(const Node& node) {
  give_way();
  try {
    return call(*node.external, arguments(node));
  } catch (const CallFailed& failure) {
    report_({node.external->name, failure.code(), failure.message(), node.position});
  }
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
      report_({u"While", 0, u"has not ended after 50000 rounds", node.position});
      return failed_value();
    }
    give_way();
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
