// An object under the dynamic linker's name that is none, in a process of its own: the module calls on the
// null pointer that it makes of it, and the process ends there.
#include "platform/host/rx/dynamic_linker.h"
#include "platform/host/rx/entry_points.h"
#include "tests/support/host_registry.h"

#include <gtest/gtest.h>

extern "C" host::Answer acrxEntryPoint(host::Message message, void* application);

namespace
{

/// Could take registrations, but is of another run-time class.
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
