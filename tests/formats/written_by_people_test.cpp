#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "formats/remote.h"
#include "remote_keys.h"

namespace keplo {
namespace {

std::string CodesOf(const std::string& text) {
  std::string codes;
  for (const RemoteKey& key : KeysOf(ReadRemotes(text, "x"))) {
    codes += (codes.empty() ? "" : " ") + key.Name.value_or("") + "=" + Digits(key);
  }
  return codes;
}

TEST(WrittenByPeople, IsRead) {
  const std::string nec = "00000010111111010000000111111110";
  EXPECT_EQ(CodesOf("<A>\n0000006d0000\n0002 0156 00ab\n0015 05f1\nB: 900a 006c 0000 0001 4000 807f\n"),
            "A= B=00000010000000000000000111111110")
      << "Pronto over lines, without blanks, in lower case";
  EXPECT_EQ(CodesOf("900A 006C 0000 0001 4000 807F\n\nA: 1 = 900A 006C 0000 0001 4000 807F\n"),
            "=00000010000000000000000111111110 A: 1=00000010000000000000000111111110")
      << "Pronto without a name, which is no row of lengths, and behind one with a colon";
  EXPECT_EQ(
      CodesOf(
          "begin remote\r\nname r\r\nbits 8\r\nflags SPACE_ENC|REVERSE\r\none 500 400\r\nzero 500 1500\r\n"
          "ptrail 500\r\nheader 9000 4000\r\npre_data_bits 8\r\npre_data 0x01\r\n"
          "begin codes\r\nA 017 # octal\r\nend codes\r\nend remote\r\n"),
      "A=0111111100001111")
      << "a shorter one, reversed fields, octal, CR LF";
  const auto described = [](const std::string& rest) {
    return KeysOf(ReadRemotes(
                      "begin remote\nbits 12\none 560 1680\nzero 560 560\nptrail 560\ngap 90000 40000\n" +
                          rest + "\nbegin codes\nA 0xA5F\nend codes\nend remote\n",
                      "x"))
        .front();
  };
  const std::optional<CodedSignal> led = described("plead 560").Coded;
  ASSERT_TRUE(led);
  EXPECT_EQ(led->Again.Gap, 40000) << "the shorter of two gaps, of a frame that is read from its lengths";
  EXPECT_EQ(described("header 9000 4500\nflags NO_HEAD_REP|CONST_LENGTH").Coded->Again.Gap, 53500);
  EXPECT_FALSE(described("header 9000 4500\nfoot 560 2240").Coded) << "a space that is neither digit's";
  const auto frame = [](std::string_view digits) {
    std::string lengths = " 9000 4500";
    for (const char digit : digits) lengths += digit == '1' ? " 560 1690" : " 560 560";
    return lengths + " 560 40000";
  };
  EXPECT_EQ(CodesOf("<remotes><command name=\"A\"><raw><intro>" + frame("01010000") + "</intro><ending>" +
                    frame("11110000") + "</ending></raw></command></remotes>"),
            "A=")
      << "half of a press";
  const RemoteFile held =
      ReadRemotes("<command><raw><repeat>" + frame(nec) + "</repeat></raw></command>", "x");
  EXPECT_EQ(RepeatOf(KeysOf(held).front()), "frame") << "a repeat that the file tells is no usual one";
  const auto dish = [](std::string_view digits) {
    std::string frame = "+500 -6250";
    for (const char digit : digits) frame += digit == '1' ? " +500 -2600" : " +500 -1560";
    return CodesOf(frame + " +500 -40000 " + frame + " +500\n");
  };
  EXPECT_EQ(dish("10101110"), "=10101110") << "a leader that is no digit of three lengths";
  EXPECT_EQ(dish("11111111"), "=11111111") << "a leader that is no digit of two lengths";
  EXPECT_EQ(CodesOf("[[protocols]]\nname = \"" + std::string(100, 'a') +
                    "\"\nprotocol = \"nec\"\n[protocols.scancodes]\n0x4080 = \"A.B\"\n"),
            "A.B=" + nec);
  EXPECT_EQ(CodesOf(R"({"IrReceived":{"Protocol":"SONY","Bits":12,"DataLSB":"0x5081"}})"), "=101010000001");
  const std::string shortForm = "900A 006C 0000 0001 4000 807F\n";
  EXPECT_EQ(CodesOf("A: " + shortForm + "CAFE BABE " + shortForm + "7000 006C 0000 0001 0000 0000\n"),
            "A=00000010000000000000000111111110 CAFE BABE=00000010000000000000000111111110 =")
      << "a name that looks like two words of Pronto, and a code of a foreign type";
}

}  // namespace
}  // namespace keplo
