#include <krender/window/ISimpleWindow.h>

WindowWrapper* ISimpleWindow::windowWrapper() { return nullptr; }

ISimpleWindow::~ISimpleWindow() = default;
