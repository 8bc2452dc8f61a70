#include <gtest/gtest.h>

#include "remotes/remote_builder.h"
#include "window/import_dialog.h"
#include "window/window_fixture.h"

namespace keplo::tests {
namespace {

class RemotesFlow : public WindowTest {
 protected:
  void SetUp() override {
    Open(Config(Protocol("Mine", {"G" + Digits(1) + ",PLAY"})));
    form_->Remotes.Open = [this] { return OpenedRemotes{files_, {"b.ir: cut"}}; };
    form_->Remotes.Pick = [this](ImportDialog& dialog) {
      for (const ImportDialog::Row& row : dialog.Rows()) {
        shown_.push_back(row.Key + (row.CanTick ? row.Ticked ? " [x] " : " [ ] " : " ") + row.Command + " " +
                         row.Fate);
      }
      dialog.Tick(2, false);
      shown_.push_back(dialog.Rows()[2].Fate);
      (imports_ ? dialog.ImportButton : dialog.CancelButton).Click();
    };
  }

  std::vector<ImportedFile> files_ =
      tests::File("Den", {Key("Play", Digits(1)), Key("UP", Digits(2)), Key("VOL_UP", Digits(3)),
                          Key("Cut", Digits(1).substr(0, 20))});
  bool imports_ = true;
  Texts shown_;
};

TEST_F(RemotesFlow, TickedCommandsAreImportedInOneStep) {
  const std::string before = File();
  form_->ImportMenu.Click();
  EXPECT_EQ(shown_, (Texts{"Play Mine&PLAY known: the code is that of Mine&PLAY",
                           "UP [x] Den&UP a new command", "VOL_UP [x] Den&VOL_UP a new command",
                           "Cut [ ]  shadowed: the code is the beginning of that of Mine&PLAY", "left out"}));
  EXPECT_EQ(boxes_.TakeShown(), Texts{"Some of it cannot be read."});
  EXPECT_EQ(form_->Protocol.Text() + "&" + form_->SendCmd.Text() + " " + form_->CodeStr.Text(),
            "Den&UP G" + Digits(2));
  EXPECT_EQ(Commands(File(), "Den"), "UP");
  form_->UndoMenu.Click();
  EXPECT_EQ(File(), before);
  imports_ = false;
  form_->ImportMenu.Click();
  EXPECT_EQ(File(), before);
  imports_ = true;
  const auto pick = form_->Remotes.Pick;
  form_->Remotes.Pick = [&](ImportDialog& dialog) {
    disk_.Put("keplo.cfg", Config(Protocol("Mine", {"G" + Digits(1) + ",PLAY", "G" + Digits(2) + ",UP"})));
    pick(dialog);
  };
  form_->ImportMenu.Click();
  EXPECT_EQ(form_->Protocol.Text() + " " + boxes_.Shown.back(),
            "Mine All keys that were chosen are stored already.");
}

TEST_F(RemotesFlow, TheCurrentProtocolIsExported) {
  std::string exported;
  form_->Remotes.Save = [&](const std::vector<Remote>& remotes) {
    exported = remotes.front().Name + " " + *remotes.front().Keys.front().Name;
    return Texts{"no carriers"};
  };
  form_->ExportMenu.Click();
  EXPECT_EQ(exported, "Mine PLAY");
  EXPECT_EQ(boxes_.Reasons, Texts{"no carriers"});
  form_->Protocol.SelectText("Template");
  form_->ExportMenu.Click();
  EXPECT_EQ(boxes_.Shown.back(), "The protocol Template has no commands to export.");
}

}  // namespace
}  // namespace keplo::tests
