// An application module that throws an object of a type of its own at every message: the code of that type
// goes with the module.
#include "platform/export.h"
#include "platform/host/rx/entry_points.h"

#include <exception>

namespace
{

class OwnException : public std::exception
{
  public:
    [[nodiscard]] const char* what() const noexcept override { return "out of\nideas"; }
};

} // namespace

extern "C" KARV_EXPORT host::Answer acrxEntryPoint(host::Message /*message*/, void* /*application*/)
{
    throw OwnException();
}
