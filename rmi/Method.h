#pragma once

#include <string_view>
#include <tuple>
#include <type_traits>

/**
 * Names a method of an interface for a proxy or an invoker: `ZERVA_METHOD(WindSensor::speed)`. Both
 * sides take the name and the types from the interface itself, so they cannot differ. The method
 * must not be overloaded.
 */
// A pointer to a member cannot be taken of a name in parentheses.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define ZERVA_METHOD(METHOD) \
  (::zerva::rmi::Method<&METHOD>{::zerva::rmi::detail::unqualified(#METHOD)})
// NOLINTEND(bugprone-macro-parentheses)

namespace zerva::rmi {

namespace detail {

constexpr std::string_view unqualified(std::string_view name) {
  const auto colon = name.rfind(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

template <typename ClassOf, typename ResultOf, typename... Parameters>
struct Signature {
  static_assert((... && !(std::is_lvalue_reference_v<Parameters> &&
                          !std::is_const_v<std::remove_reference_t<Parameters>>)),
                "a method cannot give something back through a parameter");
  static_assert((... && !std::is_pointer_v<std::decay_t<Parameters>>),
                "a pointer means nothing to another process");
  using Class = ClassOf;
  using Result = std::decay_t<ResultOf>;
  using Arguments = std::tuple<std::decay_t<Parameters>...>;
};

template <typename Pointer>
struct SignatureOf;

template <typename Class, typename Result, typename... Parameters>
struct SignatureOf<Result (Class::*)(Parameters...)> : Signature<Class, Result, Parameters...> {};

template <typename Class, typename Result, typename... Parameters>
struct SignatureOf<Result (Class::*)(Parameters...) const>
    : Signature<Class, Result, Parameters...> {};

}  // namespace detail

/** A method and its name. */
template <auto Pointer>
struct Method : detail::SignatureOf<decltype(Pointer)> {
  explicit constexpr Method(std::string_view methodName) : name(methodName) {}
  std::string_view name;
};

}  // namespace zerva::rmi
