#pragma once

#include <tuple>
#include <type_traits>
#include <utility>

#include "framework/Readable.h"
#include "framework/ValueReader.h"
#include "framework/ValueWriter.h"
#include "framework/Writable.h"
#include "rmi/Values.h"

/** What travels with a call: its arguments, as a tuple, or its result. */
namespace zerva::rmi {

template <typename T>
struct Sent final : Writable {
  explicit Sent(T what) : value(std::move(what)) {}
  void write(ValueWriter& writer) const override { rmi::write(writer, value); }
  T value;
};

template <>
struct Sent<void> final : Writable {
  void write(ValueWriter& writer) const override { writer.writeNothing(); }
};

namespace detail {

/** What was given is only looked at, unless it has to become another type. */
template <typename Wanted, typename Given>
using Argument =
    std::conditional_t<std::is_same_v<Wanted, std::remove_cv_t<std::remove_reference_t<Given>>>,
                       const Wanted&, Wanted>;

template <typename Wanted, typename... Given>
struct Arguments;

template <typename... Wanted, typename... Given>
struct Arguments<std::tuple<Wanted...>, Given...> {
  using Type = std::tuple<Argument<Wanted, Given>...>;
};

}  // namespace detail

/** The arguments of a call as they are sent; valid as long as what was given. */
template <typename Wanted, typename... Given>
using ArgumentsFrom = typename detail::Arguments<Wanted, Given...>::Type;

template <typename T>
struct Received final : Readable {
  void read(ValueReader& reader) override { value = rmi::read<T>(reader); }
  T value{};
};

template <>
struct Received<void> final : Readable {
  void read(ValueReader& reader) override { reader.readNothing(); }
};

}  // namespace zerva::rmi
