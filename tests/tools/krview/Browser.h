#pragma once
#include "Image.h"

#include <nlohmann/json.hpp>

#include <sys/types.h>

#include <filesystem>
#include <string>

/// A browser without a window that a test drives as a user would.
class Browser
{
public:
    /// @param place  a folder that it may write to
    explicit Browser(const std::filesystem::path& place);
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;
    ~Browser();

    /// Opens a file and waits until a condition holds in it.
    /// @param width, height  of the view, CSS pixels
    void open(const std::filesystem::path& file, unsigned width, unsigned height, const std::string& condition);
    /// Waits until a condition holds in the page.
    void await(const std::string& condition);
    /// The value of an expression in the page, once it is there if it is a promise.
    nlohmann::json evaluate(const std::string& expression);
    /// What the page shows once it has drawn what there was to draw.
    [[nodiscard]] Image picture();

    /// Presses the left button (or a finger) at a place, moves it and lets go.
    void drag(double x, double y, double right, double down);
    /// Moves two fingers apart or together.
    void pinch(double x, double y, double from, double to);
    void turnWheel(double x, double y, double down);
    void pressKey(const std::string& key);
    /// Chooses a file in an input, which an expression tells.
    void choose(const std::string& input, const std::filesystem::path& file);
    /// What was asked of any network.
    [[nodiscard]] unsigned requests() const noexcept { return fRequests; }
    /// The errors, warnings and other messages of all pages so far.
    [[nodiscard]] const std::string& complaints() const noexcept { return fComplaints; }

    /// Sends a command and waits for its result.
    nlohmann::json send(const std::string& method, const nlohmann::json& parameters = nlohmann::json::object());

private:
    [[nodiscard]] nlohmann::json receive();

    std::filesystem::path fPlace;
    pid_t fProcess = -1;
    int fIn = -1;  ///< of the browser
    int fOut = -1; ///< likewise
    std::string fReceived;
    std::string fSession;
    int fNumber = 0;
    unsigned fRequests = 0;
    std::string fComplaints;
};
