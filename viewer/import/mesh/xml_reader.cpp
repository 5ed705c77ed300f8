#include "viewer/import/mesh/xml_reader.h"

#include "viewer/import/mesh/text_scanner.h"
#include "viewer/text/text.h"

#include <expat.h>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

namespace viewer
{

namespace
{

std::string_view WithoutPrefix(std::string_view name)
{
    return name.substr(name.find(':') + 1);
}

} // namespace

std::string_view XmlAttributes::At(std::string_view name) const
{
    for (const char** entry = list_; *entry != nullptr; entry += 2)
        if (WithoutPrefix(*entry) == name)
            return entry[1];
    return {};
}

long long XmlAttributes::IntegerAt(std::string_view name, long long fallback) const
{
    return ParseInteger(At(name)).value_or(fallback);
}

double XmlAttributes::NumberAt(std::string_view name) const
{
    return ParseReal(At(name)).value_or(std::numeric_limits<double>::quiet_NaN());
}

XmlReader::XmlReader(StartFunction on_start, EndFunction on_end)
    : parser_(XML_ParserCreate(nullptr),
              [](void* parser) {
                  if (parser != nullptr)
                      XML_ParserFree(static_cast<XML_Parser>(parser));
              }),
      on_start_(std::move(on_start)), on_end_(std::move(on_end))
{
    if (parser_ == nullptr)
        throw std::bad_alloc();
    auto* const parser = static_cast<XML_Parser>(parser_.get());
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, OnStart, OnEnd);
}

bool XmlReader::Feed(std::span<const char> block, bool is_last)
{
    const bool is_good = XML_Parse(static_cast<XML_Parser>(parser_.get()), block.data(),
                                   static_cast<int>(block.size()), is_last ? 1 : 0) == XML_STATUS_OK;
    if (error_)
        std::rethrow_exception(error_);
    return is_good;
}

template <class Function>
void XmlReader::Guard(const Function& function)
{
    // The library is C: no exception may pass through it.
    try {
        if (!error_)
            function();
    } catch (...) {
        error_ = std::current_exception();
        XML_StopParser(static_cast<XML_Parser>(parser_.get()), XML_FALSE);
    }
}

void XmlReader::OnStart(void* self, const char* name, const char** attributes)
{
    auto& reader = *static_cast<XmlReader*>(self);
    reader.Guard([&] { reader.on_start_(WithoutPrefix(name), XmlAttributes(attributes)); });
}

void XmlReader::OnEnd(void* self, const char* name)
{
    auto& reader = *static_cast<XmlReader*>(self);
    reader.Guard([&] { reader.on_end_(WithoutPrefix(name)); });
}

} // namespace viewer
