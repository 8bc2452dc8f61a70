#include "broker/packet_check.h"

#include <gtest/gtest.h>

namespace keplo::broker {
namespace {

using namespace std::string_literals;

/// The result for a stream that arrives byte by byte.
std::string Passed(int version, const std::string& stream) {
  PacketCheck check(version);
  for (const char byte : stream) {
    if (!check.Take({&byte, 1})) return "refused";
  }
  return check.Whole();
}

TEST(BrokerPacketCheck, PassesOnlySoundPackets) {
  const std::string connected =
      "\x20\x0c\0\0\x09\x21\0\x05\x1f\0\x03"
      "abc"s;
  const std::string news =
      "\x32\x0a\0\x01t\0\x07\x02\x01\x01"
      "xy"s;
  const std::string answers = "\x40\x02\0\x07\x90\x04\0\x01\0\x01\xb0\x04\0\x01\0\0\xd0\0\xe0\x02\x8e\0"s;
  const std::string up = "\x20\x03\0\0\0"s;
  EXPECT_EQ(Passed(5, connected + news + answers + "\x30\x05\0"s), connected + news + answers);
  const struct {
    int Version;
    std::string Stream;
  } refused[] = {
      {5, "HTTP/1.1 400 Bad Request\r\n"s},
      {5, "\x15\x03\x03\0\x02\x02\x28"s},  // a TLS record
      {4, "\x20\x02\0\0\xe0\0"s},          // in 3.1.1, brokers do not send DISCONNECT
      {4, "\x20\x06\0\0\x03\x7f\0\x01"s},
      {5, "\x20\xff\xff\xff\xff\x01"s},    // an endless length
      {5, up + "\x30\xff\xff\xff\x7f"s},   // one of 256 MB
      {5, "\x20\x06\0\0\x03\x7f\0\x01"s},  // an unknown property
      {5, "\x20\x05\0\0\x02\x21\0"s},      // a property without its end
      {5, up + "\x32\x09\0\x01t\0\x07\x09\x01\x01"
               "x"s},                // properties beyond their packet
      {5, up + "\x32\x03\0\x09t"s},  // a topic beyond it
      {5, up + "\x42\x02\0\x07"s},   // flags that such a packet cannot have
      {5, "\x30\x05\0\x01t\0x"s},    // a message before the answer to the connection request
      {5, up + "\xe0\x04\x8e\x02\x7f\0"s},
  };
  for (const auto& row : refused) EXPECT_EQ(Passed(row.Version, row.Stream), "refused") << row.Stream;
}

}  // namespace
}  // namespace keplo::broker
