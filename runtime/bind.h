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
// A free function that takes the object first may stand for a method.
#pragma once

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
  std::int64_t bits;
  bool is_real = false;

  constexpr Default(int value) : bits(value) {}
  template <class E>
  requires std::is_enum_v<E>
  constexpr Default(E value) : bits(value) {}
  constexpr Default(bool value) : bits(value) {}
  constexpr Default(double value) : bits(std::bit_cast<std::int64_t>(value)), is_real(true) {}
  constexpr Default(std::nullptr_t) : bits(0) {}

  constexpr double real() const {
    return is_real ? std::bit_cast<double>(bits) : static_cast<double>(bits);
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
  static constexpr std::size_t inputs = []<class... A>(std::tuple<A...>*) {
    return (std::size_t{0} + ... + std::size_t{!is_output<A>});
  }(static_cast<Arguments*>(nullptr));
  static_assert(sizeof...(Optional) <= inputs, "more defaults than parameters");
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
