// An object of another class under the dynamic linker's name, in a process of its own: the cast gives the
// module a null pointer, it calls through it, and the process ends.
#include "platform/host/rx/dynamic_linker.h"
#include "platform/host/rx/entry_points.h"
#include "tests/support/host_registry.h"

#include <gtest/gtest.h>

extern "C" host::Answer acrxEntryPoint(host::Message message, void* application);

namespace
{

/// Has the linker's operations, but another run-time class.
class ForeignLinker : public AcRxDynamicLinker
{
  public:
    [[nodiscard]] AcRxClass* isA() const override { return AcRxObject::desc(); }
    bool allowUnload(void* /*application*/) override { return true; }
    bool allowManyDocuments(void* /*application*/) override { return true; }
};

TEST(ForeignLinkerDeathTest, ObjectOfAnotherClassIsNeverCalled)
{
    ForeignLinker foreign;
    const karv_test::ScopedDynamicLinker registered(&foreign);
    EXPECT_DEATH(acrxEntryPoint(host::Message::Initialise, nullptr), "");
}

} // namespace
