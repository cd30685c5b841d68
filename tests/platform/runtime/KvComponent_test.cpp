#include "KvComponent.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "KvException.h"
#include "KvSettingsGuard.h"

namespace kv {
namespace {

using TLog = std::vector<std::string>;

/// Writes into a log what it is told and when it dies.
class TListener : public TComponent
{
public:
    TListener(TLog& Target, std::string Label, TComponent* Owner = nullptr) : TComponent(Owner), Log(Target)
    {
        Name = std::move(Label);
    }
    ~TListener() override { Log.push_back("~" + Name); }

    const TComponent* Partner = nullptr;            // forgotten when it goes
    std::function<void()> OnRemove;

protected:
    void Notification(TComponent& Component, TOperation Operation) override
    {
        Log.push_back(Name + (Operation == opInsert ? "+" : "-"));
        if (Operation == opRemove && Partner == &Component)
            Partner = nullptr;
        if (Operation == opRemove && OnRemove)
            OnRemove();
    }

private:
    TLog& Log;
};

TEST(KvComponent, BelongsToItsOwner)
{
    TComponent Owner;
    auto* const Child = new TComponent(&Owner);
    EXPECT_EQ(Child->Owner(), &Owner);
    EXPECT_EQ(Owner.Components(), std::vector<TComponent*>{Child});
}

TEST(KvComponent, OwnerDeletesLastAddedFirst)
{
    TLog Log;
    {
        TComponent Owner;
        for (const auto* const Label : {"a", "b", "c"})
            new TListener(Log, Label, &Owner);
        Log.clear();
    }
    EXPECT_EQ(Log, (TLog{"~c", "b-", "a-", "~b", "a-", "~a"}));
}

TEST(KvComponent, LeavesItsOwnerWhenDestroyed)
{
    TComponent Owner;
    delete new TComponent(&Owner);
    EXPECT_TRUE(Owner.Components().empty());
    { const TComponent OnTheStack(&Owner); }
    EXPECT_TRUE(Owner.Components().empty());
}

TEST(KvComponent, OwnerAndSiblingsAreToldOfComingAndGoing)
{
    TLog Log;
    TListener Owner(Log, "owner");
    new TListener(Log, "first", &Owner);
    EXPECT_EQ(Log, TLog{"owner+"});
    auto* const Second = new TListener(Log, "second", &Owner);
    EXPECT_EQ(Log, (TLog{"owner+", "owner+", "first+"}));
    Log.clear();
    delete Second;
    EXPECT_EQ(Log, (TLog{"~second", "owner-", "first-"}));
}

TEST(KvComponent, PartnersAreToldInEitherOrderOfDestruction)
{
    TLog Log;
    for (const bool AskerFirst : {true, false}) {
        auto Asker = std::make_unique<TListener>(Log, "asker");
        auto Partner = std::make_unique<TListener>(Log, "partner");
        Asker->Partner = Partner.get();
        Partner->Partner = Asker.get();
        Asker->FreeNotification(*Partner);
        auto& Survivor = AskerFirst ? *Partner : *Asker;
        (AskerFirst ? Asker : Partner).reset();
        EXPECT_EQ(Survivor.Partner, nullptr);
    }
}

TEST(KvComponent, PartnersAreToldOnce)
{
    TLog Log;
    TListener Listener(Log, "listener");
    auto Component = std::make_unique<TComponent>();
    Component->FreeNotification(Listener);
    Component->FreeNotification(Listener);
    Listener.FreeNotification(*Component);
    Component.reset();
    EXPECT_EQ(Log, TLog{"listener-"});
}

TEST(KvComponent, SiblingsWhoAskedAreToldOnce)
{
    TLog Log;
    TComponent Owner;
    auto& Listener = *new TListener(Log, "listener", &Owner);
    auto* const Component = new TComponent(&Owner);
    Component->FreeNotification(Listener);
    Log.clear();
    delete Component;
    EXPECT_EQ(Log, TLog{"listener-"});
    Log.clear();
}

TEST(KvComponent, RemovedPartnersAreNotTold)
{
    TLog Log;
    TListener Listener(Log, "listener");
    auto Component = std::make_unique<TComponent>();
    Component->FreeNotification(Listener);
    Listener.RemoveFreeNotification(*Component);
    Component.reset();
    EXPECT_TRUE(Log.empty());
}

TEST(KvComponent, IsNoPartnerOfItself)
{
    TLog Log;
    auto Component = std::make_unique<TListener>(Log, "component");
    TListener Listener(Log, "listener");
    Component->FreeNotification(Listener);
    Component->FreeNotification(*Component);
    Component.reset();
    EXPECT_EQ(Log, (TLog{"~component", "listener-"}));
}

TEST(KvComponent, OwnedComponentsLearnThatTheirOwnerGoes)
{
    TLog Log;
    auto Owner = std::make_unique<TComponent>();
    auto& Child = *new TListener(Log, "child", Owner.get());
    Owner->FreeNotification(Child);
    Owner.reset();
    EXPECT_EQ(Log, (TLog{"child-", "~child"}));
}

TEST(KvComponent, PartnersMayFreeOneAnotherWhenTold)
{
    TLog Log;
    auto Component = std::make_unique<TComponent>();
    auto First = std::make_unique<TListener>(Log, "first");
    auto Second = std::make_unique<TListener>(Log, "second");
    Component->FreeNotification(*First);
    Component->FreeNotification(*Second);
    Second->OnRemove = [&] { First.reset(); };
    Component.reset();
    EXPECT_EQ(Log, (TLog{"second-", "~first"}));
}

TEST(KvComponent, SiblingsMayFreeOneAnotherWhenTold)
{
    TLog Log;
    TComponent Owner;
    auto* First = new TListener(Log, "first", &Owner);
    auto* const Second = new TListener(Log, "second", &Owner);
    auto* const Third = new TListener(Log, "third", &Owner);
    Second->OnRemove = [&] { delete std::exchange(First, nullptr); };
    Log.clear();
    delete Third;
    EXPECT_EQ(Owner.Components(), std::vector<TComponent*>{Second});
    Second->OnRemove = {};
}

TEST(KvPersistent, CannotAssignWithoutKnowingHow)
{
    TPersistent Persistent;
    EXPECT_EQ(MessageOf<EConvertError>([&] { Persistent.Assign(TComponent()); }),
              "Cannot assign a TComponent to a TPersistent.");
}

} // namespace
} // namespace kv
