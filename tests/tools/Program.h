#pragma once
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What a program did.
struct Outcome
{
    int status = -1; ///< 128 and more: the number of the signal that ended it, plus 128
    std::string out;
    std::string err;
    std::size_t peakKilobytes = 0;
};

/// How a program is run where that matters.
struct Circumstances
{
    std::string input = {};                        ///< standard input
    std::optional<std::size_t> fileSizeLimit = {}; ///< in bytes, for all that it writes into files
    std::string standardOutput = {};               ///< a file to write to instead of Outcome::out
    std::vector<std::pair<std::string, std::string>> environment = {};
    unsigned secondsLimit = 120;                  ///< of processor time
    std::optional<std::size_t> addressLimit = {}; ///< in bytes
    bool onTerminal = false;                      ///< what it prints as errors goes to a terminal
    bool boundByModes = false;                    ///< files' modes count, for the super-user too
};

/// A directory of its own for a test, which is the programs' working directory and is gone afterwards.
class Workplace
{
public:
    Workplace();
    Workplace(const Workplace&) = delete;
    Workplace& operator=(const Workplace&) = delete;
    ~Workplace();

    [[nodiscard]] const std::filesystem::path& path() const noexcept { return fPath; }
    /// Writes a file, given by its name here.
    void write(const std::string& name, const std::string& text) const;
    [[nodiscard]] std::string read(const std::string& name) const;
    /// The names of all that stands here, sorted.
    [[nodiscard]] std::vector<std::string> names() const;

    /// Runs a program here. A run that takes more than its processor time is ended.
    [[nodiscard]] Outcome run(const std::string& program, const std::vector<std::string>& arguments,
                              const Circumstances& circumstances = {}) const;
    /// Whether a program can be run on a terminal.
    [[nodiscard]] static bool canMakeTerminals();
    [[nodiscard]] Outcome krslc(const std::vector<std::string>& arguments,
                                const Circumstances& circumstances = {}) const
    {
        return run(KRSLC_PROGRAM, arguments, circumstances);
    }

private:
    std::filesystem::path fPath;
};
