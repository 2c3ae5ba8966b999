#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "framework/DecodeException.h"
#include "framework/ValueReader.h"
#include "framework/ValueWriter.h"

/**
 * What may be an argument or a result of a method: truth values, numbers, enumerations,
 * `std::string`, `std::vector`, `std::map`, `std::optional`, `std::pair`, `std::tuple` of these,
 * and structures that name their fields:
 *
 *     struct Reading {
 *       double speed = 0;
 *       std::string station;
 *       static constexpr auto fields = std::make_tuple(&Reading::speed, &Reading::station);
 *     };
 *
 * Anything else does not compile. Reading throws `DecodeException`.
 */
namespace zerva::rmi {

template <typename T>
struct Values;

template <typename T>
void write(ValueWriter& writer, const T& value) {
  Values<T>::write(writer, value);
}

template <typename T>
T read(ValueReader& reader) {
  return Values<T>::read(reader);
}

namespace detail {

template <typename T, typename = void>
struct HasFields : std::false_type {};

template <typename T>
struct HasFields<T, std::void_t<decltype(T::fields)>> : std::true_type {};

/** Leaves a list that has to have a certain size. */
inline void expectSize(std::size_t size, std::size_t expected) {
  if (size != expected) {
    throw DecodeException(std::to_string(expected) + " values were expected, not " +
                          std::to_string(size));
  }
}

template <typename T>
T narrowed(std::int64_t value) {
  if (value < std::numeric_limits<T>::min() || value > std::numeric_limits<T>::max()) {
    throw DecodeException(std::to_string(value) + " is out of range");
  }
  return static_cast<T>(value);
}

template <typename T>
T narrowed(std::uint64_t value) {
  if (value > std::numeric_limits<T>::max()) {
    throw DecodeException(std::to_string(value) + " is out of range");
  }
  return static_cast<T>(value);
}

}  // namespace detail

/** Numbers, truth values, enumerations and structures; the other kinds follow. */
template <typename T>
struct Values {
  static void write(ValueWriter& writer, const T& value) {
    if constexpr (std::is_same_v<T, bool>) {
      writer.writeBool(value);
    } else if constexpr (std::is_enum_v<T>) {
      rmi::write(writer, static_cast<std::underlying_type_t<T>>(value));
    } else if constexpr (std::is_floating_point_v<T>) {
      writer.writeReal(static_cast<double>(value));
    } else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
      writer.writeInteger(value);
    } else if constexpr (std::is_integral_v<T>) {
      writer.writeUnsigned(value);
    } else {
      static_assert(detail::HasFields<T>::value, "a type that cannot be sent: see rmi/Values.h");
      std::apply(
          [&](auto... field) {
            writer.beginList(sizeof...(field));
            (rmi::write(writer, value.*field), ...);
            writer.endList();
          },
          T::fields);
    }
  }

  static T read(ValueReader& reader) {
    if constexpr (std::is_same_v<T, bool>) {
      return reader.readBool();
    } else if constexpr (std::is_enum_v<T>) {
      return static_cast<T>(rmi::read<std::underlying_type_t<T>>(reader));
    } else if constexpr (std::is_floating_point_v<T>) {
      return static_cast<T>(reader.readReal());
    } else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
      return detail::narrowed<T>(reader.readInteger());
    } else if constexpr (std::is_integral_v<T>) {
      return detail::narrowed<T>(reader.readUnsigned());
    } else {
      static_assert(detail::HasFields<T>::value, "a type that cannot be sent: see rmi/Values.h");
      T value{};
      std::apply(
          [&](auto... field) {
            detail::expectSize(reader.beginList(), sizeof...(field));
            ((value.*field = rmi::read<std::decay_t<decltype(value.*field)>>(reader)), ...);
            reader.endList();
          },
          T::fields);
      return value;
    }
  }
};

template <>
struct Values<std::string> {
  static void write(ValueWriter& writer, const std::string& value) { writer.writeText(value); }
  static std::string read(ValueReader& reader) { return reader.readText(); }
};

template <typename T>
struct Values<std::vector<T>> {
  static void write(ValueWriter& writer, const std::vector<T>& value) {
    writer.beginList(value.size());
    for (const T& item : value) rmi::write(writer, item);
    writer.endList();
  }
  static std::vector<T> read(ValueReader& reader) {
    std::vector<T> value;
    for (std::size_t left = reader.beginList(); left > 0; --left) {
      value.push_back(rmi::read<T>(reader));
    }
    reader.endList();
    return value;
  }
};

/** A list in which each key is followed by its value. */
template <typename Key, typename T>
struct Values<std::map<Key, T>> {
  static void write(ValueWriter& writer, const std::map<Key, T>& value) {
    writer.beginList(value.size() * 2);
    for (const auto& [key, item] : value) {
      rmi::write(writer, key);
      rmi::write(writer, item);
    }
    writer.endList();
  }
  static std::map<Key, T> read(ValueReader& reader) {
    std::map<Key, T> value;
    const std::size_t size = reader.beginList();
    detail::expectSize(size % 2, 0);
    for (std::size_t left = size / 2; left > 0; --left) {
      Key key = rmi::read<Key>(reader);
      value.insert_or_assign(std::move(key), rmi::read<T>(reader));
    }
    reader.endList();
    return value;
  }
};

/** A list of one value or of none. */
template <typename T>
struct Values<std::optional<T>> {
  static void write(ValueWriter& writer, const std::optional<T>& value) {
    writer.beginList(value ? 1 : 0);
    if (value) rmi::write(writer, *value);
    writer.endList();
  }
  static std::optional<T> read(ValueReader& reader) {
    std::optional<T> value;
    if (const std::size_t size = reader.beginList(); size != 0) {
      detail::expectSize(size, 1);
      value = rmi::read<T>(reader);
    }
    reader.endList();
    return value;
  }
};

template <typename... T>
struct Values<std::tuple<T...>> {
  static void write(ValueWriter& writer, const std::tuple<T...>& value) {
    writer.beginList(sizeof...(T));
    std::apply([&](const auto&... item) { (rmi::write(writer, item), ...); }, value);
    writer.endList();
  }
  static std::tuple<T...> read(ValueReader& reader) {
    detail::expectSize(reader.beginList(), sizeof...(T));
    std::tuple<T...> value{rmi::read<T>(reader)...};  // braces: from left to right
    reader.endList();
    return value;
  }
};

template <typename First, typename Second>
struct Values<std::pair<First, Second>> {
  static void write(ValueWriter& writer, const std::pair<First, Second>& value) {
    rmi::write(writer, std::tuple<First, Second>(value.first, value.second));
  }
  static std::pair<First, Second> read(ValueReader& reader) {
    auto [first, second] = rmi::read<std::tuple<First, Second>>(reader);
    return {std::move(first), std::move(second)};
  }
};

}  // namespace zerva::rmi
