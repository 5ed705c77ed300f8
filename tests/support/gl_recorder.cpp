#include "tests/support/gl_recorder.h"

#include "tests/support/gl_enums.h"

#include <algorithm>
#include <stdexcept>

#include "tests/support/gl_recorder_state.h"

namespace karv_test
{

GlRecording::GlRecording() : outer_(Recorder().recording)
{
    Recorder().recording = this;
}

GlRecording::~GlRecording()
{
    Recorder().recording = outer_;
}

std::vector<std::string> GlRecording::Listing() const
{
    std::vector<std::string> lines;
    lines.reserve(calls_.size());
    for (const GlCall& call : calls_)
        lines.push_back(call.text);
    return lines;
}

int GlRecording::Count(std::string_view name) const
{
    return static_cast<int>(
        std::count_if(calls_.begin(), calls_.end(), [&](const GlCall& call) { return call.name == name; }));
}

const GlCall& GlRecording::Call(std::string_view name, int index) const
{
    for (const GlCall& call : calls_)
        if (call.name == name && index-- == 0)
            return call;
    throw std::out_of_range("no such call of " + std::string(name));
}

void GlRecording::NoteEnum(unsigned value)
{
    if (!IsEnumOf11(value))
        beyond_11_.insert(EnumName(value));
}

GlHook::GlHook(std::string name, std::function<void(int)> action)
    : name_(std::move(name)), action_(std::move(action))
{
    Recorder().hooks.push_back(this);
}

GlHook::~GlHook()
{
    std::erase(Recorder().hooks, this);
}

void GlHook::Run(std::string_view name)
{
    if (name == name_)
        action_(++calls_);
}

GlAnswer::GlAnswer(std::string name, std::uintptr_t result, std::optional<double> first_argument)
    : name_(std::move(name)), result_(result), first_argument_(first_argument)
{
    Recorder().answers.push_back(this);
}

GlAnswer::~GlAnswer()
{
    std::erase(Recorder().answers, this);
}

std::optional<std::uintptr_t> GlAnswer::For(const GlCall& call) const
{
    const bool meant = call.name == name_ &&
                       (!first_argument_ || (!call.values.empty() && call.values[0] == *first_argument_));
    return meant ? std::optional(result_) : std::nullopt;
}

GlRefusal::GlRefusal(unsigned capability) : capability_(capability)
{
    Recorder().refusals.push_back(this);
}

GlRefusal::~GlRefusal()
{
    std::erase(Recorder().refusals, this);
}

} // namespace karv_test
