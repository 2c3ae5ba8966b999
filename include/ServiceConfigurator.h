#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "FrameworkContext.h"
#include "SvcRTEContext.h"
#include "framework/Export.h"

class AbstractProtocolRepository;
class AbstractServiceRepository;
class CCInterceptorDispatcher;
class CommsChannelIfc;
class FwkTimer;
class InvokeInterceptorDispatcher;
class Semaphore;
class ServiceThreadPool;

/**
 * Brings the services of a process up from a directive file, is their run-time context while they
 * run, and takes them down again.
 *
 * A host constructs one, calls `processDirectives`, and deletes it at the end; the destructor stops
 * and deletes everything that was made. What is handed to a constructor stays the host's and must
 * outlive the configurator. Failures are reported by results and in the log; exceptions come only
 * from constructors, from `findProtocolAdapter`, and from the code of others, which passes through.
 *
 * The operations of the two contexts, and what they use (`findInRegistry`,
 * `initProxyAndAddToRepository`, `parseDirectives`, `formatString`), may be called from any thread
 * of a service; everything else is for the host's thread.
 */
class ZERVA_EXPORT ServiceConfigurator : public SvcRTEContext, protected FrameworkContext {
 public:
  /**
   * A configurator without interceptors and without protocol adapters; it can make no proxies.
   *
   * @param channel the host's channel, on which the registry is asked; null is found only when the
   *     registry is to be asked.
   * @param repository where everything that is made is recorded.
   * @throws const char* when the repository is null.
   */
  ServiceConfigurator(CommsChannelIfc* channel, AbstractServiceRepository* repository);

  /**
   * As before, with a dispatcher for the channels of services.
   *
   * @throws FrameworkException when the dispatcher is null; tested first.
   * @throws const char* when the repository is null.
   */
  ServiceConfigurator(CommsChannelIfc* channel, AbstractServiceRepository* repository,
                      CCInterceptorDispatcher* dispatcher);

  /**
   * The full configurator.
   *
   * @param protocols where adapters for protocols are found.
   * @param dispatcher told of the messages of the services' channels; may be null.
   * @param invokeDispatcher told of the requests that services have served; may be null.
   * @throws FrameworkException when `protocols` is null; tested first.
   * @throws const char* when the repository is null.
   */
  ServiceConfigurator(CommsChannelIfc* channel, AbstractServiceRepository* repository,
                      AbstractProtocolRepository* protocols, CCInterceptorDispatcher* dispatcher,
                      InvokeInterceptorDispatcher* invokeDispatcher);

  /**
   * Stops timers and services and deletes every service, proxy and invoker with all that belongs to
   * it. No service may still be calling the configurator. Waits without limit for the threads of
   * legacy services.
   */
  ~ServiceConfigurator() override;
  ServiceConfigurator(const ServiceConfigurator&) = delete;
  ServiceConfigurator& operator=(const ServiceConfigurator&) = delete;

  /** The body that the constructors share. */
  void constructorActions(CommsChannelIfc* channel, AbstractServiceRepository* repository,
                          AbstractProtocolRepository* protocols,
                          CCInterceptorDispatcher* dispatcher,
                          InvokeInterceptorDispatcher* invokeDispatcher);

  /** Loads the invoker of the service registry and records it under both protocols. */
  void createSvcRegInvoker();

  /**
   * Does what a directive file says, line by line, before it returns.
   *
   * @param fileName path of the file. Its lines hold at most 511 characters, a carriage return
   *     counted; with a longer one the call does not return, nor does it for a directory.
   * @throws std::out_of_range when a line with a mode field has too few fields; what the services'
   *     own code throws passes too. The rest of the file is then not processed.
   */
  void processDirectives(std::string fileName);

  /**
   * Cuts a line of the form keyword ":" fields.
   *
   * @param line the text; not necessarily terminated.
   * @param length how many characters of it count.
   * @param separators each of its characters separates fields.
   * @returns the keyword and at least four fields; only "comment" for a line that begins with "#";
   *     nothing for a line without a colon.
   */
  std::vector<std::string> parseDirectives(const char* line, int length, std::string separators);

  /** Brings the spacing of a line into its one canonical form, in place. */
  void formatString(std::string& text);

  /**
   * Creates a service that runs a thread of its own. Blocks for as long as its creator and its
   * `init` take.
   *
   * @param lib the library's file name.
   * @param creator the name of the creator function in it.
   * @param ifc interface names separated by single blanks.
   * @returns the service, kept by the repository, or null; why is in the log.
   * @throws what the creator or `init` throws. The service stays recorded when it was `init`.
   */
  Service* createService(std::string lib, std::string creator, std::string ifc);

  /**
   * Creates a service with channel and executor, now. Blocks for as long as its creator, its `init`
   * and the service registry take.
   *
   * @param lib the library's file name.
   * @param creator the name of the creator function in it.
   * @param chan name of its channel.
   * @param ifc interface names separated by single blanks.
   * @param flag whether its requests may run at the same time.
   * @returns the service, kept by the repository, or null; why is in the log.
   * @throws what the creator or `init` throws. The service stays recorded when it was `init`.
   */
  Service* createServiceExecutor(const std::string& lib, const std::string& creator,
                                 const std::string& chan, const std::string& ifc, bool flag);

  /**
   * Opens the channel of a service that is created when it is first needed. Parameters as for
   * `createServiceExecutor`.
   *
   * @returns null.
   */
  Service* createServiceExecutorDelayedInitialisation(const std::string& lib,
                                                      const std::string& creator,
                                                      const std::string& chan,
                                                      const std::string& ifc, bool flag);

  /**
   * Tells the service registry where the invoker of an interface for a protocol lives. May block
   * while the registry is looked for; when there is none, that is in the log and the record is
   * lost.
   *
   * @param lib file name of the library.
   * @param creator name of the creator function that it exports.
   * @param ifc name of the interface.
   * @param prot name of the protocol.
   */
  void registerInvokerInfo(const std::string& lib, const std::string& creator,
                           const std::string& ifc, const std::string& prot);

  /** Tells the service registry where the proxy of an interface lives; as `registerInvokerInfo`. */
  void registerProxyInfo(const std::string& lib, const std::string& creator, const std::string& ifc,
                         const std::string& prot);

  /**
   * Asks the service registry on the host's channel, which must not be null, and waits for the
   * answer.
   *
   * @param request the question.
   * @param response gets the answer; the question itself when none came.
   */
  void findInRegistry(std::string& request, std::string& response);

  /**
   * Makes a proxy and records it. One proxy is made at a time; blocks while another is.
   *
   * @param lib file name of the proxy's library.
   * @param creator name of the creator function that it exports.
   * @param svcChannel name of the channel that the proxy talks to.
   * @param ifc name of the interface that it stands for.
   * @param qualifier tells it apart from other proxies for the same interface and channel.
   * @returns the proxy, kept by the repository, or null; why is in the log.
   * @throws what somebody else's code throws. No proxy can be made or removed afterwards.
   */
  Proxy* initProxyAndAddToRepository(std::string& lib, std::string& creator,
                                     std::string& svcChannel, std::string& ifc,
                                     std::string& qualifier);

  Executable* findExecutable(std::string& name) override;
  Proxy* findProxy(std::string& ifc, std::string& svcChannel) override;
  Proxy* findProxy(std::string& ifc, std::string& svcChannel, std::string& qualifier) override;
  Executable* findService(const std::string& ifc) override;
  int createTimer(Executable* owner, int period) override;
  bool startTimer(int id) override;
  bool stopTimer(int id) override;
  bool resetTimer(int id) override;
  bool deleteTimer(int id) override;
  bool timerRunning(int id) override;
  void shutdown() override;
  void removeAndDeleteProxyFromRepository(Proxy* proxy, std::string& interfaceName) override;

  Invoker* findInvoker(std::string& interfaceName, std::string& protocol) override;
  std::string findChannel(Executable* executable) override;
  Service* initialiseService(ServiceExecutor* executor, std::string lib, std::string creator,
                             CommsChannelIfc* channel, std::string ifc) override;
  ProtocolAdapter* findProtocolAdapter(std::string& protocol) override;
  Service* findRealService(const std::string& interfaceName,
                           const std::string& channelName) override;

 protected:
  static const std::string SVC_REG_INVOKER_LIB;
  static const std::string SVC_REG_INVOKER_CREATORFN;
  static const std::string SVC_REG_INVOKER_INTERFACE;
  static const std::string SVC_REG_INVOKER_PROTOCOL1;
  static const std::string SVC_REG_INVOKER_PROTOCOL2;

  // The host's; constant after construction.
  CommsChannelIfc* commsChannel;
  AbstractServiceRepository* serviceRepository;
  CCInterceptorDispatcher* ccInterceptorDispatcher;
  AbstractProtocolRepository* protocolRepository;
  InvokeInterceptorDispatcher* invokeInterceptorDispatcher;

  // Ours; constant after construction.
  ServiceThreadPool* threadPool;
  FwkTimer* timer;
  /** Serialises the making and removing of proxies. */
  Semaphore* proxySem;
  /** Serialises the making of invokers. */
  Semaphore* invokerSem;
  Semaphore* registrySem;
  /** Id of the last request to the registry; guarded by `registrySem`. */
  std::uint32_t registryRequestId;
};
