#include "Browser.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <stdexcept>

using nlohmann::json;

namespace
{

constexpr int kMostMilliseconds = 300000; ///< for an answer, on a busy machine

std::string decoded(const std::string& base64)
{
    std::string bytes;
    std::uint32_t bits = 0;
    unsigned count = 0;
    for (const char c : base64)
    {
        const std::size_t digit =
            std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/").find(c);
        if (digit == std::string::npos)
            break;
        bits = bits << 6 | static_cast<std::uint32_t>(digit);
        if (++count % 4 != 1)
            bytes += static_cast<char>(bits >> (6 - 2 * ((count - 1) % 4)) & 0xff);
    }
    return bytes;
}

} // namespace

Browser::Browser(const std::filesystem::path& place) : fPlace(place)
{
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (::pipe2(in.data(), O_CLOEXEC) != 0 || ::pipe2(out.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipes");
    const std::string profile = "--user-data-dir=" + (place / "profile").string();
    fProcess = ::fork();
    if (fProcess == 0)
    {
        // It takes commands from the descriptor 3 and answers on 4. Neither may be in the way of the other.
        const int commands = ::fcntl(in[0], F_DUPFD, 10);
        const int answers = ::fcntl(out[1], F_DUPFD, 10);
        ::dup2(commands, 3);
        ::dup2(answers, 4);
        const int nothing = ::open("/dev/null", O_RDWR);
        ::dup2(nothing, 1);
        ::dup2(nothing, 2);
        ::execl(KRENDER_BROWSER, KRENDER_BROWSER, "--headless=new", "--no-sandbox", "--use-gl=angle",
                "--use-angle=gl-egl", "--ignore-gpu-blocklist", "--hide-scrollbars", "--remote-debugging-pipe",
                profile.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    ::close(in[0]);
    ::close(out[1]);
    fIn = in[1];
    fOut = out[0];
    const json target = send("Target.createTarget", {{"url", "about:blank"}});
    fSession = send("Target.attachToTarget", {{"targetId", target.at("targetId")}, {"flatten", true}}).at("sessionId");
    send("Network.enable");
    send("Runtime.enable");
    send("Log.enable");
    send("Page.enable");
}

Browser::~Browser()
{
    // Without commands it ends.
    ::close(fIn);
    ::close(fOut);
    ::waitpid(fProcess, nullptr, 0);
}

json Browser::receive()
{
    for (;;)
    {
        const std::size_t end = fReceived.find('\0');
        if (end != std::string::npos)
        {
            json message = json::parse(fReceived.substr(0, end));
            fReceived.erase(0, end + 1);
            return message;
        }
        pollfd waiting{fOut, POLLIN, 0};
        std::array<char, 1 << 16> bytes;
        const ssize_t got = ::poll(&waiting, 1, kMostMilliseconds) == 1 ? ::read(fOut, bytes.data(), bytes.size()) : 0;
        if (got <= 0)
            throw std::runtime_error("the browser does not answer");
        fReceived.append(bytes.data(), static_cast<std::size_t>(got));
    }
}

json Browser::send(const std::string& method, const json& parameters)
{
    json command{{"id", ++fNumber}, {"method", method}, {"params", parameters}};
    if (!fSession.empty())
        command["sessionId"] = fSession;
    const std::string text = command.dump() + '\0';
    for (std::size_t at = 0; at < text.size();)
    {
        const ssize_t written = ::write(fIn, text.data() + at, text.size() - at);
        if (written <= 0)
            throw std::runtime_error("the browser takes no command");
        at += static_cast<std::size_t>(written);
    }
    for (;;)
    {
        const json message = receive();
        const std::string event = message.value("method", "");
        if (event == "Network.requestWillBeSent" &&
            message.at("params").at("request").at("url").get<std::string>().find("file://") != 0)
            ++fRequests;
        if (event == "Runtime.exceptionThrown" || event == "Runtime.consoleAPICalled" || event == "Log.entryAdded")
            fComplaints += message.at("params").dump() + '\n';
        if (message.value("id", 0) != fNumber)
            continue;
        if (message.contains("error"))
            throw std::runtime_error(method + ": " + message.at("error").dump());
        return message.at("result");
    }
}

json Browser::evaluate(const std::string& expression)
{
    const json result =
        send("Runtime.evaluate", {{"expression", expression}, {"awaitPromise", true}, {"returnByValue", true}});
    EXPECT_FALSE(result.contains("exceptionDetails")) << result.dump();
    return result.at("result").value("value", json());
}

void Browser::open(const std::filesystem::path& file, unsigned width, unsigned height, const std::string& condition)
{
    send("Emulation.setDeviceMetricsOverride",
         {{"width", width}, {"height", height}, {"deviceScaleFactor", 1}, {"mobile", false}});
    send("Page.navigate", {{"url", "file://" + file.string()}});
    await(condition);
}

void Browser::await(const std::string& condition)
{
    const json is = evaluate("new Promise(done => { const look = n => (() => { try { return " + condition +
                             "; } catch { return false; } })() ? done(true) : n > 4000 ? done(document.body.innerText) "
                             ": setTimeout(look, 25, n + 1); look(0); })");
    EXPECT_EQ(is, true) << condition;
}

void Browser::choose(const std::string& input, const std::filesystem::path& file)
{
    const json found = send("Runtime.evaluate", {{"expression", input}}).at("result");
    send("DOM.setFileInputFiles", {{"files", {file.string()}}, {"objectId", found.at("objectId")}});
}

Image Browser::picture()
{
    // What changes the layout is drawn some frames later.
    evaluate("new Promise(done => { const wait = n => n > 4 ? done(1) : requestAnimationFrame(() => wait(n + 1)); "
             "wait(0); })");
    const std::filesystem::path path = fPlace / "page.png";
    std::ofstream(path, std::ios::binary) << decoded(send("Page.captureScreenshot", {{"format", "png"}}).at("data"));
    return readImage(path);
}

void Browser::drag(double x, double y, double right, double down)
{
    const auto mouse = [&](const char* type, double dx, double dy)
    {
        send("Input.dispatchMouseEvent",
             {{"type", type}, {"x", x + dx}, {"y", y + dy}, {"button", "left"}, {"buttons", 1}, {"clickCount", 1}});
    };
    mouse("mousePressed", 0, 0);
    for (int step = 1; step <= 4; ++step)
        mouse("mouseMoved", right * step / 4, down * step / 4);
    mouse("mouseReleased", right, down);
}

void Browser::pinch(double x, double y, double from, double to)
{
    const auto touch = [&](const char* type, double apart)
    {
        json points = json::array();
        if (apart > 0)
            points = {{{"x", x - apart / 2}, {"y", y}, {"id", 1}}, {{"x", x + apart / 2}, {"y", y}, {"id", 2}}};
        send("Input.dispatchTouchEvent", {{"type", type}, {"touchPoints", points}});
    };
    touch("touchStart", from);
    for (int step = 1; step <= 4; ++step)
        touch("touchMove", from + (to - from) * step / 4);
    touch("touchEnd", 0);
}

void Browser::turnWheel(double x, double y, double down)
{
    send("Input.dispatchMouseEvent", {{"type", "mouseWheel"}, {"x", x}, {"y", y}, {"deltaX", 0}, {"deltaY", down}});
}

void Browser::pressKey(const std::string& key)
{
    for (const char* type : {"keyDown", "keyUp"})
        send("Input.dispatchKeyEvent", {{"type", type}, {"key", key}, {"text", key.size() == 1 ? key : ""}});
}
