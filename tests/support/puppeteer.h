// How a test scripts an application module: the module asks an object of the test, which it finds in the
// system registry, what to do. Shared by the tests and the modules made for them.
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

/// Stands in the registry while it lives. One at a time.
class Puppeteer : public AcRxObject
{
  public:
    Puppeteer() { acrxSysRegistry()->put(kPuppeteerKey, this); }
    Puppeteer(const Puppeteer&) = delete;
    Puppeteer& operator=(const Puppeteer&) = delete;
    ~Puppeteer() override { acrxSysRegistry()->put(kPuppeteerKey, nullptr); }

    /// What the module answers to a message.
    virtual host::Answer Take(host::Message message, void* application)
    {
        messages.push_back(message);
        applications.push_back(application);
        return script ? script(message, application) : host::Answer::Ok;
    }
    /// What happens to the module beyond messages.
    virtual void Note(const std::string& event, HINSTANCE instance)
    {
        events.push_back(event);
        instances.push_back(instance);
    }

    /// The one that lives; null for none.
    [[nodiscard]] static Puppeteer* Current()
    {
        return static_cast<Puppeteer*>(acrxSysRegistry()->at(kPuppeteerKey));
    }

    std::function<host::Answer(host::Message, void* application)> script; ///< empty: all is well
    std::vector<host::Message> messages;
    std::vector<void*> applications; ///< of each message
    std::vector<std::string> events;
    std::vector<HINSTANCE> instances; ///< of each event; null where it has none
};

} // namespace karv_test
