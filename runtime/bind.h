// Turns methods of the library into functions that the host can call.
//
// A family of external functions is a table of rows. A row names a method, and the method's
// signature says what is read from the host and what becomes of the result:
//
//   bool, integer, enum, double, const wchar_t*   read from one host parameter
//   const std::vector<char>&                      the bytes of a container or text
//   T*, T a class of the library                  read as a handle of a T; 0 gives null
//   any other pointer (int*, bool*, ...)          an output: a field of the result
//
//   returns void                                  no result
//   returns bool, integer, enum, double           a number
//   returns const wchar_t*                        a text; null gives no result
//   returns T*, or Entry<E> of an enum            a fresh handle
//   returns Fields, or has outputs                fields joined by a carriage return
//
// The values after the method are the defaults of the last parameters, which the host may omit.
// A required parameter that arrives empty reads as 0, true for a flag, an empty text, no object.
// A free function that takes the object first may stand for a method. It has to where the host does
// not see what the signature says; the binding asserts what it can tell of that.
#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstdint>
#include <functional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/fmwrapper/fmwrapper.h"
#include "runtime/classes.h"
#include "runtime/error_state.h"
#include "runtime/fields.h"
#include "runtime/parameters.h"
#include "runtime/registry.h"
#include "runtime/results.h"

namespace bind {

// Does the work of one call and returns its code.
using Body = short (*)(const fmx::DataVect&, fmx::Data&);

// One external function. The counts include the handle.
struct Row {
  short id;
  short min;
  short max;
  const char* name;
  fmx::ExternalFunction function;
};

// A number of the library that the host gets as a handle.
template <class E>
struct Entry {
  E value;
};

// What an omitted parameter is. A double is kept as its bits: clang 14 takes no template argument
// that contains one.
struct Default {
  enum class Kind { kInteger, kFlag, kReal, kNone };

  std::int64_t bits;
  Kind kind;

  constexpr Default(int value) : bits(value), kind(Kind::kInteger) {}
  template <class E>
  requires std::is_enum_v<E>
  constexpr Default(E value) : bits(value), kind(Kind::kInteger) {}
  constexpr Default(bool value) : bits(value), kind(Kind::kFlag) {}
  constexpr Default(double value) : bits(std::bit_cast<std::int64_t>(value)), kind(Kind::kReal) {}
  constexpr Default(std::nullptr_t) : bits(0), kind(Kind::kNone) {}

  constexpr double real() const {
    return kind == Kind::kReal ? std::bit_cast<double>(bits) : static_cast<double>(bits);
  }
};

// The object of a call, by the handle that is its first parameter.
template <class T>
class Target {
  static_assert(Registered<T>, "give the class a type_name");

 public:
  explicit Target(const fmx::DataVect& params)
      : handle_(ParameterAsLong(params, 0, 0)),
        object_(static_cast<T*>(get_object(handle_, type_name<T>))) {}

  long handle() const { return handle_; }
  bool is_missing() const { return object_ == nullptr; }
  std::string not_found() const { return error_message_object_not_found(handle_, type_name<T>); }

  // To be called when every parameter was read: handle 0 is only then acted upon.
  T& get() const {
    if (!object_) throw KelPlugin_Exception(codes::kNotFound, not_found());
    return *object_;
  }

 private:
  long handle_;
  T* object_;
};

template <class Function>
struct Signature;
template <class C, class R, class... A>
struct Signature<R (*)(C&, A...)> {
  using Object = C;
  using Result = R;
  using Arguments = std::tuple<A...>;
};
template <class C, class R, class... A>
struct Signature<R (C::*)(A...)> : Signature<R (*)(C&, A...)> {};
template <class C, class R, class... A>
struct Signature<R (C::*)(A...) const> : Signature<R (*)(C&, A...)> {};

using Bytes = const std::vector<char>&;

template <class A, class T = std::remove_pointer_t<A>>
inline constexpr bool is_output =
    std::is_pointer_v<A> && !std::is_const_v<T> && !std::is_class_v<T>;

// Numbers that the host knows by handles only.
template <class T>
inline constexpr bool is_known_by_handle = std::is_enum_v<T>&& Registered<T>;

// What a field of a result shows as its value; of other pointers it could show the address only.
template <class T>
inline constexpr bool is_field_value =
    std::is_arithmetic_v<T> || std::is_enum_v<T> || std::same_as<T, const wchar_t*>;

template <class A>
constexpr bool takes(Default fallback) {
  using Kind = Default::Kind;
  if constexpr (std::same_as<A, bool>) return fallback.kind == Kind::kFlag;
  else if constexpr (std::same_as<A, double>)
    return fallback.kind == Kind::kReal || fallback.kind == Kind::kInteger;
  else if constexpr (std::is_integral_v<A> || std::is_enum_v<A>)
    return fallback.kind == Kind::kInteger;
  else return fallback.kind == Kind::kNone;
}

// What the signature of a method must be like for a row to follow from it. Each is a question of
// its own, so that the compiler's complaint names the one that failed.
template <auto Method, class Arguments = typename Signature<decltype(Method)>::Arguments>
struct Shape;
template <auto Method, class... A>
struct Shape<Method, std::tuple<A...>> {
  static constexpr std::size_t inputs = (std::size_t{0} + ... + std::size_t{!is_output<A>});

  // Parameters are counted by their place in the signature.
  static constexpr bool outputs_come_last = [] {
    constexpr bool outputs[] = {false, is_output<A>...};
    return std::is_sorted(std::begin(outputs), std::end(outputs));
  }();

  static constexpr bool outputs_have_values =
      (... && (!is_output<A> || is_field_value<std::remove_pointer_t<A>>));

  static constexpr bool numbers_are_plain =
      (!is_known_by_handle<typename Signature<decltype(Method)>::Result> && ... &&
       !is_known_by_handle<std::remove_pointer_t<A>>);

  // The defaults are those of the last inputs.
  template <Default... Optional>
  static constexpr bool takes_defaults = [] {
    if constexpr (sizeof...(Optional) > inputs) return false;
    [[maybe_unused]] constexpr bool (*kTakes[])(Default) = {takes<A>..., nullptr};
    [[maybe_unused]] std::size_t next = inputs - sizeof...(Optional);
    return (... && kTakes[next++](Optional));
  }();
};

template <class A>
auto read(const fmx::DataVect& params, unsigned index, Default fallback) {
  using T = std::remove_pointer_t<A>;
  if constexpr (is_output<A>) {
    return T{};
  } else if constexpr (std::same_as<A, const wchar_t*>) {
    return ParameterAsWideString(params, index);
  } else if constexpr (std::same_as<A, Bytes>) {
    return ParameterAsVectorChar(params, index);
  } else if constexpr (std::is_pointer_v<A>) {
    static_assert(Registered<T>, "give the class a type_name");
    return static_cast<A>(get_object(ParameterAsLong(params, index, 0), type_name<T>));
  } else if constexpr (std::same_as<A, bool>) {
    return ParameterAsBoolean(params, index, fallback.bits != 0);
  } else if constexpr (std::same_as<A, double>) {
    return ParameterAsDouble(params, index, fallback.real());
  } else {
    const auto value = static_cast<unsigned long>(fallback.bits);
    return static_cast<A>(static_cast<int>(ParameterAsLong(params, index, value)));
  }
}

template <class A, class V>
A pass(V& value) {
  if constexpr (is_output<A>) return &value;
  else if constexpr (std::same_as<A, const wchar_t*>) return value.c_str();
  else return value;
}

// Registers an object under the handle's and stores the new handle, unless the library failed.
short store_handle(long handle, const char* type, const void* object, fmx::Data& result);

template <class E>
short store(long handle, Entry<E> entry, fmx::Data& result) {
  return store_handle(handle, type_name<E>, value_as_object(entry.value), result);
}

template <class R>
short store(long handle, R value, fmx::Data& result) {
  if constexpr (std::same_as<R, Fields>) {
    return set_result(handle, value.text(), result);
  } else if constexpr (std::same_as<R, const wchar_t*>) {
    return value ? set_result(handle, std::wstring(value), result)
                 : short{set_last_error_message(handle)};
  } else if constexpr (std::is_pointer_v<R>) {
    static_assert(Registered<std::remove_pointer_t<R>>, "give the class a type_name");
    return store_handle(handle, type_name<std::remove_pointer_t<R>>, value, result);
  } else if constexpr (std::is_enum_v<R>) {
    // A colour whose top bit is set is a large number, not a negative one.
    return set_result(handle, static_cast<double>(static_cast<std::uint32_t>(value)), result);
  } else {
    return set_result(handle, static_cast<double>(value), result);
  }
}

// One method together with the defaults of its optional parameters.
template <auto Method, Default... Optional>
struct Binding {
  using Object = typename Signature<decltype(Method)>::Object;
  using Result = typename Signature<decltype(Method)>::Result;
  using Arguments = typename Signature<decltype(Method)>::Arguments;
  template <std::size_t I>
  using Argument = std::tuple_element_t<I, Arguments>;

  static constexpr std::size_t count = std::tuple_size_v<Arguments>;
  static constexpr std::size_t inputs = Shape<Method>::inputs;

  static_assert(Shape<Method>::outputs_come_last,
                "an input follows an output: put a named function into the row");
  static_assert(Shape<Method>::outputs_have_values,
                "no field can show an output of this type: put a named function into the row");
  static_assert(Shape<Method>::numbers_are_plain,
                "a number that the host knows by handle: return an Entry, read it in a body");
  static_assert(Shape<Method>::template takes_defaults<Optional...>,
                "more defaults than parameters, or a default of another kind than its parameter");

  static constexpr std::size_t required = inputs - sizeof...(Optional);

  template <std::size_t I>
  static constexpr Default fallback() {
    if constexpr (I >= required && I < inputs)
      return std::get<I - required>(std::tuple{Optional...});
    else return Default(std::same_as<Argument<I>, bool>);
  }

  static short body(const fmx::DataVect& params, fmx::Data& result) {
    return body(params, result, std::make_index_sequence<count>());
  }

 private:
  template <std::size_t... I>
  static short body(const fmx::DataVect& params, fmx::Data& result, std::index_sequence<I...>) {
    const Target<Object> target(params);
    // Braces read the parameters in order.
    std::tuple<decltype(read<Argument<I>>(params, 0, 0))...> values{
        read<Argument<I>>(params, I + 1, fallback<I>())...};
    Object& object = target.get();

    const auto call = [&] {
      return std::invoke(Method, object, pass<Argument<I>>(std::get<I>(values))...);
    };
    if constexpr (inputs < count) {
      Fields fields;
      if constexpr (std::is_void_v<Result>) call(), fields.add_empty();
      else fields.add(call());
      (add_output<Argument<I>>(fields, std::get<I>(values)), ...);
      return store(target.handle(), std::move(fields), result);
    } else if constexpr (std::is_void_v<Result>) {
      call();
      return set_last_error_message(target.handle());
    } else {
      return store(target.handle(), call(), result);
    }
  }

  template <class A, class V>
  static void add_output(Fields& fields, const V& value) {
    if constexpr (is_output<A>) fields.add(value);
  }
};

// The call frame. Runs a body between the reset of the error state and the mapping of every
// failure to it; returns what the host gets.
short run(Body body, const fmx::DataVect& params, fmx::Data& result);

template <Body body>
short external(short, const fmx::ExprEnv&, const fmx::DataVect& params, fmx::Data& result) {
  return run(body, params, result);
}

// A row that follows from a method.
template <auto Method, Default... Optional>
constexpr Row row(short id, const char* name) {
  using B = Binding<Method, Optional...>;
  return {id, short{1 + B::required}, short{1 + B::inputs}, name, external<B::body>};
}

// A row that accepts more parameters than its function reads.
constexpr Row accepting(short max, Row row) {
  row.max = max;
  return row;
}

// A row whose body reads its own parameters.
template <Body body>
constexpr Row row(short id, const char* name, short min, short max) {
  return {id, min, max, name, external<body>};
}

}  // namespace bind
