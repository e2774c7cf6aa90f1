#include "Clipboard.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <poll.h>

#include <array>
#include <chrono>

namespace
{

constexpr const char* kSelection = "CLIPBOARD";
constexpr const char* kUtf8 = "UTF8_STRING";
constexpr const char* kProperty = "KRVIEW_PASTED";
constexpr long kMostPasted = 1L << 20; ///< bytes
constexpr auto kPatience = std::chrono::milliseconds(500);

} // namespace

Clipboard::Clipboard(Display* display, Window window) : fDisplay(display), fWindow(window) {}

Atom Clipboard::atom(const char* name) const { return XInternAtom(fDisplay, name, False); }

void Clipboard::copy(const std::string& text)
{
    fText = text;
    XSetSelectionOwner(fDisplay, atom(kSelection), fWindow, CurrentTime);
    fIsOwner = XGetSelectionOwner(fDisplay, atom(kSelection)) == fWindow;
}

std::string Clipboard::paste()
{
    if (fIsOwner)
        return fText;
    const Atom property = atom(kProperty);
    XConvertSelection(fDisplay, atom(kSelection), atom(kUtf8), property, fWindow, CurrentTime);
    const auto end = std::chrono::steady_clock::now() + kPatience;
    XEvent event = {};
    while (!XCheckTypedWindowEvent(fDisplay, fWindow, SelectionNotify, &event))
    {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return "";
        pollfd connection{ConnectionNumber(fDisplay), POLLIN, 0};
        ::poll(&connection, 1, static_cast<int>(left.count()));
    }
    if (event.xselection.property == None)
        return "";
    Atom type = None;
    int bits = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* bytes = nullptr;
    std::string text;
    if (XGetWindowProperty(fDisplay, fWindow, property, 0, kMostPasted / 4, True, atom(kUtf8), &type, &bits, &count,
                           &rest, &bytes) == Success &&
        bits == 8 && rest == 0)
        text.assign(reinterpret_cast<const char*>(bytes), count);
    XFree(bytes);
    return text;
}

bool Clipboard::handle(const XEvent& event)
{
    if (event.type == SelectionClear)
        fIsOwner = false;
    if (event.type != SelectionRequest)
        return event.type == SelectionClear || event.type == SelectionNotify;
    const XSelectionRequestEvent& request = event.xselectionrequest;
    XEvent answer = {};
    answer.xselection.type = SelectionNotify;
    answer.xselection.requestor = request.requestor;
    answer.xselection.selection = request.selection;
    answer.xselection.target = request.target;
    answer.xselection.time = request.time;
    // Old clients leave it to the owner to name the property.
    const Atom property = request.property == None ? request.target : request.property;
    const std::array texts{atom(kUtf8), static_cast<Atom>(XA_STRING), atom("TEXT"), atom("text/plain;charset=utf-8")};
    bool isText = false;
    for (const Atom text : texts)
        isText |= fIsOwner && request.target == text;
    if (fIsOwner && request.target == atom("TARGETS"))
    {
        XChangeProperty(fDisplay, request.requestor, property, XA_ATOM, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(texts.data()), static_cast<int>(texts.size()));
        answer.xselection.property = property;
    }
    else if (isText)
    {
        XChangeProperty(fDisplay, request.requestor, property, request.target, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(fText.data()), static_cast<int>(fText.size()));
        answer.xselection.property = property;
    }
    XSendEvent(fDisplay, request.requestor, False, NoEventMask, &answer);
    XFlush(fDisplay);
    return true;
}
