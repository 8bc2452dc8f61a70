#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "doubles/temp_folder.h"
#include "formats/remote.h"

namespace keplo {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

fs::path CollectionFolder() {
  const char* const set = std::getenv("KEPLO_REMOTES");
  return set != nullptr ? fs::path(set) : fs::path(KEPLO_SOURCE_DIR) / ".." / "shared" / "remotes";
}

/// The index of the collection; empty where it is not there.
json Collection() {
  std::ifstream index(CollectionFolder() / "index.json");
  return index ? json::parse(index) : json::array();
}

#define SKIP_WITHOUT(collection) \
  if ((collection).empty()) GTEST_SKIP() << "no remotes in " << CollectionFolder() << "; set KEPLO_REMOTES"

std::vector<RemoteKey> KeysOf(const RemoteFile& file) {
  std::vector<RemoteKey> keys;
  for (const Remote& remote : file.Remotes) keys.insert(keys.end(), remote.Keys.begin(), remote.Keys.end());
  return keys;
}

std::string Digits(const RemoteKey& key) { return key.Coded ? key.Coded->Digits : ""; }
std::string RepeatOf(const RemoteKey& key) {
  return key.Coded ? std::string(NameOf(key.Coded->Again.Kind)) : "";
}

bool CarriersAgree(std::optional<int> left, std::optional<int> right) {
  return std::abs(left.value_or(38000) - right.value_or(38000)) * 100 <= right.value_or(38000);
}

void ExpectKey(const RemoteKey& key, const json& truth) {
  constexpr const char* kLines[] = {"distance", "width", "biphase"};
  EXPECT_EQ(key.Name.value_or(""), truth.value("key", ""));
  if (truth["kind"] == "other") {
    EXPECT_TRUE(key.Coded || key.IsRaw() || !key.Skipped.empty());
    return;
  }
  if (truth.contains("carrier")) {
    EXPECT_TRUE(CarriersAgree(key.Carrier, truth["carrier"].get<int>()));
  }
  if (truth["kind"] == "raw") {
    // The collection gives as lengths what no line code shows, though a file may say how it is coded.
    const std::size_t lengths = key.Coded ? FrameLengths(*key.Coded).size() : key.Lengths.size();
    EXPECT_EQ(lengths, truth["lengths"]);
    return;
  }
  ASSERT_TRUE(key.Coded) << key.Skipped;
  EXPECT_EQ(Digits(key), truth["code"]);
  EXPECT_EQ(kLines[static_cast<int>(key.Coded->Code.Line)], truth["line"]);
  if (truth["repeat"] != "unknown") {
    EXPECT_EQ(RepeatOf(key), truth["repeat"]);
  }
  EXPECT_TRUE(PatternsOf(key.Coded->Code)) << "no section could send it";
}

TEST(Remotes, AreReadAsTheyAre) {
  const json collection = Collection();
  SKIP_WITHOUT(collection);
  for (const json& truth : collection) {
    SCOPED_TRACE(truth["file"].get<std::string>());
    const RemoteFile file = LoadRemotes(CollectionFolder() / truth["file"].get<std::string>());
    EXPECT_EQ(file.Format, truth["format"]);
    EXPECT_TRUE(file.Complaints.empty());
    const std::vector<RemoteKey> keys = KeysOf(file);
    ASSERT_EQ(keys.size(), truth["keys"].size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
      SCOPED_TRACE(i);
      ExpectKey(keys[i], truth["keys"][i]);
    }
  }
}

/// What a format does not say, so that it does not come back; of carriers it tells which.
struct Way {
  std::string_view Format;
  bool Names, Repeats, Raw;
};

constexpr Way kWays[] = {
    {"flipper", true, true, true},  {"lirc", true, true, true},      {"keymap", true, false, true},
    {"pronto", true, true, true},   {"irdb", true, true, false},     {"girr", true, true, true},
    {"smartir", true, false, true}, {"tasmota", false, false, true}, {"esphome", true, false, true},
    {"ha", false, true, true},      {"mode2", false, true, true},    {"one-line", false, true, true},
};

/// What of a key did not come back; empty if all did.
std::string Lost(const RemoteKey& back, const RemoteKey& key, const Way& way, bool carriers) {
  std::string name = key.Name.value_or("");
  if (way.Format == "lirc") std::replace(name.begin(), name.end(), ' ', '_');
  const bool known = key.Coded && key.Coded->Again.Kind != RepeatKind::Unknown;
  if (Digits(back) != Digits(key)) return Digits(key) + " came back as " + Digits(back);
  // A tree keeps a name once; the second one gets a number after it.
  const bool numbered = way.Format == "smartir" && back.Name.value_or("").starts_with(name + " (");
  if (way.Names && key.Name && back.Name != name && !numbered)
    return "the name came back as " + back.Name.value_or("none");
  if (carriers && !CarriersAgree(back.Carrier, key.Carrier)) return "the carrier";
  if (way.Repeats && known && RepeatOf(back) != RepeatOf(key)) return RepeatOf(key) + " as " + RepeatOf(back);
  if (!key.Coded && (back.Lengths.size() + 1) / 2 != (key.Lengths.size() + 1) / 2) return "lengths";
  return "";
}

/// The keys that a format has written.
std::vector<RemoteKey> Written(const RemoteFile& file, const Way& way, const std::vector<Complaint>& told) {
  std::multiset<std::string> leftOut;
  for (const Complaint& complaint : told) leftOut.insert(complaint.Key);
  std::vector<RemoteKey> keys;
  for (const RemoteKey& key : KeysOf(file)) {
    const auto left = leftOut.find(key.Name.value_or(""));
    const bool out = key.Name && left != leftOut.end();
    if (out) leftOut.erase(left);
    if (!out && key.Skipped.empty() && (way.Raw || key.Coded)) keys.push_back(key);
  }
  return keys;
}

TEST(Remotes, ComeBackFromEachFormat) {
  const json collection = Collection();
  SKIP_WITHOUT(collection);
  for (const json& truth : collection) {
    const RemoteFile file = LoadRemotes(CollectionFolder() / truth["file"].get<std::string>());
    for (const Way& way : kWays) {
      SCOPED_TRACE(truth["file"].get<std::string>() + " as " + std::string(way.Format));
      std::vector<Complaint> told;
      const std::string text = WriteRemotes(way.Format, file.Remotes, told);
      std::vector<RemoteKey> keys = Written(file, way, told);
      if (keys.empty()) continue;
      const bool carriers = std::none_of(told.begin(), told.end(), [](const Complaint& complaint) {
        return complaint.Text.find("no carrier") != std::string::npos;
      });
      std::vector<RemoteKey> back = KeysOf(ReadRemotes(text, "x", way.Format));
      EXPECT_EQ(back.size(), keys.size());
      // Formats that keep keys of one coding together change the order.
      if (way.Format == "lirc" || way.Format == "keymap" || way.Format == "smartir") {
        const auto inOrder = [](const RemoteKey& a, const RemoteKey& b) {
          return Digits(a) != Digits(b) ? Digits(a) < Digits(b) : a.Name < b.Name;
        };
        std::stable_sort(back.begin(), back.end(), inOrder);
        std::stable_sort(keys.begin(), keys.end(), inOrder);
      }
      std::string lost;
      for (std::size_t i = 0; i < std::min(keys.size(), back.size()) && lost.empty(); ++i) {
        lost = Lost(back[i], keys[i], way, carriers);
        if (!lost.empty()) lost = keys[i].Name.value_or(std::to_string(i)) + ": " + lost;
      }
      EXPECT_EQ(lost, "");
    }
  }
}

TEST(Remotes, SendFurtherValuesOfALircKeyAsRepeatsThatAreNotTurned) {
  const RemoteFile file = ReadRemotes(
      "begin remote\nname r\nbits 2\nflags SPACE_ENC|REVERSE|NO_HEAD_REP\none 500 1500\nzero 500 400\n"
      "ptrail 500\nheader 9000 4000\ngap 40000\nbegin codes\nA 1 1\nend codes\nend remote\n",
      "x");
  RemoteKey key = KeysOf(file).front();
  EXPECT_EQ(key.Lengths, (PulseTrain{9000, 4000, 500, 1500, 500, 400, 500, 40000, 500, 400, 500, 1500, 500}));
  key.Toggled = key.Lengths;
  for (const auto& [format, complaints] : {std::pair("pronto", 1U), {"girr", 0U}}) {
    std::vector<Complaint> told;
    WriteRemotes(format, {{"r", {key}}}, told);
    EXPECT_EQ(told.size(), complaints) << format << " keeps one form of two";
  }
}

std::string Told(const RemoteFile& file) {
  std::string text;
  for (const Complaint& complaint : file.Complaints) text += complaint.Message() + '\n';
  for (const RemoteKey& key : KeysOf(file)) text += key.Skipped;
  return text;
}

std::string TellsOf(const std::string& text, std::string_view format) try {
  return Told(ReadRemotes(text, "x", format));
} catch (const FormatError& error) {
  return error.what();
}

TEST(Remotes, TellWhatIsWrongAndGoOn) {
  using namespace std::string_literals;
  struct Bad {
    const char* Name;
    std::string_view Format;
    std::string Text, Tells;
  };
  const std::string flipper = "Filetype: IR signals file\nVersion: 1\nname: A\ntype: ";
  const std::string lirc = "begin remote\nname r\nbits 8\none 5 9\nzero 5 5\n";
  std::string ones;
  for (int i = 0; i < 500; ++i) ones += " 1";
  std::string parts = "a";
  for (int i = 0; i < 200'000; ++i) parts += ".a";
  const Bad rows[] = {
      {"no known format", "", "hello\n", "tried were flipper, lirc"},
      {"nothing but remarks", "", "# no code\n", "tried were flipper, lirc"},
      {"a byte of value 0", "", "name: A\n\0"s, "x, line 2: found a byte of value 0"},
      {"17 MiB", "", std::string(std::size_t{17} << 20U, ' '), "larger than the 16777216 bytes"},
      {"a length of 0", "", flipper + "raw\ndata: 5 0 5\n", "found a length of 0"},
      {"a length above the limits", "", flipper + "raw\ndata: 5 16777216 5\n", "found a length of 16777216"},
      {"a protocol that is not known", "", flipper + "parsed\nprotocol: Q\naddress: 1\ncommand: 1\n",
       "expected up to four bytes"},
      {"a type that is none", "", flipper + "cooked\n", "found the type \"cooked\""},
      {"an address that a protocol has no room for", "",
       flipper + "parsed\nprotocol: SIRC\naddress: 3F\ncommand: 00\n", "expected 0 to 1F"},
      {"a flag that is not known", "", lirc + "flags RC-5\nbegin codes\nA 1\nend codes\nend remote\n",
       "the flag RC-5"},
      {"a number of a remote that is none", "", lirc + "ptrail x\nbegin codes\nA 1\nend codes\nend remote\n",
       "line 6 of its remote cannot be read"},
      {"a code that the file breaks off in", "", lirc + "begin codes\nA 0x1", "ends before the code"},
      {"a length that is none", "",
       "[[protocols]]\nprotocol='pulse_distance'\nbits=-4\n[protocols.scancodes]\n1='A'\n",
       "found a wrong bits"},
      {"a command that the file breaks off in", "", "<remotes><command name='A'><raw><intro>9000 4500 560 5",
       "the file breaks off in it"},
      {"a command with the fault in it", "",
       "<remotes><command name='A'><raw><intro>9000 4500 560 5 <& </intro></raw></command></remotes>",
       "the file breaks off in it"},
      {"an include that leads out", "lirc", "include \"/etc/passwd\"\n",
       "expected a file in the same folder"},
      {"a code that is none", "", lirc + "begin codes\nA 0xZ\nend codes\nend remote\n", "found \"0xZ\""},
      {"a press of too many codes", "", lirc + "begin codes\nA" + ones + "\nend codes\nend remote\n",
       "more than 4096 lengths"},
      {"a remote without an end", "", lirc + "begin codes\nA 1\n", "expected \"end remote\""},
      {"cut base64", "", R"({"commands":{"a":"JgBQAAABH"}})", "is cut"},
      {"a radio code", "", R"({"commands":{"a":"sgAEAAEBAQE="}})", "for radio"},
      {"a million brackets", "ha", std::string(1'000'000, '['), "expected an object with"},
      {"a million brackets in TOML", "keymap", "[[protocols]]\na = " + std::string(1'000'000, '['),
       "no TOML"},
      {"what the parser of TOML asserts", "keymap", "[[[protocols]]]\n", "no TOML"},
      {"a letter that the parser of TOML trips over", "keymap",
       "[[protocols]]\nname = \"Ger\xC3\xA4t\"  # \xC3\xA4\n\xC3\x84 = 1\n",
       "3: no TOML: a letter outside ASCII"},
      {"the same behind a joined line", "keymap", "[[protocols]]\nname = \"\"\"a\\\n \xC3\xA4\"\"\"\n",
       "a letter outside"},
      {"a key that is too deep to be taken down", "keymap",
       "# " + parts + "\n[[protocols]]\n\"=\"." + parts + " = 1\n", "3: found a key of more than 64 parts"},
      {"brackets in YAML", "esphome", "a: " + std::string(1'000'000, '['), "brackets in a row"},
      {"a text in which YAML finds no last document", "esphome", ", a\n", "there is no key"},
      {"more of it than is read", "esphome", std::string(2'000'000, 'a'), "larger than"},
      {"an entity bomb", "girr",
       "<!DOCTYPE a [<!ENTITY b \"cc\">]><remotes><remote><command name=\"&b;\"/></remote></remotes>",
       "neither parameters nor lengths"},
      {"counts that do not agree", "", "A: 0000 006D 0000 0002 0156 00AB 0015\n",
       "expected the 4 that it counts"},
      {"a NEC short form with a wrong inverse", "", "900A 006C 0000 0001 817E 6B95\n", "inverse"},
      {"a type that is not known", "pronto", "7000 006C 0000 0001 817E 6B95\n", "7000"},
      {"a type that is not known behind a name", "pronto", "A: 7001 0073 0000 0001 0004 000C\n", "7001"},
      {"a wrong sign in Girr", "girr",
       "<remotes><command><raw><intro>-9000 +4500</intro></raw></command></remotes>", "expected a mark"},
      {"a wrong sign", "one-line", "+5 -5 -5\n", "found \"-5\", expected a mark"},
      {"a device out of range", "", "functionname,protocol,device,subdevice,function\nA,NEC1,256,-1,1\n",
       "expected 0 to 255"},
      {"a state of an air conditioner", "tasmota", "{\"IRHVAC\":{\"Vendor\":\"X\"}}\n",
       "state of an air conditioner"},
      {"a letter ahead of its length", "", R"({"IrReceived":{"Protocol":"UNKNOWN","RawData":"+500-500Z"}})",
       "letter \"Z\""},
      {"a lambda", "",
       "a:\n - remote_transmitter.transmit_nec:\n    address: !lambda return 1;\n    command: 1\n",
       "!lambda"},
      {"a driver's own codes", "",
       "[[protocols]]\nname='a'\nprotocol='unknown'\n[protocols.scancodes]\n0x1='A'\n", "own driver"},
  };
  for (const Bad& row : rows) {
    EXPECT_NE(TellsOf(row.Text, row.Format).find(row.Tells), std::string::npos)
        << row.Name << ": " << TellsOf(row.Text, row.Format);
  }
}

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

TEST(Remotes, BearWhatPeopleWrite) {
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
