#pragma once

class Dll;
class Invoker;

/** What the repository keeps of one invoker under one interface and protocol. */
struct SvcInvokerData {
  /** Made by the invoker library's creator function. */
  Invoker* invoker;
  /** The library that the invoker comes from. */
  Dll* dll;
};
