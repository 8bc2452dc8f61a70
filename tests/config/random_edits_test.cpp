#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <set>

#include "config/check_config.h"
#include "config/commands.h"
#include "config/config_builder.h"
#include "config/fake_disk.h"
#include "config/generic_protocols.h"
#include "config/protocols.h"
#include "config/script.h"

namespace keplo::tests {
namespace {

constexpr int kSequences = 10'000;
constexpr int kMostEdits = 4;                   // in one sequence
constexpr std::size_t kGrownCharacters = 2500;  // from here on the next sequence starts with a small file

/// What a window shows of a store.
std::map<std::string, Texts> ListsOf(const CfgStore& store) {
  std::map<std::string, Texts> lists;
  for (const std::string& protocol : ListProtocols(store.CfgText)) {
    for (const LearnedCommand& command : ListCommands(store.CfgText, protocol)) {
      lists[protocol].push_back(command.Code + "," + command.Name);
    }
  }
  return lists;
}

/// A user who changes a configuration at random, as window and command line do, and knows what must come of
/// it.
class RandomUser {
 public:
  const Stored& EditAFewTimes() {
    if (store_.CfgText.size() > kGrownCharacters) stored_.Load(kSmall);
    for (int edit = Below(kMostEdits); edit >= 0; --edit) EditOnce();
    Do(store_, "save");  // as a window does when it closes
    return stored_;
  }

 private:
  int Below(std::size_t end) { return static_cast<int>(random_() % end); }
  const std::string& OneOf(const Texts& texts) {
    return texts[static_cast<std::size_t>(Below(texts.size()))];
  }

  /// Most are short, so that codes, names and parts of them meet.
  std::string Word(std::string_view letters, std::size_t longest) {
    std::string word(static_cast<std::size_t>(Below(longest)) + 1, ' ');
    for (char& letter : word) letter = letters[static_cast<std::size_t>(Below(letters.size()))];
    return word;
  }
  std::string AnyCode() { return "G" + Word("01", 10); }
  std::string AnyName() { return OneOf({Word("AB_", 4), Word("EMPTYG", 6), "EMPTY", "POWER"}); }

  void EditOnce() {
    const std::string protocol = OneOf(ListProtocols(store_.CfgText));
    const std::vector<LearnedCommand> commands = ListCommands(store_.CfgText, protocol);
    const std::string of =
        "|" + protocol + "|" + commands[static_cast<std::size_t>(Below(commands.size()))].Name;
    switch (Below(14)) {
      case 0:
      case 1:
        return LearnInWindow(protocol, AnyCode(), AnyName());
      case 2:
      case 3:
        return void(Do(store_, "add|" + protocol + "|" + AnyCode() + "|" + AnyName()));
      case 4:
        return void(Do(store_, "check" + of).empty() ? Do(store_, "remove" + of) : "");
      case 5:
        return void(Do(store_, "delete" + of));
      case 6:
      case 7:
        return EditProtocolOf(AnyDraft(protocol));
      case 8: {
        const std::string key = OneOf({"COMPORT", "PROTOCOL", "PROCDELAY", "ITYPE", "BEEPON", "VEXIL"});
        EXPECT_EQ(Do(store_, "set|" + key + "|" + std::to_string(Below(2000) - 100)), "");
        return;
      }
      case 9:
        return KeepingOthers(protocol, [&] { Do(store_, "deleteProtocol|" + protocol); });
      default:
        const std::string name =
            Below(5) > 0 ? Word("abC-", 5) : OneOf({"END", "general", "Recorded", "Template", "a[b"});
        KeepingOthers(name, [&] { AddProtocol(store_, AnyDraft(name)); });
    }
  }

  void LearnInWindow(const std::string& protocol, std::string code, std::string name) {
    if (!CheckProtocol(protocol).Done() || !CheckCode(store_.CfgText, code).Done() ||
        !CheckName(store_.CfgText, protocol, name).Done()) {
      return;
    }
    ASSERT_EQ(Do(store_, "store|" + protocol + "|" + code + "|" + name), "");
    Do(store_, "drop|" + protocol + "|" + name);
  }

  ProtocolDraft AnyDraft(const std::string& name) {
    const auto number = [&](int most, int least) { return static_cast<std::int16_t>(Below(most) + least); };
    return {name,
            OneOf({"", Word("ab #=]", 9), "REPEAT= 7 GREPEAT= 9", "BIT0=", "G10 EMPTY", "a,b", "[x]",
                   "gproto= 9", "[END]", "two\r\nlines", "POWER", "END ]"}),
            number(kGenericProtocols.size(), 0),
            {.SENDPLS = number(900, 0),
             .REPEAT = static_cast<std::int16_t>(Below(3) * 20),
             .BIT0 = Word("01", 3),
             .BIT1 = Word("00111111111111111112", 3),
             .BITG = Word("0111", 9),
             .GREPEAT = number(60, -20),
             .BitTail = {}}};
  }
  void EditProtocolOf(const ProtocolDraft& draft) {
    const auto before = ListsOf(store_);
    if (!EditProtocol(store_, draft).Done()) return;
    EXPECT_EQ(ListsOf(store_), before);
    const std::optional<ProtocolDraft> read = LoadProtocol(store_.CfgText, draft.Name);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->Params.BIT1, draft.Params.BIT1);
  }
  template <typename Edit>
  void KeepingOthers(const std::string& name, Edit edit) {
    auto before = ListsOf(store_);
    edit();
    auto after = ListsOf(store_);
    before.erase(name);
    after.erase(name);
    EXPECT_EQ(after, before) << name;
  }

  const std::string kSmall = Config(Protocol("Mine", {"G10,EMPTY"}));
  std::mt19937 random_{20021107};  // NOLINT(bugprone-random-generator-seed): the same edits each time
  Stored stored_{kSmall};
  CfgStore& store_ = stored_.Store;
};

/// The first invariant of a file that does not hold; empty if all do.
std::string BrokenInvariant(const std::string& file) {
  Texts lines;
  for (std::size_t at = 0, end; (end = file.find("\r\n", at)) != std::string::npos; at = end + 2) {
    lines.push_back(file.substr(at, end - at));
  }
  if (lines.empty() || lines.back() != "[END]" || file.size() > kMostCharacters) return "[END] is not last";
  std::set<std::string> codes;
  std::size_t at = 0;
  while (lines[at].empty() || lines[at] == "[General]" || lines[at].find("= ") != std::string::npos) ++at;
  while (lines[at] != "[END]") {
    const std::string section = lines[at++];
    if (section.front() != '[' || section.back() != ']') return "no header: " + section;
    for (const std::string key :
         {"# ", "GPROTO=", "SENDPLS=", "REPEAT=", "BITG=", "BIT0=", "BIT1=", "GREPEAT=", ""}) {
      const std::string& line = lines[at++];
      if (line.substr(0, key.size()) != key || key.empty() != line.empty()) return section + " lacks " + key;
      if (key != "# " && line.find_first_of("[,") != std::string::npos) return section + line;
    }
    int commands = 0, placeholders = 0;
    for (; lines[at].substr(0, 1) == "G"; ++at, ++commands) {
      const std::string code = lines[at].substr(0, lines[at].find(','));
      if (code == lines[at]) return section + ": no command " + lines[at];
      const bool isPlaceholder = lines[at] == "G10,EMPTY";
      if (isPlaceholder && ++placeholders > 1) return section + " has two placeholders";
      if (!isPlaceholder && !codes.insert(code).second) return section + " has a code twice: " + code;
    }
    if (commands == 0) return section + " has no command line";
    if (!lines[at++].empty()) return section + " ends in " + lines[at - 1];
  }
  return at + 1 == lines.size() ? std::string() : "text after [END]";
}

TEST(RandomEdits, LeaveACompleteFileThatReadsAsWritten) {
  RandomUser user;
  std::size_t mostProtocols = 0;
  for (int sequence = 1; sequence <= kSequences; ++sequence) {
    const Stored& stored = user.EditAFewTimes();
    const std::string file = stored.File();
    ASSERT_EQ(BrokenInvariant(file), "") << "after sequence " << sequence << "\n" << file;
    const Stored reloaded(file);
    ASSERT_EQ(CheckConfig(reloaded.Store), "") << file;
    ASSERT_EQ(reloaded.Store.CfgText, stored.Store.CfgText) << "and with it all lists";
    ASSERT_FALSE(HasFailure()) << "in sequence " << sequence << "\n" << file;
    mostProtocols = std::max(mostProtocols, ListProtocols(file).size());
  }
  EXPECT_GT(mostProtocols, 5U) << "the edits hardly change anything";
}

}  // namespace
}  // namespace keplo::tests
