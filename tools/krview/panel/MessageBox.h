#pragma once
#include "KeptMessages.h"

/// Builds the box over the picture that shows the messages of the last load; nothing when there are none.
/// @param width, height  of the picture, pixels
void buildMessageBox(const KeptMessages& messages, float width, float height);
