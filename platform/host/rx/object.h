// The host's run-time classes: which class an object is of, and whether that class derives from another.
#pragma once

#include "platform/export.h"

#include <string>

/// The run-time description of a class.
class KARV_PLATFORM_API AcRxClass
{
  public:
    /// `parent` is null for the root class and must outlive this description.
    AcRxClass(const wchar_t* name, const AcRxClass* parent);
    AcRxClass(const AcRxClass&) = delete;
    AcRxClass& operator=(const AcRxClass&) = delete;

    [[nodiscard]] const wchar_t* name() const noexcept { return name_.c_str(); }
    [[nodiscard]] const AcRxClass* myParent() const noexcept { return parent_; }
    /// Whether this class is `other` or derived from it; false for null.
    [[nodiscard]] bool isDerivedFrom(const AcRxClass* other) const noexcept;

  private:
    std::wstring name_;
    const AcRxClass* parent_;
};

/// The root of the host's objects.
class KARV_PLATFORM_API AcRxObject
{
  public:
    AcRxObject() = default;
    AcRxObject(const AcRxObject&) = default;
    AcRxObject& operator=(const AcRxObject&) = default;
    virtual ~AcRxObject();

    [[nodiscard]] static AcRxClass* desc();
    /// The class of this very object.
    [[nodiscard]] virtual AcRxClass* isA() const;
    /// Whether the object's class is `other` or derived from it.
    [[nodiscard]] bool isKindOf(const AcRxClass* other) const;
};
