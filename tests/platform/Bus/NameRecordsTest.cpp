#include <gtest/gtest.h>

#include "runtime/libClientUtils/bus/Frames.h"
#include "runtime/libClientUtils/bus/NameRecords.h"

namespace {

using namespace zerva;

// The example of docs/wire-format.md.
const std::string kExample("ZRVN\x00\x01+\x00\x00\x00\x00\x00\x00\x03\xe8\x00\x02/b", 19);

TEST(AListOfNames, HasTheBytesOfTheDocumentedExampleWhateverTheWordSize) {
  EXPECT_EQ(journalHeader() + servedRecord("/b", 1000), kExample);
}

TEST(AListOfNames, TellsWhatIsServedAndSinceWhen) {
  JournalParser sut;
  EXPECT_TRUE(sut.feed(kExample + servedRecord("/c", 7) + unservedRecord("/b", 8)));
  EXPECT_EQ(sut.names(), (ServedNames{{"/c", 7}}));
}

TEST(AListOfNames, IsReadTheSameByteByByte) {
  const std::string longest(kMaximumName, 'n');
  JournalParser sut;
  for (const char byte :
       kExample + servedRecord(std::string("\0\n/ ", 4), 2) + servedRecord(longest, 3)) {
    ASSERT_TRUE(sut.feed({&byte, 1}));
  }
  EXPECT_EQ(sut.names(), (ServedNames{{"/b", 1000}, {std::string("\0\n/ ", 4), 2}, {longest, 3}}));
}

TEST(AListOfNames, ThatIsSomethingElse_IsRefusedForEver) {
  JournalParser sut;
  EXPECT_FALSE(sut.feed("not a list"));
  EXPECT_FALSE(sut.feed(kExample));
  EXPECT_TRUE(sut.names().empty());
}

TEST(AListOfNames, WithARecordOfAnotherKind_IsRefusedWithAllThatCameBefore) {
  JournalParser sut;
  EXPECT_FALSE(sut.feed(kExample + "?"));
  EXPECT_TRUE(sut.names().empty());
}

TEST(AListOfNames, ThatDoesNotEnd_IsRefused) {
  JournalParser sut;
  ASSERT_TRUE(sut.feed(journalHeader()));
  std::string records;
  for (int i = 0; i < 16; ++i) records += servedRecord(std::string(kMaximumName, 'n'), 1);
  std::size_t fed = 0;
  while (fed <= kMaximumJournal && sut.feed(records)) fed += records.size();
  EXPECT_LE(fed, kMaximumJournal);
}

TEST(AListOfNames, OfTooManyNames_IsRefused) {
  JournalParser sut;
  ASSERT_TRUE(sut.feed(journalHeader()));
  for (std::size_t i = 0; i < kMaximumNames; ++i) {
    ASSERT_TRUE(sut.feed(servedRecord(std::to_string(i), 1)));
  }
  EXPECT_FALSE(sut.feed(servedRecord("one more", 1)));
}

TEST(AListOfNames, WhoseLastRecordIsTakenBackByItsWriter_GoesOnWithAnother) {
  JournalParser sut;
  ASSERT_TRUE(sut.feed(kExample + servedRecord("/half", 5).substr(0, 9)));
  EXPECT_EQ(sut.takeBackPartial(), 9U);
  EXPECT_TRUE(sut.feed(servedRecord("/whole", 6)));
  EXPECT_EQ(sut.names(), (ServedNames{{"/b", 1000}, {"/whole", 6}}));
}

}  // namespace
