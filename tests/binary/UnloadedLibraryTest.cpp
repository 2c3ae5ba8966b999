// The product as a library that comes and goes: this program is linked with none of it.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <string>

namespace {

struct Constant {
  const char* symbol;
  const char* value;
};

constexpr std::array<Constant, 5> kConstants = {{
    {"_ZN19ServiceConfigurator19SVC_REG_INVOKER_LIBB5cxx11E", "libServiceRegistry.so"},
    {"_ZN19ServiceConfigurator25SVC_REG_INVOKER_CREATORFNB5cxx11E", "createServiceRegistryInvoker"},
    {"_ZN19ServiceConfigurator25SVC_REG_INVOKER_INTERFACEB5cxx11E", "ServiceRegistryIfc"},
    {"_ZN19ServiceConfigurator25SVC_REG_INVOKER_PROTOCOL1B5cxx11E", "zerva_svc_xml"},
    {"_ZN19ServiceConfigurator25SVC_REG_INVOKER_PROTOCOL2B5cxx11E", "zerva_simple_rmi"},
}};

/** The memory of the constants that have some of their own, until it is freed. */
constinit std::array<const void*, kConstants.size()> texts{};

std::filesystem::path library() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / "lib" /
         "libServiceConfigurator.so";
}

/** @returns the constant at a place of the list, in the library that is loaded. */
const std::string* constantOf(void* handle, std::size_t place) {
  return static_cast<const std::string*>(dlsym(handle, kConstants.at(place).symbol));
}

/** Whether a text does not lie in its own object. */
bool hasMemory(const std::string& text) {
  const char* const begin = reinterpret_cast<const char*>(&text);
  return text.data() < begin || text.data() >= begin + sizeof text;
}

std::ptrdiff_t textsWithMemory() {
  return std::count_if(texts.begin(), texts.end(),
                       [](const void* text) { return text != nullptr; });
}

TEST(TheLibrary, BuildsItsConstantsWhenItIsLoadedAndDestroysThemWhenItIsUnloaded) {
  for (int time = 1; time <= 2; ++time) {
    SCOPED_TRACE(time);
    void* const handle = dlopen(library().c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    for (std::size_t place = 0; place < kConstants.size(); ++place) {
      const std::string* const constant = constantOf(handle, place);
      ASSERT_NE(constant, nullptr) << kConstants.at(place).symbol;
      EXPECT_EQ(*constant, kConstants.at(place).value);
      texts.at(place) = hasMemory(*constant) ? constant->data() : nullptr;
    }
    EXPECT_GE(textsWithMemory(), 3);
    EXPECT_EQ(dlclose(handle), 0);
    EXPECT_EQ(textsWithMemory(), 0) << "not destroyed";
    EXPECT_EQ(dlopen(library().c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr) << "still loaded";
  }
}

}  // namespace

// The library's texts are given back here, too.

__attribute__((visibility("default"))) void* operator new(std::size_t size) {
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

__attribute__((visibility("default"))) void operator delete(void* memory) noexcept {
  if (memory != nullptr)
    std::replace(texts.begin(), texts.end(), static_cast<const void*>(memory),
                 static_cast<const void*>(nullptr));
  std::free(memory);
}

__attribute__((visibility("default"))) void operator delete(void* memory,
                                                            std::size_t /*size*/) noexcept {
  operator delete(memory);
}
