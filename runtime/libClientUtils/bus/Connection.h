#pragma once

#include <sys/types.h>

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "framework/Export.h"
#include "runtime/libClientUtils/bus/FileDescriptor.h"
#include "runtime/libClientUtils/bus/FrameBuffer.h"

struct iovec;

namespace zerva {

/**
 * A socket to another process: what arrives is cut into frames on the bus thread, what is sent goes
 * out on the sender's thread as far as the socket takes it.
 */
class ZERVA_EXPORT Connection final : public std::enable_shared_from_this<Connection> {
 public:
  /** Who is told, on the bus thread. */
  struct Handler {
    /** A frame without its length, valid during the call. */
    std::function<void(std::string_view body)> frame;
    /** It has ended. @param why something is wrong with the other side; empty when it went away. */
    std::function<void(const std::string& why)> ended;
    /** More can be sent now; told once for each `awaitWritable`. */
    std::function<void()> writable;
  };

  /** @param limit the longest frame that is taken. */
  Connection(std::shared_ptr<asio::io_context> context, FileDescriptor socket, std::size_t limit);
  ~Connection();

  // On the bus thread.

  /** Says who is told from here on, and how long frames may be. */
  void setHandler(Handler handler, std::size_t limit);

  /** Begins to read. */
  void start();

  /** Ends it; nobody is told anything any more. May be repeated. */
  void close();

  // On any thread.

  /** Has `start` called on the bus thread. */
  void postStart();

  /** Has `Handler::writable` called as soon as something can be sent. */
  void awaitWritable();

  /** Sends what can be sent now. @returns how many bytes, or a negative error number. */
  ssize_t send(iovec* parts, std::size_t count);

  /**
   * Lets the other side see the end of what is sent, so that it waits for nothing more and closes
   * the connection. What comes from it until then is still read.
   */
  void endSending();

  /** Sends a short frame at the beginning; the stream ends when there is no room for it. */
  void sendGreeting(std::string frame);

  /** @returns whether the other side has closed it, be there still something to be read or not. */
  bool hungUp() const;

 private:
  void read();
  void received(std::size_t size);
  void takeFrames();
  void end(const std::string& why);

  const std::shared_ptr<asio::io_context> context_;

  // Of the bus thread.
  asio::local::stream_protocol::socket socket_;
  FrameBuffer frames_;
  std::shared_ptr<const Handler> handler_;

  mutable std::mutex mutex_;
  int descriptor_;  // guarded by mutex_; -1 once it is closed
};

}  // namespace zerva
