#include "platform/host/rx/dynamic_linker.h"

AcRxClass* AcRxDynamicLinker::desc()
{
    static AcRxClass description(L"AcRxDynamicLinker", AcRxObject::desc());
    return &description;
}

AcRxDynamicLinker* AcRxDynamicLinker::cast(AcRxObject* object)
{
    if (object == nullptr || !object->isKindOf(desc()))
        return nullptr;
    return static_cast<AcRxDynamicLinker*>(object);
}

AcRxClass* AcRxDynamicLinker::isA() const
{
    return desc();
}
