// Lets a test script an application module: the module looks up an object of the test in the system registry
// and asks it what to do. Shared by the tests and the modules made for them.
#pragma once

#include "platform/host/rx/entry_points.h"
#include "platform/host/rx/object.h"
#include "platform/host/rx/system_registry.h"
#include "platform/winsys/winsys.h"

#include <functional>
#include <string>
#include <vector>

namespace karv_test
{

inline constexpr const wchar_t* kPuppeteerKey = L"Puppeteer";

/// Registered during its life. Only one may exist at a time.
class Puppeteer : public AcRxObject
{
  public:
    Puppeteer() { acrxSysRegistry()->put(kPuppeteerKey, this); }
    Puppeteer(const Puppeteer&) = delete;
    Puppeteer& operator=(const Puppeteer&) = delete;
    ~Puppeteer() override { acrxSysRegistry()->put(kPuppeteerKey, nullptr); }

    /// Returns the module's answer to a message.
    virtual host::Answer Take(host::Message message, void* application)
    {
        messages.push_back(message);
        applications.push_back(application);
        return script ? script(message, application) : host::Answer::Ok;
    }
    /// Records an event of the module other than a message.
    virtual void Note(const std::string& event, HINSTANCE instance)
    {
        events.push_back(event);
        instances.push_back(instance);
    }

    /// The one that is registered; null for none.
    [[nodiscard]] static Puppeteer* Current()
    {
        return static_cast<Puppeteer*>(acrxSysRegistry()->at(kPuppeteerKey));
    }

    std::function<host::Answer(host::Message, void* application)> script; ///< empty: always succeeds
    std::vector<host::Message> messages;
    std::vector<void*> applications; ///< one for each message
    std::vector<std::string> events;
    std::vector<HINSTANCE> instances; ///< one for each event; null if it has none
};

} // namespace karv_test
