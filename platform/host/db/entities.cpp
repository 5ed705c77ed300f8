#include "platform/host/db/entities.h"

AcRxClass* AcDbEntity::desc()
{
    static AcRxClass description(L"AcDbEntity", AcRxObject::desc());
    return &description;
}

AcRxClass* AcDbEntity::isA() const
{
    return desc();
}

AcRxClass* AcDbCurve::desc()
{
    static AcRxClass description(L"AcDbCurve", AcDbEntity::desc());
    return &description;
}

AcRxClass* AcDbCurve::isA() const
{
    return desc();
}

AcRxClass* AcDbLine::desc()
{
    static AcRxClass description(L"AcDbLine", AcDbCurve::desc());
    return &description;
}

AcRxClass* AcDbLine::isA() const
{
    return desc();
}

AcRxClass* AcDbCircle::desc()
{
    static AcRxClass description(L"AcDbCircle", AcDbCurve::desc());
    return &description;
}

AcRxClass* AcDbCircle::isA() const
{
    return desc();
}
