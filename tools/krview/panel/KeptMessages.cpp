#include "KeptMessages.h"

#include <algorithm>
#include <filesystem>
#include <set>

using krTools::MessageKind;
using krTools::ShownMessage;

namespace
{

constexpr std::size_t kMostKept = 100;

/// The name of the file that a message is about, without its folder; empty without a place.
std::string fileOf(const ShownMessage& message)
{
    if (!message.hasPlace)
        return "";
    // The origin ends in ":line:column".
    const std::size_t column = message.origin.rfind(':');
    return std::filesystem::path(message.origin.substr(0, message.origin.rfind(':', column - 1))).filename().string();
}

} // namespace

void KeptMessages::show(const ShownMessage& message)
{
    MessageOutput::show(message);
    fErrors += message.kind == MessageKind::Error ? 1 : 0;
    if (fMessages.size() < kMostKept)
        fMessages.push_back(message);
}

void KeptMessages::clear()
{
    fMessages.clear();
    fErrors = 0;
}

bool KeptMessages::isOwnFault(const ShownMessage& message)
{
    return message.text.find("a fault of krender's") != std::string::npos;
}

std::string KeptMessages::summary() const
{
    if (fErrors == 0)
        return "";
    std::set<std::string> files;
    for (const ShownMessage& message : fMessages)
        if (message.kind == MessageKind::Error)
            files.insert(fileOf(message));
    files.erase("");
    const bool isOwn = std::any_of(fMessages.begin(), fMessages.end(), isOwnFault);
    std::string text = isOwn ? "a fault of krender's" : fErrors == 1 ? "1 error" : std::to_string(fErrors) + " errors";
    if (files.size() == 1)
        text += " in " + *files.begin();
    else if (!files.empty())
        text += " in " + std::to_string(files.size()) + " files";
    return text;
}
