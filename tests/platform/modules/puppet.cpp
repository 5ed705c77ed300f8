// An application module that follows the test's Puppeteer, and reports its messages and notifications to it.
#include "tests/support/puppeteer.h"

namespace
{

void Note(const char* event, HINSTANCE instance = nullptr)
{
    if (karv_test::Puppeteer* const puppeteer = karv_test::Puppeteer::Current())
        puppeteer->Note(event, instance);
}

struct Witness {
    Witness() { Note("built"); }
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;
    ~Witness() { Note("destroyed"); }
};

const Witness kWitness;

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH)
        Note("attach", instance);
    if (reason == DLL_PROCESS_DETACH)
        Note("detach", instance);
    return TRUE;
}

extern "C" KARV_EXPORT host::Answer acrxEntryPoint(host::Message message, void* application)
{
    karv_test::Puppeteer* const puppeteer = karv_test::Puppeteer::Current();
    return puppeteer != nullptr ? puppeteer->Take(message, application) : host::Answer::Ok;
}
