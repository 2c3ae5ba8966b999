#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/DecodeException.h"
#include "rmi/Carried.h"
#include "rmi/ProxyOf.h"
#include "runtime/libClientUtils/protocols/SimpleRmiAdapter.h"

namespace zerva::rmi {
namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

enum class Direction : std::uint8_t { North, West = 3 };

struct Sample {
  double speed = 0;
  std::string station;
  Direction from = Direction::North;
  static constexpr auto fields = std::make_tuple(&Sample::speed, &Sample::station, &Sample::from);
  bool operator==(const Sample& other) const {
    return speed == other.speed && station == other.station && from == other.from;
  }
};

/** @returns what arrives when one type is sent and another, or the same, expected. */
template <typename Expected, typename Given>
Expected carried(const Given& given) {
  SimpleRmiAdapter adapter;
  std::string bytes;
  adapter.writeReply(Sent<Given>(given), bytes);
  Received<Expected> received;
  adapter.readReply(bytes, received);
  return received.value;
}

template <typename T>
void expectCarried(const T& value) {
  EXPECT_EQ(carried<T>(value), value);
}

TEST(Values, OfEveryKindArriveAsTheyWere) {
  expectCarried(true);
  expectCarried<signed char>(-100);
  expectCarried<std::uint16_t>(65535);
  expectCarried<long>(-5);
  expectCarried<unsigned long long>(~0ULL);
  expectCarried(1.5F);
  expectCarried(Direction::West);
  expectCarried(std::string("text"));
  expectCarried(std::vector<bool>{true, false});
  expectCarried(std::vector<std::vector<int>>{{1, 2}, {}, {3}});
  expectCarried(std::map<std::string, std::optional<int>>{{"a", 1}, {"b", std::nullopt}});
  expectCarried(std::make_pair(std::string("x"), 2));
  expectCarried(std::make_tuple(1, std::string("two"), 3.0));
  expectCarried(Sample{3.5, "west pier", Direction::West});
  expectCarried(std::vector<Sample>{{1, "a", Direction::North}, {2, "b", Direction::West}});
}

/** Counts how often it is copied. */
struct Copied {
  Copied() = default;
  Copied(const Copied& other) : copies(other.copies + 1) {}
  Copied& operator=(const Copied& other) {
    copies = other.copies + 1;
    return *this;
  }
  int copies = 0;
  static constexpr auto fields = std::make_tuple(&Copied::copies);
};

class Station {
 public:
  virtual void keep(const Copied& copied, const std::string& name, double speed) = 0;

 protected:
  ~Station() = default;
};

class StationProxy : public ProxyOf<Station> {
 public:
  void keep(const Copied& copied, const std::string& name, double speed) override {
    call(ZERVA_METHOD(Station::keep), copied, name, speed);
  }
  void keepOthers() const { call(ZERVA_METHOD(Station::keep), Copied(), "a longer name", 3); }
};

/** Writes what it is handed. */
class WritingRequest final : public ProxyRequest {
 public:
  const std::string& getSvcChannel() const override { return name_; }
  const std::string& getQualifier() const override { return name_; }
  void call(const std::string& method, const Writable& arguments, Readable& result) override {
    SimpleRmiAdapter().writeCall(method, arguments, bytes);
    std::string reply;
    SimpleRmiAdapter().writeReply(Sent<void>(), reply);
    SimpleRmiAdapter().readReply(reply, result);
  }

  std::string bytes;

 private:
  const std::string name_;
};

/** @returns what the bytes of a call hold. */
std::tuple<int, std::string, double> kept(const std::string& call) {
  Received<std::tuple<std::tuple<int>, std::string, double>> received;
  SimpleRmiAdapter().readCall(call, received);
  const auto& [copied, name, speed] = received.value;
  return {std::get<0>(copied), name, speed};
}

TEST(AProxy, SendsWhatItIsGivenWithoutACopy) {
  WritingRequest request;
  StationProxy sut;
  sut.initialise(&request);
  sut.keep({}, "pier", 1.5);
  EXPECT_EQ(kept(request.bytes), std::make_tuple(0, "pier", 1.5));
}

TEST(AProxy, SendsWhatItIsGivenAsTheTypesOfItsMethod) {
  WritingRequest request;
  StationProxy sut;
  sut.initialise(&request);
  sut.keepOthers();
  EXPECT_EQ(kept(request.bytes), std::make_tuple(0, "a longer name", 3.0));
}

TEST(Values, ThatDoNotFitTheExpectedNumberAreRefused) {
  EXPECT_THROW(carried<std::int8_t>(128), DecodeException);
  EXPECT_THROW(carried<std::int8_t>(-129), DecodeException);
  EXPECT_THROW(carried<std::uint8_t>(256U), DecodeException);
  EXPECT_THROW(carried<unsigned>(-1), DecodeException);
}

TEST(Values, OfAListOfAnotherSizeAreRefused) {
  using Two = std::tuple<int, int>;
  EXPECT_THAT(([] { carried<Two>(std::make_tuple(1)); }),
              ThrowsMessage<DecodeException>(HasSubstr("2 values were expected, not 1")));
  EXPECT_THROW(carried<Sample>(std::make_tuple(1.0, std::string())), DecodeException);
  EXPECT_THROW((carried<std::map<int, int>>(std::vector<int>{1, 2, 3})), DecodeException);
  EXPECT_THROW(carried<std::optional<int>>(std::vector<int>{1, 2}), DecodeException);
}

}  // namespace
}  // namespace zerva::rmi
