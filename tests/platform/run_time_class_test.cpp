#include "platform/host/rx/object.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

class Shape : public AcRxObject
{
  public:
    [[nodiscard]] static AcRxClass* desc()
    {
        static AcRxClass description(L"Shape", AcRxObject::desc());
        return &description;
    }
    [[nodiscard]] AcRxClass* isA() const override { return desc(); }
};

TEST(RunTimeClass, ClassIsDerivedFromItselfAndFromEveryAncestor)
{
    const AcRxClass root(L"root", nullptr);
    const AcRxClass middle(L"middle", &root);
    const AcRxClass leaf(L"leaf", &middle);
    EXPECT_TRUE(leaf.isDerivedFrom(&leaf));
    EXPECT_TRUE(leaf.isDerivedFrom(&middle));
    EXPECT_TRUE(leaf.isDerivedFrom(&root));
}

TEST(RunTimeClass, ClassIsNotDerivedFromADescendantOrASibling)
{
    const AcRxClass root(L"root", nullptr);
    const AcRxClass one(L"one", &root);
    const AcRxClass other(L"other", &root);
    EXPECT_FALSE(root.isDerivedFrom(&one));
    EXPECT_FALSE(one.isDerivedFrom(&other));
}

TEST(RunTimeClass, NothingIsDerivedFromNull)
{
    const AcRxClass root(L"root", nullptr);
    EXPECT_FALSE(root.isDerivedFrom(nullptr));
    EXPECT_FALSE(AcRxObject().isKindOf(nullptr));
}

TEST(RunTimeClass, ClassesOfOneNameAreStillTwo)
{
    const AcRxClass one(L"name", nullptr);
    const AcRxClass other(L"name", nullptr);
    EXPECT_FALSE(one.isDerivedFrom(&other));
}

TEST(RunTimeClass, DescriptionTellsNameAndParent)
{
    const AcRxClass root(L"root", nullptr);
    std::wstring name = L"leaf";
    const AcRxClass leaf(name.c_str(), &root);
    name = L"gone";
    EXPECT_STREQ(leaf.name(), L"leaf") << "the name is a copy";
    EXPECT_EQ(leaf.myParent(), &root);
    EXPECT_EQ(root.myParent(), nullptr);
}

TEST(RunTimeClass, RootOfObjectsHasNoParent)
{
    EXPECT_EQ(AcRxObject::desc()->myParent(), nullptr);
    EXPECT_EQ(AcRxObject().isA(), AcRxObject::desc());
}

TEST(RunTimeClass, ObjectIsOfItsOwnClassSeenThroughItsBase)
{
    const Shape shape;
    const AcRxObject& object = shape;
    EXPECT_EQ(object.isA(), Shape::desc());
    EXPECT_TRUE(object.isKindOf(Shape::desc()));
    EXPECT_TRUE(object.isKindOf(AcRxObject::desc()));
    EXPECT_FALSE(AcRxObject().isKindOf(Shape::desc()));
}

} // namespace
