#pragma once

#include <memory>
#include <string>

#include "framework/Export.h"

/**
 * A shared library, open as long as the object lives. All its symbols are bound at opening, so that
 * a missing one fails there and not in the middle of a service; it sees no symbols of other service
 * libraries and shows them none.
 *
 * An object is used by one thread at a time; different objects are independent.
 */
class ZERVA_EXPORT Dll {
 public:
  /**
   * Opens a library. Whether that worked is told by `error`.
   *
   * @param path a file name; without a slash it is searched in the host's library directories
   *     first, then as the system does. Ends at its first NUL byte.
   */
  explicit Dll(const std::string& path);

  /** Closes the library: unmaps it unless somebody else has it open. */
  virtual ~Dll();
  Dll(const Dll&) = delete;
  Dll& operator=(const Dll&) = delete;

  /**
   * Resolves an exported symbol. Whether that worked is told by `error`, not by the address.
   *
   * @param name the symbol's name; ends at its first NUL byte.
   * @returns the address; null after a failure.
   */
  void* symbol(const std::string& name);

  /**
   * @returns what failed in the last operation, naming library and cause, or null when it
   *     succeeded. The text belongs to the object and is valid until its next operation.
   */
  const char* error();

 private:
  struct State;
  std::unique_ptr<State> state_;
};
