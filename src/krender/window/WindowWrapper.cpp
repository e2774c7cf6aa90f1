#include <krender/window/WindowWrapper.h>

#include <X11/Intrinsic.h>

WindowWrapper::WindowWrapper(_WidgetRec* shell, unsigned long xWindow, _XDisplay* xDisplay)
    : widget(shell), window(xWindow == 0 && shell ? XtWindow(shell) : xWindow), display(xDisplay)
{
}

WindowWrapper::~WindowWrapper() = default;

void WindowWrapper::release() noexcept
{
    widget = nullptr;
    window = 0;
    display = nullptr;
    framebufferWindow = 0;
}
