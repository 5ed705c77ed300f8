#include "platform/host/rx/object.h"

AcRxClass::AcRxClass(const wchar_t* name, const AcRxClass* parent) : name_(name), parent_(parent) {}

bool AcRxClass::isDerivedFrom(const AcRxClass* other) const noexcept
{
    for (const AcRxClass* ancestor = this; ancestor != nullptr; ancestor = ancestor->parent_)
        if (ancestor == other)
            return true;
    return false;
}

AcRxObject::~AcRxObject() = default;

AcRxClass* AcRxObject::desc()
{
    static AcRxClass description(L"AcRxObject", nullptr);
    return &description;
}

AcRxClass* AcRxObject::isA() const
{
    return desc();
}

bool AcRxObject::isKindOf(const AcRxClass* other) const
{
    return isA()->isDerivedFrom(other);
}
