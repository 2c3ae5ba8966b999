#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "framework/ValueReader.h"

namespace zerva {

/** Reads values that were written as elements of XML. */
class SvcXmlReader final : public ValueReader {
 public:
  /**
   * @param text copied.
   * @param root the name that the outermost element has to have.
   * @throws DecodeException when the text is no such document.
   */
  SvcXmlReader(const std::string& text, const char* root);
  ~SvcXmlReader();
  SvcXmlReader(const SvcXmlReader&) = delete;
  SvcXmlReader& operator=(const SvcXmlReader&) = delete;

  /** @returns the attribute `method` of the outermost element. */
  std::string method() const;

  void readNothing() override;
  bool readBool() override;
  std::int64_t readInteger() override;
  std::uint64_t readUnsigned() override;
  double readReal() override;
  std::string readText() override;
  std::size_t beginList() override;
  void endList() override;

  /** @throws DecodeException when there is more to read. */
  void end() const;

 private:
  struct Document;

  std::string take(const char* kind);

  std::unique_ptr<Document> document_;
};

}  // namespace zerva
