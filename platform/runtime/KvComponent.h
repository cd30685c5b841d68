// KvComponent - persistent objects that assign from each other, and components that own each other
// and learn when one that they refer to goes away.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KvProperties.h"

namespace kv {

/// An object whose state can be copied from another one and read by property names.
class TPersistent
{
public:
    TPersistent() = default;
    TPersistent(const TPersistent&) = delete;
    TPersistent& operator=(const TPersistent&) = delete;
    virtual ~TPersistent() = default;

    /// The name of the class, for messages.
    virtual std::string_view ClassName() const { return "TPersistent"; }

    /// Copies the state of `Source`. Raises EConvertError "Cannot assign a %s to a %s." when this
    /// class does not know how.
    virtual void Assign(const TPersistent& Source);

    /// The published properties, the base class's first, in declaration order.
    virtual TPublishedProperties PublishedProperties() const { return {}; }
};

/// What happened to the component that a Notification tells of.
enum TOperation { opInsert, opRemove };

/// A component lives with its owner: the owner's destructor deletes what it owns, last added first.
/// A component without an owner belongs to whoever made it.
class TComponent : public TPersistent
{
public:
    explicit TComponent(TComponent* Owner = nullptr);
    ~TComponent() override;

    std::string_view ClassName() const override { return "TComponent"; }
    TComponent* Owner() const { return FOwner; }
    const std::vector<TComponent*>& Components() const { return FComponents; }

    /// Asks this component to notify `Listener` when it is destroyed. Mutual, and harmless when repeated.
    /// Components of the same owner are told anyway, once.
    void FreeNotification(TComponent& Listener);
    void RemoveFreeNotification(TComponent& Listener);

    std::string Name;                               ///< Identifies the component within its owner.

protected:
    /// Told of `Component` joining the same owner (opInsert), leaving it or being destroyed (opRemove).
    /// At opRemove `Component` is good for nothing but comparing its address.
    virtual void Notification(TComponent& Component, TOperation Operation);

private:
    void InsertComponent(TComponent& Component);
    void RemoveComponent(TComponent& Component);
    void NotifyFamily(TComponent& Component, TOperation Operation);

    TComponent* FOwner = nullptr;
    std::vector<TComponent*> FComponents;           // owned
    std::vector<TComponent*> FreeNotifies;          // not owned; each lists this one too
};

} // namespace kv
