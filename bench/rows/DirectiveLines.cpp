#include <string>

#include "bench/harness/Clock.h"
#include "bench/ours/World.h"
#include "bench/rows/Rows.h"

namespace zerva::bench {

namespace {

constexpr double kLeastLines = 100000;
constexpr int kKinds = 4;

/** Lines that are read whole and do nothing: a service that was switched off, a remark, a line that
 * is not finished, an empty one. */
std::string linesWithoutEffect(int count) {
  std::string text;
  for (int i = 0; i < count / kKinds; ++i) {
    text += "comment: ST libExampleWater" + std::to_string(i) +
            ".so  createWaterThermometer\t/example/water ExampleWaterThermometerIfc\n";
    text += "# Created now; its calls and its timer run beside each other, on the pool.\n";
    text += "service_instance:   libExampleWater" + std::to_string(i) + ".so\n";
    text += "\n";
  }
  return text;
}

/** @returns lines a second. */
Figures process(const std::string& lines, int count) {
  World world({.registry = false});
  const DirectiveFile file(lines);
  const Stopwatch watch;
  world.process(file);
  return {count / watch.microseconds() * 1e6};
}

}  // namespace

void directiveLines(Bench& bench) {
  const int count = bench.sized(100000, 400);
  const Series series =
      bench.run(1, {{"ours", [count] { return process(linesWithoutEffect(count), count); }}});
  bench.table("lines", "Directive lines without effect", "lines a second")
      .add("mixed lines", series.cells());
  bench.aimAtLeast("directive lines without effect", series.figure(0), kLeastLines,
                   "lines a second");
}

}  // namespace zerva::bench
