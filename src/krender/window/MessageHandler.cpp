#include <krender/window/MessageHandler.h>

MessageHandler::~MessageHandler() = default;

bool MessageHandler::needsRefresh() const { return false; }

void MessageHandler::display() {}

void MessageHandler::windowMoved() {}

void MessageHandler::resize(int, int) {}

void MessageHandler::keyboard(unsigned) {}

void MessageHandler::mouseButton(int, int, int, int) {}
