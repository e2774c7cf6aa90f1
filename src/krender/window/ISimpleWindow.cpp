#include <krender/window/ISimpleWindow.h>

#include <krender/window/WindowWrapper.h>

#include <string>

int ISimpleWindow::create(const char* name, unsigned width, unsigned height, MessageHandler* handler,
                          void* applicationShell)
{
    std::string copy = name;
    return create(copy.data(), width, height, handler, applicationShell);
}

WindowWrapper* ISimpleWindow::windowWrapper() { return nullptr; }

ISimpleWindow::~ISimpleWindow() = default;
