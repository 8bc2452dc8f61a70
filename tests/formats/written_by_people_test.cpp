#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "formats/remote.h"
#include "remote_keys.h"

namespace keplo {
namespace {

std::string CodesOf(const std::string& text, std::string_view format = {}) {
  std::string codes;
  for (const RemoteKey& key : KeysOf(ReadRemotes(text, "x", format))) {
    codes += (codes.empty() ? "" : " ") + key.Name.value_or("") + "=" + Digits(key);
  }
  return codes;
}

/// What is told when a csv row or a text of lirc is written as another format.
TEST(Remotes, TellWhatAFormatDoesNotKeep) {
  struct Row {
    const char *Text, *To, *Tells;
  };
  const std::string head = "functionname,protocol,device,subdevice,function\n";
  for (const Row& row : {Row{"A,NECx1,1,2,3\n", "ha", "short repeat of NECx1"},
                         Row{"VOL UP,NEC1,1,2,3\nVOL_UP,NEC1,1,2,4\nend,NEC1,1,2,5\n", "lirc",
                             "\"VOL_UP-2\", one word\nthe name \"end\" is written as \"_end\""}}) {
    std::vector<Complaint> told;
    WriteRemotes(row.To, ReadRemotes(head + row.Text, "x").Remotes, told);
    std::string all;
    for (const Complaint& complaint : told) all += complaint.Message() + '\n';
    EXPECT_NE(all.find(row.Tells), std::string::npos) << all;
  }
}

TEST(WrittenByPeople, IsRead) {
  const std::string nec = "00000010111111010000000111111110";
  EXPECT_EQ(
      CodesOf(
          "functionname,protocol,device,subdevice,function\n\"a, b\",nec1,64,-1,128\nc,d,NEC1,64,191,128\n"),
      "a, b=" + nec + " c,d=" + nec)
      << "names with commas, protocols in lower case";
  EXPECT_EQ(CodesOf("<A>\n0000006d0000\n0002 0156 00ab\n0015 05f1\nB: 900a 006c 0000 0001 4000 807f\n"),
            "A= B=00000010000000000000000111111110")
      << "Pronto over lines, without blanks, in lower case";
  EXPECT_EQ(CodesOf("900A 006C 0000 0001 4000 807F\n\nA: 1 = 900A 006C 0000 0001 4000 807F\n"),
            "=00000010000000000000000111111110 A: 1=00000010000000000000000111111110")
      << "Pronto without a name, which is no row of lengths, and behind one with a colon";
  EXPECT_EQ(CodesOf("name: A\ntype: parsed\nprotocol: NEC\naddress: 40 00 00\ncommand: 80 00 00\n"),
            "A=" + nec)
      << "no head, three bytes";
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
  EXPECT_EQ(CodesOf("scancode nec:0x4080\nscancode RC-5:0xfe41\nscancode sony-20:0x10051\n"),
            "=" + nec + " =10011110000001 =10001011000000000000");
  EXPECT_EQ(CodesOf("substitutions:\n  where: '0x8'\nx:\n - name: ${where} $\n   then:\n"
                    "    remote_transmitter.transmit_rc5: {address: $where, command: 1}\n"),
            "0x8 $=11001000000001");
  EXPECT_EQ(CodesOf("MUTE: 2600040020202020\n2600040020202020\n"), "MUTE= =") << "a name ahead, or none";
  EXPECT_EQ(CodesOf("[[protocols]]\nname = \"a\"\nprotocol = \"pulse_distance\"\nbits = 5\n"
                    "[protocols.scancodes]\n0x12 = \"A\"\n"),
            "A=10010")
      << "digits that are too few to be read from lengths";
  EXPECT_EQ(CodesOf("\x1B[0;36m[D][remote.rc5:1]: Received RC5: address=0x08, command=0x01\x1B[0m\n"),
            "=11001000000001");
  const std::string rc5 = "functionname, protocol, device, subdevice, function\nA\tRC5\t8\t-1\t1\n";
  EXPECT_EQ(CodesOf(rc5), "A=11001000000001");
  for (const auto& [path, name] :
       {std::pair("Maker/TV_LX/8,-1.csv", "Maker TV_LX"), {"Maker/TV_LX/TV.csv", "TV"}})
    EXPECT_EQ(ReadRemotes(rc5, path).Remotes.at(0).Name, name)
        << "a folder stands for the numbers of a device";
  EXPECT_EQ(
      CodesOf("x:\n - name: A\n   then:\n    remote_transmitter.transmit_pioneer: {rc_code_1: 0xA50A}\n"),
      "A=10100101010110100101000010101111");
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
  std::vector<Complaint> told;
  const RemoteFile unnamed = ReadRemotes("scancode nec:0x4080\nscancode necx:0x402080\n", "x");
  EXPECT_NE(WriteRemotes("keymap", unnamed.Remotes, told).find("0x402080"), std::string::npos);
  EXPECT_NE(WriteRemotes("irdb", unnamed.Remotes, told).find("key 2,NEC1,64,32,128"), std::string::npos);
  const PulseTrain turns =
      KeysOf(ReadRemotes("functionname,protocol,device,subdevice,function\nA,Denon,3,-1,7\n", "x"))[0]
          .Lengths;
  EXPECT_EQ(std::count(turns.begin(), turns.end(), 43'560), 2) << "two frames, each with its gap";
  EXPECT_EQ(CodesOf(R"({"IrReceived":{"Protocol":"SONY","Bits":12,"DataLSB":"0x5081"}})"), "=101010000001");
  const std::string shortForm = "900A 006C 0000 0001 4000 807F\n";
  EXPECT_EQ(CodesOf("A: " + shortForm + "CAFE BABE " + shortForm + "7000 006C 0000 0001 0000 0000\n"),
            "A=00000010000000000000000111111110 CAFE BABE=00000010000000000000000111111110 =")
      << "a name that looks like two words of Pronto, and a code of a foreign type";
  const std::string press = "pulse 900\nspace 900\npulse 900\ntimeout 99999\n", low = "carrier 36000\n",
                    high = "carrier 40000\n";
  for (const auto& [text, carriers] : {std::pair(press + low + press + high, "36000 40000 "),
                                       {press + low + press + high + press, "0 36000 40000 "},
                                       {low + press + high + press, "36000 40000 "}}) {
    std::string heard;
    for (const RemoteKey& key : KeysOf(ReadRemotes(text, "x")))
      heard += std::to_string(key.Carrier.value_or(0)) + ' ';
    EXPECT_EQ(heard, carriers);
  }
  const std::string necCommand =
      "<parameters protocol='NEC1'><parameter name='D' value='64'/></parameters><command name='B' F='128'/>";
  EXPECT_EQ(CodesOf("<remotes><commandSet>" + necCommand + "</commandSet></oops>"), "B=" + nec)
      << "whole ahead of the fault";
  EXPECT_EQ(CodesOf("IRSend {\"Protocol\":\"PANASONIC\",\"Bits\":16388,\"Data\":\"0x538BC81\"}\n"),
            "=010000000000010000000101001110001011110010000001");
}

}  // namespace
}  // namespace keplo
