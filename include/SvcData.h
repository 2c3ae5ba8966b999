#pragma once

class CommsChannelIfc;
class Dll;
class Service;
class ServiceExecutor;

/** What the repository keeps of one service under one of its interface names. */
struct SvcData {
  /** Made by the library's creator function. */
  Service* service;
  /** Runs the service; null for a legacy service. */
  ServiceExecutor* executor;
  /** The service's channel, owned by the executor; null for a legacy service. */
  CommsChannelIfc* channel;
  /** The library that the service comes from. */
  Dll* dll;
};
