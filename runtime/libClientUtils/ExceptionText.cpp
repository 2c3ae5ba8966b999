#include "runtime/libClientUtils/ExceptionText.h"

#include <cxxabi.h>

#include <exception>

#include "runtime/libClientUtils/TypeName.h"

namespace zerva {

std::string currentExceptionText() {
  if (std::current_exception() == nullptr) return "no exception";
  try {
    throw;
  } catch (const std::exception& exception) {
    const char* text = exception.what();
    return text == nullptr ? "" : text;
  } catch (const std::string& text) {
    return text;
  } catch (const char* text) {
    return text == nullptr ? "" : text;
  } catch (...) {
    const std::type_info* type = abi::__cxa_current_exception_type();
    return type == nullptr ? "an exception of another language"
                           : "an exception of type " + typeName(type->name());
  }
}

}  // namespace zerva
