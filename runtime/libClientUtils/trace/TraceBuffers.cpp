#include "runtime/libClientUtils/trace/TraceBuffers.h"

#include <cstring>
#include <utility>

#include "runtime/libClientUtils/ExceptionText.h"

namespace zerva {

void TraceBuffers::reserve() {
  spare_.bytes.resize(kBytes);
  for (Buffer& buffer : buffers_) {
    Piece piece{std::vector<char>(kBytes), 0, 0};
    std::vector<Piece> full;
    const std::lock_guard lock(buffer.mutex);
    std::swap(buffer.piece, piece);
    buffer.full.swap(full);
    pieces_.fetch_sub(full.size(), std::memory_order_relaxed);
  }
  takeLost();
}

bool TraceBuffers::add(unsigned which, std::string_view record) noexcept {
  Buffer& buffer = buffers_[which % kBuffers];
  constexpr std::size_t half = kBytes / 2;
  {
    const std::lock_guard lock(buffer.mutex);
    Piece& piece = buffer.piece;
    if (piece.fits(record) || (grow(buffer) && piece.fits(record))) {
      const std::size_t before = piece.used;
      std::memcpy(piece.bytes.data() + before, record.data(), record.size());
      piece.used += record.size();
      ++piece.records;
      return before < half && piece.used >= half;
    }
  }
  countLost(1);
  return false;
}

/** Puts an empty piece in place of the full one. @returns false when there is none. */
bool TraceBuffers::grow(Buffer& buffer) noexcept {
  // Before the first start there is no memory, and none is wanted.
  if (buffer.piece.bytes.empty()) return false;
  if (pieces_.fetch_add(1, std::memory_order_relaxed) < kMostPieces) {
    const auto error = exceptionOf([&] {
      buffer.full.reserve(buffer.full.size() + 1);
      Piece piece{std::vector<char>(kBytes), 0, 0};
      std::swap(buffer.piece, piece);
      buffer.full.push_back(std::move(piece));
    });
    if (!error) return true;
  }
  pieces_.fetch_sub(1, std::memory_order_relaxed);
  return false;
}

void TraceBuffers::takeAll(std::string& records) noexcept {
  for (Buffer& buffer : buffers_) {
    std::vector<Piece> full;
    {
      const std::lock_guard lock(buffer.mutex);
      full.swap(buffer.full);
      std::swap(buffer.piece, spare_);
    }
    for (const Piece& piece : full) take(piece, records);
    take(spare_, records);
    spare_.used = 0;
    spare_.records = 0;
    pieces_.fetch_sub(full.size(), std::memory_order_relaxed);
  }
}

void TraceBuffers::take(const Piece& piece, std::string& records) noexcept {
  if (exceptionOf([&] { records.append(piece.bytes.data(), piece.used); })) {
    countLost(piece.records);
  }
}

}  // namespace zerva
