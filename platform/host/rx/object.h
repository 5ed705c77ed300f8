// The host's run-time classes: the class of an object, and whether it derives from another class. Any thread.
#pragma once

#include "platform/export.h"

#include <string>

/// The run-time description of a class.
class KARV_PLATFORM_API AcRxClass
{
  public:
    /// The name is copied. `parent` is null for the root class and must outlive this description.
    AcRxClass(const wchar_t* name, const AcRxClass* parent);
    AcRxClass(const AcRxClass&) = delete;
    AcRxClass& operator=(const AcRxClass&) = delete;

    [[nodiscard]] const wchar_t* name() const noexcept { return name_.c_str(); }
    [[nodiscard]] const AcRxClass* myParent() const noexcept { return parent_; }
    /// Whether this class is `other` or derives from it; false for null.
    [[nodiscard]] bool isDerivedFrom(const AcRxClass* other) const noexcept;

  private:
    std::wstring name_;
    const AcRxClass* parent_;
};

/// The root class of the host's objects.
class KARV_PLATFORM_API AcRxObject
{
  public:
    AcRxObject() = default;
    AcRxObject(const AcRxObject&) = default;
    AcRxObject& operator=(const AcRxObject&) = default;
    virtual ~AcRxObject();

    /// The description of this class.
    [[nodiscard]] static AcRxClass* desc();
    /// The description of the object's own class.
    [[nodiscard]] virtual AcRxClass* isA() const;
    /// Whether the object's class is `other` or derives from it; false for null.
    [[nodiscard]] bool isKindOf(const AcRxClass* other) const;
};
