#include "KvUserInterface.h"

#include <gtest/gtest.h>

namespace kv {

namespace {

/// Answers Yes to everything.
class TAgreeable final : public TUserInterface
{
public:
    std::unique_ptr<TProgressWindow> OpenProgress(const TProgressCaptions&) override { return nullptr; }
    void ShowMessage(TMessageKind, const std::string&) override {}
    bool Confirm(const std::string&) override { return true; }
    void SetBusyCursor(bool) override {}
    void ProcessMessages() override {}
    bool PickFileToOpen(const std::string&, std::string&) override { return true; }
    bool AskSaveSpecification(TSaveSpecificationRequest&) override { return true; }
};

TEST(KvUserInterface, IsSilentAndSafeUnlessAProgramInstallsOne)
{
    auto& Silent = UserInterface();
    EXPECT_FALSE(Silent.Confirm("Delete everything?"));
    std::string FileName = "unchanged";
    EXPECT_FALSE(Silent.PickFileToOpen("", FileName));
    EXPECT_EQ(FileName, "unchanged");
    Silent.ShowMessage(mkError, "nobody sees this");
    Silent.SetBusyCursor(true);
    Silent.ProcessMessages();
}

TEST(KvUserInterface, ASilentWindowIsNeverCancelled)
{
    const auto Window = UserInterface().OpenProgress({});
    ASSERT_TRUE(Window);
    Window->SetRange(0, 10, 0);
    Window->Update("Importing...", {.Processed = 5});
    EXPECT_FALSE(Window->Cancelled());
}

TEST(KvUserInterface, ASilentSpecificationKeepsItsNames)
{
    TSaveSpecificationRequest Request;
    Request.SpecName = "Orders";
    EXPECT_TRUE(UserInterface().AskSaveSpecification(Request));
    EXPECT_EQ(Request.SpecName, "Orders");
}

TEST(KvUserInterface, IsTheOneThatWasInstalledUntilItIsTakenBack)
{
    auto& Silent = UserInterface();
    TAgreeable Agreeable;
    SetUserInterface(&Agreeable);
    EXPECT_EQ(&UserInterface(), &Agreeable);
    SetUserInterface(nullptr);
    EXPECT_EQ(&UserInterface(), &Silent);
}

} // namespace

} // namespace kv
