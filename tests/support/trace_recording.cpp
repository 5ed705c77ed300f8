#include "tests/support/trace_recording.h"

namespace karv_test
{
namespace
{

/// Trace names and source files are ASCII; other characters become question marks.
std::string Narrow(const std::wstring& text)
{
    std::string narrow;
    for (const wchar_t c : text)
        narrow += c > 0 && c < 0x80 ? static_cast<char>(c) : '?';
    return narrow;
}

} // namespace

TraceRecording::TraceRecording() : previous_(InstallTraceSink(&sink_)) {}

TraceRecording::~TraceRecording()
{
    InstallTraceSink(previous_);
}

std::vector<std::string> TraceRecording::Listing() const
{
    std::vector<std::string> lines;
    for (const TraceRecord& record : Records()) {
        const char* mark = record.kind == TraceRecord::Kind::Enter   ? "> "
                           : record.kind == TraceRecord::Kind::Leave ? "< "
                                                                     : "! ";
        lines.push_back(mark + Narrow(record.name));
    }
    return lines;
}

std::vector<std::string> TraceRecording::Faults() const
{
    std::vector<std::string> faults;
    for (const TraceRecord& record : Records())
        if (record.kind == TraceRecord::Kind::Fault)
            faults.push_back(Narrow(record.name) + ":" + std::to_string(record.line));
    return faults;
}

std::vector<std::string> TraceRecording::Calls() const
{
    std::vector<std::string> calls;
    for (const TraceRecord& record : Records())
        if (record.kind == TraceRecord::Kind::Enter)
            calls.push_back(Narrow(record.name));
    return calls;
}

std::vector<std::string> TraceRecording::OutermostCalls() const
{
    std::vector<std::string> calls;
    int depth = 0;
    for (const TraceRecord& record : Records())
        if (record.kind == TraceRecord::Kind::Enter && depth++ == 0)
            calls.push_back(Narrow(record.name));
        else if (record.kind == TraceRecord::Kind::Leave)
            --depth;
    return calls;
}

} // namespace karv_test
