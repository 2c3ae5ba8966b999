// A plug-in for class_loader. As its macro for that does, but under a name that is no class's.

#include <class_loader/class_loader_core.hpp>

#include "bench/peers/PeerEcho.h"

namespace {

class ClassLoaderEcho : public PeerEcho {};

class Registration {
 public:
  Registration()
      : holder_(class_loader::impl::registerPlugin<ClassLoaderEcho, PeerEcho>(peerEchoName,
                                                                              "PeerEcho")) {}

 private:
  class_loader::impl::UniquePtr<class_loader::impl::AbstractMetaObjectBase> holder_;
};

const Registration registration;

}  // namespace
