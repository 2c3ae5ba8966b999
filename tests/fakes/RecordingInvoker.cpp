#include "tests/fakes/RecordingInvoker.h"

#include "framework/Executable.h"
#include "framework/ProtocolAdapter.h"
#include "tests/fakes/Objects.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/Text.h"
#include "tests/fakes/Trace.h"

namespace zerva::fakes {

RecordingInvoker::RecordingInvoker() {
  const Nested nested;
  constructed(this, "Invoker", {});
}

RecordingInvoker::~RecordingInvoker() { Objects::died(this); }

void RecordingInvoker::invoke(Executable& service, ProtocolAdapter& adapter,
                              const std::string& call, std::string& /*reply*/) {
  called(this, "invoke", {Objects::name(&service), Objects::name(&adapter), inQuotes(call)});
}

}  // namespace zerva::fakes
