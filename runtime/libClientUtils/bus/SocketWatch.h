#pragma once

#include <array>
#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "framework/Export.h"

namespace zerva {

/**
 * Looks after sockets on the bus thread: tells when something can be done with one, once for each
 * time that it is asked to. What is not asked for wakes nobody, so that another thread may wait for
 * the same socket.
 */
class ZERVA_EXPORT SocketWatch {
 public:
  /** Who is told. */
  class ZERVA_EXPORT Watched {
   public:
    /**
     * On the bus thread. May be told without reason.
     *
     * @param readable whether there is something to read, be it that the other side is gone.
     * @param writable whether something can be sent.
     */
    virtual void ready(bool readable, bool writable) = 0;

   protected:
    ~Watched() = default;
  };

  /** @throws std::system_error without a descriptor for it. */
  explicit SocketWatch(std::shared_ptr<asio::io_context> context);
  ~SocketWatch();
  SocketWatch(const SocketWatch&) = delete;
  SocketWatch& operator=(const SocketWatch&) = delete;

  /** Begins. Before anybody else has it. */
  void start();

  /** Tells nobody any more. On the bus thread. */
  void close();

  // On any thread.

  /**
   * Gets to know a socket; nothing is told yet.
   *
   * @param watched one that is gone is not told.
   * @returns what it is known by from here on.
   * @throws std::system_error when the system does not watch it.
   */
  std::uint64_t add(int socket, std::weak_ptr<Watched> watched);

  /** What is to be told from here on, once; nothing when both are false. */
  void await(int socket, std::uint64_t known, bool readable, bool writable) const;

  /** Forgets a socket, before it is closed. */
  void remove(int socket, std::uint64_t known);

 private:
  /** Memory for the one wait, which never lacks: without it nothing would be read any more. */
  class Room {
   public:
    void* take(std::size_t size);
    void giveBack() { taken_ = false; }

   private:
    static constexpr std::size_t kSize = 256;
    alignas(std::max_align_t) std::array<std::byte, kSize> bytes_;
    bool taken_ = false;
  };

  template <typename T>
  struct Allocator {
    using value_type = T;

    explicit Allocator(std::shared_ptr<Room> from) : room(std::move(from)) {}
    template <typename U>
    Allocator(const Allocator<U>& other) : room(other.room) {}
    T* allocate(std::size_t count) { return static_cast<T*>(room->take(count * sizeof(T))); }
    void deallocate(T* /*memory*/, std::size_t /*count*/) { room->giveBack(); }
    bool operator==(const Allocator& other) const { return room == other.room; }

    // The wait may outlive the watch, in a context that is not run any more.
    std::shared_ptr<Room> room;
  };

  struct Wait {
    using allocator_type = Allocator<void>;
    allocator_type get_allocator() const { return allocator; }
    void operator()(asio::error_code error) const {
      if (!error) watch->tell();
    }

    SocketWatch* watch;
    allocator_type allocator;
  };

  void awaitAny();
  void tell();
  std::shared_ptr<Watched> find(std::uint64_t known) const;

  const std::shared_ptr<asio::io_context> context_;
  const int epoll_;
  asio::posix::stream_descriptor all_;  // owns it
  const std::shared_ptr<Room> room_ = std::make_shared<Room>();

  mutable std::mutex mutex_;
  // Guarded by mutex_.
  std::unordered_map<std::uint64_t, std::weak_ptr<Watched>> watched_;
  std::uint64_t last_ = 0;
};

}  // namespace zerva
