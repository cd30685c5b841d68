#include "KvComponent.h"

#include <algorithm>

#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

bool Contains(const std::vector<TComponent*>& List, const TComponent& Component)
{
    return std::ranges::find(List, &Component) != List.end();
}

} // namespace

void TPersistent::Assign(const TPersistent& Source)
{
    throw EConvertError(FormatText("Cannot assign a %s to a %s.", {Source.ClassName(), ClassName()}));
}

TComponent::TComponent(TComponent* Owner)
    : FOwner(Owner)
{
    if (FOwner)
        FOwner->InsertComponent(*this);
}

// Whoever is told may free or delist others at once, so each list is read anew after every call.
TComponent::~TComponent()
{
    while (!FreeNotifies.empty()) {
        auto& Listener = *FreeNotifies.back();
        RemoveFreeNotification(Listener);
        Listener.Notification(*this, opRemove);
    }
    while (!FComponents.empty())
        delete FComponents.back();
    if (FOwner)
        FOwner->RemoveComponent(*this);
}

void TComponent::FreeNotification(TComponent& Listener)
{
    const bool ToldByOwner = FOwner && FOwner == Listener.FOwner;
    if (&Listener == this || ToldByOwner || Contains(FreeNotifies, Listener))
        return;
    FreeNotifies.push_back(&Listener);
    Listener.FreeNotifies.push_back(this);
}

void TComponent::RemoveFreeNotification(TComponent& Listener)
{
    std::erase(FreeNotifies, &Listener);
    std::erase(Listener.FreeNotifies, this);
}

void TComponent::Notification(TComponent&, TOperation) {}

void TComponent::InsertComponent(TComponent& Component)
{
    NotifyFamily(Component, opInsert);
    FComponents.push_back(&Component);
}

void TComponent::RemoveComponent(TComponent& Component)
{
    std::erase(FComponents, &Component);
    NotifyFamily(Component, opRemove);
}

void TComponent::NotifyFamily(TComponent& Component, TOperation Operation)
{
    Notification(Component, Operation);
    for (auto I = FComponents.size(); I-- > 0;)
        if (I < FComponents.size())                 // a component that was told may have freed others
            FComponents[I]->Notification(Component, Operation);
}

} // namespace kv
