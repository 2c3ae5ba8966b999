#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace zerva {

/** What the system says of a thread of this process. */
inline std::string threadFile(int id, const std::string& file) {
  std::ifstream stream("/proc/self/task/" + std::to_string(id) + "/" + file);
  std::string text;
  std::getline(stream, text);
  return text;
}

/** The letter for the thread's state: 'S' for one that sleeps; 0 when there is no such thread. */
inline char threadState(int id) {
  const std::string text = threadFile(id, "stat");
  const auto name = text.rfind(") ");
  return name == std::string::npos ? '\0' : text[name + 2];
}

/** How many threads this process has. */
inline std::size_t threadCount() {
  std::size_t count = 0;
  for ([[maybe_unused]] const auto& entry :
       std::filesystem::directory_iterator("/proc/self/task")) {
    ++count;
  }
  return count;
}

}  // namespace zerva
