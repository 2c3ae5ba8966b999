#pragma once

#include <sys/types.h>

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "framework/Export.h"
#include "runtime/libClientUtils/Input.h"
#include "runtime/libClientUtils/WakeLine.h"
#include "runtime/libClientUtils/bus/FileDescriptor.h"
#include "runtime/libClientUtils/bus/FrameBuffer.h"
#include "runtime/libClientUtils/bus/SocketWatch.h"

struct iovec;

namespace zerva {

/**
 * A socket to another process. What arrives is cut into frames by one thread at a time: the bus
 * thread or, once the connection is shared, one that waits for something that comes this way. What
 * is sent goes out on the sender's thread as far as the socket takes it.
 */
class ZERVA_EXPORT Connection final : public Input,
                                      public SocketWatch::Watched,
                                      public std::enable_shared_from_this<Connection> {
 public:
  /** Who is told. */
  struct Handler {
    /**
     * A frame without its length, valid during the call; on the thread that reads. What it throws
     * ends the connection.
     *
     * @param data of a long frame may be here, and are not in the body then; else null.
     */
    std::function<void(std::string_view body, Payload data)> frame;
    /**
     * It has ended; on the bus thread. @param why something is wrong with the other side; empty
     * when it went away.
     */
    std::function<void(const std::string& why)> ended;
    /** More can be sent now; on the bus thread, told once for each `awaitWritable`. */
    std::function<void()> writable;
  };

  /** @param limit the longest frame that is taken. */
  Connection(std::shared_ptr<SocketWatch> watch, FileDescriptor socket, std::size_t limit);
  virtual ~Connection();

  /**
   * Says who is told from here on, and how long frames may be. Before it is started, or on the
   * thread that reads.
   */
  void setHandler(Handler handler, std::size_t limit);

  /**
   * Begins to read. Once.
   *
   * @throws std::exception when it cannot be read, for want of memory or of anything else.
   */
  void start();

  /** From here on other threads than the bus thread may read. On the thread that reads. */
  void share();

  // On any thread.

  /** Ends it; nobody is told anything any more, but for a frame under way. May be repeated. */
  void close();

  /** Waits until no thread reads any more. After `close`, on a thread that does not. */
  void waitForReader();

  /** Has `Handler::writable` called as soon as something can be sent. */
  void awaitWritable();

  /** Sends what can be sent now. @returns how many bytes, or a negative error number. */
  ssize_t send(std::span<const iovec> parts);

  /**
   * Lets the other side see the end of what is sent, so that it waits for nothing more and closes
   * the connection. What comes from it until then is still read.
   */
  void endSending();

  /** Sends a short frame at the beginning; the stream ends when there is no room for it. */
  void sendGreeting(std::string frame);

  /** @returns whether the other side has closed it, be there still something to be read or not. */
  bool hungUp() const;

  // Of whoever reads.

  bool beginReading() override;
  Read read() override;
  void endReading() override;
  int descriptor() const override { return socket_.get(); }
  int wakeLine() const override { return line_->descriptor(); }

  void ready(bool readable, bool writable) override;

 private:
  using HandlerPointer = std::shared_ptr<const Handler>;

  bool beginReadingHere();
  Read readSome();
  ssize_t receive(std::span<const std::span<char>, 2> room) const;
  bool takeFrames();
  bool hasLine();
  void fail(std::string why);
  bool hasFailed() const;
  HandlerPointer handler() const;
  void tellWritable();
  void readHere();
  void releaseSocket();
  void awaitMore() const;

  const std::shared_ptr<SocketWatch> watch_;

  // Of the thread that reads.
  FrameBuffer frames_;
  std::string failure_;  // why nothing is read any more, once it has failed

  mutable std::mutex mutex_;
  std::condition_variable readerGone_;
  // Guarded by mutex_.
  FileDescriptor socket_;  // stays as it is while somebody reads
  std::optional<std::uint64_t> watched_;
  HandlerPointer handler_;
  std::optional<WakeLine> line_;
  bool shared_ = false;
  bool reading_ = false;
  bool failed_ = false;
  bool wantsToSend_ = false;
  bool closed_ = false;
};

}  // namespace zerva
