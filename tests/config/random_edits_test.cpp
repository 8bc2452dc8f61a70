#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <random>
#include <set>

#include "config/check_config.h"
#include "config/commands.h"
#include "config/config_builder.h"
#include "config/fake_disk.h"
#include "config/generic_protocols.h"
#include "config/learn.h"
#include "config/protocol_edit.h"
#include "config/protocols.h"
#include "config/read_settings.h"
#include "config/values.h"

namespace keplo {
namespace {

using Texts = std::vector<std::string>;

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
  RandomUser() { Start(); }

  void EditAFewTimes() {
    if (store_->CfgText.size() > kGrownCharacters) Start();
    for (int edit = Below(kMostEdits); edit >= 0; --edit) EditOnce();
    SaveConfig(*store_);  // as a window does when it closes
  }

  std::string File() const { return disk_.Files()["keplo.cfg"]; }
  CfgStore Reloaded() {
    CfgStore store("/home/keplo.cfg", disk_);
    LoadConfig(store);
    return store;
  }
  const CfgStore& Store() const { return *store_; }

 private:
  void Start() {
    disk_.Put("keplo.cfg", tests::Config(tests::Protocol("Mine", {"G10,EMPTY"})));
    store_.emplace("/home/keplo.cfg", disk_);
    LoadConfig(*store_);
  }

  int Below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }

  template <typename Item>
  const Item& OneOf(const std::vector<Item>& items) {
    return items[static_cast<std::size_t>(Below(static_cast<int>(items.size())))];
  }

  /// Most are short, so that codes, names and parts of them meet.
  std::string Word(std::string_view letters, int longest) {
    std::string word;
    for (int letter = Below(longest) + 1; letter > 0; --letter) {
      word += letters[static_cast<std::size_t>(Below(static_cast<int>(letters.size())))];
    }
    return word;
  }

  std::string AnyProtocol() { return OneOf(ListProtocols(store_->CfgText)); }
  std::string AnyName() { return OneOf<std::string>({Word("AB_", 4), Word("EMPTYG", 6), "EMPTY", "POWER"}); }

  void EditOnce() {
    const std::vector<void (RandomUser::*)()> edits = {
        &RandomUser::LearnInWindow,  &RandomUser::LearnInWindow, &RandomUser::Learn,   &RandomUser::Learn,
        &RandomUser::ForgetInWindow, &RandomUser::Forget,        &RandomUser::AddOne,  &RandomUser::AddOne,
        &RandomUser::AddOne,         &RandomUser::AddOne,        &RandomUser::EditOne, &RandomUser::EditOne,
        &RandomUser::DeleteOne,      &RandomUser::ChangeSetting};
    (this->*OneOf(edits))();
  }

  void LearnInWindow() {
    CfgStore& store = *store_;
    store.CurProtocol = AnyProtocol();
    std::string code = "G" + Word("01", 10), name = AnyName();
    if (!CheckProtocol(store.CurProtocol).Done() || !CheckCode(store.CfgText, code).Done() ||
        !CheckName(store.CfgText, store.CurProtocol, name).Done()) {
      return;
    }
    ASSERT_TRUE(StoreCommand(store, store.CurProtocol, code, name));
    DropPlaceholder(store);
  }
  void Learn() { AddCommand(*store_, AnyProtocol(), "G" + Word("01", 10), AnyName()); }

  std::string AnyCommandOf(const std::string& protocol) {
    return OneOf(ListCommands(store_->CfgText, protocol)).Name;
  }
  void ForgetInWindow() {
    store_->CurProtocol = AnyProtocol();
    store_->CurCommand = AnyCommandOf(store_->CurProtocol);
    if (CheckDelete(*store_).Done()) RemoveCommand(*store_);
  }
  void Forget() {
    const std::string protocol = AnyProtocol();
    DeleteCommand(*store_, protocol, AnyCommandOf(protocol));
  }

  ProtocolDraft AnyDraft(const std::string& name) {
    ProtocolDraft draft;
    draft.Name = name;
    draft.Description =
        OneOf<std::string>({"", Word("ab #=]", 9), "REPEAT= 7 GREPEAT= 9", "BIT0=", "G10 EMPTY", "a,b", "[x]",
                            "gproto= 9", "[END]", "two\r\nlines", "POWER", "END ]"});
    draft.ProtoKind = static_cast<std::int16_t>(Below(static_cast<int>(kGenericProtocols.size())));
    draft.Params.SENDPLS = static_cast<std::int16_t>(Below(900));
    draft.Params.REPEAT = static_cast<std::int16_t>(Below(3) * 20);
    draft.Params.GREPEAT = static_cast<std::int16_t>(Below(60) - 20);
    draft.Params.BITG = Word("0111", 9);
    draft.Params.BIT0 = Word("01", 3);
    draft.Params.BIT1 = Word("00111111111111111112", 3);
    return draft;
  }
  void AddOne() {
    const std::string name = Below(5) == 0
                                 ? OneOf<std::string>({"END", "general", "Recorded", "Template", "a[b"})
                                 : Word("abC-", 5);
    KeepsOthers(name, [&] { AddProtocol(*store_, AnyDraft(name)); });
  }
  void EditOne() {
    const ProtocolDraft draft = AnyDraft(AnyProtocol());
    const auto before = ListsOf(*store_);
    if (EditProtocol(*store_, draft) != ProtocolRefusal::None) return;
    EXPECT_EQ(ListsOf(*store_), before);
    const std::optional<ProtocolDraft> read = LoadProtocol(store_->CfgText, draft.Name);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->Params.BIT1, draft.Params.BIT1);
  }
  void DeleteOne() {
    const std::string name = AnyProtocol();
    KeepsOthers(name, [&] { DeleteProtocol(*store_, name); });
  }
  template <typename Edit>
  void KeepsOthers(const std::string& name, Edit edit) {
    auto before = ListsOf(*store_);
    edit();
    auto after = ListsOf(*store_);
    before.erase(name);
    after.erase(name);
    EXPECT_EQ(after, before) << name;
  }

  void ChangeSetting() {
    const std::string key =
        OneOf<std::string>({"COMPORT", "PROTOCOL", "PROCDELAY", "ITYPE", "BEEPON", "VEXIL"});
    EXPECT_TRUE(SetGeneralValue(*store_, key, std::to_string(Below(2000) - 100)));
  }

  std::mt19937 random_{20021107};  // NOLINT(bugprone-random-generator-seed): the same edits each time
  tests::FakeDisk disk_;
  std::optional<CfgStore> store_;
};

Texts LinesOf(const std::string& text) {
  Texts lines;
  for (std::size_t at = 0, end; (end = text.find("\r\n", at)) != std::string::npos; at = end + 2) {
    lines.push_back(text.substr(at, end - at));
  }
  return lines;
}

/// The first invariant of a file that does not hold; empty if all do.
std::string BrokenInvariant(const std::string& file) {
  static const Texts kKeys = {
      "# ", "GPROTO=", "SENDPLS=", "REPEAT=", "BITG=", "BIT0=", "BIT1=", "GREPEAT=", ""};
  const Texts lines = LinesOf(file);
  if (lines.empty() || lines.back() != "[END]" || file.size() > kMostCharacters) return "[END] is not last";
  std::set<std::string> codes;
  std::size_t at = 0;
  while (lines[at].empty() || lines[at] == "[General]" || lines[at].find("= ") != std::string::npos) ++at;
  while (lines[at] != "[END]") {
    const std::string section = lines[at++];
    if (section.front() != '[' || section.back() != ']') return "no header: " + section;
    for (const std::string& key : kKeys) {
      const std::string& line = lines[at++];
      if (line.substr(0, key.size()) != key || key.empty() != line.empty()) return section + " lacks " + key;
      if (key != "# " && line.find_first_of("[,") != std::string::npos) return section + line;
    }
    int commands = 0, placeholders = 0;
    for (; lines[at].substr(0, 1) == "G"; ++at, ++commands) {
      const std::string code = lines[at].substr(0, lines[at].find(','));
      if (code == lines[at]) return section + ": no command " + lines[at];
      if (lines[at] == kPlaceholderLine) {
        ++placeholders;
      } else if (!codes.insert(code).second) {
        return section + " has a code that is there twice: " + code;
      }
    }
    if (commands == 0) return section + " has no command line";
    if (placeholders > 1) return section + " has two placeholders";
    if (!lines[at++].empty()) return section + " ends in " + lines[at - 1];
  }
  return at + 1 == lines.size() ? std::string() : "text behind [END]";
}

TEST(RandomEdits, LeaveAWholeFileThatReadsAsItWasWritten) {
  RandomUser user;
  std::size_t mostProtocols = 0;
  for (int sequence = 1; sequence <= kSequences; ++sequence) {
    user.EditAFewTimes();
    const std::string file = user.File();
    ASSERT_EQ(BrokenInvariant(file), "") << "after sequence " << sequence << "\n" << file;
    const CfgStore reloaded = user.Reloaded();
    ASSERT_EQ(CheckConfig(reloaded), "") << file;
    ASSERT_EQ(reloaded.CfgText, user.Store().CfgText) << "and with it all lists";
    ASSERT_FALSE(HasFailure()) << "in sequence " << sequence << "\n" << file;
    mostProtocols = std::max(mostProtocols, ListProtocols(file).size());
  }
  EXPECT_GT(mostProtocols, 5U) << "the edits hardly change anything";
}

}  // namespace
}  // namespace keplo
