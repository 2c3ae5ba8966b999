#pragma once

#include <cstddef>
#include <string>

#include "framework/Export.h"

class Dll;

namespace zerva {

/**
 * The `Dll` objects of the process. They are kept here also so that those that are left undeleted
 * on purpose stay reachable. Any thread may call any operation.
 */
class ZERVA_EXPORT OpenLibraries {
 public:
  /** @returns how many `Dll` objects live, those whose library did not open included. */
  static std::size_t objects();

  /**
   * @returns where the library of a name is that is open already; empty when there is none. As long
   *     as it is open its name stands for that place.
   */
  static std::string placeOf(const std::string& name);

  /** A `Dll` tells that it begins to live, and that it ends. */
  static void add(const Dll* library);
  static void remove(const Dll* library);

  /** It tells what it has opened, and where. Without memory that is not remembered. */
  static void opened(const Dll* library, const std::string& name, const std::string& path) noexcept;
};

}  // namespace zerva
