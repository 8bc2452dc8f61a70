#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "doubles/temp_folder.h"
#include "formats/remote.h"
#include "remote_keys.h"

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
  struct Bad {
    const char* Name;
    std::string_view Format;
    std::string Text, Tells;
  };
  const std::string lirc = "begin remote\nname r\nbits 8\none 5 9\nzero 5 5\n";
  std::string ones;
  for (int i = 0; i < 500; ++i) ones += " 1";
  const Bad rows[] = {
      {"nothing but remarks", "", "# no code\n", "tried were flipper, lirc"},
      {"a command with the fault in it", "",
       "<remotes><command name='A'><raw><intro>9000 4500 560 5 <& </intro></raw></command></remotes>",
       "the file breaks off in it"},
      {"a press of too many codes", "", lirc + "begin codes\nA" + ones + "\nend codes\nend remote\n",
       "more than 4096 lengths"},
      {"a million brackets in TOML", "keymap", "[[protocols]]\na = " + std::string(1'000'000, '['),
       "no TOML"},
      {"what the parser of TOML asserts", "keymap", "[[[protocols]]]\n", "no TOML"},
      {"a letter that the parser of TOML trips over", "keymap",
       "[[protocols]]\nname = \"Ger\xC3\xA4t\"  # \xC3\xA4\n\xC3\x84 = 1\n",
       "3: no TOML: a letter outside ASCII"},
      {"the same behind a joined line", "keymap", "[[protocols]]\nname = \"\"\"a\\\n \xC3\xA4\"\"\"\n",
       "a letter outside"},
      {"a text in which YAML finds no last document", "esphome", ", a\n", "there is no key"},
      {"an entity bomb", "girr",
       "<!DOCTYPE a [<!ENTITY b \"cc\">]><remotes><remote><command name=\"&b;\"/></remote></remotes>",
       "neither parameters nor lengths"},
      {"a type that is not known", "pronto", "7000 006C 0000 0001 817E 6B95\n", "7000"},
  };
  for (const Bad& row : rows) {
    EXPECT_NE(TellsOf(row.Text, row.Format).find(row.Tells), std::string::npos)
        << row.Name << ": " << TellsOf(row.Text, row.Format);
  }
}

}  // namespace
}  // namespace keplo
