#pragma once

#include "platform/template_image.h"

namespace lumetry {

/// Gives the program's windows an icon: the mark in the accent on a dark ground. Needs a
/// QApplication.
void setApplicationIcon(const TemplateImage& mark);

} // namespace lumetry
