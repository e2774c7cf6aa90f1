#include "Desk.h"

std::unique_ptr<Desk> newDesk(View& view) { return std::make_unique<Desk>(view); }

unsigned panelWidthBeside(const GlWindow::Size& /*picture*/) { return 0; }
