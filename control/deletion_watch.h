// How an operation of KARVOpenGLControl notices that the control was deleted while it ran. It knows neither
// windows nor messages.
#pragma once

namespace karv
{

class DeletionWatch;

/// The part of an object that scopes watch. Its destruction is the object's deletion.
class WatchedObject
{
  public:
    WatchedObject() = default;
    WatchedObject(const WatchedObject&) = delete;
    WatchedObject& operator=(const WatchedObject&) = delete;
    inline ~WatchedObject();

  private:
    friend class DeletionWatch;

    DeletionWatch* innermost_ = nullptr;
};

/// Watches an object from its construction to the end of its scope. Messages that an operation sends reach
/// handlers of the host, which may delete the object: after such a call the operation asks `IsDeleted` before
/// it touches a member. Watches of one object nest as the scopes do. The object's thread only; allocates
/// nothing.
class DeletionWatch
{
  public:
    explicit DeletionWatch(WatchedObject& object) noexcept : object_(&object), outer_(object.innermost_)
    {
        object.innermost_ = this;
    }
    DeletionWatch(const DeletionWatch&) = delete;
    DeletionWatch& operator=(const DeletionWatch&) = delete;
    ~DeletionWatch()
    {
        if (object_ != nullptr)
            object_->innermost_ = outer_;
    }

    [[nodiscard]] bool IsDeleted() const noexcept { return object_ == nullptr; }

  private:
    friend class WatchedObject;

    WatchedObject* object_;
    DeletionWatch* outer_;
};

inline WatchedObject::~WatchedObject()
{
    for (DeletionWatch* watch = innermost_; watch != nullptr; watch = watch->outer_)
        watch->object_ = nullptr;
}

} // namespace karv
