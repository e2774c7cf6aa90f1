#pragma once
#include <common/MessageOutput.h>

#include <cstddef>
#include <string>
#include <vector>

/// Prints messages, and keeps those of the last load for the window.
class KeptMessages : public krTools::MessageOutput
{
public:
    void show(const krTools::ShownMessage& message) override;
    /// Forgets all.
    void clear();

    [[nodiscard]] const std::vector<krTools::ShownMessage>& messages() const noexcept { return fMessages; }
    /// The number of errors, of which only some may be kept.
    [[nodiscard]] std::size_t errorCount() const noexcept { return fErrors; }
    /// Whether krender itself is to blame for a message, and not the source.
    [[nodiscard]] static bool isOwnFault(const krTools::ShownMessage& message);
    /// What the window's title says, such as "2 errors in phong.krs"; empty without an error.
    [[nodiscard]] std::string summary() const;

private:
    std::vector<krTools::ShownMessage> fMessages;
    std::size_t fErrors = 0;
};
